#include "app/TuningOrloApplication.h"

#include <cstdlib>

int main(int argc, char** argv)
{
    TuningOrloApplication application(argc, argv);
    if (!application.init())
        return 1;
    const int result = QApplication::exec();
    application.term();
    // A thread that is stuck in a voice still uses the application's members, so they must not be destroyed.
    if (application.isSoundOver())
        std::_Exit(result);
    return result;
}
