// The Blocked skeleton through small test kernels: a fast formula that is
// wrong on purpose for the flagged lanes, fixups that return statuses, and a
// raiser that records what it is told.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/blocked.h"

using namespace orvo;
using namespace orvo::simd;

namespace {

struct Event {
    orvoStatus status;
    uint32_t index;
    bool operator==(const Event&) const = default;
};
thread_local std::vector<Event> events;
thread_local float overwriteWith = NAN;  // what the "trap handler" stores

void record(orvoStatus s, uint32_t index, const void*, const void*, void* dst1, void*, const char* name) {
    EXPECT_STREQ(name, "");
    events.push_back({s, index});
    if (!std::isnan(overwriteWith)) static_cast<float*>(dst1)[index] = overwriteWith;
}

// Fast path: 2x + 1.  Flagged: |x| > 32 (and NaN, infinities).  The fixup
// tells overflow for x > 64, domain for x < -64, and mends the rest with
// status 0; the fast path's value is never kept for a flagged lane.
struct TestUnary {
    using T = float;
    static constexpr int kBlock = 16;
    template <class V> static V eval(V x) { return x * constant<V>(0x40000000) + constant<V>(0x3F800000); }
    template <class I> static auto special(I bits) { return gtSigned(bits & bitsConstant<float>(0x7FFFFFFF) , 0x42000000); }
    static orvoStatus fixup(const float* in, float* out) {
        const float x = *in;
        if (x > 64) { *out = INFINITY; return orvoWarnOverflow; }
        if (x < -64) { *out = NAN; return orvoWarnDomain; }
        *out = -x;  // distinguishable from the fast path
        return orvoOk;
    }
    static constexpr auto raiseEvent = record;
};

// Binary64, two inputs, block of 8, mask on the high words of both.
struct TestBinary {
    using T = double;
    static constexpr int kBlock = 8;
    template <class V> static V eval(V x, V y) { return x - y; }
    template <class I> static auto special(I hx, I hy) { return gtSigned(hx, 0x40500000) | gtSigned(hy, 0x40500000); }
    static orvoStatus fixup(const double* a, const double* b, double* out) {
        *out = 1000 + *a + *b;
        return *a > 100 ? orvoWarnUnderflow : orvoOk;
    }
};

// Two outputs, block of 8.
struct TestPair {
    using T = float;
    static constexpr int kBlock = 8;
    template <class V> static void eval(V x, V& a, V& b) { a = x + x; b = x * x; }
    template <class I> static auto special(I bits) { return gtSigned(bits, 0x42C80000); }  // x > 100
    static orvoStatus fixup(const float* in, float* a, float* b) { *a = -*in; *b = -1; return orvoWarnOverflow; }
    static constexpr auto raiseEvent = record;
};

orvoStatus unary(const float* s, float* d, int n) { return runBlocked<TestUnary>(s, d, n); }

std::vector<float> ordinary(int n) {
    std::vector<float> v(n);
    for (int i = 0; i < n; ++i) v[i] = 0.25f * static_cast<float>(i % 50) - 5.0f;
    return v;
}

}  // namespace

TEST(BlockedSkeleton, ElementResultDoesNotDependOnItsPlace) {
    const float specials[] = {40.0f, 100.0f, -100.0f, NAN, INFINITY, -INFINITY, 32.0f};
    for (int len : {1, 7, 15, 16, 17, 31, 32, 33, 100}) {
        for (int pos : {0, 1, 14, 15, 16, 31, len - 1}) {
            if (pos < 0 || pos >= len) continue;
            for (float sp : specials) {
                std::vector<float> src = ordinary(len), dst(len);
                src[pos] = sp;
                events.clear();
                const orvoStatus status = unary(src.data(), dst.data(), len);
                for (int i = 0; i < len; ++i) {
                    float alone;
                    const orvoStatus aloneStatus = unary(&src[i], &alone, 1);
                    EXPECT_EQ(std::bit_cast<uint32_t>(dst[i]), std::bit_cast<uint32_t>(alone))
                        << "len " << len << " element " << i << " special at " << pos;
                    if (i == pos) {
                        EXPECT_EQ(status, aloneStatus);
                    }
                }
            }
        }
    }
}

TEST(BlockedSkeleton, FlaggedLanesTakeTheFixupAndUnflaggedKeepTheFormula) {
    std::vector<float> src = ordinary(40), dst(40);
    src[5] = 40.0f;   // flagged, status 0: fixup's value
    src[6] = 32.0f;   // at the threshold: fast path
    src[35] = 33.0f;  // tail, flagged
    events.clear();
    EXPECT_EQ(unary(src.data(), dst.data(), 40), orvoOk);
    EXPECT_EQ(dst[5], -40.0f);
    EXPECT_EQ(dst[6], 65.0f);
    EXPECT_EQ(dst[35], -33.0f);
    EXPECT_EQ(dst[7], src[7] * 2 + 1);
    EXPECT_TRUE(events.empty()) << "a lane whose fixup returns 0 raises nothing";
}

TEST(BlockedSkeleton, LastNonZeroStatusWinsAndTheRaiserGetsEachIndex) {
    for (int offset : {0, 32}) {  // in blocks, then in the tail
        std::vector<float> src = ordinary(offset + 12), dst(src.size());
        src[offset + 3] = -100.0f;  // domain
        src[offset + 9] = 100.0f;   // overflow
        events.clear();
        EXPECT_EQ(unary(src.data(), dst.data(), static_cast<int>(src.size())), orvoWarnOverflow);
        const std::vector<Event> expected = {{orvoWarnDomain, uint32_t(offset + 3)}, {orvoWarnOverflow, uint32_t(offset + 9)}};
        EXPECT_EQ(events, expected);
        std::swap(src[offset + 3], src[offset + 9]);
        EXPECT_EQ(unary(src.data(), dst.data(), static_cast<int>(src.size())), orvoWarnDomain);
    }
}

TEST(BlockedSkeleton, WhatTheRaiserLeavesInTheElementIsStored) {
    for (int pos : {4, 33}) {
        std::vector<float> src = ordinary(36), dst(36);
        src[pos] = 100.0f;
        overwriteWith = 7.5f;
        EXPECT_EQ(unary(src.data(), dst.data(), 36), orvoWarnOverflow);
        overwriteWith = NAN;
        EXPECT_EQ(dst[pos], 7.5f);
    }
}

TEST(BlockedSkeleton, InPlaceWithSpecialsEqualsOutOfPlace) {
    std::vector<float> src = ordinary(53);
    for (int i : {0, 3, 15, 16, 17, 40, 52}) src[i] = (i % 2) ? 100.0f : -40.0f;
    std::vector<float> out(53), inplace = src;
    const orvoStatus a = unary(src.data(), out.data(), 53);
    const orvoStatus b = unary(inplace.data(), inplace.data(), 53);
    EXPECT_EQ(a, b);
    for (int i = 0; i < 53; ++i) EXPECT_EQ(std::bit_cast<uint32_t>(out[i]), std::bit_cast<uint32_t>(inplace[i])) << i;
}

TEST(BlockedSkeleton, TwoInputsMaskOnEitherHighWord) {
    std::vector<double> a(21), b(21), d(21);
    for (int i = 0; i < 21; ++i) a[i] = i, b[i] = 0.5 * i;
    a[2] = 200;   // flagged by a, underflow status
    b[10] = 70;   // flagged by b, status 0
    b[20] = 65;   // tail, flagged by b
    EXPECT_EQ((runBlocked<TestBinary>(a.data(), b.data(), d.data(), 21)), orvoWarnUnderflow);
    EXPECT_EQ(d[2], 1000 + 200 + 1.0);
    EXPECT_EQ(d[10], 1000 + 10 + 70.0);
    EXPECT_EQ(d[20], 1000 + 20 + 65.0);
    EXPECT_EQ(d[3], 1.5);
}

TEST(BlockedSkeleton, PairWritesBothOutputs) {
    std::vector<float> s(11), a(11), b(11);
    for (int i = 0; i < 11; ++i) s[i] = float(i);
    s[1] = 200;
    s[9] = 300;
    events.clear();
    EXPECT_EQ(runBlockedPair<TestPair>(s.data(), a.data(), b.data(), 11), orvoWarnOverflow);
    EXPECT_EQ(a[1], -200.0f);
    EXPECT_EQ(b[1], -1.0f);
    EXPECT_EQ(a[9], -300.0f);
    EXPECT_EQ(a[4], 8.0f);
    EXPECT_EQ(b[4], 16.0f);
    EXPECT_EQ(events.size(), 2u);
}
