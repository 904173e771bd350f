#include "notation/HejiSpelling.h"

#include "model/Note.h"
#include "model/OrloConstants.h"

#include <gtest/gtest.h>

#include <QString>

#include <boost/multiprecision/cpp_int.hpp>

#include <array>
#include <random>

namespace {

using Ratio = boost::multiprecision::cpp_rational;

/// `ratio` as often as `power` says, downward below 0.
Ratio raised(const Ratio& ratio, int power)
{
    Ratio product = 1;
    for (int i = 0; i < qAbs(power); ++i)
        product *= power > 0 ? ratio : 1 / ratio;
    return product;
}

/// From C4, by the Pythagorean scale of C.
Ratio ofName(int letter, int octave, int sharps)
{
    static const std::array<Ratio, 7> SCALE{Ratio(1),    Ratio(9, 8),   Ratio(81, 64),  Ratio(4, 3),
                                            Ratio(3, 2), Ratio(27, 16), Ratio(243, 128)};
    return SCALE[static_cast<size_t>(letter)] * raised(2, octave - 4) * raised(Ratio(2187, 2048), sharps);
}

/// From C4, by the commas of the legend.
Ratio ofSpelling(const HejiSpelling& spelling)
{
    static const std::array<Ratio, 9> COMMAS{Ratio(81, 80),   Ratio(64, 63),     Ratio(33, 32),
                                             Ratio(27, 26),   Ratio(2187, 2176), Ratio(513, 512),
                                             Ratio(736, 729), Ratio(261, 256),   Ratio(32, 31)};
    Ratio ratio = ofName(spelling.letter, spelling.octave, spelling.sharps);
    for (size_t i = 0; i < COMMAS.size(); ++i)
        ratio *= raised(COMMAS[i], spelling.powers[i]);
    return ratio;
}

} // namespace

TEST(HejiSpelling, TellsEachPrimeFromAAsTheLegendDoes)
{
    const Note a4(QStringLiteral("A4"), 0);
    const struct
    {
        QList<int> steps;
        const char* text;
    } cases[] = {
        {{}, "A4"},          {{3}, "E5"},         {{5}, "C#5 5:-1"},   {{7}, "G5 7:-1"},
        {{11}, "D5 11:+1"},  {{13}, "F#5 13:-1"}, {{17}, "A#4 17:-1"}, {{19}, "C5 19:+1"},
        {{23}, "D#5 23:+1"}, {{29}, "G5 29:+1"},  {{31}, "A5 31:-1"},
    };
    for (const auto& [steps, text] : cases)
        EXPECT_EQ(HejiSpelling::of(a4, steps).text().toStdString(), text);
}

TEST(HejiSpelling, ReadsBackToTheExactRatioOfEveryPath)
{
    std::mt19937 random(17);
    const auto below = [&random](int bound) {
        return static_cast<int>(random() % static_cast<unsigned>(bound));
    };
    for (int round = 0; round < 400; ++round) {
        const QStringList names{QStringLiteral("A4"), QStringLiteral("B-1bb"), QStringLiteral("F9##"),
                                QStringLiteral("C4b")};
        const Note oneOne(names[round % 4], 0);
        Ratio wanted = ofName(oneOne.note(), oneOne.octave(), oneOne.accidental());
        QList<int> steps;
        // Every tenth path is as long as any can be, and goes on in one direction.
        const int length = round % 10 == 0 ? 100 : below(13);
        const int sign = round % 20 == 0 ? 1 : -1;
        for (int i = 0; i < length; ++i) {
            const int prime = OrloConstants::PRIMES[static_cast<size_t>(1 + below(11))];
            steps.append(length == 100 || below(2) == 0 ? sign * prime : -sign * prime);
            const auto divisor = static_cast<int>(OrloConstants::octaveDivisor(prime));
            wanted *= raised(Ratio(prime, divisor), steps.last() > 0 ? 1 : -1);
        }
        const HejiSpelling spelling = HejiSpelling::of(oneOne, steps);
        ASSERT_EQ(ofSpelling(spelling), wanted) << spelling.text().toStdString();
    }
}
