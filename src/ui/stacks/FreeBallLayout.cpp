#include "ui/stacks/FreeBallLayout.h"

float FreeBallLayout::cellSize(double playingRadius)
{
    return 2.0F * static_cast<float>(playingRadius) * CELL_FACTOR;
}

void FreeBallLayout::begin(int bottomLine)
{
    mPlaced.clear();
    mTopLine = 0;
    mBottomLine = bottomLine;
}

FreeBallLayout::Place FreeBallLayout::place(int pitchHeight, double playingRadius, double glowRadius,
                                            int howManyMore)
{
    const Cell cell{cellSize(playingRadius), static_cast<float>(glowRadius)};
    const auto top = static_cast<float>(mTopLine);
    const auto bottom = static_cast<float>(mBottomLine);
    const auto height = static_cast<float>(pitchHeight);
    const float roomToCome = static_cast<float>(rowsToCome(howManyMore)) * cell.size;

    Place place{QPoint(0, pitchHeight), true, false};
    if (height < top + cell.margin + cell.size) {
        if (mPlaced.size() >= COLUMNS) {
            mTopLine += static_cast<int>(cell.size);
            mPlaced.clear();
        }
        place.isAtPitch = false;
        place.point.setY(static_cast<int>(static_cast<float>(mTopLine) + cell.margin));
    } else if (height > bottom - cell.margin - cell.size - roomToCome) {
        place.isAtPitch = false;
        place.isInBottomGrid = true;
        place.point.setY(static_cast<int>(bottom - cell.margin - roomToCome));
    }
    if (place.isInBottomGrid) {
        const int column = COLUMNS - 1 - howManyMore % COLUMNS;
        place.point.setX(
            static_cast<int>(static_cast<float>(static_cast<int>(cell.size) * column) + cell.margin));
    } else {
        place.point.setX(freeColumn(place.point.y(), cell));
    }
    remember(place.point, cell);
    return place;
}

/// The x after the placed balls at this height have pushed the ball aside.
int FreeBallLayout::freeColumn(int y, const Cell& cell)
{
    const auto height = static_cast<float>(y);
    int x = static_cast<int>(cell.margin);
    if (height >= static_cast<float>(mLastRowStart.y()) + cell.size)
        return x;
    for (const QPoint& placed : std::as_const(mPlaced)) {
        if (static_cast<float>(placed.y()) + cell.size >= height)
            x += static_cast<int>(cell.size);
    }
    if (static_cast<float>(x) > cell.size * static_cast<float>(COLUMNS)) {
        x = static_cast<int>(cell.margin);
        mPlaced.clear();
    }
    return x;
}

void FreeBallLayout::remember(QPoint point, const Cell& cell)
{
    mPlaced.append(point);
    if (static_cast<float>(point.x()) == cell.margin)
        mLastRowStart = point;
}
