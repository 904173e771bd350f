#pragma once

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <vector>

/// The rules of notes, nodes and sliders, told anew and in another way than the engine's: a node
/// has the values that are heard, selected or not, and a slider adds its movement to those of the
/// selected ones. In double precision. Voices never run short here.
class NodeModel
{
public:
    using Ratio = std::pair<quint64, quint64>; // in lowest terms
    /// On the sliders' scale: eight macros, then the coarse glissando and the fine one.
    using Values = std::array<double, 10>;
    static constexpr size_t GLISS = 8;

    /// What the patch knows of the note's voice.
    struct Note
    {
        bool released = false;
        bool frequencyTold; // false: it started outside of what may sound
        double frequency;   // Hz
        Values values;      // macros only
    };

    /// Options.
    bool softReset = false;
    bool maintainMacros = false;
    std::array<double, 2> newRanges{1200.0, 100.0}; // cents, in force after the next glissando reset

    std::map<Ratio, Note> notes; // sounding or fading
    int starts = 0;              // of notes, so far
    std::map<Ratio, Values> altered;
    std::set<Ratio> selected;
    std::set<Ratio> held;

    /// A default below 0 is none: its slider stays where it is.
    explicit NodeModel(const Values& defaults)
        : mDefaults(defaults)
    {
        takeDefaults();
    }

    std::set<Ratio> sounding() const
    {
        std::set<Ratio> ratios;
        for (const auto& [ratio, note] : notes) {
            if (!note.released)
                ratios.insert(ratio);
        }
        return ratios;
    }

    /// At the beginning of each block.
    void beginBlock()
    {
        for (const Ratio& ratio : std::exchange(mLater, {}))
            toggle(ratio);
    }

    void toggle(Ratio ratio, bool evenIfHeld = false)
    {
        const auto note = notes.find(ratio);
        if (note == notes.end() || note->second.released)
            start(ratio);
        else if (!mHolding || evenIfHeld || !held.contains(ratio))
            stop(ratio);
    }

    void stop(Ratio ratio)
    {
        const auto note = notes.find(ratio);
        if (note == notes.end())
            return;
        note->second.released = true;
        mStarted.erase(ratio);
    }

    void stopAll(bool evenIfHeld)
    {
        for (const Ratio& ratio : sounding()) {
            if (evenIfHeld || !held.contains(ratio))
                stop(ratio);
        }
    }

    void hold(bool on)
    {
        mHolding = on;
        held = on ? sounding() : std::set<Ratio>();
    }

    void select(Ratio ratio)
    {
        if (selected.erase(ratio) > 0)
            return; // what is heard stays
        selected.insert(ratio);
        if (altered.contains(ratio))
            return;
        const auto started = mStarted.find(ratio);
        altered[ratio] = started != mStarted.end() ? started->second : centred(mSliders);
    }

    void selectAll(const std::set<Ratio>& ratios)
    {
        for (const Ratio& ratio : ratios) {
            if (!selected.contains(ratio))
                select(ratio);
        }
    }

    void toggleSelected() { mLater.insert(mLater.end(), selected.begin(), selected.end()); }

    /// Any of the ten sliders.
    void slide(size_t which, double value)
    {
        const double movement = value - mSliders[which];
        mSliders[which] = value;
        for (const Ratio& ratio : selected) {
            double& own = altered[ratio][which];
            own += movement;
            if (which >= GLISS) {
                retune(ratio);
                continue;
            }
            own = std::clamp(own, 0.0, 1.0);
            if (const auto note = notes.find(ratio); note != notes.end())
                note->second.values[which] = own;
        }
    }

    void reset(Ratio ratio, bool deselect)
    {
        const bool hasVoice = notes.contains(ratio);
        const bool wasAltered = altered.erase(ratio) > 0;
        const bool wasSelected = selected.erase(ratio) > 0;
        if (hasVoice && softReset) {
            stop(ratio);
        } else if (hasVoice) {
            if (wasAltered)
                retune(ratio);
            restoreInPlace(ratio);
        }
        if (wasSelected && !deselect)
            select(ratio);
        if (hasVoice && softReset)
            start(ratio);
    }

    void resetSelected(bool deselect)
    {
        for (const Ratio& ratio : std::set<Ratio>(selected))
            reset(ratio, deselect);
    }

    void resetAll(bool controls, bool deselect)
    {
        const std::set<Ratio> all = sounding();
        const std::set<Ratio> again = std::exchange(selected, {});
        if (softReset)
            stopAll(true);
        for (const auto& [ratio, node] : std::exchange(altered, {})) {
            if (!softReset)
                retune(ratio);
        }
        if (controls) {
            takeDefaults();
            mSliders = centred(mSliders);
        }
        mStarted.clear();
        for (const Ratio& ratio : all)
            softReset ? start(ratio) : restoreInPlace(ratio);
        if (!deselect)
            selectAll(again);
    }

    /// 1, 2, or 0 for both.
    void resetGliss(int which)
    {
        mSliders = centred(mSliders, which);
        for (auto& [ratio, node] : altered) {
            node = centred(node, which);
            retune(ratio);
        }
        mRanges = newRanges;
    }

    void changePatch()
    {
        const std::set<Ratio> all = sounding();
        const std::set<Ratio> again = std::exchange(selected, {});
        stopAll(true);
        if (!maintainMacros)
            takeDefaults();
        for (const Ratio& ratio : all)
            start(ratio);
        selectAll(again);
    }

private:
    void takeDefaults()
    {
        for (size_t i = 0; i < GLISS; ++i)
            mSliders[i] = mDefaults[i] < 0.0 ? mSliders[i] : mDefaults[i];
    }

    static Values centred(Values values, int which = 0)
    {
        if (which != 2)
            values[GLISS] = 0.5;
        if (which != 1)
            values[GLISS + 1] = 0.5;
        return values;
    }

    Values valuesOf(Ratio ratio) const
    {
        const auto node = altered.find(ratio);
        return node != altered.end() ? node->second : centred(mSliders);
    }

    double frequencyOf(Ratio ratio) const
    {
        const Values values = valuesOf(ratio);
        const double cents =
            2.0 * mRanges[0] * (values[GLISS] - 0.5) + 2.0 * mRanges[1] * (values[GLISS + 1] - 0.5);
        return 440.0 * static_cast<double>(ratio.first) / static_cast<double>(ratio.second)
               * std::pow(2.0, cents / 1200.0);
    }

    void start(Ratio ratio)
    {
        ++starts;
        const double frequency = frequencyOf(ratio);
        notes[ratio] = {false, frequency > 20.0 && frequency < 20000.0, frequency, valuesOf(ratio)};
        if (!altered.contains(ratio))
            mStarted[ratio] = centred(mSliders);
    }

    void retune(Ratio ratio)
    {
        const auto note = notes.find(ratio);
        if (note == notes.end())
            return;
        note->second.frequency = frequencyOf(ratio);
        note->second.frequencyTold = true;
    }

    void restoreInPlace(Ratio ratio)
    {
        Note& note = notes[ratio];
        note.values = mSliders;
        if (!note.released)
            mStarted[ratio] = centred(mSliders);
    }

    std::vector<Ratio> mLater;
    std::map<Ratio, Values> mStarted; // sounding and not altered: the macros of its start
    bool mHolding = false;
    const Values mDefaults;
    Values mSliders{0, 0, 0, 0, 0, 0, 0, 0, 0.5, 0.5};
    std::array<double, 2> mRanges{1200.0, 100.0};
};
