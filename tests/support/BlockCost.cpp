#include "support/BlockCost.h"

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include <algorithm>
#include <array>
#include <csignal>
#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

thread_local bool counting = false;
thread_local int allocations = 0;

struct Locks
{
    std::array<const void*, 16> taken; // no vector, which would allocate
    std::size_t count;

    void add(const void* lock)
    {
        const auto end = taken.begin() + static_cast<std::ptrdiff_t>(count);
        if (count < taken.size() && std::find(taken.begin(), end, lock) == end)
            taken[count++] = lock;
    }
};
thread_local Locks locks{};

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

constexpr long MARK = SYS_getppid; // which nothing under test calls

struct Counts
{
    int allocations;
    Locks locks;
};

[[noreturn]] void beTraced(const std::function<void()>& prepare, const std::function<void()>& work, int pipe)
{
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        _exit(1);
    raise(SIGSTOP);
    prepare();
    allocations = 0;
    locks.count = 0;
    counting = true;
    syscall(MARK);
    work();
    syscall(MARK);
    counting = false;
    const Counts counts{allocations, locks};
    const bool told = write(pipe, &counts, sizeof(counts)) == sizeof(counts);
    _exit(told ? 0 : 1);
}

/// The system calls of the child between its two marks.
std::vector<long> trace(pid_t child)
{
    std::vector<long> calls;
    bool inside = false;
    int status = 0;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 && waitpid(child, &status, 0) == child
           && WIFSTOPPED(status)) {
        __ptrace_syscall_info info{};
        if (WSTOPSIG(status) != (SIGTRAP | 0x80)
            || ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof(info), &info) <= 0
            || info.op != PTRACE_SYSCALL_INFO_ENTRY)
            continue;
        const auto number = static_cast<long>(info.entry.nr);
        if (number == MARK)
            inside = !inside;
        else if (inside)
            calls.push_back(number);
    }
    return calls;
}

} // namespace

#define COUNTED_ALLOCATION(function, parameters, ...)                                                        \
    void* __libc_##function parameters;                                                                      \
    void* function parameters                                                                                \
    {                                                                                                        \
        allocations += counting ? 1 : 0;                                                                     \
        return __libc_##function(__VA_ARGS__);                                                               \
    }
extern "C" {
COUNTED_ALLOCATION(malloc, (size_t size), size)
COUNTED_ALLOCATION(calloc, (size_t count, size_t size), count, size)
COUNTED_ALLOCATION(realloc, (void* memory, size_t size), memory, size)
}

#define COUNTED(function, type)                                                                              \
    extern "C" int function(type* object)                                                                    \
    {                                                                                                        \
        static auto* const real = next<int(type*)>(#function);                                               \
        if (counting)                                                                                        \
            locks.add(object);                                                                               \
        return real(object);                                                                                 \
    }
COUNTED(pthread_mutex_lock, pthread_mutex_t)
COUNTED(pthread_rwlock_rdlock, pthread_rwlock_t)
COUNTED(pthread_rwlock_wrlock, pthread_rwlock_t)
COUNTED(sem_wait, sem_t)

BlockCost BlockCost::of(const std::function<void()>& prepare, const std::function<void()>& work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {.allocations = -1, .locks = {}, .systemCalls = {}};
    const pid_t child = fork();
    if (child == 0)
        beTraced(prepare, work, ends[1]);
    close(ends[1]);
    std::vector<long> calls = trace(child);
    Counts counts{.allocations = -1, .locks = {}}; // of a child that came to no end
    [[maybe_unused]] const auto bytes = read(ends[0], &counts, sizeof(counts));
    close(ends[0]);
    const auto firstLock = counts.locks.taken.begin();
    return {.allocations = counts.allocations,
            .locks = std::vector(firstLock, firstLock + static_cast<std::ptrdiff_t>(counts.locks.count)),
            .systemCalls = std::move(calls)};
}

bool BlockCost::works()
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const BlockCost cost = of([] {},
                              [&] {
                                  ::operator delete(::operator new(100));
                                  pthread_mutex_lock(&mutex);
                                  getuid();
                              });
    return cost.allocations == 1 && cost.locks == std::vector<const void*>{&mutex}
           && cost.systemCalls == std::vector<long>{SYS_getuid};
}

#else

BlockCost BlockCost::of(const std::function<void()>&, const std::function<void()>&)
{
    return {};
}

bool BlockCost::works()
{
    return false;
}

#endif
