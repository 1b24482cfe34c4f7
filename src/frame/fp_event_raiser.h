// FpEventRaiser: makes the hardware's sticky flag of a warning show the
// event.  The arguments beyond the status exist so that every kernel calls
// the raiser in one form; the raisers look at the status only.
#pragma once

#include <cstdint>

#include "orvo.h"

extern "C" {
__attribute__((visibility("hidden"))) void FpEventRaiser32(orvoStatus status, uint32_t index, const void* src,
                                                           const void* srcAgain, void* dst1, void* dst2,
                                                           const char* name);
__attribute__((visibility("hidden"))) void FpEventRaiser64(orvoStatus status, uint32_t index, const void* src,
                                                           const void* srcAgain, void* dst1, void* dst2,
                                                           const char* name);
}
