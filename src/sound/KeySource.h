#pragma once

class PdPlayer;

/// Plays the engine from the audio thread itself: what keys and other inputs want of this block.
class KeySource
{
public:
    virtual ~KeySource() = default;
    /// [audio] Once a block, behind the physical device's commands and before the window's.
    virtual void playInto(PdPlayer& player) = 0;
};
