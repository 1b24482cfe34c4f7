// Throughput of a call over an array: the time per element of the fastest
// of several rounds, each round long enough for the clock.  Shared by the
// report and the benchmarks so that both measure the same way.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace orvo::test {

struct Timing {
    double nsPerElement = 0;
    long calls = 0;  // calls made in all rounds
};

// `run()` processes `elements` elements once.  The call count of a round is
// doubled until a round takes at least `roundSeconds`; then `rounds` rounds
// run and the fastest counts (the least disturbed by the rest of the
// machine).
template <class Run> Timing timeCalls(Run&& run, long elements, int rounds = 5, double roundSeconds = 2e-3) {
    using Clock = std::chrono::steady_clock;
    run();  // warm caches and the branch predictor
    long perRound = 1;
    for (;;) {
        const auto t0 = Clock::now();
        for (long i = 0; i < perRound; ++i) run();
        const double s = std::chrono::duration<double>(Clock::now() - t0).count();
        if (s >= roundSeconds || perRound >= (1L << 24)) break;
        perRound *= 2;
    }
    Timing t;
    double best = 1e300;
    for (int r = 0; r < rounds; ++r) {
        const auto t0 = Clock::now();
        for (long i = 0; i < perRound; ++i) run();
        const double s = std::chrono::duration<double>(Clock::now() - t0).count();
        best = std::min(best, s);
        t.calls += perRound;
    }
    t.nsPerElement = best * 1e9 / (static_cast<double>(perRound) * static_cast<double>(elements));
    return t;
}

}  // namespace orvo::test
