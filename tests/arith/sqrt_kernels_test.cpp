// Sqrt and InvSqrt kernels: special values and statuses, the mask
// boundaries, the scalar path of Sqrt and its table, the top of the binary64
// range, and the walk of the guarded InvSqrt (remainders, status order, guard).
#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <vector>

#include "arith/inv_sqrt.h"
#include "arith/sqrt.h"
#include "orvo.h"
#include "support/fpstate.h"
#include "tables/sqrt_estimate_table.h"

using namespace orvo::test;
namespace arith = orvo::arith;
using arith::InvSqrtLevel;
using arith::SqrtLevel;

namespace {

template <class T> using Kernel = orvoStatus (*)(const T*, T*, int);

const Kernel<float> kSqrt32[] = {orvoSqrt_32f_A11, orvoSqrt_32f_A21, orvoSqrt_32f_A24};
const Kernel<double> kSqrt64[] = {orvoSqrt_64f_A26, orvoSqrt_64f_A50, orvoSqrt_64f_A53};
const Kernel<float> kInvSqrt32[] = {orvoInvSqrt_32f_A11, orvoInvSqrt_32f_A21, orvoInvSqrt_32f_A24};
const Kernel<double> kInvSqrt64[] = {orvoInvSqrt_64f_A26, orvoInvSqrt_64f_A50, orvoInvSqrt_64f_A53};

template <class T> auto bits(T x) {
    if constexpr (sizeof(T) == 4) return std::bit_cast<uint32_t>(x);
    else return std::bit_cast<uint64_t>(x);
}

// One element alone, in the middle of a block and in the tail: same value,
// and the status of the call.
template <class T> orvoStatus single(Kernel<T> f, T x, T* out) {
    std::vector<T> src(27, T(2.25)), dst(27);
    src[3] = x;
    src[26] = x;
    const orvoStatus status = f(src.data(), dst.data(), 27);
    EXPECT_EQ(bits(dst[3]), bits(dst[26])) << "block and tail differ for " << x;
    T alone;
    EXPECT_EQ(f(&x, &alone, 1), status);
    EXPECT_EQ(bits(alone), bits(dst[3]));
    *out = alone;
    return status;
}

template <class T> struct SpecialCase {
    T x;
    T expected;  // NaN: any NaN
    orvoStatus status;
};

template <class T> void checkSpecials(Kernel<T> f, const std::vector<SpecialCase<T>>& cases) {
    for (const auto& c : cases) {
        T y;
        EXPECT_EQ(single(f, c.x, &y), c.status) << "x = " << c.x;
        if (std::isnan(c.expected)) EXPECT_TRUE(std::isnan(y)) << "x = " << c.x;
        else EXPECT_EQ(bits(y), bits(c.expected)) << "x = " << c.x;
    }
}

template <class T> std::vector<SpecialCase<T>> sqrtSpecials() {
    const T inf = INFINITY, nan = NAN;
    return {{T(0), T(0), orvoOk},       {-T(0), -T(0), orvoOk},      {inf, inf, orvoOk},
            {nan, nan, orvoOk},         {-nan, nan, orvoOk},         {T(-1), nan, orvoWarnDomain},
            {-inf, nan, orvoWarnDomain}, {-std::numeric_limits<T>::denorm_min(), nan, orvoWarnDomain}};
}

template <class T> std::vector<SpecialCase<T>> invSqrtSpecials() {
    const T inf = INFINITY, nan = NAN;
    return {{T(0), inf, orvoWarnSingularity}, {-T(0), -inf, orvoWarnSingularity}, {inf, T(0), orvoOk},
            {nan, nan, orvoOk},               {-nan, nan, orvoOk},                 {T(-1), nan, orvoWarnDomain},
            {-inf, nan, orvoWarnDomain},      {-std::numeric_limits<T>::denorm_min(), nan, orvoWarnDomain}};
}

}  // namespace

TEST(SqrtKernels, FailureTableAndTheRaiserForDomainOnly) {
    for (auto f : kSqrt32) checkSpecials(f, sqrtSpecials<float>());
    for (auto f : kSqrt64) checkSpecials(f, sqrtSpecials<double>());
    // Sqrt raises the invalid flag for a domain element and nothing for -0.
    for (auto f : kSqrt64) {
        ScopedMxcsr state(kMxcsrDefault);
        const double in[2] = {-0.0, 4.0};
        double out[2];
        EXPECT_EQ(f(in, out, 2), orvoOk);
        EXPECT_EQ(mxcsr() & (kFlagInvalid | kFlagDivZero), 0u);
        const double negative = -4.0;
        EXPECT_EQ(f(&negative, out, 1), orvoWarnDomain);
        EXPECT_NE(mxcsr() & kFlagInvalid, 0u);
    }
}

TEST(SqrtKernels, ScalarPathIsFullyAccurateForDenormalsAtEveryLevel) {
    for (auto f : kSqrt64) {
        for (double x : {4.9406564584124654e-324, 1e-310, 2.2250738585072009e-308, 0x1.8p-1070}) {
            double y;
            EXPECT_EQ(single(f, x, &y), orvoOk);
            const long double exact = std::sqrt(static_cast<long double>(x));
            EXPECT_LE(std::fabs(static_cast<long double>(y) - exact) / std::ldexp(1.0L, std::ilogb(y) - 52), 0.5L)
                << x;
        }
    }
    for (auto f : kSqrt32) {
        for (float x : {1e-45f, 3e-42f, 1.1754942e-38f}) {
            float y;
            EXPECT_EQ(single(f, x, &y), orvoOk);
            EXPECT_EQ(y, static_cast<float>(std::sqrt(static_cast<double>(x)))) << x;
        }
    }
}

TEST(SqrtKernels, EstimateTableFollowsItsRule) {
    using orvo::tables::kSqrtEstimateTable;
    EXPECT_EQ(std::bit_cast<double>(kSqrtEstimateTable[0][0]), 1.0);
    EXPECT_EQ(std::bit_cast<double>(kSqrtEstimateTable[0][1]), 0.998046875);
    EXPECT_EQ(std::bit_cast<double>(kSqrtEstimateTable[1][0]), 0.70703125);
    EXPECT_EQ(std::bit_cast<double>(kSqrtEstimateTable[1][255]), 0.50048828125);
    for (int p = 0; p < 2; ++p) {
        for (int k = 0; k < 256; ++k) {
            const long double scaled = 2048.0L / std::sqrt((p + 1) * (1.0L + k / 256.0L));
            const long double nearest = std::nearbyint(scaled);
            ASSERT_GT(std::fabs(std::fabs(scaled - nearest) - 0.5L), 1e-9L) << "a tie would need more care";
            EXPECT_EQ(std::bit_cast<double>(kSqrtEstimateTable[p][k]), static_cast<double>(nearest / 2048.0L))
                << p << " " << k;
        }
    }
}

// Near the top of the binary64 range A26 and A50 form x times a factor just
// above one before the multiply by r, which overflows when the estimate is
// low; those lanes go to the scalar path, and A53 (no such product) keeps
// its mask.
TEST(SqrtKernels, TopOfTheBinary64RangeGoesToTheScalarPathAtA26AndA50) {
    using A26 = arith::Sqrt64f<SqrtLevel::A26>;
    using A50 = arith::Sqrt64f<SqrtLevel::A50>;
    using A53 = arith::Sqrt64f<SqrtLevel::A53>;
    // A low estimate the architecture allows, at the largest finite x.
    const double x = DBL_MAX;
    const float f = std::bit_cast<float>(static_cast<uint32_t>(A50::surrogate(std::bit_cast<uint64_t>(x))));
    const double low = static_cast<float>((1 - 1.4 / 4096) / std::sqrt(static_cast<double>(f)));
    EXPECT_TRUE(std::isinf(A26::fromEstimate(x, low)));
    EXPECT_TRUE(std::isinf(A50::fromEstimate(x, low)));
    EXPECT_FALSE(std::isinf(A53::fromEstimate(x, low)));
    for (uint32_t hi : {0x7FEF0000u, 0x7FEFFFFFu}) {
        EXPECT_TRUE(A26::special(hi) && A50::special(hi)) << std::hex << hi;
        EXPECT_FALSE(A53::special(hi)) << std::hex << hi;
    }
    EXPECT_FALSE(A26::special(0x7FEEFFFFu) || A50::special(0x7FEEFFFFu));
    // Through the kernels: within the level, no status.
    const double ulpsAllowed[] = {0x1p27, 8, 1};
    for (int level = 0; level < 3; ++level) {
        for (double v : {DBL_MAX, std::bit_cast<double>(0x7FEF000000000000ull), std::bit_cast<double>(0x7FEEFFFFFFFFFFFFull)}) {
            double y;
            EXPECT_EQ(single(kSqrt64[level], v, &y), orvoOk);
            const long double exact = std::sqrt(static_cast<long double>(v));
            EXPECT_LE(std::fabs(y - exact) / std::ldexp(1.0L, std::ilogb(y) - 52), ulpsAllowed[level]) << v;
        }
    }
}

// Not by a special case: the refinement lands on the exact root.
TEST(SqrtKernels, PerfectSquaresAreExactAtTheTopLevels) {
    std::vector<float> root32(4096), s32(4096), r32(4096);
    std::vector<double> root64(4096), s64(4096), r64(4096);
    for (int i = 0; i < 4096; ++i) {
        root32[i] = std::ldexp(static_cast<float>(i + 1), i % 61 - 30);  // up to 12 bits: squares exact
        s32[i] = root32[i] * root32[i];
        root64[i] = std::ldexp(i * 16381.0 + 8, i % 401 - 200);  // up to 26 bits
        s64[i] = root64[i] * root64[i];
    }
    ASSERT_EQ(orvoSqrt_32f_A24(s32.data(), r32.data(), 4096), orvoOk);
    ASSERT_EQ(orvoSqrt_64f_A53(s64.data(), r64.data(), 4096), orvoOk);
    EXPECT_EQ(r32, root32);
    EXPECT_EQ(r64, root64);
}

TEST(InvSqrtKernels, FailureTableWithNoEventForDomain) {
    for (auto f : kInvSqrt32) checkSpecials(f, invSqrtSpecials<float>());
    for (auto f : kInvSqrt64) checkSpecials(f, invSqrtSpecials<double>());
}

TEST(InvSqrtKernels, MaskBoundariesOfTheBinary32Levels) {
    using Newton = arith::InvSqrt32fNewton<InvSqrtLevel::A11>;
    // A11, A21 send the top of the range to the careful block from 0x7F7FF002.
    EXPECT_FALSE(Newton::special(0x7F7FF001u));
    EXPECT_TRUE(Newton::special(0x7F7FF002u));
    EXPECT_FALSE(Newton::special(0x00800000u));
    EXPECT_TRUE(Newton::special(0x007FFFFFu));
    EXPECT_FALSE(arith::InvSqrt32fPoly::special(0x7F7FFFFFu));
    // Either side, A11 gives the estimate itself (scaled by one on the
    // careful side), whatever this processor's estimate is.
    for (uint32_t b : {0x7F7FF001u, 0x7F7FF002u}) {
        const float x = std::bit_cast<float>(b);
        float y;
        EXPECT_EQ(single(orvoInvSqrt_32f_A11, x, &y), orvoOk);
        EXPECT_EQ(y, orvo::simd::rsqrtEstimate(x));
    }
}

TEST(InvSqrtKernels, StatusOfABlockWithDomainFirstAndSingularityLast) {
    std::vector<float> src(8, 4.0f), dst(8);
    src[0] = -1.0f;
    src[7] = 0.0f;
    EXPECT_EQ(orvoInvSqrt_32f_A24(src.data(), dst.data(), 8), orvoWarnDomain);  // two passes
    EXPECT_EQ(orvoInvSqrt_32f_A21(src.data(), dst.data(), 8), orvoWarnSingularity);
    EXPECT_EQ(orvoInvSqrt_32f_A11(src.data(), dst.data(), 8), orvoWarnSingularity);
    std::vector<double> d(4, 4.0), r(4);
    d[0] = -1.0;
    d[3] = 0.0;
    for (auto f : kInvSqrt64) EXPECT_EQ(f(d.data(), r.data(), 4), orvoWarnSingularity);
}

TEST(InvSqrtKernels, DenormalsAreScaledOnTheCarefulPath) {
    const double smallest = std::numeric_limits<double>::denorm_min();
    for (auto f : kInvSqrt64) {
        double y;
        EXPECT_EQ(single(f, smallest, &y), orvoOk);
        EXPECT_EQ(y, 0x1p537);
    }
    // A binary32 denormal, also under the caller's DAZ (the guard turns it off).
    for (uint32_t state : {kMxcsrDefault, kMxcsrDefault | kDaz | kFz}) {
        ScopedMxcsr scope(state);
        for (auto f : kInvSqrt32) {
            const float x = std::bit_cast<float>(0x00000004u);  // 2^-147
            float y;
            EXPECT_EQ(f(&x, &y, 1), orvoOk);
            EXPECT_NEAR(y / 0x1.6a09e6p+73f, 1.0f, 0x1p-11f);
        }
    }
}

// Every element after the blocks is written, up to 7 of binary32 and 3 of
// binary64, and equals the same element computed alone.
TEST(InvSqrtKernels, RemaindersAreWrittenWholeAndMatchSingleElements) {
    auto check = [](auto kernel, auto value, int block) {
        using T = decltype(value);
        for (int extra = 1; extra < block; ++extra) {
            for (int blocks : {0, 1, 2}) {
                const int len = blocks * block + extra;
                std::vector<T> src(len), dst(len + 2, T(-7));
                for (int i = 0; i < len; ++i) src[i] = value * T(i + 1);
                src[len - 1] = T(0);  // a special last element
                EXPECT_EQ(kernel(src.data(), dst.data(), len), orvoWarnSingularity);
                for (int i = 0; i < len; ++i) {
                    T alone;
                    kernel(&src[i], &alone, 1);
                    ASSERT_EQ(bits(dst[i]), bits(alone)) << "len " << len << " element " << i;
                }
                EXPECT_EQ(dst[len], T(-7));
            }
        }
    };
    for (auto f : kInvSqrt32) check(f, 0.75f, 8);
    for (auto f : kInvSqrt64) check(f, 0.75, 4);
}

TEST(InvSqrtKernels, GuardGivesNearestResultsAndTheCallersWordBack) {
    std::vector<double> src(13), nearest(13), dst(13);
    for (int i = 0; i < 13; ++i) src[i] = 1.0 + i / 3.0;
    std::vector<float> src32(13), nearest32(13), dst32(13);
    for (int i = 0; i < 13; ++i) src32[i] = 1.0f + i / 3.0f;
    for (int level = 0; level < 3; ++level) {
        {
            ScopedMxcsr state(kMxcsrDefault);
            kInvSqrt64[level](src.data(), nearest.data(), 13);
            kInvSqrt32[level](src32.data(), nearest32.data(), 13);
        }
        for (uint32_t caller : {kMxcsrDefault | kRoundUp, kMxcsrDefault | kRoundDown | kFz | kDaz}) {
            ScopedMxcsr state(caller);
            EXPECT_EQ(kInvSqrt64[level](src.data(), dst.data(), 13), orvoOk);
            EXPECT_EQ(kInvSqrt32[level](src32.data(), dst32.data(), 13), orvoOk);
            EXPECT_EQ(mxcsr(), caller);
            EXPECT_EQ(dst, nearest);
            EXPECT_EQ(dst32, nearest32);
        }
    }
    // Pointers first: a null source with a bad length is a pointer error.
    float out;
    EXPECT_EQ(orvoInvSqrt_32f_A21(nullptr, &out, -1), orvoErrNullPtr);
    EXPECT_EQ(orvoSqrt_32f_A21(nullptr, &out, -1), orvoErrSize);
}
