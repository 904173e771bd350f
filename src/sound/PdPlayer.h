#pragma once

#include "model/OrloRatio.h"
#include "sound/NodeParameters.h"
#include "sound/PatchHandOver.h"
#include "sound/PdMessageBuffer.h"
#include "sound/RatioList.h"
#include "sound/RatioTable.h"
#include "sound/StaticArray.h"
#include "sound/VoiceSnapshot.h"
#include "sound/VoiceTable.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

#include <boost/container/static_vector.hpp>

#include <atomic>
#include <memory>
#include <vector>

class EngineRelay;
class Orlo;
class QFileInfo;
struct EngineState;
struct _atom;

/// Second element of every message to the patch's voices.
enum PdVoiceMessageType {
    voiceGate = 1,      // 1.0 starts, 0.0 releases
    voiceFrequency = 2, // Hz
    voiceVolume = 3,
    voiceMacro1 = 4, // to voiceMacro8 = 11: 0.0 to 1.0
};

/// The sound engine: turns exact ratios into voices of a hosted Pure Data patch.
///
/// The thread words are those of docs/architecture.md. After start-up the state belongs to [audio]:
/// everything else queues events and is answered by signals, which are emitted on [audio]. Receivers
/// on [gui] connect to the relay, which has the same signals; only what runs on [audio] too, as the
/// router behind instructionsToInterface, connects to the player, directly.
///
/// Commands allocate nothing, but for nodes beyond MANY_NODES and for a change of patch.
class PdPlayer : public QObject
{
    Q_OBJECT

public:
    explicit PdPlayer(QObject* parent = nullptr);
    ~PdPlayer() override;

    /// [stopped] Makes the command buffers and starts libpd. False without memory for them.
    bool init();
    /// [stopped] Tells libpd the sample rate; no stream may run.
    void initAudio(int channels, int sampleRate);
    /// [gui] Closes the patch. The audio output must still run, or the wait takes a moment longer. An
    /// engine that is stuck is not waited for.
    void term();

    /// [gui] Opens the main patch once the audio thread has closed the former one. Waits for both,
    /// muted, about half a second. False when the patch cannot be opened.
    bool loadPatch(const QFileInfo& file);
    /// [gui]
    void unloadPatch();
    /// [any] A patch has caught the engine for good: no patch can be changed any more, and the process
    /// must end without destroying the player.
    bool isSoundOver() const { return mHandOver.isOver(); }
    /// [gui] Waits until queueEventGui() has room for so many more, which the next blocks make. False
    /// when that takes too long.
    bool waitForRoom(int events);

    /// [gui] Queues a command that is a type and a value.
    void queueGui(OrloEvent::Type type, float value);

    /// [audio] Drains both command buffers, the device's first.
    void processEvents();
    /// [audio] Carries out one command. A type outside the table is ignored.
    void processChunk(const PdMessageBuffer::Chunk* chunk);
    /// [audio]
    bool isPatchOpen() const { return mPatch != nullptr; }
    PatchHandOver& handOver() { return mHandOver; }
    /// [gui]
    EngineRelay& relay() const { return *mRelay; }
    /// [audio] False when a list of the state has not room enough; nothing is allocated.
    bool copyState(EngineState& state) const;

    /// [audio] The ratio is absolute in both.
    void noteOn(const OrloRatio& ratio);
    void noteOff(const OrloRatio& ratio);
    /// [audio] Frees a released slot; a late report about a slot in use does nothing.
    void onVoiceStopped(int voice);
    void allNotesOff(bool force);
    void nodesHoldActive(bool active);
    /// [audio] 0 resets. A product that no longer fits in 64 bits is refused with a warning.
    void transpose(signed char step);
    void transpose(const OrloRatio& ratio);
    /// [audio] Each sets and reports.
    void setVoiceVolume(float volume);
    void setVolume(float volume);
    void setMonophonic(bool on);
    void setBaseFrequency(float frequency);
    void togglePrimeEnabled(int prime);

    /// [audio] Macro from 1 to 8. Selected nodes follow, and stay at an end of the range that the
    /// slider pushes them against.
    void setMacroValue(int macro, float value);
    /// [audio] The sliders, 0.0 to 1.0; selected nodes follow. One bend for all of them.
    void applyGlissandoOne(float value);
    void applyGlissandoTwo(float value);
    /// [audio] Absolute ratio. Neither way is heard: selecting makes the node's values relative to
    /// the sliders, deselecting makes them absolute again. May allocate the node's record.
    void nodeSelectToggleByRatio(OrloRatio ratio);
    void nodeDeselectAll();
    void selectAllSounding();
    /// [audio] The notes of all selected nodes are toggled in the next block.
    void toggleAllSelected();
    /// [audio] Back to the patch's macros and no detuning. With the option `softNodeReset` a
    /// sounding node is started anew, else its voice is changed in place.
    void nodeResetOne(OrloRatio ratio, bool deselect);
    void resetSelectedNodes(bool deselect);
    void resetAllNodes(bool resetControls, bool deselect);
    /// [audio] 0 both, 1 or 2. Takes new ranges from the options.
    void resetGlissandoAllNodes(short which);

    /// [stopped] More than the 128 slots, or fewer than one, is corrected.
    void setMaxVoices(int voices);
    int maxVoices() const { return mMaxVoices; }

    /// [any] What sounded, and was not released, after the last block; in the order in which
    /// the notes came. Never blocks, and never half of two blocks.
    QList<OrloRatio> getAllSoundingRatios() const;
    /// [audio] In the order of selection, and of alteration.
    QList<OrloRatio> getAllSelectedRatios() const { return selectedNodes.toList(); }
    QList<OrloRatio> getAllRatiosWithAlteredParameters() const { return alteredNodes.toList(); }
    /// Hz, in single precision.
    float ratioToFrequency(const OrloRatio& ratio) const;
    float glissandoOneMapping(float value) const;
    float glissandoTwoMapping(float value) const;

    /// Raises or lowers the calling thread.
    void setThreadPriority(int priority);

    /// [audio] True on success, false when libpd refuses. Voices count from 0 here.
    bool sendPdVoiceMessage(PdVoiceMessageType type, float value, float voice);
    bool applyAllCurrentMacroValues(float voice);
    bool applyMacroValue(int macro, float value, float voice);
    bool alterFrequency(float frequency, float voice);
    bool setDsp(bool on) const;
    bool sendPdQueryMacrosMessage();
    bool sendPdVolumeMessage(float volume);

    /// [audio] Reads the patch's macro list; exported for the patch hook.
    void onMacroNamesReceived(const char* text);

    /// [stopped] Where to read whether the external output's port is open; null: there is none.
    void setPortOpenFlag(const std::atomic<bool>* flag) { mPortOpen = flag; }

    /// [gui] Connects all that the lattice hears from the player, through its relay.
    static void connectLattice(PdPlayer* player, Orlo* orlo);

    enum Instruction { instructionNoteOn = 1, instructionNoteOff = -1, instructionBend = 2 };

public slots:
    /// Any thread but the listener's; the ring has one writer, the graphical thread.
    void queueEventGui(const OrloEvent* event);
    /// The device listener's thread.
    void queueEventSerial(const OrloEvent* event);
    void queueEventFromInterface(QString source, const OrloEvent* event);

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
    void macroValueChanged(int macro, float value, float voice);
    /// Voices are slot indices from 0.
    void instructionsToInterface(int instruction, QList<int> voices, QList<float> values1,
                                 QList<float> values2);
    void patchLoaded(QString path);
    void patchDecRequested();
    void patchIncRequested();
    void resetGlissSliders(short which);

private:
    using Chunk = PdMessageBuffer::Chunk;
    using Handler = void (PdPlayer::*)(const Chunk&);
    static Handler handlerOf(std::int32_t type);

    void drain(PdMessageBuffer& buffer);
    void onNoteToggleByPath(const Chunk& chunk);
    void onNoteToggleByRatio(const Chunk& chunk);
    void onAllNotesOff(const Chunk& chunk);
    void onAllNotesOffForced(const Chunk& chunk);
    void onNodesDeselectAll(const Chunk& chunk);
    void onTransposeByPrimeStep(const Chunk& chunk);
    void onVoiceVolumeAdjust(const Chunk& chunk);
    void onVoiceVolumeSet(const Chunk& chunk);
    void onMasterVolumeAdjust(const Chunk& chunk);
    void onMasterVolumeSet(const Chunk& chunk);
    void onMonophonicSet(const Chunk& chunk);
    void onPatchStep(const Chunk& chunk);
    void onBaseFrequencySet(const Chunk& chunk);
    void onPrimeEnabledToggle(const Chunk& chunk);
    void onMacroSet(const Chunk& chunk);
    void onNodeRemove(const Chunk& chunk);
    void onTransposeByRatio(const Chunk& chunk);
    void onNodesRecalled(const Chunk& chunk);
    void onNodesHold(const Chunk& chunk);
    void onPatchOpen(const Chunk& chunk);
    void onPatchClose(const Chunk& chunk);
    void onNodesResetSelected(const Chunk& chunk);
    void onNodesResetAll(const Chunk& chunk);
    void onGlissReset(const Chunk& chunk);
    void onNodesToggleAllSelected(const Chunk& chunk);
    void onNodesSelectAllSounding(const Chunk& chunk);
    void onGlissOneSet(const Chunk& chunk);
    void onGlissTwoSet(const Chunk& chunk);
    void onNodeSelectToggle(const Chunk& chunk);
    void onNodeReset(const Chunk& chunk);

    int findSlot(bool& stolen);
    void stopPreviousMonoVoice(int slot);
    float sendNodeParameters(const OrloRatio& ratio, int voice, float& frequency);
    bool multiplyTransposition(const OrloRatio& by);
    void toggleLater();
    using SoundingRatios = boost::container::static_vector<OrloRatio, VoiceTable::SLOTS>;
    /// The live list; getAllSoundingRatios() is of the block before.
    SoundingRatios soundingNow() const;
    void clearInstruction();
    void addToInstruction(int voice, float value1, float value2);
    void sendInstruction(Instruction instruction, int voice, float value1, float value2);
    bool portOpen() const { return mPortOpen && mPortOpen->load(std::memory_order_relaxed); }

    NodeParameters& nodeRecord(const OrloRatio& ratio) { return alteredParameters[ratio]; }
    void makeNode(const OrloRatio& ratio);
    void glissandoToNodes();
    float glissedFrequency(const OrloRatio& ratio, float glissOne, float glissTwo) const;
    void resetCurrentGlissando(short which);
    void nodeResetGlissando(const OrloRatio& ratio, short which);
    void nodeResetParameters(const OrloRatio& ratio);
    void nodeResetAltered(const OrloRatio& ratio, bool deselect, Voice* voice);
    void restoreVoiceInPlace(const OrloRatio& ratio, const Voice& voice);
    void setSoundingParameters(const OrloRatio& ratio);
    float defaultMacro(int index) const;
    void writeToCache();
    void readFromCache();

    bool changePatch(PatchHandOver::Change change, OrloEvent::Type type);
    void openPatch();
    bool openPatchFile();
    void closePatch();
    void setMacroDefaultValues();
    static void pdPrintHook(const char* text);
    static void pdListHook(const char* source, int count, _atom* atoms);

    static PdPlayer* sThis; // the libpd hooks are plain functions

    /// Storage for so many is made beforehand; the tables grow beyond it with an allocation.
    static constexpr int MANY_NODES = 4096;

    PdMessageBuffer guiBuffer;
    PdMessageBuffer serialBuffer;
    PdMessageBuffer::ChunkList mChunks; // serves both buffers

    void* mPatch = nullptr;
    OrloRatio mTransposition{1, 1};
    float mMasterVolume = 0.8F;
    float mVoiceVolume = 1.0F;     // sent with each note-on, never to a running voice
    float mBaseFrequency = 440.0F; // Hz
    bool mMonophonic = false;
    StaticArray<bool, 32> mPrimeEnabled; // by the prime itself
    int mMonoVoice = -1;                 // last voice started in monophonic mode
    VoiceTable mVoices;
    VoiceSnapshot mSnapshot;
    bool mVoicesChanged = false; // since the snapshot
    bool mHoldActive = false;
    RatioList heldNodes;
    RatioList selectedNodes; // each is altered too
    RatioList alteredNodes;
    // Absolute while the node is not selected, relative to the current ones while it is. The
    // record of a node that was reset stays, and is replaced when the node is altered again.
    RatioTable<NodeParameters> alteredParameters;
    RatioTable<NodeParameters> soundingParameters; // of notes that are not altered
    NodeParameters defaultParameters;
    NodeParameters currentParameters; // what the sliders show
    // What the next patch takes over from the last one.
    NodeParameters cachedParameters;
    RatioList cachedSounding;
    RatioList cachedSelected;
    bool mFirstPatch = true;
    std::vector<OrloRatio> mToggleLater; // in the next block
    std::vector<OrloRatio> mToggleNow;
    std::vector<OrloRatio> mFormerlySelected; // within one reset
    std::uint32_t mSequence = 0;

    QStringList mMacroNames;
    QList<float> mMacroDefaults;
    void* mInfoBinding = nullptr;
    void* mStopBinding = nullptr;
    bool mQuerying = false;
    // Set by loadPatch before it asks for the patch, and from then on the audio thread's until that
    // has answered.
    QByteArray mPatchFileName;
    QByteArray mPatchDirectory;
    bool mPatchOpened = false;
    PatchHandOver mHandOver;

    float mGlissOneRange = 1200.0F; // cents
    float mGlissTwoRange = 100.0F;
    int mMaxVoices = VoiceTable::SLOTS;
    const std::atomic<bool>* mPortOpen = nullptr;
    // The lists of an instruction, with room for every voice, so that a note allocates none.
    QList<int> mInstructionVoices;
    QList<float> mInstructionValues1;
    QList<float> mInstructionValues2;
    std::unique_ptr<EngineRelay> mRelay; // last: it hears the player's signals
};
