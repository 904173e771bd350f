#include "Baseline.h"
#include "QuietLog.h"

#include "model/Orlo.h"
#include "model/OrloBall.h"
#include "model/OrloPath.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <unordered_map>

// The cost of the tuning model. The baseline of each benchmark is the least that the same amount of work
// could cost.

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Mean seconds of one call, over at least 50 ms.
template <class Work>
double meanSeconds(Work&& work)
{
    work(); // warm
    int calls = 0;
    const auto start = Clock::now();
    double elapsed = 0;
    while (elapsed < 0.05) {
        work();
        ++calls;
        elapsed = Seconds(Clock::now() - start).count();
    }
    return elapsed / calls;
}

/// Runs the loop and sets its cost beside the baseline's.
template <class Work, class Baseline>
void measure(benchmark::State& state, qsizetype count, Work&& work, Baseline&& baseline)
{
    const double base = meanSeconds(baseline);
    const auto start = Clock::now();
    for ([[maybe_unused]] auto _ : state)
        work();
    const double own = Seconds(Clock::now() - start).count() / static_cast<double>(state.iterations());
    setCosts(state, own, base);
    state.counters["ns_each"] = own * 1e9 / static_cast<double>(count);
}

constexpr int STEPS[] = {2,   -2, 3,   -3, 5,   -5, 7,   -7, 11,  -11, 13,
                         -13, 17, -17, 19, -19, 23, -23, 29, -29, 31,  -31};
constexpr int DEFAULT_BALLS = 361;

/// Adds balls level by level until there are `count`. A path's steps keep the order of the table and
/// never turn back, so that no two balls have one pitch.
void grow(Orlo& orlo, qsizetype count)
{
    struct Node
    {
        OrloBall* ball;
        size_t from; // first step that a child may have
    };
    QList<Node> nodes{{orlo.rootBall(), 0}};
    for (qsizetype at = 0; nodes.size() < count; ++at) {
        const Node node = nodes.at(at);
        for (size_t i = node.from; i < std::size(STEPS) && nodes.size() < count; ++i) {
            const int last = node.ball->path().length() > 0 ? node.ball->path().toList().last() : 0;
            if (STEPS[i] == -last)
                continue;
            OrloPath path(node.ball->path());
            path.addLeaf(static_cast<signed char>(STEPS[i]));
            auto* child = new OrloBall(path, Qt::white, node.ball);
            node.ball->addChild(STEPS[i], child);
            nodes.append({child, i});
        }
    }
    orlo.buildBallMap();
}

std::unique_ptr<Orlo> latticeOf(benchmark::State& state)
{
    auto orlo = std::make_unique<Orlo>();
    if (state.range(0) == DEFAULT_BALLS)
        orlo->initWithDefaults();
    else
        grow(*orlo, state.range(0));
    if (orlo->ballMap().size() != state.range(0))
        state.SkipWithError("the lattice has not as many pitches as it should");
    return orlo;
}

QList<OrloPath> defaultPaths()
{
    Orlo orlo;
    orlo.initWithDefaults();
    QList<OrloPath> paths;
    for (const OrloBall* ball : orlo.ballMap())
        paths.append(ball->path());
    return paths;
}

/// Against inserting as many ready keys into a hash of the standard library. The hash of a ratio
/// gathers small fractions close together, so both this and the look-up grow faster than the lattice
/// once that is many times the default one.
void rebuildBallMap(benchmark::State& state)
{
    const auto orlo = latticeOf(state);
    const qsizetype count = orlo->ballMap().size();
    measure(
        state, count, [&] { orlo->buildBallMap(); },
        [count] {
            std::unordered_map<qsizetype, qsizetype> map;
            for (qsizetype i = 0; i < count; ++i)
                map.insert_or_assign(i, i);
            benchmark::DoNotOptimize(map.size());
        });
    state.SetComplexityN(state.range(0));
}
BENCHMARK(rebuildBallMap)
    ->Arg(DEFAULT_BALLS)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

/// Against looking up as many integers in a QHash.
void lookUpByRatio(benchmark::State& state)
{
    const auto orlo = latticeOf(state);
    const QList<OrloRatio> ratios = orlo->ballMap().keys();
    QHash<qsizetype, qsizetype> plain;
    for (qsizetype i = 0; i < ratios.size(); ++i)
        plain.insert(i, i);
    measure(
        state, ratios.size(),
        [&] {
            for (const OrloRatio& ratio : ratios)
                benchmark::DoNotOptimize(orlo->ballFromRatio(ratio));
        },
        [&] {
            for (qsizetype i = 0; i < ratios.size(); ++i)
                benchmark::DoNotOptimize(plain.value(i));
        });
    state.SetComplexityN(state.range(0));
}
BENCHMARK(lookUpByRatio)
    ->Arg(DEFAULT_BALLS)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

/// All paths of the default lattice, against splitting the same texts.
void parsePaths(benchmark::State& state)
{
    QStringList texts;
    for (const OrloPath& path : defaultPaths())
        texts.append(path.toString());
    measure(
        state, texts.size(),
        [&] {
            for (const QString& text : texts)
                benchmark::DoNotOptimize(OrloPath(text).isValid());
        },
        [&] {
            for (const QString& text : texts)
                benchmark::DoNotOptimize(text.split(u'/', Qt::SkipEmptyParts).size());
        });
}
BENCHMARK(parsePaths)->Unit(benchmark::kMicrosecond);

/// All paths of the default lattice, against joining the ready texts of their steps.
void printPaths(benchmark::State& state)
{
    const QList<OrloPath> paths = defaultPaths();
    QList<QStringList> steps;
    for (const OrloPath& path : paths)
        steps.append(path.toString().split(u'/'));
    measure(
        state, paths.size(),
        [&] {
            for (const OrloPath& path : paths)
                benchmark::DoNotOptimize(path.toString().size());
        },
        [&] {
            for (const QStringList& each : steps)
                benchmark::DoNotOptimize(each.join(u'/').size());
        });
}
BENCHMARK(printPaths)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    installQuietLog();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
