// What the graphical thread hears of the engine: everything, in order, and after a loss the truth.

#include "sound/EngineRelay.h"

#include "model/OrloBall.h"
#include "sound/OrloNodeRemoveEvent.h"
#include "sound/OrloNodeResetEvent.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "support/EngineClock.h"
#include "support/LogCatcher.h"
#include "support/SignalText.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <limits>
#include <map>
#include <random>
#include <regex>

namespace {

/// Every signal that PdPlayer and its relay share, as lines: the name, what it is of, the last word.
template <class Sender>
class Ear : public QObject
{
public:
    explicit Ear(Sender& sender)
    {
        hearSignals(sender, this, [this](const QString& line) { lines.push_back(line.toStdString()); });
    }

    /// The last word on everything, but for marks that are gone and for what is no state.
    std::map<std::string, std::string> shown() const
    {
        std::map<std::string, std::string> words;
        for (const std::string& line : lines) {
            const size_t end = line.rfind(' ');
            words[line.substr(0, end)] = line.substr(end + 1);
        }
        std::erase_if(words, [](const auto& entry) {
            const auto& [of, word] = entry;
            static const std::regex stateless("(remove|nodesR|transp|patch|resetG).*");
            return std::regex_match(of, stateless) || (word == "off" && of.find('/') != std::string::npos);
        });
        return words;
    }

    std::vector<std::string> lines;
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
    // A receiver may run an event loop while it is told of the state after the first loss; what the engine
    // does meanwhile comes after it.
    EngineRelay& relay = rig.player.relay();
    size_t untilLoss = window.lines.size() + EngineRelay::RECORDS;
    QObject::connect(&relay, &EngineRelay::noteToggled, &relay, [&] {
        if (window.lines.size() > untilLoss) {
            untilLoss = std::numeric_limits<size_t>::max();
            for (unsigned n = 8; n < 32; ++n) {
                rig.queue(OrloNoteEvent(OrloRatio(n, 16)));
                rig.queue(OrloNodeSelectToggleEvent(OrloRatio(n, 16)));
            }
            rig.player.processEvents();
            relay.drain();
        }
    });
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
        EngineState state;
        rig.player.copyState(state);
        auto expected = engine.shown();
        for (size_t i = 0; i < state.sliders.macros.size(); ++i) // a reset changes some of them unsaid
            expected["macroValueChanged " + std::to_string(i + 1)] =
                signalText(state.sliders.macros[i]).toStdString();
        EXPECT_EQ(window.shown(), expected);
        EXPECT_EQ(rig.orlo.transposition(), state.transposition);
        const QList<OrloRatio> sounding = rig.player.getAllSoundingRatios();
        for (unsigned long long n = 1; n <= 128; ++n) {
            if (const OrloBall* ball = rig.orlo.ballFromRatio(OrloRatio(n, 16))) {
                EXPECT_EQ(ball->isPlaying(), sounding.contains(OrloRatio(n, 16))) << n;
            }
        }
        EXPECT_EQ(log.count(QtWarningMsg, QStringLiteral("did not keep up with the engine")), freeze);
    }
    EXPECT_EQ(untilLoss, std::numeric_limits<size_t>::max());
    // And then nothing is lost any more.
    window.lines.clear();
    engine.lines.clear();
    play(50);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.lines, engine.lines);
}
