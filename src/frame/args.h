// Argument checks.  A kernel checks its arguments one after the other and
// returns at the first fault, before it reads or writes any element or
// touches the floating-point state.  The two orders differ on purpose: a
// call with a bad length and a null pointer gets orvoErrSize from a
// length-first kernel and orvoErrNullPtr from a pointer-first one.
#pragma once

#include "orvo.h"

namespace orvo {

// Blocked, plain and wrapper kernels: len, then the pointers in the order
// given (src1, src2, dst1, dst2).
template <class... P> inline orvoStatus checkLengthFirst(int len, const P*... pointers) {
    if (len < 1) return orvoErrSize;
    if (((pointers == nullptr) || ...)) return orvoErrNullPtr;
    return orvoOk;
}

// Guarded kernels: the pointers in the order given (destinations first,
// last to first, then the source), then len.
template <class... P> inline orvoStatus checkPointersFirst(int len, const P*... pointers) {
    if (((pointers == nullptr) || ...)) return orvoErrNullPtr;
    if (len < 1) return orvoErrSize;
    return orvoOk;
}

}  // namespace orvo
