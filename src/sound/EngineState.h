#pragma once

#include "model/OrloRatio.h"
#include "sound/NodeParameters.h"

#include <QList>
#include <QStringList>

#include <array>
#include <vector>

/// What the engine has of all that its signals report, at one moment. The ratios are absolute.
struct EngineState
{
    std::vector<OrloRatio> sounding;
    std::vector<OrloRatio> altered;
    std::vector<OrloRatio> selected;
    std::vector<OrloRatio> held;
    OrloRatio transposition{1, 1};
    float volume = 0.0F;
    float voiceVolume = 0.0F;
    float baseFrequency = 0.0F; // Hz
    bool monophonic = false;
    std::array<bool, 32> primes{}; // by the prime itself
    NodeParameters sliders;
    NodeParameters cached; // of the former patch
    QStringList macroNames;
    QList<float> macroDefaults;
};
