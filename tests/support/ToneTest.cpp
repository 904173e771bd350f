#include "support/Tone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr double RATE = 44100.0;

std::vector<float> sine(double frequency)
{
    std::vector<float> recording(22050);
    for (size_t i = 0; i < recording.size(); ++i)
        recording[i] = static_cast<float>(
            0.1 * std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(i) / RATE));
    return recording;
}

} // namespace

// Other tests lean on these measures, so they must see what is wrong by little.
TEST(Tone, MeasuresASineThroughMissingBlocks)
{
    for (const double frequency : {130.370370, 440.0, 440.127, 445.5, 1704.987}) {
        std::vector<float> recording = sine(frequency);
        std::fill(recording.begin() + 5000, recording.begin() + 5256, 0.0F);
        const auto found = tone::pitch(recording, RATE);
        ASSERT_TRUE(found);
        EXPECT_LT(std::abs(tone::centsBetween(*found, frequency)), 0.01);
        EXPECT_NEAR(tone::amplitudeAt(recording, frequency, RATE), 0.1, 0.001);
    }
}

TEST(Tone, FindsThePitchOfAToneWithPartials)
{
    std::vector<float> rich = sine(441.0);
    for (const double partial : {2.0, 3.0, 5.003})
        std::ranges::transform(rich, sine(441.0 * partial), rich.begin(), std::plus());
    std::fill(rich.begin() + 5000, rich.begin() + 5256, 0.0F);
    for (const double near : {432.0, 441.0, 449.0})
        EXPECT_LT(std::abs(tone::centsBetween(*tone::pitchNear(rich, near, RATE), 441.0)), 0.01) << near;
    EXPECT_FALSE(tone::pitchNear(std::vector<float>(22050), 441.0, RATE));
}

TEST(Tone, TellsTonesApart)
{
    std::vector<float> chord = sine(440.0);
    std::ranges::transform(chord, sine(550.0), chord.begin(), std::plus());
    EXPECT_FALSE(tone::pitch(chord, RATE));
    EXPECT_NEAR(tone::amplitudeAt(chord, 550.0, RATE), 0.1, 0.001);
    EXPECT_LT(tone::amplitudeAt(chord, 660.0, RATE), 0.002);
    EXPECT_NEAR(tone::centsBetween(445.5, 440.0), 21.506, 0.001); // a syntonic comma
}
