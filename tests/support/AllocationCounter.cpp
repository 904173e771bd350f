#include "support/AllocationCounter.h"

#include <cstddef>
#include <cstdlib>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define COUNTS_ALLOCATIONS
#endif

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

bool AllocationCounter::works()
{
#ifdef COUNTS_ALLOCATIONS
    return true;
#else
    return false;
#endif
}

#ifdef COUNTS_ALLOCATIONS

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);

void* malloc(size_t size)
{
    allocations += counting ? 1 : 0;
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    allocations += counting ? 1 : 0;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    allocations += counting ? 1 : 0;
    return __libc_realloc(memory, size);
}
}

#endif
