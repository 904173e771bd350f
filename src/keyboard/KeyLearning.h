#pragma once

#include "model/OrloRatio.h"

#include <optional>

/// Joins a ball and a key, whichever of them is pressed first. The latest press of either counts.
class KeyLearning
{
public:
    struct Pair
    {
        int channel; // from 1
        int key;
        OrloRatio ratio; // from 1/1 before the transposition
    };

    /// What the press completes, if it does.
    std::optional<Pair> pressBall(const OrloRatio& ratio);
    std::optional<Pair> pressKey(int channel, int key);
    void forget() { *this = {}; }

    bool hasBall() const { return mRatio.has_value(); }
    bool hasKey() const { return mKey >= 0; }

private:
    std::optional<Pair> take();

    std::optional<OrloRatio> mRatio;
    int mChannel = 0;
    int mKey = -1;
};
