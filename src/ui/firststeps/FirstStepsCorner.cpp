#include "ui/firststeps/FirstStepsCorner.h"

#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/OrloWidget.h"

namespace {

constexpr int DISTANCE = 8;     // from the view's edges
constexpr int STATUS_LINE = 30; // which lies along the lower edge
constexpr int BALL = 10;        // about the radius of a ball

int ballsUnder(const OrloView& view, const QRect& card)
{
    int count = 0;
    for (const OrloBallWidget* ball : view.orloWidget()->balls())
        count += card.adjusted(-BALL, -BALL, BALL, BALL).contains(view.mapFromScene(ball->scenePos()));
    return count;
}

} // namespace

QRect cornerWithFewestBalls(const OrloView& view, QSize card)
{
    const int right = view.width() - DISTANCE - card.width();
    const int bottom = view.height() - STATUS_LINE - card.height();
    QRect best;
    int fewest = -1;
    for (const QPoint corner : {QPoint(DISTANCE, DISTANCE), QPoint(right, DISTANCE), QPoint(DISTANCE, bottom),
                                QPoint(right, bottom)}) {
        const QRect place(corner, card);
        const int covered = ballsUnder(view, place);
        if (fewest < 0 || covered < fewest) {
            best = place;
            fewest = covered;
        }
    }
    return best;
}
