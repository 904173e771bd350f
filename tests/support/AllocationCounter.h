#pragma once

/// Counts what the calling thread allocates while it lives, by the C library's functions or by
/// operator new, here or in a library. Works where the C library lets them be replaced.
class AllocationCounter
{
public:
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    int count() const;
    /// False where nothing can be counted: another C library, or a sanitizer that has its own.
    static const bool WORKS;
};
