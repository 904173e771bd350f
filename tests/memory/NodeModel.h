#pragma once

#include <QtGlobal>

#include <array>
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

    static Ratio times(Ratio a, Ratio b);

    /// Options.
    bool softReset = false;
    bool maintainMacros = false;
    double newRangeOne = 1200.0; // cents, in force after the next glissando reset
    double newRangeTwo = 100.0;

    /// At the beginning of each block.
    void beginBlock();
    void toggle(Ratio ratio, bool evenIfHeld = false);
    void stop(Ratio ratio);
    void stopAll(bool evenIfHeld);
    void hold(bool on);
    void select(Ratio ratio);
    void selectSounding();
    void toggleSelected() { mLater.insert(mLater.end(), selected.begin(), selected.end()); }
    void moveMacro(int macro, double value); // macro from 0
    void moveGliss(int which, double value); // 1 or 2
    void reset(Ratio ratio, bool deselect);
    void resetSelected(bool deselect);
    void resetAll(bool controls, bool deselect);
    void resetGliss(int which); // 0 both
    void changePatch(const std::vector<double>& defaults);

    std::map<Ratio, Note> notes; // sounding or fading
    std::map<Ratio, Node> altered;
    std::set<Ratio> selected;
    std::set<Ratio> held;
    Macros sliders{};
    double slideOne = 0.5;
    double slideTwo = 0.5;
    double baseFrequency = 440.0;

    std::vector<Ratio> sounding() const;

private:
    void start(Ratio ratio);
    double frequencyOf(Ratio ratio, const Node& node) const;
    void retune(Ratio ratio);
    void restoreInPlace(Ratio ratio);

    std::vector<Ratio> mLater;
    std::map<Ratio, Macros> mStarted; // sounding and not altered: the macros of its start
    bool mHolding = false;
    std::vector<double> mDefaults;
    double mRangeOne = 1200.0;
    double mRangeTwo = 100.0;
};
