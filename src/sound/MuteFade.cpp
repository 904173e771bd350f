#include "sound/MuteFade.h"

#include "sound/AudioOutput.h"

#include <QElapsedTimer>
#include <QThread>

#include <cstring>

namespace {

// A fade is one block; a callback that does not come is not waited for.
constexpr qint64 FADE_LIMIT_MS = 250;

/// Leads the gain in a straight line, to reach `to` with the last frame.
void applyRamp(float* output, unsigned long frames, float from, float to)
{
    for (unsigned long i = 0; i < frames; ++i) {
        const float gain = from + (to - from) * static_cast<float>(i + 1) / static_cast<float>(frames);
        for (int channel = 0; channel < AudioOutput::CHANNELS; ++channel)
            *output++ *= gain;
    }
}

} // namespace

void MuteFade::mute()
{
    mMuted = true;
    waitForSilence();
}

void MuteFade::hold(bool on)
{
    mHeld = on;
    if (on)
        waitForSilence();
}

void MuteFade::waitForSilence() const
{
    QElapsedTimer timer;
    timer.start();
    while (!mSilent && timer.elapsed() < FADE_LIMIT_MS)
        QThread::msleep(1);
}

void MuteFade::apply(float* output, unsigned long frames, bool muted)
{
    const float gain = muted ? 0.0F : 1.0F;
    if (gain != mGain)
        applyRamp(output, frames, mGain, gain);
    else if (gain == 0.0F)
        std::memset(output, 0, frames * AudioOutput::CHANNELS * sizeof(float));
    mGain = gain;
    mSilent = gain == 0.0F;
}
