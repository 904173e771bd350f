#include "ui/harmony/PairDelegate.h"

#include "ui/harmony/PairsModel.h"

#include <QPainter>

namespace {

constexpr int MARGIN = 5;
constexpr int GAP = 8;
constexpr double QUIET = 0.7; // of the text's opacity

/// Draws text from the right end of the line and leaves the rest of it.
void drawAtRight(QPainter& painter, QRect& line, const QString& text, const QColor& color)
{
    painter.setPen(color);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, text);
    line.setRight(line.right() - painter.fontMetrics().horizontalAdvance(text) - GAP);
}

/// The same from the left end, cut to the line.
void drawAtLeft(QPainter& painter, QRect& line, const QString& text, const QColor& color)
{
    const QString shown = painter.fontMetrics().elidedText(text, Qt::ElideRight, line.width());
    painter.setPen(color);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, shown);
    line.setLeft(line.left() + painter.fontMetrics().horizontalAdvance(shown) + GAP);
}

} // namespace

void PairDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const
{
    const auto text = [&index](int role) { return index.data(role).toString(); };
    const QColor color = option.palette.color(QPalette::Text);
    QColor quiet = color;
    quiet.setAlphaF(QUIET);
    const bool isComma = index.data(PairsModel::IsComma).toBool();
    QFont bold = option.font;
    bold.setBold(true);
    const QRect inner = option.rect.adjusted(MARGIN, 1, -MARGIN, -1);
    QRect upper = inner.adjusted(0, 0, 0, -inner.height() / 2);
    QRect lower = upper.translated(0, upper.height());

    painter->save();
    painter->setFont(option.font);
    drawAtRight(*painter, upper, text(PairsModel::Cents), color);
    drawAtRight(*painter, upper, text(PairsModel::Distance), quiet);
    painter->setFont(bold);
    drawAtLeft(*painter, upper, text(PairsModel::Ratio), color);
    painter->setFont(option.font);
    const QString beside = text(PairsModel::Beside);
    if (painter->fontMetrics().horizontalAdvance(beside) <= upper.width())
        drawAtLeft(*painter, upper, beside, quiet);
    drawAtRight(*painter, lower, text(PairsModel::Beats), quiet);
    drawAtLeft(*painter, lower, text(PairsModel::Name),
               isComma ? option.palette.color(QPalette::Highlight) : quiet);
    painter->restore();
}

QSize PairDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    return {0, 2 * option.fontMetrics.height() + 4};
}
