#include "arith/elementwise.h"

namespace {

using namespace orvo;
using namespace orvo::simd;

// Conj flips the sign bit of each imaginary part by exclusive-or with a
// replicated (0, sign) pattern.  No arithmetic runs: payloads are untouched,
// a signalling NaN stays signalling, no flag is raised, MXCSR has no effect.
template <class W> W flipImaginarySigns(W x) {
    using Bits = BitsOf<W>;
    using Lane = LaneOf<Bits>;
    constexpr Lane sign = Lane(1) << (sizeof(Lane) * 8 - 1);
    Bits mask;
    for (int i = 0; i < kLanes<W>; ++i) mask[i] = (i & 1) ? sign : 0;
    return asFloat(asBits(x) ^ mask);
}

// 32fc: four complex elements a block, then the padded last block.
struct Conj32fc {
    using T = float;
    using V = f32x4;
    using S = f32x4;
    static constexpr int kBlock = 8;
    static constexpr int kSmallCutoff = 0;
    static constexpr bool kOverlapTest = false;
    static constexpr Peel kPeel = Peel::None;
    static constexpr bool kPaddedTail = true;
    static constexpr int kUnit = 2;
    template <class W> static W eval(W x) { return flipImaginarySigns(x); }
};

// 64fc: two complex elements a turn, one 128-bit step for a last odd one.
struct Conj64fc {
    using T = double;
    using V = f64x2;
    using S = f64x2;
    static constexpr int kBlock = 4;
    static constexpr int kSmallCutoff = 0;
    static constexpr bool kOverlapTest = false;
    static constexpr Peel kPeel = Peel::None;
    static constexpr bool kPaddedTail = false;
    static constexpr int kUnit = 2;
    template <class W> static W eval(W x) { return flipImaginarySigns(x); }
};

template <class K, class Complex> orvoStatus conj(const Complex* src, Complex* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src, dst)) return s;
    PlainKernel<K, 1>::walk({&src->re}, &dst->re, 2 * static_cast<int64_t>(len));
    return orvoOk;
}

}  // namespace

ORVO_KERNEL(Conj_32fc_A24)(const orvo32fc* src, orvo32fc* dst, int len) { return conj<Conj32fc>(src, dst, len); }
ORVO_KERNEL(Conj_64fc_A53)(const orvo64fc* src, orvo64fc* dst, int len) { return conj<Conj64fc>(src, dst, len); }
