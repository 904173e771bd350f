#pragma once

#include <benchmark/benchmark.h>

#include <string>

// How a benchmark states its baseline, for the table of `scripts/bench`.

/// Both were measured by this benchmark, in turns.
inline void setCosts(benchmark::State& state, double ownSeconds, double baselineSeconds)
{
    state.counters["own_ns"] = ownSeconds * 1e9;
    state.counters["baseline_ns"] = baselineSeconds * 1e9;
    state.counters["of_baseline"] = ownSeconds / baselineSeconds;
}

/// Another benchmark of the same program measures it. With an argument, `name` gets "/<argument>".
inline void setBaseline(benchmark::State& state, const std::string& name)
{
    state.SetLabel("baseline=" + name);
}
inline void setBaseline(benchmark::State& state, const std::string& name, long long argument)
{
    setBaseline(state, name + "/" + std::to_string(argument));
}
