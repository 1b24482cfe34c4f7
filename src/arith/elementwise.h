// Shared descriptions of the element-wise kernels.  Each result is one
// correctly rounded hardware operation under the caller's MXCSR, so there is
// no special element and no status: the kernels exist for bandwidth.
#pragma once

#include "frame/kernels.h"
#include "frame/plain.h"

namespace orvo::arith {

using namespace simd;

// src1 must be the first source operand of the instruction: of two NaNs,
// that operand's is the result.  The compiler takes IEEE addition and
// multiplication as commutative and swaps their operands at will (a memory
// operand goes second), so these two are written as the instructions.
// Subtraction can't be swapped.
#define ORVO_FIRST_OPERAND_OP(name, ss, sd, ps, pd)                                                   \
    template <class W> inline W name(W a, W b) {                                                          \
        W r;                                                                                                \
        if constexpr (std::is_same_v<W, float>) __asm__(ss " %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));      \
        else if constexpr (std::is_same_v<W, double>) __asm__(sd " %2, %1, %0" : "=x"(r) : "x"(a), "x"(b)); \
        else if constexpr (std::is_same_v<LaneOf<W>, float>) __asm__(ps " %2, %1, %0" : "=x"(r) : "x"(a), "x"(b)); \
        else __asm__(pd " %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));                                          \
        return r;                                                                                           \
    }
ORVO_FIRST_OPERAND_OP(addFirstOperand, "vaddss", "vaddsd", "vaddps", "vaddpd")
ORVO_FIRST_OPERAND_OP(mulFirstOperand, "vmulss", "vmulsd", "vmulps", "vmulpd")
#undef ORVO_FIRST_OPERAND_OP

struct AddOp { template <class W> static W apply(W a, W b) { return addFirstOperand(a, b); } };
struct SubOp { template <class W> static W apply(W a, W b) { return a - b; } };
struct MulOp { template <class W> static W apply(W a, W b) { return mulFirstOperand(a, b); } };

// Add, Sub, Mul of real arrays: stores reach a 32-byte aligned dst (the
// costlier side of a split access); short calls skip the peel and the
// overlap test; any overlap of dst with a source runs the ascending scalar
// loop, whose result is then the defined one.  src1 is the first operand of
// every instruction, so of two NaNs src1's is the result.
template <class Value, class Op> struct ElementwiseReal {
    using T = Value;
    using V = std::conditional_t<std::is_same_v<T, float>, f32x4, f64x4>;
    using S = T;
    static constexpr int kBlock = std::is_same_v<T, float> ? 8 : 16;
    static constexpr int kSmallCutoff = 6;
    static constexpr bool kOverlapTest = true;
    static constexpr Peel kPeel = Peel::Destination;
    static constexpr bool kPaddedTail = false;
    static constexpr int kUnit = 1;
    template <class W> static W eval(W a, W b) { return Op::apply(a, b); }
};

template <class Value, class Op> inline orvoStatus elementwiseReal(const Value* src1, const Value* src2, Value* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src1, src2, dst)) return s;
    PlainKernel<ElementwiseReal<Value, Op>, 2>::walk({src1, src2}, dst, len);
    return orvoOk;
}

// Add, Sub of complex arrays: the parts form one flat array of 2 len values,
// walked with the peel of the real kernels but no shortcut and no overlap
// test.  From 2^30 elements on the flat count no longer fits a signed 32-bit
// count, so the kernel walks two halves of len values, each with its own peel.
template <class Value, class Op> struct ElementwiseFlat : ElementwiseReal<Value, Op> {
    static constexpr int kSmallCutoff = 0;
    static constexpr bool kOverlapTest = false;
};

template <class Complex, class Op> inline orvoStatus elementwiseComplex(const Complex* src1, const Complex* src2, Complex* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src1, src2, dst)) return s;
    using Value = decltype(src1->re);
    using Walk = PlainKernel<ElementwiseFlat<Value, Op>, 2>;
    const Value* a = &src1->re;
    const Value* b = &src2->re;
    Value* d = &dst->re;
    if (len < 0x40000000) {
        Walk::walk({a, b}, d, 2 * static_cast<int64_t>(len));
    } else {
        Walk::walk({a, b}, d, len);
        Walk::walk({a + len, b + len}, d + len, len);
    }
    return orvoOk;
}

}  // namespace orvo::arith
