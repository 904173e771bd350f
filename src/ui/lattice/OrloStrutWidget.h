#pragma once

#include <QGraphicsLineItem>

class OrloBallWidget;

/// A line between two balls of the tree: a step, or a link.
class OrloStrutWidget : public QGraphicsLineItem
{
public:
    enum { Type = UserType + 2 };

    /// Enters itself in both balls' lists. Without a colour it takes the second ball's.
    OrloStrutWidget(OrloBallWidget* first, OrloBallWidget* second, int width, const QColor* color,
                    QGraphicsItem* parent);

    void setWidth(int width);
    /// True when it falls from the upper left to the lower right, which with the default angles
    /// is a step of 2. The slope decides, not the prime, so edited angles change the answer.
    bool isFalling() const;

    OrloBallWidget* firstBall() const { return mFirst; }
    OrloBallWidget* secondBall() const { return mSecond; }

    int type() const override { return Type; }

private:
    // Balls and struts are deleted together, when the scene is cleared.
    OrloBallWidget* const mFirst;
    OrloBallWidget* const mSecond;
};
