// The primes of the player: which are enabled, and the press of a ball, which a disabled one leaves silent.

#include "sound/PdPlayer.h"

#include "model/OrloPath.h"
#include "sound/AudioLog.h"
#include "sound/ThreadCheck.h"

#include <array>
#include <charconv>

namespace {

/// The text of OrloPath::toString, without an allocation. Empty for the root, which always fits.
std::array<char, 64> pathText(const OrloPath& path)
{
    std::array<char, 64> text{};
    char* end = text.data();
    for (const signed char* step = path.toCharArray(); *step != 0; ++step) {
        *end++ = '/';
        end = std::to_chars(end, text.data() + text.size() - 1, static_cast<int>(*step)).ptr;
    }
    return text;
}

} // namespace

void PdPlayer::toggleByPath(const OrloPath& path)
{
    if (!path.isValid())
        return;
    // Only the last step counts: a disabled prime in the middle of a path does not stop the note.
    const int length = path.length();
    const int prime = length == 0 ? 1 : qAbs(static_cast<int>(path.toCharArray()[length - 1]));
    if (prime >= mPrimeEnabled.CAPACITY || !mPrimeEnabled[prime])
        return;
    const OrloRatio relative(OrloRatio::productOfSteps(path.toCharArray()));
    if (!mTransposition.fitsWhenMultipliedWith(relative)) {
        AudioLog::rationed("PdPlayer: the pitch of \"%1\" does not fit and stays silent.",
                           {pathText(path).data()});
        return;
    }
    OrloRatio ratio(mTransposition);
    ratio *= relative;
    const Voice* voice = mVoices.find(ratio);
    if (!voice || voice->released)
        noteOnOfNoKey(ratio);
    else
        noteOff(ratio); // the press of a ball overrides hold
}

void PdPlayer::togglePrimeEnabled(int prime)
{
    ThreadCheck::audio();
    mPrimeEnabled[prime] = !mPrimeEnabled[prime];
    emit primeEnabledToggled(prime, mPrimeEnabled[prime]);
}
