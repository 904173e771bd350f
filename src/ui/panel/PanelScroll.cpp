#include "ui/panel/PanelScroll.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

constexpr QSize LEAST(320, 160); // along the direction, the other is the contents' own

} // namespace

PanelScroll::PanelScroll(QFrame* frame, Qt::Orientation direction)
    : QScrollArea(frame)
    , mDirection(direction)
    , mContents(new QWidget)
{
    mContents->setLayout(frame->layout()); // with its widgets
    mMargins = mContents->layout()->contentsMargins();
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus); // the arrow keys are the window's
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(mContents);
    auto* layout = new QHBoxLayout(frame);
    layout->setContentsMargins(QMargins());
    layout->addWidget(this);
}

QSize PanelScroll::sizeHint() const
{
    return withMargins(mContents->layout()->sizeHint());
}

QSize PanelScroll::minimumSizeHint() const
{
    const QSize contents = withMargins(mContents->layout()->minimumSize());
    return mDirection == Qt::Horizontal ? QSize(qMin(contents.width(), LEAST.width()), contents.height())
                                        : QSize(contents.width(), qMin(contents.height(), LEAST.height()));
}

/// The size with the margins as they are while there is room.
QSize PanelScroll::withMargins(const QSize& contents) const
{
    return contents.shrunkBy(mContents->layout()->contentsMargins()).grownBy(mMargins);
}

QScrollBar* PanelScroll::bar() const
{
    return mDirection == Qt::Horizontal ? horizontalScrollBar() : verticalScrollBar();
}

/// Along the direction nothing depends on whether the bar is shown, so this comes to rest.
void PanelScroll::adapt()
{
    const QSize least = mContents->layout()->minimumSize();
    const bool scrolls = mDirection == Qt::Horizontal ? least.width() > width() : least.height() > height();
    if (scrolls == mScrolls)
        return;
    mScrolls = scrolls;
    QMargins margins = mMargins;
    if (scrolls) {
        const int half =
            (mDirection == Qt::Horizontal ? bar()->sizeHint().height() : bar()->sizeHint().width()) / 2;
        margins -= mDirection == Qt::Horizontal ? QMargins(0, half, 0, half) : QMargins(half, 0, half, 0);
    }
    mContents->layout()->setContentsMargins(margins);
    const Qt::ScrollBarPolicy policy = scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    if (mDirection == Qt::Horizontal)
        setHorizontalScrollBarPolicy(policy);
    else
        setVerticalScrollBarPolicy(policy);
}

bool PanelScroll::eventFilter(QObject* watched, QEvent* event)
{
    const bool done = QScrollArea::eventFilter(watched, event);
    if (watched == mContents && event->type() == QEvent::LayoutRequest) {
        adapt();
        updateGeometry();
    }
    return done;
}

void PanelScroll::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    adapt();
}

void PanelScroll::wheelEvent(QWheelEvent* event)
{
    QCoreApplication::sendEvent(bar(), event); // an ordinary wheel turns a horizontal bar too
}
