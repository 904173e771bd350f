#pragma once

#include <QRect>

class OrloView;

/// The corner of the view in which a card of this size covers the fewest balls, in the view's coordinates.
/// The upper left one is the first choice.
QRect cornerWithFewestBalls(const OrloView& view, QSize card);
