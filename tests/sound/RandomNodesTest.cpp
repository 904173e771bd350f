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
#include <ranges>

namespace {

using Ratio = NodeModel::Ratio;

// Answers the query for its macros and is silent; it does not report a voice's end.
const QByteArray PATCH = "#N canvas 0 0 200 200 12;\n"
                         "#X obj 20 20 r query-macros;\n"
                         "#X msg 20 50 list info A(0.25):B(0.5):C(0.75):D(0.125):E(0.9):F(0.1):G(0):H;\n"
                         "#X obj 20 80 s output-voice-info;\n"
                         "#X connect 0 0 1 0;\n#X connect 1 0 2 0;\n";
const NodeModel::Values DEFAULTS{0.25, 0.5, 0.75, 0.125, 0.9, 0.1, 0.0, -1.0};

// With paths, as balls have them, and the ratio of each.
const std::pair<const char*, Ratio> BALLS[] = {
    {"/", {1, 1}},     {"/3", {3, 2}},     {"/-3", {2, 3}},   {"/5", {5, 4}},
    {"/-5", {4, 5}},   {"/7", {7, 4}},     {"/3/3", {9, 4}},  {"/3/5", {15, 8}},
    {"/2", {2, 1}},    {"/-2", {1, 2}},    {"/3/-5", {6, 5}}, {"/11", {11, 8}},
    {"/3/7", {21, 8}}, {"/-3/-3", {4, 9}}, {"/13", {13, 8}},  {"/5/7", {35, 16}}};

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
    Ratio absolute(Ratio relative) const
    {
        OrloRatio ratio = orlo(relative);
        ratio *= orlo(transposition);
        return {ratio.numerator(), ratio.denominator()};
    }
    void queue(int type, double value = 1.0)
    {
        rig.queue(OrloEvent(static_cast<OrloEvent::Type>(type), static_cast<float>(value)));
    }

    void anyNoteEvent()
    {
        const auto& [path, relative] = BALLS[below(std::size(BALLS))];
        const Ratio ratio = absolute(relative);
        const bool flag = chance(60);
        switch (below(8)) {
        case 0:
        case 1: rig.queue(OrloNoteEvent(QString::fromLatin1(path))); return model.toggle(ratio, true);
        case 2:
        case 3: rig.queue(OrloNoteEvent(orlo(ratio))); return model.toggle(ratio);
        case 4: rig.queue(OrloNoteEvent(orlo(ratio), 2.0F)); return model.toggle(ratio, true);
        case 5: rig.queue(OrloNodeRemoveEvent(orlo(ratio))); return model.stop(ratio);
        case 6: queue(OrloEvent::NodesHold, flag ? 1.0 : 0.999); return model.hold(flag);
        default:
            if (chance(70))
                return; // seldom, so that chords grow
            queue(flag ? OrloEvent::AllNotesOffForced : OrloEvent::AllNotesOff);
            return model.stopAll(flag);
        }
    }

    void anySelection()
    {
        const Ratio relative = BALLS[below(std::size(BALLS))].second;
        switch (below(12)) {
        case 0: queue(OrloEvent::NodesSelectAllSounding); return model.selectAll(model.sounding());
        case 1: queue(OrloEvent::NodesDeselectAll); return model.selected.clear();
        case 2: queue(OrloEvent::NodesToggleAllSelected); return model.toggleSelected();
        default:
            rig.queue(OrloNodeSelectToggleEvent(orlo(relative)));
            return model.select(absolute(relative));
        }
    }

    void anySlide()
    {
        const int slider = chance(50) ? below(8) : 8 + below(2);
        const double value = below(257) / 256.0; // exact in single precision
        queue(OrloEvent::Macro1Set + slider, value);
        model.slide(static_cast<size_t>(slider), value);
    }

    void anyReset()
    {
        const Ratio relative = BALLS[below(std::size(BALLS))].second;
        const int deselect = below(2);
        const int which = below(3);
        const int controls = below(2);
        switch (below(6)) {
        case 0:
            queue(OrloEvent::NodesResetAll + 2 * controls + deselect);
            return model.resetAll(controls, deselect);
        case 1: queue(OrloEvent::NodesResetSelected + deselect); return model.resetSelected(deselect);
        case 2: queue(OrloEvent::GlissOneReset + (which + 2) % 3); return model.resetGliss(which); // 1, 2, 0
        default:
            rig.queue(OrloNodeResetEvent(orlo(relative), static_cast<float>(deselect)));
            return model.reset(absolute(relative), deselect);
        }
    }

    /// Between blocks: the engine reads options when it runs a command.
    void anyOption()
    {
        rig.settings.softNodeReset = model.softReset = chance(50);
        rig.settings.maintainMacroParameters = model.maintainMacros = chance(50);
        rig.settings.glissOneRangeCents = 600.0F * static_cast<float>(1 << below(3));
        rig.settings.glissTwoRangeCents = 50.0F * static_cast<float>(1 << below(3));
        model.newRanges = {rig.settings.glissOneRangeCents, rig.settings.glissTwoRangeCents};
    }

    /// In a block of its own: the lattice must have heard of it before its balls are pressed again.
    void transposeAnyhow()
    {
        const int step = transposition == Ratio{1, 1} ? (chance(50) ? 3 : -3) : 0;
        model.beginBlock();
        queue(OrloEvent::TransposeByPrimeStep, step);
        transposition = step == 0 ? Ratio{1, 1} : step > 0 ? Ratio{3, 2} : Ratio{2, 3};
        render();
    }

    void block()
    {
        if (chance(5))
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
        for (int number = 1; number <= 128; ++number) {
            float& gate = ear.voices[static_cast<size_t>(number)].gate;
            if (gate != 0.0F || !chance(70))
                continue;
            gate = -1.0F;
            SoundRig::reportVoiceStop(static_cast<float>(number));
            std::erase_if(model.notes, [&](const auto& note) { return ear.numberOf(note.first) == number; });
        }
    }

    /// False at the first difference.
    bool agrees()
    {
        const auto altered = std::views::keys(model.altered);
        EXPECT_EQ(setOf(rig.player.getAllSoundingRatios()), model.sounding());
        EXPECT_EQ(ear.starts, model.starts);
        EXPECT_EQ(setOf(rig.player.getAllSelectedRatios()), model.selected);
        EXPECT_TRUE(std::ranges::equal(setOf(rig.player.getAllRatiosWithAlteredParameters()), altered));
        for (const auto& [ratio, note] : model.notes) {
            SCOPED_TRACE(QStringLiteral("%1/%2").arg(ratio.first).arg(ratio.second).toStdString());
            const PatchEar::Voice& voice = ear.voiceOf(ratio);
            if (note.frequencyTold) {
                EXPECT_NEAR(1200.0 * std::log2(static_cast<double>(voice.frequency) / note.frequency), 0.0,
                            0.1);
            }
            for (size_t i = 0; i < voice.macros.size(); ++i)
                EXPECT_NEAR(static_cast<double>(voice.macros[i]), note.values[i], 1e-4) << i;
            if (note.released) {
                EXPECT_EQ(voice.gate, 0.0F);
            }
        }
        return !HasFailure();
    }

    std::mt19937 random{1};
    const LogCatcher quiet;
    SoundRig rig;
    PatchEar ear{rig.player};
    NodeModel model{DEFAULTS};
    Ratio transposition{1, 1};
};

TEST_F(RandomNodes, ThePatchHearsWhatTheRulesSay)
{
    size_t most = 0; // sounding, and half as many selected
    for (int i = 1; i <= 10000; ++i) {
        SCOPED_TRACE(i);
        if (chance(2))
            transposeAnyhow();
        block();
        if (i % 1000 == 0) {
            ASSERT_TRUE(rig.loadMainText(PATCH));
            model.beginBlock();
            model.changePatch();
        }
        ASSERT_TRUE(agrees());
        most = std::max(most, std::min(model.sounding().size(), 2 * model.selected.size()));
        if (i % 3 == 0)
            letVoicesEnd();
    }
    EXPECT_GE(most, 10U) << "that was no play";
}
