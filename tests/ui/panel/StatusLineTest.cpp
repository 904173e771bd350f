#include "ui/panel/StatusLine.h"
#include "ui/WindowFixture.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

TEST(StatusLine, NamesTheLostDeviceAndOffersToTryAgainUntilItIsBack)
{
    QWidget window;
    auto* page = new QWidget(&window);
    page->setGeometry(50, 40, 600, 300);
    SoundDeviceDouble device(0);
    StatusLine line(page);
    line.follow(&device);
    const auto* label = line.findChild<QLabel*>(QStringLiteral("statusLabel"));
    auto* button = line.findChild<QPushButton*>(QStringLiteral("tryAgainButton"));
    const auto shows = [&](const char* text, bool offers) {
        EXPECT_EQ(label->text().toStdString(), text);
        EXPECT_EQ(button->isHidden(), !offers);
        EXPECT_EQ(line.testAttribute(Qt::WA_TransparentForMouseEvents), !offers);
        EXPECT_TRUE(page->geometry().contains(line.geometry()));
    };
    shows("JACK: system", false);
    emit device.lateBlocksCounted(2);
    shows("JACK: system, late blocks: 2", false);

    device.setSelectedDevice(-1);
    emit device.deviceLost(QStringLiteral("JACK: system"));
    emit device.lateBlocksCounted(3);
    shows("JACK: system is gone. Trying again ...", true);
    const QSignalSpy asked(&line, &StatusLine::tryAgainRequested);
    button->click();
    EXPECT_EQ(asked.count(), 1);

    MidiOutOverDouble midi;
    line.follow(&midi);
    emit midi.portLost(QStringLiteral("Synth:in"));
    shows("JACK: system is gone. Trying again ...    MIDI port Synth:in is gone.", true);
    device.setSelectedDevice(1);
    emit device.deviceOpened(QStringLiteral("JACK: studio"));
    shows("MIDI port Synth:in is gone.", false);
    emit midi.portBack(QStringLiteral("Synth:in"));
    shows("JACK: studio, late blocks: 3", false);
    emit midi.portLost(QStringLiteral("Synth:in"));
    midi.selectPort(-1); // it is wanted no more
    shows("JACK: studio, late blocks: 3", false);
}

TEST(StatusLine, ShowsANoteForAWhileAndIsCutToItsRoom)
{
    QWidget window;
    auto* page = new QWidget(&window);
    page->setGeometry(0, 0, 700, 300);
    SoundDeviceDouble device(0);
    MidiOutOverDouble midi;
    StatusLine line(page);
    line.follow(&device);
    line.follow(&midi);
    const auto* label = line.findChild<QLabel*>(QStringLiteral("statusLabel"));
    ASSERT_TRUE(midi.selectPort(0));
    const QString standing =
        QStringLiteral("JACK: system    MIDI: %1, pitches within 0.0061 cents").arg(midi.portName);
    EXPECT_TRUE(QTest::qWaitFor([&] { return label->text() == standing; }));

    line.say(QStringLiteral("Select a ball first"));
    EXPECT_EQ(label->text(), QStringLiteral("Select a ball first"));
    line.warn(StatusLine::Midi, QStringLiteral("Gone."));
    EXPECT_EQ(label->text(), QStringLiteral("Gone.    Select a ball first"));
    line.clear(StatusLine::Midi);

    const QString longText(200, u'x');
    line.say(longText);
    EXPECT_TRUE(page->geometry().contains(line.geometry()));
    EXPECT_LT(label->text().size(), longText.size());
    EXPECT_EQ(line.toolTip(), longText);
}
