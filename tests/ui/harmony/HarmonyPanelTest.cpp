#include "ui/harmony/HarmonyPanel.h"
#include "harmony/Drift.h"
#include "sound/OrloNoteEvent.h"
#include "ui/WindowFixture.h"
#include "ui/harmony/CentsRuler.h"
#include "ui/harmony/CutLabel.h"
#include "ui/harmony/HarmonyTexts.h"
#include "ui/stacks/CardStackTwoWidget.h"
#include "ui/stacks/CardStackWidget.h"
#include "ui/stacks/NodeStackWidget.h"
#include "ui/stacks/OrloLayer.h"

#include <QAction>
#include <QListView>
#include <QScrollBar>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

SoundingNote note(unsigned long long numerator, unsigned long long denominator, double offset = 0.0)
{
    const double pure = 440.0 * static_cast<double>(numerator) / static_cast<double>(denominator);
    return {OrloRatio(numerator, denominator), pure * std::exp2(offset / 1200.0), offset, false};
}

class HarmonyPanelTest : public WindowFixture
{
protected:
    void open(QSize size = {1280, 745})
    {
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get())); // fitted to the screen, which is too small
        window->resize(size);
        settle();
        press(Qt::Key_D, Qt::ControlModifier);
        settle();
    }
    HarmonyPanel* panel() const { return find<HarmonyPanel>("harmonyPanel"); }
    /// Whether it is shown, and only then looks at the notes.
    bool works() const
    {
        const QList<QTimer*> timers = panel()->findChildren<QTimer*>();
        const bool looks = std::ranges::any_of(timers, &QTimer::isActive);
        EXPECT_EQ(looks, panel()->isVisible());
        return looks;
    }
    bool isChecked() const
    {
        for (const QAction* entry : window->actions()) {
            if (entry->text() == u"Harmony")
                return entry->isChecked();
        }
        return false;
    }
    QString text(const char* name) const { return find<CutLabel>(name)->whole(); }
    OrloLayer* layer() const { return find<OrloLayer>("grapeLayer"); }
    static QRect placeOf(const QWidget* widget)
    {
        return {widget->mapTo(widget->window(), QPoint()), widget->size()};
    }
    /// Lattice, first stack and the two columns for pitches without a ball.
    QList<QRect> places() const
    {
        QList<QRect> all;
        for (const QWidget* each : std::initializer_list<QWidget*>{
                 layer()->orloView(), layer()->cardStack(), layer()->nodeStack(), layer()->cardStackTwo()})
            all.append(placeOf(each));
        return all;
    }
    void toggle(const QList<std::pair<unsigned, unsigned>>& ratios)
    {
        for (const auto& [numerator, denominator] : ratios) {
            const OrloNoteEvent event(OrloRatio(numerator, denominator));
            player.queueEventGui(&event);
            settle();
        }
        panel()->look();
    }
};

TEST(HarmonyTexts, SayNumbersLimitAndFundamental)
{
    struct Row
    {
        QList<SoundingNote> notes;
        const char *otonal, *utonal;
        bool isOtonal;
        const char *limit, *fundamental;
    };
    const Row rows[] = {
        {{note(1, 1), note(5, 4), note(3, 2)},
         "4 : 5 : 6",
         "1/(15 : 12 : 10)",
         true,
         "5",
         "110.000 Hz, A2 +0.0 cents; the lowest note is its harmonic 4"},
        {{note(3, 2), note(1, 1), note(6, 5)},
         "10 : 12 : 15",
         "1/(6 : 5 : 4)",
         false,
         "5",
         "44.000 Hz, F1 +13.7 cents; the lowest note is its harmonic 10"},
        {{note(2, 1), note(1, 1)},
         "1 : 2",
         "1/(2 : 1)",
         true,
         "2",
         "440.000 Hz, A4 +0.0 cents; the lowest note"},
        {{note(1, 1), note(37, 32)},
         "32 : 37",
         "1/(37 : 32)",
         true,
         "beyond 31",
         "13.750 Hz, A-1 +0.0 cents; the lowest note is its harmonic 32"},
        {{note(7, 4)}, "", "", true, "", ""},
        {{}, "", "", true, "", ""},
    };
    for (const Row& row : rows) {
        const Harmony harmony = Harmony::of(row.notes);
        EXPECT_EQ(harmonytexts::otonal(harmony).toStdString(), row.otonal);
        EXPECT_EQ(harmonytexts::utonal(harmony).toStdString(), row.utonal);
        EXPECT_EQ(harmony.isOtonal, row.isOtonal) << row.otonal;
        EXPECT_EQ(harmonytexts::limit(harmony).toStdString(), row.limit);
        EXPECT_EQ(harmonytexts::fundamental(harmony).toStdString(), row.fundamental);
    }
    const Harmony under = Harmony::of({note(1, 1, 30.0), note(5, 4), note(3, 2)});
    EXPECT_FALSE(harmonytexts::fundamental(under).contains(u"lowest")) << "that is the glided note";
    EXPECT_EQ(harmonytexts::leftOut(under), u"1 note is near, not exact.");
    const Harmony together = Harmony::of({note(1, 1, 5.0), note(5, 4, 5.0)});
    EXPECT_EQ(harmonytexts::leftOut(together), u"All are glided by +5.0 cents; their ratios hold.");
    EXPECT_EQ(harmonytexts::number(pow(WideInt(10), 119)), u"(a number of 120 digits)");
}

TEST(HarmonyTexts, SayPairsAndNeverThatANearOneIsExact)
{
    struct Row
    {
        SoundingNote high; // above 440 Hz
        const char *ratio, *beside, *cents, *name, *distance, *beats;
    };
    const Row rows[] = {
        {note(3, 2), "3/2", "2 : 3", "701.955 cents", "perfect fifth", "2.58", "0.00/s (3:2)"},
        {note(81, 80), "81/80", "80 : 81", "21.506 cents", "syntonic comma", "12.66", "5.50/s (1:1)"},
        {note(5, 4, 3.0), "≈ 5/4", "+3.0", "389.314 cents", "major third", "", "3.82/s (5:4)"},
        {note(81, 80, 0.5), "≈ 81/80", "+0.5", "22.006 cents", "syntonic comma", "", "5.63/s (1:1)"},
        {note(1, 1, 20.0), "≈", "", "20.000 cents", "comma", "", "5.11/s (1:1)"},
        {note(194481, 194480), "194481/194480", "", "0.009 cents", "comma: scintillisma", "35.14",
         "<0.01/s (1:1)"},
    };
    for (const Row& row : rows) {
        const Harmony harmony = Harmony::of({note(1, 1), row.high});
        const harmonytexts::PairTexts texts = harmonytexts::ofPair(harmony, harmony.pairs.at(0));
        EXPECT_EQ(texts.ratio.toStdString(), row.ratio);
        EXPECT_EQ(texts.beside.toStdString(), row.beside);
        EXPECT_EQ(texts.cents.toStdString(), row.cents);
        EXPECT_EQ(texts.name.toStdString(), row.name);
        EXPECT_EQ(texts.distance.toStdString(), row.distance);
        EXPECT_EQ(texts.beats.toStdString(), row.beats);
        CentsRuler ruler;
        ruler.setHarmony(harmony);
        EXPECT_EQ(ruler.ticks().at(1).isExact, row.high.isExact());
        EXPECT_EQ(ruler.ticks().at(1).label.startsWith(u'≈'), !row.high.isExact());
    }
    CentsRuler ruler;
    for (const auto& [numerator, octaves] : {std::pair{2U, 1}, {3U, 2}, {4U, 2}}) {
        ruler.setHarmony(Harmony::of({note(1, 1), note(numerator, 1)}));
        EXPECT_EQ(ruler.octaves(), octaves) << numerator;
    }
}

TEST_F(HarmonyPanelTest, OverTheEmptyStripItMovesNothingAndClosedItDoesNothing)
{
    open();
    const QList<QRect> opened = places();
    EXPECT_TRUE(works() && isChecked() && settings.harmonyPanel);
    EXPECT_EQ(window->focusWidget(), window.get());
    EXPECT_GT(placeOf(panel()).left(), opened[1].right());
    EXPECT_EQ(placeOf(panel()).right(), placeOf(find<QWidget>("centralStack")).right());
    click("harmonyCloseButton");
    settle();
    EXPECT_FALSE(works() || isChecked() || settings.harmonyPanel);
    EXPECT_EQ(places(), opened);
    press(Qt::Key_D, Qt::ControlModifier);
    for (const bool isShown : {false, true}) { // goes and comes with the stacks
        click("expandOrloButton");
        settle();
        EXPECT_EQ(works(), isShown);
        EXPECT_EQ(isChecked(), isShown);
        EXPECT_TRUE(settings.harmonyPanel);
    }
    EXPECT_EQ(places(), opened);
    click("expandOrloButton");
    press(Qt::Key_D, Qt::ControlModifier); // beside the enlarged lattice
    EXPECT_TRUE(works() && isChecked());
    EXPECT_TRUE(QTest::qWaitFor([&] { return places()[0].right() < placeOf(panel()).left(); }));
}

TEST_F(HarmonyPanelTest, KeepsClearOfPitchesWithoutABallUntilItIsClosed)
{
    open();
    const QList<QRect> before = places();
    const QSize least = window->minimumSizeHint();
    emit orlo.addNodeToStack(OrloRatio(1, 3));
    const auto isClear = [this] {
        return placeOf(layer()->cardStackTwo()).right() < placeOf(panel()).left();
    };
    EXPECT_TRUE(QTest::qWaitFor(isClear));
    EXPECT_EQ(window->minimumSizeHint(), least);
    const QList<QRect> clear = places();
    emit orlo.removeNodeInStack(OrloRatio(1, 3));
    emit panel()->looked();
    settle();
    EXPECT_EQ(places(), clear);
    press(Qt::Key_D, Qt::ControlModifier);
    settle();
    EXPECT_EQ(places(), before);
}

TEST_F(HarmonyPanelTest, GivesRoomAtOnceWhereThatCostsTheLatticeNothing)
{
    settings.harmonyPanel = true; // at the start
    openWindow();
    window->resize(1920, 1000);
    window->show();
    EXPECT_TRUE(QTest::qWaitFor([this] { return places()[3].right() < placeOf(panel()).left() && works(); }));
    const double scale = window->orloView()->fitScale();
    click("harmonyCloseButton");
    settle();
    EXPECT_GT(places()[3].right(), 1900);
    EXPECT_EQ(window->orloView()->fitScale(), scale);
}

TEST_F(HarmonyPanelTest, FloatsAndRemembersIt)
{
    open();
    const QList<QRect> before = places();
    click("harmonyFloatButton");
    settle();
    EXPECT_TRUE(panel()->isWindow() && works() && settings.harmonyPanelFloats);
    EXPECT_TRUE(panel()->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    emit orlo.addNodeToStack(OrloRatio(1, 3));
    emit panel()->looked();
    settle();
    EXPECT_EQ(places(), before);
    panel()->close(); // by its frame
    settle();
    EXPECT_FALSE(settings.harmonyPanel || isChecked());

    settings.harmonyPanel = true;
    openWindow();
    EXPECT_FALSE(works()) << "before the window that it belongs to";
    window->show();
    EXPECT_TRUE(QTest::qWaitFor([this] { return panel()->isWindow() && works(); }));
    click("harmonyFloatButton");
    settle();
    EXPECT_TRUE(!panel()->isWindow() && works() && !settings.harmonyPanelFloats);
}

TEST_F(HarmonyPanelTest, FollowsNotesAndTransposition)
{
    open();
    toggle({{1, 1}, {6, 5}, {3, 2}});
    EXPECT_EQ(text("harmonyChord"), u"1/(6 : 5 : 4)"); // the simpler one first
    EXPECT_EQ(text("harmonyInverse"), u"10 : 12 : 15");
    const auto* list = find<QListView>("harmonyPairs");
    EXPECT_EQ(list->model()->rowCount(), 3);
    toggle({{6, 5}, {5, 4}});
    EXPECT_EQ(text("harmonyChord"), u"4 : 5 : 6");
    EXPECT_EQ(text("harmonyDrift"), Drift::of(OrloRatio(1, 1)).text());
    transposeBy({3, 3, 3, 3, -5});
    EXPECT_TRUE(QTest::qWaitFor([&] { return text("harmonyDrift").contains(u"syntonic comma"); }));
    EXPECT_TRUE(text("harmonyDrift").startsWith(u"81/80")) << text("harmonyDrift").toStdString();
}

/// Numbers of any size leave the panel as wide as it is.
TEST_F(HarmonyPanelTest, ALongTextIsCutAndInTheTooltip)
{
    CutLabel label(2);
    label.resize(100, 30);
    const std::pair<QString, bool> rows[] = {
        {u"4 : 5 : 6"_s, false}, {QString(400, u'7'), true}, {u"17 : "_s.repeated(60), true}};
    for (const auto& [whole, isCut] : rows) {
        label.setWhole(whole);
        EXPECT_EQ(label.text() != whole, isCut);
        EXPECT_EQ(label.toolTip().isEmpty(), !isCut);
        EXPECT_LE(label.text().count(u'\n'), 1);
        EXPECT_EQ(label.minimumSizeHint().width(), 0);
    }
}

} // namespace
