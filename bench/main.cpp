// orvo_bench: the time per element of every built catalogue function at 1024
// elements (input sets taken in turn) and at 2^20 elements, with its peers
// over the same arrays in the same run.  Google Benchmark drives the run
// (filters, repetitions, console and JSON output); the time of one
// benchmark is the shared throughput measure, the one orvo-report uses.
//
//   orvo_bench [--markdown=FILE] [--rounds=N] [Google Benchmark options]
//
// --markdown writes the performance document (per function and level: ns
// per element, ratios to the peers, the goals and whether they hold).  With
// --benchmark_repetitions the fastest repetition of each benchmark counts;
// --benchmark_enable_random_interleaving spreads them over the run, so that
// a disturbance of the machine hits orvo and its peers alike.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "bench/harness.h"
#include "support/throughput.h"

using namespace orvo;
using namespace orvo::bench;

namespace {

Results results;
int rounds = 10;
constexpr double kRoundSeconds = 4e-3;

// Input sets of a timing run: several at the short length, one at the long.
test::TimingArrays arraysFor(const CatalogueEntry& e, int len) {
    return test::TimingArrays(e, len, len <= kShort ? test::rotatingSets(e, len) : 1);
}

// Of repeated runs the fastest counts, as of the rounds within a run.
void keep(const std::string& key, double ns) {
    auto [it, fresh] = results.emplace(key, ns);
    if (!fresh && ns < it->second) it->second = ns;
}

template <class Measure> void timed(benchmark::State& state, const std::string& key, int len, Measure&& measure) {
    double ns = 0;
    for (auto _ : state) {
        ns = measure().nsPerElement;
        state.SetIterationTime(ns * len * 1e-9);
    }
    state.counters["ns/el"] = ns;
    keep(key, ns);
}

test::Timing timePeer(const Peer& p, test::TimingArrays& a, int roundCount) {
    return test::timeOver(a, [&](const test::CallArrays& c, int n) { p.loop(p.function, c, n); }, roundCount,
                          kRoundSeconds);
}

// A goal's function and peer in alternate rounds over the same arrays: a
// busy machine (the other processor may share this one's core) slows both
// alike, so their ratio holds where separate runs would drift apart.
void timedPair(benchmark::State& state, const CatalogueEntry& e, void* f, const Peer& p, int len) {
    test::TimingArrays a = arraysFor(e, len);
    double mine = 1e300, theirs = 1e300;
    for (auto _ : state) {
        for (int r = 0; r < rounds; ++r) {
            mine = std::min(mine, test::timeFunction(e, f, a, 1, kRoundSeconds).nsPerElement);
            theirs = std::min(theirs, timePeer(p, a, 1).nsPerElement);
        }
        state.SetIterationTime(mine * len * 1e-9);
    }
    state.counters["ns/el"] = mine;
    state.counters["peer ns/el"] = theirs;
    keep(goalKey(e, false), mine);
    keep(goalKey(e, true), theirs);
}

void registerAll(const std::vector<Group>& groups) {
    for (const Group& g : groups) {
        for (int len : {kShort, kLong}) {
            for (const CatalogueEntry* e : g.functions) {
                void* f = test::findFunction(e->name);
                if (!f) continue;
                const std::string key = functionKey(*e, len);
                benchmark::RegisterBenchmark(key.c_str(), [e, f, key, len](benchmark::State& s) {
                    test::TimingArrays a = arraysFor(*e, len);
                    timed(s, key, len, [&] { return test::timeFunction(*e, f, a, rounds, kRoundSeconds); });
                })->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);
            }
            // Peers run over arrays laid out for the group's first function.
            const CatalogueEntry* layout = g.functions.front();
            for (const Peer& p : g.peers) {
                const std::string key = peerKey(g, p, len);
                benchmark::RegisterBenchmark(key.c_str(), [layout, p, key, len](benchmark::State& s) {
                    test::TimingArrays a = arraysFor(*layout, len);
                    timed(s, key, len, [&] { return timePeer(p, a, rounds); });
                })->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);
            }
        }
        for (const CatalogueEntry* e : g.functions) {
            const std::optional<Goal> goal = goalOf(*e, g);
            void* f = test::findFunction(e->name);
            if (!goal || !f) continue;
            const Peer p = *goal->peer;
            const int len = goal->len;
            benchmark::RegisterBenchmark(goalKey(*e, false).c_str(), [e, f, p, len](benchmark::State& s) {
                timedPair(s, *e, f, p, len);
            })->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::string markdown;
    std::vector<char*> rest;
    int repetitions = 1;
    for (int i = 0; i < argc; ++i) {
        if (std::strncmp(argv[i], "--benchmark_repetitions=", 24) == 0) repetitions = std::max(1, std::atoi(argv[i] + 24));
        if (std::strncmp(argv[i], "--markdown=", 11) == 0) markdown = argv[i] + 11;
        else if (std::strncmp(argv[i], "--rounds=", 9) == 0) rounds = std::max(1, std::atoi(argv[i] + 9));
        else rest.push_back(argv[i]);
    }
    int restCount = static_cast<int>(rest.size());
    benchmark::Initialize(&restCount, rest.data());
    if (benchmark::ReportUnrecognizedArguments(restCount, rest.data())) return 2;

    const std::vector<Group> groups = builtGroups();
    registerAll(groups);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    if (!markdown.empty()) {
        std::FILE* out = std::fopen(markdown.c_str(), "w");
        if (!out) {
            std::fprintf(stderr, "orvo_bench: cannot write %s\n", markdown.c_str());
            return 1;
        }
        writePerformance(out, groups, results, rounds, repetitions);
        std::fclose(out);
    }
    return 0;
}
