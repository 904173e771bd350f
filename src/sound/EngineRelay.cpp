#include "sound/EngineRelay.h"

#include "model/Orlo.h"
#include "sound/AudioLog.h"
#include "sound/PdPlayer.h"
#include "sound/ThreadCheck.h"

#include <QDebug>
#include <QTimer>

namespace {

constexpr int TRY_AGAIN_MS = 5000;       // the window stands still for up to two seconds each time
constexpr std::size_t FIRST_ROOM = 4096; // ratios

template <class List>
const List& listOf(const void* list)
{
    return *static_cast<const List*>(list);
}

} // namespace

EngineRelay::EngineRelay(PdPlayer& player)
    : mPlayer(player)
{
    if (!mRing.init(RECORDS * sizeof(Record) + 1))
        qCritical() << "There is no memory for the engine's reports.";
    mPlayer.copyState(mTold);
    AudioLog::renewRations(); // a process can have one player after another
    connect(&mWaker, &ThreadWaker::woken, this, &EngineRelay::drain);

    // Direct: the record is written where the signal is emitted.
    const auto hear = [&](auto signal, auto write) {
        connect(&player, signal, this, write, Qt::DirectConnection);
    };
    const auto hearNode = [&](auto signal, Kind kind) {
        hear(signal, [this, kind](const OrloRatio& ratio, int number) { record(kind, ratio, number); });
    };
    const auto hearValue = [&](auto signal, Kind kind) {
        hear(signal, [this, kind](float value) { record(kind, 0, value); });
    };
    const auto hearCall = [&](auto signal, Kind kind) { hear(signal, [this, kind] { record(kind); }); };
    const auto hearList = [&]<class List>(void (PdPlayer::*signal)(List), Kind kind) {
        hear(signal,
             [this, kind](const List& list) { record(Record{.kind = kind, .list = new List(list)}); });
    };
    hearNode(&PdPlayer::noteToggled, Kind::NoteToggled);
    hearNode(&PdPlayer::nodeSelected, Kind::NodeSelected);
    hearNode(&PdPlayer::nodeHold, Kind::NodeHold);
    hearNode(&PdPlayer::nodeAltered, Kind::NodeAltered);
    hearNode(&PdPlayer::transposed, Kind::Transposed);
    hear(&PdPlayer::removeNodeInStack,
         [this](const OrloRatio& ratio) { record(Kind::RemoveNodeInStack, ratio); });
    hearValue(&PdPlayer::volumeChanged, Kind::VolumeChanged);
    hearValue(&PdPlayer::voiceVolumeChanged, Kind::VoiceVolumeChanged);
    hearValue(&PdPlayer::baseFrequencyChanged, Kind::BaseFrequencyChanged);
    hear(&PdPlayer::monophonicChanged, [this](bool on) { record(Kind::MonophonicChanged, on); });
    hear(&PdPlayer::primeEnabledToggled,
         [this](int prime, bool on) { record(Kind::PrimeEnabledToggled, prime, on ? 1.0F : 0.0F); });
    hear(qOverload<int, float>(&PdPlayer::macroValueChanged),
         [this](int macro, float value) { record(Kind::MacroValueChanged, macro, value); });
    hear(&PdPlayer::resetGlissSliders, [this](short which) { record(Kind::ResetGlissSliders, which); });
    hearCall(&PdPlayer::nodesRecalled, Kind::NodesRecalled);
    hearCall(&PdPlayer::patchDecRequested, Kind::PatchDecRequested);
    hearCall(&PdPlayer::patchIncRequested, Kind::PatchIncRequested);
    hearList(&PdPlayer::macroNamesReceived, Kind::MacroNamesReceived);
    hearList(&PdPlayer::macroDefaultsReceived, Kind::MacroDefaultsReceived);
    hearList(&PdPlayer::setMacroSliders, Kind::SetMacroSliders);
}

EngineRelay::~EngineRelay()
{
    Record unread;
    while (read(unread))
        freeList(unread);
}

// ---------------------------------------------------------------- the engine's side

void EngineRelay::record(Kind kind, const OrloRatio& ratio, int number)
{
    record(Record{
        .kind = kind, .number = number, .numerator = ratio.numerator(), .denominator = ratio.denominator()});
}

void EngineRelay::record(Kind kind, int number, float value)
{
    record(Record{.kind = kind, .number = number, .value = value});
}

void EngineRelay::record(const Record& record)
{
    ThreadCheck::audio();
    if (mRing.write(&record, sizeof(record))) {
        ++mRecords;
    } else {
        freeList(record);
        mDropped.fetch_add(1, std::memory_order_relaxed);
        mLost.fetch_or(bit(record.kind), std::memory_order_relaxed);
    }
    mWritten = true;
    if (!mInBlock)
        endBlock();
}

void EngineRelay::endBlock()
{
    mInBlock = false;
    if (std::exchange(mWritten, false) || AudioLog::isPending())
        mWaker.wake();
}

void EngineRelay::freeList(const Record& record)
{
    if (record.kind == Kind::MacroNamesReceived)
        delete static_cast<const QStringList*>(record.list);
    else
        delete static_cast<const QList<float>*>(record.list);
}

// ---------------------------------------------------------------- the graphical thread's side

bool EngineRelay::read(Record& record)
{
    if (!mRing.read(&record, sizeof(record)))
        return false;
    ++mRead;
    return true;
}

void EngineRelay::drain()
{
    ThreadCheck::gui();
    mWaker.answer();
    AudioLog::drain();
    // A receiver may run an event loop of its own, and come here again. What is newer than the state that
    // is being told comes after it.
    if (mResynchronising)
        return;
    Record next;
    while (read(next))
        report(next);
    if (mLost.load(std::memory_order_relaxed) != 0)
        resynchronise();
}

void EngineRelay::report(const Record& record)
{
    const OrloRatio ratio(record.numerator, record.denominator);
    const bool on = record.number != 0;
    switch (record.kind) {
    case Kind::NoteToggled: return report(mSounding, ratio, on, &EngineRelay::noteToggled);
    case Kind::NodeSelected: return report(mSelected, ratio, on, &EngineRelay::nodeSelected);
    case Kind::NodeHold: return report(mHeld, ratio, on, &EngineRelay::nodeHold);
    case Kind::NodeAltered: return report(mAltered, ratio, on, &EngineRelay::nodeAltered);
    case Kind::RemoveNodeInStack: emit removeNodeInStack(ratio); return;
    case Kind::NodesRecalled: emit nodesRecalled(); return;
    case Kind::Transposed: emit transposed(mTold.transposition = ratio, record.number); return;
    case Kind::VolumeChanged: emit volumeChanged(mTold.volume = record.value); return;
    case Kind::VoiceVolumeChanged: emit voiceVolumeChanged(mTold.voiceVolume = record.value); return;
    case Kind::BaseFrequencyChanged: emit baseFrequencyChanged(mTold.baseFrequency = record.value); return;
    case Kind::MonophonicChanged: emit monophonicChanged(mTold.monophonic = on); return;
    case Kind::PrimeEnabledToggled: {
        const auto prime = static_cast<size_t>(record.number);
        const bool enabled = record.value != 0.0F;
        if (prime < mTold.primes.size())
            mTold.primes[prime] = enabled;
        emit primeEnabledToggled(record.number, enabled);
        return;
    }
    case Kind::MacroValueChanged: {
        const auto macro = static_cast<size_t>(record.number - 1);
        if (macro < mTold.sliders.macros.size())
            mTold.sliders.macros[macro] = record.value;
        emit macroValueChanged(record.number, record.value);
        return;
    }
    case Kind::PatchDecRequested: emit patchDecRequested(); return;
    case Kind::PatchIncRequested: emit patchIncRequested(); return;
    case Kind::ResetGlissSliders: emit resetGlissSliders(static_cast<short>(record.number)); return;
    case Kind::MacroNamesReceived: emit macroNamesReceived(listOf<QStringList>(record.list)); break;
    case Kind::MacroDefaultsReceived: emit macroDefaultsReceived(listOf<QList<float>>(record.list)); break;
    case Kind::SetMacroSliders: emit setMacroSliders(listOf<QList<float>>(record.list)); break;
    }
    freeList(record);
}

void EngineRelay::report(QSet<OrloRatio>& told, const OrloRatio& ratio, bool on, NodeSignal signal)
{
    if (on)
        told.insert(ratio);
    else
        told.remove(ratio);
    emit(this->*signal)(ratio, on);
}

// ---------------------------------------------------------------- after a loss

void EngineRelay::resynchronise()
{
    EngineState state;
    unsigned lost = 0;
    unsigned dropped = 0;
    std::uint64_t records = 0;
    bool complete = false;
    for (std::size_t room = FIRST_ROOM; !complete; room *= 2) {
        for (auto* list : {&state.sounding, &state.altered, &state.selected, &state.held})
            list->reserve(room);
        const bool ran = mPlayer.handOver().runInBlock([&] {
            complete = mPlayer.copyState(state);
            if (!complete)
                return;
            lost = mLost.exchange(0, std::memory_order_relaxed);
            dropped = mDropped.exchange(0, std::memory_order_relaxed);
            records = mRecords;
        });
        if (!ran) {
            if (!mPlayer.isSoundOver())
                QTimer::singleShot(TRY_AGAIN_MS, this, &EngineRelay::drain);
            return;
        }
    }
    mResynchronising = true;
    Record next;
    while (mRead < records && read(next)) // older than the state
        report(next);
    reportDifference(state, lost);
    while (read(next))
        report(next);
    mResynchronising = false;
    qWarning() << "The window did not keep up with the engine:" << dropped
               << "reports were dropped, and what it shows was taken anew.";
}

void EngineRelay::reportDifference(const EngineState& state, unsigned lost)
{
    reportValues(state);

    // A node comes into the stack when its note starts, so one that has sounded unheard is told so.
    const QSet<OrloRatio> sounding(state.sounding.begin(), state.sounding.end());
    for (const auto& [marked, told] :
         {std::pair{&state.altered, &mAltered}, {&state.selected, &mSelected}, {&state.held, &mHeld}}) {
        for (const OrloRatio& ratio : *marked) {
            if (!told->contains(ratio) && !mSounding.contains(ratio) && !sounding.contains(ratio))
                report(mSounding, ratio, true, &EngineRelay::noteToggled);
        }
    }
    reportNodes(mSounding, state.sounding, &EngineRelay::noteToggled);
    reportNodes(mAltered, state.altered, &EngineRelay::nodeAltered);
    reportNodes(mSelected, state.selected, &EngineRelay::nodeSelected);
    reportNodes(mHeld, state.held, &EngineRelay::nodeHold);

    // In the order in which a patch brings them.
    if ((lost & bit(Kind::MacroNamesReceived)) != 0)
        emit macroNamesReceived(state.macroNames);
    if ((lost & bit(Kind::MacroDefaultsReceived)) != 0)
        emit macroDefaultsReceived(state.macroDefaults);
    if ((lost & bit(Kind::SetMacroSliders)) != 0)
        emit setMacroSliders(QList<float>(state.cached.macros.begin(), state.cached.macros.end()));
    for (size_t i = 0; i < state.sliders.macros.size(); ++i) {
        if (state.sliders.macros[i] != mTold.sliders.macros[i])
            report(Record{.kind = Kind::MacroValueChanged,
                          .number = static_cast<int>(i) + 1,
                          .value = state.sliders.macros[i]});
    }
    // A slider that has been moved since stays.
    const NodeParameters reset;
    if ((lost & bit(Kind::ResetGlissSliders)) != 0) {
        if (state.sliders.glissOne == reset.glissOne)
            emit resetGlissSliders(1);
        if (state.sliders.glissTwo == reset.glissTwo)
            emit resetGlissSliders(2);
    }
    if ((lost & bit(Kind::NodesRecalled)) != 0)
        emit nodesRecalled();
}

void EngineRelay::reportValues(const EngineState& state)
{
    const auto differing = [this](Kind kind, auto told, auto now, int number, float value) {
        if (told != now)
            report(Record{.kind = kind, .number = number, .value = value});
    };
    if (!(state.transposition == mTold.transposition)) {
        const int step = state.transposition == OrloRatio(1, 1) ? 0 : Orlo::FREE_TRANSPOSITION;
        emit transposed(mTold.transposition = state.transposition, step);
    }
    differing(Kind::VolumeChanged, mTold.volume, state.volume, 0, state.volume);
    differing(Kind::VoiceVolumeChanged, mTold.voiceVolume, state.voiceVolume, 0, state.voiceVolume);
    differing(Kind::BaseFrequencyChanged, mTold.baseFrequency, state.baseFrequency, 0, state.baseFrequency);
    differing(Kind::MonophonicChanged, mTold.monophonic, state.monophonic, state.monophonic ? 1 : 0, 0.0F);
    for (size_t prime = 0; prime < state.primes.size(); ++prime)
        differing(Kind::PrimeEnabledToggled, mTold.primes[prime], state.primes[prime],
                  static_cast<int>(prime), state.primes[prime] ? 1.0F : 0.0F);
}

void EngineRelay::reportNodes(QSet<OrloRatio>& told, const std::vector<OrloRatio>& now, NodeSignal signal)
{
    const QSet<OrloRatio> are(now.begin(), now.end());
    const QSet<OrloRatio> were = told;
    for (const OrloRatio& ratio : were) {
        if (!are.contains(ratio))
            report(told, ratio, false, signal);
    }
    for (const OrloRatio& ratio : now) {
        if (!were.contains(ratio))
            report(told, ratio, true, signal);
    }
}
