#include "app/WindowPlace.h"
#include "app/Settings.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QWidget>

// The one screen is of 800 by 800.
TEST(WindowPlaceTest, IsRestoredWithinTheScreensAndRemembered)
{
    const TestHome home;
    char* arguments[] = {nullptr};
    int count = 0;
    const QApplication application(count, arguments);
    const QSize size(300, 200), unknownSize(-1, -1); // what the window has by itself
    const QPoint pos(10, 20), unknownPos(-1, -1);
    const std::tuple<QSize, QPoint, QSize, QPoint> rows[] = {
        {unknownSize, unknownPos, size, pos},
        {{500, 400}, {40, 30}, {500, 400}, {40, 30}},
        {unknownSize, {-1, 30}, size, {-1, 30}},
        {{9000, 400}, {0, 0}, {800, 400}, {0, 0}},
        {{500, 9000}, {799, 799}, {500, 800}, {799, 799}},
        {{500, 400}, {800, 0}, {500, 400}, pos}, // on a screen that is gone
        {{500, 400}, {0, 800}, {500, 400}, pos},
        // Of the title bar, 100 by 30, a pixel must be on a screen.
        {{500, 400}, {-99, -29}, {500, 400}, {-99, -29}},
        {{500, 400}, {-100, 0}, {500, 400}, pos},
        {{500, 400}, {0, -30}, {500, 400}, pos},
    };
    for (const auto& [storedSize, storedPos, expectedSize, expectedPos] : rows) {
        SCOPED_TRACE(testing::Message()
                     << storedSize.width() << ' ' << storedPos.x() << ' ' << storedPos.y());
        QWidget window;
        window.resize(size);
        window.move(pos);
        window.show();
        Settings settings;
        settings.windowSize = storedSize;
        settings.windowPos = storedPos;
        WindowPlace::restore(window, settings);
        EXPECT_FALSE(window.isMaximized());
        EXPECT_EQ(window.size(), expectedSize);
        EXPECT_EQ(window.pos(), expectedPos);
        WindowPlace::remember(window, settings);
        EXPECT_FALSE(settings.windowMaximized);
        EXPECT_EQ(settings.windowSize, expectedSize);
        EXPECT_EQ(settings.windowPos, expectedPos);

        settings.windowMaximized = true;
        WindowPlace::restore(window, settings);
        EXPECT_TRUE(window.isMaximized());
        QCoreApplication::processEvents();
        EXPECT_NE(window.size(), expectedSize);
        settings.windowMaximized = false;
        WindowPlace::remember(window, settings);
        EXPECT_TRUE(settings.windowMaximized);
        window.showFullScreen();
        QCoreApplication::processEvents();
        WindowPlace::remember(window, settings);
        EXPECT_EQ(settings.windowSize, expectedSize) << "as it was before";
        EXPECT_EQ(settings.windowPos, expectedPos);
    }
}
