#include "arith/elementwise.h"

namespace {

using namespace orvo;
using namespace orvo::simd;

// Sqr peels to align its loads (full 256-bit loads, stores in halves): the
// same end as Add reached from the other side.
template <class Value> struct Sqr {
    using T = Value;
    using V = std::conditional_t<std::is_same_v<T, float>, f32x8, f64x4>;
    using S = T;
    static constexpr int kBlock = std::is_same_v<T, float> ? 16 : 8;
    static constexpr int kSmallCutoff = 6;
    static constexpr bool kOverlapTest = true;
    static constexpr Peel kPeel = Peel::Source;
    static constexpr bool kPaddedTail = false;
    static constexpr int kUnit = 1;
    template <class W> static W eval(W x) { return x * x; }
};

template <class Value> orvoStatus sqr(const Value* src, Value* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src, dst)) return s;
    PlainKernel<Sqr<Value>, 1>::walk({src}, dst, len);
    return orvoOk;
}

}  // namespace

ORVO_KERNEL(Sqr_32f_A24)(const orvo32f* src, orvo32f* dst, int len) { return sqr(src, dst, len); }
ORVO_KERNEL(Sqr_64f_A53)(const orvo64f* src, orvo64f* dst, int len) { return sqr(src, dst, len); }
