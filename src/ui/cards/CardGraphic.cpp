#include "ui/cards/CardGraphic.h"

#include "ui/cards/SvgLoader.h"

#include <QPainter>

CardGraphic::CardGraphic(SvgLoader* loader, QWidget* parent)
    : QSvgWidget(parent)
    , mLoader(loader)
{
    setAttribute(Qt::WA_TransparentForMouseEvents); // the card takes the presses
}

void CardGraphic::setSvg(const QByteArray& svg)
{
    if (svg == mSvg)
        return;
    mSvg = svg;
    update();
}

QSize CardGraphic::sizeForHeight(int height) const
{
    const QSize whole = mLoader->defaultSize(mSvg);
    if (whole.isEmpty())
        return {};
    return {qRound(static_cast<double>(height) * whole.width() / whole.height()), height};
}

void CardGraphic::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, mLoader->pixmap(mSvg, size(), devicePixelRatioF()));
}
