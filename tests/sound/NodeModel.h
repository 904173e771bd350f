#pragma once

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <vector>

/// The rules of commands, voices, nodes and sliders, told anew with plain containers. In single precision
/// and step by step as the rules have it, so that any value of a slider leads to the same numbers.
class NodeModel
{
public:
    using Ratio = std::pair<quint64, quint64>; // in lowest terms; 0/1 is no pitch
    /// Eight macros, then the coarse glissando and the fine one.
    using Values = std::array<float, 10>;
    static constexpr size_t GLISS = 8;

    struct Command
    {
        int type;
        float value = 1.0F;
        Ratio ratio{0, 1};
        std::vector<int> path; // of a press, at most six steps
    };

    /// A slot, and what the patch was told of it last.
    struct Voice
    {
        Ratio ratio;
        int start = 0; // which of all starts; 0: free
        bool released = false;
        float gate = -1.0F;
        float frequency = 0.0F; // Hz
        float heard = 0.0F;     // Hz, what the patch made of it; 0: silent
        float base = 0.0F;      // Hz of 1/1 that belongs to it
        float volume = 0.0F;
        std::array<float, GLISS> macros{};
    };

    /// What the engine did, in its order. The rules leave open in which order it takes the notes that sound.
    using Order = std::deque<std::pair<Ratio, size_t>>; // with the slot, of starts
    struct Heard
    {
        Order starts;
        Order selections;
    };

    /// Options.
    bool softReset = false;
    bool maintainMacros = false;
    std::array<float, 2> newRanges{1200.0F, 100.0F}; // cents, in force after the next glissando reset

    Heard heard;
    bool heardAsTold = true; // false after a start or a selection that the rules do not give
    Ratio lattice{1, 1};     // transposition that the lattice has published
    std::vector<Voice> voices;
    std::map<Ratio, Values> altered; // relative to the sliders while selected
    std::vector<Ratio> selected;
    std::set<Ratio> held;
    Ratio transposition{1, 1};
    float masterVolume = 0.8F;

    /// A default below 0 is none: its slider stays where it is.
    NodeModel(size_t slots, const std::array<float, GLISS>& defaults)
        : voices(slots)
        , mDefaults(defaults)
    {
        takeDefaults();
        mPrimes.fill(true);
    }

    std::set<Ratio> sounding() const
    {
        std::set<Ratio> ratios;
        for (const auto& [ratio, slot] : mNotes) {
            if (!voices[slot].released)
                ratios.insert(ratio);
        }
        return ratios;
    }

    /// The device's commands come first, and what was to be toggled later before the screen's.
    void runBlock(const std::vector<Command>& device, const std::vector<Command>& screen)
    {
        const std::vector<Ratio> now = std::exchange(mLater, {});
        for (const Command& command : device)
            run(command);
        for (const Ratio& ratio : now)
            toggle(ratio, false);
        for (const Command& command : screen)
            run(command);
    }

    /// After a change of 1/1 each note goes where one that is struck now would be.
    void retuneToBase()
    {
        for (const auto& [ratio, slot] : mNotes) {
            Voice& voice = voices[slot];
            const float frequency = glided(ratio);
            if (voice.base == mBase)
                continue;
            if (voice.heard > 0.0F && (voice.released || isPitch(frequency)))
                glide(voice, frequency), voice.base = mBase;
            else if (!voice.released && voice.heard == 0.0F)
                strike(voice);
            else if (!voice.released)
                voice.gate = voice.heard = 0.0F, voice.base = mBase;
        }
    }

    /// The patch reports that a voice has faded.
    void end(size_t slot)
    {
        Voice& voice = voices[slot];
        if (!voice.released)
            return;
        if (const auto note = mNotes.find(voice.ratio); note != mNotes.end() && note->second == slot)
            mNotes.erase(note);
        voice.released = false;
        voice.start = 0;
    }

    void closePatch()
    {
        mAgain = sounding();
        mSelectedAgain = selected;
        stopAll(true);
        deselectAll();
    }

    /// What was pressed and selected without a patch comes beside what was before.
    void openPatch()
    {
        const std::vector<Ratio> between = selected;
        deselectAll();
        if (!maintainMacros)
            takeDefaults();
        selectEach(between);
        mAgain.merge(sounding());
        stopAll(true);
        startAll(mAgain);
        std::erase_if(mSelectedAgain, [this](Ratio ratio) { return isSelected(ratio); });
        selectEach(mSelectedAgain);
    }

private:
    void run(const Command& command)
    {
        const auto& [type, value, ratio, path] = command;
        if (!std::isfinite(value))
            return; // dropped, whatever it means
        switch (type) {
        case 0: return press(path);
        case 1:
        case 2: return stopAll(type == 2);
        case 3: return deselectAll();
        case 4:
        case 5: return resetSelected(type == 5);
        case 6:
        case 7:
        case 8:
        case 9: return resetAll(type >= 8, type % 2 == 1);
        case 10:
        case 11: return resetGliss(type - 9);
        case 12: return resetGliss(0);
        case 13: mLater.insert(mLater.end(), selected.begin(), selected.end()); return;
        case 14: return selectSounding();
        case 15: return transpose(value);
        case 16: return setFinite(mVoiceVolume, mVoiceVolume + value);
        case 17: return setFinite(mVoiceVolume, value);
        case 18: return setFinite(masterVolume, masterVolume + value);
        case 19: return setFinite(masterVolume, value);
        case 20:
            mMono = value > 0.5F;
            mMonoSlot = voices.size();
            return;
        case 22: mBase = value; return;
        case 23:
            if (value >= 0.0F && value < 32.0F)
                mPrimes.at(static_cast<size_t>(value)) ^= true;
            return;
        case 34: return ratio.first == 0 ? void() : toggle(ratio, value == 2.0F);
        case 35: return stop(ratio);
        case 36: transposition = product(transposition, ratio).value_or(transposition); return;
        case 37:
            if (const auto absolute = product(lattice, ratio))
                select(*absolute);
            return;
        case 38:
            if (const auto absolute = product(lattice, ratio))
                reset(*absolute, value != 0.0F);
            return;
        case 40:
            mHolding = value == 1.0F;
            held = mHolding ? sounding() : std::set<Ratio>();
            return;
        default:
            if (type >= 24 && type <= 33)
                slide(static_cast<size_t>(type - 24), value);
        } // all others signal only, or are none
    }

    // ---------------------------------------------------------------- pitches

    /// Nothing for 0 and for what does not fit in 64 bits.
    static std::optional<Ratio> product(Ratio a, Ratio b)
    {
        const quint64 across = std::gcd(a.first, b.second);
        const quint64 back = std::gcd(b.first, a.second);
        constexpr quint64 most = ~quint64{0};
        const auto fits = [](quint64 x, quint64 y) { return y == 0 || x <= most / y; };
        if (b.first == 0 || !fits(a.first / across, b.first / back)
            || !fits(a.second / back, b.second / across))
            return std::nullopt;
        return Ratio{a.first / across * (b.first / back), a.second / back * (b.second / across)};
    }

    /// Of a prime above the octave: 3/2 for 3, 2/3 for -3. Nothing for what is no prime of the lattice.
    static std::optional<Ratio> stepRatio(int step)
    {
        static const std::set<int> primes{2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};
        if (!primes.contains(std::abs(step)))
            return std::nullopt;
        quint64 below = 1;
        while (2 * below < static_cast<quint64>(std::abs(step)))
            below *= 2;
        const Ratio up{static_cast<quint64>(std::abs(step)), below};
        return step > 0 ? up : Ratio{up.second, up.first};
    }

    void press(const std::vector<int>& path)
    {
        Ratio relative{1, 1};
        for (const int step : path) {
            if (!stepRatio(step))
                return;
            relative = *product(relative, *stepRatio(step));
        }
        if (!mPrimes.at(path.empty() ? 1 : static_cast<size_t>(std::abs(path.back()))))
            return;
        if (const auto ratio = product(transposition, relative))
            toggle(*ratio, true);
    }

    void transpose(float value)
    {
        // Rounded, then the nearest that 32 bits hold, then its lowest byte.
        const float rounded = std::trunc(value + std::copysign(0.5F, value));
        const auto step =
            static_cast<qint8>(static_cast<int>(std::clamp(rounded, -0x7fffff80p0F, 0x7fffff80p0F)));
        const Ratio by = stepRatio(step).value_or(Ratio{1, 1});
        transposition = step == 0 ? by : product(transposition, by).value_or(transposition);
    }

    float frequencyOf(Ratio ratio) const
    {
        return static_cast<float>(ratio.first) / static_cast<float>(ratio.second) * mBase;
    }

    static bool isPitch(float frequency) { return frequency > 20.0F && frequency < 20000.0F; }

    float glided(Ratio ratio) const
    {
        const Values values = valuesOf(ratio);
        return frequencyOf(ratio) * factor(0, values[GLISS]) * factor(1, values[GLISS + 1]);
    }

    float factor(size_t which, float slider) const
    {
        const double cents = static_cast<double>(mRanges[which]) * 2.0 * (static_cast<double>(slider) - 0.5);
        return static_cast<float>(std::exp2(cents / 1200.0));
    }

    // ---------------------------------------------------------------- voices

    Voice* find(Ratio ratio)
    {
        const auto note = mNotes.find(ratio);
        return note == mNotes.end() ? nullptr : &voices[note->second];
    }

    void toggle(Ratio ratio, bool evenIfHeld)
    {
        const Voice* voice = find(ratio);
        if (!voice || voice->released)
            start(ratio);
        else if (!mHolding || evenIfHeld || !held.contains(ratio))
            stop(ratio);
    }

    void start(Ratio ratio)
    {
        ++mStarts;
        size_t slot = 0;
        while (slot < voices.size() && voices[slot].start != 0)
            ++slot;
        if (slot == voices.size()) {
            slot = static_cast<size_t>(
                std::ranges::min_element(voices, {}, [](const Voice& voice) { return voice.start; })
                - voices.begin());
            if (!voices[slot].released)
                stop(voices[slot].ratio);
            end(slot);
        }
        if (mMono) {
            if (mMonoSlot < voices.size() && voices[mMonoSlot].start != 0 && !voices[mMonoSlot].released)
                stop(voices[mMonoSlot].ratio);
            mMonoSlot = slot;
        }
        expect(heard.starts, ratio, slot);
        Voice& voice = voices[slot];
        voice.ratio = ratio;
        voice.start = mStarts;
        voice.released = false;
        voice.heard = 0.0F;
        mNotes[ratio] = slot;
        strike(voice);
    }

    void strike(Voice& voice)
    {
        const Ratio ratio = voice.ratio;
        voice.base = mBase;
        const Values values = valuesOf(ratio);
        std::copy_n(values.begin(), GLISS, voice.macros.begin());
        const float frequency = glided(ratio);
        if (!altered.contains(ratio))
            mStarted[ratio] = centred(mSliders);
        if (isPitch(frequency)) {
            voice.frequency = voice.heard = frequency;
            voice.volume = mVoiceVolume;
            voice.gate = 1.0F;
        }
    }

    void stop(Ratio ratio)
    {
        Voice* voice = find(ratio);
        if (!voice)
            return;
        voice->released = true;
        voice->gate = 0.0F;
        mStarted.erase(ratio);
    }

    void stopAll(bool evenIfHeld)
    {
        for (const auto& [ratio, slot] : mNotes) {
            if (evenIfHeld || !held.contains(ratio))
                stop(ratio);
        }
    }

    void startAll(const std::set<Ratio>& ratios)
    {
        for (const Ratio& ratio : inHeardOrder(ratios, heard.starts))
            start(ratio);
    }

    std::vector<Ratio> inHeardOrder(const std::set<Ratio>& ratios, const Order& order)
    {
        std::vector<Ratio> list;
        for (size_t i = 0; i < ratios.size() && i < order.size(); ++i)
            list.push_back(order[i].first);
        heardAsTold = std::set<Ratio>(list.begin(), list.end()) == ratios && heardAsTold;
        return list;
    }

    void expect(Order& order, Ratio ratio, std::optional<size_t> slot = {})
    {
        const auto [first, given] = order.empty() ? Order::value_type{} : order.front();
        heardAsTold = first == ratio && given == slot.value_or(given) && heardAsTold;
        if (!order.empty())
            order.pop_front();
    }

    // ---------------------------------------------------------------- nodes

    bool isSelected(Ratio ratio) const { return std::ranges::count(selected, ratio) > 0; }

    /// Of a start: what the voice is to be told.
    Values valuesOf(Ratio ratio) const
    {
        const auto node = altered.find(ratio);
        if (node == altered.end())
            return centred(mSliders);
        return isSelected(ratio) ? added(node->second, mSliders, 1.0F) : node->second;
    }

    static Values added(Values values, const Values& others, float sign)
    {
        for (size_t i = 0; i < values.size(); ++i)
            values[i] += sign * others[i];
        return values;
    }

    static Values centred(Values values, int which = 0)
    {
        if (which != 2)
            values[GLISS] = 0.5F;
        if (which != 1)
            values[GLISS + 1] = 0.5F;
        return values;
    }

    void select(Ratio ratio)
    {
        if (std::erase(selected, ratio) > 0) {
            altered[ratio] = added(altered[ratio], mSliders, 1.0F);
            return;
        }
        expect(heard.selections, ratio);
        selected.push_back(ratio);
        if (!altered.contains(ratio)) {
            const auto started = mStarted.find(ratio);
            altered[ratio] = started != mStarted.end() ? started->second : centred(mSliders);
        }
        altered[ratio] = added(altered[ratio], mSliders, -1.0F);
    }

    void selectEach(const std::vector<Ratio>& ratios)
    {
        for (const Ratio& ratio : ratios)
            select(ratio);
    }

    void selectSounding()
    {
        std::set<Ratio> ratios = sounding();
        for (const Ratio& ratio : selected)
            ratios.erase(ratio);
        selectEach(inHeardOrder(ratios, heard.selections));
    }

    void deselectAll() { selectEach(std::vector<Ratio>(selected)); }

    // ---------------------------------------------------------------- sliders and resets

    void slide(size_t which, float value)
    {
        mSliders[which] = value;
        for (const Ratio& ratio : selected) {
            Voice* voice = find(ratio);
            if (which >= GLISS) {
                if (voice)
                    glide(*voice, glided(ratio));
                continue;
            }
            float& own = altered[ratio][which];
            const float sum = own + value;
            const float effective = std::clamp(sum, 0.0F, 1.0F);
            if (sum <= 0.0F || sum >= 1.0F)
                own = effective - value;
            if (voice)
                voice->macros[which] = effective;
        }
    }

    void reset(Ratio ratio, bool deselect)
    {
        Voice* voice = find(ratio);
        const bool wasSelected = isSelected(ratio);
        if (softReset && voice)
            stop(ratio);
        if (wasSelected)
            select(ratio);
        if (altered.erase(ratio) > 0 && voice && !softReset)
            retune(ratio, centred({}));
        if (voice && !softReset)
            restoreInPlace(*voice);
        if (wasSelected && !deselect)
            select(ratio);
        if (softReset && voice)
            start(ratio);
    }

    void resetSelected(bool deselect)
    {
        for (const Ratio& ratio : std::vector<Ratio>(selected))
            reset(ratio, deselect);
    }

    void resetAll(bool controls, bool deselect)
    {
        const std::set<Ratio> all = sounding();
        const std::vector<Ratio> again = selected;
        if (softReset)
            stopAll(true);
        deselectAll();
        for (const auto& [ratio, node] : altered) {
            if (!softReset)
                retune(ratio, centred({}));
        }
        altered.clear();
        if (controls) {
            takeDefaults();
            mSliders = centred(mSliders);
        }
        mStarted.clear();
        if (softReset)
            startAll(all);
        else
            for (const Ratio& ratio : all)
                restoreInPlace(voices[mNotes.at(ratio)]);
        if (!deselect)
            selectEach(again);
    }

    /// 1, 2, or 0 for both.
    void resetGliss(int which)
    {
        const std::vector<Ratio> again = selected;
        deselectAll();
        mSliders = centred(mSliders, which);
        for (auto& [ratio, node] : altered) {
            node = centred(node, which);
            retune(ratio, node);
        }
        mRanges = newRanges;
        selectEach(again);
    }

    void retune(Ratio ratio, const Values& values)
    {
        if (Voice* voice = find(ratio))
            glide(*voice, factor(1, values[GLISS + 1]) * factor(0, values[GLISS]) * mBase
                              * (static_cast<float>(ratio.first) / static_cast<float>(ratio.second)));
    }

    /// The patch stays where it is beyond its bounds.
    void glide(Voice& voice, float frequency)
    {
        voice.frequency = frequency;
        if (voice.heard > 0.0F && frequency >= 1.0F && frequency < 20001.0F) {
            voice.heard = frequency;
            if (voice.base != mBase)
                voice.base = 0.0F;
        }
    }

    void restoreInPlace(Voice& voice)
    {
        std::copy_n(mSliders.begin(), GLISS, voice.macros.begin());
        if (!voice.released)
            mStarted[voice.ratio] = centred(mSliders);
    }

    void takeDefaults()
    {
        for (size_t i = 0; i < GLISS; ++i)
            mSliders[i] = mDefaults[i] < 0.0F ? mSliders[i] : mDefaults[i];
    }

    static void setFinite(float& volume, float value) { volume = std::isfinite(value) ? value : volume; }

    std::map<Ratio, size_t> mNotes; // sounding or fading: the latest slot
    int mStarts = 0;
    std::vector<Ratio> mLater;
    std::map<Ratio, Values> mStarted; // sounding and not altered: the macros of its start
    std::set<Ratio> mAgain;           // in the next patch
    std::vector<Ratio> mSelectedAgain;
    bool mHolding = false;
    bool mMono = false;
    size_t mMonoSlot = voices.size(); // none
    std::array<bool, 32> mPrimes;
    float mVoiceVolume = 1.0F;
    float mBase = 440.0F; // Hz
    const std::array<float, GLISS> mDefaults;
    Values mSliders{0, 0, 0, 0, 0, 0, 0, 0, 0.5F, 0.5F};
    std::array<float, 2> mRanges{1200.0F, 100.0F};
};
