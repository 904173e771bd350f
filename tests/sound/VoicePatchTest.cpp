// Every voice that comes with the program, heard through the whole engine.

#include "support/SlotLedger.h"
#include "support/SoundRig.h"

#include "sound/Listening.h"
#include "sound/OrloNoteEvent.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

using listening::Stereo;

namespace {

constexpr int SECOND = 172;               // blocks
constexpr int MASTER_SLEEPS = 2 * SECOND; // the sound is exactly 0 by then
const OrloRatio UNISON(1, 1);

struct VoiceRow
{
    const char* name;
    double release; // seconds within which a released note has faded, at the default macros
    bool struck;    // rings away while it is held
    bool harmonic;  // holds, with harmonic partials only: thirds beat or they do not
    int storm;      // notes; all of them for the plainest and for the dearest
};

// One row for each file. A voice without one fails.
const VoiceRow VOICES[] = {
    {"Bell", 2.2, true, false, 3000},    {"Clarinet", 0.3, false, true, 3000},
    {"Flute", 0.5, false, true, 3000},   {"Glass", 1.5, false, false, 3000},
    {"Mallet", 0.5, true, false, 3000},  {"Organ", 0.3, false, true, 3000},
    {"Pluck", 0.3, true, false, 3000},   {"Reed", 0.3, false, true, 3000},
    {"Saw", 0.5, false, true, 3000},     {"Sine", 0.6, false, false, 15000},
    {"Strings", 1.2, false, true, 3000}, {"Vowel", 0.5, false, true, 15000},
};

void PrintTo(const VoiceRow& row, std::ostream* out)
{
    *out << row.name;
}

/// The rig with one voice: its macro list, stereo sound, notes at any frequency.
class Player
{
public:
    explicit Player(const char* voice, int slots = 128, int usedSlots = 128)
        : rig(slots)
    {
        rig.player.setMaxVoices(usedSlots);
        QObject::connect(
            &rig.player, &PdPlayer::macroNamesReceived, &rig.player,
            [this](const QStringList& list) { names = list.isEmpty() ? names : list; }, Qt::DirectConnection);
        QObject::connect(
            &rig.player, &PdPlayer::macroDefaultsReceived, &rig.player,
            [this](const QList<float>& list) { defaults = list; }, Qt::DirectConnection);
        loaded = rig.loadVoice(QString::fromLatin1(voice) + QStringLiteral(".pd"));
        rig.send(OrloEvent(OrloEvent::MasterVolumeSet, 1.0F));
        render(SECOND / 10);
    }

    /// Macros from 1, for the notes that follow.
    void setMacro(int macro, float value)
    {
        rig.queue(OrloEvent(static_cast<OrloEvent::Type>(OrloEvent::Macro1Set + macro - 1), value));
    }
    void setMacros(const QList<float>& values)
    {
        for (int i = 0; i < values.size(); ++i)
            setMacro(i + 1, values[i]);
    }
    /// Noise is not what is asked about.
    void silenceBreath()
    {
        const auto breath = names.indexOf(QStringLiteral("Breath"));
        if (breath >= 0)
            setMacro(static_cast<int>(breath) + 1, 0.0F);
    }
    void base(double frequency)
    {
        rig.queue(OrloEvent(OrloEvent::BaseFrequencySet, static_cast<float>(frequency)));
    }
    void toggle(const OrloRatio& ratio) { rig.queue(OrloNoteEvent(ratio)); }

    Stereo render(int blocks)
    {
        Stereo sound;
        std::array<float, 2 * SoundRig::FRAMES> block;
        for (int i = 0; i < blocks; ++i) {
            block.fill(std::nanf(""));
            rig.output.renderBlock(block.data(), SoundRig::FRAMES);
            for (size_t frame = 0; frame < block.size(); frame += 2) {
                sound.left.push_back(block[frame]);
                sound.right.push_back(block[frame + 1]);
            }
        }
        return sound;
    }
    /// Blocks until every note that was begun has ended; -1 when that takes longer.
    int renderUntilEnded(const SlotLedger& ledger, int atMost)
    {
        for (int block = 1; block <= atMost; ++block) {
            render(1);
            if (ledger.unended() == 0)
                return block;
        }
        return -1;
    }

    bool loaded = false;
    QStringList names; // of the macros
    QList<float> defaults;
    SoundRig rig; // ends first, since it still signals then
};

float peak(const Stereo& sound)
{
    return std::max(::peak(sound.left), ::peak(sound.right));
}

double rms(const std::vector<float>& side)
{
    double sum = 0.0;
    for (const float sample : side)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return std::sqrt(sum / static_cast<double>(side.size()));
}

double clickLevel(const Stereo& sound)
{
    return std::max(::clickLevel(sound.left), ::clickLevel(sound.right));
}

/// 128 pitches from 110 to 720 Hz, no two alike.
OrloRatio pitchOf(int index)
{
    return OrloRatio(static_cast<unsigned long long>(23 + index), 92);
}

class VoicePatch : public ::testing::TestWithParam<VoiceRow>
{
};

class HarmonicVoice : public VoicePatch
{
};

std::vector<VoiceRow> harmonicVoices()
{
    std::vector<VoiceRow> rows;
    std::copy_if(std::begin(VOICES), std::end(VOICES), std::back_inserter(rows),
                 [](const VoiceRow& row) { return row.harmonic; });
    return rows;
}

std::string rowName(const ::testing::TestParamInfo<VoiceRow>& info)
{
    return info.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(All, VoicePatch, ::testing::ValuesIn(VOICES), rowName);
INSTANTIATE_TEST_SUITE_P(All, HarmonicVoice, ::testing::ValuesIn(harmonicVoices()), rowName);

TEST(VoicePatches, EveryFileHasARowAndOpensInPlainPd)
{
    const QDir directory(QCoreApplication::applicationDirPath() + QStringLiteral("/patches"));
    QStringList rows;
    for (const VoiceRow& row : VOICES)
        rows.append(QString::fromLatin1(row.name) + QStringLiteral(".pd"));
    EXPECT_EQ(directory.entryList({QStringLiteral("*.pd")}, QDir::Files, QDir::Name), rows);

    const QString pd = QStandardPaths::findExecutable(QStringLiteral("pd"));
    if (pd.isEmpty())
        GTEST_SKIP() << "no pd";
    const SoundRig rig(4); // its runtime folder
    const QString folder = rig.mainPatch().absolutePath();
    for (const QString& voice : rows) {
        QFile file(directory.filePath(voice));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        rig.setVoiceText(file.readAll());
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setWorkingDirectory(folder);
        process.start(pd,
                      {QStringLiteral("-nogui"), QStringLiteral("-noprefs"), QStringLiteral("-batch"),
                       QStringLiteral("-noaudio"), QStringLiteral("-nomidi"), QStringLiteral("-open"),
                       QStringLiteral("orlo_main.pd"), QStringLiteral("-send"), QStringLiteral("pd quit")});
        ASSERT_TRUE(process.waitForFinished(20000)) << qPrintable(voice);
        const QString said = QString::fromLocal8Bit(process.readAll()).toLower();
        for (const char* bad : {"error", "couldn't", "can't", "no method", "connection failed"})
            EXPECT_FALSE(said.contains(QLatin1StringView(bad)))
                << qPrintable(voice) << ": " << qPrintable(said);
    }
}

TEST(VoicePatches, MacrosHaveOnePlaceEverywhereAndTheSameChordIsEquallyLoud)
{
    std::map<QString, int> places;
    std::map<double, QString> loudnesses;
    for (const VoiceRow& row : VOICES) {
        Player player(row.name, 4);
        ASSERT_TRUE(player.loaded) << row.name;
        ASSERT_GE(player.names.size(), 4) << row.name;
        ASSERT_LE(player.names.size(), 8) << row.name;
        EXPECT_EQ(QSet<QString>(player.names.begin(), player.names.end()).size(), player.names.size())
            << row.name;
        const QString first = player.names[0];
        EXPECT_TRUE(first == QStringLiteral("Level") || first == QStringLiteral("Strength")) << row.name;
        EXPECT_FLOAT_EQ(player.defaults[0], 0.8F) << row.name;
        for (int i = 0; i < player.names.size(); ++i) {
            EXPECT_FALSE(player.names[i].isEmpty()) << row.name;
            EXPECT_GE(player.defaults[i], 0.0F) << row.name << i;
            EXPECT_LE(player.defaults[i], 1.0F) << row.name << i;
            const int number = places.try_emplace(player.names[i], i + 1).first->second;
            EXPECT_EQ(number, i + 1) << row.name << ' ' << qPrintable(player.names[i]);
        }
        player.base(264.0);
        for (const OrloRatio& ratio : {UNISON, OrloRatio(5, 4), OrloRatio(3, 2)})
            player.toggle(ratio);
        loudnesses[listening::loudness(player.render(2 * SECOND), SoundRig::RATE)] =
            QString::fromLatin1(row.name);
    }
    const auto quietest = loudnesses.begin();
    const auto loudest = std::prev(loudnesses.end());
    RecordProperty("spread", std::to_string(loudest->first - quietest->first));
    EXPECT_LT(loudest->first - quietest->first, 3.0)
        << qPrintable(quietest->second) << " and " << qPrintable(loudest->second);
}

TEST_P(VoicePatch, HasVolumeLevelAndPlaceAsOneRampedGainOfEachSide)
{
    Player player(GetParam().name, 4);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    player.base(220.0);
    player.setMacro(1, 0.4F); // too quiet for the compressor, struck voices too, which hold
    player.setMacro(2, 0.1F);
    player.setMacro(4, 1.0F);
    player.setMacro(5, 0.1F);
    player.silenceBreath();
    player.toggle(UNISON);
    player.render(SECOND / 2);
    const Stereo steady = player.render(SECOND / 4);
    const double full = rms(steady.left);
    EXPECT_NEAR(rms(steady.right) / full, 1.0, 0.01);
    const double allowed = std::max(clickLevel(steady) + 6.0, -70.0);
    struct Row
    {
        int type;
        float value;
        double left; // as a share of what it was at first
        double right;
    };
    // Half the level, squared. A strength brightens too, so it stays where it is.
    const double half = GetParam().struck ? 1.0 : 0.25;
    const Row rows[] = {
        {voiceVolume, 0.5F, 0.5, 0.5},
        {voiceMacro1 + 5, 0.0F, 0.7071, 0.0}, // place: all to the left, of equal power
        {voiceMacro1, GetParam().struck ? 0.4F : 0.2F, 0.7071 * half, 0.0},
        {voiceVolume, 2.0F, 1.4142 * half, 0.0}, // no louder than 1
        {voiceMacro1 + 5, 1.0F, 0.0, 1.4142 * half},
    };
    for (const Row& row : rows) {
        player.rig.player.sendPdVoiceMessage(static_cast<PdVoiceMessageType>(row.type), row.value, 0.0F);
        EXPECT_LT(clickLevel(player.render(SECOND / 4)), allowed) << row.type << ' ' << row.value;
        const Stereo sound = player.render(SECOND / 4);
        EXPECT_NEAR(rms(sound.left) / full, row.left, 0.01) << row.type << ' ' << row.value;
        EXPECT_NEAR(rms(sound.right) / full, row.right, 0.01) << row.type << ' ' << row.value;
    }
    player.toggle(UNISON);
    ASSERT_GT(player.renderUntilEnded(ledger, 10 * SECOND), 0);
    player.toggle(UNISON); // takes the same slot, from its first sample with gains of its own
    const Stereo begun = player.render(SECOND / 2);
    EXPECT_LT(clickLevel(begun), allowed);
    EXPECT_NEAR(rms(player.render(SECOND / 4).left) / full, 1.0, 0.01);
    EXPECT_NEAR(::peak(begun.left), ::peak(begun.right), 0.01F * ::peak(begun.left))
        << "slid in from where the last note was";
}

TEST_P(VoicePatch, HasTheExactPitchWhateverItsMacros)
{
    Player player(GetParam().name, 4);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    QList<float> ones(player.defaults.size(), 1.0F);
    QList<float> mixed;
    for (int i = 0; i < player.defaults.size(); ++i)
        mixed.append(i % 2 == 0 ? 0.9F : 0.2F);
    const auto detune = player.names.indexOf(QStringLiteral("Detune"));
    for (QList<float> macros : {player.defaults, ones, mixed}) {
        if (detune >= 0)
            macros[detune] = 0.0F;
        for (const double wanted : {27.5, 261.6256, 1234.567, 7040.0}) {
            const auto frequency = static_cast<double>(static_cast<float>(wanted));
            player.setMacros(macros);
            player.base(frequency);
            player.toggle(UNISON);
            // A filter that still opens moves the phase, so what holds is heard once it holds.
            const std::vector<float> sound =
                player.render(GetParam().struck ? 2 * SECOND : 5 * SECOND).both();
            EXPECT_NEAR(listening::centsOff(sound, frequency, SoundRig::RATE), 0.0, 0.1)
                << frequency << " Hz, macro 1 " << macros[0] << ", macro 2 " << macros[1];
            player.toggle(UNISON);
            ASSERT_GT(player.renderUntilEnded(ledger, 30 * SECOND), 0) << frequency;
        }
    }
}

TEST_P(VoicePatch, IsEvenFromLowToHighAndFadesInTime)
{
    Player player(GetParam().name, 4);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    std::vector<double> loudnesses;
    for (double frequency = 55.0; frequency <= 7040.0; frequency *= 2.0) {
        player.base(frequency);
        player.toggle(UNISON);
        Stereo sound = player.render(1);
        EXPECT_GT(peak(sound), 0.0F) << frequency << " Hz is late";
        sound.append(player.render(SECOND));
        loudnesses.push_back(listening::loudness(sound, SoundRig::RATE));
        player.toggle(UNISON);
        const int blocks = player.renderUntilEnded(ledger, 10 * SECOND);
        ASSERT_GT(blocks, 0) << frequency << " Hz is not reported";
        EXPECT_LE(blocks * SoundRig::FRAMES / SoundRig::RATE, GetParam().release) << frequency;
        player.render(MASTER_SLEEPS);
        EXPECT_EQ(peak(player.render(10)), 0.0F) << frequency;
    }
    const auto [quietest, loudest] = std::minmax_element(loudnesses.begin(), loudnesses.end());
    EXPECT_LT(*loudest - *quietest, 5.0);
    EXPECT_EQ(ledger.stopped(), ledger.begun());
    EXPECT_EQ(ledger.stolen() + ledger.spurious(), 0);
}

TEST_P(VoicePatch, TakesTheTimeThatAttackAndReleaseSay)
{
    Player player(GetParam().name, 4);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    double attacks[2]; // loudness of what is heard first
    int releases[2];   // blocks
    for (const int longest : {0, 1}) {
        player.setMacro(2, static_cast<float>(longest));
        player.setMacro(5, static_cast<float>(longest));
        player.toggle(UNISON);
        attacks[longest] = listening::loudness(player.render(SECOND / 10), SoundRig::RATE);
        player.render(SECOND);
        player.toggle(UNISON);
        releases[longest] = player.renderUntilEnded(ledger, 30 * SECOND);
        ASSERT_GT(releases[longest], 0);
        player.render(MASTER_SLEEPS);
    }
    EXPECT_GT(attacks[0], attacks[1] + 20.0);
    EXPECT_LT(releases[0], SECOND / 5);
    EXPECT_GT(releases[1], SECOND);
}

TEST_P(VoicePatch, NeitherVanishesNorClipsWithAllSlotsSounding)
{
    Player player(GetParam().name);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    player.toggle(UNISON);
    const double one = listening::loudness(player.render(2 * SECOND), SoundRig::RATE);
    player.toggle(UNISON);
    ASSERT_GT(player.renderUntilEnded(ledger, 10 * SECOND), 0);
    player.render(MASTER_SLEEPS);
    for (int i = 0; i < 128; ++i)
        player.toggle(pitchOf(i));
    Stereo all = player.render(2 * SECOND);
    EXPECT_GT(listening::loudness(all, SoundRig::RATE), one - 3.0);
    player.rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F));
    all.append(player.render(SECOND));
    EXPECT_LE(peak(all), 0.95F); // which a sample that is no number would fail too
}

TEST_P(VoicePatch, DoesNotClick)
{
    Player player(GetParam().name, 4, 1); // one slot, so that each note takes it from the last
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    player.base(220.0);
    player.setMacro(2, 0.0F); // fastest attack and release, and loud when released
    player.setMacro(4, 0.9F);
    player.setMacro(5, 0.0F);
    player.silenceBreath();

    std::map<const char*, Stereo> sounds;
    player.toggle(UNISON);
    sounds["on"] = player.render(SECOND / 2);
    const Stereo steady = player.render(SECOND / 2);
    player.toggle(UNISON);
    sounds["off"] = player.render(SECOND);
    EXPECT_EQ(ledger.stopped(), 1);

    player.toggle(UNISON);
    player.render(SECOND / 2);
    player.toggle(UNISON);
    Stereo restrike = player.render(1);
    player.toggle(UNISON);
    restrike.append(player.render(SECOND / 2));
    sounds["restrike"] = restrike;

    Stereo steal = player.render(2);
    player.toggle(OrloRatio(63, 50));
    steal.append(player.render(SECOND / 3));
    sounds["steal"] = steal;
    EXPECT_EQ(ledger.stolen(), 2);

    const double allowed = std::max(clickLevel(steady) + 6.0, -75.0);
    for (const auto& [what, sound] : sounds)
        EXPECT_LE(clickLevel(sound), allowed) << what;
}

TEST_P(VoicePatch, LosesNoNoteOfAStorm)
{
    Player player(GetParam().name);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    std::mt19937 random(31);
    const int notes = GetParam().storm;
    while (ledger.begun() < notes) {
        // A press begins a note or ends it, so it can never be one too many.
        const int presses = std::min(static_cast<int>(random() % 60), notes - ledger.begun());
        for (int i = 0; i < presses; ++i)
            player.toggle(pitchOf(static_cast<int>(random() % 200)));
        ASSERT_LE(peak(player.render(1)), 0.95F);
    }
    player.rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F));
    EXPECT_GT(player.renderUntilEnded(ledger, 10 * SECOND), 0);
    EXPECT_EQ(ledger.stolen() + ledger.stopped(), notes);
    EXPECT_GT(ledger.stolen(), 0);
    EXPECT_EQ(ledger.spurious(), 0);
    player.render(MASTER_SLEEPS);
    EXPECT_EQ(peak(player.render(10)), 0.0F);
}

TEST_P(HarmonicVoice, LetsAThirdBeatOnlyWhenItIsTempered)
{
    Player player(GetParam().name, 4);
    ASSERT_TRUE(player.loaded);
    SlotLedger ledger;
    player.base(264.0);
    // Partial 5 of the lower note, 1320 Hz, meets partial 4 of the upper one, a tempered one being 1330.5 Hz.
    const OrloRatio tempered(125992, 100000);
    const double beat = 4.0 * 264.0 * 1.25992 - 1320.0;
    const auto beating = [&](const OrloRatio& third) {
        player.toggle(UNISON);
        player.toggle(third);
        player.render(SECOND);
        const Stereo sound = player.render(2 * SECOND);
        player.rig.queue(OrloEvent(OrloEvent::AllNotesOffForced, 0.0F));
        EXPECT_GT(player.renderUntilEnded(ledger, 10 * SECOND), 0);
        return listening::beating(sound.left, 1325.0, beat, SoundRig::RATE);
    };
    EXPECT_LT(beating(OrloRatio(5, 4)), 0.05);
    EXPECT_GT(beating(tempered), 0.3);
}
