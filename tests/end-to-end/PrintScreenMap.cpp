// Runs the application once and prints where everything lies in its window, as one line of JSON:
// {"circles": {"/3": [x, y], ...}, "grapes": {...}, "widgets": {"volumeSlider": [x, y], ...}}.
// All points are centres, in the window's pixels. The tests press by this map, so it is made by the
// same window on the same screen.

#include "app/TuningOrloApplication.h"
#include "model/OrloBall.h"
#include "ui/lattice/OrloBallWidget.h"
#include "ui/lattice/OrloView.h"
#include "ui/lattice/OrloWidget.h"
#include "ui/window/MainWindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStackedWidget>
#include <QTest>

#include <cstdio>

namespace {

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
    MainWindow* window = application.mainWindow();
    if (!window || !QTest::qWaitForWindowExposed(window, 20000))
        return 2;
    QCoreApplication::processEvents();

    QJsonObject map{{QStringLiteral("widgets"), widgets(window)}};
    auto* pages = window->findChild<QStackedWidget*>(QStringLiteral("centralStack"));
    for (const auto& [page, name] : {std::pair{0, "circles"}, {1, "grapes"}}) {
        pages->setCurrentIndex(page);
        QCoreApplication::processEvents();
        map.insert(QLatin1StringView(name), balls(window));
    }
    application.term();
    std::printf("\n%s\n", QJsonDocument(map).toJson(QJsonDocument::Compact).constData());
    return 0;
}
