#pragma once

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <vector>

/// The rules of notes, nodes and sliders, told anew and in another way than the engine's: a node
/// has the values that are heard, selected or not, and a slider adds its movement to those of the
/// selected ones. In double precision. Voices never run short here.
class NodeModel
{
public:
    using Ratio = std::pair<quint64, quint64>; // in lowest terms
    using Macros = std::array<double, 8>;

    struct Node
    {
        Macros macros{};
        double glissOne = 0.5;
        double glissTwo = 0.5;
    };
    /// What the patch knows of the note's voice.
    struct Note
    {
        bool released = false;
        bool frequencyTold = true; // false: it started outside of what may sound
        double frequency = 0.0;    // Hz
        Macros macros{};
    };

    /// Options.
    bool softReset = false;
    bool maintainMacros = false;
    double newRangeOne = 1200.0; // cents, in force after the next glissando reset
    double newRangeTwo = 100.0;

    std::map<Ratio, Note> notes; // sounding or fading
    int starts = 0;              // of notes, so far
    std::map<Ratio, Node> altered;
    std::set<Ratio> selected;
    std::set<Ratio> held;
    Macros sliders{};
    double slideOne = 0.5;
    double slideTwo = 0.5;

    static Ratio times(Ratio a, Ratio b)
    {
        const quint64 n = a.first * b.first;
        const quint64 d = a.second * b.second;
        const quint64 common = std::gcd(n, d);
        return {n / common, d / common};
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
        altered[ratio] = Node{started != mStarted.end() ? started->second : sliders};
    }

    void selectSounding()
    {
        for (const Ratio& ratio : sounding()) {
            if (!selected.contains(ratio))
                select(ratio);
        }
    }

    void toggleSelected() { mLater.insert(mLater.end(), selected.begin(), selected.end()); }

    /// From 0.
    void moveMacro(int macro, double value)
    {
        const auto i = static_cast<size_t>(macro);
        const double movement = value - sliders[i];
        sliders[i] = value;
        for (const Ratio& ratio : selected) {
            double& own = altered[ratio].macros[i];
            own = std::clamp(own + movement, 0.0, 1.0);
            if (const auto note = notes.find(ratio); note != notes.end())
                note->second.macros[i] = own;
        }
    }

    /// 1 or 2.
    void moveGliss(int which, double value)
    {
        double& slide = which == 1 ? slideOne : slideTwo;
        const double movement = value - slide;
        slide = value;
        for (const Ratio& ratio : selected) {
            (which == 1 ? altered[ratio].glissOne : altered[ratio].glissTwo) += movement;
            retune(ratio);
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
            sliders = mDefaults;
            slideOne = slideTwo = 0.5;
        }
        mStarted.clear();
        for (const Ratio& ratio : all)
            softReset ? start(ratio) : restoreInPlace(ratio);
        if (!deselect) {
            for (const Ratio& ratio : again)
                select(ratio);
        }
    }

    /// 1, 2, or 0 for both.
    void resetGliss(int which)
    {
        const auto centre = [which](double& one, double& two) {
            if (which != 2)
                one = 0.5;
            if (which != 1)
                two = 0.5;
        };
        centre(slideOne, slideTwo);
        for (auto& [ratio, node] : altered) {
            centre(node.glissOne, node.glissTwo);
            retune(ratio);
        }
        mRangeOne = newRangeOne;
        mRangeTwo = newRangeTwo;
    }

    void changePatch(const Macros& defaults)
    {
        const std::set<Ratio> all = sounding();
        const std::set<Ratio> again = std::exchange(selected, {});
        stopAll(true);
        mDefaults = defaults;
        if (!maintainMacros)
            sliders = defaults;
        for (const Ratio& ratio : all)
            start(ratio);
        for (const Ratio& ratio : again)
            select(ratio);
    }

private:
    void start(Ratio ratio)
    {
        ++starts;
        const auto node = altered.find(ratio);
        const double frequency = frequencyOf(ratio);
        notes[ratio] = {false, frequency > 20.0 && frequency < 20000.0, frequency,
                        node != altered.end() ? node->second.macros : sliders};
        if (node == altered.end())
            mStarted[ratio] = sliders;
    }

    double frequencyOf(Ratio ratio) const
    {
        const auto found = altered.find(ratio);
        const Node node = found != altered.end() ? found->second : Node{};
        const double cents = 2.0 * (mRangeOne * (node.glissOne - 0.5) + mRangeTwo * (node.glissTwo - 0.5));
        return 440.0 * static_cast<double>(ratio.first) / static_cast<double>(ratio.second)
               * std::pow(2.0, cents / 1200.0);
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
        note.macros = sliders;
        if (!note.released)
            mStarted[ratio] = sliders;
    }

    std::vector<Ratio> mLater;
    std::map<Ratio, Macros> mStarted; // sounding and not altered: the macros of its start
    bool mHolding = false;
    Macros mDefaults{};
    double mRangeOne = 1200.0;
    double mRangeTwo = 100.0;
};
