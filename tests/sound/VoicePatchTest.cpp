// Every voice that comes with the program, heard through the whole engine.

#include "support/SlotLedger.h"
#include "support/SoundRig.h"
#include "support/Tone.h"

#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <random>

namespace {

constexpr int SECOND = 172;               // blocks
constexpr int MASTER_SLEEPS = 2 * SECOND; // the sound is exactly 0 by then
const OrloRatio UNISON(1, 1);

struct VoiceRow
{
    const char* name;
    double release;               // seconds within which a released note has faded, at the default macros
    bool struck;                  // rings away while it is held
    int storm;                    // notes; all of them for the plainest voice and for the costliest one
    std::vector<double> partials; // that its patch promises, as factors of the note
};

// One row for each file. A voice without one fails.
const std::vector<double> THIRD{4.0, 5.0}; // pure thirds beat as soon as these are off
const VoiceRow VOICES[] = {
    {"Bell", 2.2, true, 3000, {1.0, 2.0, 12.0 / 5.0, 3.0, 4.0, 16.0 / 3.0}},
    {"Clarinet", 0.3, false, 3000, THIRD},
    {"Flute", 0.5, false, 3000, THIRD},
    {"Glass", 1.5, false, 3000, {1.0, 2.0, 3.0}},
    {"Mallet", 0.5, true, 3000, {1.0, 4.0, 10.0}},
    {"Organ", 0.3, false, 3000, THIRD},
    {"Pluck", 0.3, true, 3000, THIRD},
    {"Reed", 0.3, false, 3000, THIRD},
    {"Saw", 0.5, false, 3000, THIRD},
    {"Sine", 0.6, false, 15000, {1.0}},
    {"Strings", 1.2, false, 3000, THIRD},
    {"Vowel", 0.5, false, 15000, THIRD},
};

void PrintTo(const VoiceRow& row, std::ostream* out)
{
    *out << row.name;
}

struct Stereo
{
    std::vector<float> left;
    std::vector<float> right;

    void append(const Stereo& more)
    {
        left.insert(left.end(), more.left.begin(), more.left.end());
        right.insert(right.end(), more.right.begin(), more.right.end());
    }
    float highest() const { return std::max(peak(left), peak(right)); }
    double clicks() const { return std::max(clickLevel(left), clickLevel(right)); }
    double loudness() const { return tone::loudness(left, right, SoundRig::RATE); }
};

/// The rig with one voice: its macro list, stereo sound, notes at any frequency.
class Player
{
public:
    explicit Player(const VoiceRow& voice, int slots = 4, int usedSlots = 128)
        : rig(slots)
    {
        rig.player.setMaxVoices(usedSlots);
        QObject::connect(
            &rig.player, &PdPlayer::macroNamesReceived, &rig.player,
            [this](const QStringList& list) { names = list.isEmpty() ? names : list; }, Qt::DirectConnection);
        QObject::connect(
            &rig.player, &PdPlayer::macroDefaultsReceived, &rig.player,
            [this](const QList<float>& list) { defaults = list; }, Qt::DirectConnection);
        EXPECT_TRUE(rig.loadVoice(QLatin1StringView(voice.name) + QStringLiteral(".pd")));
        rig.send(OrloEvent(OrloEvent::MasterVolumeSet, 1.0F));
        render(SECOND / 10);
    }

    /// Of the notes that follow; macros count from 1, and 0 is none.
    void setMacros(std::initializer_list<std::pair<qsizetype, float>> macros)
    {
        for (const auto& [macro, value] : macros) {
            if (macro > 0)
                rig.queue(OrloEvent(static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + macro - 1), value));
        }
    }
    /// The macro of that name, or 0.
    qsizetype macro(const char* name) const { return names.indexOf(QLatin1StringView(name)) + 1; }
    void base(double frequency)
    {
        rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, static_cast<float>(frequency)));
    }
    void toggle(const OrloRatio& ratio = UNISON) { rig.queue(OrloNoteEvent(ratio)); }
    void endAll() { rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F)); }

    Stereo render(int blocks)
    {
        Stereo sound;
        for (int i = 0; i < blocks; ++i)
            rig.renderInto(sound.left, &sound.right);
        return sound;
    }
    /// Blocks until every note that was begun has ended; -1 when that takes longer.
    int renderUntilEnded(int atMost = 10 * SECOND)
    {
        for (int block = 1; block <= atMost; ++block) {
            render(1);
            if (ledger.unended() == 0)
                return block;
        }
        return -1;
    }

    QStringList names; // of the macros
    QList<float> defaults;
    SoundRig rig; // ends before them, since it still signals then
    SlotLedger ledger;
};

/// 128 pitches from 110 to 720 Hz, no two alike.
OrloRatio pitchOf(unsigned index)
{
    return OrloRatio(23 + index, 92);
}

class VoicePatch : public ::testing::TestWithParam<VoiceRow>
{
};

} // namespace

INSTANTIATE_TEST_SUITE_P(All, VoicePatch, ::testing::ValuesIn(VOICES), ::testing::PrintToStringParamName());

TEST(VoicePatches, EveryFileHasARowAndOpensInPlainPd)
{
    const QDir directory(QCoreApplication::applicationDirPath() + QStringLiteral("/patches"));
    QStringList rows;
    for (const VoiceRow& row : VOICES)
        rows.append(QLatin1StringView(row.name) + QStringLiteral(".pd"));
    EXPECT_EQ(directory.entryList({QStringLiteral("*.pd")}, QDir::Files, QDir::Name), rows);

    if (QStandardPaths::findExecutable(QStringLiteral("pd")).isEmpty())
        GTEST_SKIP() << "no pd";
    const SoundRig rig(4); // its runtime folder
    for (const QString& voice : rows) {
        QFile file(directory.filePath(voice));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        rig.setVoiceText(file.readAll());
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setWorkingDirectory(rig.mainPatch().absolutePath());
        process.startCommand(QStringLiteral("pd -nogui -noprefs -batch -noaudio -nomidi -open orlo_main.pd "
                                            "-send \"pd quit\""));
        ASSERT_TRUE(process.waitForFinished(20000)) << qPrintable(voice);
        const QString said = QString::fromLocal8Bit(process.readAll());
        static const QRegularExpression bad(
            QStringLiteral("error|couldn't|can't|no method|connection failed"),
            QRegularExpression::CaseInsensitiveOption);
        EXPECT_FALSE(said.contains(bad)) << qPrintable(voice) << ": " << qPrintable(said);
    }
}

TEST(VoicePatches, MacrosHaveOnePlaceEverywhereAndTheSameChordIsEquallyLoud)
{
    std::map<QString, int> places;
    std::map<double, const char*> loudnesses;
    for (const VoiceRow& row : VOICES) {
        SCOPED_TRACE(row.name);
        Player player(row);
        ASSERT_GE(player.names.size(), 4);
        ASSERT_LE(player.names.size(), 8);
        EXPECT_EQ(QSet<QString>(player.names.begin(), player.names.end()).size(), player.names.size());
        EXPECT_TRUE(player.macro("Level") == 1 || player.macro("Strength") == 1);
        EXPECT_FLOAT_EQ(player.defaults[0], 0.8F);
        for (int i = 0; i < player.names.size(); ++i) {
            EXPECT_FALSE(player.names[i].isEmpty());
            EXPECT_EQ(std::clamp(player.defaults[i], 0.0F, 1.0F), player.defaults[i]) << i;
            EXPECT_EQ(places.try_emplace(player.names[i], i).first->second, i) << qPrintable(player.names[i]);
        }
        player.base(264.0);
        for (const OrloRatio& ratio : {UNISON, OrloRatio(5, 4), OrloRatio(3, 2)})
            player.toggle(ratio);
        loudnesses[player.render(2 * SECOND).loudness()] = row.name;
    }
    const auto [quietest, loudest] = std::pair(*loudnesses.begin(), *loudnesses.rbegin());
    EXPECT_LT(loudest.first - quietest.first, 3.0) << quietest.second << " and " << loudest.second;
}

TEST_P(VoicePatch, HasThePartialsThatItsPatchPromises)
{
    Player player(GetParam());
    player.setMacros({{player.macro("Detune"), 0.0F}});
    player.toggle();
    player.render(SECOND / 10);
    const Stereo sound = player.render(SECOND / 2);
    for (const double partial : GetParam().partials) {
        const auto pitch = tone::pitchNear(sound.left, 440.0 * partial, SoundRig::RATE);
        EXPECT_NEAR(tone::centsBetween(pitch.value_or(1.0), 440.0 * partial), 0.0, 0.5) << partial;
    }
}

TEST(VoicePatches, TheShellLiftsTheBassAndEasesWhatTheEarIsKeenOn)
{
    Player player(*std::ranges::find(VOICES, std::string_view("Sine"), &VoiceRow::name));
    player.setMacros({{1, 0.3F}});   // too quiet for the compressor
    std::map<double, double> levels; // dB
    for (const double frequency : {55.0, 440.0, 3500.0}) {
        player.base(frequency);
        player.toggle();
        player.render(SECOND);
        levels[frequency] = 20.0 * std::log10(tone::level(player.render(SECOND).left));
        player.toggle();
        ASSERT_GT(player.renderUntilEnded(), 0);
    }
    EXPECT_NEAR(levels[55.0] - levels[440.0], 6.0 - 1.0, 0.5);
    EXPECT_NEAR(levels[3500.0] - levels[440.0], -3.0 - 1.0, 0.5);
}

TEST_P(VoicePatch, HasVolumeLevelAndPlaceAsOneRampedGainOfEachSide)
{
    Player player(GetParam());
    player.base(220.0);
    // Too quiet for the compressor, struck voices too, which hold.
    player.setMacros({{1, 0.4F}, {2, 0.1F}, {4, 1.0F}, {5, 0.1F}, {player.macro("Breath"), 0.0F}});
    player.toggle();
    player.render(SECOND / 2);
    const Stereo steady = player.render(SECOND / 4);
    const double full = tone::level(steady.left);
    EXPECT_NEAR(tone::level(steady.right) / full, 1.0, 0.01);
    const double allowed = std::max(steady.clicks() + 6.0, -70.0);
    // Half the level, squared. A strength brightens too, so it stays where it is.
    const double half = GetParam().struck ? 1.0 : 0.25;
    const std::tuple<int, float, double, double> rows[] = {
        // message, value, and left and right as a share of what they were at first
        {voiceVolume, 0.5F, 0.5, 0.5},
        {voiceMacro1 + 5, 0.0F, 0.7071, 0.0}, // place: all to the left, of equal power
        {voiceMacro1, GetParam().struck ? 0.4F : 0.2F, 0.7071 * half, 0.0},
        {voiceVolume, 2.0F, 1.4142 * half, 0.0}, // no louder than 1
        {voiceMacro1 + 5, 1.0F, 0.0, 1.4142 * half},
    };
    for (const auto& [type, value, left, right] : rows) {
        SCOPED_TRACE(::testing::Message() << type << ' ' << value);
        player.rig.player.sendPdVoiceMessage(static_cast<PdVoiceMessageType>(type), value, 0.0F);
        EXPECT_LT(player.render(SECOND / 4).clicks(), allowed);
        const Stereo sound = player.render(SECOND / 4);
        EXPECT_NEAR(tone::level(sound.left) / full, left, 0.01);
        EXPECT_NEAR(tone::level(sound.right) / full, right, 0.01);
    }
    player.toggle();
    ASSERT_GT(player.renderUntilEnded(), 0);
    player.toggle(); // takes the same slot, from its first sample with gains of its own
    const Stereo begun = player.render(SECOND / 2);
    EXPECT_LT(begun.clicks(), allowed);
    EXPECT_NEAR(tone::level(player.render(SECOND / 4).left) / full, 1.0, 0.01);
    EXPECT_NEAR(peak(begun.left), peak(begun.right), 0.01F * peak(begun.left))
        << "slid in from where the last note was";
}

TEST_P(VoicePatch, HasTheExactPitchWhateverItsMacros)
{
    Player player(GetParam());
    for (const size_t set : {0, 1, 2}) {
        for (const double wanted : {27.5, 261.6256, 1234.567, 7040.0}) {
            SCOPED_TRACE(::testing::Message() << wanted << " Hz, macros " << set);
            const auto frequency = static_cast<double>(static_cast<float>(wanted));
            for (int i = 0; i < player.defaults.size(); ++i) {
                const std::array values{player.defaults[i], 1.0F, i % 2 == 0 ? 0.9F : 0.2F};
                player.setMacros({{i + 1, values[set]}});
            }
            player.setMacros({{player.macro("Detune"), 0.0F}});
            player.base(frequency);
            player.toggle();
            // A filter that still opens moves the phase, so what holds is heard once it holds.
            Stereo sound = player.render(GetParam().struck ? 2 * SECOND : 5 * SECOND);
            std::ranges::transform(sound.left, sound.right, sound.left.begin(), std::plus<>());
            EXPECT_NEAR(tone::centsOff(sound.left, frequency, SoundRig::RATE), 0.0, 0.1);
            player.toggle();
            ASSERT_GT(player.renderUntilEnded(30 * SECOND), 0);
        }
    }
}

TEST_P(VoicePatch, IsEvenFromLowToHighAndFadesInTime)
{
    Player player(GetParam());
    std::vector<double> loudnesses;
    for (double frequency = 55.0; frequency <= 7040.0; frequency *= 2.0) {
        player.base(frequency);
        player.toggle();
        Stereo sound = player.render(1);
        EXPECT_GT(sound.highest(), 0.0F) << frequency << " Hz is late";
        sound.append(player.render(SECOND));
        loudnesses.push_back(sound.loudness());
        player.toggle();
        const int blocks = player.renderUntilEnded();
        ASSERT_GT(blocks, 0) << frequency << " Hz is not reported";
        EXPECT_LE(blocks * SoundRig::FRAMES / SoundRig::RATE, GetParam().release) << frequency;
        player.render(MASTER_SLEEPS);
        EXPECT_EQ(player.render(10).highest(), 0.0F) << frequency;
    }
    const auto [quietest, loudest] = std::ranges::minmax(loudnesses);
    EXPECT_LT(loudest - quietest, 5.0);
    EXPECT_EQ(player.ledger.stopped(), player.ledger.begun());
    EXPECT_EQ(player.ledger.stolen() + player.ledger.spurious(), 0);
}

TEST_P(VoicePatch, TakesTheTimeThatAttackAndReleaseSay)
{
    Player player(GetParam());
    double attacks[2]; // loudness of what is heard first
    int releases[2];   // blocks
    for (const int longest : {0, 1}) {
        player.setMacros({{2, static_cast<float>(longest)}, {5, static_cast<float>(longest)}});
        player.toggle();
        attacks[longest] = player.render(SECOND / 10).loudness();
        player.render(SECOND);
        player.toggle();
        releases[longest] = player.renderUntilEnded(30 * SECOND);
        ASSERT_GT(releases[longest], 0);
        player.render(MASTER_SLEEPS);
    }
    EXPECT_GT(attacks[0], attacks[1] + 20.0);
    EXPECT_LT(releases[0], SECOND / 5);
    EXPECT_GT(releases[1], SECOND);
}

TEST_P(VoicePatch, NeitherVanishesNorClipsWithAllSlotsSounding)
{
    Player player(GetParam(), 128);
    player.toggle();
    const double one = player.render(2 * SECOND).loudness();
    player.toggle();
    ASSERT_GT(player.renderUntilEnded(), 0);
    player.render(MASTER_SLEEPS);
    for (unsigned i = 0; i < 128; ++i)
        player.toggle(pitchOf(i));
    Stereo all = player.render(2 * SECOND);
    EXPECT_GT(all.loudness(), one - 3.0);
    player.endAll();
    all.append(player.render(SECOND));
    EXPECT_LE(all.highest(), 0.95F); // which a sample that is no number would fail too
}

TEST_P(VoicePatch, DoesNotClick)
{
    Player player(GetParam(), 4, 1); // one slot, so that each note takes it from the last
    player.base(220.0);
    // Fastest attack and release, and loud when released.
    player.setMacros({{2, 0.0F}, {4, 0.9F}, {5, 0.0F}, {player.macro("Breath"), 0.0F}});

    std::map<const char*, Stereo> sounds;
    player.toggle();
    sounds["on"] = player.render(SECOND / 2);
    const Stereo steady = player.render(SECOND / 2);
    player.toggle();
    sounds["off"] = player.render(SECOND);
    EXPECT_EQ(player.ledger.stopped(), 1);

    player.toggle();
    player.render(SECOND / 2);
    player.toggle();
    sounds["restrike"] = player.render(1);
    player.toggle();
    sounds["restrike"].append(player.render(SECOND / 2));

    sounds["steal"] = player.render(2);
    player.toggle(OrloRatio(63, 50));
    sounds["steal"].append(player.render(SECOND / 3));
    EXPECT_EQ(player.ledger.stolen(), 2);

    const double allowed = std::max(steady.clicks() + 6.0, -75.0);
    for (const auto& [what, sound] : sounds)
        EXPECT_LE(sound.clicks(), allowed) << what;
}

TEST_P(VoicePatch, LosesNoNoteOfAStorm)
{
    Player player(GetParam(), 128);
    const SlotLedger& ledger = player.ledger;
    std::mt19937 random(31);
    const int notes = GetParam().storm;
    while (ledger.begun() < notes) {
        // A press begins a note or ends it, so it can never be one too many.
        const int presses = std::min(static_cast<int>(random() % 60), notes - ledger.begun());
        for (int i = 0; i < presses; ++i)
            player.toggle(pitchOf(random() % 200));
        ASSERT_LE(player.render(1).highest(), 0.95F);
    }
    player.endAll();
    EXPECT_GT(player.renderUntilEnded(), 0);
    EXPECT_EQ(ledger.stolen() + ledger.stopped(), notes);
    EXPECT_GT(ledger.stolen(), 0);
    EXPECT_EQ(ledger.spurious(), 0);
    player.render(MASTER_SLEEPS);
    EXPECT_EQ(player.render(10).highest(), 0.0F);
}
