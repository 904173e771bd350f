#include "app/WindowPlace.h"

#include "app/Settings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace WindowPlace {

namespace {

bool isOnAScreen(const QPoint& windowPos)
{
    constexpr QSize reachable(100, 30); // enough of a title bar to drag
    const QList<QScreen*> screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        return screen->availableGeometry().intersects(QRect(windowPos, reachable));
    });
}

} // namespace

void restore(QWidget& window, const Settings& settings)
{
    if (settings.windowSize != QSize(-1, -1))
        window.resize(
            settings.windowSize.boundedTo(QGuiApplication::primaryScreen()->availableVirtualSize()));
    if (settings.windowPos != QPoint(-1, -1) && isOnAScreen(settings.windowPos))
        window.move(settings.windowPos);
    if (settings.windowMaximized)
        window.showMaximized();
}

void remember(const QWidget& window, Settings& settings)
{
    settings.windowMaximized = window.isMaximized();
    if (settings.windowMaximized || window.isFullScreen())
        return;
    settings.windowSize = window.size();
    settings.windowPos = window.pos();
}

} // namespace WindowPlace
