#pragma once

#include "app/ApplicationServices.h"
#include "external/MidiDouble.h"
#include "memory/SaveAndLoad.h"
#include "memory/StoreAndRecall.h"
#include "support/SoundDeviceDouble.h"
#include "support/TestHome.h"
#include "ui/UiFixture.h"
#include "ui/window/MainWindow.h"

#include <QDir>
#include <QPushButton>
#include <QSlider>

#include <memory>
#include <utility>

/// Answers the boxes that the window opens while this lives, and keeps their texts. A box without an
/// answer is closed.
class BoxAnswers : public QObject
{
public:
    BoxAnswers() { startTimer(10); }

    /// Yes or No to the next question.
    void answer(bool yes) { mAnswers.append({yes, QString()}); }
    /// Types this and accepts, or cancels.
    void type(const QString& text, bool accept = true) { mAnswers.append({accept, text}); }

    /// The texts of all boxes since the last time, with " (No)" where that is the default; of one with a line
    /// to type, its title.
    QStringList take() { return std::exchange(mShown, {}); }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QList<std::pair<bool, QString>> mAnswers; // accepts, types
    QStringList mShown;
};

/// A window with the patch Sine loaded, over a player whose commands the test reads.
class WindowFixture : public UiFixture
{
protected:
    using Command = std::pair<OrloEvent::Type, float>;

    /// The application's part, which notes the chord files and touches none.
    class Services : public ApplicationServices
    {
    public:
        bool loadStyleSheet() override { return true; }
        QMetaObject::Connection connectDiagnostics(DiagnosticsDialog*) override { return {}; }
        void setPressMode(qint16) override {}
        bool loadChordsFromDiskToStorage(QDir* file) override { return note("loaded ", file); }
        bool saveStoredChordsToDisk(QDir* file) override { return note("saved ", file); }

        /// In order, "saved" or "loaded" and bank and preset, since the last time.
        QStringList take() { return std::exchange(mDone, {}); }

    private:
        bool note(const char* what, const QDir* file)
        {
            mDone.append(QLatin1StringView(what) + file->path().section(u'/', -2));
            return true;
        }
        QStringList mDone;
    };

    WindowFixture();
    ~WindowFixture() override;

    /// A new one, in place of the former.
    void openWindow();
    template <class Widget>
    Widget* find(const char* name) const
    {
        auto* widget = window->findChild<Widget*>(QLatin1StringView(name));
        if (!widget)
            qFatal("The window has no %s.", name);
        return widget;
    }
    QPushButton* button(const char* name) const { return find<QPushButton>(name); }
    QSlider* slider(const char* name) const { return find<QSlider>(name); }

    void click(const char* name) const;
    /// Keys that press a button need the time of its flash.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;

    /// Type and value of what the window has queued since the last time.
    QList<Command> commands();
    /// Commands and answers, until neither side has anything to say.
    void settle();

    const ProgramLook look;
    TestHome home; // before the window, whose options name its folders
    StoreAndRecall chords{&player};
    Services services;
    SaveAndLoad files;
    SoundDeviceDouble soundDevice{0};
    MidiOutOverDouble midi;
    std::unique_ptr<MainWindow> window;
};
