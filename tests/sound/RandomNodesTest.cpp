// Long random play against a model of the rules: every type of command with any value, from the screen and
// from the device, more than the rings hold, and changes of patch. What the patch received of every voice
// must be what the model says, after every block.
//
// ORLO_STORM_EVENTS and ORLO_STORM_SEED in the environment make it longer, or another one.

#include "sound/NodeModel.h"
#include "sound/PatchEar.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "sound/ThreadCheck.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <ranges>

namespace {

using Ratio = NodeModel::Ratio;
using Command = NodeModel::Command;

// Answers the query for its macros and is silent; it does not report a voice's end.
const QByteArray PATCH = "#N canvas 0 0 200 200 12;\n"
                         "#X obj 20 20 r query-macros;\n"
                         "#X msg 20 50 list info A(0.25):B(0.5):C(0.75):D(0.125):E(0.9):F(0.1):G(0):H;\n"
                         "#X obj 20 80 s output-voice-info;\n"
                         "#X connect 0 0 1 0;\n#X connect 1 0 2 0;\n";
constexpr std::array DEFAULTS{0.25F, 0.5F, 0.75F, 0.125F, 0.9F, 0.1F, 0.0F, -1.0F};

constexpr int SLOTS = 12; // few, so that voices are stolen
constexpr size_t RING_EVENTS = 255;
constexpr int PRIMES[] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31};

OrloRatio orlo(Ratio ratio)
{
    return OrloRatio(ratio.first, ratio.second);
}

Ratio ratioOf(const OrloRatio& ratio)
{
    return {ratio.numerator(), ratio.denominator()};
}

std::set<Ratio> setOf(const QList<OrloRatio>& ratios)
{
    std::set<Ratio> set;
    for (const OrloRatio& ratio : ratios)
        set.insert(ratioOf(ratio));
    return set;
}

int fromEnvironment(const char* name, int otherwise)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : otherwise;
}

bool isSame(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

class RandomNodes : public ::testing::Test
{
protected:
    RandomNodes()
    {
        rig.orlo.initWithDefaults();
        PdPlayer::connectLattice(&rig.player, &rig.orlo);
        EXPECT_TRUE(rig.loadMainText(PATCH));
    }

    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    bool chance(int percent) { return below(100) < percent; }

    // ---------------------------------------------------------------- what is played

    float wildFloat()
    {
        using Limits = std::numeric_limits<float>;
        const float odd[] = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),  Limits::max(),
                             Limits::lowest(),    Limits::min(),      Limits::denorm_min(), -0.0F};
        return chance(30) ? odd[below(std::size(odd))] : std::bit_cast<float>(static_cast<quint32>(random()));
    }

    float plainFloat(int type)
    {
        const float slider = static_cast<float>(below(257)) / 256.0F;
        switch (type) {
        case OrloEvent::TransposeByPrimeStep:
            return chance(40) ? 0.0F : static_cast<float>(PRIMES[below(3)] * (chance(50) ? 1 : -1));
        case OrloEvent::VoiceVolumeAdjust:
        case OrloEvent::MasterVolumeAdjust: return slider - 0.5F;
        case OrloEvent::BaseFrequencySet: // the bounds of what is heard among them
            return chance(90) ? 220.0F + 440.0F * slider : chance(50) ? 20.0F : 20000.0F;
        case OrloEvent::PrimeEnabledToggle: return static_cast<float>(chance(10) ? 1 : PRIMES[below(11)]);
        case OrloEvent::NoteToggleByRatio: return chance(50) ? 1.0F : 2.0F;
        case OrloEvent::NodesHold:
        case OrloEvent::NodeReset:
        case OrloEvent::MonophonicSet: return static_cast<float>(below(2));
        default: return slider;
        }
    }

    std::vector<int> anyPath()
    {
        std::vector<int> path;
        for (int i = below(isWild() ? 7 : 3); i > 0; --i)
            path.push_back(PRIMES[below(isWild() ? 11 : 3)] * (chance(50) ? 1 : -1));
        if (isWild() && !path.empty())
            path.back() = below(70) - 35;
        return path;
    }

    Ratio anyRatio()
    {
        if (isWild())
            return ratioOf(OrloRatio(random() >> below(64), std::max<quint64>(1, random() >> below(64))));
        const OrloRatio relative{OrloPath(textOf(anyPath()))};
        OrloRatio ratio(relative);
        if (chance(50) && orlo(model.transposition).fitsWhenMultipliedWith(relative))
            ratio *= orlo(model.transposition);
        return ratioOf(ratio);
    }

    static QString textOf(const std::vector<int>& path)
    {
        QString text;
        for (const int step : path)
            text += u'/' + QString::number(step);
        return text;
    }

    /// The event, and in `command` what it says. Now and then a plain one of any type, as a device's.
    std::unique_ptr<OrloEvent> anyEvent(Command& command)
    {
        command.type = mTypes(random) - 1;
        const float value = isWild() ? wildFloat() : plainFloat(command.type);
        const auto type = static_cast<OrloEvent::Type>(command.type);
        const bool hasClass = type == OrloEvent::NoteToggleByPath || type >= OrloEvent::NoteToggleByRatio;
        if (!hasClass || chance(5)) {
            command.value = value;
            return std::make_unique<OrloEvent>(type, value);
        }
        command.ratio = anyRatio();
        const OrloRatio ratio = orlo(command.ratio);
        switch (type) {
        case OrloEvent::NoteToggleByPath:
            command.path = anyPath();
            return std::make_unique<OrloNoteEvent>(textOf(command.path));
        case OrloEvent::NoteToggleByRatio:
            command.value = value;
            return std::make_unique<OrloNoteEvent>(ratio, value);
        case OrloEvent::NodeRemove: return std::make_unique<OrloNodeRemoveEvent>(ratio);
        case OrloEvent::TransposeByRatio: return std::make_unique<OrloTransposeEvent>(ratio);
        case OrloEvent::NodeSelectToggle: return std::make_unique<OrloNodeSelectToggleEvent>(ratio);
        case OrloEvent::NodeReset:
            command.value = value;
            return std::make_unique<OrloNodeResetEvent>(ratio, value);
        default: command.value = value; return std::make_unique<OrloEvent>(type, value);
        }
    }

    void queueAnything(int events, const std::set<int>& exceptions = {})
    {
        for (; events > 0; --events) {
            Command command;
            const std::unique_ptr<OrloEvent> event = anyEvent(command);
            if (!exceptions.contains(command.type))
                queue(command, *event);
        }
    }

    void queue(const Command& command, const OrloEvent& event)
    {
        ++count;
        const bool isDevice = chance(30);
        if (isDevice) {
            const ThreadCheck::RoleOfThisThread role(ThreadCheck::Role::Listener);
            rig.player.queueEventSerial(&event);
        } else {
            rig.queue(event);
        }
        std::vector<Command>& ring = isDevice ? device : screen;
        if (ring.size() < RING_EVENTS) // the rest is dropped
            ring.push_back(command);
    }

    void queuePlain(int type, float value)
    {
        queue({type, value, {0, 1}, {}}, OrloEvent(static_cast<OrloEvent::Type>(type), value));
    }

    /// Between blocks: the engine reads options when it runs a command.
    void anyOption()
    {
        rig.settings.softNodeReset = model.softReset = chance(50);
        rig.settings.maintainMacroParameters = model.maintainMacros = chance(50);
        rig.settings.glissOneRangeCents = model.newRanges[0] = 600.0F * static_cast<float>(1 << below(3));
        rig.settings.glissTwoRangeCents = model.newRanges[1] = 50.0F * static_cast<float>(1 << below(3));
    }

    /// Which types come often differs from phase to phase, and so does how wild they are.
    void beginPhase()
    {
        std::array<int, OrloEvent::TYPE_COUNT + 2> weights{}; // from None to a number beyond the last
        for (int& weight : weights)
            weight = std::array{0, 1, 1, 8}[static_cast<size_t>(below(4))];
        for (const int type :
             {OrloEvent::NoteToggleByPath, OrloEvent::NoteToggleByRatio, OrloEvent::NodeSelectToggle})
            weights[static_cast<size_t>(type + 1)] = 12;
        mTypes = std::discrete_distribution<int>(weights.begin(), weights.end());
        mWildPercent = std::array{0, 1, 20}[static_cast<size_t>(below(3))];
        // From a plain state, so that what went before does not keep all notes silent.
        queuePlain(OrloEvent::BaseFrequencySet, 440.0F);
        queuePlain(OrloEvent::TransposeByPrimeStep, 0.0F);
        queuePlain(OrloEvent::NodesResetAllAndControlsDeselect, 0.0F);
        for (int macro = OrloEvent::Macro1Set; macro <= OrloEvent::Macro8Set; ++macro)
            queuePlain(macro, 0.5F);
    }

    // ---------------------------------------------------------------- what comes of it

    /// Queues a few events, or some, or more than fit.
    void block()
    {
        if (chance(5))
            anyOption();
        const int size = below(20);
        queueAnything(size < 15 ? 1 + below(4) : size < 19 ? below(40) : below(700));
        const bool retunes = chance(5);
        if (retunes)
            rig.player.retuneNotes();
        rig.render();
        follow(ratioOf(rig.orlo.transposition()));
        if (retunes)
            model.retuneToBase();
        QCoreApplication::processEvents();
        log.clear();
    }

    void follow(Ratio lattice)
    {
        model.lattice = lattice;
        model.heard = {std::exchange(ear.sounding.given, {}), std::exchange(ear.selected.given, {})};
        model.runBlock(std::exchange(device, {}), std::exchange(screen, {}));
    }

    /// With commands that wait: they run before the patch is closed, in one block or another. A closing among
    /// them could come when one is awaited. Now and then the play goes on without a patch before the next.
    void changePatch()
    {
        queueAnything(below(300),
                      {OrloEvent::NodesToggleAllSelected, OrloEvent::PatchOpen, OrloEvent::PatchClose});
        Ratio lattice = ratioOf(rig.orlo.transposition());
        const bool pauses = chance(60);
        if (pauses) {
            rig.underClock([this] { rig.player.unloadPatch(); });
            follow(lattice);
            model.runBlock({}, {});
            model.closePatch();
            QCoreApplication::processEvents();
            play(below(200));
            const bool isFine =
                chance(50); // one slider is moved, and the other reset, which holds in the next
            queuePlain(isFine ? OrloEvent::GlissTwoSet : OrloEvent::GlissOneSet, 0.75F);
            queuePlain(isFine ? OrloEvent::GlissOneReset : OrloEvent::GlissTwoReset, 1.0F);
            lattice = ratioOf(rig.orlo.transposition());
        }
        ASSERT_TRUE(rig.loadMainText(PATCH));
        follow(lattice);
        model.runBlock({}, {});
        if (!pauses)
            model.closePatch();
        model.openPatch();
        QCoreApplication::processEvents();
        EXPECT_EQ(ratioOf(rig.orlo.transposition()), model.transposition);
        EXPECT_EQ(ear.masterVolume, model.masterVolume);
        ASSERT_TRUE(agrees());
    }

    void play(int events)
    {
        for (const int end = count + events; count < end;) {
            SCOPED_TRACE(count);
            block();
            ASSERT_TRUE(agrees());
            most = std::max(most, std::min(model.sounding().size(), 2 * model.selected.size()));
            letVoicesEnd();
        }
    }

    void letVoicesEnd()
    {
        for (const float none : {0.0F, -1.0F, 129.0F, 1e30F, std::nanf("")})
            SoundRig::reportVoiceStop(none);
        for (size_t slot = 0; slot < SLOTS; ++slot) {
            if (!chance(20))
                continue; // a report of a voice that sounds is not heeded
            SoundRig::reportVoiceStop(static_cast<float>(slot + 1));
            model.end(slot);
        }
    }

    /// False at the first difference.
    bool agrees()
    {
        EXPECT_TRUE(model.heardAsTold && model.heard.starts.empty() && model.heard.selections.empty());
        EXPECT_EQ(setOf(rig.player.getAllSoundingRatios()), model.sounding());
        EXPECT_EQ(ear.sounding.now, model.sounding());
        EXPECT_EQ(ear.selected.now, std::set<Ratio>(model.selected.begin(), model.selected.end()));
        EXPECT_TRUE(std::ranges::equal(ear.altered.now, std::views::keys(model.altered)));
        EXPECT_EQ(ear.held.now, model.held);
        EXPECT_TRUE(std::ranges::equal(rig.player.getAllSelectedRatios(), model.selected, {}, ratioOf));
        EXPECT_TRUE(std::ranges::equal(setOf(rig.player.getAllRatiosWithAlteredParameters()),
                                       std::views::keys(model.altered)));
        for (size_t slot = 0; slot < SLOTS; ++slot) {
            const PatchEar::Voice& told = ear.voices.at(slot + 1);
            const NodeModel::Voice& voice = model.voices[slot];
            EXPECT_TRUE(isSame(told.frequency, voice.frequency))
                << slot << ": " << told.frequency << ", " << voice.frequency;
            EXPECT_EQ(told.gate, voice.gate) << slot;
            const bool sounds = voice.start != 0 && !voice.released;
            EXPECT_EQ(sounds ? rig.player.heardFrequency(orlo(voice.ratio)).value_or(0.0F) : voice.heard,
                      voice.heard)
                << slot;
            EXPECT_EQ(told.volume, voice.volume) << slot;
            EXPECT_TRUE(std::ranges::equal(told.macros, voice.macros, isSame)) << slot;
        }
        return !HasFailure();
    }

    const int seed = fromEnvironment("ORLO_STORM_SEED", 1);
    std::mt19937_64 random{static_cast<quint64>(seed)};
    LogCatcher log;
    SoundRig rig{SLOTS};
    PatchEar ear{rig.player};
    NodeModel model{SLOTS, DEFAULTS};
    std::vector<Command> device; // in the rings
    std::vector<Command> screen;
    int count = 0;   // of events, so far
    size_t most = 0; // sounding, and half as many selected

private:
    bool isWild() { return mWildPercent > 0 && chance(mWildPercent); }

    std::discrete_distribution<int> mTypes;
    int mWildPercent = 0;
};

TEST_F(RandomNodes, ThePatchHearsWhatTheRulesSay)
{
    const int events = fromEnvironment("ORLO_STORM_EVENTS", 60000);
    const int phase = std::clamp(events / 500, 6000, 20000);
    while (count < events) {
        beginPhase();
        play(phase / 2);
        changePatch(); // in the middle, so that the play goes on with what that left
        play(phase / 2);
        ASSERT_FALSE(HasFailure()) << count;
    }
    EXPECT_GE(most, 10U) << "that was no play";
}
