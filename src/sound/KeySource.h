#pragma once

class PdPlayer;

/// Plays the engine from the audio thread itself: what keys want of this block. Its notes are those of
/// PdPlayerKeys.
class KeySource
{
public:
    /// A source has at most so many notes under way, with those whose key is down and that another
    /// command has ended.
    static constexpr int NOTES = 512;

    virtual ~KeySource() = default;
    /// [audio] Once a block, after the physical device's commands and before the window's.
    virtual void playInto(PdPlayer& player) = 0;
};
