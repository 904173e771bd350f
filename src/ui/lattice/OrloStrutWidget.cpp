#include "ui/lattice/OrloStrutWidget.h"

#include "model/OrloBall.h"
#include "ui/lattice/GeometryConstants.h"
#include "ui/lattice/OrloBallWidget.h"

#include <QPen>

namespace {

/// The constants may be edited to anything; a pen takes no width below 0.
int penWidth(int edited)
{
    return qMax(0, edited);
}

} // namespace

OrloStrutWidget::OrloStrutWidget(OrloBallWidget* first, OrloBallWidget* second, int width,
                                 const QColor* color, QGraphicsItem* parent)
    : QGraphicsLineItem(QLineF(first->pos(), second->pos()), parent)
    , mFirst(first)
    , mSecond(second)
{
    const QColor base = color ? *color : second->ball()->color();
    setPen(QPen(base.darker(BALL_DIM_FACTOR), penWidth(width), Qt::SolidLine));
    setAcceptedMouseButtons(Qt::NoButton);
    first->addStrut(this);
    second->addStrut(this);
}

void OrloStrutWidget::setWidth(int width)
{
    QPen changed = pen();
    changed.setWidth(penWidth(width));
    setPen(changed);
}

bool OrloStrutWidget::isFalling() const
{
    return static_cast<float>(line().dx() * line().dy()) > 0.0F;
}
