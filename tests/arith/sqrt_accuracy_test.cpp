// Accuracy of Sqrt and InvSqrt per level: through the kernels on this
// processor's estimate, and through the formulas on the worst estimates the
// architecture allows (relative error up to 1.5 * 2^-12, any number of
// significant bits), since other processors return other estimates.
//
// References: binary64 for binary32 results, x87 extended for binary64
// results; their own error is below 2^-10 ulp of the result.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <vector>

#include "arith/inv_sqrt.h"
#include "arith/sqrt.h"
#include "orvo.h"

namespace arith = orvo::arith;
using arith::InvSqrtLevel;
using arith::SqrtLevel;

namespace {

// Allowed error in ulps of each level: 2^(p - n).
constexpr double kUlps32[] = {8192, 8, 1};       // A11, A21, A24
constexpr double kUlps64[] = {0x1p27, 8, 1};     // A26, A50, A53

long double exactRoot(long double x, bool inverse) { return inverse ? 1.0L / std::sqrt(x) : std::sqrt(x); }

template <class T> double ulpError(T y, long double exact) {
    constexpr int p = std::numeric_limits<T>::digits;
    const int e = std::max(std::ilogb(static_cast<T>(exact)), std::numeric_limits<T>::min_exponent - 1);
    return static_cast<double>(std::fabs(static_cast<long double>(y) - exact) / std::ldexp(1.0L, e - (p - 1)));
}

template <class T> using Kernel = orvoStatus (*)(const T*, T*, int);

template <class T> double worstOf(Kernel<T> f, const std::vector<T>& x, bool inverse) {
    std::vector<T> y(x.size());
    EXPECT_EQ(f(x.data(), y.data(), static_cast<int>(x.size())), orvoOk);
    double worst = 0;
    for (size_t i = 0; i < x.size(); ++i) worst = std::max(worst, ulpError(y[i], exactRoot(x[i], inverse)));
    return worst;
}

// All significands of [1, 4) (every exponent parity), and a stride through
// every positive finite pattern, denormals included.
std::vector<float> inputs32() {
    std::vector<float> x;
    for (uint32_t b = 0x3F800000; b < 0x40800000; ++b) x.push_back(std::bit_cast<float>(b));
    for (uint32_t b = 1; b < 0x7F800000; b += 4099) x.push_back(std::bit_cast<float>(b));
    return x;
}

std::vector<double> inputs64() {
    std::mt19937_64 random(2011);
    std::vector<double> x;
    for (int i = 0; i < 400000; ++i) {
        uint64_t b = random() & 0x000FFFFFFFFFFFFF;
        const uint64_t exponent = i % 2 ? 1022 + i % 4 : 1 + random() % 2046;
        x.push_back(std::bit_cast<double>(b | exponent << 52));
    }
    return x;
}

// Estimates at both ends of the allowed band around rho = 1/sqrt(a), with
// all their bits, and cut to 12 and 13 significant bits towards the inside.
std::vector<float> worstEstimates(double rho) {
    const double band = 1.5 / 4096;
    auto inside = [&](float r) { return std::fabs(r / rho - 1) <= band; };
    float high = static_cast<float>(rho * (1 + band)), low = static_cast<float>(rho * (1 - band));
    while (!inside(high)) high = std::nextafter(high, 0.0f);
    while (!inside(low)) low = std::nextafter(low, 1.0f);
    std::vector<float> r = {high, low};
    for (int kept : {12, 13}) {
        const uint32_t unit = 1u << (24 - kept);
        const float highCut = std::bit_cast<float>(std::bit_cast<uint32_t>(high) & ~(unit - 1));
        const float lowCut = std::bit_cast<float>((std::bit_cast<uint32_t>(low) + unit - 1) & ~(unit - 1));
        if (inside(highCut)) r.push_back(highCut);
        if (inside(lowCut)) r.push_back(lowCut);
    }
    return r;
}

}  // namespace

TEST(SqrtAccuracy, EveryLevelHoldsOnThisProcessorsEstimate) {
    const std::vector<float> x32 = inputs32();
    const std::vector<double> x64 = inputs64();
    const Kernel<float> sqrt32[] = {orvoSqrt_32f_A11, orvoSqrt_32f_A21, orvoSqrt_32f_A24};
    const Kernel<float> inv32[] = {orvoInvSqrt_32f_A11, orvoInvSqrt_32f_A21, orvoInvSqrt_32f_A24};
    const Kernel<double> sqrt64[] = {orvoSqrt_64f_A26, orvoSqrt_64f_A50, orvoSqrt_64f_A53};
    const Kernel<double> inv64[] = {orvoInvSqrt_64f_A26, orvoInvSqrt_64f_A50, orvoInvSqrt_64f_A53};
    for (int level = 0; level < 3; ++level) {
        EXPECT_LE(worstOf(sqrt32[level], x32, false), kUlps32[level]) << "Sqrt 32f level " << level;
        EXPECT_LE(worstOf(inv32[level], x32, true), kUlps32[level]) << "InvSqrt 32f level " << level;
        EXPECT_LE(worstOf(sqrt64[level], x64, false), kUlps64[level]) << "Sqrt 64f level " << level;
        EXPECT_LE(worstOf(inv64[level], x64, true), kUlps64[level]) << "InvSqrt 64f level " << level;
    }
}

TEST(SqrtAccuracy, Binary32LevelsHoldForTheWorstEstimates) {
    std::vector<uint32_t> patterns;
    for (uint32_t b = 0x3F800000; b < 0x40800000; b += 29) patterns.push_back(b);
    for (uint32_t b = 0x7F7FF000; b <= 0x7F7FFFFF; ++b) patterns.push_back(b);  // g1*g1 near overflow
    double worst[6] = {};
    for (uint32_t b : patterns) {
        const float x = std::bit_cast<float>(b);
        const double rho = 1 / std::sqrt(static_cast<double>(x));
        const long double root = std::sqrt(static_cast<long double>(x));
        for (float r : worstEstimates(rho)) {
            worst[0] = std::max(worst[0], ulpError(arith::Sqrt32f<SqrtLevel::A11>::fromEstimate(x, r), root));
            worst[1] = std::max(worst[1], ulpError(arith::Sqrt32f<SqrtLevel::A21>::fromEstimate(x, r), root));
            worst[2] = std::max(worst[2], ulpError(arith::Sqrt32f<SqrtLevel::A24>::fromEstimate(x, r), root));
            if (arith::InvSqrt32fNewton<InvSqrtLevel::A11>::special(b)) continue;  // the careful block's
            worst[3] = std::max(worst[3], ulpError(arith::InvSqrt32fNewton<InvSqrtLevel::A11>::fromEstimate(x, r), 1 / root));
            worst[4] = std::max(worst[4], ulpError(arith::InvSqrt32fNewton<InvSqrtLevel::A21>::fromEstimate(x, r), 1 / root));
            worst[5] = std::max(worst[5], ulpError(arith::InvSqrt32fPoly::fromEstimate(x, r), 1 / root));
        }
    }
    for (int level = 0; level < 3; ++level) {
        EXPECT_LE(worst[level], kUlps32[level]) << "Sqrt 32f level " << level;
        EXPECT_LE(worst[3 + level], kUlps32[level]) << "InvSqrt 32f level " << level;
    }
}

// The binary64 kernels take the estimate of a binary32 surrogate in [1, 4).
// At A53 the products with it must be exact whatever its length: Sqrt splits
// r*r, InvSqrt cuts the estimate to 12 bits (taken literally, a full-length
// estimate costs Sqrt A53 its last bit).
TEST(SqrtAccuracy, Binary64LevelsHoldForTheWorstEstimates) {
    double worst[6] = {};
    std::mt19937_64 random(53);
    for (int i = 0; i < 80000; ++i) {
        const uint64_t exponent = i % 8 == 7 ? 2046 : 1022 + i % 4;  // and the top binade
        const uint64_t b = (random() & 0x000FFFFFFFFFFFFF) | exponent << 52;
        const uint32_t hi = static_cast<uint32_t>(b >> 32);
        const double x = std::bit_cast<double>(b);
        const float f = std::bit_cast<float>(static_cast<uint32_t>(arith::Sqrt64f<SqrtLevel::A53>::surrogate(b)));
        ASSERT_EQ(static_cast<uint32_t>(arith::InvSqrt64f<InvSqrtLevel::A53>::surrogate(b)), std::bit_cast<uint32_t>(f));
        const long double root = std::sqrt(static_cast<long double>(x));
        for (float r : worstEstimates(1 / std::sqrt(static_cast<double>(f)))) {
            const double r32 = r;
            const uint64_t y = std::bit_cast<uint32_t>(r);
            if (!arith::Sqrt64f<SqrtLevel::A26>::special(hi)) {  // else the scalar path's
                worst[0] = std::max(worst[0], ulpError(arith::Sqrt64f<SqrtLevel::A26>::fromEstimate(x, r32), root));
                worst[1] = std::max(worst[1], ulpError(arith::Sqrt64f<SqrtLevel::A50>::fromEstimate(x, r32), root));
            }
            worst[2] = std::max(worst[2], ulpError(arith::Sqrt64f<SqrtLevel::A53>::fromEstimate(x, r32), root));
            worst[3] = std::max(worst[3], ulpError(arith::InvSqrt64f<InvSqrtLevel::A26>::fromEstimate(x, y), 1 / root));
            worst[4] = std::max(worst[4], ulpError(arith::InvSqrt64f<InvSqrtLevel::A50>::fromEstimate(x, y), 1 / root));
            worst[5] = std::max(worst[5], ulpError(arith::InvSqrt64f<InvSqrtLevel::A53>::fromEstimate(x, y), 1 / root));
        }
    }
    for (int level = 0; level < 3; ++level) {
        EXPECT_LE(worst[level], kUlps64[level]) << "Sqrt 64f level " << level;
        EXPECT_LE(worst[3 + level], kUlps64[level]) << "InvSqrt 64f level " << level;
    }
}
