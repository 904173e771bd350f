#include "ui/cards/CardGraphic.h"

#include "ui/cards/SvgLoader.h"

#include <QPainter>

CardGraphic::CardGraphic(SvgLoader* loader, QWidget* parent)
    : QSvgWidget(parent)
    , mLoader(loader)
{
    setAttribute(Qt::WA_TransparentForMouseEvents); // the card takes the presses
    setMask(QRegion(-1, -1, 1, 1));                 // and draws the picture
}

QSize CardGraphic::sizeForHeight(int height) const
{
    const QSize whole = mLoader->defaultSize(mSvg);
    if (whole.isEmpty())
        return {};
    return {qRound(static_cast<double>(height) * whole.width() / whole.height()), height};
}

void CardGraphic::drawAt(QPainter& painter, const QRect& place) const
{
    painter.drawPixmap(place.topLeft(), mLoader->pixmap(mSvg, place.size(), devicePixelRatioF()));
}
