#pragma once

#include <atomic>

/// Mutes the output without a click: it fades over one block, to silence and back.
class MuteFade
{
public:
    /// [gui] For as long as the caller wants silence. Returns when the output is silent and stays so, or
    /// after a quarter of a second when no callback comes.
    void mute();
    /// [gui] The next block fades in.
    void unmute() { mMuted = false; }
    /// [gui] Mutes while the device changes, whatever the caller wants. True does not return before the
    /// output is silent, as in mute().
    void hold(bool on);
    /// [stopped] The first block of a stream fades in.
    void startSilent() { mGain = 0.0F; }

    /// [any] To be asked once for a block.
    bool isMuted() const { return mMuted || mHeld; }
    /// [any] The last block ended in silence.
    bool isSilent() const { return mSilent; }
    /// [audio] Whether a block that is muted, or not, is the one that fades to silence.
    bool fadesOut(bool muted) const { return muted && mGain > 0.0F; }
    /// [audio] Fades, or silences, the interleaved frames of one block.
    void apply(float* output, unsigned long frames, bool muted);

private:
    void waitForSilence() const;

    std::atomic<bool> mMuted{false}; // by a caller
    std::atomic<bool> mHeld{false};  // while the device changes
    float mGain = 1.0F;              // [audio] at the end of the last block
    std::atomic<bool> mSilent{false};
};
