#pragma once

#include "app/ApplicationServices.h"
#include "external/MidiDouble.h"
#include "memory/SaveAndLoad.h"
#include "memory/StoreAndRecall.h"
#include "support/TestHome.h"
#include "ui/MainWindow.h"
#include "ui/SoundDeviceDouble.h"
#include "ui/UiFixture.h"

#include <memory>

class QPushButton;
class QSlider;

/// A window with the patch Sine loaded, over a player whose commands the test reads.
class WindowFixture : public UiFixture
{
public:
    /// The look decides how much room the controls take.
    static void SetUpTestSuite();
    static void TearDownTestSuite();

protected:
    using Command = std::pair<OrloEvent::Type, float>;

    /// The application's part, with the chord files told to the test.
    class Services : public ApplicationServices
    {
    public:
        bool loadStyleSheet() override { return true; }
        QMetaObject::Connection connectDiagnostics(DiagnosticsDialog*) override { return {}; }
        void setPressMode(qint16 mode) override { pressMode = mode; }
        bool loadChordsFromDiskToStorage(QDir* file) override;
        bool saveStoredChordsToDisk(QDir* file) override;

        qint16 pressMode = 0;
        QStringList loaded; // paths
        QStringList saved;
        StoreAndRecall* chords = nullptr;
        SaveAndLoad files;
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
    QPushButton* button(const char* name) const;
    QSlider* slider(const char* name) const;

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
