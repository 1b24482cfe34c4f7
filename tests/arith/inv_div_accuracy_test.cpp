// Accuracy of Inv and Div per level against MPFR, on this processor; and the
// binary32 formulas with the worst estimates the architecture allows.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "arith/inv_div.h"
#include "orvo.h"

using namespace orvo::invdiv;

namespace {

// |got - a/y| in units of the last place of a/y, never below the subnormal
// spacing.  Past 2^emax every result is infinity, and infinity counts as
// 2^emax: a quotient that overflows just short of the largest finite value
// is charged what it misses by.
template <class T> double ulpError(T got, T a, T y) {
    constexpr int p = std::numeric_limits<T>::digits, emax = std::numeric_limits<T>::max_exponent;
    constexpr long floor = std::numeric_limits<T>::min_exponent - p;
    mpfr_t e, g;
    mpfr_inits2(256, e, g, (mpfr_ptr)0);
    mpfr_set_d(e, a, MPFR_RNDN);
    mpfr_div_d(e, e, y, MPFR_RNDN);
    if (mpfr_get_exp(e) > emax) mpfr_set_si_2exp(e, mpfr_sgn(e), emax, MPFR_RNDN);
    if (std::isinf(got)) mpfr_set_si_2exp(g, got > 0 ? 1 : -1, emax, MPFR_RNDN);
    else mpfr_set_d(g, got, MPFR_RNDN);
    mpfr_sub(g, g, e, MPFR_RNDN);
    // (Clamped before subtracting: the exponent of an exact zero is the
    // most negative long.)
    mpfr_mul_2si(g, g, -(std::max(std::min<long>(mpfr_get_exp(e), emax), floor + p) - p), MPFR_RNDN);
    const double error = std::isnan(got) ? INFINITY : std::fabs(mpfr_get_d(g, MPFR_RNDU));
    mpfr_clears(e, g, (mpfr_ptr)0);
    return error;
}

template <class T> T fromBits(uint64_t b) {
    if constexpr (sizeof(T) == 4) return std::bit_cast<float>(static_cast<uint32_t>(b));
    else return std::bit_cast<double>(b);
}

// Worst error of a kernel (Inv when it takes two arguments) over finite,
// non-zero divisors: random patterns and the neighbourhoods of the masks'
// edges; dividends random, mostly near the divisor's size.  Calls of 37
// elements, so every call ends in a tail.
template <class T, class Kernel> double worst(Kernel kernel) {
    std::mt19937_64 g(7);
    auto pattern = [&] { return fromBits<T>(g() >> (64 - 8 * sizeof(T))); };
    std::vector<T> y;
    auto add = [&](T v) {
        if (std::isfinite(v) && v != 0) y.push_back(v);
    };
    while (y.size() < 200000) add(pattern());
    const uint64_t edges[] = {sizeof(T) == 4 ? 0x7E7FE800 : 0x7FE0000000000000, sizeof(T) == 4 ? 0x7E800000 : 0x7FD0000000000000,
                              sizeof(T) == 4 ? 0x00800000 : 0x0020000000000000, sizeof(T) == 4 ? 0x00000001 : 0x0010000000000000};
    for (uint64_t e : edges)
        for (int k = -300; k < 300; ++k) add(fromBits<T>(e + k) * (k % 2 ? -1 : 1));
    std::vector<T> a(y.size()), r(y.size());
    for (size_t i = 0; i < y.size(); ++i) {
        a[i] = pattern();
        if (i % 4 && std::isfinite(a[i]))
            a[i] = std::ldexp(std::copysign(1 + T(g() % 1000) / 1000, a[i]), std::ilogb(y[i]) + int(g() % 40) - 20);
    }
    for (size_t i = 0; i < y.size(); i += 37) kernel(&a[i], &y[i], &r[i], static_cast<int>(std::min<size_t>(37, y.size() - i)));
    double worstError = 0;
    for (size_t i = 0; i < y.size(); ++i)
        if (std::isfinite(a[i])) worstError = std::max(worstError, ulpError<T>(r[i], a[i], y[i]));
    return worstError;
}

template <class T> auto inv(orvoStatus (*f)(const T*, T*, int)) {
    return [f](T* a, const T* y, T* r, int n) {
        std::fill(a, a + n, T(1));
        f(y, r, n);
    };
}

}  // namespace

// Bounds: 2^(p - level) ulps; A26 and A50 are one code and meet A50's.
TEST(InvDivAccuracy, EachLevelWithinItsBound) {
    const struct {
        const char* name;
        double bound, error;
    } cases[] = {
        {"Inv_32f_A11", 8192, worst<float>(inv(orvoInv_32f_A11))}, {"Div_32f_A11", 8192, worst<float>(orvoDiv_32f_A11)},
        {"Inv_32f_A21", 8, worst<float>(inv(orvoInv_32f_A21))},    {"Div_32f_A21", 8, worst<float>(orvoDiv_32f_A21)},
        {"Inv_32f_A24", 1, worst<float>(inv(orvoInv_32f_A24))},    {"Div_32f_A24", 1, worst<float>(orvoDiv_32f_A24)},
        {"Inv_64f_A50", 8, worst<double>(inv(orvoInv_64f_A50))},   {"Div_64f_A50", 8, worst<double>(orvoDiv_64f_A50)},
        {"Inv_64f_A53", 1, worst<double>(inv(orvoInv_64f_A53))},   {"Div_64f_A53", 1, worst<double>(orvoDiv_64f_A53)},
    };
    for (const auto& c : cases) {
        std::printf("%-12s %9.3f ulp\n", c.name, c.error);
        EXPECT_LE(c.error, c.bound) << c.name;
    }
}

// Every significand of [1, 2) and the ends of the fast path's range, with the
// lowest and the highest estimate within 1.5 * 2^-12 of 1/y: the levels hold
// on any processor.  The binary64 quotient of binary32 numbers is within
// 2^-29 units of the truth, exact enough here.
TEST(InvDivAccuracy, Binary32LevelsHoldForEveryAllowedEstimate) {
    double worstError[4] = {};  // Inv A11, Inv A21, Div A11, Div A21
    auto ulps = [](float got, double exact) {
        return std::fabs(double(got) - exact) / std::ldexp(1.0, std::max(std::ilogb(exact) - 23, -149));
    };
    auto check = [&](float y) {
        const double inverse = 1.0 / y, low = inverse * (1 - 1.5 / 4096), high = inverse * (1 + 1.5 / 4096);
        const float a = std::nextafter(y + y, 0.0f);  // a / y just below 2: most units per relative error
        for (float r : {float(low) < low ? std::nextafter(float(low), INFINITY) : float(low),
                        float(high) > high ? std::nextafter(float(high), 0.0f) : float(high)}) {
            const float results[4] = {InvEstimate32<RawEstimate>::withEstimate(y, r), InvEstimate32<NewtonStep>::withEstimate(y, r),
                                      DivEstimate32<RawEstimate>::withEstimate(a, y, r), DivEstimate32<NewtonStep>::withEstimate(a, y, r)};
            for (int k = 0; k < 4; ++k) worstError[k] = std::max(worstError[k], ulps(results[k], k < 2 ? inverse : double(a) / y));
        }
    };
    for (uint32_t m = 0; m < (1u << 23); ++m) check(std::bit_cast<float>(0x3F800000u | m));
    for (uint32_t k = 0; k < 0x40000; ++k) {
        check(std::bit_cast<float>(0x7E7FE800u - k));  // reciprocals just above the smallest normal
        check(std::bit_cast<float>(0x00800000u + k));  // reciprocals near 2^126
    }
    std::printf("worst allowed estimates: Inv A11 %.1f, A21 %.3f; Div A11 %.1f, A21 %.3f ulp\n", worstError[0], worstError[1],
                worstError[2], worstError[3]);
    EXPECT_LE(std::max(worstError[0], worstError[2]), 8192);
    EXPECT_LE(std::max(worstError[1], worstError[3]), 8);
}
