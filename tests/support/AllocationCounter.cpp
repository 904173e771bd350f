#include "support/AllocationCounter.h"

#include <cstddef>
#include <cstdlib>

namespace {
thread_local bool counting = false;
thread_local int allocations = 0;
} // namespace

AllocationCounter::AllocationCounter()
{
    allocations = 0;
    counting = true;
}

AllocationCounter::~AllocationCounter()
{
    counting = false;
}

int AllocationCounter::count() const
{
    return allocations;
}

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

const bool AllocationCounter::WORKS = true;

#define COUNTED(function, parameters, ...)                                                                   \
    void* __libc_##function parameters;                                                                      \
    void* function parameters                                                                                \
    {                                                                                                        \
        allocations += counting ? 1 : 0;                                                                     \
        return __libc_##function(__VA_ARGS__);                                                               \
    }
extern "C" {
COUNTED(malloc, (size_t size), size)
COUNTED(calloc, (size_t count, size_t size), count, size)
COUNTED(realloc, (void* memory, size_t size), memory, size)
}

#else

const bool AllocationCounter::WORKS = false;

#endif
