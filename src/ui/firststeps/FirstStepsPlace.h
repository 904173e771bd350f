#pragma once

#include <QPoint>

class OrloView;
class QSize;
class QWidget;

/// Where a card of this size covers the fewest balls, none if possible, in the page's coordinates: in the
/// page's upper left corner, else at its upper or lower edge, near the right end of the lattice. `view` lies
/// in the page.
QPoint placeWithFewestBalls(const QWidget& page, const OrloView& view, QSize card);
