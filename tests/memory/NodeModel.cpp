#include "memory/NodeModel.h"

#include <algorithm>
#include <cmath>
#include <numeric>

NodeModel::Ratio NodeModel::times(Ratio a, Ratio b)
{
    const quint64 n = a.first * b.first;
    const quint64 d = a.second * b.second;
    const quint64 common = std::gcd(n, d);
    return {n / common, d / common};
}

std::vector<NodeModel::Ratio> NodeModel::sounding() const
{
    std::vector<Ratio> list;
    for (const auto& [ratio, note] : notes) {
        if (!note.released)
            list.push_back(ratio);
    }
    return list;
}

double NodeModel::frequencyOf(Ratio ratio, const Node& node) const
{
    const double cents = 2.0 * mRangeOne * (node.glissOne - 0.5) + 2.0 * mRangeTwo * (node.glissTwo - 0.5);
    return baseFrequency * static_cast<double>(ratio.first) / static_cast<double>(ratio.second)
           * std::pow(2.0, cents / 1200.0);
}

void NodeModel::beginBlock()
{
    for (const Ratio& ratio : std::exchange(mLater, {}))
        toggle(ratio);
}

// ---------------------------------------------------------------- notes

void NodeModel::start(Ratio ratio)
{
    const auto node = altered.find(ratio);
    Note note;
    note.macros = node != altered.end() ? node->second.macros : sliders;
    note.frequency = frequencyOf(ratio, node != altered.end() ? node->second : Node{});
    note.frequencyTold = note.frequency > 20.0 && note.frequency < 20000.0;
    notes[ratio] = note;
    if (node == altered.end())
        mStarted[ratio] = sliders;
}

void NodeModel::stop(Ratio ratio)
{
    const auto note = notes.find(ratio);
    if (note == notes.end())
        return;
    note->second.released = true;
    mStarted.erase(ratio);
}

void NodeModel::toggle(Ratio ratio, bool evenIfHeld)
{
    const auto note = notes.find(ratio);
    if (note == notes.end() || note->second.released)
        start(ratio);
    else if (!mHolding || evenIfHeld || !held.contains(ratio))
        stop(ratio);
}

void NodeModel::stopAll(bool evenIfHeld)
{
    for (const Ratio& ratio : sounding()) {
        if (evenIfHeld || !held.contains(ratio))
            stop(ratio);
    }
}

void NodeModel::hold(bool on)
{
    mHolding = on;
    held.clear();
    if (on) {
        const std::vector<Ratio> all = sounding();
        held.insert(all.begin(), all.end());
    }
}

// ---------------------------------------------------------------- nodes

void NodeModel::select(Ratio ratio)
{
    if (selected.erase(ratio) > 0)
        return; // what is heard stays
    selected.insert(ratio);
    if (altered.contains(ratio))
        return;
    const auto started = mStarted.find(ratio);
    altered[ratio] = Node{started != mStarted.end() ? started->second : sliders};
}

void NodeModel::selectSounding()
{
    for (const Ratio& ratio : sounding()) {
        if (!selected.contains(ratio))
            select(ratio);
    }
}

void NodeModel::moveMacro(int macro, double value)
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

void NodeModel::retune(Ratio ratio)
{
    const auto note = notes.find(ratio);
    if (note == notes.end())
        return;
    const auto node = altered.find(ratio);
    note->second.frequency = frequencyOf(ratio, node != altered.end() ? node->second : Node{});
    note->second.frequencyTold = true;
}

void NodeModel::moveGliss(int which, double value)
{
    double& slide = which == 1 ? slideOne : slideTwo;
    const double movement = value - slide;
    slide = value;
    for (const Ratio& ratio : selected) {
        (which == 1 ? altered[ratio].glissOne : altered[ratio].glissTwo) += movement;
        retune(ratio);
    }
}

void NodeModel::restoreInPlace(Ratio ratio)
{
    Note& note = notes[ratio];
    note.macros = sliders;
    if (!note.released)
        mStarted[ratio] = sliders;
}

void NodeModel::reset(Ratio ratio, bool deselect)
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

void NodeModel::resetSelected(bool deselect)
{
    for (const Ratio& ratio : std::set<Ratio>(selected))
        reset(ratio, deselect);
}

void NodeModel::resetAll(bool controls, bool deselect)
{
    const std::vector<Ratio> all = sounding();
    const std::set<Ratio> again = std::exchange(selected, {});
    if (softReset)
        stopAll(true);
    for (const auto& [ratio, node] : std::exchange(altered, {})) {
        if (!softReset)
            retune(ratio);
    }
    if (controls) {
        std::copy(mDefaults.begin(), mDefaults.end(), sliders.begin());
        slideOne = slideTwo = 0.5;
    }
    mStarted.clear();
    for (const Ratio& ratio : all) {
        if (softReset)
            start(ratio);
        else
            restoreInPlace(ratio);
    }
    if (!deselect) {
        for (const Ratio& ratio : again)
            select(ratio);
    }
}

void NodeModel::resetGliss(int which)
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

void NodeModel::changePatch(const std::vector<double>& defaults)
{
    const std::vector<Ratio> all = sounding();
    const std::set<Ratio> again = std::exchange(selected, {});
    stopAll(true);
    mDefaults = defaults;
    if (!maintainMacros)
        std::copy(defaults.begin(), defaults.end(), sliders.begin());
    for (const Ratio& ratio : all)
        start(ratio);
    for (const Ratio& ratio : again)
        select(ratio);
}
