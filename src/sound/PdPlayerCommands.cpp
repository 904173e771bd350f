// The commands: how they come in, and what each type does, which is a row of a table.

#include "sound/PdPlayer.h"

#include "app/Accessors.h"
#include "model/Orlo.h"
#include "sound/AudioLog.h"
#include "sound/EngineRelay.h"
#include "sound/KeySource.h"
#include "sound/ThreadCheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <optional>

namespace {

using Chunk = PdMessageBuffer::Chunk;
using Handler = void (*)(PdPlayer&, const Chunk&);

struct CommandRow
{
    constexpr CommandRow(std::int32_t type, Handler handler)
        : CommandRow(type, type, handler)
    {
    }
    constexpr CommandRow(std::int32_t firstType, std::int32_t lastType, Handler handler)
        : first(firstType)
        , last(lastType)
        , run(handler)
    {
    }

    std::int32_t first;
    std::int32_t last;
    Handler run;
};

/// The value as a step: rounded half away from zero, then as a signed 8-bit number.
signed char stepFromValue(float value)
{
    const float rounded = std::trunc(value + std::copysign(0.5F, value));
    const float inRange = qBound(-2147483520.0F, rounded, 2147483520.0F);
    return static_cast<signed char>(static_cast<int>(inRange));
}

/// Selection and reset of one node carry the ratio as the lattice knows it. Empty for a ratio that is no
/// pitch or does not fit.
std::optional<OrloRatio> absoluteForm(const OrloRatio& relative)
{
    const PublishedRatio::Value by =
        app::orlo() ? app::orlo()->publishedTransposition() : PublishedRatio::Value{1, 1};
    OrloRatio ratio(by.numerator, by.denominator);
    if (relative.numerator() == 0 || !ratio.fitsWhenMultipliedWith(relative))
        return std::nullopt;
    ratio *= relative;
    return ratio;
}

} // namespace

const PdPlayer::Handlers& PdPlayer::handlers()
{
    using E = OrloEvent;
    using P = PdPlayer;
    static constexpr CommandRow rows[] = {
        {E::NoteToggleByPath, [](P& p, const Chunk& c) { p.toggleByPath(c.path); }},
        {E::AllNotesOff, [](P& p, const Chunk&) { p.allNotesOff(false); }},
        {E::AllNotesOffForced, [](P& p, const Chunk&) { p.allNotesOff(true); }},
        {E::NodesDeselectAll,
         [](P& p, const Chunk& c) {
             p.nodeDeselectAll();
             p.removeNode(c.ratio); // the ratio is 0/1 here, so only the signal goes out
         }},
        {E::NodesResetSelected, [](P& p, const Chunk&) { p.resetSelectedNodes(false); }},
        {E::NodesResetSelectedDeselect, [](P& p, const Chunk&) { p.resetSelectedNodes(true); }},
        {E::NodesResetAll, [](P& p, const Chunk&) { p.resetAllNodes(false, false); }},
        {E::NodesResetAllDeselect, [](P& p, const Chunk&) { p.resetAllNodes(false, true); }},
        {E::NodesResetAllAndControls, [](P& p, const Chunk&) { p.resetAllNodes(true, false); }},
        {E::NodesResetAllAndControlsDeselect, [](P& p, const Chunk&) { p.resetAllNodes(true, true); }},
        {E::GlissOneReset, [](P& p, const Chunk&) { p.resetGlissandoAllNodes(1); }},
        {E::GlissTwoReset, [](P& p, const Chunk&) { p.resetGlissandoAllNodes(2); }},
        {E::GlissBothReset, [](P& p, const Chunk&) { p.resetGlissandoAllNodes(0); }},
        {E::NodesToggleAllSelected, [](P& p, const Chunk&) { p.toggleAllSelected(); }},
        {E::NodesSelectAllSounding, [](P& p, const Chunk&) { p.selectAllSounding(); }},
        {E::TransposeByPrimeStep, [](P& p, const Chunk& c) { p.transpose(stepFromValue(c.value)); }},
        {E::VoiceVolumeAdjust, [](P& p, const Chunk& c) { p.setVoiceVolume(p.mVoiceVolume + c.value); }},
        {E::VoiceVolumeSet, [](P& p, const Chunk& c) { p.setVoiceVolume(c.value); }},
        {E::MasterVolumeAdjust, [](P& p, const Chunk& c) { p.setVolume(p.mMasterVolume + c.value); }},
        {E::MasterVolumeSet, [](P& p, const Chunk& c) { p.setVolume(c.value); }},
        {E::MonophonicSet, [](P& p, const Chunk& c) { p.setMonophonic(c.value > 0.5F); }},
        {E::PatchStep,
         [](P& p, const Chunk& c) { emit c.value > 0.0F ? p.patchIncRequested() : p.patchDecRequested(); }},
        {E::BaseFrequencySet, [](P& p, const Chunk& c) { p.setBaseFrequency(c.value); }},
        {E::PrimeEnabledToggle,
         [](P& p, const Chunk& c) {
             if (c.value >= 0.0F && c.value < static_cast<float>(p.mPrimeEnabled.CAPACITY))
                 p.togglePrimeEnabled(static_cast<int>(c.value));
         }},
        {E::Macro1Set, E::Macro8Set,
         [](P& p, const Chunk& c) { p.setMacroValue(c.type - E::Macro1Set + 1, c.value); }},
        {E::GlissOneSet, [](P& p, const Chunk& c) { p.applyGlissandoOne(c.value); }},
        {E::GlissTwoSet, [](P& p, const Chunk& c) { p.applyGlissandoTwo(c.value); }},
        {E::NoteToggleByRatio, [](P& p, const Chunk& c) { p.toggleByRatio(c.ratio, c.value); }},
        {E::NodeRemove, [](P& p, const Chunk& c) { p.removeNode(c.ratio); }},
        {E::TransposeByRatio, [](P& p, const Chunk& c) { p.transpose(c.ratio); }},
        {E::NodeSelectToggle,
         [](P& p, const Chunk& c) {
             if (const auto ratio = absoluteForm(c.ratio))
                 p.nodeSelectToggleByRatio(*ratio);
         }},
        {E::NodeReset,
         [](P& p, const Chunk& c) {
             if (const auto ratio = absoluteForm(c.ratio))
                 p.nodeResetOne(*ratio, c.value != 0.0F);
         }},
        {E::NodesRecalled, [](P& p, const Chunk&) { emit p.nodesRecalled(); }},
        {E::NodesHold, [](P& p, const Chunk& c) { p.nodesHoldActive(c.value == 1.0F); }},
        {E::PatchOpen, [](P& p, const Chunk&) { p.openPatch(); }},
        {E::PatchClose, [](P& p, const Chunk&) { p.closePatch(); }},
    };
    static constexpr Handlers byType = [] {
        Handlers table{};
        for (const CommandRow& row : rows) {
            for (std::int32_t type = row.first; type <= row.last; ++type)
                table[static_cast<std::size_t>(type)] = row.run;
        }
        return table;
    }();
    static_assert(std::ranges::find(byType, nullptr) == byType.end(), "a type has no row");
    return byType;
}

void PdPlayer::processChunk(const Chunk* chunk)
{
    ThreadCheck::audio();
    if (chunk->type < 0 || chunk->type >= OrloEvent::TYPE_COUNT)
        return;
    if (!std::isfinite(chunk->value)) {
        AudioLog::rationed("PdPlayer: an event of type %1 with a value that is no number is dropped.",
                           {chunk->type});
        return;
    }
    try {
        handlers()[static_cast<std::size_t>(chunk->type)](*this, *chunk);
    } catch (const std::exception& error) {
        // A ratio that cannot be formed must not end the audio thread.
        AudioLog::rationed("PdPlayer: an event of type %1 is dropped: %2", {chunk->type, error.what()});
    }
}

// ---------------------------------------------------------------- from the rings

void PdPlayer::queueEventGui(const OrloEvent* event)
{
    ThreadCheck::gui();
    if (!isSoundOver()) // after that no block reads the ring
        guiBuffer.queueEvent(event);
}

void PdPlayer::queueGui(OrloEvent::Type type, float value)
{
    ThreadCheck::gui();
    const auto event = std::make_unique<OrloEvent>(type, value);
    queueEventGui(event.get());
}

void PdPlayer::queueEventSerial(const OrloEvent* event)
{
    ThreadCheck::listener();
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
    ThreadCheck::audio();
    mRelay->beginBlock();
    // Asked for behind commands that are in the ring by now, so it follows when they have run.
    const bool retunes = mRetuneAsked.load(std::memory_order_relaxed)
                         && mRetuneAsked.exchange(false, std::memory_order_acquire);
    // What the engine toggles by itself runs in the block after the command, whichever ring brought
    // that; it does not go through the rings, since each has one writer.
    mToggleNow.swap(mToggleLater);
    drain(serialBuffer);
    toggleLater();
    if (mKeySource)
        mKeySource->playInto(*this);
    drain(guiBuffer);
    if (retunes)
        retuneToBase();
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
