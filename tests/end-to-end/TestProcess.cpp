#include "end-to-end/TestProcess.h"

#include <sys/prctl.h>

TestProcess::TestProcess()
{
    setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    setStandardOutputFile(nullDevice());
    setStandardErrorFile(nullDevice());
}

TestProcess::~TestProcess()
{
    if (!isRunning())
        return;
    thaw();
    terminate();
    if (!waitForFinished(5000))
        killNow();
}

void TestProcess::send(int signal) const
{
    if (isRunning()) // process 0 would be the test's own group
        ::kill(static_cast<pid_t>(processId()), signal);
}

void TestProcess::killNow()
{
    kill();
    waitForFinished(5000);
}
