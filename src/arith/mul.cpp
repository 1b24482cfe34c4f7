#include "arith/elementwise.h"

using namespace orvo::arith;

ORVO_KERNEL(Mul_32f_A24)(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len) {
    return elementwiseReal<float, MulOp>(src1, src2, dst, len);
}
ORVO_KERNEL(Mul_64f_A53)(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len) {
    return elementwiseReal<double, MulOp>(src1, src2, dst, len);
}
