// Notes that keys begin. Each has an id of its source, which goes with the note through a soft reset and a
// change of patch, and is lost when another command begins the note anew. So a key can end its own note only.

#include "sound/PdPlayer.h"

#include "model/OrloConstants.h"
#include "sound/AudioLog.h"
#include "sound/KeySource.h"
#include "sound/TemperedRatio.h"
#include "sound/ThreadCheck.h"

namespace {

constexpr int TOO_HIGH = 0;

/// The prime whose switch a ball of this ratio has: the lattice's paths step along their highest prime last.
int highestPrime(const OrloRatio& ratio)
{
    int highest = 1;
    unsigned long long rest[] = {ratio.numerator(), ratio.denominator()};
    for (const int prime : OrloConstants::PRIMES) {
        for (unsigned long long& part : rest) {
            while (prime > 1 && part % static_cast<unsigned long long>(prime) == 0) {
                part /= static_cast<unsigned long long>(prime);
                highest = prime;
            }
        }
    }
    return rest[0] == 1 && rest[1] == 1 ? highest : TOO_HIGH;
}

} // namespace

// ---------------------------------------------------------------- the source

bool PdPlayer::setKeySource(KeySource* source)
{
    ThreadCheck::gui();
    if (!mKeysHaveRoom) { // no block looks at the table without a source
        mKeyTouches.reserve(KeySource::NOTES);
        mKeysHaveRoom = true;
    }
    return mHandOver.runInBlock([this, source] {
        for (const OrloRatio& ratio : soundingNow()) {
            if (const std::uint32_t id = keyOf(ratio))
                endKeyNote(ratio, id);
        }
        endKeysBetweenPatches();
        mKeyTouches.clear();
        mKeySource = source;
    });
}

/// Those that would come back with the next patch.
void PdPlayer::endKeysBetweenPatches()
{
    SoundingRatios comingBack; // the loop removes from the list
    for (const OrloRatio& ratio : cachedSounding) {
        if (keyOf(ratio) != 0 && comingBack.size() < comingBack.capacity())
            comingBack.push_back(ratio);
    }
    for (const OrloRatio& ratio : comingBack)
        endKeyNote(ratio, keyOf(ratio));
}

// ---------------------------------------------------------------- pitch

std::optional<OrloRatio> PdPlayer::keyPitch(const OrloRatio& relative) const
{
    ThreadCheck::audio();
    if (relative.numerator() == 0)
        return std::nullopt;
    const int prime = highestPrime(relative);
    if (prime == TOO_HIGH || !mPrimeEnabled[prime])
        return std::nullopt;
    if (!mTransposition.fitsWhenMultipliedWith(relative)) {
        AudioLog::rationed("PdPlayer: the pitch of a key, %1/%2, does not fit and stays silent.",
                           {relative.numerator(), relative.denominator()});
        return std::nullopt;
    }
    OrloRatio ratio(mTransposition);
    ratio *= relative;
    return ratio;
}

std::optional<OrloRatio> PdPlayer::keyPitch(double tempered) const
{
    ThreadCheck::audio();
    const OrloRatio ratio = temperedratio::of(tempered * static_cast<double>(mTransposition.numerator())
                                              / static_cast<double>(mTransposition.denominator()));
    return ratio.numerator() == 0 ? std::nullopt : std::optional(ratio);
}

// ---------------------------------------------------------------- on and off

bool PdPlayer::isNoteOn(const OrloRatio& ratio) const
{
    ThreadCheck::audio();
    const Voice* voice = mVoices.find(ratio);
    return (voice && !voice->released) || cachedSounding.contains(ratio); // that one comes back
}

std::uint32_t PdPlayer::keyOf(const OrloRatio& ratio) const
{
    const KeyTouch* touch = touchOf(ratio);
    return touch && isNoteOn(ratio) ? touch->id : 0;
}

const KeyTouch* PdPlayer::touchOf(const OrloRatio& ratio) const
{
    return mKeySource ? mKeyTouches.find(ratio) : nullptr;
}

KeyTouch* PdPlayer::touchOf(const OrloRatio& ratio, std::uint32_t id)
{
    const KeyTouch* touch = touchOf(ratio);
    return touch && touch->id == id ? &mKeyTouches[ratio] : nullptr;
}

/// Whatever sounds at this ratio from now on is no key's.
void PdPlayer::forgetKey(const OrloRatio& ratio)
{
    if (mKeySource)
        mKeyTouches.remove(ratio);
}

void PdPlayer::noteOnOfNoKey(const OrloRatio& ratio)
{
    forgetKey(ratio);
    noteOn(ratio);
}

void PdPlayer::beginKeyNote(const OrloRatio& ratio, const KeyTouch& touch)
{
    ThreadCheck::audio();
    KeyTouch& kept = mKeyTouches[ratio];
    kept = touch;
    if (kept.macros[0] == KeyTouch::OF_SLIDER)
        kept.macros[0] = touch.velocity;
    noteOn(ratio);
}

void PdPlayer::endKeyNote(const OrloRatio& ratio, std::uint32_t id)
{
    ThreadCheck::audio();
    if (!touchOf(ratio, id))
        return;
    forgetKey(ratio);
    if (mHoldActive && heldNodes.contains(ratio))
        return;
    cachedSounding.remove(ratio);
    const Voice* voice = mVoices.find(ratio);
    if (voice && !voice->released)
        noteOff(ratio);
}

// ---------------------------------------------------------------- while it sounds

void PdPlayer::bendKeyNotes(std::span<const KeyBend> bends)
{
    ThreadCheck::audio();
    clearInstruction();
    for (const KeyBend& bend : bends) {
        KeyTouch* touch = touchOf(bend.ratio, bend.id);
        if (!touch)
            continue;
        touch->bend = bend.factor;
        Voice* voice = mVoices.find(bend.ratio);
        if (!voice || voice->released)
            continue;
        voice->bend = bend.factor;
        if (voice->frequency == 0.0F) // silent, and the external output has no note to bend
            continue;
        const float frequency = glidedFrequency(*voice);
        alterFrequency(frequency, static_cast<float>(voice->voice));
        if (portOpen())
            addToInstruction(voice->voice, frequency, -1.0F);
    }
    sendBends();
}

void PdPlayer::setKeyMacro(const OrloRatio& ratio, std::uint32_t id, int macro, float value)
{
    ThreadCheck::audio();
    KeyTouch* touch = touchOf(ratio, id);
    if (!touch)
        return;
    const auto index = static_cast<std::size_t>(macro - 1);
    touch->macros.at(index) = value;
    const Voice* voice = mVoices.find(ratio);
    if (!voice || voice->released)
        return;
    mNodes.setSoundingMacro(ratio, index, value);
    applyMacroValue(macro, value, static_cast<float>(voice->voice));
}
