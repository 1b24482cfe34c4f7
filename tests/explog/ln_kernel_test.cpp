// The six real natural-log kernels through the library: values and statuses
// at the edges of the domain, the hardware flags of those statuses, results
// that don't depend on an element's place, and accuracy against MPFR.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "explog/ln_exact.h"
#include "orvo.h"
#include "support/fpstate.h"

using namespace orvo::test;

namespace {

template <class T> using Kernel = orvoStatus (*)(const T*, T*, int);

struct Level32 { const char* name; Kernel<float> f; double bound; };
struct Level64 { const char* name; Kernel<double> f; double bound; };
const Level32 kLevels32[] = {{"A11", orvoLn_32f_A11, kLnBound[0]},
                             {"A21", orvoLn_32f_A21, kLnBound[1]},
                             {"A24", orvoLn_32f_A24, kLnBound[2]}};
const Level64 kLevels64[] = {{"A26", orvoLn_64f_A26, kLnBound[3]},
                             {"A50", orvoLn_64f_A50, kLnBound[4]},
                             {"A53", orvoLn_64f_A53, kLnBound[5]}};

template <class T> using Bits = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
template <class T> Bits<T> bitsOf(T v) { return std::bit_cast<Bits<T>>(v); }
template <class T> T fromBits(Bits<T> b) { return std::bit_cast<T>(b); }
constexpr int kSignificand(float) { return 24; }
constexpr int kSignificand(double) { return 53; }

// Runs a kernel over xs and returns the worst error in ulps and where.
template <class T> double worstUlps(Kernel<T> f, const std::vector<T>& xs, T& at) {
    std::vector<T> out(xs.size());
    f(xs.data(), out.data(), static_cast<int>(xs.size()));
    ExactLog exact;
    double worst = 0;
    for (size_t i = 0; i < xs.size(); ++i) {
        const double e = exact.ulps(xs[i], out[i], kSignificand(T{}));
        if (e > worst) {
            worst = e;
            at = xs[i];
        }
    }
    return worst;
}

// One element at a time: a special placed in a block (index 5) and in the
// tail (the last element), with the caller's flags cleared before.
template <class T> struct Outcome { T value; orvoStatus status; uint32_t flags; };
template <class T> Outcome<T> runAt(Kernel<T> f, T x, int index) {
    std::vector<T> src(19, T(2.5)), dst(19);
    src[index] = x;
    setMxcsr(kMxcsrDefault);
    const orvoStatus status = f(src.data(), dst.data(), 19);
    const uint32_t flags = mxcsr() & kFlagsAll;
    setMxcsr(kMxcsrDefault);
    return {dst[index], status, flags};
}

template <class T, class L> void checkSpecials(const L& level) {
    using B = Bits<T>;
    const T inf = std::numeric_limits<T>::infinity();
    const B defaultNaN = sizeof(T) == 4 ? B(0xFFC00000u) : B(0xFFF8000000000000u);
    const B quietBit = sizeof(T) == 4 ? B(0x00400000u) : B(0x0008000000000000u);
    for (int index : {5, 18}) {
        SCOPED_TRACE(testing::Message() << level.name << ", element " << index);
        for (T zero : {T(0), -T(0)}) {
            const auto r = runAt(level.f, zero, index);
            EXPECT_EQ(bitsOf(r.value), bitsOf(-inf));
            EXPECT_EQ(r.status, orvoWarnSingularity);
            EXPECT_TRUE(r.flags & kFlagDivZero);
        }
        for (T negative : {T(-1), T(-0.5), -std::numeric_limits<T>::denorm_min(), -std::numeric_limits<T>::max(), -inf}) {
            const auto r = runAt(level.f, negative, index);
            EXPECT_EQ(bitsOf(r.value), defaultNaN) << negative;
            EXPECT_EQ(r.status, orvoWarnDomain) << negative;
            EXPECT_TRUE(r.flags & kFlagInvalid) << negative;
        }
        const auto plusInf = runAt(level.f, inf, index);
        EXPECT_EQ(bitsOf(plusInf.value), bitsOf(inf));
        EXPECT_EQ(plusInf.status, orvoOk);
        EXPECT_FALSE(plusInf.flags & (kFlagInvalid | kFlagDivZero));
        const B quiet = bitsOf(std::numeric_limits<T>::quiet_NaN()) | 1, signaling = (quiet & ~quietBit) | 2;
        for (B nan : {quiet, B(quiet | (B(1) << (sizeof(T) * 8 - 1))), signaling}) {
            const auto r = runAt(level.f, fromBits<T>(nan), index);
            EXPECT_TRUE(std::isnan(r.value));
            EXPECT_TRUE(bitsOf(r.value) & quietBit);
            EXPECT_EQ(r.status, orvoOk);
            if (nan != signaling) {
                EXPECT_FALSE(r.flags & (kFlagInvalid | kFlagDivZero));
            }
        }
        // The smallest normal is not special, the largest denormal is; both
        // come out finite with status 0.
        for (T x : {std::numeric_limits<T>::min(), std::nextafter(std::numeric_limits<T>::min(), T(0))}) {
            const auto r = runAt(level.f, x, index);
            EXPECT_TRUE(std::isfinite(r.value));
            EXPECT_EQ(r.status, orvoOk);
        }
    }
}

// Inputs for the accuracy checks: patterns over all positive finite values,
// the neighbourhood of 1 on both sides, denormals, and the binade edges.
template <class T> std::vector<T> accuracyInputs(int samples) {
    using B = Bits<T>;
    std::mt19937_64 rng(sizeof(T) * 1000 + 17);
    std::vector<T> xs;
    const B maxFinite = bitsOf(std::numeric_limits<T>::max());
    const B minNormal = bitsOf(std::numeric_limits<T>::min());
    for (int i = 0; i < samples; ++i) xs.push_back(fromBits<T>(B(rng()) % maxFinite + 1));
    for (int i = 0; i < samples / 8; ++i) xs.push_back(fromBits<T>(B(rng()) % (minNormal - 1) + 1));
    for (B k = 1; k <= 2000; ++k) {
        xs.push_back(fromBits<T>(bitsOf(T(1)) + k));
        xs.push_back(fromBits<T>(bitsOf(T(1)) - k));
    }
    for (int i = 0; i < samples / 8; ++i) {
        const T x = T(1) + std::ldexp(T(std::uniform_real_distribution<double>(-1, 1)(rng)), -(int(rng() % 20)));
        if (x > 0) xs.push_back(x);
    }
    for (int e = std::numeric_limits<T>::min_exponent - 1; e < std::numeric_limits<T>::max_exponent; ++e) {
        xs.push_back(std::ldexp(T(1), e));
        xs.push_back(std::nextafter(std::ldexp(T(1), e), T(0)));
    }
    return xs;
}

}  // namespace

TEST(LnKernels, LnOfOneIsPlusZeroAndItsNeighboursKeepTheirRelativeAccuracy) {
    ExactLog exact;
    auto around = [&](const auto& level, auto one) {
        using T = decltype(one);
        T r;
        EXPECT_EQ(level.f(&one, &r, 1), orvoOk);
        EXPECT_EQ(bitsOf(r), 0u) << level.name;
        for (int k : {1, 2, 3, 100}) {
            for (T x : {fromBits<T>(bitsOf(one) - k), fromBits<T>(bitsOf(one) + k)}) {
                level.f(&x, &r, 1);
                EXPECT_LE(exact.ulps(x, r, kSignificand(T{})), level.bound) << level.name << " at " << x;
            }
        }
    };
    for (const auto& level : kLevels32) around(level, 1.0f);
    for (const auto& level : kLevels64) around(level, 1.0);
}

TEST(LnKernels, ZerosNegativesInfinitiesAndNaNsGiveTheirValuesStatusesAndFlags) {
    for (const auto& level : kLevels32) checkSpecials<float>(level);
    for (const auto& level : kLevels64) checkSpecials<double>(level);
}

TEST(LnKernels, ResultsDoNotDependOnTheElementsPlace) {
    std::mt19937_64 rng(5);
    auto check = [&](auto f, auto sample) {
        using T = decltype(sample);
        for (int len : {1, 7, 8, 15, 16, 17, 45}) {
            std::vector<T> src(len), dst(len);
            for (auto& x : src) x = fromBits<T>(Bits<T>(rng()));  // every class of value
            f(src.data(), dst.data(), len);
            for (int i = 0; i < len; ++i) {
                T alone;
                f(&src[i], &alone, 1);
                if (std::isnan(alone)) EXPECT_TRUE(std::isnan(dst[i]));
                else EXPECT_EQ(bitsOf(dst[i]), bitsOf(alone)) << "len " << len << ", element " << i;
            }
        }
    };
    for (const auto& level : kLevels32) check(level.f, 0.0f);
    for (const auto& level : kLevels64) check(level.f, 0.0);
}

TEST(LnKernels, EveryLevelHoldsOverTheRangeNearOneAndForDenormals) {
    std::vector<float> xs32 = accuracyInputs<float>(100000);
    for (const auto& level : kLevels32) {
        float at = 0;
        EXPECT_LE(worstUlps(level.f, xs32, at), level.bound) << level.name << " at " << at;
    }
    std::vector<double> xs64 = accuracyInputs<double>(60000);
    // A denormal whose fixup would lose an ulp if the small terms were added
    // to the large exponent term one by one.
    xs64.push_back(0x0.96ac908eec441p-1022);
    for (const auto& level : kLevels64) {
        double at = 0;
        EXPECT_LE(worstUlps(level.f, xs64, at), level.bound) << level.name << " at " << at;
    }
}

TEST(LnKernels, A11HoldsWhereLnXFallsJustShortOfMinusOneQuarter) {
    // x near 0.779, where the ulp of the result halves: every input.
    std::vector<float> xs;
    for (uint32_t b = 0x3F475F00; b <= 0x3F482800; ++b) xs.push_back(fromBits<float>(b));
    float at = 0;
    EXPECT_LE(worstUlps(orvoLn_32f_A11, xs, at), kLnBound[0]) << "at " << at;
}
