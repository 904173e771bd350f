#pragma once

#include <QLine>
#include <QList>

class QColor;
class QPainter;

/// Level lines of width 1, as a dotted pen draws them. A pen sets every dot by itself, which for the
/// connectors of a large chord takes longer than painting the lattice.
void drawDottedLines(QPainter& painter, const QList<QLine>& lines, const QColor& color);
