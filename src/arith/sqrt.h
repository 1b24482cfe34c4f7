// Square root of binary32 and binary64 (Blocked).  No level uses the
// hardware's square root: each starts from the 12-bit reciprocal square root
// estimate r and refines x*r as far as the level needs.  Binary64 takes the
// estimate of a binary32 surrogate that has the element's top fraction bits
// and the parity of its exponent, and scales it back by a power of two.
//
// The formulas take the estimate as an argument so that tests can run them
// on any estimate the architecture allows (relative error up to 1.5 * 2^-12,
// any number of significant bits), not only on this processor's.
#pragma once

#include <cstdint>

#include "frame/blocked.h"
#include "frame/simd.h"
#include "tables/sqrt_estimate_table.h"

namespace orvo::arith {

using namespace orvo::simd;

enum class SqrtLevel { A11, A21, A24, A26, A50, A53 };

// ---- the scalar path ------------------------------------------------------
// In binary64 for both types, the same for every level: the estimate from
// a 12-bit table, three Goldschmidt rounds for sqrt(m) and 1/(2 sqrt(m))
// together, then one Newton correction with the residual m - g*g formed
// exactly by Dekker's split.  Full accuracy everywhere, so a lane the mask
// only suspects comes out right too.

inline constexpr uint64_t kSqrtDefaultNaN = 0xFFF8000000000000;  // the NaN of 0.0/0.0
inline constexpr double kSqrtSurrogateScale[2] = {1.0, 2.0};     // S[p]

// sqrt of a positive normal binary64 w, times 2^-bias (bias undoes the
// scaling of a denormal input).
template <bool Single> inline double sqrtPositive(double w, int bias) {
    const uint64_t bits = asBits(w);
    const int e = static_cast<int>(bits >> 52) - 1023;
    const int p = e & 1;
    const double m = asFloat((bits & 0x000FFFFFFFFFFFFF) | 0x3FF0000000000000) * kSqrtSurrogateScale[p];
    const int k = static_cast<int>(bits >> 44 & 0xFF);
    const double t = asFloat(tables::kSqrtEstimateTable[p][k]);
    double h = 0.5 * t;
    double g = t * m;
    for (int round = 0; round < 3; ++round) {
        const double d = 0.5 - g * h;
        g = g + g * d;
        h = h + h * d;
    }
    const double c = g * 134217729.0;  // 2^27 + 1
    const double gh = c - (c - g);
    const double gl = g - gh;
    double residual;
    if constexpr (Single) residual = ((0.0 - gh) - gl * 2.0) * gh + (m - gl * gl);
    else residual = ((m - gh * gh) - (gh * gl) * 2.0) - gl * gl;
    const double scale = asFloat(static_cast<uint64_t>(1023 + (e >> 1) - bias) << 52);
    return (g + h * residual) * scale;
}

inline orvoStatus SqrtFixup64f(const double* in, double* out) {
    const double x = *in;
    const uint64_t bits = asBits(x);
    if ((bits & 0x7FF0000000000000) == 0x7FF0000000000000) {
        if (bits == 0xFFF0000000000000) { *out = asFloat(kSqrtDefaultNaN); return orvoWarnDomain; }
        *out = x + x;
        return orvoOk;
    }
    if (x == 0.0) { *out = x; return orvoOk; }
    if (bits >> 63) { *out = asFloat(kSqrtDefaultNaN); return orvoWarnDomain; }
    if ((bits & 0x7FF0000000000000) == 0) { *out = sqrtPositive<false>(x * 0x1p200, 100); return orvoOk; }
    *out = sqrtPositive<false>(x, 0);
    return orvoOk;
}

inline orvoStatus SqrtFixup32f(const float* in, float* out) {
    const uint32_t bits32 = asBits(*in);
    const double x = *in;
    if ((bits32 & 0x7F800000) == 0x7F800000) {
        if (bits32 == 0xFF800000) { *out = static_cast<float>(asFloat(kSqrtDefaultNaN)); return orvoWarnDomain; }
        *out = static_cast<float>(x + x);
        return orvoOk;
    }
    if (x == 0.0) { *out = static_cast<float>(x); return orvoOk; }
    if (bits32 >> 31) { *out = static_cast<float>(asFloat(kSqrtDefaultNaN)); return orvoWarnDomain; }
    if ((bits32 & 0x7F800000) == 0) { *out = static_cast<float>(sqrtPositive<true>(x * 0x1p200, 100)); return orvoOk; }
    *out = static_cast<float>(sqrtPositive<true>(x, 0));
    return orvoOk;
}

// ---- binary32 --------------------------------------------------------------

template <SqrtLevel L> struct Sqrt32f {
    using T = float;
    static constexpr int kBlock = 8;

    // Every input that is not a positive normal number: zeros, denormals,
    // negatives, infinities, NaNs.
    template <class I> static auto special(I bits) { return gtSigned(bits - 0x80800000u, 0xFEFFFFFF); }

    template <class V> static V fromEstimate(V x, V r) {
        const V half = constant<V>(0x3F000000);
        if constexpr (L == SqrtLevel::A11) {
            return x * r;
        } else if constexpr (L == SqrtLevel::A21) {
            const V g = x * r, h = half * r;
            return g * (half - g * h) + g;
        } else {
            const V g = x * r, h = half * r;
            const V d = half - g * h;
            const V g1 = g * d + g, h1 = h * d + h;
            return h1 * (x - g1 * g1) + g1;
        }
    }
    template <class V> static V eval(V x) { return fromEstimate(x, rsqrtEstimate(x)); }
    static orvoStatus fixup(const float* in, float* out) { return SqrtFixup32f(in, out); }
};

// ---- binary64 --------------------------------------------------------------

inline constexpr uint64_t kSqrtPolyA26[] = {0x3FD80000C4CD9197, 0x3FE000004379ADB7, 0x3FEFFFFFFFFFFF4F};
inline constexpr uint64_t kSqrtPolyA50[] = {0x3FD1800032338CBB, 0x3FD40000B13001D9, 0x3FD80000000000F6,
                                            0x3FDFFFFFFFFFFE71};

template <SqrtLevel L> struct Sqrt64f {
    using T = double;
    static constexpr int kBlock = 8;

    // Not a positive normal number; and for A26, A50 also the top of the
    // range from 0x7FEF0000 up: there x times a factor just above 1 comes
    // before the multiply by r and overflows when the estimate lies below
    // the true reciprocal root, so those lanes take the scalar path.
    static constexpr int64_t kMaskThreshold = L == SqrtLevel::A53 ? 0xFFDFFFFF : 0xFFDEFFFF;
    template <class I> static auto special(I hi) { return gtSigned(hi - 0x80100000u, kMaskThreshold); }

    // The binary32 surrogate in the low word of each lane: the top 23
    // fraction bits of x, exponent field 0x7F for an odd exponent field of x
    // (even unbiased exponent) and 0x80 otherwise, so it lies in [1, 4).
    template <class B> static B surrogate(B bits) {
        const B a = ~bits & 0x0010000000000000u;
        return ((bits & 0x001FFFFFFFFFFFFFu) >> 29) | ((a + 0x07F0000000000000u) >> 29);
    }
    // The power of two that takes 1/sqrt(surrogate) back to 1/sqrt(x).
    template <class B> static B scaleBits(B bits) {
        const B a = ~bits & 0x0010000000000000u;
        const B e = bits & 0x7FF0000000000000u;
        return (0xBFD0000000000000u + a - e) >> 1;
    }

    // r32: the estimate of 1/sqrt(surrogate), widened.
    template <class V> static V fromEstimate(V x, V r32) {
        const auto bits = asBits(x);
        const V r = r32 * asFloat(scaleBits(bits));
        const V one = constant<V>(0x3FF0000000000000);
        if constexpr (L == SqrtLevel::A26) {
            const V u = one - r * r * x;
            return (x * horner(kSqrtPolyA26, u)) * r;
        } else if constexpr (L == SqrtLevel::A50) {
            const V u = one - r * r * x;
            return (x * (u * horner(kSqrtPolyA50, u) + one)) * r;
        } else {
            const V xh = asFloat(bits & 0xFFFFFFFFF8000000u);
            const V xl = x - xh;
            const V q = r * r;
            // q*xh must be exact for u to carry its low bits.  It is for an
            // estimate of up to 13 significant bits (q then has 26, like xh);
            // for a longer one q's tail beyond 26 bits is taken apart, which
            // subtracts exactly zero when there is none.
            const V qh = asFloat(asBits(q) & 0xFFFFFFFFF8000000u);
            const V ql = q - qh;
            const V u = ((one - qh * xh) - ql * xh) - q * xl;
            const V p = horner(kSqrtPolyA50, u);
            return r * xh + (r * xl + x * ((p * u) * r));
        }
    }
    template <class V> static V estimate(V x) { return widen(rsqrtEstimate(asFloat(lowWords(surrogate(asBits(x)))))); }
    template <class V> static V eval(V x) { return fromEstimate(x, estimate(x)); }
    static orvoStatus fixup(const double* in, double* out) { return SqrtFixup64f(in, out); }
};

}  // namespace orvo::arith
