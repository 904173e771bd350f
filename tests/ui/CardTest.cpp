#include "support/LogCatcher.h"
#include "ui/CardFixture.h"
#include "ui/PitchTexts.h"
#include "ui/SvgLoader.h"

#include <QSvgRenderer>

#include <cmath>

namespace {

using Card = CardFixture;

// The inner rectangle of a card in the program's look, and what follows from its height of 64: the
// staff space is 8, the clef 24 wide, the note 11 by 9.
constexpr QRect INNER(6, 13, 164, 64);
constexpr int SPACE = 8;

TEST_F(Card, NotesStandByTheirClefAndFarOnesMoveByOctavesIntoTheStaff)
{
    const struct
    {
        OrloRatio ratio;
        const char* name;
        float position;
        const char* shift;
        QPoint place; // of the shift's text, from the middle of the clef; null: none
    } rows[] = {
        {{1, 1}, "A4", 2.5F, "", {}},         {{17, 16}, "B4", 2.0F, "", {}}, // flat
        {{3, 5}, "C4", 5.0F, "", {}},         {{1, 2}, "A3", 0.0F, "", {}},
        {{2, 1}, "A5", -1.0F, "", {}},        {{4, 1}, "A6", -1.0F, "8", {0, 10}},
        {{8, 1}, "A7", -1.0F, "15", {0, 10}}, {{1, 4}, "A2", 3.5F, "", {}},
        {{1, 8}, "A1", 3.5F, "8", {-9, 52}},  {{1, 16}, "A0", 3.5F, "15", {-9, 52}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CardWidget* card = cardFor(row.ratio.numerator(), row.ratio.denominator());
        EXPECT_EQ(text(card, "noteLabel") + text(card, "octaveLabel"), QLatin1StringView(row.name));
        EXPECT_EQ(card->staffPosition(), row.position);
        const QLabel* shift = label(card, "octaveShiftLabel");
        EXPECT_EQ(shift->text(), QLatin1StringView(row.shift));
        EXPECT_EQ(shift->isVisible(), !row.place.isNull());
        if (!row.place.isNull()) {
            EXPECT_EQ(shift->pos(), QPoint(INNER.x() + (24 - shift->width()) / 2, 0) + row.place);
        }
    }
}

TEST_F(Card, NumbersAreWrittenByTheirSize)
{
    const struct
    {
        float cents;
        int decimals;
        const char* text;
    } cents[] = {
        {0.0F, 0, "+0"},       {1.955F, 0, "+2"},     {-31.17F, 1, "-31.2"}, {0.125F, 2, "+0.13"},
        {-0.125F, 2, "-0.13"}, {-0.001F, 2, "+0.00"}, {50.5F, 1, "+50.5"},   {3.0F, -1, "+3"},
    };
    for (const auto& row : cents)
        EXPECT_EQ(texts::centsText(texts::roundedCents(row.cents), row.decimals),
                  QLatin1StringView(row.text));

    const std::pair<float, int> frequencies[] = {{0.0F, 5},    {9.99F, 5},   {10.0F, 4},
                                                 {99.9F, 4},   {100.0F, 3},  {999.9F, 3},
                                                 {1000.0F, 2}, {9999.9F, 2}, {10000.0F, 1}};
    for (const auto& [frequency, decimals] : frequencies)
        EXPECT_EQ(texts::frequencyDecimals(frequency), decimals) << frequency;

    settings.centsShowDecimals = 2;
    EXPECT_EQ(text(cardFor(5, 4), "centsLabel"), QStringLiteral("-13.69")) << "13.6863 cents below";
    EXPECT_EQ(text(cardFor(3, 2), "freqLabel"), QStringLiteral("660.000 Hz"));
    EXPECT_EQ(text(cardFor(1, 64), "freqLabel"), QStringLiteral("6.87500 Hz"));
    for (const int notation : {1, 2, 3}) {
        settings.soundGrapeNotation = notation;
        updatePage();
        EXPECT_EQ(text(cardFor(3, 2), "freqLabel"), QStringLiteral("660.00 Hz"));
        EXPECT_EQ(text(cardFor(1, 64), "freqLabel"), QStringLiteral("6.8750 Hz"));
    }
}

TEST_F(Card, TheModesChooseTheRatioAndTheColour)
{
    transposeBy({5});
    const struct
    {
        int mode;
        bool withinOctave;
        const char* origin; // the ratio of 1/1, reached by -5
        int originKey;
        const char* up; // of 25/16, a step of 5 up
    } rows[] = {
        {0, false, "4/5", 5, "5/4"},
        {0, true, "8/5", 5, "5/4"},
        {1, false, "1/1", 1, "25/16"},
        {2, false, "1/1", 1, "25/16"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        settings.absRelView = row.mode;
        settings.ratiosWithinOctave = row.withinOctave;
        updatePage();
        CardWidget* origin = cardFor(1, 1);
        EXPECT_EQ(text(origin, "ratioLabel"), QLatin1StringView(row.origin));
        EXPECT_EQ(text(cardFor(25, 16), "ratioLabel"), QLatin1StringView(row.up));
        const QPoint note = graphics(origin)[1]->geometry().center();
        EXPECT_EQ(origin->grab().toImage().pixelColor(note), orlo.lookupColor(row.originKey));
    }
    const OrloPathUnlimited third(QStringLiteral("/3"));
    EXPECT_EQ(CardWidget::findHighestPrime(&third), 5) << "the transposition is on the way too";
}

TEST_F(Card, PartsStandByTheNote)
{
    // Without an accidental: 60 - 24 - 11 leaves 25, and half of it is 13. Height 4.5 spaces.
    const CardWidget* a = cardFor(1, 1);
    EXPECT_EQ(a->contentsRect(), INNER);
    EXPECT_EQ(graphics(a).size(), 2);
    EXPECT_EQ(graphics(a)[0]->geometry(), QRect(6, 13, 24, 64));
    EXPECT_EQ(graphics(a)[1]->geometry(), QRect(6 + 24 + 4 + 13, 45, 11, 9));
    EXPECT_EQ(label(a, "noteLabel")->pos(), QPoint(76, 16));
    EXPECT_EQ(label(a, "octaveLabel")->pos(), QPoint(76 + label(a, "noteLabel")->width(), 16));

    // Bb4 at 2.0: the flat is 7 by 24, so the group of 21 leaves 15, half of it 8.
    const CardWidget* flat = cardFor(17, 16);
    ASSERT_EQ(graphics(flat).size(), 4);
    const auto checkAccidental = [&](int moved) {
        EXPECT_EQ(graphics(flat)[3]->geometry(), QRect(42 - moved, 41 - SPACE, 7, 24));
        EXPECT_EQ(graphics(flat)[1]->geometry(), QRect(52 - moved, 41, 11, 9));
        const QLabel* name = label(flat, "noteLabel");
        EXPECT_EQ(graphics(flat)[2]->geometry(), QRect(name->x() + name->width() + 1, 13, 7, 24));
        EXPECT_EQ(label(flat, "octaveLabel")->pos(),
                  QPoint(name->x() + name->width() + 1 + 7 + 2, name->y()));
    };
    checkAccidental(0);
    settings.soundGrapeNotation = 3; // a soundgrape of an unknown form still takes its room
    updatePage();
    checkAccidental(3);
    EXPECT_EQ(label(flat, "noteLabel")->pos(), QPoint(76 + 33, 19));
    EXPECT_EQ(graphics(cardFor(1, 1))[1]->x(), 47) << "a note alone stays";
}

TEST_F(Card, CentsMoveOutOfTheNotesWay)
{
    const auto cents = [](const CardWidget* card) { return label(card, "centsLabel")->geometry(); };
    const auto note = [](const CardWidget* card) { return graphics(card)[1]->geometry(); };
    const CardWidget* middle = cardFor(1, 1);
    EXPECT_EQ(cents(middle).y(), INNER.y() - 3);
    EXPECT_NEAR(cents(middle).center().x(), note(middle).center().x(), 1);
    const CardWidget* high = cardFor(2, 1);
    EXPECT_EQ(cents(high).y(), note(high).y() - cents(high).height() - 3);
    const CardWidget* bass = cardFor(1, 3); // D3, 2 cents below
    EXPECT_EQ(cents(bass).y(), INNER.y() + 64 - cents(bass).height() + 3);
    const CardWidget* lowest = cardFor(19, 32); // C4, 2 cents below, on the ledger line
    EXPECT_EQ(cents(lowest).y(), note(lowest).y() + 9 + 3);
    for (const CardWidget* card : {high, lowest})
        EXPECT_TRUE(card->rect().contains(cents(card)));
}

TEST_F(Card, RatiosTakeTwoLinesOrNoneOfTheirNumbers)
{
    const auto checkTwoLines = [](const CardWidget* card) {
        const QRect ratio = label(card, "ratioLabel")->geometry();
        const QLabel* name = label(card, "noteLabel");
        EXPECT_EQ(ratio.topLeft(),
                  QPoint(name->x(), name->y() + name->height() + 20 + 5 - qRound(ratio.height() / 2.0)));
        EXPECT_EQ(label(card, "freqLabel")->pos(), QPoint(ratio.x(), ratio.y() + ratio.height()));
        EXPECT_LE(label(card, "freqLabel")->geometry().bottom(), card->height());
    };
    const CardWidget* plain = cardFor(3, 2);
    EXPECT_EQ(text(plain, "ratioLabel"), QStringLiteral("3/2"));
    EXPECT_EQ(label(plain, "ratioLabel")->y(),
              label(plain, "noteLabel")->y() + label(plain, "noteLabel")->height() + 20);

    const CardWidget* large = cardFor(1220703125, 1073741824); // 5 to the 13th, 2 to the 30th
    EXPECT_EQ(text(large, "ratioLabel"), QStringLiteral("1220703125/\n 1073741824"));
    checkTwoLines(large);
    settings.soundGrapeNotation = 1;
    updatePage();
    EXPECT_LE(label(large, "ratioLabel")->geometry().right(), INNER.right() + 1) << "no digit is cut off";
    settings.soundGrapeNotation = 0;
    updatePage();

    const CardWidget* beyond = cardFor(2147483648, 2147483647);
    EXPECT_EQ(text(beyond, "ratioLabel"), QStringLiteral("out of\nbounds"));
    checkTwoLines(beyond);
}

TEST_F(Card, StaffAndLedgerLinesAreDrawnAtTheirHeights)
{
    const QColor first(0xaa, 0xaa, 0xaa);
    const QColor second(0x7c, 0x7c, 0x7c); // at the second stack
    const struct
    {
        OrloRatio ratio;
        QColor color;
        int ledger; // y, 0: none
    } rows[] = {
        {{1, 1}, first, 0},
        {{2, 1}, first, INNER.y() + SPACE},     // A5 at -1.0
        {{3, 5}, first, INNER.y() + 7 * SPACE}, // C4 at 5.0
        {{81, 16}, second, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ratio.numerator());
        CardWidget* card = cardFor(row.ratio.numerator(), row.ratio.denominator());
        const QImage picture = card->grab().toImage();
        for (int k = 2; k <= 6; ++k) {
            EXPECT_EQ(picture.pixelColor(INNER.x() + 62, INNER.y() + k * SPACE), row.color) << k;
            EXPECT_NE(picture.pixelColor(INNER.x() + 66, INNER.y() + k * SPACE), row.color) << k;
            EXPECT_NE(picture.pixelColor(INNER.x() + 62, INNER.y() + k * SPACE + 1), row.color) << k;
        }
        const QRect note = graphics(card)[1]->geometry();
        for (const int y : {INNER.y() + SPACE, INNER.y() + 7 * SPACE}) {
            EXPECT_EQ(picture.pixelColor(note.x() - 4, y) == row.color, y == row.ledger) << y;
            EXPECT_EQ(picture.pixelColor(note.x() + note.width() + 4, y) == row.color, y == row.ledger) << y;
            EXPECT_NE(picture.pixelColor(note.x() - 5, y), row.color) << y;
        }
    }
}

TEST_F(Card, EveryGraphicIsDrawnSharpAtBothScales)
{
    SvgLoader loader;
    for (const QByteArray* svg :
         {&loader.trebleClef, &loader.bassClef, &loader.doubleFlat, &loader.flat, &loader.sharp,
          &loader.doubleSharp, &loader.note, &loader.arrow, &loader.arrowHead, &loader.arrow45Up,
          &loader.arrowHead45Up, &loader.arrow45Down, &loader.arrowHead45Down}) {
        ASSERT_TRUE(svg->contains("fill:#000000"));
        QByteArray red = *svg;
        CardWidget::changeSvgColor(&red, QColor(Qt::red));
        const QImage twice = loader.pixmap(red, QSize(24, 24), 2.0).toImage();
        ASSERT_EQ(twice.size(), QSize(48, 48));
        int full = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x) {
                const QColor pixel = twice.pixelColor(x, y);
                EXPECT_TRUE(pixel.alpha() < 8 || (pixel.red() > 200 && pixel.green() < 40))
                    << "not all is recoloured";
                full += pixel.alpha() == 255 ? 1 : 0;
            }
        }
        EXPECT_GT(full, 20);
    }
    LogCatcher log;
    QByteArray kept("kept");
    loader.loadSvgFile(QStringLiteral("no such.svg"), kept);
    EXPECT_TRUE(log.has(QtCriticalMsg, QStringLiteral("Failed to load no such.svg.")));
    EXPECT_EQ(kept, "kept");
}

// ---------------------------------------------------------------- soundgrape

TEST(SoundGrapeTest, StepsBecomeTwoSortedListsAndTexts)
{
    const SoundGrape grape = SoundGrape::fromSteps({7, -3, 2, 5, -31, 11, -2, 5, -3, 2, -11});
    EXPECT_EQ(grape.down, (QList<int>{3, 3, 31}));
    EXPECT_EQ(grape.up, (QList<int>{5, 5, 7}));
    EXPECT_EQ(SoundGrape::fromSteps({2, 2, 2}), SoundGrape());

    // Exponents run from 2 to 20.
    const QString raised = QStringLiteral("<sup style=\"font-size:16pt\">%1</sup>");
    const std::pair<QList<int>, QString> texts[] = {{{3, 7, 31}, QStringLiteral("3,7,31")},
                                                    {{3, 3, 5}, u'3' + raised.arg(2) + QStringLiteral(",5")},
                                                    {QList<int>(20, 5), u'5' + raised.arg(20)},
                                                    {QList<int>(21, 5), QStringLiteral("5")}};
    for (const auto& [primes, text] : texts) {
        EXPECT_EQ(SoundGrape::textOf(primes).text, text);
        EXPECT_EQ(SoundGrape::textOf(primes).hasExponent, text.contains(u'<'));
    }
}

TEST(SoundGrapeTest, HeadsFollowTheArrowAndWrapAtTheEdge)
{
    using Arrow = SoundGrape::Arrow;
    const QRect note(40, 50, 11, 9);
    // Arrow 14, head 10, step 6: the first head at 14 - 10 + 6 from the corner.
    const QList<Arrow> up =
        SoundGrape::arrowsFrom(note, {3, 5, 7}, SoundGrape::Direction::Up, QRect(0, 0, 200, 200));
    ASSERT_EQ(up.size(), 3);
    EXPECT_EQ(up[0].kind, Arrow::Shaft);
    EXPECT_EQ(up[0].place, QRect(51, 54 - 14, 14, 14));
    EXPECT_EQ(up[1].place, QRect(51 + 10, 54 - 20, 10, 10));
    EXPECT_EQ(up[2].place, QRect(51 + 16, 54 - 26, 10, 10));
    EXPECT_EQ(up[2].prime, 7);

    // Room for one head after the arrow, and for rows of two heads at 61 and 71, not for one at 81.
    const QRect room(0, 0, 88, 54 + 20);
    const QList<Arrow> down =
        SoundGrape::arrowsFrom(note, {3, 3, 5, 5, 7, 7}, SoundGrape::Direction::Down, room);
    ASSERT_EQ(down.size(), 6);
    EXPECT_EQ(down[1].place, QRect(61, 64, 10, 10));
    EXPECT_EQ(down[2].place, QRect(61, 54, 10, 10)) << "the row starts again at the base";
    EXPECT_EQ(down[3].place, QRect(67, 60, 10, 10));
    EXPECT_EQ(down[4].place, QRect(71, 54, 10, 10));
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
    const auto arrows = [](const CardWidget* card) { return graphics(card).size() - 2; };
    const auto primes = [](const CardWidget* card) {
        QStringList texts;
        for (const QLabel* each : card->findChildren<QLabel*>(QStringLiteral("SGBWLabel"))) {
            if (each->isVisible())
                texts.append(each->text());
        }
        return texts.join(u' ').toStdString();
    };
    CardWidget* octave = cardFor(8, 1); // nothing but steps of 2
    CardWidget* down = cardFor(1, 27);  // D0
    for (const int notation : {1, 2, 0, 3, -1}) {
        SCOPED_TRACE(notation);
        settings.soundGrapeNotation = notation;
        updatePage();
        EXPECT_EQ(arrows(octave), 0);
        EXPECT_EQ(primes(octave), "");
        EXPECT_EQ(arrows(down), notation == 1 ? 3 : 0);
        EXPECT_EQ(primes(down), notation == 2 ? "3<sup style=\"font-size:16pt\">3</sup>" : "");
    }
    settings.soundGrapeNotation = 1;
    updatePage();
    const CardGraphic* shaft = graphics(down)[2];
    const QRect note = graphics(down)[1]->geometry();
    EXPECT_EQ(shaft->geometry(), QRect(note.x() + 11, note.y() + 4, 14, 14));
    EXPECT_TRUE(shaft->svg().contains("fill:#5173b6")) << "the colour of 3";
    EXPECT_EQ(down->grab().toImage().pixelColor(note.center()), orlo.lookupColor(1));

    settings.soundGrapeNotation = 2;
    updatePage();
    const QLine line = SoundGrape::lineFrom(note, SoundGrape::Direction::Down);
    EXPECT_EQ(down->grab().toImage().pixelColor(line.p1() + QPoint(3, 3)), QColor(Qt::black));

    // In the absolute modes the way of the transposition belongs to it.
    transposeBy({11});
    for (const int mode : {0, 1, 2}) {
        settings.absRelView = mode;
        updatePage();
        EXPECT_EQ(primes(cardFor(11 * 7, 32)), mode == 0 ? "7" : "7,11");
    }
}

} // namespace
