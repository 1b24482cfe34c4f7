// Reciprocal square root of binary32 and binary64 (Guarded, MXCSR full form:
// the formulas rely on round to nearest and on denormals being live).  Each
// level starts from the hardware's 12-bit estimate and refines it with the
// Taylor series of (1 + t)^(-1/2) in t = x*r*r - 1, or not at all.
//
// The formulas take the estimate as an argument so that tests can run them
// on any estimate the architecture allows.
#pragma once

#include <cstdint>

#include "frame/fp_env.h"
#include "frame/guarded.h"
#include "frame/simd.h"

namespace orvo::arith {

using namespace orvo::simd;

enum class InvSqrtLevel { A11, A21, A24, A26, A50, A53 };

// Infinity with the sign of x, for the zero lanes: the pole of 1/sqrt.
template <class V> inline V signedInfinity(V x, uint64_t signBit, uint64_t infinity) {
    return asFloat((asBits(x) & bitsConstant<V>(signBit)) | bitsConstant<V>(infinity));
}

// ---- binary32, A11 and A21: the estimate, or one Newton step --------------

template <InvSqrtLevel L> struct InvSqrt32fNewton {
    using T = float;
    using Guard = MxcsrGuard<MxcsrFull>;
    static constexpr int kBlock = 8;
    static constexpr bool kHalfBlock = true;
    static constexpr int kGroup = 4;
    static constexpr uint64_t kFill = 0x40400000;  // 3.0
    static constexpr Walk kWalk = Walk::LaneByLane;

    // Not a positive normal number, and also the top of the range: patterns
    // above 0x7F7FF001.
    template <class I> static auto special(I bits) { return gtSigned(bits + 0x7F800000u, 0xFEFFF001); }

    template <class V> static V fromEstimate(V x, V r) {
        if constexpr (L == InvSqrtLevel::A11) return r;
        else return (r * constant<V>(0xBF000000)) * ((x * r) * r - constant<V>(0x40400000));
    }
    template <class V> static V fast(V x) { return fromEstimate(x, rsqrtEstimate(x)); }

    // Denormals, zeros and negatives are scaled by 2^126 so that the estimate
    // sees a normal number (or keeps its zero, infinity or NaN); the result
    // is scaled back by 2^63.  Zeros and +infinity are then selected.
    template <class V> static Careful<V> careful(V x) {
        const auto normal = gtSigned(asBits(x), 0x007FFFFF);  // positive normal, +infinity, NaN
        const V one = constant<V>(0x3F800000);
        const V scaled = x * select(normal, one, constant<V>(0x7E800000));   // 2^126
        const V back = select(normal, one, constant<V>(0x5F000000));         // 2^63
        V value = fromEstimate(scaled, rsqrtEstimate(scaled)) * back;
        const auto zero = scaled == V{};
        const auto infinite = scaled == constant<V>(0x7F800000);
        value = select(zero, signedInfinity(x, 0x80000000, 0x7F800000), value);
        value = select(infinite, V{}, value);
        return {value, scaled < V{}, zero};
    }
};

// ---- binary32, A24: a short estimate and a polynomial ---------------------

inline constexpr uint64_t kInvSqrtPoly32[] = {0xBEA00000, 0x3EC00000, 0xBF000000};  // -5/16, 3/8, -1/2

struct InvSqrt32fPoly {
    using T = float;
    using Guard = MxcsrGuard<MxcsrFull>;
    static constexpr int kBlock = 8;
    static constexpr bool kHalfBlock = false;
    static constexpr int kGroup = 1;
    static constexpr uint64_t kFill = 0x40400000;  // 3.0
    static constexpr Walk kWalk = Walk::SingularityThenDomain;

    template <class I> static auto special(I bits) { return gtSigned(bits - 0x80800000u, 0xFEFFFFFF); }

    // r keeps 8 fraction bits so that r8*r8 is exact; the polynomial then
    // makes up for the short estimate.
    template <class V> static V fromEstimate(V x, V r) {
        const V r8 = asFloat(asBits(r) & 0xFFFF8000u);
        const V t = x * (r8 * r8) - constant<V>(0x3F800000);
        return (horner(kInvSqrtPoly32, t) * t) * r8 + r8;
    }
    template <class V> static V fast(V x) { return fromEstimate(x, rsqrtEstimate(x)); }

    // sqrt(x)/x in binary64 with true instructions, narrowed once.
    template <class V> static Careful<V> careful(V x) {
        const auto wide = widen(x);
        V value = narrow(simd::sqrt(wide) / wide);
        const auto zero = x == V{};
        value = select(zero, signedInfinity(x, 0x80000000, 0x7F800000), value);
        value = select(x == constant<V>(0x7F800000), V{}, value);
        return {value, x < V{}, zero};
    }
};

// ---- binary64: the surrogate's estimate made a binary64 by integer work -----

inline constexpr uint64_t kInvSqrtPoly64[] = {0x3FD1800000000000, 0xBFD4000000000000, 0x3FD8000000000000,
                                              0xBFE0000000000000};  // 35/128, -5/16, 3/8, -1/2
inline constexpr uint64_t kInvSqrtPoly64A53[] = {0xBFCF800000000000, 0x3FD1800000000000, 0xBFD4000000000000,
                                                 0x3FD8000000000000, 0xBFE0000000000000};  // -63/256, ...

template <InvSqrtLevel L> struct InvSqrt64f {
    using T = double;
    using Guard = MxcsrGuard<MxcsrFull>;
    static constexpr int kBlock = 4;
    static constexpr bool kHalfBlock = true;
    static constexpr int kGroup = 1;
    static constexpr uint64_t kFill = 0x4008000000000000;  // 3.0
    static constexpr Walk kWalk = Walk::LaneByLane;

    template <class I> static auto special(I hi) { return gtSigned(hi - 0x80100000u, 0xFFDFFFFF); }

    // The binary32 surrogate in the low word of each lane: the top 23
    // fraction bits of x, exponent field 0x7F or 0x80 by the parity of x's
    // exponent, so it lies in [1, 4).
    template <class B> static B surrogate(B bits) { return (((bits >> 29) & 0x00FFFFFFu) ^ 0x00800000u) + 0x3F800000u; }

    // y: the estimate's pattern in the low word of each lane.  Its exponent
    // and fraction are shifted into the high word's fields and the sum
    // re-biases and undoes the reduction, all in integers: r has at most 20
    // fraction bits, so r*r is exact.
    template <class V, class B> static V fromEstimate(V x, B y) {
        const B bits = asBits(x);
        if constexpr (L == InvSqrtLevel::A53) {
            // xh*q below must be exact for t to keep its low bits: with the
            // estimate cut to 12 significant bits q has 24, xh 21.
            y = y & 0xFFFFF000u;
        }
        const B hi = bits >> 32;
        const B rHigh = (y >> 3) + 0x57F00000u - (((hi - 0x00100000u) & 0xFFE00000u) >> 1);
        const V r = asFloat(rHigh << 32);
        const V one = constant<V>(0x3FF0000000000000);
        if constexpr (L == InvSqrtLevel::A53) {
            const V xh = asFloat(bits & 0xFFFFFFFF00000000u);
            const V xl = x - xh;
            const V q = r * r;
            const V t = xl * q + (xh * q - one);
            return (horner(kInvSqrtPoly64A53, t) * t) * r + r;
        } else {
            const V t = x * (r * r) - one;
            return (horner(kInvSqrtPoly64, t) * t) * r + r;
        }
    }
    template <class V> static auto estimateBits(V x) {
        return zeroExtendWords(asBits(rsqrtEstimate(asFloat(lowWords(surrogate(asBits(x)))))));
    }
    template <class V> static V fast(V x) { return fromEstimate(x, estimateBits(x)); }

    // Positive denormals are scaled by 2^54 and their result by 2^27; zeros,
    // negatives, +infinity and NaNs are selected.
    template <class V> static Careful<V> careful(V x) {
        const V zeroV = V{};
        const auto denormal = (x > zeroV) & (x < constant<V>(0x0010000000000000));
        const V scaled = select(denormal, x * constant<V>(0x4350000000000000), x);
        V value = fast(scaled);
        value = select(denormal, value * constant<V>(0x41A0000000000000), value);
        const auto zero = x == zeroV;
        const auto negative = x < zeroV;
        value = select(zero, signedInfinity(x, 0x8000000000000000, 0x7FF0000000000000), value);
        value = select(negative, constant<V>(0xFFF8000000000000), value);
        value = select(x == constant<V>(0x7FF0000000000000), zeroV, value);
        value = select(x != x, x * constant<V>(0x3FF0000000000000), value);
        return {value, negative, zero};
    }
};

}  // namespace orvo::arith
