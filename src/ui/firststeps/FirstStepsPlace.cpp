#include "ui/firststeps/FirstStepsPlace.h"

#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/OrloWidget.h"

#include <algorithm>

namespace {

constexpr int DISTANCE = 8;     // from the page's edges
constexpr int STATUS_LINE = 30; // which lies along the lower edge
constexpr int BALL = 12;        // about the radius of a ball
constexpr int STEP = 30;

QList<QPoint> places(const QWidget& page, const OrloView& view, QSize card)
{
    const QPoint viewCorner = view.mapTo(&page, QPoint());
    const int last = page.width() - DISTANCE - card.width();
    const int first = viewCorner.x() + view.width() - DISTANCE - card.width();
    QList<QPoint> list{viewCorner + QPoint(DISTANCE, DISTANCE)};
    for (const int y : {DISTANCE, page.height() - STATUS_LINE - card.height()}) {
        for (int x = first; x <= last; x += STEP)
            list.append({x, y});
    }
    return list;
}

} // namespace

QPoint placeWithFewestBalls(const QWidget& page, const OrloView& view, QSize card)
{
    QList<QPoint> balls;
    for (const OrloBallWidget* ball : view.orloWidget()->balls())
        balls.append(view.viewport()->mapTo(&page, view.mapFromScene(ball->scenePos())));
    QPoint best;
    qsizetype fewest = balls.size() + 1;
    for (const QPoint place : places(page, view, card)) {
        const QRect covered = QRect(place, card).adjusted(-BALL, -BALL, BALL, BALL);
        const auto count = std::ranges::count_if(balls, [&](QPoint ball) { return covered.contains(ball); });
        if (count < fewest) {
            best = place;
            fewest = count;
        }
    }
    return best;
}
