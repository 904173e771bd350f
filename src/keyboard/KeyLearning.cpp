#include "keyboard/KeyLearning.h"

#include <utility>

std::optional<KeyLearning::Pair> KeyLearning::pressBall(const OrloRatio& ratio)
{
    mRatio.emplace(ratio);
    return take();
}

std::optional<KeyLearning::Pair> KeyLearning::pressKey(int channel, int key)
{
    mChannel = channel;
    mKey = key;
    return take();
}

std::optional<KeyLearning::Pair> KeyLearning::take()
{
    if (!hasBall() || !hasKey())
        return std::nullopt;
    const Pair pair{mChannel, mKey, *mRatio};
    forget();
    return pair;
}
