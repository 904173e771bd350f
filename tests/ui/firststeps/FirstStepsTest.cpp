#include "ui/firststeps/FirstSteps.h"
#include "sound/OrloNoteEvent.h"
#include "support/Waiting.h"
#include "ui/WindowFixture.h"

#include <QAction>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

class FirstStepsTest : public WindowFixture
{
protected:
    FirstStepsTest()
    {
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get())); // fitted to the screen, which is too small
        window->resize(1280, 745);
        window->showFirstSteps();
        settle();
    }
    FirstSteps* card() const { return window->findChild<FirstSteps*>(); }
    /// -1: no card.
    int step() const { return card() ? card()->step() : -1; }
    bool liesOnThePageBesideTheBalls() const
    {
        const auto placeOf = [this](const QWidget* widget) {
            return QRect(widget->mapTo(window.get(), QPoint()), widget->size());
        };
        const QRect place = placeOf(card());
        const QRect covered = place.adjusted(-12, -12, 12, 12); // about the radius of a ball
        const OrloView* view = window->orloView();
        return placeOf(find<QWidget>("centralStack")).contains(place)
               && std::ranges::none_of(view->orloWidget()->balls(), [&](const OrloBallWidget* ball) {
                      const QPoint centre = view->mapFromScene(ball->scenePos());
                      return covered.contains(view->viewport()->mapTo(window.get(), centre));
                  });
    }
    void toggle(unsigned numerator, unsigned denominator)
    {
        const OrloNoteEvent event(OrloRatio(numerator, denominator));
        player.queueEventGui(&event);
        settle();
    }
    void queue(OrloEvent::Type type, float value)
    {
        player.queueGui(type, value);
        settle();
    }
};

TEST_F(FirstStepsTest, EachIsDoneByDoingIt)
{
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"press", [this] { toggle(1, 1); }},
        {"chord",
         [this] {
             toggle(3, 2);
             EXPECT_EQ(step(), FirstSteps::Chord);
             toggle(5, 4);
         }},
        {"store and recall",
         [this] {
             press(Qt::Key_4, Qt::AltModifier);
             window->reloadAllSoundingRatios(); // stores and recalls for itself
             EXPECT_EQ(step(), FirstSteps::StoreRecall);
             press(Qt::Key_4);
         }},
        {"transpose", [this] { queue(OrloEvent::TransposeByPrimeStep, 3.0F); }},
        {"glide",
         [this] {
             slider("glissSliderBig")->setValue(210); // of nothing
             queue(OrloEvent::NodesSelectAllSounding, 1.0F);
             EXPECT_EQ(step(), FirstSteps::Glide);
             slider("glissFineSliderBig")->setValue(210);
         }},
    };
    queue(OrloEvent::TransposeByPrimeStep, 5.0F); // before its time
    for (int number = 0; number < FirstSteps::COUNT; ++number) {
        EXPECT_EQ(step(), number) << rows[number].first;
        rows[number].second();
        settle();
    }
    EXPECT_TRUE(waitUntil([this] { return !card(); }));
}

TEST_F(FirstStepsTest, TheCardLeavesBallsAndKeysAlone)
{
    for (const Qt::Key view : {Qt::Key_F, Qt::Key_G}) {
        press(view);
        EXPECT_EQ(settings.circlesView, view == Qt::Key_F);
        settle();
        EXPECT_TRUE(waitUntil([this] { return liesOnThePageBesideTheBalls(); }));
    }
}

TEST_F(FirstStepsTest, OnePressEndsThemAndTheMenuHasThemAgain)
{
    click("firstStepsNext");
    EXPECT_EQ(step(), FirstSteps::Chord);
    click("firstStepsSkip");
    EXPECT_TRUE(waitUntil([this] { return !card(); }));
    const QList<QAction*> menu = window->actions();
    const auto entry = std::ranges::find(menu, u"First steps"_s, &QAction::text);
    ASSERT_NE(entry, menu.end());
    for (int times = 0; times < 2; ++times) { // anew while they are there
        (*entry)->trigger();
        EXPECT_EQ(step(), FirstSteps::Press);
        click("firstStepsNext");
    }
    for (int each = FirstSteps::Chord; each < FirstSteps::COUNT; ++each)
        click("firstStepsNext");
    EXPECT_TRUE(waitUntil([this] { return !card(); }));
}

} // namespace
