#pragma once

#include <functional>
#include <vector>

/// What a piece of work asks of the C library and of the system: what the audio thread must not do.
/// It runs in a child process that is traced, so this process keeps its state, and no call to the
/// system escapes, whoever makes it.
struct BlockCost
{
    int allocations = 0;
    std::vector<const void*> locks; // of the C library that were taken, free or not; each once
    std::vector<long> systemCalls;

    /// Costs of `work`, once `prepare` has run in the same child.
    static BlockCost of(const std::function<void()>& prepare, const std::function<void()>& work);
    /// False where nothing can be counted: another system, a sanitizer, or no leave to trace.
    static bool works();
};
