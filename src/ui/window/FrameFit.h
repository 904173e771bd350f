#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// A frame is known only when the window system has drawn it around the window; with it a window of the
/// screen's size would hide its lower rows.
namespace framefit {

struct Place
{
    QPoint pos; // of the frame
    QSize size; // of the window within
};

/// A frame that is larger than the room is cut and moved into it; any other stays where the player has put
/// it, even if some of it is outside.
Place inside(const QRect& room, const QRect& frame, const QSize& window);

} // namespace framefit
