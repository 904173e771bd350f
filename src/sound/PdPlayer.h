#pragma once

#include "model/OrloRatio.h"
#include "sound/GlissandoMapping.h"
#include "sound/KeyTouch.h"
#include "sound/NodeBook.h"
#include "sound/PatchHandOver.h"
#include "sound/PdMessageBuffer.h"
#include "sound/RatioList.h"
#include "sound/StaticArray.h"
#include "sound/VoiceSnapshot.h"
#include "sound/VoiceTable.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

#include <boost/container/static_vector.hpp>

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <span>
#include <vector>

class EngineRelay;
class KeySource;
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
/// Commands allocate nothing, but for nodes beyond NodeBook::MANY_NODES and for a change of patch. Its
/// .cpp files: PdPlayerCommands (from the rings to the functions here), PdPlayerNotes (voices),
/// PdPlayerHold, PdPlayerKeys, PdPlayerSelection (and the sliders), PdPlayerResets, PdPlayerRetuning,
/// PdPlayerPatch (libpd), PdPlayerTransposition.
class PdPlayer : public QObject
{
    Q_OBJECT

public:
    /// [stopped] There is one player.
    explicit PdPlayer(QObject* parent = nullptr);
    /// [stopped] After term(), and never of a player whose sound is over.
    ~PdPlayer() override;

    /// [stopped] Makes the command buffers and starts libpd. False without memory for them.
    bool init();
    /// [gui] Tells libpd the sample rate, between two blocks.
    void initAudio(int channels, int sampleRate);
    /// [gui] Closes the patch. The audio output must still run, or the wait takes a moment longer. An
    /// engine that is stuck is not waited for.
    void term();

    /// [gui] Opens the main patch once the audio thread has closed the former one. Waits for both,
    /// muted, for three pauses of 100 ms and the opening itself. False when the patch cannot be opened.
    bool loadPatch(const QFileInfo& file);
    /// [gui] Closes the patch, muted, and waits for it: two such pauses and the closing.
    void unloadPatch();
    /// [any] A patch has caught the engine for good: no patch can be changed any more, and the process
    /// must end without destroying the player.
    bool isSoundOver() const { return mHandOver.isOver(); }
    /// [gui] Waits until queueEventGui() has room for so many more, which the next blocks make. False
    /// when that takes too long.
    bool waitForRoom(int events);

    /// [gui] Queues a command that is a type and a value.
    void queueGui(OrloEvent::Type type, float value);
    /// [gui] Effect: after all that was queued before, notes that began before a change of 1/1 move to the
    /// pitch that they have by it now. No command, since a physical device can name those by number.
    void retuneNotes() { mRetuneAsked.store(true, std::memory_order_release); }

    /// [audio] Drains both command buffers, the device's first.
    void processEvents();
    /// [audio] Carries out one command. A type outside the table is ignored.
    void processChunk(const PdMessageBuffer::Chunk* chunk);
    /// [audio]
    bool isPatchOpen() const { return mPatch != nullptr; }
    /// [any] Each of its methods has a word of its own.
    PatchHandOver& handOver() { return mHandOver; }
    /// [gui]
    EngineRelay& relay() const;
    /// [audio] False when a list of the state has not room enough; nothing is allocated.
    bool copyState(EngineState& state) const;

    /// [audio] Starts the note of an absolute ratio, in the lowest free slot or in that of the oldest
    /// voice.
    void noteOn(const OrloRatio& ratio);
    /// [audio] Lets the note of an absolute ratio go; its slot is free when the patch reports the end.
    void noteOff(const OrloRatio& ratio);
    /// [audio] Frees a released slot; a late report about a slot in use does nothing.
    void onVoiceStopped(int voice);
    /// [audio] Without force, held notes go on.
    void allNotesOff(bool force);
    /// [audio] Holds what sounds now, instead of what was held before; or nothing any more.
    void nodesHoldActive(bool active);
    /// [audio] 0 resets. A product that no longer fits in 64 bits is refused with a warning.
    void transpose(signed char step);
    /// [audio] The same by a ratio.
    void transpose(const OrloRatio& ratio);
    /// [audio] For notes that start from now on.
    void setVoiceVolume(float volume);
    /// [audio] The patch's volume.
    void setVolume(float volume);
    /// [audio] The next note does not stop a voice that was started before.
    void setMonophonic(bool on);
    /// [audio] Hz of 1/1; for notes and glissandi from now on.
    void setBaseFrequency(float frequency);
    /// [audio] A prime from 0 to 31.
    void togglePrimeEnabled(int prime);

    /// [gui] Asks it for keys from the next block on, which is waited for; null: nobody. What keys of the
    /// former source sound is ended. False when no block ends; then the former source must live on.
    bool setKeySource(KeySource* source);
    /// [audio] The absolute ratio of a key. Empty when the prime's switch is off, as for a ball, when the
    /// lattice cannot name it, because of a prime beyond 31, or when it does not fit.
    std::optional<OrloRatio> keyPitch(const OrloRatio& relative) const;
    /// [audio] A ratio close to so many Hz for each Hz of 1/1 (TemperedRatio). Neither the lattice nor
    /// the chord memory hears of a note there.
    std::optional<OrloRatio> keyPitch(double tempered) const;
    /// [audio] A note of this absolute ratio sounds, or comes back with the next patch.
    bool isNoteOn(const OrloRatio& ratio) const;
    /// [audio] The id of the key's note that isNoteOn(); 0 when it is no key's.
    std::uint32_t keyOf(const OrloRatio& ratio) const;
    /// [audio] Starts the note of a key, where none isNoteOn().
    void beginKeyNote(const OrloRatio& ratio, const KeyTouch& touch);
    /// [audio] Ends it if it is still that key's; hold keeps what it holds, which is no key's from then on
    /// and loses its bend when its voice changes.
    void endKeyNote(const OrloRatio& ratio, std::uint32_t id);
    /// [audio] Bends those that are still the keys'. A bend stays with its note and multiplies its
    /// glissando.
    void bendKeyNotes(std::span<const KeyBend> bends);
    /// [audio] A macro, from 1 to 8, of this note alone.
    void setKeyMacro(const OrloRatio& ratio, std::uint32_t id, int macro, float value);

    /// [audio] Macro from 1 to 8. Selected nodes follow, and stay at an end of the range that the
    /// slider pushes them against.
    void setMacroValue(int macro, float value);
    /// [audio] The coarse slider, 0.0 to 1.0; selected nodes follow. One bend for all of them.
    void applyGlissandoOne(float value);
    /// [audio] The same with the fine slider.
    void applyGlissandoTwo(float value);
    /// [audio] Absolute ratio. Neither way is heard: selecting makes the node's values relative to
    /// the sliders, deselecting makes them absolute again.
    void nodeSelectToggleByRatio(OrloRatio ratio);
    /// [audio]
    void nodeDeselectAll();
    /// [audio] What is selected already stays so.
    void selectAllSounding();
    /// [audio] The notes of all selected nodes are toggled in the next block.
    void toggleAllSelected();
    /// [audio] Back to the patch's macros and no detuning. With the option `softNodeReset` a
    /// sounding node is started anew, else its voice is changed in place.
    void nodeResetOne(OrloRatio ratio, bool deselect);
    /// [audio] The same with each selected node.
    void resetSelectedNodes(bool deselect);
    /// [audio] The same with every node, and with the sliders when asked.
    void resetAllNodes(bool resetControls, bool deselect);
    /// [audio] 0 both, 1 or 2. Takes new ranges from the options.
    void resetGlissandoAllNodes(short which);

    /// [stopped] More than the 128 slots, or fewer than one, is corrected.
    void setMaxVoices(int voices);
    /// [any] Fixed once the engine runs.
    int maxVoices() const { return mMaxVoices; }

    /// [any] What sounded, and was not released, after the last block; in the order in which
    /// the notes came. Never blocks, and never half of two blocks.
    QList<OrloRatio> getAllSoundingRatios() const;
    /// [any] The same notes with their voices and frequencies, and with those that are released, silent or
    /// without an exact pitch.
    QList<VoiceSnapshot::Entry> soundingVoices() const { return mSnapshot.readAll(); }
    /// [any] Hz in which the note of an absolute ratio sounded after the last block, with its glissando.
    /// Empty when it does not sound, or is silent because it lies outside the range of pitches.
    std::optional<float> heardFrequency(const OrloRatio& ratio) const;
    /// [audio] In the order of selection. Allocates the list.
    QList<OrloRatio> getAllSelectedRatios() const;
    /// [audio] In the order of alteration. Allocates the list.
    QList<OrloRatio> getAllRatiosWithAlteredParameters() const;
    /// [audio] Hz, in single precision, without a glissando.
    float ratioToFrequency(const OrloRatio& ratio) const;
    /// [audio] The factor of a position of the coarse slider, by its range.
    float glissandoOneMapping(float value) const;
    /// [audio] The same of the fine one.
    float glissandoTwoMapping(float value) const;

    /// [any] Raises or lowers the calling thread.
    void setThreadPriority(int priority);

    /// [audio] False when libpd refuses, here and in those below. Voices count from 0.
    bool sendPdVoiceMessage(PdVoiceMessageType type, float value, float voice);
    /// [audio] What the sliders show.
    bool applyAllCurrentMacroValues(float voice);
    /// [audio] Macro from 1 to 8.
    bool applyMacroValue(int macro, float value, float voice);
    /// [audio] Hz, of a running voice. The patch takes none below 1 Hz or above 20 kHz.
    bool alterFrequency(float frequency, float voice);
    /// [audio] Pure Data's own switch of sound.
    bool setDsp(bool on) const;
    /// [audio] The patch answers to onMacroNamesReceived().
    bool sendPdQueryMacrosMessage();
    /// [audio] The patch's volume, without keeping it.
    bool sendPdVolumeMessage(float volume);

    /// [audio] Reads the patch's macro list. Allocates; within a change of patch only.
    void onMacroNamesReceived(const char* text);

    /// [stopped] Where to read whether the external output's port is open; null: there is none.
    void setPortOpenFlag(const std::atomic<bool>* flag);

    /// [gui] Connects all that the lattice hears from the player, through its relay.
    static void connectLattice(PdPlayer* player, Orlo* orlo);

    enum Instruction { instructionNoteOn = 1, instructionNoteOff = -1, instructionBend = 2 };

public slots:
    /// [gui] Writes the event into the ring of the window. A full ring drops it with a warning.
    void queueEventGui(const OrloEvent* event);
    /// [listener] The same with the ring of the physical device.
    void queueEventSerial(const OrloEvent* event);
    /// [any] Logs the event only.
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
    /// Notes that sound have been moved by a change of 1/1. Velocities are those of a note that starts now.
    void notesRetuned(QList<int> voices, QList<float> frequencies, QList<float> velocities);
    void patchLoaded(QString path);
    void patchDecRequested();
    void patchIncRequested();
    void resetGlissSliders(short which);

private:
    using Chunk = PdMessageBuffer::Chunk;
    using Handlers = std::array<void (*)(PdPlayer&, const Chunk&), OrloEvent::TYPE_COUNT>; // by type
    static const Handlers& handlers();

    void drain(PdMessageBuffer& buffer);
    void toggleByPath(const OrloPath& path);
    void toggleByRatio(const OrloRatio& ratio, float value);
    void removeNode(const OrloRatio& ratio);

    int findSlot(bool& stolen);
    void stopPreviousMonoVoice(int slot);
    void strike(Voice& voice);
    float glidedFrequency(const Voice& voice) const;
    float velocityOf(const OrloRatio& ratio) const;
    void silence(Voice& voice);
    const KeyTouch* touchOf(const OrloRatio& ratio) const;
    KeyTouch* touchOf(const OrloRatio& ratio, std::uint32_t id);
    void forgetKey(const OrloRatio& ratio);
    void endKeysBetweenPatches();
    void noteOnOfNoKey(const OrloRatio& ratio);
    void tellToggled(const OrloRatio& ratio, bool on);
    void tellHold(const OrloRatio& ratio, bool on);
    void retuneToBase();
    bool multiplyTransposition(const OrloRatio& by);
    void toggleLater();
    using SoundingRatios = boost::container::static_vector<OrloRatio, VoiceTable::SLOTS>;
    /// The live list; getAllSoundingRatios() is of the block before.
    SoundingRatios soundingNow() const;
    void clearInstruction();
    void addToInstruction(int voice, float value1, float value2);
    void sendInstruction(Instruction instruction, int voice, float value1, float value2);
    void sendBends();
    bool portOpen() const { return mPortOpen && mPortOpen->load(std::memory_order_relaxed); }

    static bool maintainMacroParameters();
    void takeGlissandoRanges();
    void glissandoToNodes();
    void nodeResetGlissando(const OrloRatio& ratio, short which);
    void nodeResetParameters(const OrloRatio& ratio);
    void nodeResetAltered(const OrloRatio& ratio, bool deselect, Voice* voice);
    void restoreVoiceInPlace(const OrloRatio& ratio, const Voice& voice);
    bool applyMacros(const NodeParameters& node, float voice);
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
    std::atomic<bool> mRetuneAsked{false};
    bool mHoldActive = false;
    RatioList heldNodes;
    NodeBook mNodes;
    RatioList cachedSounding; // starts anew in the next patch
    KeySource* mKeySource = nullptr;
    RatioTable<KeyTouch> mKeyTouches; // of keys that are down; empty without a source
    bool mKeysHaveRoom = false;       // [gui]
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
    // loadPatch sets these before it asks for the patch; then they are the audio thread's until that has
    // answered.
    QByteArray mPatchFileName;
    QByteArray mPatchDirectory;
    bool mPatchOpened = false;
    PatchHandOver mHandOver;

    float mGlissOneRange = glissando::DEFAULT_RANGE_ONE; // cents
    float mGlissTwoRange = glissando::DEFAULT_RANGE_TWO;
    int mMaxVoices = VoiceTable::SLOTS;
    const std::atomic<bool>* mPortOpen = nullptr;
    // The lists of an instruction, with room for every voice, so that a note allocates none.
    QList<int> mInstructionVoices;
    QList<float> mInstructionValues1;
    QList<float> mInstructionValues2;
    std::unique_ptr<EngineRelay> mRelay; // last: it hears the player's signals
};
