#include "frame/fp_event_raiser.h"

namespace {

// One binary64 operation whose only purpose is its effect on the flags.
// The operands are read through volatile so nothing can be folded at compile
// time, and the result goes to a volatile stack word so the operation can't
// be removed.  Both raisers work in binary64, also for binary32 kernels.
// Inlined into both, so a caller who unmasks the exception has it trap in
// the raiser itself and not in a helper the raiser jumps to.
[[gnu::always_inline]] inline void raise(orvoStatus status) {
    volatile double a, b, result;
    switch (status) {
    case orvoWarnDomain:  // 0/0: invalid
        a = 0.0;
        b = 0.0;
        result = a / b;
        break;
    case orvoWarnSingularity:  // 1/0: divide-by-zero
        a = 1.0;
        b = 0.0;
        result = a / b;
        break;
    case orvoWarnOverflow:  // largest finite squared: overflow, inexact
        a = 0x1.fffffffffffffp+1023;
        b = 0x1.fffffffffffffp+1023;
        result = a * b;
        break;
    case orvoWarnUnderflow:  // (smallest normal + 1 unit) squared: underflow, inexact
        a = 0x1.0000000000001p-1022;
        b = 0x1.0000000000001p-1022;
        result = a * b;
        break;
    default:
        return;
    }
    (void)result;
}

}  // namespace

extern "C" void FpEventRaiser32(orvoStatus status, uint32_t, const void*, const void*, void*, void*, const char*) {
    raise(status);
}

extern "C" void FpEventRaiser64(orvoStatus status, uint32_t, const void*, const void*, void*, void*, const char*) {
    raise(status);
}
