#include "arith/elementwise.h"

using namespace orvo::arith;

ORVO_KERNEL(Sub_32f_A24)(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len) {
    return elementwiseReal<float, SubOp>(src1, src2, dst, len);
}
ORVO_KERNEL(Sub_64f_A53)(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len) {
    return elementwiseReal<double, SubOp>(src1, src2, dst, len);
}
ORVO_KERNEL(Sub_32fc_A24)(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len) {
    return elementwiseComplex<orvo32fc, SubOp>(src1, src2, dst, len);
}
ORVO_KERNEL(Sub_64fc_A53)(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len) {
    return elementwiseComplex<orvo64fc, SubOp>(src1, src2, dst, len);
}
