#include "end-to-end/PlayingFixture.h"

#include "support/Tone.h"

#include <cmath>

void PlayingFixture::SetUp()
{
    EndToEndTest::SetUp();
    if (HasFatalFailure())
        return;
    screen = std::make_unique<ScreenMap>(desk);
    ASSERT_TRUE(screen->isValid()) << "print_screen_map gave no map.";
    recorder = std::make_unique<Recorder>(desk.soundServer());
}

void PlayingFixture::start()
{
    program = std::make_unique<RunningProgram>(desk);
    ASSERT_TRUE(program->waitForWindow());
    ASSERT_TRUE(recorder->connectToProgram());
    ASSERT_TRUE(recorder->waitForSilence());
}

std::optional<double> PlayingFixture::pitchNow()
{
    return tone::pitch(recorder->record(LISTENING), VirtualDesk::SAMPLE_RATE);
}

double PlayingFixture::amplitudeNow(double frequency)
{
    return tone::amplitudeAt(recorder->record(LISTENING), frequency, VirtualDesk::SAMPLE_RATE);
}

::testing::AssertionResult PlayingFixture::soundsAt(double frequency)
{
    if (!recorder->waitForSound())
        return ::testing::AssertionFailure() << "nothing sounds";
    std::optional<double> found;
    // The stroke's first moment is no steady sine, nor is a stretch with missing blocks.
    for (int attempt = 0; attempt < 10 && !found; ++attempt)
        found = pitchNow();
    if (!found)
        return ::testing::AssertionFailure() << "what sounds is no sine";
    const double off = tone::centsBetween(*found, frequency);
    if (std::abs(off) > MOST_CENTS_OFF)
        return ::testing::AssertionFailure() << *found << " Hz, which is " << off << " cents off " << frequency;
    return ::testing::AssertionSuccess();
}
