// Threads: several threads, each under its own MXCSR state and x87
// precision, call every built function at the same time on shared
// read-only inputs.  Each must get the bits the same call gives alone under
// the same state, and its own state back: the kernels keep nothing but
// their stack frame, and the guards act on the calling thread alone.
#include <gtest/gtest.h>

#include <latch>
#include <thread>

#include "robustness/harness.h"

using namespace orvo;
using namespace orvo::robust;

namespace {

#ifdef ORVO_SANITIZED
constexpr int kRounds = 4;  // a sanitizer's bookkeeping costs far more than the calls
#else
constexpr int kRounds = 25;
#endif
constexpr int kLen = 203;

const FpState kThreadStates[] = {
    {mxcsrState(0), kX87Extended},
    {mxcsrState(2 | 4), kX87Single},        // up, FZ
    {mxcsrState(1 | 8), kX87Double},        // down, DAZ
    {mxcsrState(3 | 4 | 8), kX87Extended},  // toward zero, FZ, DAZ
};
constexpr int kThreads = sizeof(kThreadStates) / sizeof(kThreadStates[0]);

struct Shared {
    Function fn;
    std::vector<unsigned char> in[2];
    unsigned char scalar[16] = {};
    // Per thread state: what the call gives alone.
    std::vector<unsigned char> expected[kThreads][2];
    orvoStatus expectedStatus[kThreads] = {};
};

CallArrays arraysOf(const Shared& s, std::vector<unsigned char> (&out)[2]) {
    CallArrays a;
    const CatalogueEntry& e = *s.fn.entry;
    for (int k = 0; k < inputCount(e); ++k) a.in[k] = s.in[k].data();
    for (int k = 0; k < outputCount(e); ++k) a.out[k] = out[k].data();
    a.scalar = s.scalar;
    return a;
}

}  // namespace

TEST(Threads, EveryFunctionUnderDifferentStatesAtOnce) {
    std::vector<Shared> shared;
    const FpState saved = FpState::current();
    for (const Function& fn : builtFunctions()) {
        ASSERT_NE(fn.address, nullptr) << fn.entry->name;
        const CatalogueEntry& e = *fn.entry;
        const Tuples t = tuplesFor(e);
        Shared s;
        s.fn = fn;
        for (int a = 0; a < inputCount(e); ++a) s.in[a].resize(static_cast<size_t>(kLen) * inputBytes(e));
        void* const in[2] = {s.in[0].data(), s.in[1].data()};
        for (int i = 0; i < kLen; ++i) writeElement(e, t.all[tupleAt(t, Fill::Mixed, kLen, i)], in, i);
        if (scalarSlots(e)) writeScalar(e, t.all[t.mixedIndex(1)], s.scalar);
        for (int th = 0; th < kThreads; ++th) {
            for (int o = 0; o < outputCount(e); ++o) s.expected[th][o].assign(static_cast<size_t>(kLen) * outputBytes(e), 0);
            kThreadStates[th].apply();
            s.expectedStatus[th] = invoke(fn, arraysOf(s, s.expected[th]), kLen);
            saved.apply();
        }
        shared.push_back(std::move(s));
    }
    const std::vector<Shared> pristine = shared;

    std::vector<std::string> failures[kThreads];
    long calls[kThreads] = {};
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    for (int th = 0; th < kThreads; ++th) {
        threads.emplace_back([&, th] {
            const FpState mine = kThreadStates[th];
            mine.apply();
            start.arrive_and_wait();
            for (int round = 0; round < kRounds; ++round) {
                for (const Shared& s : shared) {
                    const CatalogueEntry& e = *s.fn.entry;
                    std::vector<unsigned char> out[2];
                    for (int o = 0; o < outputCount(e); ++o) out[o].assign(static_cast<size_t>(kLen) * outputBytes(e), 0x5A);
                    const orvoStatus status = invoke(s.fn, arraysOf(s, out), kLen);
                    const FpState after = FpState::current();
                    ++calls[th];
                    if (failures[th].size() > 10) continue;
                    const std::string where = std::string(e.name) + " in a thread under " + describeMxcsr(mine.mxcsr) +
                                              ", " + describeX87(mine.x87) + ", round " + std::to_string(round) + ": ";
                    if ((after.mxcsr & kMxcsrControlBits) != (mine.mxcsr & kMxcsrControlBits) || after.x87 != mine.x87) {
                        failures[th].push_back(where + "state changed");
                        mine.apply();
                    }
                    if (status != s.expectedStatus[th]) failures[th].push_back(where + "status differs from the call alone");
                    for (int o = 0; o < outputCount(e); ++o) {
                        const int i = firstDifference(out[o].data(), s.expected[th][o].data(), kLen, outputBytes(e));
                        if (i >= 0) failures[th].push_back(where + "element " + std::to_string(i) + " differs from the call alone");
                    }
                }
            }
            saved.apply();
        });
    }
    for (auto& t : threads) t.join();
    long total = 0;
    for (int th = 0; th < kThreads; ++th) {
        total += calls[th];
        for (const std::string& f : failures[th]) ADD_FAILURE() << f;
    }
    for (size_t k = 0; k < shared.size(); ++k)
        for (int a = 0; a < 2; ++a) EXPECT_EQ(shared[k].in[a], pristine[k].in[a]) << shared[k].fn.entry->name << " wrote a source";
    std::printf("[ checked  ] %ld calls in %d threads over %zu functions\n", total, kThreads, shared.size());
}
