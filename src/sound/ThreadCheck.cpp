#include "sound/ThreadCheck.h"

#ifndef NDEBUG

#include <QCoreApplication>
#include <QThread>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace ThreadCheck {

namespace {

constexpr std::size_t ROLES = 2;

// The address of a thread's own variable stands for the thread.
thread_local char tThread = 0;
thread_local bool tHoldsEngine = false;
thread_local std::array<bool, ROLES> tRoles{};

std::atomic<const char*> theHolder{nullptr};
std::atomic<bool> theStreamRuns{false};
std::array<std::atomic<int>, ROLES> theThreadsInRole{};

void demand(bool isRight, const char* word, const Place& place)
{
    if (isRight)
        return;
    // Not through the log, which writes files and may be what called.
    std::fprintf(stderr, "%s:%u: %s is [%s] and was called on another thread.\n", place.file_name(),
                 static_cast<unsigned>(place.line()), place.function_name(), word);
    std::abort();
}

bool isGui()
{
    const QCoreApplication* application = QCoreApplication::instance();
    return !application || application->thread() == QThread::currentThread();
}

bool isInRole(Role role)
{
    const auto at = static_cast<std::size_t>(role);
    return tRoles[at] || theThreadsInRole[at] == 0;
}

} // namespace

RoleOfThisThread::RoleOfThisThread(Role role)
    : mRole(role)
{
    tRoles[static_cast<std::size_t>(role)] = true;
    ++theThreadsInRole[static_cast<std::size_t>(role)];
}

RoleOfThisThread::~RoleOfThisThread()
{
    tRoles[static_cast<std::size_t>(mRole)] = false;
    --theThreadsInRole[static_cast<std::size_t>(mRole)];
}

void gui(Place place)
{
    demand(isGui(), "gui", place);
}

void audio(Place place)
{
    demand(tHoldsEngine || (!theHolder && !theStreamRuns), "audio", place);
}

void listener(Place place)
{
    demand(isInRole(Role::Listener), "listener", place);
}

void sender(Place place)
{
    demand(isInRole(Role::Sender), "sender", place);
}

void stopped(Place place)
{
    demand(isGui() && !theStreamRuns && (tHoldsEngine || !theHolder), "stopped", place);
}

void engineTaken()
{
    tHoldsEngine = true;
    theHolder = &tThread;
}

void engineGivenBack()
{
    tHoldsEngine = false;
    const char* self = &tThread;
    theHolder.compare_exchange_strong(self, nullptr);
}

void engineLost()
{
    theHolder = nullptr;
    theStreamRuns = false;
}

void setStreamRuns(bool runs)
{
    theStreamRuns = runs;
}

} // namespace ThreadCheck

#endif
