#pragma once

#include <QList>
#include <QPoint>

/// Where the free balls of the node stack stand, from the highest pitch down: each at the height of its
/// pitch while there is room, aside within five cells where others stand, or in a grid at the upper or
/// lower edge. In pixels of the stack, in single precision.
class FreeBallLayout
{
public:
    static constexpr int COLUMNS = 5;
    static constexpr float CELL_FACTOR = 1.35F; // of a playing ball's diameter

    struct Place
    {
        QPoint point; // of the ball's centre
        bool isAtPitch;
        bool isInBottomGrid;
    };

    /// Begins a pass over all balls.
    void begin(int bottomLine);
    /// Places the next ball, given the height of its pitch, its radii with outline and with glow, and the
    /// number of balls that follow.
    Place place(int pitchHeight, double playingRadius, double glowRadius, int howManyMore);

    /// Width of a cell for a ball of this radius.
    static float cellSize(double playingRadius);
    /// Rows of the bottom grid that the following balls may need.
    static int rowsToCome(int howManyMore) { return howManyMore / COLUMNS; }

private:
    /// The measures of one ball's cell.
    struct Cell
    {
        float size;
        float margin; // from the edge to a ball's centre: the room of its glow
    };
    int freeColumn(int y, const Cell& cell);
    void remember(QPoint point, const Cell& cell);

    QList<QPoint> mPlaced; // of the current pass
    // Carries over from the pass before, on purpose: where the first balls of a pass jump into the
    // bottom grid, the next one still looks at it.
    QPoint mLastRowStart{0, -100};
    int mTopLine = 0;
    int mBottomLine = 0;
};
