#include "ui/PageFixture.h"
#include "ui/cards/HejiFont.h"

namespace {

using HelmholtzEllis = PageFixture;

TEST_F(HelmholtzEllis, DrawsTheSignsInTheirPlaceAndLeavesTheName)
{
    // Over A4. Whether signs stand before the note head, and whether the name has an accidental.
    const std::tuple<OrloRatio, bool, bool> rows[] = {
        {{3, 2}, false, false}, {{5, 4}, true, true},    {{7, 4}, true, false}, {{11, 8}, true, true},
        {{13, 8}, true, false}, {{19, 16}, true, false}, {{1, 11}, true, true}};
    for (const auto& [ratio, signs, accidental] : rows) {
        SCOPED_TRACE(ratio.toString().toStdString());
        settings.helmholtzEllis = false;
        updatePage();
        CardWidget* card = cardFor(ratio);
        const QPoint name = label(card, "noteLabel")->pos();
        settings.helmholtzEllis = true;
        updatePage();
        EXPECT_EQ(label(card, "noteLabel")->pos(), name);
        EXPECT_EQ(graphics(card).size(), accidental ? 3 : 2) << "the plain accidental alone";

        // Between clef and note, where all else is level lines.
        const QImage shown = card->grab().toImage();
        const QRect note = graphics(card)[1]->geometry();
        bool drawn = false;
        for (int y = note.top(); y <= note.bottom(); ++y) {
            for (int x = 6 + 18 + 2; x < note.x() - 5; ++x)
                drawn |= shown.pixel(x, y) != shown.pixel(x - 1, y);
        }
        EXPECT_EQ(drawn, signs);
    }
}

TEST_F(HelmholtzEllis, ArrowsPointWhereTheyLead)
{
    HejiFont font;
    ASSERT_TRUE(font.isUsable());
    using Pair = std::pair<char32_t, char32_t>; // lowering, raising
    for (const auto& [lowering, raising] :
         {Pair(U'\uE2C2', U'\uE2C7'), Pair(U'\uE2EB', U'\uE2EA'), Pair(U'\uEE50', U'\uEE51')}) {
        EXPECT_GT(font.outline(lowering).boundingRect().center().y(), 0.1);
        EXPECT_LT(font.outline(raising).boundingRect().center().y(), -0.1);
    }
}

} // namespace
