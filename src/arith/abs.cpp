#include "arith/elementwise.h"

namespace {

using namespace orvo;
using namespace orvo::simd;

// |x| as x times a 1.0 that carries x's sign, not as a cleared sign bit: the
// multiplication is what the caller's MXCSR and the IEEE rules act on, so a
// quiet NaN keeps its sign and payload, a signalling NaN is quieted with the
// invalid flag, DAZ and FZ flush denormals (with the denormal flag), and
// -0 * -1 gives +0.  x stays the first operand so a NaN input is the result.
template <class Value> struct Abs {
    using T = Value;
    using V = std::conditional_t<std::is_same_v<T, float>, f32x4, f64x2>;
    using S = T;
    static constexpr int kBlock = std::is_same_v<T, float> ? 8 : 4;
    static constexpr int kSmallCutoff = 0;
    static constexpr bool kOverlapTest = false;
    static constexpr Peel kPeel = Peel::None;
    static constexpr bool kPaddedTail = true;
    static constexpr int kUnit = 1;
    static constexpr uint64_t kSign = std::is_same_v<T, float> ? 0x80000000u : 0x8000000000000000u;
    static constexpr uint64_t kOne = std::is_same_v<T, float> ? 0x3F800000u : 0x3FF0000000000000u;
    template <class W> static W eval(W x) {
        const W signedOne = asFloat((asBits(x) & asBits(constant<W>(kSign))) | asBits(constant<W>(kOne)));
        return x * signedOne;
    }
};

template <class Value> orvoStatus abs(const Value* src, Value* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src, dst)) return s;
    PlainKernel<Abs<Value>, 1>::walk({src}, dst, len);
    return orvoOk;
}

}  // namespace

ORVO_KERNEL(Abs_32f_A24)(const orvo32f* src, orvo32f* dst, int len) { return abs(src, dst, len); }
ORVO_KERNEL(Abs_64f_A53)(const orvo64f* src, orvo64f* dst, int len) { return abs(src, dst, len); }
