// Throughput of a catalogue function, or of another library's loop over the
// same arrays: inputs drawn once, uniformly over the family's timing range,
// several input sets taken in turn from call to call (so that the branch
// predictor cannot learn one array), the time per element by timeCalls.
// Shared by orvo-report and the benchmarks, so both measure the same way.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "frame/catalogue.h"
#include "support/call.h"
#include "support/timing.h"

namespace orvo::test {

// Where a family's timing inputs lie: values it is typically called on,
// none of which takes a special path.
struct TimingRange {
    double lo, hi;
};

inline TimingRange timingRange(const CatalogueEntry& e) {
    const std::string_view f = e.family;
    if (isComplex(e.type) && e.shape != Shape::RealToComplex) {
        // Ranges of the parts.
        if (f == "Pow" || f == "Powx") return {0.5, 2};
        if (f == "Asin" || f == "Acos" || f == "Atan" || f == "Asinh" || f == "Acosh" || f == "Atanh") return {-2, 2};
        if (f == "Add" || f == "Sub" || f == "Conj" || f == "Abs" || f == "Arg" || f == "Sqrt" || f == "Ln" ||
            f == "Log10")
            return {-10, 10};
        return {-4, 4};
    }
    if (f == "Ln" || f == "Log10") return {1e-3, 1e3};
    if (f == "Sqrt" || f == "InvSqrt" || f == "Pow3o2") return {0, 100};
    if (f == "Expm1") return {-2, 2};
    if (f == "Log1p") return {-0.5, 10};
    if (f == "Pow" || f == "Powx") return {0.5, 4};
    if (f == "Acosh") return {1, 20};
    if (f == "Asin" || f == "Acos") return {-1, 1};
    if (f == "Atanh" || f == "ErfInv") return {-0.99, 0.99};
    if (f == "Erf") return {-4, 4};
    if (f == "Erfc") return {-4, 10};
    if (f == "CdfNorm") return {-6, 6};
    if (f == "ErfcInv") return {0.01, 1.99};
    if (f == "CdfNormInv") return {0.01, 0.99};
    return {-10, 10};
}

// The arrays of a timing run: `sets` input sets of `len` elements, the
// output arrays shared by all, 64-byte aligned.
class TimingArrays {
public:
    TimingArrays(const CatalogueEntry& e, int len, int sets, uint64_t seed = 0x5EED) : len_(len) {
        const TimingRange range = timingRange(e);
        const int real = realBytes(e.type);
        const size_t values = static_cast<size_t>(len) * inputBytes(e) / real;
        uint64_t state = seed;
        auto draw = [&]() {
            state = state * 6364136223846793005u + 1442695040888963407u;
            return range.lo + (range.hi - range.lo) * (static_cast<double>(state >> 11) * 0x1p-53);
        };
        auto put = [real](unsigned char* p, double v) {
            if (real == 4) {
                const float f = static_cast<float>(v);
                std::memcpy(p, &f, 4);
            } else {
                std::memcpy(p, &v, 8);
            }
        };
        // A power that takes the general path of Powx, not a squaring loop.
        put(scalar_, 1.5);
        CallArrays shared;
        shared.scalar = scalar_;
        for (int k = 0; k < outputCount(e); ++k) shared.out[k] = allocate(static_cast<size_t>(len) * outputBytes(e));
        for (int s = 0; s < sets; ++s) {
            CallArrays c = shared;
            for (int k = 0; k < inputCount(e); ++k) {
                unsigned char* p = allocate(values * real);
                for (size_t i = 0; i < values; ++i) put(p + i * real, draw());
                c.in[k] = p;
            }
            sets_.push_back(c);
        }
    }

    int len() const { return len_; }
    int sets() const { return static_cast<int>(sets_.size()); }
    const CallArrays& set(int s) const { return sets_[s]; }
    // The next set in turn.
    const CallArrays& next() {
        const CallArrays& c = sets_[at_];
        at_ = at_ + 1 == sets_.size() ? 0 : at_ + 1;
        return c;
    }

private:
    struct Free {
        void operator()(unsigned char* p) const { std::free(p); }
    };
    // Each array on pages of its own, starting 5 cache lines further into
    // its first page than the array before: arrays whose addresses agree in
    // their low 12 bits make the processor take loads for stores to the
    // other (4K aliasing), which would slow a function by where the heap
    // happened to put its arrays.
    unsigned char* allocate(size_t bytes) {
        const size_t offset = buffers_.size() * 320 % 4096;
        auto* p = static_cast<unsigned char*>(std::aligned_alloc(4096, (offset + bytes + 4095) / 4096 * 4096));
        buffers_.emplace_back(p);
        return p + offset;
    }

    int len_;
    size_t at_ = 0;
    unsigned char scalar_[16] = {};
    std::vector<CallArrays> sets_;
    std::vector<std::unique_ptr<unsigned char[], Free>> buffers_;
};

// Input sets to take in turn for calls of `len` elements: as many as fit in
// 32 KiB together (a first-level cache), at least 2 and at most 8.
inline int rotatingSets(const CatalogueEntry& e, int len) {
    const long bytes = static_cast<long>(len) * inputBytes(e) * inputCount(e);
    return static_cast<int>(std::clamp(32768L / std::max(bytes, 1L), 2L, 8L));
}

// Time per element of run(arrays, len) over the sets in turn.
template <class Run> Timing timeOver(TimingArrays& a, Run&& run, int rounds = 5, double roundSeconds = 2e-3) {
    return timeCalls([&] { run(a.next(), a.len()); }, a.len(), rounds, roundSeconds);
}

// Time per element of the catalogue function e (exported as `f`).
inline Timing timeFunction(const CatalogueEntry& e, void* f, TimingArrays& a, int rounds = 5,
                           double roundSeconds = 2e-3) {
    return timeOver(a, [&](const CallArrays& c, int n) { call(e, f, c, n); }, rounds, roundSeconds);
}

}  // namespace orvo::test
