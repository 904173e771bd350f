#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo"));
    const TestHome home; // no test touches the user's own files
    return RUN_ALL_TESTS();
}
