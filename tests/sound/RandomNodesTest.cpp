// Long random play against a model of the rules. What the patch received of every voice must be
// what the model says, after every block.

#include "sound/NodeModel.h"
#include "sound/PatchEar.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cmath>
#include <random>

namespace {

using Ratio = NodeModel::Ratio;

// Answers the query for its macros and is silent; it does not report a voice's end.
const QByteArray PATCH = "#N canvas 0 0 200 200 12;\n"
                         "#X obj 20 20 r query-macros;\n"
                         "#X msg 20 50 list info A(0.25):B(0.5):C(0.75):D(0.125):E(0.9):F(0.1):G(0):H(1);\n"
                         "#X obj 20 80 s output-voice-info;\n"
                         "#X connect 0 0 1 0;\n#X connect 1 0 2 0;\n";
const NodeModel::Macros DEFAULTS{0.25, 0.5, 0.75, 0.125, 0.9, 0.1, 0.0, 1.0};

// With paths, as balls have them, and the ratio of each.
struct Ball
{
    const char* path;
    Ratio ratio;
};
const Ball BALLS[] = {{"/", {1, 1}},     {"/3", {3, 2}},     {"/-3", {2, 3}},   {"/5", {5, 4}},
                      {"/-5", {4, 5}},   {"/7", {7, 4}},     {"/3/3", {9, 4}},  {"/3/5", {15, 8}},
                      {"/2", {2, 1}},    {"/-2", {1, 2}},    {"/3/-5", {6, 5}}, {"/11", {11, 8}},
                      {"/3/7", {21, 8}}, {"/-3/-3", {4, 9}}, {"/13", {13, 8}},  {"/5/7", {35, 16}}};

constexpr double MOST_CENTS_OFF = 0.1;
constexpr double MOST_MACRO_OFF = 1e-4;

OrloRatio orlo(Ratio ratio)
{
    return OrloRatio(ratio.first, ratio.second);
}

std::set<Ratio> setOf(const QList<OrloRatio>& ratios)
{
    std::set<Ratio> set;
    for (const OrloRatio& ratio : ratios)
        set.insert({ratio.numerator(), ratio.denominator()});
    return set;
}

} // namespace

class RandomNodes : public ::testing::TestWithParam<unsigned>
{
protected:
    RandomNodes()
        : random(GetParam())
        , ear(rig.player)
    {
        rig.orlo.initWithDefaults();
        PdPlayer::connectLattice(&rig.player, &rig.orlo);
        EXPECT_TRUE(rig.loadMainText(PATCH));
        model.changePatch(DEFAULTS);
        // The current ones of a player that has no window are the patch's.
        model.sliders = DEFAULTS;
    }

    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    bool chance(int percent) { return below(100) < percent; }
    const Ball& anyBall() { return BALLS[below(static_cast<int>(std::size(BALLS)))]; }
    Ratio absolute(Ratio relative) const { return NodeModel::times(relative, transposition); }

    void queue(int type, double value = 1.0)
    {
        rig.queue(OrloEvent(static_cast<OrloEvent::Type>(type), static_cast<float>(value)));
    }

    void anyNoteEvent()
    {
        const Ball& ball = anyBall();
        const Ratio ratio = absolute(ball.ratio);
        switch (below(8)) {
        case 0:
        case 1: rig.queue(OrloNoteEvent(QString::fromLatin1(ball.path))); return model.toggle(ratio, true);
        case 2:
        case 3: rig.queue(OrloNoteEvent(orlo(ratio))); return model.toggle(ratio);
        case 4: rig.queue(OrloNoteEvent(orlo(ratio), 2.0F)); return model.toggle(ratio, true);
        case 5: rig.queue(OrloNodeRemoveEvent(orlo(ratio))); return model.stop(ratio);
        case 6: {
            const bool on = chance(60);
            queue(OrloEvent::NodesHold, on ? 1.0 : 0.0);
            return model.hold(on);
        }
        default:
            if (chance(70))
                return; // seldom, so that chords grow
            const bool forced = chance(50);
            queue(forced ? OrloEvent::AllNotesOffForced : OrloEvent::AllNotesOff);
            return model.stopAll(forced);
        }
    }

    void anySelection()
    {
        switch (below(12)) {
        case 0: queue(OrloEvent::NodesSelectAllSounding); return model.selectSounding();
        case 1: queue(OrloEvent::NodesDeselectAll); return model.selected.clear();
        case 2: queue(OrloEvent::NodesToggleAllSelected); return model.toggleSelected();
        default: {
            const Ratio relative = anyBall().ratio;
            rig.queue(OrloNodeSelectToggleEvent(orlo(relative)));
            return model.select(absolute(relative));
        }
        }
    }

    void anySlide()
    {
        const double value = below(257) / 256.0; // exact in single precision
        if (chance(50)) {
            const int macro = below(8);
            queue(OrloEvent::Macro1Set + macro, value);
            return model.moveMacro(macro, value);
        }
        const int which = 1 + below(2);
        queue(which == 1 ? OrloEvent::GlissOneSet : OrloEvent::GlissTwoSet, value);
        model.moveGliss(which, value);
    }

    void anyReset()
    {
        const bool deselect = chance(50);
        switch (below(6)) {
        case 0: {
            const bool controls = chance(50);
            queue(OrloEvent::NodesResetAll + (controls ? 2 : 0) + (deselect ? 1 : 0));
            return model.resetAll(controls, deselect);
        }
        case 1:
            queue(deselect ? OrloEvent::NodesResetSelectedDeselect : OrloEvent::NodesResetSelected);
            return model.resetSelected(deselect);
        case 2: {
            const int which = below(3);
            queue(OrloEvent::GlissOneReset + (which + 2) % 3); // one, two, both
            return model.resetGliss(which);
        }
        default: {
            const Ratio relative = anyBall().ratio;
            rig.queue(OrloNodeResetEvent(orlo(relative), deselect ? 1.0F : 0.0F));
            return model.reset(absolute(relative), deselect);
        }
        }
    }

    void anyOption()
    {
        rig.settings.softNodeReset = model.softReset = chance(50);
        rig.settings.maintainMacroParameters = model.maintainMacros = chance(50);
        const float ranges[] = {600.0F, 1200.0F, 2400.0F};
        model.newRangeOne = rig.settings.glissOneRangeCents = ranges[below(3)];
        model.newRangeTwo = rig.settings.glissTwoRangeCents = ranges[below(3)] / 12.0F;
    }

    /// In a block of its own: the lattice must have heard of it before its balls are pressed again.
    void transposeAnyhow()
    {
        model.beginBlock();
        const int step = steps >= 2 ? -3 : steps <= -2 ? 3 : chance(50) ? 3 : -3;
        queue(OrloEvent::TransposeByPrimeStep, step);
        steps += step / 3;
        transposition = NodeModel::times(transposition, step > 0 ? Ratio{3, 2} : Ratio{2, 3});
        render();
    }

    void block()
    {
        if (chance(5)) // between blocks: the engine reads options when it runs a command
            anyOption();
        model.beginBlock();
        for (int i = below(3); i >= 0; --i) {
            const int kind = below(100);
            kind < 40 ? anyNoteEvent() : kind < 58 ? anySelection() : kind < 88 ? anySlide() : anyReset();
        }
        render();
    }

    void render()
    {
        rig.render();
        QCoreApplication::processEvents();
    }

    void letVoicesEnd()
    {
        for (const int voice : std::set<int>(ear.fading())) {
            if (!chance(70))
                continue;
            SoundRig::reportVoiceStop(static_cast<float>(voice));
            ear.forget(voice);
            std::erase_if(model.notes, [&](const auto& note) { return ear.voiceOf(note.first) == voice; });
        }
    }

    /// False at the first difference.
    bool agrees()
    {
        std::set<Ratio> altered;
        for (const auto& [ratio, node] : model.altered)
            altered.insert(ratio);
        EXPECT_EQ(setOf(rig.player.getAllSoundingRatios()), model.sounding());
        EXPECT_EQ(ear.starts(), model.starts);
        EXPECT_EQ(setOf(rig.player.getAllSelectedRatios()), model.selected);
        EXPECT_EQ(setOf(rig.player.getAllRatiosWithAlteredParameters()), altered);
        for (const auto& [ratio, note] : model.notes) {
            SCOPED_TRACE(QStringLiteral("%1/%2").arg(ratio.first).arg(ratio.second).toStdString());
            const PatchEar::Voice& voice = ear.voice(ear.voiceOf(ratio));
            // At the very limits single precision may decide the other way.
            if (note.frequencyTold && std::abs(note.frequency / 20.0 - 1.0) > 1e-3
                && std::abs(note.frequency / 20000.0 - 1.0) > 1e-3) {
                const double off = 1200.0 * std::log2(static_cast<double>(voice.frequency) / note.frequency);
                EXPECT_LT(std::abs(off), MOST_CENTS_OFF) << voice.frequency << " Hz, not " << note.frequency;
            }
            for (size_t i = 0; i < note.macros.size(); ++i)
                EXPECT_NEAR(static_cast<double>(voice.macros[i]), note.macros[i], MOST_MACRO_OFF) << i;
            if (note.released) {
                EXPECT_EQ(voice.gate, 0.0F);
            }
        }
        return !HasFailure();
    }

    std::mt19937 random;
    const LogCatcher quiet;
    SoundRig rig;
    PatchEar ear;
    NodeModel model;
    Ratio transposition{1, 1};
    int steps = 0; // of the prime 3
};

TEST_P(RandomNodes, ThePatchHearsWhatTheRulesSay)
{
    constexpr int blocks = 10000;
    constexpr int patchChangeEvery = 2500;
    size_t mostNotes = 0;
    size_t mostSelected = 0;
    for (int i = 1; i <= blocks; ++i) {
        SCOPED_TRACE(i);
        if (chance(2))
            transposeAnyhow();
        block();
        if (i % patchChangeEvery == 0) {
            ASSERT_TRUE(rig.loadMainText(PATCH));
            model.beginBlock();
            model.changePatch(DEFAULTS);
        }
        ASSERT_TRUE(agrees());
        if (i % 3 == 0)
            letVoicesEnd();
        mostNotes = std::max(mostNotes, model.sounding().size());
        mostSelected = std::max(mostSelected, model.selected.size());
    }
    // It really was play and not silence.
    EXPECT_GE(mostNotes, 10U);
    EXPECT_GE(mostSelected, 5U);
}

INSTANTIATE_TEST_SUITE_P(, RandomNodes, ::testing::Values(1U, 20U, 300U),
                         ::testing::PrintToStringParamName());
