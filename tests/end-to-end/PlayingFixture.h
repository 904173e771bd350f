#pragma once

#include "end-to-end/EndToEndTest.h"
#include "end-to-end/Recorder.h"
#include "end-to-end/RunningProgram.h"
#include "end-to-end/ScreenMap.h"

#include <memory>
#include <optional>

/// The program, running, played and recorded.
class PlayingFixture : public EndToEndTest
{
protected:
    static constexpr double ROOT = 440.0;          // Hz, of ratio 1/1
    static constexpr double MOST_CENTS_OFF = 0.5;
    static constexpr double LISTENING = 0.5;       // seconds

    void SetUp() override;
    /// With the options that the test wrote before.
    void start();

    /// What sounds now, when it is one sine.
    std::optional<double> pitchNow();
    double amplitudeNow(double frequency);
    ::testing::AssertionResult soundsAt(double frequency);

    std::unique_ptr<ScreenMap> screen;
    std::unique_ptr<Recorder> recorder;
    std::unique_ptr<RunningProgram> program;
};
