#include "app/TerminationSignals.h"

#include <QApplication>
#include <QDebug>
#include <QSocketNotifier>
#include <QWidget>

#include <csignal>
#include <unistd.h>

namespace {

constexpr int SIGNALS[] = {SIGTERM, SIGINT, SIGHUP};

int thePipe[2] = {-1, -1};

// Hardly any call is allowed in a signal handler, so it only wakes the event loop.
void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = write(thePipe[1], &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (pipe(thePipe) != 0) {
        qWarning() << "A signal from the system will end the program without saving.";
        return;
    }
    mNotifier = std::make_unique<QSocketNotifier>(thePipe[0], QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::quit);
    for (const int signal : SIGNALS)
        std::signal(signal, &onSignal);
}

TerminationSignals::~TerminationSignals()
{
    if (!mNotifier)
        return;
    for (const int signal : SIGNALS)
        std::signal(signal, SIG_DFL);
    mNotifier.reset();
    close(thePipe[0]);
    close(thePipe[1]);
}

void TerminationSignals::quit()
{
    char byte = 0;
    [[maybe_unused]] const auto taken = read(thePipe[0], &byte, 1);
    qWarning() << "The system asks the program to end.";
    mAsked = true;
    if (QWidget* box = QApplication::activeModalWidget())
        box->close();
    QCoreApplication::quit();
}
