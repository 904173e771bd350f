#include "app/ProgramFixture.h"

#include "app/Accessors.h"
#include "app/EndRequest.h"
#include "app/FirstStart.h"
#include "app/StyleSheets.h"
#include "support/LogCatcher.h"
#include "ui/lattice/OrloView.h"

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QUdpSocket>
#include <QWheelEvent>

#include <cerrno>
#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

class StartAndEnd : public ProgramFixture
{
protected:
    /// The text of the one box of a start that fails with the doubles and files as they are.
    QString failure()
    {
        EXPECT_FALSE(start());
        sound.stop();
        EXPECT_EQ(application.mainWindow(), nullptr);
        EXPECT_EQ(boxes.size(), 1);
        const QString text = std::exchange(boxes, {}).value(0);
        EXPECT_TRUE(logged(text.toUtf8()));
        EXPECT_TRUE(text.endsWith(u"\n\nThe program will now shut down."_s));
        return text;
    }
    bool logged(const char* text) const { return home.read(u"log.txt"_s).contains(text); }
};

/// The system asks the program to end while its first box is open.
class Interrupted : public StartAndEnd
{
protected:
    static constexpr int PATIENCE = 400; // times 5 ms
    void answer(QMessageBox& box) override
    {
        if (boxes.size() == 1)
            std::raise(SIGTERM);
        else if (boxes.size() == PATIENCE)
            box.accept();
    }
};

struct AsNohupStarts
{
    AsNohupStarts() { std::signal(SIGHUP, SIG_IGN); }
    ~AsNohupStarts() { std::signal(SIGHUP, SIG_DFL); }
};
class Terminated : AsNohupStarts, public ProgramFixture
{
};

} // namespace

TEST_F(StartAndEnd, OnlyAFirstStartShowsTheFirstSteps)
{
    const QString folder = home.configDir().path();
    ASSERT_TRUE(startAsItIs());
    EXPECT_TRUE(find<QWidget>("firstSteps")->isVisible());
    EXPECT_FALSE(FirstStart::isNow(folder)) << "there are options now";
    EXPECT_TRUE(QFile::remove(home.path(u"options.json"_s)));
    EXPECT_TRUE(FirstStart::isNow(folder));
}

TEST_F(StartAndEnd, OptionsReachTheProgramAndComeBack)
{
    QUdpSocket taken;
    taken.bind(QHostAddress::Any, 0);
    home.write(u"rfid_map.json"_s, "{}"); // makes the program listen to the device
    const QJsonObject options{
        {u"audioDevice"_s, 1},
        {u"framesPerBuffer"_s, 128},
        {u"midiOutDevice"_s, u"Third:in"_s},
        {u"midiOutChannel"_s, -1},
        {u"midiOutMpeZone"_s, true},
        {u"glissRangeMPECents"_s, 100},
        {u"baseFrequency"_s, 261.6255653}, // more digits than the engine keeps
        {u"masterVolume"_s, 0.25},
        {u"monophonic"_s, true},
        {u"circlesView"_s, true},
        {u"windowPos"_s, u"40,30"_s},
        {u"orloZoomMode"_s, 0},
        {u"udpPort"_s, taken.localPort()},
    };
    ASSERT_TRUE(start(options));
    EXPECT_EQ(sound.asked, std::pair(128, 1));
    EXPECT_EQ(midi.portName, u"Third:in"_s);
    EXPECT_TRUE(midi.isMpeZone());
    EXPECT_EQ(midi.pitchBendRangeCents, 150);
    EXPECT_EQ(application.mainWindow()->pos(), QPoint(40, 30));
    const auto* volume = find<QSlider>("volumeSlider");
    EXPECT_TRUE(QTest::qWaitFor([volume] { return volume->value() * 4 == volume->maximum(); }));
    EXPECT_TRUE(find<QPushButton>("monoButton")->isChecked());
    EXPECT_EQ(app::orlo()->baseFrequency(), 261.6255653F);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !boxes.isEmpty(); }));
    EXPECT_TRUE(boxes.value(0).startsWith(u"Failed to connect to the orlo, only screen-based "_s));
    const OrloView* view = application.mainWindow()->orloView();
    QWheelEvent wheel({9, 9}, {9, 9}, {}, {0, 480}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(view->viewport(), &wheel);
    EXPECT_EQ(view->currentScale(), view->fitScale()) << "zoom is off";
    // All is saved before the sound device ends, for a sound system may crash then.
    QByteArray atDevicesEnd;
    QObject::connect(&sound, &AudioOutput::selectedDeviceChanged,
                     [&] { atDevicesEnd = home.read(u"options.json"_s); });
    end();
    expectSaved(options);
    EXPECT_EQ(atDevicesEnd, home.read(u"options.json"_s));
}

TEST_F(StartAndEnd, WhatThePlayerChoseIsSavedAndWhatWasLostIsWantedBack)
{
    ASSERT_TRUE(start({{u"midiOutDevice"_s, u"Gone:in"_s}, {u"audioDevice"_s, 0}}));
    EXPECT_TRUE(boxes.isEmpty());
    application.syncToSettings();
    EXPECT_EQ(app::settings()->midiOutDevice, u"Gone:in"_s);

    sound.setSelectedDevice(1);
    sound.setSelectedDevice(-1);
    EXPECT_EQ(app::settings()->audioDevice, 1);
    midi.selectPort(u"Other:in"_s);
    midi.setChannel(7);
    find<QPushButton>("circlesViewButton")->click();
    app::player()->queueGui(OrloEvent::BaseFrequencySet, 300.5F);
    app::player()->queueGui(OrloEvent::MasterVolumeSet, 0.5F);
    app::player()->queueGui(OrloEvent::MonophonicSet, 1.0F);
    EXPECT_TRUE(QTest::qWaitFor([] { return app::settings()->monophonic; }));
    end();
    expectSaved({{u"audioDevice"_s, 1},
                 {u"midiOutDevice"_s, u"Other:in"_s},
                 {u"midiOutChannel"_s, 7},
                 {u"midiOutMpeZone"_s, false},
                 {u"circlesView"_s, true},
                 {u"baseFrequency"_s, 300.5},
                 {u"masterVolume"_s, 0.5}});
}

TEST_F(StartAndEnd, OptionsAndChordsAreSavedNowAndThenAndAtTheEnd)
{
    home.write(u".temp.btoc"_s, "1/1 0\n3/2 3/0 5/4 0\n");
    ASSERT_TRUE(start({{u"midiOutDevice"_s, u"Third:in"_s}}));
    EXPECT_TRUE(logged(" has no ratio in slot 2: \"3/0\". The chord ends"));
    EXPECT_TRUE(find<QPushButton>("chordButton_02")->isChecked());
    EXPECT_FALSE(find<QPushButton>("chordButton_03")->isChecked());
    EXPECT_TRUE(home.configDir().exists(u"chord_presets"_s));
    const auto chords = [this] { return home.read(u".temp.btoc"_s).left(18); };

    const QList<QTimer*> timers = application.findChildren<QTimer*>();
    const auto timer = std::ranges::find(timers, 15 * 60 * 1000, &QTimer::interval);
    ASSERT_NE(timer, timers.end());
    EXPECT_TRUE((*timer)->isActive());
    app::storeAndRecall()->storedChords()->insert(3, {OrloRatio(5, 4)});
    app::settings()->udpPort = 1;
    application.mainWindow()->showMaximized();
    (*timer)->start(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chords() == "1/1 0\n3/2 0\n5/4 0\n"; }));
    expectSaved({{u"udpPort"_s, 1}, {u"windowMaximized"_s, true}});

    // Options that cannot be written keep nothing else from its end.
    (*timer)->stop();
    home.configDir().remove(u"options.json"_s);
    home.configDir().mkpath(u"options.json"_s);
    app::storeAndRecall()->storedChords()->insert(3, {OrloRatio(7, 4)});
    end();
    EXPECT_EQ(chords(), "1/1 0\n3/2 0\n7/4 0\n");
    EXPECT_TRUE(logged("/options.json for saving."));
    EXPECT_EQ(sound.patchWasOpenAtTheEnd, false); // the player ends before its device
    EXPECT_TRUE(midi.system->take().ends_with("B0 7B 00, close"));
}

TEST_F(StartAndEnd, TheDevicePlaysAndRestrictionsReachWindowAndMidi)
{
    QUdpSocket device;
    device.setProxy(QNetworkProxy::NoProxy);
    device.bind(QHostAddress::Any, 0);
    const quint16 port = device.localPort();
    device.close();
    home.write(u"rfid_map.json"_s, R"({"0000000000": {"value": "/3"}})");
    application.applyRestrictions(true); // before there is a window
    ASSERT_TRUE(start({{u"midiOutDevice"_s, u"Third:in"_s}, {u"udpPort"_s, port}}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return logged("UDP socket opened on port"); }));
    int presses = 0;
    for (const bool restricted : {false, true, false}) { // as licensing leaves it, and as it may become
        if (presses > 0)
            application.applyRestrictions(restricted);
        EXPECT_EQ(find<QWidget>("chordFrame")->isEnabled(), !restricted);
        midi.system->take();
        device.writeDatagram(QByteArray(72, '0'), QHostAddress::LocalHost, port);
        const bool sounds = presses++ % 2 == 0;
        EXPECT_TRUE(QTest::qWaitFor(
            [sounds] { return app::orlo()->playingRatios().contains(OrloRatio(3, 2)) == sounds; }));
        EXPECT_EQ(midi.system->take().empty(), restricted);
    }
}

TEST_F(StartAndEnd, StyleSheetsAreAppliedTogetherOrNotAtAll)
{
    const QString folder = home.configDir().path();
    application.setStyleSheet(QString()); // Qt keeps it from one application to the next
    const auto expectFailure = [&](const QString& why) {
        const LogCatcher log;
        EXPECT_FALSE(StyleSheets::load(folder));
        EXPECT_TRUE(log.has(QtCriticalMsg, why.arg(folder))) << why.toStdString();
    };
    expectFailure(u"Failed to find style sheet file %1/style.qss."_s);
    home.write(u"style.qss"_s, "QFrame {}");
    expectFailure(u"Failed to find platform-specific style sheet file %1/style_mac.qss."_s);
    home.configDir().mkpath(u"style_mac.qss"_s);
    expectFailure(u"Failed to open file %1/style_mac.qss for reading."_s);
    EXPECT_EQ(application.styleSheet(), QString());
    home.configDir().rmdir(u"style_mac.qss"_s);
    home.write(u"style_mac.qss"_s, "/*\xE4*/");
    EXPECT_TRUE(StyleSheets::load(folder));
    EXPECT_EQ(application.styleSheet(), u"QFrame {}/*\u00E4*/"_s);
}

TEST_F(Interrupted, BrokenOptionsGiveOneBoxWhichASignalCloses)
{
    const QString reset = u"Failed to read saved options. All options will be reset to defaults."_s;
    const QByteArray broken = "{ \"masterVolume\": 0.1, ";
    app::settings()->updateCheckInterval = 4;
    ASSERT_TRUE(start(broken));
    EXPECT_LT(boxes.size(), PATIENCE);
    EXPECT_EQ(QSet<QString>(boxes.begin(), boxes.end()), QSet<QString>{reset});
    EXPECT_TRUE(logged((reset + u'\n').toUtf8()));
    EXPECT_EQ(home.read(u"options.json"_s), broken);
    QTimer::singleShot(5000, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0) << "it ends once it has started";
    end();
    expectSaved({{u"masterVolume"_s, 0.75}});
}

TEST_F(Terminated, AtOnceThoughAVoiceLoops)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "ThreadSanitizer delivers signals late.";
#endif
    home.write(u"loop.pd"_s, "#N canvas 0 0 9 9 12;\n#X obj 9 9 inlet;\n#X obj 9 9 outlet~;\n"
                             "#X obj 9 9 loadbang;\n#X obj 9 9 until;\n#X connect 2 0 3 0;\n");
    ASSERT_TRUE(start());
    std::raise(SIGHUP);
    EXPECT_FALSE(EndRequest::isMade);
    std::thread system([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::raise(SIGTERM);
    });
    QElapsedTimer timer;
    timer.start();
    application.mainWindow()->loadPatch(home.path(u"loop.pd"_s));
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_TRUE(boxes.isEmpty()) << "nobody would close it";
    system.join();
    errno = ENOENT;
    for (int i = 0; i < 100000; ++i) // more than a pipe holds
        std::raise(SIGTERM);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(StartAndEnd, AFailedStartSaysWhy)
{
    sound.fails = true;
    EXPECT_TRUE(failure().startsWith(u"Initialisation of audio device failed."_s));
    EXPECT_EQ(sound.logged, 1);
    sound.fails = false;
    home.write(u"patch"_s, "a file");
    EXPECT_TRUE(failure().startsWith(u"Initialisation of patch directory failed."_s));
    home.configDir().remove(u"patch"_s);
    // A link that leads nowhere is a file that is missing and cannot be made.
    ASSERT_TRUE(QFile::link(u"/nowhere/x"_s, home.path(u"orlo_v2.json"_s)));
    EXPECT_TRUE(failure().startsWith(u"Orlo initialisation failed."_s));
}
