// What a card shows in the rows that other cards leave of it, when these cover its name, cents or ratio.

#include "ui/cards/CardGraphic.h"
#include "ui/cards/CardLabel.h"
#include "ui/cards/CardWidget.h"

#include <QFontMetrics>
#include <QPainter>

namespace {

// The line of a card that is covered: of its rows, where its columns begin, and what the ratio has.
constexpr int SHORT_LINE_LEAST_HEIGHT = 9; // a digit
constexpr int SHORT_NOTE_X = 6;
constexpr int SHORT_NAME_X = 20;
constexpr int SHORT_CENTS_RIGHT = 92;
constexpr int SHORT_RATIO_X = 99;
constexpr int SHORT_ACCIDENTAL_HEIGHT = 13;
constexpr int HIDDEN_MARGIN = 6; // drawn under the next card, whose corners are round

} // namespace

void CardWidget::setUncoveredRows(int top, int bottom)
{
    if (top == mUncoveredTop && bottom == mUncoveredBottom)
        return;
    mUncoveredTop = top;
    mUncoveredBottom = bottom;
    update();
}

bool CardWidget::isShortened() const
{
    if (mUncoveredBottom - mUncoveredTop < SHORT_LINE_LEAST_HEIGHT)
        return false;
    const QRect told = mNoteLabel->geometry() | mCentsLabel->geometry() | mRatioLabel->geometry();
    return told.top() < mUncoveredTop || told.bottom() >= mUncoveredBottom;
}

void CardWidget::drawShortened(QPainter& painter)
{
    const int top = mUncoveredTop > 0 ? mUncoveredTop - HIDDEN_MARGIN : 0;
    const int bottom = mUncoveredBottom < height() ? mUncoveredBottom + HIDDEN_MARGIN : height();
    painter.setClipRect(0, top, width(), bottom - top);
    painter.drawPixmap(0, 0, paper());
    drawShortLine(painter);
}

void CardWidget::drawShortLine(QPainter& painter) const
{
    const int middle = (mUncoveredTop + qMin(mUncoveredBottom, height())) / 2;
    const int baseline = middle + (QFontMetrics(mNoteLabel->font()).capHeight() + 1) / 2;
    const QSize noteSize = mNote->size();
    mNote->drawAt(painter, QRect(QPoint(SHORT_NOTE_X, middle - noteSize.height() / 2), noteSize));
    int x = SHORT_NAME_X;
    x += mNoteLabel->drawAt(painter, x, baseline);
    if (hasAccidental()) {
        const QSize size = mPlainAccidental->sizeForHeight(SHORT_ACCIDENTAL_HEIGHT);
        mPlainAccidental->drawAt(painter, QRect(QPoint(x + 1, middle - size.height() / 2 - 1), size));
        x += size.width() + 2;
    }
    mOctaveLabel->drawAt(painter, x, baseline);
    mCentsLabel->drawAt(painter, SHORT_CENTS_RIGHT - mCentsLabel->width(), baseline);
    drawShortRatio(painter, SHORT_RATIO_X, baseline);
}

/// A ratio that has two lines on the whole card has one here, without its middle when it is too long.
void CardWidget::drawShortRatio(QPainter& painter, int x, int baseline) const
{
    if (mRatioLabel->text() == mContents.ratio) {
        mRatioLabel->drawAt(painter, x, baseline);
        return;
    }
    QFont small = mRatioLabel->font();
    small.setPixelSize(SHORT_LINE_LEAST_HEIGHT);
    painter.setFont(small);
    painter.setPen(mRatioLabel->palette().color(mRatioLabel->foregroundRole()));
    const int room = contentsRect().right() - x;
    painter.drawText(x, baseline, QFontMetrics(small).elidedText(mContents.ratio, Qt::ElideMiddle, room));
}
