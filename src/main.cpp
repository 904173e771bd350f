#include "app/SingleInstance.h"
#include "app/TuningOrloApplication.h"
#include "ui/window/MainWindow.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    TuningOrloApplication::setNames();
    SingleInstance instance(TuningOrloApplication::configDirectory());
    switch (instance.enter()) {
    case SingleInstance::Entry::First: break;
    case SingleInstance::Entry::Answered:
        std::puts("Brevick Tuning Orlo runs already; its window comes to the front.");
        return 0;
    case SingleInstance::Entry::Unheard: return SingleInstance::tellUnheard(argc, argv);
    }
    TuningOrloApplication application(argc, argv);
    instance.answer(&application, [&application] { SingleInstance::bringToFront(application.mainWindow()); });
    if (!application.init())
        return 1;
    std::puts("Brevick Tuning Orlo is up."); // to whoever started it in a terminal
    std::fflush(stdout);
    const int result = QApplication::exec();
    application.term();
    // A thread that is stuck in a voice still uses the application's members, so they must not be destroyed.
    if (application.isSoundOver())
        std::_Exit(result);
    return result;
}
