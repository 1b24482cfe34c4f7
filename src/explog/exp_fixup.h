// The scalar fixups of the Exp kernels: a complete exp over the whole range
// of the element type, for the lanes that a kernel's mask sends away from its
// fast formula (overflow, underflow, infinities, NaN, and ordinary inputs
// near the thresholds).
#pragma once

#include "orvo.h"

namespace orvo {

// Both write *out and return orvoOk, orvoWarnOverflow or orvoWarnUnderflow.
__attribute__((visibility("hidden"))) orvoStatus ExpFixup32f(const orvo32f* in, orvo32f* out);
__attribute__((visibility("hidden"))) orvoStatus ExpFixup64f(const orvo64f* in, orvo64f* out);

}  // namespace orvo
