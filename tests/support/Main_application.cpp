#include <gtest/gtest.h>

#include <QCoreApplication>

/// Each test makes the application object of its own.
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setApplicationName(QStringLiteral("Brevick Tuning Orlo")); // names the test's home
    return RUN_ALL_TESTS();
}
