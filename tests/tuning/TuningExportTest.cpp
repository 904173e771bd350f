#include "tuning/TuningExport.h"
#include "scala/ScalaKeyboard.h"
#include "scala/ScalaScale.h"
#include "sound/NoPdTilde.h"
#include "support/LocaleTest.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <random>

#include <z_libpd.h>

using namespace Qt::StringLiterals;
using tuningexport::Format;
using tuningexport::Range;

namespace {

constexpr int KEYS = 128;
constexpr double STEP_CENTS = 100.0 / 16384; // of a bulk dump

/// Files are the same where a comma stands for the decimal point.
class TuningExport : public LocaleTest
{
};

QByteArray written(const TuningSet& set, Format format, Range range)
{
    QString reason;
    const QByteArray text = tuningexport::write(set, format, range, reason);
    EXPECT_EQ(text.isEmpty(), !reason.isEmpty()) << reason.toStdString();
    return text;
}

template <class Content>
Content readBack(const TuningSet& set, Format format, Range range)
{
    QBuffer buffer;
    buffer.setData(written(set, format, range));
    buffer.open(QIODevice::ReadOnly);
    ScalaError error;
    const auto content = Content::read(buffer, error);
    EXPECT_TRUE(content) << error.text().toStdString();
    return content.value_or(Content());
}

/// The lines of a file but its head of remarks, joined by blanks.
std::string body(const QByteArray& text)
{
    QByteArrayList lines = text.split('\n');
    while (!lines.isEmpty() && lines.first().startsWith('!'))
        lines.removeFirst();
    return lines.join(' ').trimmed().toStdString();
}

double centsOf(double hertz)
{
    return 1200.0 * std::log2(hertz / 440.0);
}

/// What a receiver makes of a bulk dump: cents above 440 Hz, not a number for a key that is left alone.
QList<double> keysIn(const QByteArray& dump)
{
    int sum = 0; // of all bytes but F0 and F7, with the checksum
    for (const char byte : dump.mid(1, 406))
        sum ^= byte;
    if (dump.size() != 408 || !dump.startsWith(QByteArray("\xf0\x7e\x7f\x08\x01\0", 6)) || sum != 0
        || !dump.endsWith('\xf7'))
        return {};
    QList<double> cents;
    for (qsizetype at = 22; at < 406; at += 3) {
        const int steps = dump[at] << 14 | dump[at + 1] << 7 | dump[at + 2];
        cents.append(steps == 0x1FFFFF ? std::nan("") : steps * STEP_CENTS - 6900.0);
    }
    return cents;
}

/// Of random 64-bit numbers, some of them small, three octaves to either side of 1/1.
TuningSet randomSet(std::mt19937_64& random, int size)
{
    const auto below = [&](unsigned long long bound) { return random() % bound + 1; };
    TuningSet set{
        .title = u"random"_s, .oneOne = 100.0 + static_cast<double>(below(900)) / 7.0, .ratios = {}};
    for (int i = 0; i < size; ++i) {
        const unsigned long long denominator = below(1ULL << below(60));
        set.ratios.append(OrloRatio(denominator / 8 + below(denominator * 7), denominator));
    }
    return set;
}

} // namespace

TEST_F(TuningExport, AScaleIsAscendingWithItsPeriodLast)
{
    constexpr unsigned long long large = 1ULL << 31U;
    const struct
    {
        QList<OrloRatio> ratios;
        const char* withinOctave;
        const char* asPlayed;
    } rows[] = {
        {{{1, 1}}, "t 1 ! 2/1", "t 1 ! 2/1"},
        {{{3, 1}, {5, 2}, {1, 1}, {3, 1}}, "t 3 ! 5/4 3/2 2/1", "t 3 ! 5/2 3/1 4/1"},
        {{{1, 1}, {2, 1}, {3, 1}, {4, 1}}, "t 2 ! 3/2 2/1", "t 3 ! 2/1 3/1 4/1"},
        {{{3, 4}, {2, 1}, {5, 2}}, "t 3 ! 5/4 3/2 2/1", "t 3 ! 8/3 10/3 4/1"}, // 1/1 is in it, an octave up
        {{{5, 4}, {3, 2}, {15, 4}}, "t 3 ! 6/5 3/2 2/1", "t 3 ! 6/5 3/1 4/1"}, // 1/1 is not
        {{{1, 1}, {3, 1}, {large - 1, large - 2}, {large, large - 1}},
         "t 4 ! ! 2147483648/2147483647 0.000001 2147483647/2147483646 3/2 2/1",
         "t 4 ! ! 2147483648/2147483647 0.000001 2147483647/2147483646 3/1 4/1"},
        {{{1ULL << 62U, 12157665459056928801ULL}, {3, 2}}, // 3^41/2^63 lies between them
         "t 2 ! ! 36472996377170786403/18446744073709551616 1180.155035 2/1",
         "t 2 ! ! 36472996377170786403/9223372036854775808 2380.155035 4/1"},
    };
    for (const auto& row : rows) {
        const TuningSet set{.title = u"t"_s, .oneOne = 1000.0, .ratios = row.ratios};
        EXPECT_EQ(body(written(set, Format::Scala, Range::WithinOctave)), row.withinOctave);
        EXPECT_EQ(body(written(set, Format::Scala, Range::AsPlayed)), row.asPlayed);
    }
}

// The expected pitches are the set's own, in double; those of the scale's degrees follow from its lowest one.
TEST_F(TuningExport, EachKeyHasTheTruePitch)
{
    std::mt19937_64 random(17);
    for (const int size : {1, 2, 7, 7, 40, 127, 128, 1000}) {
        const TuningSet set = randomSet(random, size);
        for (const Range range : {Range::WithinOctave, Range::AsPlayed}) {
            const auto scale = readBack<ScalaScale>(set, Format::Scala, range);
            const auto keyboard = readBack<ScalaKeyboard>(set, Format::Keyboard, range);
            const QList<double> dump = keysIn(written(set, Format::BulkDump, range));
            ASSERT_EQ(dump.size(), KEYS);
            ASSERT_EQ(keyboard.referenceKey, keyboard.middle);
            const double root = centsOf(keyboard.referenceFrequency);
            EXPECT_LE(std::abs(root - (keyboard.middle - 69) * 100.0), 50.0);

            QList<double> expected; // above the root
            for (const OrloRatio& ratio : set.ratios)
                expected.append(centsOf(set.oneOne * ScalaPitch::of(ratio).factor()) - root);
            for (double& cents : expected)
                cents -= range == Range::WithinOctave ? 1200.0 * std::floor(cents / 1200.0 + 1e-9) : 0.0;
            std::sort(expected.begin(), expected.end());
            const auto isSame = [](double a, double b) { return b - a < 1e-9; };
            expected.erase(std::unique(expected.begin(), expected.end(), isSame), expected.end());
            const auto count = static_cast<int>(expected.size());
            ASSERT_EQ(count, scale.pitches().size());
            const double period = 1200.0 * std::max(1.0, std::ceil(expected.last() / 1200.0 - 1e-9));
            for (int key = 0; key < KEYS; ++key) {
                const int offset = key - keyboard.middle + 1000 * count;
                const double cents = root + expected[offset % count] + period * (offset / count - 1000);
                const auto pitch = keyboard.pitchOf(key, scale);
                ASSERT_TRUE(pitch);
                EXPECT_NEAR(root + pitch->cents, cents, 0.001) << size << ' ' << key;
                const bool isTuned = cents >= -6900.0 && cents < 5900.0 - 2 * STEP_CENTS;
                EXPECT_EQ(!std::isnan(dump[key]), isTuned) << size << ' ' << key;
                EXPECT_FALSE(std::abs(dump[key] - cents) > 0.51 * STEP_CENTS) << size << ' ' << key;
            }
        }
    }
}

TEST_F(TuningExport, ATitleIsOneLineOfAscii)
{
    const struct
    {
        QString title;
        std::string line;
    } rows[] = {
        {u""_s, "Brevick Tuning Orlo"},
        {u" \r\n!\t! "_s, "Brevick Tuning Orlo"},
        {u"!! a\r\nb\u2028c\td"_s, "a b c d"},
        {u"\u00c9tude in F\u266f \u2013 \u00d8st \u65e5\U0001D11E"_s, "Etude in F# - Ost ??"},
        {QString(10000, u'x'), std::string(79, 'x')},
    };
    for (const auto& row : rows) {
        const TuningSet set{.title = row.title, .oneOne = 440.0, .ratios = {{1, 1}}};
        EXPECT_EQ(body(written(set, Format::Scala, Range::AsPlayed)), row.line + " 1 ! 2/1");
        const QByteArray dump = written(set, Format::BulkDump, Range::AsPlayed);
        EXPECT_EQ(dump.mid(6, 16).toStdString(), (row.line + std::string(16, ' ')).substr(0, 16));
    }
}

TEST_F(TuningExport, TextHasColumns)
{
    const TuningSet set{.title = {}, .oneOne = 440.0, .ratios = {{5, 4}, {15, 8}}};
    EXPECT_EQ(written(set, Format::Text, Range::AsPlayed).toStdString(),
              "Brevick Tuning Orlo\n"
              "1/1 is 550.0 Hz, which is 5/4 of 440.0 Hz\n"
              "\n"
              "Ratio         Cents            Hz\n"
              "1/1        0.000000    550.000000\n"
              "3/2      701.955001    825.000000\n");
}

TEST_F(TuningExport, PureDataOpensItsTables)
{
    QTemporaryDir folder;
    QFile file(folder.filePath(u"table.pd"_s));
    TuningSet set{.title = u"a; #X obj 1 1 \\$0, {}"_s, .oneOne = 440.0, .ratios = {}};
    for (unsigned int i = 300; i > 0; --i)
        set.ratios.append(OrloRatio(300 + i, 301));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(written(set, Format::PureData, Range::AsPlayed));
    file.close();
    libpd_init();
    void* const patch = libpd_openfile("table.pd", folder.path().toUtf8().constData());
    ASSERT_NE(patch, nullptr);
    std::vector<float> pitches(300);
    std::vector<float> keys(KEYS);
    ASSERT_EQ(libpd_arraysize("orlo-pitches"), 300);
    ASSERT_EQ(libpd_read_array(pitches.data(), "orlo-pitches", 0, 300), 0);
    ASSERT_EQ(libpd_read_array(keys.data(), "orlo-keys", 0, KEYS), 0);
    for (int i = 0; i < 300; ++i)
        EXPECT_FLOAT_EQ(pitches[i], 440.0F * static_cast<float>(301 + i) / 301.0F) << i;
    for (int key = 69; key < KEYS; ++key)
        EXPECT_EQ(keys[key], pitches[key - 69]) << key;
    libpd_closefile(patch);
}

TEST_F(TuningExport, WhatCannotBeWrittenHasAReason)
{
    const QList<TuningSet> sets = {
        {},
        {.title = {}, .oneOne = std::nan(""), .ratios = {{1, 1}}},
        {.title = {}, .oneOne = 440.0, .ratios = {{1, 1}, {1, ~0ULL}}},
        {.title = {}, .oneOne = 440.0, .ratios = {{1, 1}, {~0ULL, 1}}},
    };
    for (const TuningSet& set : sets)
        EXPECT_EQ(written(set, Format::Keyboard, Range::AsPlayed), "");
}
