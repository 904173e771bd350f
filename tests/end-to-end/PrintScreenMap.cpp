// Runs the application once and prints where everything lies in its window, as one line of JSON:
// {"circles": {"/3": [x, y], ...}, "grapes": {...}, "widgets": {"volumeSlider": [x, y], ...}}.
// All points are centres, in the window's pixels. The tests press by this map, so it is made by the
// same window on the same screen.

#include "app/TuningOrloApplication.h"
#include "model/OrloBall.h"
#include "ui/MainWindow.h"
#include "ui/OrloBallWidget.h"
#include "ui/OrloView.h"
#include "ui/OrloWidget.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStackedWidget>
#include <QWindow>

#include <cstdio>

namespace {

constexpr qint64 LONGEST_SHOW_MS = 20000;

MainWindow* mainWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<MainWindow*>(widget))
            return window;
    }
    return nullptr;
}

bool waitForExposure(const QWidget* window)
{
    QElapsedTimer timer;
    timer.start();
    while (!window->windowHandle() || !window->windowHandle()->isExposed()) {
        if (timer.elapsed() > LONGEST_SHOW_MS)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    QCoreApplication::processEvents();
    return true;
}

QJsonArray toJson(QPoint point)
{
    return {point.x(), point.y()};
}

QJsonObject balls(const MainWindow* window)
{
    const OrloView* view = window->orloView();
    QJsonObject points;
    for (const OrloBallWidget* ball : view->orloWidget()->balls()) {
        const QPoint inView = view->mapFromScene(ball->scenePos());
        points.insert(ball->ball()->path().parseToString(), toJson(view->viewport()->mapTo(window, inView)));
    }
    return points;
}

QJsonObject widgets(const MainWindow* window)
{
    QJsonObject points;
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        if (widget->isVisible() && !widget->objectName().isEmpty() && !widget->isWindow())
            points.insert(widget->objectName(), toJson(widget->mapTo(window, widget->rect().center())));
    }
    return points;
}

} // namespace

int main(int argc, char** argv)
{
    TuningOrloApplication application(argc, argv);
    if (!application.init())
        return 1;
    MainWindow* window = mainWindow();
    if (!window || !waitForExposure(window))
        return 2;

    QJsonObject map{{QStringLiteral("widgets"), widgets(window)}};
    auto* pages = window->findChild<QStackedWidget*>(QStringLiteral("centralStack"));
    const char* const names[] = {"circles", "grapes"};
    for (int page = 0; page < 2; ++page) {
        pages->setCurrentIndex(page);
        QCoreApplication::processEvents();
        map.insert(QLatin1StringView(names[page]), balls(window));
    }
    application.term();
    std::puts(QJsonDocument(map).toJson(QJsonDocument::Compact).constData());
    return 0;
}
