// FpEnvGuard: puts the floating-point state a kernel's arithmetic needs in
// force for the length of a call, and gives the caller's state back at exit.
//
// The guard acts only when the caller's state differs from the target, and
// then reloads the whole saved word at exit.  Loading MXCSR or the x87
// control word is slow, so the common caller (default state) pays one store
// and one test.  The consequence is deliberate: under the default state the
// flags the kernel raised stay visible; under any other state the reload at
// exit discards them, because the saved word holds the flags of entry.
#pragma once

#include <cstdint>
#include <type_traits>

namespace orvo {

inline uint32_t readMxcsr() {
    uint32_t w;
    __asm__ volatile("vstmxcsr %0" : "=m"(w) : : "memory");
    return w;
}
inline void writeMxcsr(uint32_t w) { __asm__ volatile("vldmxcsr %0" : : "m"(w) : "memory"); }
inline uint16_t readX87Control() {
    uint16_t w;
    __asm__ volatile("fnstcw %0" : "=m"(w) : : "memory");
    return w;
}
inline void writeX87Control(uint16_t w) { __asm__ volatile("fldcw %0" : : "m"(w) : "memory"); }

// Forms of the MXCSR guard: which bits are tested, what they must equal,
// and how the new word is built from the caller's.
struct MxcsrFull {        // FZ, DAZ off; round to nearest
    static constexpr uint32_t kTestMask = 0xE040, kTarget = 0x0000, kKeep = 0xFFFF1FBF, kSet = 0x0000;
};
struct MxcsrTruncating {  // FZ, DAZ off; round toward zero
    static constexpr uint32_t kTestMask = 0xE040, kTarget = 0x6000, kKeep = 0xFFFF1FBF, kSet = 0x6000;
};
struct MxcsrRoundingOnly {  // FZ off; round to nearest; DAZ as the caller has it
    static constexpr uint32_t kTestMask = 0xE000, kTarget = 0x0000, kKeep = 0xFFFF1FFF, kSet = 0x0000;
};

// Forms of the x87 guard: precision and rounding control together.
struct X87Extended {  // 64-bit significand, round to nearest
    static constexpr uint16_t kTestMask = 0x0F00, kTarget = 0x0300, kKeep = 0xF0FF, kSet = 0x0300;
};
struct X87Double {    // 53-bit significand, round to nearest
    static constexpr uint16_t kTestMask = 0x0F00, kTarget = 0x0200, kKeep = 0xF0FF, kSet = 0x0200;
};

template <class Form> class MxcsrGuard {
public:
    MxcsrGuard() : saved_(readMxcsr()), changed_((saved_ & Form::kTestMask) != Form::kTarget) {
        if (changed_) writeMxcsr((saved_ & Form::kKeep) | Form::kSet);
    }
    ~MxcsrGuard() {
        if (changed_) writeMxcsr(saved_);
    }
    MxcsrGuard(const MxcsrGuard&) = delete;
    MxcsrGuard& operator=(const MxcsrGuard&) = delete;

private:
    uint32_t saved_;
    bool changed_;
};

template <class Form> class X87Guard {
public:
    X87Guard() : saved_(readX87Control()), changed_((saved_ & Form::kTestMask) != Form::kTarget) {
        if (changed_) writeX87Control(static_cast<uint16_t>((saved_ & Form::kKeep) | Form::kSet));
    }
    ~X87Guard() {
        if (changed_) writeX87Control(saved_);
    }
    X87Guard(const X87Guard&) = delete;
    X87Guard& operator=(const X87Guard&) = delete;

private:
    uint16_t saved_;
    bool changed_;
};

// A kernel with both guards enters the x87 one first.  Exit order is of no
// effect on the result (the two words are independent); members are
// destroyed in reverse, so MXCSR is reloaded first.
template <class X87Form, class MxcsrForm> struct FpEnvGuard2 {
    X87Guard<X87Form> x87;
    MxcsrGuard<MxcsrForm> mxcsr;
};

template <class Form> using FpEnvGuard = std::conditional_t<std::is_same_v<Form, X87Extended> || std::is_same_v<Form, X87Double>,
                                                            X87Guard<Form>, MxcsrGuard<Form>>;

}  // namespace orvo
