// The Guarded skeleton through two small test families whose careful path
// gives a value the fast path never does (-x instead of x/10), so the tests
// can see which elements a block recomputed: blocks, the half block and the
// remainder steps, the status walk in both forms, the guard, and the
// argument order.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <vector>

#include "frame/guarded.h"
#include "support/fpstate.h"

using namespace orvo;
using namespace orvo::simd;
using namespace orvo::test;

namespace {

// Special: every input that is not a positive normal number.  Fast: x/10
// (inexact).  Careful: -x,
// domain below zero, singularity at zero (a denormal is no zero when the
// guard has turned DAZ off).
template <class Value, int Block, bool Half, int Group, Walk W> struct TestFamily {
    using T = Value;
    using Guard = MxcsrGuard<MxcsrFull>;
    static constexpr int kBlock = Block;
    static constexpr bool kHalfBlock = Half;
    static constexpr int kGroup = Group;
    static constexpr uint64_t kFill = std::is_same_v<T, float> ? 0x40400000 : 0x4008000000000000;
    static constexpr Walk kWalk = W;
    template <class I> static auto special(I bits) {
        if constexpr (std::is_same_v<T, float>) return gtSigned(bits - 0x80800000u, 0xFEFFFFFF);
        else return gtSigned(bits - 0x80100000u, 0xFFDFFFFF);
    }
    template <class V> static V fast(V x) { return x / constant<V>(std::is_same_v<T, float> ? 0x41200000 : 0x4024000000000000); }
    template <class V> static Careful<V> careful(V x) { return {V{} - x, x < V{}, x == V{}}; }
};

using Float8 = TestFamily<float, 8, true, 4, Walk::LaneByLane>;  // gathered remainder
using Float8OneByOne = TestFamily<float, 8, false, 1, Walk::SingularityThenDomain>;
using Double4 = TestFamily<double, 4, true, 1, Walk::LaneByLane>;

template <class K> orvoStatus call(const typename K::T* s, typename K::T* d, int n) { return runGuarded<K>(s, d, n); }

// The elements that share a vector step with element p: its block, the
// half block, or its remainder group.
template <class K> std::pair<int, int> stepOf(int p, int len) {
    const int full = len / K::kBlock * K::kBlock;
    if (p < full) return {p / K::kBlock * K::kBlock, p / K::kBlock * K::kBlock + K::kBlock};
    int start = full;
    if (K::kHalfBlock && len - full >= K::kBlock / 2) {
        if (p < full + K::kBlock / 2) return {full, full + K::kBlock / 2};
        start += K::kBlock / 2;
    }
    const int first = start + (p - start) / K::kGroup * K::kGroup;
    return {first, std::min(first + K::kGroup, len)};
}

template <class K> void checkSteps() {
    using T = typename K::T;
    const T canary = T(-12345);
    for (int len = 1; len <= 40; ++len) {
        for (int p = 0; p < len; ++p) {
            std::vector<T> src(len), dst(len + 4, canary);
            for (int i = 0; i < len; ++i) src[i] = T(i + 1);
            src[p] = T(-2);
            EXPECT_EQ(call<K>(src.data(), dst.data(), len), orvoWarnDomain);
            const auto [first, last] = stepOf<K>(p, len);
            for (int i = 0; i < len; ++i) {
                const T expected = i >= first && i < last ? -src[i] : src[i] / T(10);
                ASSERT_EQ(dst[i], expected) << "len " << len << " special at " << p << " element " << i;
            }
            for (int i = len; i < len + 4; ++i) ASSERT_EQ(dst[i], canary) << "written past the end, len " << len;
        }
    }
}

}  // namespace

TEST(GuardedSkeleton, ArgumentsAreCheckedPointersFirstAndNothingIsTouched) {
    float in[4] = {1, 2, 3, 4}, out[4] = {9, 9, 9, 9};
    ScopedMxcsr state(kMxcsrDefault | kRoundUp | kFlagOverflow);
    EXPECT_EQ(call<Float8>(nullptr, out, -1), orvoErrNullPtr);
    EXPECT_EQ(call<Float8>(in, nullptr, -1), orvoErrNullPtr);
    EXPECT_EQ(call<Float8>(in, out, 0), orvoErrSize);
    EXPECT_EQ(call<Float8>(in, out, -1), orvoErrSize);
    EXPECT_EQ(mxcsr(), kMxcsrDefault | kRoundUp | kFlagOverflow);
    for (float v : out) EXPECT_EQ(v, 9.0f);
}

TEST(GuardedSkeleton, ASpecialElementRecomputesExactlyItsStep) {
    checkSteps<Float8>();          // blocks of 8, one of 4, then up to 3 gathered
    checkSteps<Float8OneByOne>();  // blocks of 8, then up to 7 one at a time
    checkSteps<Double4>();         // blocks of 4, one of 2, then one
}

TEST(GuardedSkeleton, InPlaceCallsReadEachStepBeforeWritingIt) {
    for (int len : {3, 8, 13, 21}) {
        std::vector<float> a(len), b(len);
        for (int i = 0; i < len; ++i) a[i] = b[i] = i % 5 == 2 ? -float(i) : float(i + 1);
        std::vector<float> expected(len);
        EXPECT_EQ(call<Float8>(b.data(), expected.data(), len), call<Float8>(a.data(), a.data(), len));
        EXPECT_EQ(a, expected);
    }
}

TEST(GuardedSkeleton, LaneByLaneWalkKeepsTheLastConditionAndDomainFirstInALane) {
    std::vector<float> src(24, 1.0f), dst(24);
    src[0] = -1.0f, src[7] = 0.0f;  // one block: domain then singularity
    EXPECT_EQ(call<Float8>(src.data(), dst.data(), 8), orvoWarnSingularity);
    src[0] = 0.0f, src[7] = -1.0f;
    EXPECT_EQ(call<Float8>(src.data(), dst.data(), 8), orvoWarnDomain);
    src[20] = 0.0f;  // a later block (here the half block) wins over an earlier one
    EXPECT_EQ(call<Float8>(src.data(), dst.data(), 24), orvoWarnSingularity);
    src[22] = -5.0f;  // and a later remainder step over that
    EXPECT_EQ(call<Float8>(src.data(), dst.data(), 23), orvoWarnDomain);
    // A lane past the end of a remainder step never counts.
    EXPECT_EQ(call<Float8>(src.data() + 16, dst.data(), 3), orvoOk);

    std::vector<double> d(7, 2.0), r(7);
    d[1] = 0.0, d[2] = -3.0;  // 64-bit lanes: the mask on the high words
    EXPECT_EQ(call<Double4>(d.data(), r.data(), 7), orvoWarnDomain);
    d[3] = -0.0;
    EXPECT_EQ(call<Double4>(d.data(), r.data(), 7), orvoWarnSingularity);
}

TEST(GuardedSkeleton, TwoPassWalkLetsDomainWinWithinABlock) {
    std::vector<float> src(16, 1.0f), dst(16);
    src[0] = -1.0f, src[7] = 0.0f;
    EXPECT_EQ(call<Float8OneByOne>(src.data(), dst.data(), 8), orvoWarnDomain);
    src[9] = 0.0f;  // across blocks the later one still wins
    EXPECT_EQ(call<Float8OneByOne>(src.data(), dst.data(), 16), orvoWarnSingularity);
}

TEST(GuardedSkeleton, GuardActsOnlyWhenTheCallersStateDiffers) {
    const std::vector<float> src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    std::vector<float> nearest(src.size()), dst(src.size());
    {
        // Default state: nothing changed, the inexact flag of x/10 stays.
        ScopedMxcsr state(kMxcsrDefault);
        EXPECT_EQ(call<Float8>(src.data(), nearest.data(), 11), orvoOk);
        EXPECT_EQ(mxcsr(), kMxcsrDefault | kFlagInexact);
    }
    for (uint32_t caller : {kMxcsrDefault | kRoundUp, kMxcsrDefault | kRoundZero | kFz, kMxcsrDefault | kDaz | kFlagDivZero}) {
        // Other states: computed at nearest, and the caller's word comes
        // back whole, so the flags raised inside are gone.
        ScopedMxcsr state(caller);
        EXPECT_EQ(call<Float8>(src.data(), dst.data(), 11), orvoOk);
        EXPECT_EQ(mxcsr(), caller);
        EXPECT_EQ(dst, nearest);
    }
    // Under the caller's DAZ a denormal would be a zero; inside it is not.
    ScopedMxcsr state(kMxcsrDefault | kDaz);
    const float tiny = std::bit_cast<float>(0x00000005u);
    float out;
    EXPECT_EQ(call<Float8>(&tiny, &out, 1), orvoOk);
    EXPECT_EQ(std::bit_cast<uint32_t>(out), 0x80000005u);
}
