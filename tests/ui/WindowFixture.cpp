#include "ui/WindowFixture.h"

#include "sound/PatchFolder.h"
#include "support/EngineClock.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>

#include <algorithm>

BoxAnswers::BoxAnswers()
{
    startTimer(10);
}

void BoxAnswers::timerEvent(QTimerEvent*)
{
    QWidget* box = QApplication::activeModalWidget();
    if (!box || !box->isVisible())
        return;
    const Answer answer = mAnswers.isEmpty() ? Answer{false, QString()} : mAnswers.takeFirst();
    const auto press = [](QWidget* button) { QTest::mouseClick(button, Qt::LeftButton); };
    if (auto* message = qobject_cast<QMessageBox*>(box)) {
        mShown.append(message->text() + message->informativeText());
        QAbstractButton* button = message->button(answer.accept ? QMessageBox::Yes : QMessageBox::No);
        press(button ? button : message->button(QMessageBox::Ok));
        return;
    }
    auto* line = box->findChild<QLineEdit*>();
    mShown.append(box->windowTitle());
    line->clear();
    const bool isFile = qobject_cast<QFileDialog*>(box);
    if (isFile) // it completes what is typed, with files that come later
        line->setText(answer.text);
    else
        QTest::keyClicks(line, answer.text);
    using Box = QDialogButtonBox;
    press(box->findChild<Box*>()->button(!answer.accept ? Box::Cancel : isFile ? Box::Open : Box::Ok));
}

void WindowFixture::SetUpTestSuite()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QFile sheet(QCoreApplication::applicationDirPath() + QStringLiteral("/style.qss"));
    ASSERT_TRUE(sheet.open(QIODevice::ReadOnly));
    qApp->setStyleSheet(QString::fromLatin1(sheet.readAll()));
}

void WindowFixture::TearDownTestSuite()
{
    qApp->setStyleSheet(QString());
}

WindowFixture::WindowFixture()
{
    app::Parts parts = app::parts();
    parts.application = &services;
    parts.storeAndRecall = &chords;
    parts.audioOutput = &soundDevice;
    parts.midiOutput = &midi;
    app::setParts(parts);
    settings.updateCheckInterval = 4; // never, in a build that knows an address too
    settings.lastDirPath = home.path(QStringLiteral("chord_presets"));
    QDir().mkpath(settings.lastDirPath);
    PatchFolder(home.path(QString())).install(QCoreApplication::applicationDirPath(), 4);
    {
        const EngineClock clock(player);
        window = std::make_unique<MainWindow>(&orlo);
    }
    settle();
}

WindowFixture::~WindowFixture()
{
    const EngineClock clock(player);
    player.term();
    window.reset();
}

void WindowFixture::click(const char* name) const
{
    QTest::mouseClick(find<QWidget>(name), Qt::LeftButton);
}

void WindowFixture::press(Qt::Key key, Qt::KeyboardModifiers modifiers) const
{
    QTest::keyClick(window.get(), key, modifiers);
    // A button flashes, and its click comes at the flash's end.
    const QList<QAbstractButton*> buttons = window->findChildren<QAbstractButton*>();
    const bool up = QTest::qWaitFor([&buttons] {
        return std::none_of(buttons.begin(), buttons.end(), [](const auto* each) { return each->isDown(); });
    });
    EXPECT_TRUE(up);
}

QList<WindowFixture::Command> WindowFixture::commands()
{
    QList<Command> list;
    for (const PdMessageBuffer::Chunk& chunk : drain())
        list.append({static_cast<OrloEvent::Type>(chunk.type), chunk.value});
    return list;
}

void WindowFixture::settle()
{
    for (int round = 0; round < 3; ++round) {
        report();
        drain();
    }
    report();
}
