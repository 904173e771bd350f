#include "tuning/ScalaImport.h"
#include "model/Orlo.h"
#include "scala/ScalaKeyboard.h"
#include "scala/ScalaScale.h"

#include <gtest/gtest.h>

#include <QBuffer>

using namespace Qt::StringLiterals;

namespace {

template <class Content>
std::optional<Content> readFrom(QByteArray text)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    ScalaError error;
    return Content::read(buffer, error);
}

/// "1/1 3/2 | 4 6": the chord, and the lines of what was left out, "-" without one.
std::string imported(const ScalaScale& scale, const std::optional<ScalaKeyboard>& keyboard, const Orlo& orlo)
{
    const ScalaImport import = ScalaImport::of(scale, keyboard, orlo);
    QStringList told;
    for (const OrloRatio& ratio : import.ratios)
        told.append(QStringLiteral("%1/%2").arg(ratio.numerator()).arg(ratio.denominator()));
    told.append(u"|"_s);
    for (const QString& line : import.leftOut)
        told.append(line.startsWith(u"Line "_s) ? line.section(u':', 0, 0).mid(5) : u"-"_s);
    return told.join(u' ').toStdString();
}

Orlo& latticeAt(Orlo& orlo, const OrloRatio& transposition)
{
    orlo.initWithDefaults();
    orlo.onTransposed(transposition, Orlo::FREE_TRANSPOSITION);
    return orlo;
}

} // namespace

TEST(ScalaImport, PitchesOfTheLatticeBecomeAChord)
{
    const OrloRatio here(1, 1);
    const struct
    {
        QByteArray pitches; // after the first line
        OrloRatio transposition;
        const char* expected;
    } cases[] = {
        {"3\n5/4\n3/2\n2/1\n", here, "1/1 5/4 3/2 |"},
        {"! c\r\n\r\n4\r\n\t3/2 fifth\r\n5/4\r\n6/4\r\n2\r\n", here, "1/1 5/4 3/2 |"},
        {"0\n", here, "1/1 |"},
        // A period that is no octave belongs to the chord.
        {"2\n5/3\n3/1", here, "1/1 5/3 3/1 |"},
        {"2\n2/1\n4/1", here, "1/1 2/1 4/1 |"},
        {"5\n1/1\n386.3\n37/32\n31/16\n1200.0", here, "1/1 31/16 | 4 5"},
        {"3\n1/2\n1/22\n2/1\n", here, "1/2 1/1 | 4"},
        {"3\n45/1\n46/1\n2/1\n", here, "1/1 45/1 | 4"},
        {"2\n5/4\n2/1\n", {3, 2}, "3/2 15/8 |"},
        // A chord file has numbers below 2^31, a scale 64 bits.
        {"4\n2147477508/1977326743\n2147483648/1977326743\n36893488147419103232/36472996377170786403\n2/1",
         here, "1/1 2147477508/1977326743 | 4 5"},
        // By the transposition numbers grow beyond that, or out of it.
        {"3\n177147/131072\n32/31\n2/1", {59049, 32768}, "59049/32768 59049/31744 | 3"},
        {"3\n10460353203/8589934592\n9/8\n2/1", {1, 3}, "1/3 3/8 | 3"},
        {"3\n3486784401/1073741824\n9/8\n2/1", {1, 3}, "1/3 3/8 1162261467/1073741824 |"},
    };
    for (const auto& [pitches, transposition, expected] : cases) {
        Orlo orlo;
        const auto scale = readFrom<ScalaScale>("x\n" + pitches);
        ASSERT_TRUE(scale) << pitches.toStdString();
        EXPECT_EQ(imported(*scale, std::nullopt, latticeAt(orlo, transposition)), expected)
            << pitches.toStdString();
    }
}

TEST(ScalaImport, AKeyboardMapChoosesTheDegrees)
{
    Orlo orlo;
    latticeAt(orlo, {1, 1});
    const auto scale = readFrom<ScalaScale>("x\n! c\n4\n5/4\n700.0\n7/4\n2/1\n");
    ASSERT_TRUE(scale);
    const struct
    {
        QByteArray degrees; // with their number in front
        const char* expected;
    } cases[] = {
        {"3\nKEYS\n1\nx\n3\n", "1/1 5/4 7/4 |"}, {"4\nKEYS\n0\n1\n1\n2\n", "1/1 5/4 | 5"},
        {"2\nKEYS\n4\n5\n", "1/1 2/1 5/2 |"},    {"3\nKEYS\n-1\n6\n-2\n", "7/8 1/1 | 5 5"},
        {"0\nKEYS\n", "1/1 5/4 7/4 | 5"},
    };
    for (auto [degrees, expected] : cases) {
        const auto keyboard = readFrom<ScalaKeyboard>(degrees.replace("KEYS", "0\n127\n60\n69\n440.0\n4"));
        ASSERT_TRUE(keyboard);
        EXPECT_EQ(imported(*scale, keyboard, orlo), expected) << degrees.toStdString();
    }
    EXPECT_EQ(imported({}, readFrom<ScalaKeyboard>("2\n0\n127\n60\n69\n440.0\n0\n0\n7\n"), orlo), "1/1 |");
}

TEST(ScalaImport, AChordHasAsManyNotesAsCanSound)
{
    Orlo orlo;
    latticeAt(orlo, {1, 1});
    QList<ScalaPitch> pitches;
    for (unsigned long long n = 65; n < 2000; ++n)
        pitches.append(ScalaPitch::of(OrloRatio(n, 64)));
    const ScalaImport import = ScalaImport::of({u"x"_s, pitches}, std::nullopt, orlo);
    EXPECT_EQ(import.ratios.size(), 128);
    EXPECT_LT(import.leftOut.size(), 1000);
    EXPECT_TRUE(import.leftOut.last().contains(u"128"_s)) << import.leftOut.last().toStdString();
}
