// FpEnvGuard forms and the event raisers, on the processor's real state.
#include <gtest/gtest.h>

#include "frame/fp_env.h"
#include "frame/fp_event_raiser.h"
#include "support/fpstate.h"

using namespace orvo;
using namespace orvo::test;

namespace {

// 1/3 in binary64 rounds differently to nearest and upward; volatile keeps
// the division at run time, under whatever state is in force.
double oneThird() {
    volatile double one = 1.0, three = 3.0;
    volatile double r = one / three;
    return r;
}
constexpr double kThirdNearest = 0x1.5555555555555p-2;
constexpr double kThirdUp = 0x1.5555555555556p-2;

}  // namespace

TEST(FpEventRaiser, EachStatusRaisesExactlyItsFlags) {
    struct Case {
        orvoStatus status;
        uint32_t flags;
    } cases[] = {
        {orvoWarnDomain, kFlagInvalid},
        {orvoWarnSingularity, kFlagDivZero},
        {orvoWarnOverflow, kFlagOverflow | kFlagInexact},
        {orvoWarnUnderflow, kFlagUnderflow | kFlagInexact},
        {orvoOk, 0},
        {orvoErrSize, 0},
        {orvoErrNullPtr, 0},
        {5, 0},
    };
    int dummy = 0;
    for (auto raiser : {FpEventRaiser32, FpEventRaiser64}) {
        for (const Case& c : cases) {
            ScopedMxcsr state(kMxcsrDefault);
            raiser(c.status, 7, &dummy, &dummy, &dummy, &dummy, "");
            EXPECT_EQ(mxcsr() & kFlagsAll, c.flags) << "status " << c.status;
        }
    }
}

TEST(MxcsrGuard, ActsOnlyWhenTheCallersStateDiffers) {
    {
        // Default state: no change, and flags raised inside stay visible.
        ScopedMxcsr state(kMxcsrDefault);
        double r;
        {
            MxcsrGuard<MxcsrFull> guard;
            r = oneThird();
        }
        EXPECT_EQ(r, kThirdNearest);
        EXPECT_EQ(mxcsr(), kMxcsrDefault | kFlagInexact);
    }
    for (uint32_t caller : {kMxcsrDefault | kRoundUp, kMxcsrDefault | kRoundUp | kFz | kDaz | kFlagOverflow,
                            kMxcsrDefault | kDaz}) {
        // Any of FZ, DAZ, RC set: computed at nearest, and the caller's word
        // comes back whole, so the inexact flag raised inside is gone.
        ScopedMxcsr state(caller);
        double r;
        uint32_t inside;
        {
            MxcsrGuard<MxcsrFull> guard;
            inside = mxcsr();
            r = oneThird();
        }
        EXPECT_EQ(r, kThirdNearest);
        EXPECT_EQ(inside & 0xE040, 0u);
        EXPECT_EQ(mxcsr(), caller);
    }
}

TEST(MxcsrGuard, TruncatingFormActsEvenForTheDefaultCaller) {
    ScopedMxcsr state(kMxcsrDefault);
    uint32_t inside;
    double r;
    {
        MxcsrGuard<MxcsrTruncating> guard;
        inside = mxcsr();
        r = oneThird();
    }
    EXPECT_EQ(inside & 0xE040, kRoundZero);
    EXPECT_EQ(r, kThirdNearest);  // toward zero equals nearest for 1/3
    EXPECT_EQ(mxcsr(), kMxcsrDefault) << "flags raised under the guard must be discarded";
    {
        ScopedMxcsr zero(kMxcsrDefault | kRoundZero);
        { MxcsrGuard<MxcsrTruncating> guard; (void)oneThird(); }
        EXPECT_EQ(mxcsr(), kMxcsrDefault | kRoundZero | kFlagInexact) << "already truncating: no reload";
    }
}

TEST(MxcsrGuard, RoundingOnlyFormKeepsDaz) {
    ScopedMxcsr state(kMxcsrDefault | kDaz | kFz | kRoundUp);
    uint32_t inside;
    double r;
    {
        MxcsrGuard<MxcsrRoundingOnly> guard;
        inside = mxcsr();
        r = oneThird();
    }
    EXPECT_EQ(inside & 0xE040, kDaz);
    EXPECT_EQ(r, kThirdNearest);
    EXPECT_EQ(mxcsr(), kMxcsrDefault | kDaz | kFz | kRoundUp);
    {
        ScopedMxcsr dazOnly(kMxcsrDefault | kDaz);
        { MxcsrGuard<MxcsrRoundingOnly> guard; (void)oneThird(); }
        EXPECT_EQ(mxcsr(), kMxcsrDefault | kDaz | kFlagInexact) << "DAZ alone is not a reason to act";
    }
    (void)kThirdUp;
}

TEST(X87Guard, SetsPrecisionAndRoundingAndRestores) {
    const uint16_t saved = x87Control();
    for (uint16_t caller : {uint16_t(0x037F), uint16_t(0x007F), uint16_t(0x0E7F), uint16_t(0x027F)}) {
        setX87Control(caller);
        uint16_t insideExtended, insideDouble;
        { X87Guard<X87Extended> g; insideExtended = x87Control(); }
        EXPECT_EQ(x87Control(), caller);
        { X87Guard<X87Double> g; insideDouble = x87Control(); }
        EXPECT_EQ(x87Control(), caller);
        EXPECT_EQ(insideExtended, (caller & 0xF0FF) | 0x0300);
        EXPECT_EQ(insideDouble, (caller & 0xF0FF) | 0x0200);
    }
    setX87Control(saved);
}

TEST(FpEnvGuard, BothGuardsTogetherRestoreBothWords) {
    const uint16_t saved = x87Control();
    setX87Control(0x007F);
    {
        ScopedMxcsr state(kMxcsrDefault | kRoundDown);
        {
            FpEnvGuard2<X87Extended, MxcsrFull> g;
            EXPECT_EQ(x87Control() & 0x0F00, 0x0300);
            EXPECT_EQ(mxcsr() & 0xE040, 0u);
        }
        EXPECT_EQ(mxcsr(), kMxcsrDefault | kRoundDown);
    }
    EXPECT_EQ(x87Control(), 0x007F);
    setX87Control(saved);
}
