// What the graphical thread hears of the engine: everything, in order, and after a loss the truth.

#include "sound/EngineRelay.h"

#include "model/OrloBall.h"
#include "sound/AudioLog.h"
#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "sound/OrloTransposeEvent.h"
#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <map>
#include <random>
#include <set>

namespace {

std::string text(const OrloRatio& ratio)
{
    return std::to_string(ratio.numerator()) + '/' + std::to_string(ratio.denominator());
}
template <class T>
requires std::is_arithmetic_v<T> std::string text(T value)
{
    return std::to_string(value);
}
std::string text(const QStringList& list)
{
    return list.join(u'|').toStdString();
}
std::string text(const QList<float>& list)
{
    std::string joined;
    for (const float value : list)
        joined += text(value) + ' ';
    return joined;
}

/// Every signal that PdPlayer and its relay share, as lines, and what is left of them: of a node or
/// a value the last word.
template <class Sender>
class Ear : public QObject
{
public:
    explicit Ear(Sender& sender)
    {
        const auto hear = [&]<class First, class... Rest>(void (Sender::*signal)(First, Rest...),
                                                          const char* name) {
            QObject::connect(
                &sender, signal, this,
                [this, name](const First& first, const Rest&... rest) {
                    lines.push_back(((std::string(name) + ' ' + text(first)) + ... + (' ' + text(rest))));
                    if constexpr (sizeof...(Rest) == 1)
                        state[std::string(name) + ' ' + text(first)] = (text(rest) + ...);
                    else
                        state[name] = text(first);
                },
                Qt::DirectConnection);
        };
        const auto call = [&](void (Sender::*signal)(), const char* name) {
            QObject::connect(
                &sender, signal, this, [this, name] { lines.push_back(name); }, Qt::DirectConnection);
        };
        hear(&Sender::noteToggled, "note");
        hear(&Sender::nodeSelected, "selected");
        hear(&Sender::nodeHold, "hold");
        hear(&Sender::nodeAltered, "altered");
        hear(&Sender::removeNodeInStack, "remove");
        hear(&Sender::volumeChanged, "volume");
        hear(&Sender::voiceVolumeChanged, "voice volume");
        hear(&Sender::baseFrequencyChanged, "base frequency");
        hear(&Sender::monophonicChanged, "monophonic");
        hear(&Sender::primeEnabledToggled, "prime");
        hear(&Sender::macroNamesReceived, "names");
        hear(&Sender::macroDefaultsReceived, "defaults");
        hear(&Sender::setMacroSliders, "sliders");
        hear(qOverload<int, float>(&Sender::macroValueChanged), "macro");
        hear(&Sender::resetGlissSliders, "gliss");
        call(&Sender::nodesRecalled, "recalled");
        call(&Sender::patchDecRequested, "patch before");
        call(&Sender::patchIncRequested, "patch after");
        QObject::connect(
            &sender, &Sender::transposed, this,
            [this](const OrloRatio& ratio, int step) {
                lines.push_back("transposed " + text(ratio) + ' ' + text(step));
                state["transposed"] = text(ratio);
            },
            Qt::DirectConnection);
    }

    /// What holds: marks that are set, and values. Not the macros, some of which change unsaid.
    std::map<std::string, std::string> shown() const
    {
        std::map<std::string, std::string> left;
        for (const auto& [key, value] : state) {
            const bool mark = key.find('/') != std::string::npos;
            if (!(mark && value == "0") && !key.starts_with("remove") && !key.starts_with("gliss")
                && !key.starts_with("macro"))
                left.insert({key, value});
        }
        return left;
    }

    std::vector<std::string> lines;
    std::map<std::string, std::string> state;
};

class Relay : public ::testing::Test
{
protected:
    Relay()
    {
        rig.orlo.initWithDefaults();
        PdPlayer::connectLattice(&rig.player, &rig.orlo);
    }

    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    OrloRatio anyRatio() { return OrloRatio(static_cast<unsigned long long>(8 + below(24)), 16); }
    void queueAnything()
    {
        const float value = static_cast<float>(below(9)) / 8.0F;
        switch (below(12)) {
        case 0: return rig.queue(OrloNodeSelectToggleEvent(anyRatio()));
        case 1: return rig.queue(OrloNodeResetEvent(anyRatio(), value));
        case 2: return rig.queue(OrloNodeRemoveEvent(anyRatio()));
        case 3:
            return rig.queue(
                OrloEvent(OrloEvent::TransposeByPrimeStep, static_cast<float>(below(3) * 3 - 3)));
        case 4:
        case 5:
        case 6: {
            // All but what changes a patch or carries a ratio.
            const int type = below(OrloEvent::PatchOpen);
            const bool hasRatio = type == OrloEvent::TransposeByRatio || type == OrloEvent::NodeRemove;
            const float given = type == OrloEvent::BaseFrequencySet     ? 400.0F + value
                                : type == OrloEvent::PrimeEnabledToggle ? static_cast<float>(below(32))
                                                                        : value;
            if (!hasRatio)
                rig.queue(OrloEvent(static_cast<OrloEvent::Type>(type), given));
            return;
        }
        default: return rig.queue(OrloNoteEvent(anyRatio(), value * 2.0F));
        }
    }
    void play(int blocks)
    {
        for (int i = 0; i < blocks; ++i) {
            for (int n = below(8); n >= 0; --n)
                queueAnything();
            rig.player.processEvents();
        }
    }
    /// Whether the balls are lit as the engine sounds.
    void expectTrueBalls(const OrloBall* ball, const std::set<std::string>& sounding)
    {
        OrloRatio pitch(rig.orlo.transposition());
        pitch *= ball->path().toRatio();
        if (rig.orlo.ballFromRatio(pitch) == ball) {
            EXPECT_EQ(ball->isPlaying(), sounding.contains(text(pitch))) << text(pitch);
        }
        for (const OrloBall* child : ball->children())
            expectTrueBalls(child, sounding);
    }

    std::mt19937 random{7};
    LogCatcher log;
    SoundRig rig{32};
    Ear<PdPlayer> engine{rig.player};
    Ear<EngineRelay> window{rig.player.relay()};
};

} // namespace

TEST_F(Relay, TellsTheGraphicalThreadEverythingInItsOrder)
{
    ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "Level(0.5):Other")));
    EXPECT_TRUE(window.lines.empty()); // the event loop has not run
    for (int i = 0; i < 20; ++i) {
        play(10);
        QCoreApplication::processEvents();
        ASSERT_EQ(window.lines, engine.lines);
    }
    // Outside a block too.
    rig.player.transpose(OrloRatio(3, 2));
    QCoreApplication::processEvents();
    EXPECT_EQ(window.lines, engine.lines);
    EXPECT_GT(window.lines.size(), 300U);
}

TEST_F(Relay, AfterALossTheWindowShowsWhatTheEngineHas)
{
    play(50);
    QCoreApplication::processEvents();
    ASSERT_EQ(window.lines, engine.lines);
    // The graphical thread stands still, again and again.
    for (int freeze = 1; freeze <= 3; ++freeze) {
        SCOPED_TRACE(freeze);
        const size_t before = engine.lines.size();
        while (engine.lines.size() < before + EngineRelay::RECORDS)
            play(100);
        if (freeze == 2) { // its lists are lost
            ASSERT_TRUE(rig.loadVoiceText(plainVoice("1", "Level(0.5):Other")));
        }
        play(20);
        if (freeze == 3) { // and now it goes on while the engine plays
            const EngineClock clock(rig.player);
            for (int i = 0; i < 40; ++i) {
                queueAnything();
                QCoreApplication::processEvents();
            }
        }
        QCoreApplication::processEvents();
        EXPECT_LT(window.lines.size(), engine.lines.size());
        EXPECT_EQ(window.shown(), engine.shown());
        EngineState state;
        rig.player.copyState(state);
        for (size_t i = 0; i < state.sliders.macros.size(); ++i) {
            const std::string macro = "macro " + std::to_string(i + 1);
            EXPECT_EQ(window.state[macro], text(state.sliders.macros[i])) << macro;
        }
        std::set<std::string> sounding;
        for (const OrloRatio& ratio : rig.player.getAllSoundingRatios())
            sounding.insert(text(ratio));
        EXPECT_EQ(text(rig.orlo.transposition()), engine.state["transposed"]);
        expectTrueBalls(rig.orlo.rootBall(), sounding);
        EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("did not keep up with the engine")), freeze);
    }
    // And then nothing is lost any more.
    window.lines.clear();
    engine.lines.clear();
    play(50);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.lines, engine.lines);
}
