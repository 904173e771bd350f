#include "app/StyleSheets.h"
#include "support/LogCatcher.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QApplication>

using namespace Qt::StringLiterals;

TEST(StyleSheetsTest, AreAppliedTogetherOrNotAtAll)
{
    const TestHome home;
    char* arguments[] = {nullptr};
    int count = 0;
    QApplication application(count, arguments);
    application.setStyleSheet(QString()); // Qt keeps it from one application to the next
    const QString folder = home.configDir().path();
    const auto expectFailure = [&](const QString& why) {
        const LogCatcher log;
        EXPECT_FALSE(StyleSheets::load(folder));
        EXPECT_TRUE(log.has(QtCriticalMsg, why.arg(folder))) << why.toStdString();
    };
    expectFailure(u"Failed to find style sheet file %1/style.qss."_s);
    home.write(u"style.qss"_s, "QFrame {}");
    expectFailure(u"Failed to find platform-specific style sheet file %1/style_mac.qss."_s);
    home.configDir().mkpath(u"style_mac.qss"_s);
    expectFailure(u"Failed to open file %1/style_mac.qss for reading."_s);
    EXPECT_EQ(application.styleSheet(), QString());
    home.configDir().rmdir(u"style_mac.qss"_s);
    home.write(u"style_mac.qss"_s, "/*\xE4*/");
    EXPECT_TRUE(StyleSheets::load(folder));
    EXPECT_EQ(application.styleSheet(), u"QFrame {}/*\u00E4*/"_s);
}
