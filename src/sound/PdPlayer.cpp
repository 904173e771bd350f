#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "app/LogFilter.h"
#include "app/Settings.h"
#include "model/Orlo.h"
#include "model/OrloPath.h"
#include "model/PitchRange.h"
#include "sound/AudioLog.h"
#include "sound/EngineRelay.h"
#include "sound/OrloNoteEvent.h"

#include <QThread>

#include <array>
#include <charconv>
#include <cmath>
#include <exception>

namespace {

// The value of a toggle that has power over hold.
constexpr float TOGGLE_HELD = 2.0F;

QString text(const OrloRatio& ratio)
{
    return ratio.toString();
}

/// As OrloPath::toString, without an allocation; a path that has no step is never refused.
std::array<char, 64> pathText(const OrloPath& path)
{
    std::array<char, 64> text{};
    char* end = text.data();
    for (const signed char* step = path.toCharArray(); *step != 0; ++step) {
        *end++ = '/';
        end = std::to_chars(end, text.data() + text.size() - 1, static_cast<int>(*step)).ptr;
    }
    return text;
}

/// The value as a step: rounded half away from zero, then as a signed 8-bit number.
signed char stepFromValue(float value)
{
    const float rounded = std::trunc(value + std::copysign(0.5F, value));
    const float inRange = qBound(-2147483520.0F, rounded, 2147483520.0F);
    return static_cast<signed char>(static_cast<int>(inRange));
}

} // namespace

PdPlayer* PdPlayer::sThis = nullptr;

PdPlayer::PdPlayer(QObject* parent)
    : QObject(parent)
{
    sThis = this;
    mInstructionVoices.reserve(VoiceTable::SLOTS);
    mInstructionValues1.reserve(VoiceTable::SLOTS);
    mInstructionValues2.reserve(VoiceTable::SLOTS);
    for (int prime = 0; prime < mPrimeEnabled.CAPACITY; ++prime)
        mPrimeEnabled[prime] = true;
    mRelay = std::make_unique<EngineRelay>(*this);
}

PdPlayer::~PdPlayer()
{
    if (sThis == this)
        sThis = nullptr;
}

void PdPlayer::connectLattice(PdPlayer* player, Orlo* orlo)
{
    if (!player)
        return;
    const EngineRelay* relay = &player->relay();
    connect(relay, &EngineRelay::noteToggled, orlo, &Orlo::onNoteToggled);
    connect(relay, &EngineRelay::nodeSelected, orlo, &Orlo::onNodeSelected);
    connect(relay, &EngineRelay::nodeHold, orlo, &Orlo::onNodeHold);
    connect(relay, &EngineRelay::nodeAltered, orlo, &Orlo::onNodeAltered);
    connect(relay, &EngineRelay::transposed, orlo, &Orlo::onTransposed);
    connect(relay, &EngineRelay::baseFrequencyChanged, orlo, &Orlo::onBaseFrequencyChanged);
    connect(relay, &EngineRelay::primeEnabledToggled, orlo, &Orlo::onPrimeEnabledToggled);
    connect(relay, &EngineRelay::removeNodeInStack, orlo, &Orlo::onRemoveNodeInStack);
    connect(relay, &EngineRelay::nodesRecalled, orlo, &Orlo::afterMemoryRecall);
}

// ---------------------------------------------------------------- commands

void PdPlayer::queueEventGui(const OrloEvent* event)
{
    if (!isSoundOver()) // nobody would ever read it
        guiBuffer.queueEvent(event);
}

void PdPlayer::queueGui(OrloEvent::Type type, float value)
{
    const auto event = std::make_unique<OrloEvent>(type, value);
    queueEventGui(event.get());
}

void PdPlayer::queueEventSerial(const OrloEvent* event)
{
    if (!isSoundOver())
        serialBuffer.queueEvent(event);
}

void PdPlayer::queueEventFromInterface(QString source, const OrloEvent* event)
{
    qDebug() << "Player: Event received from Interface: " << source << " -- " << event->type() << " -- "
             << event->value();
}

void PdPlayer::processEvents()
{
    mRelay->beginBlock();
    // What the engine toggles by itself runs in the block after the command, whichever ring brought
    // that; it does not go through the rings, since each has one writer.
    mToggleNow.swap(mToggleLater);
    drain(serialBuffer);
    toggleLater();
    drain(guiBuffer);
    if (mVoicesChanged)
        mSnapshot.publish(mVoices.noteMap);
    mVoicesChanged = false;
    mRelay->endBlock();
}

void PdPlayer::toggleLater()
{
    Chunk chunk;
    chunk.type = OrloEvent::NoteToggleByRatio;
    chunk.value = 1.0F;
    for (const OrloRatio& ratio : mToggleNow) {
        chunk.ratio = ratio;
        processChunk(&chunk);
    }
    mToggleNow.clear();
}

void PdPlayer::drain(PdMessageBuffer& buffer)
{
    buffer.processEvents(mChunks);
    for (std::int64_t i = 0; i < mChunks.size(); ++i)
        processChunk(mChunks[i]);
    mChunks.setSize(0);
}

PdPlayer::Handler PdPlayer::handlerOf(std::int32_t type)
{
    static const std::array<Handler, OrloEvent::TYPE_COUNT> handlers = [] {
        std::array<Handler, OrloEvent::TYPE_COUNT> table{};
        table[OrloEvent::NoteToggleByPath] = &PdPlayer::onNoteToggleByPath;
        table[OrloEvent::AllNotesOff] = &PdPlayer::onAllNotesOff;
        table[OrloEvent::AllNotesOffForced] = &PdPlayer::onAllNotesOffForced;
        table[OrloEvent::NodesDeselectAll] = &PdPlayer::onNodesDeselectAll;
        for (std::int32_t reset = OrloEvent::NodesResetSelected;
             reset <= OrloEvent::NodesResetSelectedDeselect; ++reset)
            table[static_cast<size_t>(reset)] = &PdPlayer::onNodesResetSelected;
        for (std::int32_t reset = OrloEvent::NodesResetAll;
             reset <= OrloEvent::NodesResetAllAndControlsDeselect; ++reset)
            table[static_cast<size_t>(reset)] = &PdPlayer::onNodesResetAll;
        for (std::int32_t reset = OrloEvent::GlissOneReset; reset <= OrloEvent::GlissBothReset; ++reset)
            table[static_cast<size_t>(reset)] = &PdPlayer::onGlissReset;
        table[OrloEvent::NodesToggleAllSelected] = &PdPlayer::onNodesToggleAllSelected;
        table[OrloEvent::NodesSelectAllSounding] = &PdPlayer::onNodesSelectAllSounding;
        table[OrloEvent::TransposeByPrimeStep] = &PdPlayer::onTransposeByPrimeStep;
        table[OrloEvent::VoiceVolumeAdjust] = &PdPlayer::onVoiceVolumeAdjust;
        table[OrloEvent::VoiceVolumeSet] = &PdPlayer::onVoiceVolumeSet;
        table[OrloEvent::MasterVolumeAdjust] = &PdPlayer::onMasterVolumeAdjust;
        table[OrloEvent::MasterVolumeSet] = &PdPlayer::onMasterVolumeSet;
        table[OrloEvent::MonophonicSet] = &PdPlayer::onMonophonicSet;
        table[OrloEvent::PatchStep] = &PdPlayer::onPatchStep;
        table[OrloEvent::BaseFrequencySet] = &PdPlayer::onBaseFrequencySet;
        table[OrloEvent::PrimeEnabledToggle] = &PdPlayer::onPrimeEnabledToggle;
        for (std::int32_t macro = OrloEvent::Macro1Set; macro <= OrloEvent::Macro8Set; ++macro)
            table[static_cast<size_t>(macro)] = &PdPlayer::onMacroSet;
        table[OrloEvent::GlissOneSet] = &PdPlayer::onGlissOneSet;
        table[OrloEvent::GlissTwoSet] = &PdPlayer::onGlissTwoSet;
        table[OrloEvent::NoteToggleByRatio] = &PdPlayer::onNoteToggleByRatio;
        table[OrloEvent::NodeRemove] = &PdPlayer::onNodeRemove;
        table[OrloEvent::TransposeByRatio] = &PdPlayer::onTransposeByRatio;
        table[OrloEvent::NodeSelectToggle] = &PdPlayer::onNodeSelectToggle;
        table[OrloEvent::NodeReset] = &PdPlayer::onNodeReset;
        table[OrloEvent::NodesRecalled] = &PdPlayer::onNodesRecalled;
        table[OrloEvent::NodesHold] = &PdPlayer::onNodesHold;
        table[OrloEvent::PatchOpen] = &PdPlayer::onPatchOpen;
        table[OrloEvent::PatchClose] = &PdPlayer::onPatchClose;
        return table;
    }();
    return type >= 0 && type < OrloEvent::TYPE_COUNT ? handlers[static_cast<size_t>(type)] : nullptr;
}

void PdPlayer::processChunk(const Chunk* chunk)
{
    const Handler handler = handlerOf(chunk->type);
    if (!handler)
        return;
    if (!std::isfinite(chunk->value)) {
        AudioLog::warning("PdPlayer: an event of type %1 with a value that is no number is dropped.",
                          {chunk->type});
        return;
    }
    try {
        (this->*handler)(*chunk);
    } catch (const std::exception& error) {
        // A ratio that cannot be formed must not end the audio thread.
        AudioLog::warning("PdPlayer: an event of type %1 is dropped: %2", {chunk->type, error.what()});
    }
}

void PdPlayer::onNoteToggleByPath(const Chunk& chunk)
{
    if (!chunk.path.isValid())
        return;
    // Only the last step counts: a disabled prime in the middle of a path does not stop the note.
    const int length = chunk.path.length();
    const int prime = length == 0 ? 1 : qAbs(static_cast<int>(chunk.path.toCharArray()[length - 1]));
    if (prime >= mPrimeEnabled.CAPACITY || !mPrimeEnabled[prime])
        return;
    const OrloRatio relative(OrloRatio::productOfSteps(chunk.path.toCharArray()));
    if (!mTransposition.fitsWhenMultipliedWith(relative)) {
        AudioLog::warning("PdPlayer: the pitch of \"%1\" does not fit and stays silent.",
                          {pathText(chunk.path).data()});
        return;
    }
    OrloRatio ratio(mTransposition);
    ratio *= relative;
    const Voice* voice = mVoices.find(ratio);
    if (!voice || voice->released)
        noteOn(ratio);
    else
        noteOff(ratio); // hold has no power over the press of a ball
}

void PdPlayer::onNoteToggleByRatio(const Chunk& chunk)
{
    // A device's map names types only, so its event has no ratio. 0/1 would take voices in silence.
    if (chunk.ratio.numerator() == 0)
        return;
    const Voice* voice = mVoices.find(chunk.ratio);
    if (!voice || voice->released)
        noteOn(chunk.ratio);
    else if (!mHoldActive || chunk.value == TOGGLE_HELD || !heldNodes.contains(chunk.ratio))
        noteOff(chunk.ratio);
}

void PdPlayer::onAllNotesOff(const Chunk&)
{
    allNotesOff(false);
}

void PdPlayer::onAllNotesOffForced(const Chunk&)
{
    allNotesOff(true);
}

void PdPlayer::onNodesDeselectAll(const Chunk& chunk)
{
    nodeDeselectAll();
    onNodeRemove(chunk); // of a ratio that no plain event carries: only the signal is left of it
}

void PdPlayer::onNodeRemove(const Chunk& chunk)
{
    if (mVoices.find(chunk.ratio))
        noteOff(chunk.ratio);
    emit removeNodeInStack(chunk.ratio);
}

void PdPlayer::onTransposeByPrimeStep(const Chunk& chunk)
{
    transpose(stepFromValue(chunk.value));
}

void PdPlayer::onTransposeByRatio(const Chunk& chunk)
{
    transpose(chunk.ratio);
}

void PdPlayer::onVoiceVolumeAdjust(const Chunk& chunk)
{
    setVoiceVolume(mVoiceVolume + chunk.value);
}

void PdPlayer::onVoiceVolumeSet(const Chunk& chunk)
{
    setVoiceVolume(chunk.value);
}

void PdPlayer::onMasterVolumeAdjust(const Chunk& chunk)
{
    setVolume(mMasterVolume + chunk.value);
}

void PdPlayer::onMasterVolumeSet(const Chunk& chunk)
{
    setVolume(chunk.value);
}

void PdPlayer::onMonophonicSet(const Chunk& chunk)
{
    setMonophonic(chunk.value > 0.5F);
}

void PdPlayer::onPatchStep(const Chunk& chunk)
{
    if (chunk.value > 0.0F)
        emit patchIncRequested();
    else
        emit patchDecRequested();
}

void PdPlayer::onBaseFrequencySet(const Chunk& chunk)
{
    setBaseFrequency(chunk.value);
}

void PdPlayer::onPrimeEnabledToggle(const Chunk& chunk)
{
    if (chunk.value >= 0.0F && chunk.value < static_cast<float>(mPrimeEnabled.CAPACITY))
        togglePrimeEnabled(static_cast<int>(chunk.value));
}

void PdPlayer::onNodesRecalled(const Chunk&)
{
    emit nodesRecalled();
}

void PdPlayer::onNodesHold(const Chunk& chunk)
{
    nodesHoldActive(chunk.value == 1.0F);
}

void PdPlayer::onPatchOpen(const Chunk&)
{
    openPatch();
}

void PdPlayer::onPatchClose(const Chunk&)
{
    closePatch();
}

// ---------------------------------------------------------------- notes

void PdPlayer::noteOn(const OrloRatio& ratio)
{
    ORLO_AUDIO_DEBUG << "Thread @ PdPlayer::noteOn: Thread, ID, priority " << QThread::currentThread()
                     << QThread::currentThreadId() << QThread::currentThread()->priority();
    ++mSequence;
    float frequency = ratioToFrequency(ratio);
    bool stolen = false;
    // Chosen before the previous mono voice stops, so that a new voice starts beside its release.
    const int slot = findSlot(stolen);
    if (slot < 0)
        return;
    if (mMonophonic)
        stopPreviousMonoVoice(slot);

    mVoices.take(*mVoices.slot(slot), ratio, mSequence);
    mVoicesChanged = true;
    ORLO_AUDIO_DEBUG << "noteOn for ratio" << text(ratio) << "freq" << frequency << "voice" << slot << "seqId"
                     << mSequence << "stolen" << (stolen ? "true" : "false");

    const float velocity = sendNodeParameters(ratio, slot, frequency);
    if (frequency > pitchrange::LOWEST && frequency < pitchrange::HIGHEST) {
        const auto voice = static_cast<float>(slot);
        sendPdVoiceMessage(voiceFrequency, frequency, voice);
        sendPdVoiceMessage(voiceVolume, mVoiceVolume, voice);
        sendPdVoiceMessage(voiceGate, 1.0F, voice);
        if (portOpen())
            sendInstruction(instructionNoteOn, slot, frequency, velocity);
    }
    emit noteToggled(ratio, true);

    if (!alteredNodes.contains(ratio))
        setSoundingParameters(ratio);
}

int PdPlayer::findSlot(bool& stolen)
{
    if (const Voice* free = mVoices.freeSlot(mMaxVoices))
        return free->voice;
    const Voice* oldest = mVoices.oldestSlot(mMaxVoices);
    if (!oldest)
        return -1;
    stolen = true;
    if (!oldest->released)
        noteOff(OrloRatio(oldest->ratio));
    onVoiceStopped(oldest->voice);
    return oldest->voice;
}

void PdPlayer::stopPreviousMonoVoice(int slot)
{
    if (const Voice* previous = mVoices.slot(mMonoVoice);
        previous && previous->seqId != 0 && !previous->released) {
        ORLO_AUDIO_DEBUG << "turning off previous mono voice" << mMonoVoice << "ratio"
                         << text(previous->ratio);
        noteOff(OrloRatio(previous->ratio));
    }
    mMonoVoice = slot;
}

/// Sends the eight macros of a starting note and bends its frequency as its node asks. Returns the
/// value that goes out as velocity.
float PdPlayer::sendNodeParameters(const OrloRatio& ratio, int voice, float& frequency)
{
    const float velocity = currentParameters.macros[0];
    if (!alteredNodes.contains(ratio)) {
        applyAllCurrentMacroValues(static_cast<float>(voice));
        return velocity;
    }
    const NodeParameters& node = nodeRecord(ratio);
    const bool selected = selectedNodes.contains(ratio);
    const NodeParameters none{{}, 0.0F, 0.0F};
    const NodeParameters& base = selected ? currentParameters : none;
    frequency *= glissandoOneMapping(base.glissOne + node.glissOne);
    frequency *= glissandoTwoMapping(base.glissTwo + node.glissTwo);
    for (size_t i = 0; i < node.macros.size(); ++i)
        sendPdVoiceMessage(static_cast<PdVoiceMessageType>(voiceMacro1 + static_cast<int>(i)),
                           base.macros[i] + node.macros[i], static_cast<float>(voice));
    return selected ? velocity : node.macros[0];
}

void PdPlayer::noteOff(const OrloRatio& ratio)
{
    ORLO_AUDIO_DEBUG << "Thread @ PdPlayer::noteOff: Thread, ID " << QThread::currentThread()
                     << QThread::currentThreadId();
    Voice* voice = mVoices.find(ratio);
    if (!voice)
        return;
    ORLO_AUDIO_DEBUG << "noteOff for ratio" << text(ratio) << "voice" << voice->voice;
    voice->released = true;
    mVoicesChanged = true;
    sendPdVoiceMessage(voiceGate, 0.0F, static_cast<float>(voice->voice));
    if (portOpen())
        sendInstruction(instructionNoteOff, voice->voice, -1.0F, -1.0F);
    emit noteToggled(ratio, false);
    soundingParameters.remove(ratio);
}

void PdPlayer::clearInstruction()
{
    mInstructionVoices.clear(); // keeps its room
    mInstructionValues1.clear();
    mInstructionValues2.clear();
}

void PdPlayer::addToInstruction(int voice, float value1, float value2)
{
    mInstructionVoices.append(voice);
    mInstructionValues1.append(value1);
    mInstructionValues2.append(value2);
}

void PdPlayer::sendInstruction(Instruction instruction, int voice, float value1, float value2)
{
    clearInstruction();
    addToInstruction(voice, value1, value2);
    emit instructionsToInterface(instruction, mInstructionVoices, mInstructionValues1, mInstructionValues2);
}

void PdPlayer::onVoiceStopped(int index)
{
    Voice* voice = mVoices.slot(index);
    if (!voice || !voice->released)
        return;
    ORLO_AUDIO_DEBUG << "voice stopped for" << text(voice->ratio) << "voice" << index;
    mVoicesChanged = true;
    if (mVoices.release(*voice))
        ORLO_AUDIO_DEBUG << "removing voice" << index << "from note map";
}

void PdPlayer::allNotesOff(bool force)
{
    // A copy: a patch without a release reports its voices' end at once, and that takes entries
    // out of the map.
    SoundingRatios ratios;
    for (const Voice* voice : mVoices.noteMap) // released ones too
        ratios.push_back(voice->ratio);
    for (const OrloRatio& ratio : ratios) {
        if (force || !heldNodes.contains(ratio))
            noteOff(ratio);
    }
}

void PdPlayer::nodesHoldActive(bool active)
{
    for (const OrloRatio& ratio : heldNodes)
        emit nodeHold(ratio, false);
    heldNodes.clear();
    if (active) {
        for (const OrloRatio& ratio : soundingNow()) {
            heldNodes.append(ratio);
            emit nodeHold(ratio, true);
        }
    }
    mHoldActive = active;
}

// ---------------------------------------------------------------- transposition and settings

void PdPlayer::transpose(signed char step)
{
    if (step == 0)
        mTransposition = OrloRatio(1, 1);
    else if (!multiplyTransposition(OrloRatio(OrloRatio::productOfSteps(OrloPath(step).toCharArray()))))
        return;
    emit transposed(mTransposition, step);
}

void PdPlayer::transpose(const OrloRatio& ratio)
{
    if (multiplyTransposition(ratio))
        emit transposed(mTransposition, Orlo::FREE_TRANSPOSITION);
}

bool PdPlayer::multiplyTransposition(const OrloRatio& by)
{
    if (by.numerator() == 0 || !mTransposition.fitsWhenMultipliedWith(by)) {
        AudioLog::warning("PdPlayer: a transposition by %1/%2 does not fit and is refused.",
                          {by.numerator(), by.denominator()});
        return false;
    }
    mTransposition *= by;
    return true;
}

void PdPlayer::setVoiceVolume(float volume)
{
    if (!std::isfinite(volume)) // the sum of adjustments
        return;
    mVoiceVolume = volume;
    emit voiceVolumeChanged(volume);
}

void PdPlayer::setVolume(float volume)
{
    if (!std::isfinite(volume))
        return;
    mMasterVolume = volume;
    sendPdVolumeMessage(volume);
    emit volumeChanged(volume);
}

void PdPlayer::setMonophonic(bool on)
{
    mMonophonic = on;
    mMonoVoice = -1;
    emit monophonicChanged(on);
}

void PdPlayer::setBaseFrequency(float frequency)
{
    mBaseFrequency = frequency;
    emit baseFrequencyChanged(frequency);
}

void PdPlayer::togglePrimeEnabled(int prime)
{
    mPrimeEnabled[prime] = !mPrimeEnabled[prime];
    emit primeEnabledToggled(prime, mPrimeEnabled[prime]);
}

void PdPlayer::setMaxVoices(int voices)
{
    mMaxVoices = qBound(1, voices, VoiceTable::SLOTS);
    qWarning() << "PdPlayer: Max number of voices set to " << mMaxVoices;
}

void PdPlayer::setThreadPriority(int priority)
{
    QThread* thread = QThread::currentThread();
    thread->setPriority(static_cast<QThread::Priority>(priority));
    qDebug() << "PdPlayer Thread: ID, Priority, LoopLevel " << QThread::currentThreadId()
             << thread->priority() << thread->loopLevel();
}

// ---------------------------------------------------------------- look-ups

QList<OrloRatio> PdPlayer::getAllSoundingRatios() const
{
    QList<OrloRatio> sounding;
    for (const VoiceSnapshot::Entry& entry : mSnapshot.read()) {
        ORLO_AUDIO_DEBUG << "PdPlayer:getAllSoundingRatios: ratio, voice, seqId, inRelease "
                         << text(entry.ratio) << entry.voice << entry.seqId << entry.released;
        if (!entry.released)
            sounding.append(entry.ratio);
    }
    ORLO_AUDIO_DEBUG << "PdPlayer:getAllSoundingRatios, number of which are " << sounding.size();
    return sounding;
}

PdPlayer::SoundingRatios PdPlayer::soundingNow() const
{
    SoundingRatios sounding;
    for (const Voice* voice : mVoices.noteMap) {
        if (!voice->released)
            sounding.push_back(voice->ratio);
    }
    return sounding;
}

bool PdPlayer::copyState(EngineState& state) const
{
    const auto copied = [](const auto& ratios, std::vector<OrloRatio>& to) {
        to.clear();
        for (const OrloRatio& ratio : ratios) {
            if (to.size() == to.capacity())
                return false;
            to.push_back(ratio);
        }
        return true;
    };
    state.transposition = mTransposition;
    state.volume = mMasterVolume;
    state.voiceVolume = mVoiceVolume;
    state.baseFrequency = mBaseFrequency;
    state.monophonic = mMonophonic;
    for (size_t prime = 0; prime < state.primes.size(); ++prime)
        state.primes[prime] = mPrimeEnabled[static_cast<std::int64_t>(prime)];
    state.sliders = currentParameters;
    state.cached = cachedParameters;
    state.macroNames = mMacroNames;
    state.macroDefaults = mMacroDefaults;
    return copied(soundingNow(), state.sounding) && copied(alteredNodes, state.altered)
           && copied(selectedNodes, state.selected) && copied(heldNodes, state.held);
}

float PdPlayer::ratioToFrequency(const OrloRatio& ratio) const
{
    return static_cast<float>(ratio.numerator()) / static_cast<float>(ratio.denominator()) * mBaseFrequency;
}
