#pragma once

#include "end-to-end/Recorder.h"
#include "end-to-end/RunningProgram.h"
#include "end-to-end/VirtualDesk.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QPoint>

#include <csignal>
#include <memory>

/// The whole program, running, played and recorded: a desk and an empty home for each test.
class PlayingFixture : public ::testing::Test
{
protected:
    static constexpr double ROOT = 440.0; // Hz, of ratio 1/1
    static constexpr double FIFTH = ROOT * 3.0 / 2.0;
    static constexpr double TOLERANCE_CENTS = 0.5;
    static constexpr double LISTENING = 0.5; // seconds

    void SetUp() override;
    /// A recorder cannot leave a server that stands still.
    void TearDown() override { desk.jack().thaw(); }
    /// With the options that the test wrote before.
    void start();
    /// Where a ball of the view "circles" or "grapes" or one of the "widgets" lies in the window of a first
    /// start: its centre.
    QPoint place(const char* group, const char* name) const;
    bool press(const char* ball, const char* view = "grapes") { return program->click(place(view, ball)); }
    bool clickOn(const char* widget) { return program->click(place("widgets", widget)); }
    /// The window of the options, with the keys at the sound device.
    bool openOptions();

    /// What the sound is heard by.
    virtual Recording& ear() { return *recorder; }
    /// What sounds now is one sine, of this pitch.
    ::testing::AssertionResult soundsAt(double frequency);
    /// Wait for a partial to be there, among others, or to have gone.
    bool hears(double frequency);
    bool hearsNoMore(double frequency);

    /// The keys still work, the program ends in time when the system asks it to, and what changed here
    /// is saved.
    void expectOrderlyEnd(int signal = SIGTERM);

    /// "options.json" as it lies on the disk.
    QJsonObject options() const;
    /// Before a start.
    void writeOptions(const QJsonObject& options) const;
    QString log() const;
    /// Waits for this text to be in the log so often.
    bool logs(const QString& text, qsizetype times = 1) const;
    /// What chooses this one of the first ten in the patch menu.
    static QString patchKey(const QString& patch);

    TestHome home; // before the desk, whose environment names it
    VirtualDesk desk;
    QJsonObject screen; // what print_screen_map says, an equal window on the same screen
    std::unique_ptr<Recorder> recorder;
    std::unique_ptr<RunningProgram> program;
};
