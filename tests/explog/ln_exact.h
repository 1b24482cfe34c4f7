// ln x to 256 bits, and a result's distance from it in ulps of the exact
// value's binade (the unit the levels are stated in).
#pragma once

#include <mpfr.h>

#include <cmath>
#include <cstdint>

namespace orvo::test {

// Allowed error of each level, in ulps: 2^(p - n).
constexpr double kLnBound[] = {8192, 8, 1, 134217728, 8, 1};  // A11 A21 A24 A26 A50 A53

class ExactLog {
public:
    ExactLog() { mpfr_inits2(256, x_, y_, d_, static_cast<mpfr_ptr>(nullptr)); }
    ~ExactLog() { mpfr_clears(x_, y_, d_, static_cast<mpfr_ptr>(nullptr)); }
    ExactLog(const ExactLog&) = delete;
    ExactLog& operator=(const ExactLog&) = delete;

    // |result - ln x| in ulps of ln x for a format of `bits` significand bits;
    // ln 1 must be +0 exactly.
    double ulps(double x, double result, int bits) {
        mpfr_set_d(x_, x, MPFR_RNDN);
        mpfr_log(y_, x_, MPFR_RNDN);
        if (mpfr_zero_p(y_)) return (result == 0 && !std::signbit(result)) ? 0 : INFINITY;
        if (!std::isfinite(result)) return INFINITY;
        const long binade = mpfr_get_exp(y_) - 1;  // ln x = m 2^binade, m in [1, 2)
        mpfr_set_d(d_, result, MPFR_RNDN);
        mpfr_sub(d_, d_, y_, MPFR_RNDN);
        mpfr_abs(d_, d_, MPFR_RNDN);
        mpfr_mul_2si(d_, d_, bits - 1 - binade, MPFR_RNDN);
        return mpfr_get_d(d_, MPFR_RNDU);
    }

private:
    mpfr_t x_, y_, d_;
};

}  // namespace orvo::test
