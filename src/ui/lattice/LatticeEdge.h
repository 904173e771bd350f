#pragma once

#include <Qt>

class QPainter;
class QRect;
class QRectF;

/// Where the view cuts a lattice that is larger than it, a rule and a shade along that side tell that it goes
/// on. A side at which the lattice ends has neither.
namespace latticeedge {

/// Of a lattice that takes this place on a viewport, both in pixels.
Qt::Edges cutEdges(const QRectF& lattice, const QRect& viewport);
void draw(QPainter& painter, const QRect& viewport, Qt::Edges edges);

} // namespace latticeedge
