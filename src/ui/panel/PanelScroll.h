#pragma once

#include <QScrollArea>

class QFrame;

/// Lets what lies in a frame of the panel scroll in one direction where the window is too small for it. As
/// long as there is room it takes none of it and shows nothing.
class PanelScroll : public QScrollArea
{
    Q_OBJECT

public:
    /// Takes over the frame's layout and what lies in it. The bar takes its room from the layout's margins,
    /// so that the frame keeps its thickness.
    PanelScroll(QFrame* frame, Qt::Orientation direction);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void adapt();
    QSize withMargins(const QSize& contents) const;
    QScrollBar* bar() const;

    const Qt::Orientation mDirection;
    QWidget* mContents;
    QMargins mMargins; // while there is room
    bool mScrolls = false;
};
