// Reciprocal and division of real arrays.  The levels are three ways of
// getting a quotient out of the hardware rather than three polynomials:
//   binary32: the 12-bit reciprocal estimate r (A11), one Newton step on it
//             (A21), the true divide (A24);
//   binary64: a batched reciprocal that pays one true divide for four
//             elements (A26 and A50, one code), the true divide (A53).
// A lane the fast formula can't serve takes the true scalar IEEE quotient in
// its own type, in line in the block's scratch walk; a zero divisor reports
// a singularity.  The divisor alone decides: there is no domain status in
// this family, so 0/0 is a singularity and a NaN or infinite divisor is Ok.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/blocked.h"
#include "frame/kernels.h"

namespace orvo::invdiv {

using namespace simd;

// ---- special lanes --------------------------------------------------------

// The true quotient of a flagged lane.  The divide comes first, so 0/0 still
// raises invalid; the compare is a floating one, so under DAZ a denormal
// divisor counts as zero and reports a singularity like one.
template <class T> inline orvoStatus trueQuotient(T a, T y, T* out) {
    *out = a / y;
    return y == T(0) ? orvoWarnSingularity : orvoOk;
}

inline constexpr uint64_t kOne32 = 0x3F800000u;
inline constexpr uint64_t kOne64 = 0x3FF0000000000000u;

// Inv band on a binary32 pattern: zero, denormals, infinities, NaN, and the
// magnitudes from 0x7E7FE801 up, whose reciprocal lies so close above the
// smallest normal that an estimate low by the architecture's 1.5 * 2^-12
// would be flushed to zero.  Div uses the same band: with the divisor 2^126
// left on the fast path the estimate of 2^-126 flushes to zero on these
// processors, and every quotient by it would come out 0 (or NaN) unreported.
template <class I> inline auto reciprocalBand(I bits) {
    return gtSigned((bits - 0x00800000u) & 0x7FFFFFFFu, 0x7DFFE800);
}

// Exponent band on a binary64 high word: fields 0, 1, 0x7FE and 0x7FF.  The
// batched reciprocal scales by 2^-e, which zero, denormals, infinities and
// NaN don't have and which for field 0x7FE (2^-1023) is not a normal number;
// field 1 comes with the band's symmetry, at the price of a true divide.
template <class I> inline auto exponentBand(I hi) { return gtSigned((hi - 0x00200000u) & 0x7FF00000u, 0x7FB00000); }

// Zero and denormal binary64 divisors (high word); infinities and NaN stay on
// the fast path, where the divide is right.
template <class I> inline auto exponentFieldZero(I hi) { return (hi & 0x7FF00000u) == 0u; }

// A binary32 divisor that compares equal to zero (so also a denormal under
// DAZ); every other divisor is right on the fast path's divide.
template <class I> inline auto comparesZero(I bits) { return asFloat(bits) == 0.0f; }

// ---- binary32 reciprocal formulas -----------------------------------------
// Each level refines the hardware's estimate r of 1/x.  The estimate is an
// argument of withEstimate, so that a test can put any estimate the
// architecture allows (relative error up to 1.5 * 2^-12) in place of this
// processor's.  No product with r needs to be exact here, so r is used with
// all the bits the processor gives.

// A11: the estimate as it is.
struct RawEstimate {
    template <class V> static V refine(V, V r) { return r; }
};

// A21: one Newton step r(2 - xr), as (r + r) - (x*r)*r.  The relative error
// e of r becomes e^2 plus four roundings.
struct NewtonStep {
    template <class V> static V refine(V x, V r) { return (r + r) - (x * r) * r; }
};

template <class Refine> struct InvEstimate32 {
    using T = float;
    static constexpr int kBlock = 8;
    template <class V> static V withEstimate(V x, V r) { return Refine::refine(x, r); }
    template <class V> static V eval(V x) { return withEstimate(x, rcpEstimate(x)); }
    template <class I> static auto special(I bits) { return reciprocalBand(bits); }
    static orvoStatus fixup(const float* in, float* out) { return trueQuotient(constant<float>(kOne32), *in, out); }
};

template <class Refine> struct DivEstimate32 {
    using T = float;
    static constexpr int kBlock = 8;
    template <class V> static V withEstimate(V a, V y, V r) { return a * Refine::refine(y, r); }
    template <class V> static V eval(V a, V y) { return withEstimate(a, y, rcpEstimate(y)); }
    template <class I> static auto special(I, I bitsY) { return reciprocalBand(bitsY); }
    static orvoStatus fixup(const float* a, const float* y, float* out) { return trueQuotient(*a, *y, out); }
};

// ---- true divide (binary32 A24, binary64 A53) -----------------------------
// The vector divide is right for every divisor but zero (and denormals,
// which binary64 sends to the special path by its exponent field).

template <class Value> struct DivideLevel {
    using T = Value;
    static constexpr int kBlock = sizeof(T) == 4 ? 8 : 16;
    static constexpr uint64_t kOne = sizeof(T) == 4 ? kOne32 : kOne64;
    template <class I> static auto divisorMask(I bits) {
        if constexpr (sizeof(T) == 4) return comparesZero(bits);
        else return exponentFieldZero(bits);
    }
};

template <class Value> struct InvDivide : DivideLevel<Value> {
    using Base = DivideLevel<Value>;
    template <class V> static V eval(V x) { return constant<V>(Base::kOne) / x; }
    template <class I> static auto special(I bits) { return Base::divisorMask(bits); }
    static orvoStatus fixup(const Value* in, Value* out) { return trueQuotient(constant<Value>(Base::kOne), *in, out); }
};

template <class Value> struct DivDivide : DivideLevel<Value> {
    using Base = DivideLevel<Value>;
    template <class V> static V eval(V a, V y) { return a / y; }
    template <class I> static auto special(I, I bitsY) { return Base::divisorMask(bitsY); }
    static orvoStatus fixup(const Value* a, const Value* y, Value* out) { return trueQuotient(*a, *y, out); }
};

// ---- batched binary64 reciprocal (A26, A50) -------------------------------

// The element's significand with the exponent field of 1.0: sign and
// fraction kept, so any pattern (zero, NaN, infinity) gives a finite value
// in +-[1, 2) and can't disturb the partners it shares a divide with.
template <class V> inline V significand(V x) {
    return asFloat((asBits(x) & uint64_t{0x800FFFFFFFFFFFFF}) | uint64_t{kOne64});
}

// 2^-e for an element m 2^e: exponent field 0x7FE minus the element's, low
// word zero.  Normal for exponent fields 2 to 0x7FD, the fast path's range.
template <class V> inline V inverseScale(V x) {
    constexpr uint64_t field = 0x7FF0000000000000;
    return asFloat((uint64_t{0x7FE0000000000000} - (asBits(x) & field)) & field);
}

// Reciprocals of four groups at once: lane j of x[0..3] holds the group's
// elements m0..m3 in ascending order.  With p01 = m0 m1, p23 = m2 m3 and
// q = 1/(p01 p23), the one divide, 1/m0 = q (p23 m1) and so on.  The
// rounding of p23 (p01) cancels in the reciprocals of m0, m1 (m2, m3); what
// remains is about six roundings, and an element's last bits depend on its
// partners.
template <class V> inline void groupReciprocals(const V (&x)[4], V (&r)[4]) {
    const V m0 = significand(x[0]), m1 = significand(x[1]), m2 = significand(x[2]), m3 = significand(x[3]);
    const V p01 = m0 * m1;
    const V p23 = m2 * m3;
    const V q = constant<V>(kOne64) / (p01 * p23);
    r[0] = inverseScale(x[0]) * (q * (p23 * m1));
    r[1] = inverseScale(x[1]) * (q * (p23 * m0));
    r[2] = inverseScale(x[2]) * (q * (p01 * m3));
    r[3] = inverseScale(x[3]) * (q * (p01 * m2));
}

// The one-element form of the tail: the group formula with all four
// partners equal to the element.  Same accuracy, not always the same bits
// as the element would get inside a block.
template <class V> inline V oneElementReciprocal(V x) {
    const V m = significand(x);
    const V m2 = m * m;
    const V q = constant<V>(kOne64) / (m2 * m2);
    return inverseScale(x) * (q * (m2 * m));
}

struct InvBatched64 {
    using T = double;
    static constexpr int kBlock = 16;
    template <class V> static V eval(V x) { return oneElementReciprocal(x); }
    static void evalBlock(const f64x4 (&x)[1][4], f64x4 (&r)[1][4]) { groupReciprocals(x[0], r[0]); }
    template <class I> static auto special(I hi) { return exponentBand(hi); }
    static orvoStatus fixup(const double* in, double* out) { return trueQuotient(constant<double>(kOne64), *in, out); }
};

struct DivBatched64 {
    using T = double;
    static constexpr int kBlock = 16;
    template <class V> static V eval(V a, V y) { return a * oneElementReciprocal(y); }
    static void evalBlock(const f64x4 (&x)[2][4], f64x4 (&r)[1][4]) {
        groupReciprocals(x[1], r[0]);
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) r[0][k] = x[0][k] * r[0][k];
    }
    template <class I> static auto special(I, I hiY) { return exponentBand(hiY); }
    static orvoStatus fixup(const double* a, const double* y, double* out) { return trueQuotient(*a, *y, out); }
};


}  // namespace orvo::invdiv
