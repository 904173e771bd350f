// What notes that sound together are to each other, against whole numbers of any size, worked out elsewhere
// (tests/data/harmony.py).

#include "harmony/Harmony.h"
#include "harmony/Drift.h"
#include "harmony/SoundingNotes.h"
#include "sound/OrloNodeSelectToggleEvent.h"
#include "sound/OrloNoteEvent.h"
#include "support/SoundRig.h"

#include <gtest/gtest.h>

#include <QFile>

#include <algorithm>
#include <cmath>
#include <random>

using namespace Qt::StringLiterals;

namespace {

constexpr double ONE_ONE = 440.0; // Hz

double valueOf(const OrloRatio& ratio)
{
    return static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
}

SoundingNote exact(unsigned long long numerator, unsigned long long denominator)
{
    const OrloRatio ratio(numerator, denominator);
    return {ratio, ONE_ONE * valueOf(ratio)};
}

SoundingNote glided(unsigned long long numerator, unsigned long long denominator, double cents)
{
    SoundingNote note = exact(numerator, denominator);
    note.frequency *= std::exp2(cents / 1200.0);
    note.offset = cents;
    return note;
}

QList<SoundingNote> notesOf(const QString& text)
{
    QList<SoundingNote> notes;
    for (const QString& part : text.split(u' '))
        notes.append(exact(part.section(u'/', 0, 0).toULongLong(), part.section(u'/', 1).toULongLong()));
    return notes;
}

QString textOf(const QList<WideInt>& numbers)
{
    QStringList parts;
    for (const WideInt& number : numbers)
        parts.append(QString::fromStdString(number.str()));
    return parts.join(u' ');
}

void expectPair(const Harmony::Pair& pair, const QStringList& expected)
{
    EXPECT_TRUE(pair.isExact);
    EXPECT_NEAR(pair.cents, expected[0].toDouble(), 1e-9);
    EXPECT_NEAR(wideratio::harmonicDistance(pair.ratio), expected[1].toDouble(), 1e-9);
    EXPECT_NEAR(pair.beats, expected[2].toDouble(), 1e-9);
    EXPECT_EQ(pair.lowPartial, expected[3].toInt());
    EXPECT_EQ(pair.highPartial, expected[4].toInt());
    EXPECT_EQ(pair.beats == 0.0, expected[2].toDouble() == 0.0);
    EXPECT_EQ(pair.isComma, expected[0].toDouble() < 50.0);
}

} // namespace

TEST(Harmony, EqualsWhatWholeNumbersOfAnySizeGive)
{
    QFile file(QStringLiteral(ORLO_TEST_DATA "/harmony.tsv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same order each time
    int chords = 0;
    while (!file.atEnd()) {
        const QStringList columns = QString::fromLatin1(file.readLine().trimmed()).split(u'\t');
        SCOPED_TRACE(columns[0].toStdString());
        QList<SoundingNote> notes = notesOf(columns[0]);
        std::shuffle(notes.begin(), notes.end(), random);
        const Harmony harmony = Harmony::of(notes);
        EXPECT_EQ(textOf(harmony.otonal), columns[1]);
        EXPECT_EQ(textOf(harmony.utonal), columns[2]);
        EXPECT_EQ(harmony.isOtonal, columns[3] == u"otonal");
        EXPECT_EQ(harmony.primeLimit, columns[4].toInt());
        EXPECT_NEAR(harmony.fundamental / columns[5].toDouble(), 1.0, 1e-12);
        const QStringList pairs = columns[6].split(u';');
        ASSERT_EQ(harmony.pairs.size(), pairs.size());
        for (qsizetype i = 0; i < pairs.size(); ++i)
            expectPair(harmony.pairs[i], pairs[i].split(u' '));
        ++chords;
    }
    EXPECT_GE(chords, 30);
}

TEST(Harmony, GlidedNotesAreNearAndNeverEqual)
{
    // 5/4 is glided away: the numbers are those of the others.
    const Harmony one = Harmony::of({exact(1, 1), glided(5, 4, 10.0), exact(3, 2)});
    EXPECT_EQ(textOf(one.otonal), u"2 3");
    EXPECT_FALSE(one.pairs[0].isExact);
    EXPECT_NEAR(one.pairs[0].cents, 396.3137, 1e-4);
    EXPECT_NEAR(one.pairs[0].beats, ONE_ONE * 5.0 * (std::exp2(10.0 / 1200.0) - 1.0), 1e-9);
    EXPECT_TRUE(one.pairs[1].isExact);
    // What is glided together keeps its ratios, but for what single precision makes of it.
    const Harmony all = Harmony::of({glided(1, 1, 10.0), glided(5, 4, 10.0001), glided(3, 2, 9.9999)});
    EXPECT_EQ(textOf(all.otonal), u"4 5 6");
    EXPECT_TRUE(all.pairs[0].isExact);
    EXPECT_NEAR(all.fundamental, 110.0 * std::exp2(10.0 / 1200.0), 1e-9);
    // The same pitch twice is in unison, not a comma; once glided it beats.
    EXPECT_FALSE(Harmony::of({exact(1, 1), exact(1, 1)}).pairs[0].isComma);
    const Harmony::Pair apart = Harmony::of({exact(1, 1), glided(1, 1, 5.0)}).pairs[0];
    EXPECT_TRUE(apart.isComma);
    EXPECT_NEAR(apart.beats, ONE_ONE * (std::exp2(5.0 / 1200.0) - 1.0), 1e-9);
    // Without an exact ratio there are no numbers, whatever the fraction.
    SoundingNote tempered = exact(3, 2);
    tempered.isTempered = true;
    EXPECT_TRUE(Harmony::of({exact(1, 1), tempered}).otonal.isEmpty());
    EXPECT_TRUE(Harmony::of({}).pairs.isEmpty());
    EXPECT_TRUE(Harmony::of({exact(1, 1), exact(81, 80)}).pairs[0].isComma);
}

TEST(Drift, IsToldWithoutOctavesAndByCommas)
{
    const std::tuple<OrloRatio, QString> rows[] = {
        {{1, 1}, u"where it began"_s},
        {{81, 20}, u"81/80 up, 21.506 cents: syntonic comma, and 2 octaves up"_s},
        {{80, 81}, u"81/80 down, 21.506 cents: syntonic comma"_s},
        {{40, 81}, u"81/80 down, 21.506 cents: syntonic comma, and 1 octave down"_s},
        {{1, 4}, u"2 octaves down"_s},
        {{6561, 6400}, u"6561/6400 up, 43.013 cents: 2 times the syntonic comma"_s},
        {{6400, 6561}, u"6561/6400 down, 43.013 cents: 2 times the syntonic comma"_s},
        {{3, 2}, u"4/3 down, 498.045 cents: perfect fourth, and 1 octave up"_s},
        {{1048583, 1048576}, u"1048583/1048576 up, 0.012 cents"_s},
    };
    for (const auto& [transposition, text] : rows)
        EXPECT_EQ(Drift::of(transposition).text(), text);
}

TEST(SoundingNotes, AreExactUntilTheyAreGlided)
{
    SoundRig rig;
    ASSERT_TRUE(rig.loadVoice(u"Sine.pd"_s));
    const float base = rig.orlo.baseFrequency();
    const OrloRatio third(5, 4);
    for (const OrloRatio& ratio : {OrloRatio(1, 1), third, OrloRatio(3, 2)})
        rig.send(OrloNoteEvent(ratio));
    const auto find = [&](const OrloRatio& ratio) {
        for (const SoundingNote& note : soundingNotes(rig.player, base)) {
            if (note.ratio == ratio)
                return note;
        }
        return SoundingNote();
    };
    ASSERT_EQ(soundingNotes(rig.player, base).size(), 3);
    EXPECT_TRUE(find(third).isExact());
    EXPECT_EQ(find(third).frequency, 550.0);

    rig.send(OrloNodeSelectToggleEvent(third));
    rig.send(OrloEvent(OrloEvent::GlissTwoSet, 0.75F));
    rig.render(1);
    EXPECT_NEAR(find(third).offset, 50.0, 0.01);
    EXPECT_FALSE(find(third).isExact());
    EXPECT_NEAR(find(third).frequency, 550.0 * std::exp2(50.0 / 1200.0), 0.01);
    EXPECT_TRUE(find(OrloRatio(3, 2)).isExact());
    rig.send(OrloEvent(OrloEvent::GlissTwoSet, 0.5F));
    rig.render(1);
    EXPECT_TRUE(find(third).isExact());

    rig.send(OrloNoteEvent(OrloRatio(3, 2)));
    EXPECT_EQ(soundingNotes(rig.player, base).size(), 2) << "a note that fades does not count";
}
