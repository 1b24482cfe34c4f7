#include "oracle/measure.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace orvo::oracle {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

struct Scratch {
    mpfr_t v;
    Scratch() { mpfr_init2(v, 256); }
    ~Scratch() { mpfr_clear(v); }
};

// Exponent of the unit in the last place of the binade of |y|, y finite;
// a zero y has the smallest one.
long ulpExponent(mpfr_srcptr y, Format f) {
    long binade = mpfr_zero_p(y) ? f.emin : static_cast<long>(mpfr_get_exp(y)) - 1;
    if (binade < f.emin) binade = f.emin;
    return binade - (f.p - 1);
}

// |y| rounds to infinity in the format (round to nearest): |y| is at least
// the largest finite value plus half its ulp, (2 - 2^-p) 2^emax.
bool roundsToInfinity(mpfr_srcptr y, Format f) {
    if (mpfr_inf_p(y)) return true;
    Scratch limit;
    mpfr_set_ui_2exp(limit.v, 1, f.emax + 1, MPFR_RNDN);
    mpfr_t step;
    mpfr_init2(step, 64);
    mpfr_set_ui_2exp(step, 1, f.emax - f.p, MPFR_RNDN);
    mpfr_sub(limit.v, limit.v, step, MPFR_RNDN);
    mpfr_clear(step);
    return mpfr_cmpabs(y, limit.v) >= 0;
}

// |computed - y| / 2^ulpExp, computed finite or the infinity beyond range.
double distance(double computed, mpfr_srcptr y, long ulpExp, Format f) {
    Scratch d;
    mpfr_set_prec(d.v, mpfr_get_prec(y) + 64);
    if (std::isinf(computed)) mpfr_set_si_2exp(d.v, computed > 0 ? 1 : -1, f.emax + 1, MPFR_RNDN);
    else mpfr_set_d(d.v, computed, MPFR_RNDN);
    mpfr_sub(d.v, d.v, y, MPFR_RNDN);
    mpfr_abs(d.v, d.v, MPFR_RNDN);
    mpfr_mul_2si(d.v, d.v, -ulpExp, MPFR_RNDN);
    return mpfr_get_d(d.v, MPFR_RNDU);
}

// The special-value part of the check; returns true when it decided, with
// `error` set (0 or infinity).
bool special(double computed, ExactPart exact, bool signsFree, Format f, double& error) {
    mpfr_srcptr y = exact.value;
    if (mpfr_nan_p(y)) { error = std::isnan(computed) ? 0 : kInf; return true; }
    if (std::isnan(computed)) { error = kInf; return true; }
    if (mpfr_zero_p(y) && exact.zeroIsExact) {
        const bool ok = computed == 0 && (signsFree || std::signbit(computed) == (mpfr_signbit(y) != 0));
        error = ok ? 0 : kInf;
        return true;
    }
    if (roundsToInfinity(y, f)) {
        if (std::isinf(computed) && (signsFree || (computed < 0) == (mpfr_sgn(y) < 0))) { error = 0; return true; }
        if (mpfr_inf_p(y)) { error = kInf; return true; }
        return false;  // a finite result for a huge but finite value: measured
    }
    if (std::isinf(computed) && (computed < 0) != (mpfr_sgn(y) < 0) && !mpfr_zero_p(y)) {
        error = kInf;
        return true;
    }
    return false;
}

}  // namespace

double realError(double computed, ExactPart exact, Format f) {
    double error;
    if (special(computed, exact, false, f, error)) return error;
    return distance(computed, exact.value, ulpExponent(exact.value, f), f);
}

double complexError(double re, double im, ExactPart exactRe, ExactPart exactIm, bool signsFree, Format f) {
    // Parts with a special exact value are checked alone; the others are
    // measured together in ulps of the larger of their exact magnitudes.  A
    // part whose exact value rounds to infinity and came out as that
    // infinity is right, but its magnitude still sets the scale.
    const double computed[2] = {re, im};
    const ExactPart exact[2] = {exactRe, exactIm};
    bool measured[2] = {false, false}, counts[2] = {false, false};
    for (int i = 0; i < 2; ++i) {
        mpfr_srcptr y = exact[i].value;
        const double c = computed[i];
        const bool sameSign = signsFree || std::signbit(c) == (mpfr_signbit(y) != 0);
        if (mpfr_nan_p(y)) {
            if (!std::isnan(c)) return kInf;
            continue;
        }
        if (std::isnan(c)) return kInf;
        if (mpfr_inf_p(y)) {
            if (!std::isinf(c) || !sameSign) return kInf;
            continue;
        }
        if (mpfr_zero_p(y) && exact[i].zeroIsExact) {
            if (c != 0 || !sameSign) return kInf;
            continue;
        }
        counts[i] = true;
        measured[i] = !(roundsToInfinity(y, f) && std::isinf(c) && sameSign);
    }
    mpfr_srcptr big = nullptr;
    for (int i = 0; i < 2; ++i)
        if (counts[i] && (!big || mpfr_cmpabs(exact[i].value, big) > 0)) big = exact[i].value;
    if (!big) return 0;
    const long ulpExp = ulpExponent(big, f);
    double error = 0;
    for (int i = 0; i < 2; ++i)
        if (measured[i]) error = std::fmax(error, distance(computed[i], exact[i].value, ulpExp, f));
    return error;
}

double levelBound(const char* level, Format f) {
    if (!level || !*level) return 0;
    const int n = std::atoi(level + 1);
    return std::ldexp(1.0, f.p - n);
}

double correctBits(double errorUlps, Format f) {
    if (!(errorUlps > 1)) return f.p;
    if (std::isinf(errorUlps)) return 0;
    return std::fmax(0.0, f.p - std::log2(errorUlps));
}

}  // namespace orvo::oracle
