#include "ui/WindowFixture.h"

#include "sound/PatchFolder.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>

#include <algorithm>

void BoxAnswers::timerEvent(QTimerEvent*)
{
    auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
        return;
    const auto [accept, text] = mAnswers.isEmpty() ? std::pair(false, QString()) : mAnswers.takeFirst();
    if (auto* message = qobject_cast<QMessageBox*>(box)) {
        const QPushButton* isDefault = message->defaultButton();
        const bool isNo = isDefault && isDefault == message->button(QMessageBox::No);
        mShown.append(message->text() + message->informativeText() + QLatin1StringView(isNo ? " (No)" : ""));
        QAbstractButton* button = message->button(accept ? QMessageBox::Yes : QMessageBox::No);
        (button ? button : message->button(QMessageBox::Ok))->click();
        return;
    }
    mShown.append(box->windowTitle());
    box->findChild<QLineEdit*>()->setText(text);
    accept ? box->accept() : box->reject();
}

WindowFixture::WindowFixture()
{
    app::Parts parts = app::parts();
    parts.application = &services;
    parts.storeAndRecall = &chords;
    parts.saveAndLoad = &files;
    parts.audioOutput = &soundDevice;
    parts.midiOutput = &midi;
    app::setParts(parts);
    settings.updateCheckInterval = 4; // never, in a build that knows an address too
    settings.lastDirPath = home.path(QStringLiteral("chord_presets"));
    QDir().mkpath(settings.lastDirPath);
    PatchFolder(home.path(QString())).install(QCoreApplication::applicationDirPath(), 4);
    openWindow();
}

void WindowFixture::openWindow()
{
    {
        const EngineClock clock(player);
        window.reset();
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
