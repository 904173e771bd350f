#pragma once

#include "app/ApplicationServices.h"
#include "external/MidiDouble.h"
#include "memory/StoreAndRecall.h"
#include "sound/AudioOutput.h"
#include "support/TestHome.h"
#include "ui/UiFixture.h"
#include "ui/window/MainWindow.h"

#include <QDir>
#include <QPushButton>
#include <QSlider>

#include <memory>

/// A sound system of the test's own: its devices and which of them fail to open.
class SoundDeviceDouble : public AudioOutput
{
public:
    SoundDeviceDouble() { setSelectedDevice(0); }

    bool init(int, int, PdPlayer*) override { return true; }
    void term() override {}
    QStringList devices() const override
    {
        return {QStringLiteral("JACK: system"), QStringLiteral("JACK: studio"), QStringLiteral("ALSA: gone")};
    }
    void logDevices() const override {}
    bool selectDevice(int index) override
    {
        const bool works = !broken.contains(index);
        setSelectedDevice(works ? index : -1);
        return works;
    }
    void muteOutput() override {}
    void unmuteOutput() override {}

    QList<int> broken{2};
};

/// Answers the boxes that the window opens while this lives, each as a player would: by a click on
/// a button, or by typing and a click. A box without an answer is closed, and its text kept.
class BoxAnswers : public QObject
{
public:
    BoxAnswers();

    /// Yes or No to the next question.
    void answer(bool yes) { mAnswers.append({yes, QString()}); }
    /// Types this and accepts, or cancels.
    void type(const QString& text, bool accept = true) { mAnswers.append({accept, text}); }

    /// The texts of all boxes since the last time; of one with a line to type, its title.
    QStringList take() { return std::exchange(mShown, {}); }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct Answer
    {
        bool accept;
        QString text;
    };
    QList<Answer> mAnswers;
    QStringList mShown;
};

/// A window with the patch Sine loaded, over a player whose commands the test reads.
class WindowFixture : public UiFixture
{
public:
    /// The look decides how much room the controls take.
    static void SetUpTestSuite();
    static void TearDownTestSuite();

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

    TestHome home; // before the window, whose options name its folders
    StoreAndRecall chords{&player};
    Services services;
    SoundDeviceDouble soundDevice;
    MidiOutOverDouble midi;
    std::unique_ptr<MainWindow> window;
};
