// Natural logarithm: the fast formulas of the six levels, their SpecialMasks
// and the scalar fixup that serves every flagged lane.
//
// Single precision needs no table.  The argument is split at 2/3, so that
// x = m 2^e with m in [2/3, 4/3) and f = m - 1 exact; one polynomial in f
// gives ln m.  For x near 1 both e and the rounding error of f are zero, so
// the result keeps its relative accuracy down to the root.
//
// Double precision takes the processor's reciprocal estimate of the mantissa
// m' (scaled into [2^-10, 2^-9)), rounds it to an integer c in [512, 1024]
// and uses c both as the multiplier, r = m' c - 1, and as the row of a table
// of -ln(c/512) or -ln(c/1024).  Because the same c feeds both, the table is
// right for every c and c need not be the correctly rounded reciprocal: a
// processor's estimate need not match any other's.  c has at most 11
// significant bits, so products with it are exact where the levels need
// them exact, with no trimming of the estimate.  Next to 1 (c = 512 with the
// exponent one lower, or c = 1024) the table value and the exponent term are
// exactly zero, or cancel exactly, and the result is r with its correction.
#pragma once

#include <cstdint>

#include "explog/ln_tables.h"
#include "frame/simd.h"
#include "orvo.h"

namespace orvo::explog {

using namespace simd;

// ---- scalar fixup ------------------------------------------------------

// Results that must come from the hardware with their flags: the default
// NaN of 0/0 (sign bit set, invalid) and -1/0 (divide-by-zero).  The operands
// pass through volatile so that nothing is folded at compile time.
inline double lnDomainNaN() {
    volatile double zero = 0.0;
    return zero / zero;
}
inline double lnMinusInfinity() {
    volatile double zero = 0.0;
    return -1.0 / zero;
}

// ln x in binary64 for finite x (the exponent field is not all ones).
inline orvoStatus lnFixupFinite(double x, double& result) {
    // Scale a denormal into the normal range; a widened single is never one.
    int adjust = 0;
    if ((asBits(x) & 0x7FF0000000000000) == 0) {
        x = x * asFloat(uint64_t{0x43B0000000000000});  // 2^60
        adjust = -60;
    }
    if (x > 0) {
        // ln(1 + d) with |d| <= 5/512: the polynomial alone, so x next to 1
        // never meets a table value it would have to cancel.  kG holds the
        // coefficients of d^8 down to d^3; that of d^2 is -0.5.
        static constexpr uint64_t kG[] = {0xBFC000B405A2836D, 0x3FC249C02481059D, 0xBFC555555228B38F,
                                          0x3FC9999997B36C81, 0xBFD0000000000262, 0x3FD5555555555613};
        const double d = x - 1.0;
        if (d <= asFloat(uint64_t{0x3F84000000000000}) && d >= -asFloat(uint64_t{0x3F84000000000000})) {
            result = d + (horner(kG, d) * d - 0.5) * (d * d);
            return orvoOk;
        }
        // y in [1, 2); j = y rounded to a multiple of 2^-6, as 64 (y - 1),
        // read from the low bits of y + (2^46 + 1).
        const uint64_t bits = asBits(x);
        const double y = asFloat((bits & 0x000FFFFFFFFFFFFF) | 0x3FF0000000000000);
        const int j = static_cast<int>(asBits(y + asFloat(uint64_t{0x42D0000000000040})) & 0x7F);
        const double* row = &kLnFixupTable[3 * j];
        // yh has at most 32 significant bits and rcp 11, so rcp yh is exact
        // and so is u; v carries the rest.
        const double yh = (y + 2097152.0) - 2097152.0;
        const double yl = y - yh;
        const double n = static_cast<double>(static_cast<int>(bits >> 52) - 1023 + adjust);
        // logHi and n ln2hi are multiples of 2^-42 below 2^11: P is exact.
        const double P = n * asFloat(uint64_t{0x3FE62E42FEFA3800}) + row[1];
        const double Q = n * asFloat(uint64_t{0x3D2EF35793C76730}) + row[2];
        const double u = row[0] * yh - 1.0;
        const double v = row[0] * yl;
        const double w = u + v;
        double g = horner(kG, w) * w;
        g = (g - 0.5) * (w * w);
        // P last: the fixup serves the binary64 denormals, where |P| > 700,
        // and each small term added to P first would cost half an ulp.
        result = (((g + Q) + v) + u) + P;
        return orvoOk;
    }
    if (x == 0) {  // -0 too: it fails "greater" and passes "equal"
        result = lnMinusInfinity();
        return orvoWarnSingularity;
    }
    result = lnDomainNaN();
    return orvoWarnDomain;
}

// The ScalarFixups: complete evaluations in binary64, a binary32 input
// widened first and its result narrowed once.  Infinities and NaNs: -inf is
// outside the domain; +inf and NaN give x x in the element's format (a NaN
// comes out quiet).
template <class T> inline orvoStatus lnFixup(const T* in, T* out) {
    const T x = *in;
    const BitsOf<T> exponentField = sizeof(T) == 4 ? 0x7F800000u : 0x7FF0000000000000u;
    const BitsOf<T> minusInfinity = exponentField | asBits(T(-0.0));
    if ((asBits(x) & exponentField) == exponentField) {
        if (asBits(x) == minusInfinity) {
            *out = static_cast<T>(lnDomainNaN());
            return orvoWarnDomain;
        }
        *out = x * x;
        return orvoOk;
    }
    double result;
    const orvoStatus status = lnFixupFinite(static_cast<double>(x), result);
    *out = static_cast<T>(result);
    return status;
}
inline orvoStatus LnFixup32f(const orvo32f* in, orvo32f* out) { return lnFixup(in, out); }
inline orvoStatus LnFixup64f(const orvo64f* in, orvo64f* out) { return lnFixup(in, out); }

// ---- binary32: the 2/3 split -------------------------------------------

// (a + 2^23) < 2^24 as signed 32-bit patterns: zero, denormals, every
// negative number, +inf and all NaNs in one compare.
template <class I> inline auto lnSpecial32(I bits) { return ltSigned(bits + 0x00800000u, 0x01000000); }

// The reduced argument: e and f = m - 1 with x = m 2^e, m in [2/3, 4/3).
template <class V> inline void lnSplit32(V x, V& e, V& f) {
    const auto u = asBits(x) - 0x3F2AAAABu;  // the pattern of 2/3
    e = toFloat(asSigned(u) >> 23);
    f = asFloat((u & 0x007FFFFFu) + 0x3F2AAAABu) - constant<V>(0x3F800000);
}

// p = f + f^2 g(f), g by Horner's rule from its highest coefficient down to
// -0.5, the last steps as (g f) f + f.
template <class V, size_t N> inline V lnPoly32(V f, const uint64_t (&c)[N]) {
    return (horner(c, f) * f) * f + f;
}

struct Ln32Base {
    using T = float;
    static constexpr int kBlock = 16;
    template <class I> static auto special(I bits) { return lnSpecial32(bits); }
    static orvoStatus fixup(const float* in, float* out) { return LnFixup32f(in, out); }
};

struct LnA11 : Ln32Base {
    // One term more than the two-coefficient form, whose error in ulps
    // peaks where ln x falls just short of -1/4 (x near 0.779, where the ulp
    // halves) at 8314 ulps against the 8192 allowed.  With the extra term
    // A11 stays near 1400 ulps, and it costs less than sending that range to
    // the fixup.
    static constexpr uint64_t kCoeffs[] = {0x3E65A67B, 0xBE88A0D5, 0x3EAA466B, 0xBF000000};
    template <class V> static V eval(V x) {
        V e, f;
        lnSplit32(x, e, f);
        return e * constant<V>(0x3F317218) + lnPoly32(f, kCoeffs);
    }
};

struct LnA21 : Ln32Base {
    static constexpr uint64_t kCoeffs[] = {0xBE1B6A22, 0x3E2DB86B, 0xBE289358, 0x3E4AFB81,
                                           0xBE80061D, 0x3EAAAEE7, 0xBF000000};
    template <class V> static V eval(V x) {
        V e, f;
        lnSplit32(x, e, f);
        return e * constant<V>(0x3F317218) + lnPoly32(f, kCoeffs);
    }
};

struct LnA24 : Ln32Base {
    static constexpr uint64_t kCoeffs[] = {0xBE0402C8, 0x3E0F335D, 0xBDF9889E, 0x3E0F6B8C, 0xBE2ACEE6,
                                           0x3E4CE814, 0xBE7FFF78, 0x3EAAAA83, 0xBF000000};
    template <class V> static V eval(V x) {
        V e, f;
        lnSplit32(x, e, f);
        // ln 2 in two parts: e L1 is exact, e L2 + p carries the rest.
        return e * constant<V>(0x3F317200) + (e * constant<V>(0x35BFBE8E) + lnPoly32(f, kCoeffs));
    }
};

// ---- binary64: reciprocal estimate as multiplier and index ---------------

// The same set as the binary32 test, on the high word: (h + 2^20) < 2^21.
template <class I> inline auto lnSpecial64(I high) { return ltSigned(high + 0x00100000u, 0x00200000); }

// m' = 1.f 2^-10, in [2^-10, 2^-9) whatever x is.
template <class V> inline V lnScaledMantissa(V x) {
    return asFloat((asBits(x) & 0x000FFFFFFFFFFFFFu) | 0x3F50000000000000u);
}

// The processor's reciprocal estimate of m' in binary32 (f32x4 or float).
template <class V> inline auto lnEstimate(V mPrime) { return rcpEstimate(narrow(mPrime)); }

// c: an estimate of 1/m' rounded to an integer in nearest mode, whatever the
// caller's rounding field.  It lies in [512, 1024] for any estimate within
// 1.5 2^-12 of the reciprocal.
template <class E> inline auto lnRoundEstimate(E estimate) {
    return roundTo<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(widen(estimate));
}

// One Newton step in binary32, e (2 - m' e), for A53 alone.  An estimate off
// by up to 1.5 2^-12 can round to a c nearly 0.9 away from 1/m'; then |r|
// nears 2^-9, where the polynomial is short of full accuracy, and next to 1,
// where r and the table value cancel, A53 errs by over 2 ulps (A26 and A50
// keep their bounds).  After the step the estimate lies within 2^-11 of
// 1/m', so c is the nearest integer unless 1/m' is that close to a half.
template <class E> inline E lnRefineEstimate(E estimate, E mPrime) {
    return estimate * (constant<E>(0x40000000) - mPrime * estimate);
}

// The exponent field (a >> 52) as a binary64 value.
template <class V> inline V lnExponentField(V x) { return toDouble(asSigned(highWords(x) >> 20)); }

// Row c - 512 of a table, from the pattern of c: 512 has 0x81000 above bit 43.
template <class V> inline auto lnTableRow(V c) { return (asBits(c) >> 43) - 0x81000u; }

// A level gives evalWith(x, c), the formula for a given c; the kernel's
// c comes from the processor's estimate (tests substitute others).
template <class Level> struct Ln64Base {
    using T = double;
    static constexpr int kBlock = 8;
    template <class I> static auto special(I high) { return lnSpecial64(high); }
    static orvoStatus fixup(const double* in, double* out) { return LnFixup64f(in, out); }
    template <class V, class E> static V evalWithEstimate(V x, E estimate) {
        return Level::evalWith(x, lnRoundEstimate(estimate));
    }
    template <class V> static V eval(V x) { return Level::evalWithEstimate(x, lnEstimate(lnScaledMantissa(x))); }
};

// Coefficients of r^2, r^3 (A26), and r^4, r^5 (A50, A53).
inline constexpr uint64_t kLnC2 = 0xBFDFFFFFFFFFF81F, kLnC3 = 0x3FD55555555543C5;
inline constexpr uint64_t kLnC4 = 0xBFD0000148058EE1, kLnC5 = 0x3FC9999CACDB4D0A;

// A26 and A50 add k ln 2 last, k = E - 1022 or E - 1023 as the table's rows
// are relative to 512 or 1024.
template <class V> inline V lnCombineTable513(V x, V c, V p) {
    const V k = lnExponentField(x) - select(c > constant<V>(0x4086A00000000000),  // 724
                                            constant<V>(0x408FF80000000000),        // 1023
                                            constant<V>(0x408FF00000000000));       // 1022
    return (p + gather<V>(kLnTable513.data(), lnTableRow(c))) + k * constant<V>(0x3FE62E42FEFA39EF);
}

// r = m' c - 1 with m' split so that h c is exact (h keeps 27 bits).
template <class V> inline V lnExactReduced(V mPrime, V c) {
    const V h = asFloat(asBits(mPrime) & 0xFFFFFFFFFC000000u);
    const V l = mPrime - h;
    return (h * c - constant<V>(0x3FF0000000000000)) + l * c;
}

template <class V> inline V lnQuartic(V r) {
    return (constant<V>(kLnC5) * r + constant<V>(kLnC4)) * (r * r) + (constant<V>(kLnC3) * r + constant<V>(kLnC2));
}

struct LnA26 : Ln64Base<LnA26> {
    template <class V> static V evalWith(V x, V c) {
        const V r = lnScaledMantissa(x) * c - constant<V>(0x3FF0000000000000);
        const V p = r + (constant<V>(kLnC3) * r + constant<V>(kLnC2)) * (r * r);
        return lnCombineTable513(x, c, p);
    }
};

struct LnA50 : Ln64Base<LnA50> {
    template <class V> static V evalWith(V x, V c) {
        const V r = lnExactReduced(lnScaledMantissa(x), c);
        const V p = r + lnQuartic(r) * (r * r);
        return lnCombineTable513(x, c, p);
    }
};

struct LnA53 : Ln64Base<LnA53> {
    template <class V> static V evalWith(V x, V c) {
        const V r = lnExactReduced(lnScaledMantissa(x), c);
        const V q = lnQuartic(r);
        // The bias 1023 lives in the table: E L1 is exact and so is A, hi
        // being a multiple of 2^-40; t is the rounding error of s = A + r.
        const V E = lnExponentField(x);
        V hi, lo;
        gatherPair(kLnTable513Pair.data(), lnTableRow(c), hi, lo);
        const V A = E * constant<V>(0x3FE62E42FEFA0000) + hi;
        const V Bv = E * constant<V>(0x3D7CF79ABC9E0000) + lo;
        const V s = A + r;
        const V t = r - (s - A);
        return ((Bv + t) + q * (r * r)) + s;
    }
    template <class V, class E> static V evalWithEstimate(V x, E estimate) {
        return evalWith(x, lnRoundEstimate(lnRefineEstimate(estimate, narrow(lnScaledMantissa(x)))));
    }
};

}  // namespace orvo::explog
