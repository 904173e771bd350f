// The signs of Helmholtz-Ellis notation on a card, in place of the accidental.

#include "notation/HejiGlyphs.h"
#include "ui/cards/CardGraphic.h"
#include "ui/cards/CardLabel.h"
#include "ui/cards/CardWidget.h"
#include "ui/cards/StaffLines.h"
#include "ui/cards/SvgLoader.h"

#include <QPainter>

HejiSigns CardWidget::hejiSigns(const QRect& area, int room) const
{
    return HejiSigns::within(mLoader->hejiFont(), hejiglyphs::of(*mContents.heji), room,
                             static_cast<qreal>(StaffLines{area}.spacing()));
}

/// Where the outline of the signs has its origin.
QPointF CardWidget::signsOrigin() const
{
    return {static_cast<qreal>(mNote->x() - ACCIDENTAL_GAP), mNote->y() + mNote->height() / 2.0};
}

/// High signs reach into the cents, which then begin at the note, as far as they end before `right`.
void CardWidget::moveCentsBesideSigns(int right)
{
    const QRectF signs = mSigns.outline.boundingRect().translated(signsOrigin());
    if (signs.intersects(mCentsLabel->geometry()))
        mCentsLabel->move(qMin(mNote->x(), right - mCentsLabel->width()), mCentsLabel->y());
}

void CardWidget::drawHejiSigns(QPainter& painter) const
{
    if (mSigns.outline.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(signsOrigin());
    painter.fillPath(mSigns.outline, mContents.color);
    painter.restore();
}
