#pragma once

#include <QLabel>
#include <QTimer>

#include <functional>

class QSlider;

/// The value of a slider, beside its handle: while the slider is held by the mouse, and for a moment after
/// the wheel moved it. It takes neither focus nor mouse. The slider's window owns it.
class SliderValueTip : public QLabel
{
    Q_OBJECT

public:
    using Text = std::function<QString()>;
    /// `text` is asked each time that the value is shown. The slider is in its window already.
    SliderValueTip(QSlider* slider, const Text& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reveal();
    void onValueChanged();
    QPoint place() const;

    QSlider* mSlider;
    const Text mText;
    QTimer mAfterWheel;
    bool mIsHeld = false;
};
