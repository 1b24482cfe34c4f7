// Element-wise arithmetic: overlap, alignment, lengths, NaN order, and the
// IEEE details of Abs and Conj that a bit trick would get wrong.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "orvo.h"
#include "support/fpstate.h"

using namespace orvo::test;

namespace {

template <class T> auto bits(T x) {
    if constexpr (sizeof(T) == 4) return std::bit_cast<uint32_t>(x);
    else return std::bit_cast<uint64_t>(x);
}

template <class T> std::vector<T> values(int n, T scale) {
    std::vector<T> v(n);
    for (int i = 0; i < n; ++i) v[i] = scale * static_cast<T>((i * 37) % 101 - 50) / static_cast<T>(7);
    return v;
}

// A buffer whose data can start at any byte offset from a 64-byte boundary.
template <class T> struct Shifted {
    std::vector<unsigned char> raw;
    T* p;
    Shifted(int n, int byteOffset) : raw(n * sizeof(T) + 128) {
        auto base = reinterpret_cast<uintptr_t>(raw.data());
        p = reinterpret_cast<T*>((base + 63) / 64 * 64 + byteOffset);
    }
};

template <class T> using BinaryFn = orvoStatus (*)(const T*, const T*, T*, int);

template <class T> void checkBinary(BinaryFn<T> f, T (*op)(T, T)) {
    for (int len : {1, 5, 6, 7, 8, 9, 15, 16, 17, 23, 24, 31, 32, 33, 40, 100, 1000}) {
        for (int offset : {0, 4, 8, 12, 16, 24, 28}) {
            if (offset % sizeof(T) && sizeof(T) == 8 && offset % 8) continue;
            std::vector<T> a = values<T>(len, T(1)), b = values<T>(len + 3, T(3));
            Shifted<T> d(len, offset);
            ASSERT_EQ(f(a.data(), b.data() + 3, d.p, len), orvoOk);
            for (int i = 0; i < len; ++i)
                ASSERT_EQ(bits(d.p[i]), bits(op(a[i], b[i + 3]))) << "len " << len << " offset " << offset << " i " << i;
        }
    }
}

template <class T> T add(T a, T b) { return a + b; }
template <class T> T sub(T a, T b) { return a - b; }
template <class T> T mul(T a, T b) { return a * b; }

// The ascending scalar loop over possibly overlapping arrays.
template <class T> void ascending(const T* a, const T* b, T* d, int n, T (*op)(T, T)) {
    for (int i = 0; i < n; ++i) d[i] = op(a[i], b[i]);
}

}  // namespace

TEST(Elementwise, RealBinaryAtEveryLengthAndAlignment) {
    checkBinary<float>(orvoAdd_32f_A24, add<float>);
    checkBinary<float>(orvoSub_32f_A24, sub<float>);
    checkBinary<float>(orvoMul_32f_A24, mul<float>);
    checkBinary<double>(orvoAdd_64f_A53, add<double>);
    checkBinary<double>(orvoSub_64f_A53, sub<double>);
    checkBinary<double>(orvoMul_64f_A53, mul<double>);
}

TEST(Elementwise, DestinationMisalignedByOneByteStillCorrect) {
    std::vector<float> a = values<float>(50, 1), b = values<float>(50, 2);
    Shifted<float> d(50, 1);
    ASSERT_EQ(orvoAdd_32f_A24(a.data(), b.data(), d.p, 50), orvoOk);
    for (int i = 0; i < 50; ++i) {
        float v;
        std::memcpy(&v, reinterpret_cast<unsigned char*>(d.p) + i * 4, 4);
        EXPECT_EQ(v, a[i] + b[i]);
    }
}

TEST(Elementwise, OverlappingCallsGiveTheAscendingLoop) {
    // dst one element past src1: each sum feeds the next.
    for (int len : {8, 100}) {
        std::vector<float> mem = values<float>(len + 1, 1), b = values<float>(len, 2), expect = mem;
        ascending<float>(expect.data(), b.data(), expect.data() + 1, len, add<float>);
        ASSERT_EQ(orvoAdd_32f_A24(mem.data(), b.data(), mem.data() + 1, len), orvoOk);
        for (int i = 0; i <= len; ++i) EXPECT_EQ(mem[i], expect[i]) << i;
    }
    // dst one element before src2, and in place.
    std::vector<double> mem = values<double>(101, 1), a = values<double>(100, 5), expect = mem;
    ascending<double>(a.data(), expect.data() + 1, expect.data(), 100, sub<double>);
    ASSERT_EQ(orvoSub_64f_A53(a.data(), mem.data() + 1, mem.data(), 100), orvoOk);
    for (int i = 0; i < 101; ++i) EXPECT_EQ(mem[i], expect[i]) << i;
    std::vector<float> x = values<float>(1000, 1), y = values<float>(1000, 3), xx = x;
    ASSERT_EQ(orvoMul_32f_A24(x.data(), y.data(), x.data(), 1000), orvoOk);
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(x[i], xx[i] * y[i]);
}

// Two NaNs in every position of the blocks, the peel and the tail: the
// compiler may swap the operands of an addition or multiplication, which
// would hand src2's NaN to some lanes.
// Complex kernels run on values, `parts` of them an element.
template <class T> void expectFirstNaNs(BinaryFn<T> f, const char* name, int parts = 1) {
    using Bits = decltype(bits(T{}));
    const Bits quiet = sizeof(T) == 4 ? 0x7FC00000u : 0x7FF8000000000000u;
    const Bits negative = sizeof(T) == 4 ? 0x80000000u : 0x8000000000000000u;
    for (int elements : {3, 64, 77}) {
        const int len = elements * parts;
        std::vector<T> a(len), b(len), d(len);
        for (int i = 0; i < len; ++i) {
            a[i] = std::bit_cast<T>(static_cast<Bits>(quiet | (i + 1)));
            b[i] = std::bit_cast<T>(static_cast<Bits>(negative | quiet | 0x1000 | i));
        }
        ASSERT_EQ(f(a.data(), b.data(), d.data(), elements), orvoOk);
        for (int i = 0; i < len; ++i) EXPECT_EQ(bits(d[i]), bits(a[i])) << name << " len " << elements << " value " << i;
    }
}

TEST(Elementwise, FirstSourceNaNWinsAndSubtractionOrder) {
    expectFirstNaNs<float>(orvoAdd_32f_A24, "Add_32f");
    expectFirstNaNs<float>(orvoMul_32f_A24, "Mul_32f");
    expectFirstNaNs<double>(orvoAdd_64f_A53, "Add_64f");
    expectFirstNaNs<double>(orvoMul_64f_A53, "Mul_64f");
    expectFirstNaNs<float>(
        [](const float* a, const float* b, float* d, int n) {
            return orvoAdd_32fc_A24(reinterpret_cast<const orvo32fc*>(a), reinterpret_cast<const orvo32fc*>(b),
                                    reinterpret_cast<orvo32fc*>(d), n);
        },
        "Add_32fc", 2);
    expectFirstNaNs<double>(
        [](const double* a, const double* b, double* d, int n) {
            return orvoAdd_64fc_A53(reinterpret_cast<const orvo64fc*>(a), reinterpret_cast<const orvo64fc*>(b),
                                    reinterpret_cast<orvo64fc*>(d), n);
        },
        "Add_64fc", 2);
    for (int len : {3, 64}) {
        std::vector<float> a(len, 1.0f), b(len, 4.0f), d(len);
        ASSERT_EQ(orvoSub_32f_A24(a.data(), b.data(), d.data(), len), orvoOk);
        EXPECT_EQ(d[0], -3.0f);
    }
}

TEST(Elementwise, SqrAtEveryLengthAlignmentAndInPlace) {
    for (int len : {1, 6, 7, 8, 9, 15, 16, 17, 33, 100}) {
        for (int offset : {0, 8, 16, 24}) {
            Shifted<double> s(len, offset);
            Shifted<float> sf(len, offset / 2);
            std::vector<double> d(len);
            std::vector<float> df(len);
            for (int i = 0; i < len; ++i) s.p[i] = 1.1 * i - 3, sf.p[i] = 1.1f * i - 3;
            ASSERT_EQ(orvoSqr_64f_A53(s.p, d.data(), len), orvoOk);
            ASSERT_EQ(orvoSqr_32f_A24(sf.p, df.data(), len), orvoOk);
            for (int i = 0; i < len; ++i) {
                EXPECT_EQ(d[i], s.p[i] * s.p[i]);
                EXPECT_EQ(df[i], sf.p[i] * sf.p[i]);
            }
        }
    }
    std::vector<float> v = values<float>(70, 1), w = v;
    ASSERT_EQ(orvoSqr_32f_A24(v.data() + 1, v.data(), 69), orvoOk);
    for (int i = 0; i < 69; ++i) EXPECT_EQ(v[i], w[i + 1] * w[i + 1]);
}

TEST(Elementwise, ComplexAddSubPartByPart) {
    for (int len : {1, 3, 4, 5, 8, 9, 17, 50}) {
        std::vector<orvo32fc> a(len), b(len), d(len);
        std::vector<orvo64fc> c(len), e(len), f(len);
        for (int i = 0; i < len; ++i) {
            a[i] = {float(i), float(-2 * i) + 0.5f};
            b[i] = {0.25f * i, 3.0f};
            c[i] = {double(i) / 3, -1.0 * i};
            e[i] = {7.0, double(i) / 7};
        }
        ASSERT_EQ(orvoSub_32fc_A24(a.data(), b.data(), d.data(), len), orvoOk);
        ASSERT_EQ(orvoAdd_64fc_A53(c.data(), e.data(), f.data(), len), orvoOk);
        for (int i = 0; i < len; ++i) {
            EXPECT_EQ(d[i].re, a[i].re - b[i].re);
            EXPECT_EQ(d[i].im, a[i].im - b[i].im);
            EXPECT_EQ(f[i].re, c[i].re + e[i].re);
            EXPECT_EQ(f[i].im, c[i].im + e[i].im);
        }
    }
}

TEST(Abs, IsAMultiplicationBySignedOne) {
    const float negNaN = std::bit_cast<float>(0xFFC12345u);
    const float sNaN = std::bit_cast<float>(0x7F800001u);
    const float denorm = std::bit_cast<float>(0x80000003u);
    for (int len : {1, 8, 9, 16, 17}) {
        std::vector<float> s(len, -2.5f), d(len);
        s[0] = -0.0f;
        s[len - 1] = negNaN;
        ScopedMxcsr state(kMxcsrDefault);
        ASSERT_EQ(orvoAbs_32f_A24(s.data(), d.data(), len), orvoOk);
        EXPECT_EQ(bits(d[0]), len == 1 ? 0xFFC12345u : 0u) << "-0 gives +0";
        EXPECT_EQ(bits(d[len - 1]), 0xFFC12345u) << "a negative NaN keeps its sign";
        if (len > 2) {
            EXPECT_EQ(d[1], 2.5f);
        }
    }
    {
        ScopedMxcsr state(kMxcsrDefault);
        float s[3] = {1.0f, sNaN, 3.0f}, d[3];
        orvoAbs_32f_A24(s, d, 3);
        EXPECT_EQ(bits(d[1]), 0x7FC00001u) << "a signalling NaN is quieted";
        EXPECT_TRUE(mxcsr() & kFlagInvalid);
    }
    {
        ScopedMxcsr state(kMxcsrDefault | kDaz);
        float s[2] = {denorm, -1.0f}, d[2];
        orvoAbs_32f_A24(s, d, 2);
        EXPECT_EQ(bits(d[0]), 0u) << "DAZ reads a denormal as zero";
    }
    {
        ScopedMxcsr state(kMxcsrDefault | kFz);
        double s[5] = {-0x1p-1070, 1, 2, 3, -0x1p-1030}, d[5];
        orvoAbs_64f_A53(s, d, 5);
        EXPECT_EQ(d[0], 0.0) << "FZ flushes a denormal result";
        EXPECT_EQ(d[4], 0.0);
        EXPECT_EQ(d[3], 3.0);
    }
    {
        ScopedMxcsr state(kMxcsrDefault);
        double s[5] = {-0x1p-1070, -0.0, -INFINITY, 4, 5}, d[5];
        orvoAbs_64f_A53(s, d, 5);
        EXPECT_EQ(d[0], 0x1p-1070);
        EXPECT_EQ(bits(d[1]), 0u);
        EXPECT_EQ(d[2], INFINITY);
        EXPECT_TRUE(mxcsr() & kFlagDenormal);
    }
}

TEST(Conj, FlipsTheImaginarySignBitOnly) {
    const uint64_t sNaN = 0x7FF0000000000001ull;
    for (int len : {1, 2, 3, 5}) {
        std::vector<orvo64fc> s(len, orvo64fc{1.5, -2.5}), d(len);
        s[len - 1].im = std::bit_cast<double>(sNaN);
        s[len - 1].re = std::bit_cast<double>(sNaN);
        ScopedMxcsr state(kMxcsrDefault);
        ASSERT_EQ(orvoConj_64fc_A53(s.data(), d.data(), len), orvoOk);
        EXPECT_EQ(mxcsr() & kFlagsAll, 0u) << "no arithmetic, no flag";
        EXPECT_EQ(bits(d[len - 1].im), sNaN | 0x8000000000000000ull);
        EXPECT_EQ(bits(d[len - 1].re), sNaN);
        if (len > 1) {
            EXPECT_EQ(d[0].im, 2.5);
        }
    }
    for (int len : {1, 4, 5, 7, 9}) {
        std::vector<orvo32fc> s(len), d(len);
        for (int i = 0; i < len; ++i) s[i] = {float(i), i % 2 ? -0.0f : float(i + 1)};
        s[len - 1].im = std::bit_cast<float>(0x7F800001u);
        ASSERT_EQ(orvoConj_32fc_A24(s.data(), d.data(), len), orvoOk);
        for (int i = 0; i + 1 < len; ++i) {
            EXPECT_EQ(d[i].re, s[i].re);
            EXPECT_EQ(bits(d[i].im), bits(s[i].im) ^ 0x80000000u);
        }
        EXPECT_EQ(bits(d[len - 1].im), 0xFF800001u);
    }
}
