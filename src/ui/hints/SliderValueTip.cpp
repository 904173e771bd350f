#include "ui/hints/SliderValueTip.h"

#include <QMouseEvent>
#include <QSlider>
#include <QStyle>

namespace {

constexpr int AFTER_WHEEL_MS = 900;
constexpr int GAP = 3;
constexpr int HANDLE = 14; // about, along the slider

} // namespace

SliderValueTip::SliderValueTip(QSlider* slider, const Text& text)
    : QLabel(slider->window())
    , mSlider(slider)
    , mText(text)
{
    setObjectName(QStringLiteral("sliderValueTip"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText); // a patch names its parameters
    hide();
    mAfterWheel.setSingleShot(true);
    mAfterWheel.setInterval(AFTER_WHEEL_MS);
    connect(&mAfterWheel, &QTimer::timeout, this, &QWidget::hide);
    connect(slider, &QSlider::valueChanged, this, &SliderValueTip::onValueChanged);
    slider->installEventFilter(this);
}

bool SliderValueTip::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (!mSlider->isEnabled() || static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
            break;
        mIsHeld = true;
        reveal();
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::Hide:
    case QEvent::EnabledChange:
        mIsHeld = false;
        hide();
        break;
    default: break;
    }
    return QLabel::eventFilter(watched, event);
}

void SliderValueTip::onValueChanged()
{
    if (mIsHeld) {
        reveal();
    } else if (mSlider->underMouse()) {
        reveal();
        mAfterWheel.start();
    }
}

void SliderValueTip::reveal()
{
    mAfterWheel.stop();
    setText(mText());
    adjustSize();
    move(place());
    show();
    raise();
}

/// Right of an upright slider, above a lying one, and within the window.
QPoint SliderValueTip::place() const
{
    const bool upright = mSlider->orientation() == Qt::Vertical;
    const int along = (upright ? mSlider->height() : mSlider->width()) - HANDLE;
    const int at = HANDLE / 2
                   + QStyle::sliderPositionFromValue(mSlider->minimum(), mSlider->maximum(), mSlider->value(),
                                                     along, upright);
    const QPoint wanted = upright ? QPoint(mSlider->width() + GAP, at - height() / 2)
                                  : QPoint(at - width() / 2, -height() - GAP);
    const QPoint corner = mSlider->mapTo(window(), wanted);
    const QRect room = window()->rect().adjusted(0, 0, -width(), -height());
    return {qBound(0, corner.x(), qMax(0, room.right())), qBound(0, corner.y(), qMax(0, room.bottom()))};
}
