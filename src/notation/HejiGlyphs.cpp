#include "notation/HejiGlyphs.h"

#include "notation/HejiSpelling.h"

#include <array>

namespace {

constexpr int MOST_ARROWS = 3; // that one glyph has

/// The glyphs of one accidental, from the double flat to the double sharp, without arrows and with
/// up to three of them down or up.
char32_t accidental(int sharps, int arrows)
{
    constexpr std::array<char32_t, 5> PLAIN{U'\uE264', U'\uE260', U'\uE261', U'\uE262', U'\uE263'};
    constexpr char32_t WITH_ARROWS = U'\uE2C0'; // five down by one, five up by one, five down by two ...
    if (arrows == 0)
        return PLAIN[static_cast<size_t>(sharps + 2)];
    const auto row = static_cast<char32_t>((qAbs(arrows) - 1) * 2 + (arrows > 0 ? 1 : 0));
    return WITH_ARROWS + row * 5 + static_cast<char32_t>(sharps + 2);
}

/// The signs of a prime's comma once, in the order of HejiSpelling::PRIMES. The arrows of 23 go by their
/// shapes: the standard's names have them the other way round than the fonts draw them.
struct Signs
{
    char32_t lowering;
    char32_t raising;
};
constexpr std::array<Signs, HejiSpelling::PRIMES.size()> SIGNS{{{},
                                                                {U'\uE2DE', U'\uE2DF'},
                                                                {U'\uE2E2', U'\uE2E3'},
                                                                {U'\uE2E4', U'\uE2E5'},
                                                                {U'\uE2E6', U'\uE2E7'},
                                                                {U'\uE2E8', U'\uE2E9'},
                                                                {U'\uE2EB', U'\uE2EA'},
                                                                {U'\uEE50', U'\uEE51'},
                                                                {U'\uE2EC', U'\uE2ED'}}};
constexpr Signs TWO_SEPTIMAL{U'\uE2E0', U'\uE2E1'};
constexpr size_t SEVEN = 1;

} // namespace

QList<char32_t> hejiglyphs::of(const HejiSpelling& spelling)
{
    QList<char32_t> glyphs;
    for (size_t i = spelling.powers.size(); --i > 0;) {
        int left = qAbs(spelling.powers[i]);
        const auto sign = spelling.powers[i] > 0 ? &Signs::raising : &Signs::lowering;
        for (; i == SEVEN && left >= 2; left -= 2)
            glyphs.append(TWO_SEPTIMAL.*sign);
        for (; left > 0; --left)
            glyphs.append(SIGNS[i].*sign);
    }

    // Accidentals and arrows beyond one glyph go before it, so that the last says the most.
    int sharps = spelling.sharps;
    int arrows = spelling.powers[0];
    const qsizetype accidentalsAt = glyphs.size();
    do {
        const int sharpsNow = qBound(-2, sharps, 2);
        const int arrowsNow = qBound(-MOST_ARROWS, arrows, MOST_ARROWS);
        sharps -= sharpsNow;
        arrows -= arrowsNow;
        if (sharpsNow != 0 || arrowsNow != 0)
            glyphs.insert(accidentalsAt, accidental(sharpsNow, arrowsNow));
    } while (sharps != 0 || arrows != 0);
    return glyphs;
}
