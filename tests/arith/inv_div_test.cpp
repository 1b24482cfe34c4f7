// Inv and Div of real arrays: statuses and values of special divisors, the
// edges of the masks, and the groups of the batched binary64 reciprocal.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "frame/simd.h"
#include "support/call.h"
#include "support/fpstate.h"

using namespace orvo;
using namespace orvo::test;

namespace {

template <class T> auto bits(T x) { return simd::asBits(x); }

// Every real Inv and Div kernel of type T, called as a / y (Inv: 1 / y).
template <class T> void forEachKernel(auto check) {
    for (const CatalogueEntry& e : kCatalogue) {
        const bool ofType = e.type == (sizeof(T) == 4 ? ElementType::F32 : ElementType::F64);
        if ((std::strcmp(e.family, "Inv") && std::strcmp(e.family, "Div")) || !ofType) continue;
        const bool isDiv = e.shape == Shape::Binary;
        check(e.name, [&e, isDiv](std::vector<T>& a, const std::vector<T>& y, std::vector<T>& out) {
            if (!isDiv) a.assign(a.size(), T(1));
            CallArrays arrays{{isDiv ? a.data() : y.data(), y.data()}, {out.data()}};
            return call(e, arrays, static_cast<int>(y.size()));
        });
    }
}

// The special divisor y (with dividend a) in the first block, a later block
// and the tail of a call among ordinary elements.
template <class T> void expectAtEveryPlace(auto& divide, T a, T y, orvoStatus status, uint32_t mxcsrWord = kMxcsrDefault) {
    for (int pos : {0, 21, 36}) {
        std::vector<T> src1(37, T(2.5)), src2(37, T(1.25)), dst(37);
        src1[pos] = a;
        src2[pos] = y;
        ScopedMxcsr state(mxcsrWord);
        const orvoStatus got = divide(src1, src2, dst);
        const T expected = src1[pos] / y;  // under the same MXCSR
        EXPECT_EQ(got, status) << a << "/" << y << " at " << pos;
        EXPECT_TRUE(bits(dst[pos]) == bits(expected) || (std::isnan(dst[pos]) && std::isnan(expected))) << a << "/" << y;
        if (status == orvoWarnSingularity) {
            EXPECT_TRUE(mxcsr() & kFlagDivZero);
        }
    }
}

template <class T> T ordinaryValue(std::mt19937_64& g) { return std::ldexp(T(1) + T(g() >> 12) / T(0x1p52), int(g() % 200) - 100); }

}  // namespace

// Zero divisors are singularities (0/0 too, not a domain error), raised as
// divide-by-zero; NaN, infinite and denormal divisors are Ok.  Under DAZ a
// denormal divisor is a zero.  The values are the IEEE quotients.
TEST(InvDiv, SpecialDivisors) {
    auto run = [](auto zero) {
        using T = decltype(zero);
        const T inf = INFINITY, tiny = std::numeric_limits<T>::denorm_min(), denormal = std::numeric_limits<T>::min() / 3;
        forEachKernel<T>([&](const char* name, auto divide) {
            SCOPED_TRACE(name);
            for (T a : {T(1.5), T(0), -inf}) {
                for (T y : {zero, -zero}) expectAtEveryPlace(divide, a, y, orvoWarnSingularity);
                for (T y : {T(NAN), inf, -inf, tiny, -denormal}) expectAtEveryPlace(divide, a, y, orvoOk);
                for (T y : {tiny, -denormal}) expectAtEveryPlace(divide, a, y, orvoWarnSingularity, kMxcsrDefault | kDaz);
            }
        });
    };
    run(0.0f);
    run(0.0);
}

// Binary32: the last magnitude outside the band keeps the processor's raw
// estimate, the first inside gets the true quotient; Div has the same band,
// since the estimates of 1/2^126 and its neighbours flush to zero.  Binary64:
// exponent fields 1 and 0x7FE take the true quotient in the batched levels.
TEST(InvDiv, MaskEdges) {
    for (int len : {8, 1}) {
        std::vector<float> x(len, std::bit_cast<float>(0x7E7FE800u)), r(len);
        orvoInv_32f_A11(x.data(), r.data(), len);
        EXPECT_EQ(bits(r[0]), bits(simd::rcpEstimate(x[0])));
        x.assign(len, std::bit_cast<float>(0x7E7FE801u));
        orvoInv_32f_A11(x.data(), r.data(), len);
        EXPECT_EQ(bits(r[0]), bits(1.0f / x[0]));
    }
    for (auto* div : {orvoDiv_32f_A11, orvoDiv_32f_A21})
        for (uint32_t y : {0x7E7FE801u, 0x7E7FF321u, 0x7E800000u, 0xFE800000u})
            for (float a : {1.0f, -0x1.8p-20f, INFINITY}) {
                std::vector<float> src1(9, a), src2(9, std::bit_cast<float>(y)), dst(9);
                EXPECT_EQ(div(src1.data(), src2.data(), dst.data(), 9), orvoOk);
                EXPECT_EQ(bits(dst[0]), bits(a / src2[0])) << std::hex << y;
                EXPECT_EQ(bits(dst[8]), bits(a / src2[0])) << std::hex << y;
            }
    std::mt19937_64 g(3);
    std::vector<double> x(20), a(20), r(20), q(20);
    for (int trial = 0; trial < 100; ++trial) {
        for (size_t i = 0; i < x.size(); ++i) {
            x[i] = std::bit_cast<double>((g() & 0x800FFFFFFFFFFFFF) | (trial % 2 ? 0x7FEull : 1ull) << 52);
            a[i] = ordinaryValue<double>(g);
        }
        EXPECT_EQ(orvoInv_64f_A26(x.data(), r.data(), 20), orvoOk);
        EXPECT_EQ(orvoDiv_64f_A50(a.data(), x.data(), q.data(), 20), orvoOk);
        for (size_t i = 0; i < x.size(); ++i) {
            EXPECT_EQ(bits(r[i]), bits(1.0 / x[i])) << x[i];
            EXPECT_EQ(bits(q[i]), bits(a[i] / x[i])) << a[i] << "/" << x[i];
        }
    }
}

// Elements i, i+4, i+8, i+12 of a block share one divide: changing one can
// change the last bits of its three partners and of no other element; a
// NaN, zero, infinity or denormal leaves its partners within the level.
TEST(InvDiv, BatchedGroupsOfFour) {
    std::mt19937_64 g(5);
    const std::vector<double> three(16, 3.0);
    for (auto* div : {orvoDiv_64f_A26, orvoDiv_64f_A50}) {
        int partnersChanged = 0;
        for (int trial = 0; trial < 64; ++trial) {
            std::vector<double> y(16), before(16), after(16);
            for (double& v : y) v = ordinaryValue<double>(g);
            div(three.data(), y.data(), before.data(), 16);
            const int k = trial % 16;
            y[k] = ordinaryValue<double>(g);
            div(three.data(), y.data(), after.data(), 16);
            for (int j = 0; j < 16; ++j) {
                if (j % 4 == k % 4) {
                    partnersChanged += j != k && bits(after[j]) != bits(before[j]);
                    continue;
                }
                EXPECT_EQ(bits(after[j]), bits(before[j])) << j << " changed with " << k;
            }
            y[k] = std::vector<double>{NAN, 0.0, -INFINITY, 0x1p-1060}[trial % 4];
            EXPECT_EQ(div(three.data(), y.data(), after.data(), 16), y[k] == 0 ? orvoWarnSingularity : orvoOk);
            for (int j = k % 4; j < 16; j += 4) {
                if (j == k) continue;
                EXPECT_LE(std::fabs(after[j] - 3 / y[j]), 8 * std::ldexp(0x1p-52, std::ilogb(3 / y[j]))) << j;
            }
        }
        EXPECT_GT(partnersChanged, 0) << "partners never share a rounding: no groups formed";
    }
}

// The tail's one-element form is the block formula with four equal partners;
// A26 and A50 are one code; in place, the batched walk gives the same bits.
TEST(InvDiv, BatchedTailSharedCodeAndInPlace) {
    std::mt19937_64 g(9);
    for (int trial = 0; trial < 100; ++trial) {
        std::vector<double> x(17, ordinaryValue<double>(g)), r(17);
        orvoInv_64f_A50(x.data(), r.data(), 17);
        for (double v : r) EXPECT_EQ(bits(v), bits(r[16])) << x[0];
    }
    const int len = 1003;
    std::vector<double> a(len), y(len), r26(len), r50(len);
    for (int i = 0; i < len; ++i) {
        a[i] = std::bit_cast<double>(g());
        y[i] = i % 9 ? ordinaryValue<double>(g) : std::bit_cast<double>(g());
    }
    EXPECT_EQ(orvoInv_64f_A26(y.data(), r26.data(), len), orvoInv_64f_A50(y.data(), r50.data(), len));
    EXPECT_EQ(std::memcmp(r26.data(), r50.data(), len * sizeof(double)), 0);
    y[999] = 0;
    const orvoStatus status = orvoDiv_64f_A50(a.data(), y.data(), r50.data(), len);
    EXPECT_EQ(orvoDiv_64f_A26(a.data(), y.data(), r26.data(), len), status);
    EXPECT_EQ(std::memcmp(r26.data(), r50.data(), len * sizeof(double)), 0);
    EXPECT_EQ(orvoDiv_64f_A50(a.data(), y.data(), y.data(), len), status);
    EXPECT_EQ(std::memcmp(y.data(), r50.data(), len * sizeof(double)), 0);
}
