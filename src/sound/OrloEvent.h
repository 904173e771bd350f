#pragma once

#include <cstdint>

/// One command to the sound engine. The engine's buffers copy it when it is queued, so an event
/// stays with its owner: widgets build theirs once and queue the same object at every press.
class OrloEvent
{
public:
    /// The numbers are a file format too: the physical device's map stores them.
    enum Type : std::int32_t {
        None = -1,
        NoteToggleByPath = 0,
        AllNotesOff = 1, // held notes stay
        AllNotesOffForced = 2,
        NodesDeselectAll = 3,
        NodesResetSelected = 4,
        NodesResetSelectedDeselect = 5,
        NodesResetAll = 6,
        NodesResetAllDeselect = 7,
        NodesResetAllAndControls = 8,
        NodesResetAllAndControlsDeselect = 9,
        GlissOneReset = 10,
        GlissTwoReset = 11,
        GlissBothReset = 12,
        NodesToggleAllSelected = 13,
        NodesSelectAllSounding = 14,
        TransposeByPrimeStep = 15, // value: the signed step, 0 resets
        VoiceVolumeAdjust = 16,
        VoiceVolumeSet = 17,
        MasterVolumeAdjust = 18,
        MasterVolumeSet = 19,
        MonophonicSet = 20,      // on above 0.5
        PatchStep = 21,          // next above 0, else previous
        BaseFrequencySet = 22,   // Hz
        PrimeEnabledToggle = 23, // value: the prime
        Macro1Set = 24,          // to Macro8Set: 0 to 1
        Macro2Set = 25,
        Macro3Set = 26,
        Macro4Set = 27,
        Macro5Set = 28,
        Macro6Set = 29,
        Macro7Set = 30,
        Macro8Set = 31,
        GlissOneSet = 32,
        GlissTwoSet = 33,
        NoteToggleByRatio = 34, // absolute ratio; value 2.0 overrides hold
        NodeRemove = 35,        // absolute ratio
        TransposeByRatio = 36,
        NodeSelectToggle = 37, // relative ratio
        NodeReset = 38,        // relative ratio; value other than 0 deselects
        NodesRecalled = 39,
        NodesHold = 40, // on at exactly 1.0
        PatchOpen = 41,
        PatchClose = 42,
    };
    static constexpr std::int32_t TYPE_COUNT = 43;

    /// [any] The type None, which does nothing.
    OrloEvent() = default;
    /// [any]
    OrloEvent(Type type, float value);
    OrloEvent(const OrloEvent&) = default;
    OrloEvent& operator=(const OrloEvent&) = default;
    virtual ~OrloEvent();

    /// [any]
    Type type() const { return mType; }
    /// [any] Its meaning goes by the type.
    float value() const { return mValue; }

private:
    Type mType = None;
    float mValue = 0.0F;
};
