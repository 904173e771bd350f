#pragma once

#include "end-to-end/Recorder.h"
#include "end-to-end/RunningProgram.h"
#include "end-to-end/ScreenMap.h"
#include "end-to-end/VirtualDesk.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QStringList>

#include <memory>

/// The whole program, running, played and recorded: a desk and an empty home for each test.
class PlayingFixture : public ::testing::Test
{
protected:
    static constexpr double ROOT = 440.0; // Hz, of ratio 1/1
    static constexpr double MOST_CENTS_OFF = 0.5;
    static constexpr double LISTENING = 0.5; // seconds

    void SetUp() override;
    /// With the options that the test wrote before.
    void start();
    bool press(const char* ball, const char* view = "grapes")
    {
        return program->click(screen->ball(ball, view));
    }

    /// What the sound is heard by.
    virtual Recording& ear() { return *recorder; }
    double amplitudeNow(double frequency);
    /// What sounds now is one sine, of this pitch.
    ::testing::AssertionResult soundsAt(double frequency);
    /// Wait for a partial to be there, among others, or to have gone.
    bool hears(double frequency);
    bool hearsNoMore(double frequency);

    /// The keys still work, the program ends in time when the system asks it to, and what changed here
    /// is saved.
    void expectOrderlyEnd();

    /// "options.json" as it lies on the disk.
    QJsonObject options() const;
    /// Before a start.
    void writeOptions(const QJsonObject& options) const;
    QString log() const;
    /// In the order of the patch menu, without the ending.
    static QStringList voicePatches();
    /// What chooses this one of them.
    static QString patchKey(const QString& patch);

    TestHome home; // before the desk, whose environment names it
    VirtualDesk desk;
    std::unique_ptr<ScreenMap> screen;
    std::unique_ptr<Recorder> recorder;
    std::unique_ptr<RunningProgram> program;
};
