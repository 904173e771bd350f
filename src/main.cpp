#include "app/TuningOrloApplication.h"

int main(int argc, char** argv)
{
    TuningOrloApplication application(argc, argv);
    if (!application.init())
        return 1;
    const int result = QApplication::exec();
    application.term();
    return result;
}
