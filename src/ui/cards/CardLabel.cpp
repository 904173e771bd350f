#include "ui/cards/CardLabel.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QtMath>

CardLabel::CardLabel(QWidget* parent)
    : QLabel(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents); // the card takes the presses
    setTextFormat(Qt::PlainText);
    mLaidOut.setTextFormat(Qt::PlainText);
    mLaidOut.setPerformanceHint(QStaticText::AggressiveCaching);
}

bool CardLabel::isPlainLine() const
{
    return textFormat() == Qt::PlainText && !text().contains(u'\n');
}

void CardLabel::layOutText()
{
    if (text() == mLaidOutText && font() == mLaidOutFont)
        return;
    mLaidOutText = text();
    mLaidOutFont = font();
    mLaidOut.setText(mLaidOutText);
    mLaidOut.prepare(QTransform(), mLaidOutFont);
}

void CardLabel::fit()
{
    ensurePolished(); // the style sheet has the font
    if (!isPlainLine()) {
        adjustSize();
        return;
    }
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
    setAttribute(Qt::WA_StyledBackground, false);
    fit();
}

bool CardLabel::event(QEvent* event)
{
    const bool handled = QLabel::event(event);
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange)
        setAttribute(Qt::WA_StyledBackground, false);
    return handled;
}

void CardLabel::paintEvent(QPaintEvent* event)
{
    if (!isPlainLine()) {
        QLabel::paintEvent(event);
        return;
    }
    layOutText();
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawStaticText(0, 0, mLaidOut);
}
