#include "ui/keyboard/ControllerActions.h"

#include "app/Accessors.h"
#include "ui/hints/ControlHints.h"

#include <QAbstractButton>
#include <QApplication>
#include <QSlider>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr int PRESSED = 64;
constexpr int MOST_WAITING = 16; // presses between two turns of the event loop

QString sliderName(const ControllerTarget& target)
{
    switch (target.kind) {
    case ControllerTarget::Macro: return QStringLiteral("macroSlider%1").arg(target.number);
    case ControllerTarget::Volume: return QStringLiteral("volumeSlider");
    case ControllerTarget::Glissando: return QStringLiteral("glissSliderBig");
    case ControllerTarget::FineGlissando: return QStringLiteral("glissFineSliderBig");
    default: return {};
    }
}

QString buttonName(const ControllerTarget& target)
{
    switch (target.kind) {
    case ControllerTarget::Chord:
        return QStringLiteral("chordButton_%1").arg(target.number, 2, 10, QLatin1Char('0'));
    case ControllerTarget::PatchUp: return QStringLiteral("patchIncButton");
    case ControllerTarget::PatchDown: return QStringLiteral("patchDecButton");
    default: return {};
    }
}

bool isTransposition(const ControllerTarget& target)
{
    return target.kind == ControllerTarget::TransposeUp || target.kind == ControllerTarget::TransposeDown;
}

} // namespace

ControllerActions::ControllerActions(QWidget* window)
    : QObject(window)
    , mWindow(window)
{
}

void ControllerActions::setMap(const ControllerMap& map)
{
    mMap = map;
    mTakeOvers.clear();
    mDown.clear();
    mMoved.clear();
}

void ControllerActions::forgetPlaces()
{
    mTakeOvers.clear();
    mDown.clear();
}

void ControllerActions::take(const ControllerSource& source, int value)
{
    const ControllerTarget target = mMap.targetOf(source);
    if (target.isNone())
        return;
    if (!target.isSlider()) {
        const bool wasDown = mDown.value(source);
        mDown[source] = value >= PRESSED;
        if (value < PRESSED || wasDown || mWaitingPresses == MOST_WAITING)
            return;
        // Not at once: the press may open a box, which returns only when it is closed.
        ++mWaitingPresses;
        const auto pressLater = [this, target] {
            --mWaitingPresses;
            press(target);
        };
        QMetaObject::invokeMethod(this, pressLater, Qt::QueuedConnection);
        return;
    }
    if (mMoved.isEmpty())
        QMetaObject::invokeMethod(this, &ControllerActions::moveSliders, Qt::QueuedConnection);
    const auto known = std::find_if(mMoved.begin(), mMoved.end(),
                                    [&source](const Moved& moved) { return moved.source == source; });
    if (known == mMoved.end())
        mMoved.append({source, value, value});
    else
        known->last = value;
}

void ControllerActions::moveSliders()
{
    const auto now = TakeOver::Time::clock::now();
    for (const auto& [source, first, last] : std::exchange(mMoved, {})) {
        const ControllerTarget target = mMap.targetOf(source);
        QSlider* slider = sliderOf(target);
        const bool isFree = slider && slider->isEnabled() && !slider->isSliderDown();
        if (!isFree || QApplication::activeModalWidget()) {
            mTakeOvers.remove(source); // what it does meanwhile is not seen, so it takes over anew
            continue;
        }
        const TakeOver::Slider stands{slider->minimum(), slider->maximum(), slider->value(),
                                      target.isCentred()};
        TakeOver& takeOver = mTakeOvers[source];
        takeOver.move(first, stands, now); // or a quick turn would pass the slider unseen
        if (const std::optional<int> position = takeOver.move(last, stands, now))
            slider->setValue(*position);
    }
}

void ControllerActions::press(const ControllerTarget& target)
{
    QAbstractButton* button = buttonOf(target);
    if (!button || QApplication::activeModalWidget())
        return;
    if (!button->isEnabled() && isTransposition(target))
        app::say(hints::text("transposeArrowGone"));
    button->click();
}

QSlider* ControllerActions::sliderOf(const ControllerTarget& target) const
{
    return mWindow->findChild<QSlider*>(sliderName(target));
}

/// The arrows of the transposition have no names but the accessible ones.
QAbstractButton* ControllerActions::buttonOf(const ControllerTarget& target) const
{
    if (!isTransposition(target))
        return mWindow->findChild<QAbstractButton*>(buttonName(target));
    const QList<QAbstractButton*> buttons = mWindow->findChildren<QAbstractButton*>();
    const auto found = std::find_if(buttons.begin(), buttons.end(), [wanted = target.title()](auto* button) {
        return button->accessibleName() == wanted;
    });
    return found == buttons.end() ? nullptr : *found;
}
