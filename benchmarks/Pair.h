#pragma once

#include "Baseline.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

/// Times two ways of the same work, turn and turn about.
class Pair
{
public:
    template <class Ours, class Bare>
    void measure(Ours&& ours, Bare&& bare)
    {
        measure([](bool) {}, ours, bare);
    }
    /// Before each of them `prepare` is called with whether it is ours, and not timed.
    template <class Prepare, class Ours, class Bare>
    void measure(Prepare&& prepare, Ours&& ours, Bare&& bare)
    {
        const bool oursFirst = mOurs.size() % 2 == 0; // neither always finds the warmer cache
        for (const bool isOurs : {oursFirst, !oursFirst}) {
            prepare(isOurs);
            if (isOurs)
                mOurs.push_back(timed(ours));
            else
                mBare.push_back(timed(bare));
        }
    }

    /// Nanoseconds.
    double lastOfOurs() const { return mOurs.back(); }

    /// Of one call, when so many were timed together.
    void report(benchmark::State& state, int calls = 1)
    {
        setCosts(state, 1e-9 * median(mOurs) / calls, 1e-9 * median(mBare) / calls);
    }

private:
    template <class Work>
    static double timed(Work&& work)
    {
        const auto begin = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
    }

    static double median(std::vector<double>& values)
    {
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }

    std::vector<double> mOurs;
    std::vector<double> mBare;
};
