#include "support/TestHome.h"

#include "app/TuningOrloApplication.h"

#include <gtest/gtest.h>

/// The tests of the application object itself run inside one, which is not initialised. Words
/// behind "--" become its log filter.
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const TestHome home;
    char filterWord[] = "--OrloPath";
    char* arguments[] = {argv[0], filterWord, nullptr};
    int count = 2;
    TuningOrloApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
