#include "ui/window/FrameFit.h"

namespace framefit {

Place inside(const QRect& room, const QRect& frame, const QSize& window)
{
    const QSize over = (frame.size() - room.size()).expandedTo(QSize(0, 0));
    if (over.isNull())
        return {frame.topLeft(), window};
    const QSize cut = frame.size() - over;
    return {{qMax(room.left(), qMin(frame.left(), room.right() + 1 - cut.width())),
             qMax(room.top(), qMin(frame.top(), room.bottom() + 1 - cut.height()))},
            window - over};
}

} // namespace framefit
