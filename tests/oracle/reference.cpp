#include "oracle/reference.h"

#include <cmath>
#include <cstring>
#include <string_view>

namespace orvo::oracle {
namespace {

constexpr mpfr_rnd_t N = MPFR_RNDN;
constexpr mpc_rnd_t NN = MPC_RNDNN;

// A scratch number for compound references, some 64 bits wider than the
// result so that the final rounding is the only one that counts.
struct Wide {
    mpfr_t v;
    explicit Wide(mpfr_srcptr like, int extra = 64) { mpfr_init2(v, mpfr_get_prec(like) + extra); }
    explicit Wide(mpfr_prec_t prec) { mpfr_init2(v, prec); }
    ~Wide() { mpfr_clear(v); }
    operator mpfr_ptr() { return v; }
};

struct WideComplex {
    mpc_t v;
    explicit WideComplex(mpfr_prec_t prec) { mpc_init2(v, prec); }
    ~WideComplex() { mpc_clear(v); }
    operator mpc_ptr() { return v; }
};

mpfr_prec_t precOf(mpc_srcptr z) { return mpfr_get_prec(mpc_realref(z)); }

// ---- real families --------------------------------------------------------

void abs(mpfr_ptr r, mpfr_srcptr x) { mpfr_abs(r, x, N); }
void add(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { mpfr_add(r, x, y, N); }
void sub(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { mpfr_sub(r, x, y, N); }
void mul(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { mpfr_mul(r, x, y, N); }
void div(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { mpfr_div(r, x, y, N); }
void sqr(mpfr_ptr r, mpfr_srcptr x) { mpfr_sqr(r, x, N); }
void inv(mpfr_ptr r, mpfr_srcptr x) { mpfr_ui_div(r, 1, x, N); }
void sqrt(mpfr_ptr r, mpfr_srcptr x) { mpfr_sqrt(r, x, N); }

// 1/sqrt(-0) is -infinity (the IEEE rSqrt), where MPFR gives +infinity.
void invSqrt(mpfr_ptr r, mpfr_srcptr x) {
    if (mpfr_zero_p(x)) mpfr_set_inf(r, mpfr_signbit(x) ? -1 : 1);
    else mpfr_rec_sqrt(r, x, N);
}

void cbrt(mpfr_ptr r, mpfr_srcptr x) { mpfr_cbrt(r, x, N); }

void invCbrt(mpfr_ptr r, mpfr_srcptr x) {
    Wide c(r);
    mpfr_cbrt(c, x, N);
    mpfr_ui_div(r, 1, c, N);  // +-0 gives +-infinity, +-infinity gives +-0
}

// x^(2/3) as the square of the real cube root: positive for negative x.
void pow2o3(mpfr_ptr r, mpfr_srcptr x) {
    Wide c(r);
    mpfr_cbrt(c, x, N);
    mpfr_sqr(r, c, N);
}

// x^(3/2): no real value below zero, -infinity included; +0 for either zero.
void pow3o2(mpfr_ptr r, mpfr_srcptr x) {
    if (mpfr_nan_p(x) || (mpfr_sgn(x) < 0)) { mpfr_set_nan(r); return; }
    if (mpfr_zero_p(x)) { mpfr_set_zero(r, 1); return; }
    Wide s(r);
    mpfr_sqrt(s, x, N);
    mpfr_mul(r, s, x, N);
}

void hypot(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { mpfr_hypot(r, x, y, N); }
void ceil(mpfr_ptr r, mpfr_srcptr x) { mpfr_ceil(r, x); }
void floor(mpfr_ptr r, mpfr_srcptr x) { mpfr_floor(r, x); }
void trunc(mpfr_ptr r, mpfr_srcptr x) { mpfr_trunc(r, x); }
void round(mpfr_ptr r, mpfr_srcptr x) { mpfr_round(r, x); }  // halves away from zero
// Rint and NearbyInt obey the caller's rounding mode; the sweep runs at the
// default, round to nearest with ties to even.
void rint(mpfr_ptr r, mpfr_srcptr x) { mpfr_rint(r, x, MPFR_RNDN); }
// Integer part and fraction, both with the sign of x (a zero fraction too).
void modf(mpfr_ptr i, mpfr_ptr f, mpfr_srcptr x) {
    mpfr_modf(i, f, x, N);
    if (mpfr_zero_p(f)) mpfr_setsign(f, f, mpfr_signbit(x), N);
}

void exp(mpfr_ptr r, mpfr_srcptr x) { mpfr_exp(r, x, N); }
void ln(mpfr_ptr r, mpfr_srcptr x) { mpfr_log(r, x, N); }
void log10(mpfr_ptr r, mpfr_srcptr x) { mpfr_log10(r, x, N); }
void expm1(mpfr_ptr r, mpfr_srcptr x) { mpfr_expm1(r, x, N); }
// ln(1 + x) of either zero is +0: the sum 1 + x is formed first, so the sign
// of a zero x cannot survive.
void log1p(mpfr_ptr r, mpfr_srcptr x) {
    if (mpfr_zero_p(x)) mpfr_set_zero(r, 1);
    else mpfr_log1p(r, x, N);
}
void pow(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { mpfr_pow(r, x, y, N); }
void sinh(mpfr_ptr r, mpfr_srcptr x) { mpfr_sinh(r, x, N); }
void cosh(mpfr_ptr r, mpfr_srcptr x) { mpfr_cosh(r, x, N); }
void tanh(mpfr_ptr r, mpfr_srcptr x) { mpfr_tanh(r, x, N); }
void asinh(mpfr_ptr r, mpfr_srcptr x) { mpfr_asinh(r, x, N); }
void acosh(mpfr_ptr r, mpfr_srcptr x) { mpfr_acosh(r, x, N); }
void atanh(mpfr_ptr r, mpfr_srcptr x) { mpfr_atanh(r, x, N); }
void sin(mpfr_ptr r, mpfr_srcptr x) { mpfr_sin(r, x, N); }
void cos(mpfr_ptr r, mpfr_srcptr x) { mpfr_cos(r, x, N); }
void sinCos(mpfr_ptr s, mpfr_ptr c, mpfr_srcptr x) { mpfr_sin_cos(s, c, x, N); }
void tan(mpfr_ptr r, mpfr_srcptr x) { mpfr_tan(r, x, N); }
void asin(mpfr_ptr r, mpfr_srcptr x) { mpfr_asin(r, x, N); }
void acos(mpfr_ptr r, mpfr_srcptr x) { mpfr_acos(r, x, N); }
void atan(mpfr_ptr r, mpfr_srcptr x) { mpfr_atan(r, x, N); }
// The first array holds y, the second x: the angle of the point (x, y).
void atan2(mpfr_ptr r, mpfr_srcptr y, mpfr_srcptr x) { mpfr_atan2(r, y, x, N); }
}  // namespace

// ---- erf and erfc -----------------------------------------------------------
// MPFR's own erfc takes up to a millisecond for arguments between 3 and 20,
// where the sweep needs hundreds of thousands of values; these forms take
// some tens of microseconds and are checked against MPFR's in the oracle's
// tests.

namespace {

// erf(x) = 2x/sqrt(pi) exp(-x^2) sum 2^n x^2n / (1 3 5 ... (2n+1)): every
// term positive, so no cancellation at any x; used for |x| in [1/2, 4].
void erfSeries(mpfr_ptr r, mpfr_srcptr x, mpfr_prec_t work) {
    Wide x2(work), term(work), sum(work), t(work);
    mpfr_sqr(x2, x, N);
    mpfr_mul_2ui(x2, x2, 1, N);  // 2x^2
    mpfr_set_ui(term, 1, N);
    mpfr_set_ui(sum, 1, N);
    const double half = mpfr_get_d(x2, N) / 2;
    for (unsigned long n = 1; n < 100000; ++n) {
        mpfr_mul(term, term, x2, N);
        mpfr_div_ui(term, term, 2 * n + 1, N);
        mpfr_add(sum, sum, term, N);
        if (n > half && mpfr_get_exp(term) < mpfr_get_exp(sum) - static_cast<mpfr_exp_t>(work)) break;
    }
    mpfr_sqr(t, x, N);
    mpfr_neg(t, t, N);
    mpfr_exp(t, t, N);
    mpfr_mul(sum, sum, t, N);
    mpfr_mul(sum, sum, x, N);
    mpfr_const_pi(t, N);
    mpfr_sqrt(t, t, N);
    mpfr_div(sum, sum, t, N);
    mpfr_mul_2ui(r, sum, 1, N);
}

// erfc(x) = exp(-x^2)/sqrt(pi) / (x + (1/2)/(x + 1/(x + (3/2)/(x + ...)))),
// Laplace's continued fraction by Lentz's method; used for x in [6, 27],
// where at most a hundred terms reach 200 bits.
void erfcFraction(mpfr_ptr r, mpfr_srcptr x, mpfr_prec_t work) {
    Wide f(work), c(work), d(work), delta(work), t(work);
    mpfr_set(f, x, N);
    mpfr_set(c, x, N);
    mpfr_set_zero(d, 1);
    for (unsigned long k = 1; k < 100000; ++k) {
        // a_k = k/2, b_k = x
        mpfr_mul_ui(d, d, k, N);
        mpfr_div_2ui(d, d, 1, N);
        mpfr_add(d, d, x, N);
        mpfr_ui_div(d, 1, d, N);
        mpfr_ui_div(t, k, c, N);
        mpfr_div_2ui(t, t, 1, N);
        mpfr_add(c, x, t, N);
        mpfr_mul(delta, c, d, N);
        mpfr_mul(f, f, delta, N);
        mpfr_sub_ui(delta, delta, 1, N);
        if (mpfr_zero_p(delta) || mpfr_get_exp(delta) < -static_cast<mpfr_exp_t>(work)) break;
    }
    mpfr_sqr(t, x, N);
    mpfr_neg(t, t, N);
    mpfr_exp(t, t, N);
    mpfr_div(t, t, f, N);
    mpfr_const_pi(f, N);
    mpfr_sqrt(f, f, N);
    mpfr_div(r, t, f, N);
}

}  // namespace

// erfc at the precision of r, for any x.
void erfcFast(mpfr_ptr r, mpfr_srcptr x) {
    const mpfr_prec_t work = mpfr_get_prec(r) + 40;
    if (!mpfr_number_p(x) || mpfr_cmpabs_ui(x, 1) < 0 || mpfr_cmpabs_ui(x, 27) > 0) {
        mpfr_erfc(r, x, N);
        return;
    }
    Wide a(mpfr_get_prec(x));
    mpfr_abs(a, x, N);
    Wide e(work);
    if (mpfr_cmp_ui(a, 6) < 0) {
        // erfc = 1 - erf loses x^2 log2(e) bits, at most 52 below 6: work
        // that much wider.
        const mpfr_prec_t wider = work + 8 + static_cast<mpfr_prec_t>(1.4427 * mpfr_get_d(a, N) * mpfr_get_d(a, N));
        Wide w(wider);
        erfSeries(w, a, wider);
        mpfr_ui_sub(e, 1, w, N);
    } else {
        erfcFraction(e, a, work);
    }
    if (mpfr_sgn(x) < 0) mpfr_ui_sub(r, 2, e, N);
    else mpfr_set(r, e, N);
}

// erf at the precision of r, for any x.
void erfFast(mpfr_ptr r, mpfr_srcptr x) {
    const mpfr_prec_t work = mpfr_get_prec(r) + 40;
    if (!mpfr_number_p(x) || mpfr_cmpabs_ui(x, 1) < 0) {
        mpfr_erf(r, x, N);
        return;
    }
    if (mpfr_cmpabs_ui(x, 4) < 0) {
        Wide a(mpfr_get_prec(x));
        mpfr_abs(a, x, N);
        Wide e(work);
        erfSeries(e, a, work);
        mpfr_setsign(r, e, mpfr_signbit(x), N);
        return;
    }
    Wide a(mpfr_get_prec(x)), e(work);
    mpfr_abs(a, x, N);
    erfcFast(e, a);
    mpfr_ui_sub(e, 1, e, N);
    mpfr_setsign(r, e, mpfr_signbit(x), N);
}

namespace {

void erf(mpfr_ptr r, mpfr_srcptr x) { erfFast(r, x); }
void erfc(mpfr_ptr r, mpfr_srcptr x) { erfcFast(r, x); }

// ---- the inverses ---------------------------------------------------------
// Newton's iteration needs a start: a double found by bisection on the
// binary64 functions of the C library, good to some 40 bits where the value
// is normal and to a few bits where it is subnormal.  Then each Newton step
// runs at a precision that doubles the bits it can trust, and the last one
// at the full working precision.

// Bisection for y >= 0 with f(y) = v, f decreasing on [lo, hi].
template <class F> double bisectDecreasing(F f, double v, double lo, double hi) {
    for (int i = 0; i < 64 && hi - lo > 1e-15 * hi; ++i) {
        double mid = 0.5 * (lo + hi);
        if (f(mid) > v) lo = mid;
        else hi = mid;
    }
    return 0.5 * (lo + hi);
}

// Newton's step loop: y is refined in place until the correction is below
// the working precision.  `step` sets `delta` to the correction at the
// precision of its arguments.
template <class Step> void newton(mpfr_ptr y, mpfr_prec_t target, Step step) {
    mpfr_prec_t prec = 96;
    Wide delta(target), work(target);
    for (int iteration = 0; iteration < 40; ++iteration) {
        if (prec > target) prec = target;
        mpfr_set_prec(work, prec);
        mpfr_set(work, y, N);
        mpfr_set_prec(delta, prec);
        step(delta.v, work.v, prec);
        mpfr_add(y, y, delta, N);
        if (mpfr_zero_p(delta)) {
            if (prec == target) return;
        } else if (prec == target) {
            // The error after a step is about C delta^2 with C below 2^6
            // for these functions (y below 30): stop when that is below the
            // working precision.
            const mpfr_exp_t relative = mpfr_get_exp(delta) - mpfr_get_exp(y);
            if (2 * relative + 6 < -static_cast<mpfr_exp_t>(target)) return;
        }
        prec *= 2;
    }
}

// The Newton step of erf and erfc, whose slopes are -+2/sqrt(pi) exp(-y^2):
// delta = residual / (2/sqrt(pi) exp(-y^2)), at the precision of delta.
void overSlope(mpfr_ptr delta, mpfr_srcptr residual, mpfr_srcptr y) {
    Wide d(mpfr_get_prec(delta)), pi(mpfr_get_prec(delta));
    mpfr_sqr(d, y, N);
    mpfr_neg(d, d, N);
    mpfr_exp(d, d, N);
    mpfr_div(delta, residual, d, N);
    mpfr_const_pi(pi, N);
    mpfr_sqrt(pi, pi, N);
    mpfr_mul(delta, delta, pi, N);
    mpfr_div_2ui(delta, delta, 1, N);
}

// erfc(y) = v for 0 < v <= 1, so y >= 0; v exact.
void erfcInverseLower(mpfr_ptr r, mpfr_srcptr v) {
    if (mpfr_cmp_ui(v, 1) == 0) { mpfr_set_zero(r, 1); return; }
    const mpfr_prec_t target = mpfr_get_prec(r) + 32;
    Wide y(target);
    const double vd = mpfr_get_d(v, N);
    mpfr_set_d(y, bisectDecreasing([](double t) { return std::erfc(t); }, vd, 0.0, 28.0), N);
    newton(y, target, [v](mpfr_ptr delta, mpfr_ptr yy, mpfr_prec_t prec) {
        Wide e(prec);
        erfcFast(e, yy);
        mpfr_sub(e, e, v, N);
        overSlope(delta, e, yy);
    });
    mpfr_set(r, y, N);
}

// erf(y) = x for 0 < |x| < 1/2, where the subtraction 1 - x would lose x.
void erfInverseSmall(mpfr_ptr r, mpfr_srcptr x) {
    const mpfr_prec_t target = mpfr_get_prec(r) + 32;
    Wide y(target);
    const double xd = std::fabs(mpfr_get_d(x, N));
    if (xd < 1e-6) {
        // erf(y) = 2/sqrt(pi) (y - y^3/3 + ...): y = x sqrt(pi)/2 to 40 bits.
        Wide s(target);
        mpfr_const_pi(s, N);
        mpfr_sqrt(s, s, N);
        mpfr_mul(y, s, x, N);
        mpfr_div_2ui(y, y, 1, N);
        mpfr_abs(y, y, N);
    } else {
        mpfr_set_d(y, bisectDecreasing([](double t) { return -std::erf(t); }, -xd, 0.0, 1.0), N);
    }
    Wide ax(mpfr_get_prec(x));
    mpfr_abs(ax, x, N);
    newton(y, target, [&ax](mpfr_ptr delta, mpfr_ptr yy, mpfr_prec_t prec) {
        Wide e(prec);
        erfFast(e, yy);
        mpfr_sub(e, ax, e, N);
        overSlope(delta, e, yy);
    });
    mpfr_setsign(r, y, mpfr_signbit(x), N);
}

void erfcInverseOnTwo(mpfr_ptr r, mpfr_srcptr v);

}  // namespace

// erfinv: +-0 stays, +-1 gives +-infinity, beyond 1 a NaN.
void erfInverse(mpfr_ptr r, mpfr_srcptr x) {
    if (mpfr_nan_p(x)) { mpfr_set_nan(r); return; }
    if (mpfr_zero_p(x)) { mpfr_set(r, x, N); return; }
    const int c = mpfr_cmpabs_ui(x, 1);
    if (c > 0) { mpfr_set_nan(r); return; }
    if (c == 0) { mpfr_set_inf(r, mpfr_sgn(x)); return; }
    // For |x| from 1/2 up, 1 - |x| is exact and erfc's inverse keeps the
    // relative accuracy that erf's would lose near 1.
    Wide half(8);
    mpfr_set_d(half, 0.5, N);
    if (mpfr_cmpabs(x, half) < 0) { erfInverseSmall(r, x); return; }
    Wide u(mpfr_get_prec(x) + 2);
    mpfr_abs(u, x, N);
    mpfr_ui_sub(u, 1, u, N);
    erfcInverseLower(r, u);
    mpfr_setsign(r, r, mpfr_signbit(x), N);
}

namespace {
// erfc(y) = v on the whole of (0, 2): above 1 by symmetry, erfcinv(v) =
// -erfcinv(2 - v), with 2 - v exact.
void erfcInverseOnTwo(mpfr_ptr r, mpfr_srcptr v) {
    if (mpfr_cmp_ui(v, 1) <= 0) { erfcInverseLower(r, v); return; }
    Wide w(mpfr_get_prec(v) + 4);
    mpfr_ui_sub(w, 2, v, N);
    erfcInverseLower(r, w);
    mpfr_neg(r, r, N);
}
}  // namespace

// erfcinv: 0 (either sign) gives +infinity, 2 gives -infinity, outside
// [0, 2] a NaN.
void erfcInverse(mpfr_ptr r, mpfr_srcptr y) {
    if (mpfr_nan_p(y)) { mpfr_set_nan(r); return; }
    if (mpfr_zero_p(y)) { mpfr_set_inf(r, 1); return; }
    if (mpfr_sgn(y) < 0 || mpfr_cmp_ui(y, 2) > 0) { mpfr_set_nan(r); return; }
    if (mpfr_cmp_ui(y, 2) == 0) { mpfr_set_inf(r, -1); return; }
    erfcInverseOnTwo(r, y);
}

// Phi^-1(p) = -sqrt(2) erfcinv(2p): 0 gives -infinity, 1 gives +infinity,
// 1/2 gives +0, outside [0, 1] a NaN.
void cdfNormInverse(mpfr_ptr r, mpfr_srcptr p) {
    if (mpfr_nan_p(p)) { mpfr_set_nan(r); return; }
    if (mpfr_zero_p(p)) { mpfr_set_inf(r, -1); return; }
    if (mpfr_sgn(p) < 0 || mpfr_cmp_ui(p, 1) > 0) { mpfr_set_nan(r); return; }
    if (mpfr_cmp_ui(p, 1) == 0) { mpfr_set_inf(r, 1); return; }
    Wide d(mpfr_get_prec(p) + 2), t(r), s(r);
    mpfr_mul_2ui(d, p, 1, N);
    if (mpfr_cmp_ui(d, 1) == 0) { mpfr_set_zero(r, 1); return; }
    erfcInverseOnTwo(t, d);
    mpfr_sqrt_ui(s, 2, N);
    mpfr_mul(t, t, s, N);
    mpfr_neg(r, t, N);
}

// Phi(x) = erfc(-x/sqrt(2))/2.  The argument's rounding is relative 2^-(P+64)
// and erfc magnifies it by 2t^2 at most (t below 40 here): far below the
// final rounding.
void cdfNorm(mpfr_ptr r, mpfr_srcptr x) {
    if (mpfr_nan_p(x)) { mpfr_set_nan(r); return; }
    if (mpfr_inf_p(x)) {
        if (mpfr_sgn(x) > 0) mpfr_set_ui(r, 1, N);
        else mpfr_set_zero(r, 1);
        return;
    }
    Wide t(r), s(r), e(r, 16);
    mpfr_sqrt_ui(s, 2, N);
    mpfr_div(t, x, s, N);
    mpfr_neg(t, t, N);
    erfcFast(e, t);
    mpfr_div_2ui(r, e, 1, N);
}

namespace {

// ---- complex families -----------------------------------------------------
// Products and quotients by the textbook formulas, on exact products: the
// special values (infinities, NaNs, signs of zeros) come out as the formulas
// give them, which is what the kernels compute.

void complexAdd(mpc_ptr r, mpc_srcptr z, mpc_srcptr w) { mpc_add(r, z, w, NN); }
void complexSub(mpc_ptr r, mpc_srcptr z, mpc_srcptr w) { mpc_sub(r, z, w, NN); }
void conj(mpc_ptr r, mpc_srcptr z) { mpc_conj(r, z, NN); }

// a*b + sign*c*d with the two products exact.
void sumOfProducts(mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr b, mpfr_srcptr c, mpfr_srcptr d, int sign) {
    Wide p(mpfr_get_prec(a) + mpfr_get_prec(b)), q(mpfr_get_prec(c) + mpfr_get_prec(d));
    mpfr_mul(p, a, b, N);
    mpfr_mul(q, c, d, N);
    if (sign > 0) mpfr_add(r, p, q, N);
    else mpfr_sub(r, p, q, N);
}

void complexMul(mpc_ptr r, mpc_srcptr z, mpc_srcptr w) {
    mpfr_srcptr a = mpc_realref(z), b = mpc_imagref(z), c = mpc_realref(w), d = mpc_imagref(w);
    sumOfProducts(mpc_realref(r), a, c, b, d, -1);
    sumOfProducts(mpc_imagref(r), a, d, b, c, +1);
}

// z times the conjugate of w.
void mulByConj(mpc_ptr r, mpc_srcptr z, mpc_srcptr w) {
    mpfr_srcptr a = mpc_realref(z), b = mpc_imagref(z), c = mpc_realref(w), d = mpc_imagref(w);
    sumOfProducts(mpc_realref(r), a, c, b, d, +1);
    sumOfProducts(mpc_imagref(r), b, c, a, d, -1);
}

void complexDiv(mpc_ptr r, mpc_srcptr z, mpc_srcptr w) {
    mpfr_srcptr a = mpc_realref(z), b = mpc_imagref(z), c = mpc_realref(w), d = mpc_imagref(w);
    const mpfr_prec_t wide = precOf(r) + 64;
    Wide n(wide), re(wide), im(wide);
    sumOfProducts(n, c, c, d, d, +1);
    sumOfProducts(re, a, c, b, d, +1);
    sumOfProducts(im, b, c, a, d, -1);
    mpfr_div(mpc_realref(r), re, n, N);
    mpfr_div(mpc_imagref(r), im, n, N);
}

void complexAbs(mpfr_ptr r, mpc_srcptr z) { mpfr_hypot(r, mpc_realref(z), mpc_imagref(z), N); }
void arg(mpfr_ptr r, mpc_srcptr z) { mpfr_atan2(r, mpc_imagref(z), mpc_realref(z), N); }
void cis(mpc_ptr r, mpfr_srcptr t) { mpfr_sin_cos(mpc_imagref(r), mpc_realref(r), t, N); }

// exp(x + iy) where the conventions leave signs open, as the complex core
// settles them: x = -infinity with y infinite or NaN gives (+0, 0 with the
// sign of an infinite y); x = +infinity with y infinite or NaN gives
// (+infinity, NaN).  Everything else as MPC (the C99 conventions).
void complexExp(mpc_ptr r, mpc_srcptr z) {
    mpfr_srcptr x = mpc_realref(z), y = mpc_imagref(z);
    if (mpfr_inf_p(x) && (mpfr_inf_p(y) || mpfr_nan_p(y))) {
        if (mpfr_sgn(x) < 0) {
            mpfr_set_zero(mpc_realref(r), 1);
            mpfr_set_zero(mpc_imagref(r), mpfr_inf_p(y) && mpfr_sgn(y) < 0 ? -1 : 1);
        } else {
            mpfr_set_inf(mpc_realref(r), 1);
            mpfr_set_nan(mpc_imagref(r));
        }
        return;
    }
    mpc_exp(r, z, NN);
}
void complexLn(mpc_ptr r, mpc_srcptr z) { mpc_log(r, z, NN); }
void complexLog10(mpc_ptr r, mpc_srcptr z) { mpc_log10(r, z, NN); }
void complexSqrt(mpc_ptr r, mpc_srcptr z) { mpc_sqrt(r, z, NN); }

// z^c = exp(c * ln z), the product by the formula: the special values follow
// from those of the logarithm, the product and the exponential.
void complexPow(mpc_ptr r, mpc_srcptr z, mpc_srcptr c) {
    WideComplex l(precOf(r) + 64), w(precOf(r) + 64);
    mpc_log(l, z, NN);
    complexMul(w, c, l);
    complexExp(r, w);
}

bool isZero(mpfr_srcptr x) { return mpfr_zero_p(x); }
bool infOrNan(mpfr_srcptr x) { return mpfr_inf_p(x) || mpfr_nan_p(x); }

// tanh(x + iy) = (sinh 2x + i sin 2y) / (2 (sinh^2 x + cos^2 y)): the
// denominator is a sum of two squares, so no cancellation near the poles.
// (MPC's own tangents can take minutes for a huge real part with a large
// imaginary one.)  Beyond |x| = 64 the real part is +-1 to far more than
// the working precision and the imaginary part 2 sin 2y exp(-2|x|), a zero
// with that sign once MPFR underflows.
void tanhFinite(mpc_ptr r, mpfr_srcptr x, mpfr_srcptr y) {
    const mpfr_prec_t work = precOf(r) + 64;
    Wide a(work), b(work), d(work), t(work);
    mpfr_mul_2ui(t, y, 1, N);
    mpfr_sin(b, t, N);  // sin 2y
    if (mpfr_cmpabs_ui(x, 64) > 0) {
        mpfr_set_si(mpc_realref(r), mpfr_sgn(x), N);
        mpfr_abs(t, x, N);
        mpfr_mul_si(t, t, -2, N);
        mpfr_exp(t, t, N);
        mpfr_mul(t, t, b, N);
        mpfr_mul_2ui(mpc_imagref(r), t, 1, N);
        return;
    }
    mpfr_mul_2ui(t, x, 1, N);
    mpfr_sinh(a, t, N);  // sinh 2x
    mpfr_sinh(t, x, N);
    mpfr_sqr(d, t, N);
    mpfr_cos(t, y, N);
    mpfr_sqr(t, t, N);
    mpfr_add(d, d, t, N);
    mpfr_mul_2ui(d, d, 1, N);
    mpfr_div(mpc_realref(r), a, d, N);
    mpfr_div(mpc_imagref(r), b, d, N);
}

// tanh(+-0 + i y) for y infinite or NaN is (+-0, NaN), the real part exact.
void complexTanh(mpc_ptr r, mpc_srcptr z) {
    if (mpfr_number_p(mpc_realref(z)) && mpfr_number_p(mpc_imagref(z))) {
        tanhFinite(r, mpc_realref(z), mpc_imagref(z));
        return;
    }
    if (isZero(mpc_realref(z)) && infOrNan(mpc_imagref(z))) {
        mpfr_set(mpc_realref(r), mpc_realref(z), N);
        mpfr_set_nan(mpc_imagref(r));
        return;
    }
    mpc_tanh(r, z, NN);
}
// tan z = -i tanh(i z): (x + i(+-0)) with x infinite or NaN gives (NaN, +-0).
void complexTan(mpc_ptr r, mpc_srcptr z) {
    if (mpfr_number_p(mpc_realref(z)) && mpfr_number_p(mpc_imagref(z))) {
        // i z = -y + i x; tanh of it is (a, b); tan z = (b, -a).
        WideComplex t(precOf(r));
        Wide minusY(mpfr_get_prec(mpc_imagref(z)));
        mpfr_neg(minusY, mpc_imagref(z), N);
        tanhFinite(t, minusY, mpc_realref(z));
        mpfr_set(mpc_realref(r), mpc_imagref(t.v), N);
        mpfr_neg(mpc_imagref(r), mpc_realref(t.v), N);
        return;
    }
    if (isZero(mpc_imagref(z)) && infOrNan(mpc_realref(z))) {
        mpfr_set_nan(mpc_realref(r));
        mpfr_set(mpc_imagref(r), mpc_imagref(z), N);
        return;
    }
    mpc_tan(r, z, NN);
}
// acosh(+-0 + i NaN) is (NaN, pi/2).
void complexAcosh(mpc_ptr r, mpc_srcptr z) {
    if (isZero(mpc_realref(z)) && mpfr_nan_p(mpc_imagref(z))) {
        mpfr_set_nan(mpc_realref(r));
        mpfr_const_pi(mpc_imagref(r), N);
        mpfr_div_2ui(mpc_imagref(r), mpc_imagref(r), 1, N);
        return;
    }
    mpc_acosh(r, z, NN);
}
void complexSin(mpc_ptr r, mpc_srcptr z) { mpc_sin(r, z, NN); }
void complexCos(mpc_ptr r, mpc_srcptr z) { mpc_cos(r, z, NN); }
void complexSinh(mpc_ptr r, mpc_srcptr z) { mpc_sinh(r, z, NN); }
void complexCosh(mpc_ptr r, mpc_srcptr z) { mpc_cosh(r, z, NN); }
void complexAsin(mpc_ptr r, mpc_srcptr z) { mpc_asin(r, z, NN); }
void complexAcos(mpc_ptr r, mpc_srcptr z) { mpc_acos(r, z, NN); }
void complexAtan(mpc_ptr r, mpc_srcptr z) { mpc_atan(r, z, NN); }
void complexAsinh(mpc_ptr r, mpc_srcptr z) { mpc_asinh(r, z, NN); }
void complexAtanh(mpc_ptr r, mpc_srcptr z) { mpc_atanh(r, z, NN); }

struct Entry {
    const char* family;
    bool complex;
    Reference ref;
};

Reference real1(void (*f)(mpfr_ptr, mpfr_srcptr)) { Reference r{Form::Real1}; r.real1 = f; return r; }
Reference real2(void (*f)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr)) { Reference r{Form::Real2}; r.real2 = f; return r; }
Reference realPair(void (*f)(mpfr_ptr, mpfr_ptr, mpfr_srcptr)) { Reference r{Form::RealPair}; r.realPair = f; return r; }
Reference complex1(void (*f)(mpc_ptr, mpc_srcptr)) { Reference r{Form::Complex1}; r.complex1 = f; return r; }
Reference complex2(void (*f)(mpc_ptr, mpc_srcptr, mpc_srcptr)) { Reference r{Form::Complex2}; r.complex2 = f; return r; }
Reference toReal(void (*f)(mpfr_ptr, mpc_srcptr)) { Reference r{Form::ComplexToReal}; r.complexToReal = f; return r; }
Reference toComplex(void (*f)(mpc_ptr, mpfr_srcptr)) { Reference r{Form::RealToComplex}; r.realToComplex = f; return r; }

const Entry kReferences[] = {
    {"Abs", false, real1(abs)},
    {"Acos", false, real1(acos)},
    {"Acosh", false, real1(acosh)},
    {"Add", false, real2(add)},
    {"Asin", false, real1(asin)},
    {"Asinh", false, real1(asinh)},
    {"Atan", false, real1(atan)},
    {"Atan2", false, real2(atan2)},
    {"Atanh", false, real1(atanh)},
    {"Cbrt", false, real1(cbrt)},
    {"CdfNorm", false, real1(cdfNorm)},
    {"CdfNormInv", false, real1(cdfNormInverse)},
    {"Ceil", false, real1(ceil)},
    {"Cos", false, real1(cos)},
    {"Cosh", false, real1(cosh)},
    {"Div", false, real2(div)},
    {"Erf", false, real1(erf)},
    {"ErfInv", false, real1(erfInverse)},
    {"Erfc", false, real1(erfc)},
    {"ErfcInv", false, real1(erfcInverse)},
    {"Exp", false, real1(exp)},
    {"Expm1", false, real1(expm1)},
    {"Floor", false, real1(floor)},
    {"Hypot", false, real2(hypot)},
    {"Inv", false, real1(inv)},
    {"InvCbrt", false, real1(invCbrt)},
    {"InvSqrt", false, real1(invSqrt)},
    {"Ln", false, real1(ln)},
    {"Log10", false, real1(log10)},
    {"Log1p", false, real1(log1p)},
    {"Modf", false, realPair(modf)},
    {"Mul", false, real2(mul)},
    {"NearbyInt", false, real1(rint)},
    {"Pow", false, real2(pow)},
    {"Pow2o3", false, real1(pow2o3)},
    {"Pow3o2", false, real1(pow3o2)},
    {"Powx", false, real2(pow)},
    {"Rint", false, real1(rint)},
    {"Round", false, real1(round)},
    {"Sin", false, real1(sin)},
    {"SinCos", false, realPair(sinCos)},
    {"Sinh", false, real1(sinh)},
    {"Sqr", false, real1(sqr)},
    {"Sqrt", false, real1(sqrt)},
    {"Sub", false, real2(sub)},
    {"Tan", false, real1(tan)},
    {"Tanh", false, real1(tanh)},
    {"Trunc", false, real1(trunc)},

    {"Abs", true, toReal(complexAbs)},
    {"Acos", true, complex1(complexAcos)},
    {"Acosh", true, complex1(complexAcosh)},
    {"Add", true, complex2(complexAdd)},
    {"Arg", true, toReal(arg)},
    {"Asin", true, complex1(complexAsin)},
    {"Asinh", true, complex1(complexAsinh)},
    {"Atan", true, complex1(complexAtan)},
    {"Atanh", true, complex1(complexAtanh)},
    {"CIS", true, toComplex(cis)},
    {"Conj", true, complex1(conj)},
    {"Cos", true, complex1(complexCos)},
    {"Cosh", true, complex1(complexCosh)},
    {"Div", true, complex2(complexDiv)},
    {"Exp", true, complex1(complexExp)},
    {"Ln", true, complex1(complexLn)},
    {"Log10", true, complex1(complexLog10)},
    {"Mul", true, complex2(complexMul)},
    {"MulByConj", true, complex2(mulByConj)},
    {"Pow", true, complex2(complexPow)},
    {"Powx", true, complex2(complexPow)},
    {"Sin", true, complex1(complexSin)},
    {"Sinh", true, complex1(complexSinh)},
    {"Sqrt", true, complex1(complexSqrt)},
    {"Sub", true, complex2(complexSub)},
    {"Tan", true, complex1(complexTan)},
    {"Tanh", true, complex1(complexTanh)},
};

}  // namespace

const Reference* findReference(const char* family, bool complex) {
    for (const auto& e : kReferences)
        if (e.complex == complex && std::string_view(e.family) == family) return &e.ref;
    return nullptr;
}

}  // namespace orvo::oracle
