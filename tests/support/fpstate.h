// The caller's floating-point state as the tests set and inspect it.
#pragma once

#include <xmmintrin.h>

#include <cstdint>

namespace orvo::test {

constexpr uint32_t kMxcsrDefault = 0x1F80;  // all exceptions masked, nearest, no FZ/DAZ
constexpr uint32_t kFlagInvalid = 0x01, kFlagDenormal = 0x02, kFlagDivZero = 0x04, kFlagOverflow = 0x08,
                   kFlagUnderflow = 0x10, kFlagInexact = 0x20, kFlagsAll = 0x3F;
constexpr uint32_t kDaz = 0x0040, kFz = 0x8000;
constexpr uint32_t kRoundNearest = 0x0000, kRoundDown = 0x2000, kRoundUp = 0x4000, kRoundZero = 0x6000;

inline uint32_t mxcsr() { return _mm_getcsr(); }
inline void setMxcsr(uint32_t w) { _mm_setcsr(w); }
inline uint16_t x87Control() {
    uint16_t w;
    __asm__ volatile("fnstcw %0" : "=m"(w));
    return w;
}
inline void setX87Control(uint16_t w) { __asm__ volatile("fldcw %0" : : "m"(w)); }

// Sets MXCSR for the life of a scope and puts the default back after.
struct ScopedMxcsr {
    explicit ScopedMxcsr(uint32_t w) { setMxcsr(w); }
    ~ScopedMxcsr() { setMxcsr(kMxcsrDefault); }
};

}  // namespace orvo::test
