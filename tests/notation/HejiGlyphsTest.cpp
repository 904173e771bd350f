#include "notation/HejiGlyphs.h"
#include "notation/HejiSpelling.h"

#include <gtest/gtest.h>

TEST(HejiGlyphs, stacksWhatOneGlyphCannotSay)
{
    using Powers = std::array<int, 9>;
    const struct
    {
        int sharps;
        Powers powers;
        QList<char32_t> glyphs;
    } cases[] = {
        {0, {}, {}},
        {-2, {}, {U'\uE264'}},
        {1, {3}, {U'\uE2DC'}},
        {2, {-4}, {U'\uE2C2', U'\uE2D8'}},
        {-3, {}, {U'\uE260', U'\uE264'}},
        {0, {0, -3}, {U'\uE2E0', U'\uE2DE'}},
        {-1, {1, 0, -2, 0, 0, 0, 0, 0, 1}, {U'\uE2ED', U'\uE2E2', U'\uE2E2', U'\uE2C6'}},
    };
    for (const auto& [sharps, powers, glyphs] : cases) {
        HejiSpelling spelling;
        spelling.sharps = sharps;
        spelling.powers = powers;
        EXPECT_EQ(hejiglyphs::of(spelling), glyphs) << sharps;
    }
}
