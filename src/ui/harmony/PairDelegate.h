#pragma once

#include <QStyledItemDelegate>

/// Draws a row of PairsModel in two lines: ratio, what stands beside it, distance and cents, then name and
/// beats. The name of a comma is lit. What is too wide is cut; the row's tooltip has it.
class PairDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
