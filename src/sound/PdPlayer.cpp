#include "sound/PdPlayer.h"

#include "model/Orlo.h"
#include "sound/EngineRelay.h"
#include "sound/TemperedRatio.h"
#include "sound/ThreadCheck.h"

#include <QThread>

#include <cmath>

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
    ThreadCheck::gui();
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

EngineRelay& PdPlayer::relay() const
{
    ThreadCheck::gui();
    return *mRelay;
}

void PdPlayer::setPortOpenFlag(const std::atomic<bool>* flag)
{
    ThreadCheck::stopped();
    mPortOpen = flag;
}

// ---------------------------------------------------------------- settings

void PdPlayer::setVoiceVolume(float volume)
{
    ThreadCheck::audio();
    if (!std::isfinite(volume)) // the sum of adjustments
        return;
    mVoiceVolume = volume;
    emit voiceVolumeChanged(volume);
}

void PdPlayer::setVolume(float volume)
{
    ThreadCheck::audio();
    if (!std::isfinite(volume))
        return;
    mMasterVolume = volume;
    sendPdVolumeMessage(volume);
    emit volumeChanged(volume);
}

void PdPlayer::setMonophonic(bool on)
{
    ThreadCheck::audio();
    mMonophonic = on;
    mMonoVoice = -1;
    emit monophonicChanged(on);
}

void PdPlayer::setBaseFrequency(float frequency)
{
    ThreadCheck::audio();
    mBaseFrequency = frequency;
    emit baseFrequencyChanged(frequency);
}

void PdPlayer::setMaxVoices(int voices)
{
    ThreadCheck::stopped();
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

// ---------------------------------------------------------------- its state

bool PdPlayer::copyState(EngineState& state) const
{
    ThreadCheck::audio();
    const auto copied = [](const auto& ratios, std::vector<OrloRatio>& to) {
        to.clear();
        for (const OrloRatio& ratio : ratios) {
            if (temperedratio::is(ratio)) // nobody is told of those
                continue;
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
    state.sliders = mNodes.current();
    state.cached = mNodes.cached();
    state.macroNames = mMacroNames;
    state.macroDefaults = mMacroDefaults;
    return copied(soundingNow(), state.sounding) && copied(mNodes.altered(), state.altered)
           && copied(mNodes.selected(), state.selected) && copied(heldNodes, state.held);
}
