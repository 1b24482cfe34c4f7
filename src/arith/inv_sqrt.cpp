#include "arith/inv_sqrt.h"

#include "frame/kernels.h"

using namespace orvo;
using namespace orvo::arith;

ORVO_KERNEL(InvSqrt_32f_A11)(const orvo32f* src, orvo32f* dst, int len) {
    return runGuarded<InvSqrt32fNewton<InvSqrtLevel::A11>>(src, dst, len);
}
ORVO_KERNEL(InvSqrt_32f_A21)(const orvo32f* src, orvo32f* dst, int len) {
    return runGuarded<InvSqrt32fNewton<InvSqrtLevel::A21>>(src, dst, len);
}
ORVO_KERNEL(InvSqrt_32f_A24)(const orvo32f* src, orvo32f* dst, int len) {
    return runGuarded<InvSqrt32fPoly>(src, dst, len);
}
ORVO_KERNEL(InvSqrt_64f_A26)(const orvo64f* src, orvo64f* dst, int len) {
    return runGuarded<InvSqrt64f<InvSqrtLevel::A26>>(src, dst, len);
}
ORVO_KERNEL(InvSqrt_64f_A50)(const orvo64f* src, orvo64f* dst, int len) {
    return runGuarded<InvSqrt64f<InvSqrtLevel::A50>>(src, dst, len);
}
ORVO_KERNEL(InvSqrt_64f_A53)(const orvo64f* src, orvo64f* dst, int len) {
    return runGuarded<InvSqrt64f<InvSqrtLevel::A53>>(src, dst, len);
}
