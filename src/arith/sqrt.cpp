#include "arith/sqrt.h"

#include "frame/kernels.h"

using namespace orvo;
using namespace orvo::arith;

ORVO_KERNEL(Sqrt_32f_A11)(const orvo32f* src, orvo32f* dst, int len) {
    return runBlocked<Sqrt32f<SqrtLevel::A11>>(src, dst, len);
}
ORVO_KERNEL(Sqrt_32f_A21)(const orvo32f* src, orvo32f* dst, int len) {
    return runBlocked<Sqrt32f<SqrtLevel::A21>>(src, dst, len);
}
ORVO_KERNEL(Sqrt_32f_A24)(const orvo32f* src, orvo32f* dst, int len) {
    return runBlocked<Sqrt32f<SqrtLevel::A24>>(src, dst, len);
}
ORVO_KERNEL(Sqrt_64f_A26)(const orvo64f* src, orvo64f* dst, int len) {
    return runBlocked<Sqrt64f<SqrtLevel::A26>>(src, dst, len);
}
ORVO_KERNEL(Sqrt_64f_A50)(const orvo64f* src, orvo64f* dst, int len) {
    return runBlocked<Sqrt64f<SqrtLevel::A50>>(src, dst, len);
}
ORVO_KERNEL(Sqrt_64f_A53)(const orvo64f* src, orvo64f* dst, int len) {
    return runBlocked<Sqrt64f<SqrtLevel::A53>>(src, dst, len);
}
