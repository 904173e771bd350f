#include "ui/cards/CardLabel.h"

#include "ui/cards/CardPictures.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QtMath>

CardLabel::CardLabel(CardPictures* pictures, QWidget* parent)
    : QLabel(parent)
    , mPictures(pictures)
{
    setAttribute(Qt::WA_TransparentForMouseEvents); // the card takes the presses
    setMask(QRegion(-1, -1, 1, 1));                 // and draws the text
    setTextFormat(Qt::PlainText);
}

void CardLabel::layOutText()
{
    if (text() == mLaidOutText && font() == mLaidOutFont)
        return;
    mLaidOutText = text();
    mLaidOutFont = font();
    mLaidOut = mPictures->text(mLaidOutText, mLaidOutFont, textFormat());
}

void CardLabel::fit()
{
    ensurePolished(); // the style sheet has the font
    layOutText();
    resize(qCeil(mLaidOut.size().width()), qCeil(mLaidOut.size().height()));
}

void CardLabel::useSmallPrint(bool on)
{
    constexpr const char* property = "long";
    if (this->property(property).toBool() == on)
        return;
    setProperty(property, on);
    style()->unpolish(this);
    style()->polish(this);
    fit();
}

void CardLabel::draw(QPainter& painter) const
{
    drawText(painter, QPointF(x(), y() + (height() - mLaidOut.size().height()) / 2));
}

int CardLabel::drawAt(QPainter& painter, int x, int baseline) const
{
    drawText(painter, QPointF(x, baseline - QFontMetrics(mLaidOutFont).ascent()));
    return qCeil(mLaidOut.size().width());
}

void CardLabel::drawText(QPainter& painter, QPointF topLeft) const
{
    painter.setFont(mLaidOutFont);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawStaticText(topLeft, mLaidOut);
}
