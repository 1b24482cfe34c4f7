#include "arith/inv_div.h"

using namespace orvo;
using namespace orvo::invdiv;

ORVO_KERNEL(Inv_32f_A11)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<InvEstimate32<RawEstimate>>(src, dst, len); }
ORVO_KERNEL(Inv_32f_A21)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<InvEstimate32<NewtonStep>>(src, dst, len); }
ORVO_KERNEL(Inv_32f_A24)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<InvDivide<float>>(src, dst, len); }

ORVO_KERNEL(Div_32f_A11)(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len) {
    return runBlocked<DivEstimate32<RawEstimate>>(src1, src2, dst, len);
}
ORVO_KERNEL(Div_32f_A21)(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len) {
    return runBlocked<DivEstimate32<NewtonStep>>(src1, src2, dst, len);
}
ORVO_KERNEL(Div_32f_A24)(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len) {
    return runBlocked<DivDivide<float>>(src1, src2, dst, len);
}

// A26 and A50 are one code: the batched reciprocal holds 50 bits.
ORVO_KERNEL(Inv_64f_A26)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<InvBatched64>(src, dst, len); }
ORVO_KERNEL(Inv_64f_A50)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<InvBatched64>(src, dst, len); }
ORVO_KERNEL(Inv_64f_A53)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<InvDivide<double>>(src, dst, len); }

ORVO_KERNEL(Div_64f_A26)(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len) {
    return runBlocked<DivBatched64>(src1, src2, dst, len);
}
ORVO_KERNEL(Div_64f_A50)(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len) {
    return runBlocked<DivBatched64>(src1, src2, dst, len);
}
ORVO_KERNEL(Div_64f_A53)(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len) {
    return runBlocked<DivDivide<double>>(src1, src2, dst, len);
}
