#include "ui/harmony/HarmonyDock.h"

#include "app/Accessors.h"
#include "app/Settings.h"
#include "ui/harmony/HarmonyPanel.h"
#include "ui/stacks/OrloLayer.h"

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QScreen>
#include <QStackedWidget>

namespace {

constexpr int FLOATING_HEIGHT = 520;
constexpr int FRAME = 32;                // pixels that the window system may add
constexpr QPoint FLOATING_STEP(-24, 24); // from where it was docked

} // namespace

HarmonyDock::HarmonyDock(QStackedWidget* pages, QWidget* window, QAction* action)
    : QObject(window)
    , mPages(pages)
    , mWindow(window)
    , mAction(action)
    , mPanel(new HarmonyPanel(pages->parentWidget()))
{
    mAction->setCheckable(true);
    for (QObject* watched :
         {static_cast<QObject*>(pages), static_cast<QObject*>(window), static_cast<QObject*>(mPanel)})
        watched->installEventFilter(this);
    connect(pages, &QStackedWidget::currentChanged, this, &HarmonyDock::makeRoom, Qt::QueuedConnection);
    connect(mPanel, &HarmonyPanel::floatClicked, this, &HarmonyDock::toggleFloats);
    connect(mPanel, &HarmonyPanel::closeClicked, this, [this] { setOpen(false); });
    connect(mPanel, &HarmonyPanel::looked, this, &HarmonyDock::makeRoom);
    apply();
}

// ---------------------------------------------------------------- whether and where

bool HarmonyDock::isDocked() const
{
    return !app::settings()->harmonyPanelFloats;
}

bool HarmonyDock::isShown() const
{
    return app::settings()->harmonyPanel && !(mIsTucked && isDocked());
}

void HarmonyDock::toggle()
{
    const bool wasShown = isShown();
    mIsTucked = false;
    setOpen(!wasShown);
}

void HarmonyDock::setOpen(bool open)
{
    app::settings()->harmonyPanel = open;
    apply();
}

void HarmonyDock::setStacksShown(bool shown)
{
    mIsTucked = !shown;
    apply();
}

void HarmonyDock::toggleFloats()
{
    app::settings()->harmonyPanelFloats = isDocked();
    mIsTucked = false;
    apply();
}

void HarmonyDock::apply()
{
    // A window of its own waits for the one that it belongs to.
    const bool shown = isShown() && (isDocked() || mWindow->isVisible());
    if (mPanel->isWindow() && mPanel->isVisible())
        mFloatPlace = mPanel->geometry();
    if (shown && mPanel->isWindow() == isDocked())
        moveBetweenWindows();
    if (shown)
        place();
    mPanel->setVisible(shown);
    if (!shown || !isDocked())
        setMargin(false);
    makeRoom();
    mAction->setChecked(isShown());
}

void HarmonyDock::moveBetweenWindows()
{
    const bool floats = !isDocked();
    if (floats && mFloatPlace.isNull()) {
        const QPoint corner = mPages->mapToGlobal(QPoint(mPages->width() - WIDTH, 0));
        const QRect screen = mWindow->screen()->availableGeometry();
        mFloatPlace = QRect(corner + FLOATING_STEP, QSize(WIDTH, FLOATING_HEIGHT));
        mFloatPlace.setBottom(qMin(mFloatPlace.bottom(), screen.bottom() - FRAME));
    }
    // The keys go on playing whatever is clicked.
    mPanel->setAttribute(Qt::WA_ShowWithoutActivating, floats);
    if (floats)
        mPanel->setParent(mWindow, Qt::Tool | Qt::WindowDoesNotAcceptFocus);
    else
        mPanel->setParent(mPages->parentWidget(), Qt::Widget);
    mPanel->setFloats(floats);
}

void HarmonyDock::place()
{
    if (!isDocked()) {
        mPanel->setGeometry(mFloatPlace);
        return;
    }
    const QSize size(qMin(WIDTH, mPages->width() / 2), mPages->height());
    const QPoint corner = mPages->mapTo(mPanel->parentWidget(), QPoint(mPages->width() - size.width(), 0));
    mPanel->setGeometry(QRect(corner, size));
}

bool HarmonyDock::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (watched == mPages && (type == QEvent::Resize || type == QEvent::Move) && isDocked()) {
        const auto follow = [this] { // after the layout
            if (!isDocked())
                return;
            place();
            setMargin(false);
            makeRoom();
        };
        QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
    } else if (watched == mWindow && type == QEvent::Show && !isDocked()) {
        QMetaObject::invokeMethod(this, &HarmonyDock::apply, Qt::QueuedConnection);
    } else if (watched == mPanel && type == QEvent::Close) {
        if (mPanel->isWindow())
            mFloatPlace = mPanel->geometry();
        // Later, when the end of the program has closed the other window too: that is no wish to close this
        // one.
        const auto close = [this] {
            if (mWindow->isVisible())
                setOpen(false);
        };
        QMetaObject::invokeMethod(this, close, Qt::QueuedConnection);
    } else if (watched == mPanel && mPanel->isWindow()
               && (type == QEvent::KeyPress || type == QEvent::KeyRelease)) {
        return QCoreApplication::sendEvent(
            mWindow, event); // from a window system that gives it the focus all the same
    }
    return QObject::eventFilter(watched, event);
}

// ---------------------------------------------------------------- room on the pages

OrloLayer* HarmonyDock::currentLayer() const
{
    return qobject_cast<OrloLayer*>(mPages->currentWidget());
}

void HarmonyDock::makeRoom()
{
    if (mHasMargin || !mPanel->isVisible() || !isDocked())
        return;
    const OrloLayer* layer = currentLayer();
    if (layer && (!layer->isRightEndFree() || layer->canSpare(WIDTH)))
        setMargin(true);
}

void HarmonyDock::setMargin(bool on)
{
    if (mHasMargin == on)
        return;
    mHasMargin = on;
    for (OrloLayer* layer : mPages->findChildren<OrloLayer*>())
        layer->setRightMargin(on ? WIDTH : 0);
}
