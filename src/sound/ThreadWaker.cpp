#include "sound/ThreadWaker.h"

#include <QDebug>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/eventfd.h>
#endif

ThreadWaker::ThreadWaker()
{
#ifdef Q_OS_LINUX
    mReadEnd = mWriteEnd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
#else
    int ends[2];
    if (pipe(ends) == 0) {
        for (const int end : ends) {
            fcntl(end, F_SETFL, O_NONBLOCK);
            fcntl(end, F_SETFD, FD_CLOEXEC);
        }
        mReadEnd = ends[0];
        mWriteEnd = ends[1];
    }
#endif
    if (mReadEnd < 0) {
        qCritical() << "No thread can be woken: the system has no descriptors left.";
        return;
    }
    mNotifier = std::make_unique<QSocketNotifier>(mReadEnd, QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this, &ThreadWaker::woken);
}

ThreadWaker::~ThreadWaker()
{
    mNotifier.reset();
    if (mWriteEnd != mReadEnd)
        close(mWriteEnd);
    if (mReadEnd >= 0)
        close(mReadEnd);
}

void ThreadWaker::wake()
{
    if (mPending.exchange(true, std::memory_order_acq_rel))
        return;
    const std::uint64_t one = 1; // an event descriptor takes eight bytes
    [[maybe_unused]] const auto written = write(mWriteEnd, &one, sizeof(one));
}

void ThreadWaker::answer()
{
    std::uint64_t taken = 0;
    [[maybe_unused]] const auto bytes = read(mReadEnd, &taken, sizeof(taken));
    mPending.exchange(false, std::memory_order_acq_rel);
}
