#pragma once

#include <QObject>

#include <functional>

class QSlider;

/// A slider that is let go while Alt is held returns to its default.
class SliderSnapBack : public QObject
{
public:
    /// `defaultPosition` is asked at each release.
    void add(QSlider* slider, const std::function<int()>& defaultPosition);
    void setAltDown(bool down) { mAltDown = down; }

private:
    bool mAltDown = false;
};
