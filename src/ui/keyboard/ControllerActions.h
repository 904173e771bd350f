#pragma once

#include "keyboard/ControllerMap.h"
#include "keyboard/TakeOver.h"

#include <QHash>
#include <QObject>

class QAbstractButton;
class QSlider;

/// Does what learned controllers ask for, by the sliders and buttons of the window: what is disabled
/// stays, and a box that waits for an answer waits for these too.
class ControllerActions : public QObject
{
    Q_OBJECT

public:
    /// `window` holds the panel and outlives this object.
    explicit ControllerActions(QWidget* window);

    void setMap(const ControllerMap& map);
    /// Inputs came or went, so controllers may have moved unseen.
    void forgetPlaces();
    /// One control change, in the order of arrival. `value`: 0 to 127. It takes effect when control
    /// returns to the event loop; of many values for one slider in between only the last one does.
    void take(const ControllerSource& source, int value);

private:
    struct Moved
    {
        ControllerSource source;
        int first; // since the last time
        int last;
    };

    void moveSliders();
    void press(const ControllerTarget& target);
    QSlider* sliderOf(const ControllerTarget& target) const;
    QAbstractButton* buttonOf(const ControllerTarget& target) const;

    QWidget* const mWindow;
    ControllerMap mMap;
    QHash<ControllerSource, TakeOver> mTakeOvers;
    QHash<ControllerSource, bool> mDown; // of buttons
    int mWaitingPresses = 0;
    QList<Moved> mMoved; // sliders' controllers, each once
};
