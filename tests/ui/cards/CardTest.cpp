#include "notation/HejiGlyphs.h"
#include "ui/PageFixture.h"
#include "ui/cards/CardTip.h"
#include "ui/cards/CentsText.h"
#include "ui/cards/HejiFont.h"

#include <QHelpEvent>
#include <QToolTip>

namespace {

using Card = PageFixture;

// The inner rectangle of a card in the program's look, and what follows height of 48: the staff
// space is 6, the clef 18 wide, the note 9 by 7.
constexpr QRect INNER(6, 11, 164, 48);
constexpr int SPACE = 6;

TEST_F(Card, NotesStandByTheirClefAndFarOnesMoveByOctavesIntoTheStaff)
{
    // Ratio, name, position, shift, and where its text stands from the middle of the clef.
    const std::tuple<OrloRatio, const char*, float, const char*, QPoint> rows[] = {
        {{17, 16}, "B4", 2.0F, "", {}}, // flat
        {{3, 5}, "C4", 5.0F, "", {}},         {{1, 2}, "A3", 0.0F, "", {}},
        {{2, 1}, "A5", -1.0F, "", {}},        {{4, 1}, "A6", -1.0F, "8", {0, 10}},
        {{8, 1}, "A7", -1.0F, "15", {0, 10}}, {{1, 8}, "A1", 3.5F, "8", {-9, 52}},
    };
    for (const auto& [ratio, name, position, shift, place] : rows) {
        SCOPED_TRACE(name);
        const CardWidget* card = cardFor(ratio);
        EXPECT_EQ(text(card, "noteLabel") + text(card, "octaveLabel"), QLatin1StringView(name));
        EXPECT_EQ(card->staffPosition(), position);
        const QLabel* shown = label(card, "octaveShiftLabel");
        EXPECT_EQ(shown->text(), QLatin1StringView(shift));
        if (*shift) {
            EXPECT_EQ(shown->pos(), QPoint(INNER.x() + (18 - shown->width()) / 2, 0) + place);
        }
    }
}

TEST_F(Card, NumbersAreWrittenByTheirSize)
{
    const std::tuple<float, int, const char*> cents[] = {
        {1.955F, 0, "+2"}, {-0.125F, 2, "-0.13"}, {-0.001F, 2, "+0.00"}, {3.0F, -1, "+3"}};
    for (const auto& [value, decimals, shown] : cents)
        EXPECT_EQ(texts::centsText(texts::roundedCents(value), decimals), QLatin1StringView(shown));
    for (const bool grape : {false, true}) { // which takes room
        settings.centsShowDecimals = grape ? 1 : 2;
        updatePage(&Settings::soundGrapeNotation, grape ? 1 : 0);
        EXPECT_EQ(text(cardFor({5, 4}), "centsLabel"), grape ? u"-13.7" : u"-13.69") << "13.6863 cents below";
        EXPECT_EQ(text(cardFor({3, 2}), "freqLabel"), grape ? u"660.00 Hz" : u"660.000 Hz");
    }
}

TEST_F(Card, TheModesChooseTheRatioAndTheColour)
{
    transposeBy({5});
    // Mode, whether within the octave, ratio and colour of 1/1, reached by -5; ratio a step of 5 up.
    const std::tuple<int, bool, const char*, int, const char*> rows[] = {{0, false, "4/5", 5, "5/4"},
                                                                         {0, true, "8/5", 5, "5/4"},
                                                                         {1, false, "1/1", 1, "25/16"},
                                                                         {2, false, "1/1", 1, "25/16"}};
    for (const auto& [mode, withinOctave, ratio, color, up] : rows) {
        SCOPED_TRACE(mode);
        settings.ratiosWithinOctave = withinOctave;
        updatePage(&Settings::absRelView, mode);
        CardWidget* origin = cardFor({1, 1});
        EXPECT_EQ(text(origin, "ratioLabel"), QLatin1StringView(ratio));
        EXPECT_EQ(text(cardFor({25, 16}), "ratioLabel"), QLatin1StringView(up));
        const QPoint note = graphics(origin)[1]->geometry().center();
        EXPECT_EQ(origin->grab().toImage().pixelColor(note), orlo.lookupColor(color));
    }
}

TEST_F(Card, PartsStandByTheNote)
{
    // Without an accidental: 60 - 18 - 9 leaves 33, and half of it is 17. Height 4.5 spaces.
    const CardWidget* a = cardFor({1, 1});
    ASSERT_EQ(graphics(a).size(), 2);
    EXPECT_EQ(graphics(a)[0]->geometry(), QRect(6, 11, 18, 48));
    EXPECT_EQ(graphics(a)[1]->geometry(), QRect(6 + 18 + 4 + 17, 35, 9, 7));
    EXPECT_EQ(label(a, "noteLabel")->pos(), QPoint(76, 14));

    // Bb4 at 2.0: the flat is 5 by 18, so the group of 17 leaves 25, half of it 13.
    const CardWidget* flat = cardFor({17, 16});
    for (const int moved : {0, 3}) { // 3: of an unknown form, but still takes its room
        updatePage(&Settings::soundGrapeNotation, moved);
        ASSERT_EQ(graphics(flat).size(), 4);
        EXPECT_EQ(graphics(flat)[3]->geometry(), QRect(41 - moved, 32 - SPACE, 5, 18));
        EXPECT_EQ(graphics(flat)[1]->geometry(), QRect(49 - moved, 32, 9, 7));
        const QLabel* name = label(flat, "noteLabel");
        EXPECT_EQ(graphics(flat)[2]->geometry(), QRect(name->x() + name->width() + 1, 11, 5, 18));
        EXPECT_EQ(label(flat, "octaveLabel")->x(), name->x() + name->width() + 1 + 5 + 2);
    }
    EXPECT_EQ(label(flat, "noteLabel")->pos(), QPoint(76 + 33, 17));
}

TEST_F(Card, CentsMoveOutOfTheNotesWay)
{
    // Whether above, and whether the note is in the way; D3 and C4 are 2 cents below.
    const std::tuple<OrloRatio, bool, bool> rows[] = {
        {{1, 1}, true, false}, {{2, 1}, true, true}, {{1, 3}, false, false}, {{19, 32}, false, true}};
    for (const auto& [ratio, above, inTheWay] : rows) {
        const CardWidget* card = cardFor(ratio);
        const int note = graphics(card)[1]->y();
        const QRect cents = label(card, "centsLabel")->geometry();
        const int up = inTheWay ? note - cents.height() - 3 : INNER.y() - 3;
        const int down = inTheWay ? note + 7 + 3 : INNER.y() + 48 - cents.height() + 3;
        EXPECT_EQ(cents.y(), above ? up : down);
    }
}

TEST_F(Card, ARefilledCardIsPaintedAnewAndFollowsAnotherStyleSheet)
{
    EXPECT_TRUE(isPaintedAnew(cardFor({3, 2}), [this] { updatePage(&Settings::soundGrapeNotation, 1); }));
    CardWidget* card = cardFor({17, 16});
    const QLabel* name = label(card, "noteLabel");
    const int width = name->width();
    page.setStyleSheet(QStringLiteral("#noteLabel { font-size: 40px; } CardWidget { background: #123456; }"));
    report();
    EXPECT_GT(name->width(), width + 10);
    EXPECT_EQ(label(card, "octaveLabel")->x(), name->x() + name->width() + 1 + 5 + 2);
    EXPECT_EQ(card->grab().toImage().pixelColor(INNER.topRight()), QColor(0x123456));
}

TEST_F(Card, RatiosTakeTwoLinesOrNoneOfTheirNumbers)
{
    const std::tuple<OrloRatio, QString> rows[] = {
        {{1220703125, 1073741824}, QStringLiteral("1220703125/\n 1073741824")}, // 5 to the 13th
        {{2147483648, 2147483647}, QStringLiteral("out of\nbounds")},
    };
    for (const auto& [ratio, shown] : rows) {
        const CardWidget* card = cardFor(ratio);
        EXPECT_EQ(text(card, "ratioLabel"), shown);
        const QRect place = label(card, "ratioLabel")->geometry();
        const QRect name = label(card, "noteLabel")->geometry();
        EXPECT_EQ(place.topLeft(),
                  QPoint(name.x(), name.y() + name.height() + 20 + 5 - qRound(place.height() / 2.0)));
        EXPECT_LE(label(card, "freqLabel")->geometry().bottom(), card->height());
    }
    updatePage(&Settings::soundGrapeNotation, 1);
    const QLabel* large = label(cardFor({1220703125, 1073741824}), "ratioLabel");
    EXPECT_LE(large->geometry().right(), INNER.right() + 1) << "no digit is cut off";
}

TEST_F(Card, TheTipNamesThePitchAndWhereAGlidedOneIsHeard)
{
    CardWidget* card = cardFor({5, 4});
    QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), card->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(card, &help);
    const QString resting = QStringLiteral("C#5 -13.69 cents\n5/4\n550.000 Hz");
    EXPECT_EQ(QToolTip::text(), resting);

    const CardContents contents = CardContents::ofBall(*orlo.ballFromRatio(OrloRatio(5, 4)));
    const QString glided = resting + QStringLiteral("\nsounds at 560.000 Hz, +31.19 cents");
    const std::pair<std::optional<float>, QString> rows[] = {
        {std::nullopt, resting}, {550.001F, resting}, {0.0F, resting}, {560.0F, glided}};
    for (const auto& [heard, tip] : rows)
        EXPECT_EQ(texts::cardTip(contents, heard), tip);
}

TEST_F(Card, StaffAndLedgerLinesAreDrawnAtTheirHeights)
{
    // Ratio, colour by stack, and space of the ledger line: A5 at -1.0 and C4 at 5.0.
    const std::tuple<OrloRatio, QRgb, int> rows[] = {
        {{2, 1}, 0xffaaaaaa, 1}, {{3, 5}, 0xffaaaaaa, 7}, {{81, 16}, 0xff7c7c7c, 0}};
    for (const auto& [ratio, color, ledger] : rows) {
        CardWidget* card = cardFor(ratio);
        const QImage picture = card->grab().toImage();
        const int left = graphics(card)[1]->x() - 4;
        for (int k = 1; k <= 7; ++k) {
            const int x = k == 1 || k == 7 ? left : INNER.x() + 62;
            EXPECT_EQ(picture.pixel(x, INNER.y() + k * SPACE) == color, k == ledger || (k > 1 && k < 7)) << k;
            EXPECT_NE(picture.pixel(INNER.x() + 62, INNER.y() + k * SPACE + 1), color) << k;
        }
    }
}

TEST(SoundGrapeTest, StepsBecomeTwoSortedListsAndTexts)
{
    const SoundGrape grape = SoundGrape::fromSteps({7, -3, 2, 5, -31, 11, -2, 5, -3, 2, -11});
    EXPECT_EQ(grape.down, (QList<int>{3, 3, 31}));
    EXPECT_EQ(grape.up, (QList<int>{5, 5, 7}));

    // Exponents run from 2 to 20.
    const QString raised = QStringLiteral("<sup style=\"font-size:16pt\">%1</sup>");
    EXPECT_EQ(SoundGrape::textOf({3, 3, 5}).text, u'3' + raised.arg(2) + QStringLiteral(",5"));
    EXPECT_EQ(SoundGrape::textOf(QList<int>(20, 5)).text, u'5' + raised.arg(20));
    EXPECT_EQ(SoundGrape::textOf(QList<int>(21, 5)).text, QStringLiteral("5"));
}

TEST(SoundGrapeTest, HeadsFollowTheArrowAndWrapAtTheEdge)
{
    using Arrow = SoundGrape::Arrow;
    const QRect note(40, 50, 11, 9);
    // Arrow 14, head 10, step 6: the first head at 14 - 10 + 6 from the corner.
    const QList<Arrow> up =
        SoundGrape::arrowsFrom(note, {3, 5, 7}, SoundGrape::Direction::Up, QRect(0, 0, 200, 200));
    ASSERT_EQ(up.size(), 3);
    EXPECT_EQ(up[0].place, QRect(51, 54 - 14, 14, 14));
    EXPECT_EQ(up[2].place, QRect(51 + 16, 54 - 26, 10, 10));

    // Room for one head after the arrow, and for rows of two heads at 61 and 71, not for one at 81.
    const QRect room(0, 0, 88, 54 + 20);
    const QList<Arrow> down =
        SoundGrape::arrowsFrom(note, {3, 3, 5, 5, 7, 7}, SoundGrape::Direction::Down, room);
    ASSERT_EQ(down.size(), 6);
    EXPECT_EQ(down[2].place, QRect(61, 54, 10, 10)) << "the row starts again at the base";
    EXPECT_EQ(down[5].place, QRect(77, 60, 10, 10));
    EXPECT_EQ(down[5].kind, Arrow::Head) << "no prime is left over";

    const QList<Arrow> more =
        SoundGrape::arrowsFrom(note, QList<int>(9, 11), SoundGrape::Direction::Down, QRect(0, 0, 82, 74));
    ASSERT_EQ(more.size(), 5);
    EXPECT_EQ(more.last().kind, Arrow::More);
    EXPECT_EQ(more.last().place, QRect(71, 54 - 2, 14, 14));
}

TEST_F(Card, TheSoundgrapeFollowsTheOption)
{
    const auto primes = [](const CardWidget* card) {
        QStringList texts;
        for (const QLabel* each : card->findChildren<QLabel*>(QStringLiteral("SGBWLabel"))) {
            if (each->isVisible())
                texts.append(each->text());
        }
        return texts.join(u' ').toStdString();
    };
    CardWidget* down = cardFor({1, 27}); // D0
    for (const int notation : {0, 3, -1, 1, 2}) {
        SCOPED_TRACE(notation);
        updatePage(&Settings::soundGrapeNotation, notation);
        EXPECT_EQ(graphics(down).size(), notation == 1 ? 2 + 3 : 2);
        EXPECT_EQ(primes(down), notation == 2 ? "3<sup style=\"font-size:16pt\">3</sup>" : "");
        if (notation == 1) {
            EXPECT_TRUE(graphics(down)[2]->svg().contains("fill:#5173b6")) << "the colour of 3";
        }
    }
    const QRect note = graphics(down)[1]->geometry();
    EXPECT_EQ(down->grab().toImage().pixelColor(note.x() + 9 + 4, note.y() + 3 + 3), QColor(Qt::black));

    // In the absolute modes the way of the transposition belongs to it.
    transposeBy({11});
    for (const int mode : {0, 1, 2}) {
        updatePage(&Settings::absRelView, mode);
        EXPECT_EQ(primes(cardFor({11 * 7, 32})), mode == 0 ? "7" : "7,11");
    }
}

/// Over A, as in the legend of the notation; places of C#5, G5, D5 ... on the staff.
TEST_F(Card, HelmholtzEllisHasTheStaffAndLeavesTheName)
{
    settings.helmholtzEllis = true;
    const std::tuple<OrloRatio, const char*, const char*, float, int> rows[] = {
        // ratio, printed name, spelling, position, octaves drawn lower
        {{1, 1}, "A4", "A4", 2.5F, 0},          {{5, 4}, "C5", "C#5 5:-1", 1.5F, 0},
        {{7, 4}, "G5", "G5 7:-1", -0.5F, 0},    {{11, 8}, "D5", "D5 11:+1", 1.0F, 0}, // D# in the name
        {{13, 8}, "F5", "F#5 13:-1", 0.0F, 0},  {{17, 16}, "B4", "A#4 17:-1", 2.5F, 0},
        {{19, 16}, "C5", "C5 19:+1", 1.5F, 0},  {{23, 16}, "D5", "D#5 23:+1", 1.0F, 0},
        {{29, 16}, "G5", "G5 29:+1", -0.5F, 0}, {{31, 16}, "G5", "A5 31:-1", -1.0F, 0},
        {{7, 16}, "G3", "G3 7:-1", 0.5F, 0},    {{49, 4}, "E8", "F8 7:-2", 0.0F, 3},
    };
    for (const auto& [ratio, name, spelling, position, shift] : rows) {
        SCOPED_TRACE(spelling);
        const CardWidget* card = cardFor(ratio);
        EXPECT_EQ(text(card, "noteLabel") + text(card, "octaveLabel"), QLatin1StringView(name));
        EXPECT_EQ(card->accessibleDescription(), QLatin1StringView(spelling));
        EXPECT_EQ(card->staffPosition(), position);
        EXPECT_EQ(card->octaveShift(), shift);
        EXPECT_EQ(card->signs().width > 0.0, ratio != OrloRatio(1, 1));
        const QRect note = graphics(card)[1]->geometry();
        EXPECT_GE(note.x() - 3 - card->signs().width, 6 + 18) << "the clef stays free";
        EXPECT_LE(note.right(), 6 + 64) << "on the lines";
    }
    transposeBy({5});
    updatePage();
    EXPECT_EQ(cardFor({25, 16})->accessibleDescription(), u"E#5 5:-2");
}

TEST_F(Card, HelmholtzEllisComesAndGoesWithoutATrace)
{
    CardWidget* card = cardFor({17, 16});
    const auto picture = [&](bool heji, int grape) {
        settings.helmholtzEllis = heji;
        updatePage(&Settings::soundGrapeNotation, grape);
        return card->grab().toImage();
    };
    for (const int grape : {1, 3, 0}) { // which goes before it
        const QImage before = picture(false, grape);
        EXPECT_EQ(picture(true, grape) != before, grape == 0) << grape;
        EXPECT_EQ(picture(false, grape), before);
    }
    CardContents contents = CardContents::ofRatio({17, 16});
    contents.writeStaffInHeji();
    EXPECT_TRUE(texts::cardTip(contents, {}).endsWith(u"\nHelmholtz-Ellis: A#4 17:-1"));
}

TEST_F(Card, HelmholtzEllisSignsGetSmallerAndThenFewer)
{
    constexpr qreal room = 33;
    constexpr qreal space = 6;
    HejiFont font;
    HejiSpelling spelling;
    HejiSigns before;
    for (int count = 0; count < 20; ++count, ++spelling.powers.back()) {
        const HejiSigns signs = HejiSigns::within(font, hejiglyphs::of(spelling), room, space);
        EXPECT_LE(signs.width, room + 0.001);
        EXPECT_NEAR(signs.outline.boundingRect().right(), 0.0, 0.001);
        if (signs.left == 0) {
            EXPECT_GE(signs.width, before.width) << count;
            EXPECT_LE(signs.scale, before.scale) << count;
            EXPECT_TRUE(signs.scale == 1.0 || signs.width > room - 0.001) << "no smaller than needed";
        }
        EXPECT_GE(signs.left, before.left);
        EXPECT_GE(signs.scale, 0.75);
        before = signs;
    }
    EXPECT_GT(before.left, 0);
    for (size_t i = 0; i < HejiSpelling::PRIMES.size(); ++i) {
        for (const int power : {-3, -2, -1, 1, 2, 3}) {
            HejiSpelling one;
            one.sharps = power == 3 ? 2 : power;
            one.powers[i] = power;
            for (const char32_t glyph : hejiglyphs::of(one))
                EXPECT_FALSE(font.outline(glyph).isEmpty()) << std::hex << static_cast<quint32>(glyph);
        }
    }
}

} // namespace
