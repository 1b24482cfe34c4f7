// The six real natural-log kernels: Blocked, 16 binary32 or 8 binary64
// elements a block, MXCSR left as the caller has it.
#include "explog/ln.h"

#include "frame/blocked.h"
#include "frame/kernels.h"

using namespace orvo;
using namespace orvo::explog;

ORVO_KERNEL(Ln_32f_A11)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<LnA11>(src, dst, len); }
ORVO_KERNEL(Ln_32f_A21)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<LnA21>(src, dst, len); }
ORVO_KERNEL(Ln_32f_A24)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<LnA24>(src, dst, len); }
ORVO_KERNEL(Ln_64f_A26)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<LnA26>(src, dst, len); }
ORVO_KERNEL(Ln_64f_A50)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<LnA50>(src, dst, len); }
ORVO_KERNEL(Ln_64f_A53)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<LnA53>(src, dst, len); }
