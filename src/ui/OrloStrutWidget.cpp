#include "ui/OrloStrutWidget.h"

#include "model/OrloBall.h"
#include "ui/GeometryConstants.h"
#include "ui/OrloBallWidget.h"

#include <QPen>

OrloStrutWidget::OrloStrutWidget(OrloBallWidget* first, OrloBallWidget* second, int width, const QColor* color,
                                 QGraphicsItem* parent)
    : QGraphicsLineItem(QLineF(first->pos(), second->pos()), parent)
    , mFirst(first)
    , mSecond(second)
{
    const QColor base = color ? *color : second->ball()->color();
    setPen(QPen(base.darker(BALL_DIM_FACTOR), width, Qt::SolidLine));
    setAcceptedMouseButtons(Qt::NoButton);
    first->addStrut(this);
    second->addStrut(this);
}

void OrloStrutWidget::setWidth(int width)
{
    QPen changed = pen();
    changed.setWidth(width);
    setPen(changed);
}

bool OrloStrutWidget::isFalling() const
{
    return static_cast<float>(line().dx() * line().dy()) > 0.0F;
}
