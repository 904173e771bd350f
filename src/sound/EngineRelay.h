#pragma once

#include "sound/ByteRing.h"
#include "sound/EngineState.h"
#include "sound/ThreadWaker.h"

#include <QObject>
#include <QSet>

#include <atomic>

class PdPlayer;

/// Carries what the engine reports to the graphical thread. Each signal of PdPlayer becomes a record
/// of fixed size in a lock-free ring, on the thread that holds the engine; the relay's signal of the
/// same name follows on the graphical thread, in the same order. Receivers connect to the relay.
///
/// The graphical thread is woken at most once a block, by one system call. Nothing on the engine's
/// side takes a lock, and only the lists of a patch's macros allocate.
///
/// Capacity: RECORDS. When the graphical thread does not come to read, later records are dropped.
/// Once it reads again it takes the engine's state and reports the difference to what its receivers
/// have been told. What is no state is gone then: steps to another patch, and nodes to be removed
/// from the stack.
class EngineRelay : public QObject
{
    Q_OBJECT

public:
    static constexpr int RECORDS = 16384;

    /// [gui] The player owns it.
    explicit EngineRelay(PdPlayer& player);
    /// [stopped]
    ~EngineRelay() override;

    /// [audio] Until endBlock() the graphical thread is not woken.
    void beginBlock() { mInBlock = true; }
    /// [audio] Wakes the graphical thread when there is something to tell, by one system call that never
    /// waits.
    void endBlock();

    /// [gui] Emits what has come, and logs what the audio thread wrote to the AudioLog. Runs by itself
    /// from the event loop.
    void drain();

    // All of them [gui], and with the meaning of the player's signals of the same names.
signals:
    void noteToggled(OrloRatio ratio, bool on);
    void nodeSelected(OrloRatio ratio, bool on);
    void nodeHold(OrloRatio ratio, bool on);
    void nodeAltered(OrloRatio ratio, bool on);
    void removeNodeInStack(OrloRatio ratio);
    void nodesRecalled();
    void transposed(OrloRatio transposition, int step);
    void volumeChanged(float volume);
    void voiceVolumeChanged(float volume);
    void baseFrequencyChanged(float frequency);
    void monophonicChanged(bool on);
    void primeEnabledToggled(int prime, bool on);
    void macroNamesReceived(QStringList names);
    void macroDefaultsReceived(QList<float> defaults);
    void setMacroSliders(QList<float> values);
    void macroValueChanged(int macro, float value);
    void patchDecRequested();
    void patchIncRequested();
    void resetGlissSliders(short which);

private:
    enum class Kind {
        NoteToggled,
        NodeSelected,
        NodeHold,
        NodeAltered,
        RemoveNodeInStack,
        NodesRecalled,
        Transposed,
        VolumeChanged,
        VoiceVolumeChanged,
        BaseFrequencyChanged,
        MonophonicChanged,
        PrimeEnabledToggled,
        MacroNamesReceived,
        MacroDefaultsReceived,
        SetMacroSliders,
        MacroValueChanged,
        PatchDecRequested,
        PatchIncRequested,
        ResetGlissSliders,
    };
    struct Record
    {
        Kind kind = Kind::NodesRecalled;
        int number = 0; // a flag, a step, a prime or a macro
        float value = 0.0F;
        unsigned long long numerator = 0;
        unsigned long long denominator = 1;
        const void* list = nullptr; // owned: QStringList or QList<float>
    };
    static constexpr unsigned bit(Kind kind) { return 1U << static_cast<unsigned>(kind); }

    void record(const Record& record);
    void record(Kind kind, const OrloRatio& ratio, int number = 0);
    void record(Kind kind, int number = 0, float value = 0.0F);
    static void freeList(const Record& record);

    bool read(Record& record);
    void report(const Record& record);
    void reportLists(const Record& record);
    void resynchronise();
    void reportDifference(const EngineState& state, unsigned lost);
    void reportValues(const EngineState& state);
    using NodeSignal = void (EngineRelay::*)(OrloRatio, bool);
    void reportNodes(QSet<OrloRatio>& told, const std::vector<OrloRatio>& now, NodeSignal signal);
    void report(QSet<OrloRatio>& told, const OrloRatio& ratio, bool on, NodeSignal signal);

    PdPlayer& mPlayer;
    ByteRing mRing;
    ThreadWaker mWaker;

    // Of the thread that holds the engine.
    bool mInBlock = false;
    bool mWritten = false;          // in this block
    std::uint64_t mRecords = 0;     // written so far
    std::atomic<unsigned> mLost{0}; // bits of the kinds that were dropped
    std::atomic<unsigned> mDropped{0};

    // [gui]
    std::uint64_t mRead = 0;
    bool mResynchronising = false;
    // What the receivers have been told: the sets, and all else in the state, whose lists stay empty.
    QSet<OrloRatio> mSounding;
    QSet<OrloRatio> mAltered;
    QSet<OrloRatio> mSelected;
    QSet<OrloRatio> mHeld;
    EngineState mTold;
};
