// The six Exp kernels: their tables against the tables' rules, the values the
// fast paths give at 0, the ends of the range with statuses and flags,
// special lanes among ordinary ones, and accuracy against MPFR.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <type_traits>
#include <vector>

#include "explog/exp_tables.h"
#include "orvo.h"
#include "support/fpstate.h"
#include "tables/exp_table64.h"

using namespace orvo;
using namespace orvo::test;

namespace {

template <class T> using BitsOf = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
template <class T> using Kernel = orvoStatus (*)(const T*, T*, int);

template <class T> struct Level {
    const char* name;
    Kernel<T> kernel;
    int correctBits;    // the level's promise
    BitsOf<T> atZero;   // what its fast path gives at 0
};

const Level<float> kExp32[] = {
    {"A11", orvoExp_32f_A11, 11, 0x3F7FFB49},
    {"A21", orvoExp_32f_A21, 21, 0x3F800001},
    {"A24", orvoExp_32f_A24, 24, 0x3F800000},
};
const Level<double> kExp64[] = {
    {"A26", orvoExp_64f_A26, 26, 0x3FF000000001D8C0},
    {"A50", orvoExp_64f_A50, 50, 0x3FEFFFFFFFFFFFFF},
    {"A53", orvoExp_64f_A53, 53, 0x3FF0000000000000},
};

template <class T> constexpr bool kSingle = sizeof(T) == 4;
template <class T> constexpr int kBlock = kSingle<T> ? 16 : 8;
template <class T> constexpr int kPrecision = kSingle<T> ? 24 : 53;
template <class T> constexpr long kMinExponent = kSingle<T> ? -126 : -1022;

template <class T> T fromBits(BitsOf<T> b) { return std::bit_cast<T>(b); }
template <class T> BitsOf<T> bitsOf(T v) { return std::bit_cast<BitsOf<T>>(v); }

struct Big {
    mpfr_t v;
    Big() { mpfr_init2(v, 256); }
    ~Big() { mpfr_clear(v); }
};

void exactExp(Big& out, double x) {
    mpfr_set_d(out.v, x, MPFR_RNDN);
    mpfr_exp(out.v, out.v, MPFR_RNDN);
}

// exp(x) rounded once to T, denormals included.
template <class T> T correctlyRounded(T x) {
    Big e;
    exactExp(e, x);
    if constexpr (kSingle<T>) return mpfr_get_flt(e.v, MPFR_RNDN);
    else return mpfr_get_d(e.v, MPFR_RNDN);
}

// |got - exp(x)| in ulps of the exact value's binade (the denormal ulp below
// the normal range).  Only for finite exact values of T's range.
template <class T> double ulpError(const Big& exact, T got) {
    Big d;
    const long binade = std::max<long>(mpfr_get_exp(exact.v) - 1, kMinExponent<T>);
    mpfr_sub_d(d.v, exact.v, got, MPFR_RNDN);
    mpfr_mul_2si(d.v, d.v, kPrecision<T> - 1 - binade, MPFR_RNDN);
    return std::fabs(mpfr_get_d(d.v, MPFR_RNDN));
}

template <class T> double boundUlps(const Level<T>& level) { return std::ldexp(1.0, kPrecision<T> - level.correctBits); }

// Ordinary inputs that take every level's fast path.
template <class T> std::vector<T> ordinary(int n) {
    std::vector<T> v(n);
    for (int i = 0; i < n; ++i) v[i] = static_cast<T>(0.731 * (i % 37) - 13.0);
    return v;
}

template <class T> orvoStatus run(const Level<T>& level, const std::vector<T>& src, std::vector<T>& dst) {
    dst.assign(src.size(), T(-1234));
    return level.kernel(src.data(), dst.data(), static_cast<int>(src.size()));
}

// ---------------------------------------------------------------------------

void twoTo(Big& out, int j, int n) {
    mpfr_set_si(out.v, j, MPFR_RNDN);
    mpfr_div_si(out.v, out.v, n, MPFR_RNDN);
    mpfr_exp2(out.v, out.v, MPFR_RNDN);
}

TEST(ExpTables, EachFollowsItsRuleAndTheQuotedRows) {
    EXPECT_EQ(bitsOf(ExpTable512f[1]), 0x3F802C64u);
    EXPECT_EQ(bitsOf(ExpTable128f[1][0]), 0x3F80B1EDu);
    EXPECT_EQ(bitsOf(ExpTable128f[1][1]), 0x331FB333u);
    EXPECT_EQ(bitsOf(ExpTable64Scaled[0]), 0x3F0EBFBA4E01A90Du);
    EXPECT_EQ(bitsOf(ExpTable1024Scaled[0]), 0x3FC5555556E68764u);
    EXPECT_EQ(bitsOf(ExpTable64Abs[1][0]), 0x3FF02C9A3E778061u);
    EXPECT_EQ(bitsOf(ExpTable64Abs[1][1]), 0xBC719083535B085Du);
    EXPECT_EQ(bitsOf(ExpTable64Rel[1][0]), 0x3FF02C9A3E778061u);
    EXPECT_EQ(bitsOf(ExpTable64Rel[1][1]), 0xBC7160139CD8DC5Du);

    Big v, rest;
    for (int j = 0; j < 512; ++j) {
        twoTo(v, j, 512);
        EXPECT_EQ(bitsOf(ExpTable512f[j]), bitsOf(mpfr_get_flt(v.v, MPFR_RNDN))) << "ExpTable512f " << j;
    }
    for (int j = 0; j < 128; ++j) {
        twoTo(v, j, 128);
        const float hi = mpfr_get_flt(v.v, MPFR_RNDN);
        mpfr_sub_d(rest.v, v.v, hi, MPFR_RNDN);
        EXPECT_EQ(bitsOf(ExpTable128f[j][0]), bitsOf(hi)) << "ExpTable128f " << j;
        EXPECT_EQ(bitsOf(ExpTable128f[j][1]), bitsOf(mpfr_get_flt(rest.v, MPFR_RNDN))) << "ExpTable128f " << j;
    }
    auto checkScaled = [&](const double* table, int n) {
        for (int j = 0; j < n; ++j) {
            twoTo(v, j, n);
            mpfr_mul_d(v.v, v.v, table[0], MPFR_RNDN);
            EXPECT_EQ(bitsOf(table[j]), bitsOf(mpfr_get_d(v.v, MPFR_RNDN))) << "scaled table of " << n << ", row " << j;
        }
    };
    checkScaled(ExpTable64Scaled, 64);
    checkScaled(ExpTable1024Scaled, 1024);
    for (int j = 0; j < 64; ++j) {
        twoTo(v, j, 64);
        const double hi = mpfr_get_d(v.v, MPFR_RNDN);
        EXPECT_EQ(bitsOf(ExpTable64Abs[j][0]), bitsOf(hi)) << j;
        EXPECT_EQ(bitsOf(ExpTable64Rel[j][0]), bitsOf(hi)) << j;
        mpfr_sub_d(rest.v, v.v, hi, MPFR_RNDN);
        EXPECT_EQ(bitsOf(ExpTable64Abs[j][1]), bitsOf(mpfr_get_d(rest.v, MPFR_RNDN))) << "ExpTable64Abs " << j;
        mpfr_div_d(rest.v, v.v, hi, MPFR_RNDN);
        mpfr_sub_ui(rest.v, rest.v, 1, MPFR_RNDN);
        EXPECT_EQ(bitsOf(ExpTable64Rel[j][1]), bitsOf(mpfr_get_d(rest.v, MPFR_RNDN))) << "ExpTable64Rel " << j;
    }
}

// ---------------------------------------------------------------------------

// The polynomials are balanced for least maximal error, not for exp(0) = 1;
// zeros of either sign and denormals are ordinary fast-path inputs.
template <class T> void checkAtZero(const Level<T>& level) {
    const T zeros[] = {T(0), -T(0), fromBits<T>(1), -fromBits<T>(1), std::numeric_limits<T>::denorm_min() * 12345,
                       std::numeric_limits<T>::min() - std::numeric_limits<T>::denorm_min()};
    for (int len : {1, 5, kBlock<T> + 5}) {
        std::vector<T> src(len), dst;
        for (int i = 0; i < len; ++i) src[i] = zeros[i % 6];
        EXPECT_EQ(run(level, src, dst), orvoOk) << level.name;
        for (int i = 0; i < len; ++i)
            EXPECT_EQ(bitsOf(dst[i]), level.atZero) << level.name << " at " << src[i] << ", len " << len;
    }
}

TEST(ExpFastPath, ZerosAndDenormalsGiveEachLevelsValueAtZero) {
    for (const auto& level : kExp32) checkAtZero(level);
    for (const auto& level : kExp64) checkAtZero(level);
}

// ---------------------------------------------------------------------------

enum class Expect { Finite, Infinity, Normal, Denormal, Zero, CorrectlyRounded };

template <class T> struct LimitCase {
    BitsOf<T> input;
    Expect expect;
    orvoStatus status;
    uint32_t flag;  // the flag the event shows (0: none to show)
};

template <class T> bool looksLike(T r, Expect e, T x) {
    const T smallestNormal = std::numeric_limits<T>::min();
    switch (e) {
    case Expect::Finite: return std::isfinite(r) && r > 1;
    case Expect::Infinity: return std::isinf(r) && r > 0;
    case Expect::Normal: return r >= smallestNormal && std::isfinite(r);
    case Expect::Denormal: return r > 0 && r < smallestNormal;
    case Expect::Zero: return bitsOf(r) == 0;
    case Expect::CorrectlyRounded: return bitsOf(r) == bitsOf(correctlyRounded(x));
    }
    return false;
}

// Each case alone (the tail) and at lane 3 of a block of ordinary inputs.
template <class T> void checkLimits(const Level<T>& level, const std::vector<LimitCase<T>>& cases) {
    for (const auto& c : cases) {
        const T x = fromBits<T>(c.input);
        for (int len : {1, kBlock<T>}) {
            std::vector<T> src = ordinary<T>(len), dst;
            const int at = len == 1 ? 0 : 3;
            src[at] = x;
            setMxcsr(kMxcsrDefault);
            const orvoStatus status = run(level, src, dst);
            const uint32_t flags = mxcsr() & kFlagsAll;
            setMxcsr(kMxcsrDefault);
            SCOPED_TRACE(::testing::Message() << level.name << " x = " << x << " (0x" << std::hex << c.input << ")"
                                              << std::dec << ", len " << len);
            EXPECT_EQ(status, c.status);
            EXPECT_TRUE(looksLike(dst[at], c.expect, x)) << "result " << dst[at];
            if (c.flag) {
                EXPECT_TRUE(flags & c.flag) << "flags " << flags;
            }
            // Infinities raise no event.  (Finite lanes with status 0 may
            // have set flags in the fast formula before their fixup ran.)
            if (std::isinf(x)) {
                EXPECT_FALSE(flags & (kFlagOverflow | kFlagUnderflow)) << "flags " << flags;
            }
            if (std::isfinite(dst[at]) && dst[at] != 0) {
                Big e;
                exactExp(e, x);
                EXPECT_LE(ulpError(e, dst[at]), boundUlps(level));
            }
        }
    }
}

TEST(ExpLimits, Binary32OverflowUnderflowAndInfinities) {
    using E = Expect;
    const std::vector<LimitCase<float>> cases = {
        {0x42B17217, E::Finite, orvoOk, 0},                            // 88.72283172607422
        {0x42B17218, E::Infinity, orvoWarnOverflow, kFlagOverflow},     // the next one up
        {0x7F7FFFFF, E::Infinity, orvoWarnOverflow, kFlagOverflow},
        {0xC2AEAC4F, E::Normal, orvoOk, 0},                            // -87.33654: still normal
        {0xC2AEAC50, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},  // the next one down
        {0xC2C80000, E::CorrectlyRounded, orvoWarnUnderflow, kFlagUnderflow},
        {0xC2CFF1B4, E::CorrectlyRounded, orvoWarnUnderflow, kFlagUnderflow},  // -103.97207641601562
        {0xC2CFF1B5, E::Zero, orvoWarnUnderflow, kFlagUnderflow},              // the next one down
        {0xFF7FFFFF, E::Zero, orvoWarnUnderflow, kFlagUnderflow},
        {0x7F800000, E::Infinity, orvoOk, 0},
        {0xFF800000, E::Zero, orvoOk, 0},
    };
    for (const auto& level : kExp32) checkLimits(level, cases);
}

TEST(ExpLimits, Binary64OverflowUnderflowAndInfinities) {
    using E = Expect;
    const std::vector<LimitCase<double>> cases = {
        {0x40862E42FEFA39EF, E::Finite, orvoOk, 0},  // 709.78271289338397: exponent 1024 before the doubling
        {0x40862E42FEFA39F0, E::Infinity, orvoWarnOverflow, kFlagOverflow},
        {0x7FEFFFFFFFFFFFFF, E::Infinity, orvoWarnOverflow, kFlagOverflow},
        {0xC086232BDD7ABCD2, E::Normal, orvoOk, 0},  // -708.39641853226408
        {0xC086232BDD7ABCD3, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},
        {0xC087000000000000, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},  // -736: the unsplit path
        {0xC0874910D52D3051, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},  // -745.13321910194111
        {0xC0874910D52D3052, E::Zero, orvoWarnUnderflow, kFlagUnderflow},
        {0xFFEFFFFFFFFFFFFF, E::Zero, orvoWarnUnderflow, kFlagUnderflow},
        {0x7FF0000000000000, E::Infinity, orvoOk, 0},
        {0xFFF0000000000000, E::Zero, orvoOk, 0},
    };
    for (const auto& level : kExp64) checkLimits(level, cases);
}

// Between the underflow limits the binary64 fixup's result, rounded once to
// binary32, is the correctly rounded exp; above 87.34 likewise.
TEST(ExpLimits, Binary32FixupResultsAreCorrectlyRounded) {
    std::vector<float> src, dst;
    for (uint32_t b = 0xC2AEAC50; b <= 0xC2CFF1B5; b += 7) src.push_back(fromBits<float>(b));
    for (uint32_t b = 0x42AEAC50; b <= 0x42B17217; b += 7) src.push_back(fromBits<float>(b));
    for (const auto& level : kExp32) {
        run(level, src, dst);
        int wrong = 0;
        for (size_t i = 0; i < src.size(); ++i)
            if (bitsOf(dst[i]) != bitsOf(correctlyRounded(src[i])) && ++wrong <= 5)
                ADD_FAILURE() << level.name << " x = " << src[i] << ": " << dst[i] << " against "
                              << correctlyRounded(src[i]);
    }
}

// A11's cubic is below 1 at a fraction of 0: added to the exponent of
// -126, it would give a denormal pattern for these nine inputs although exp
// is normal there, so they are sent to the fixup as well.
TEST(ExpLimits, A11KeepsTheResultsJustAboveTheSmallestNormalNormal) {
    std::vector<float> src, dst;
    for (uint32_t b = 0xC2AEAC47; b <= 0xC2AEAC4F; ++b) src.push_back(fromBits<float>(b));
    for (int len : {1, 9, 16}) {
        std::vector<float> block = ordinary<float>(std::max(len, 9));
        std::copy(src.begin(), src.begin() + std::min(len, 9), block.begin());
        block.resize(len);
        EXPECT_EQ(run(kExp32[0], block, dst), orvoOk);
        for (int i = 0; i < std::min(len, 9); ++i)
            EXPECT_GE(bitsOf(dst[i]), 0x00800000u) << "x = " << block[i] << ", len " << len << ": " << dst[i];
    }
}

// ---------------------------------------------------------------------------

template <class T> void checkNaNLanes(const Level<T>& level) {
    const int len = 2 * kBlock<T> + 3;
    std::vector<T> src = ordinary<T>(len), clean, dst;
    run(level, src, clean);
    const int lanes[] = {0, 5, kBlock<T> + kBlock<T> - 1, len - 2};
    src[lanes[0]] = std::numeric_limits<T>::quiet_NaN();
    src[lanes[1]] = std::numeric_limits<T>::signaling_NaN();
    src[lanes[2]] = -std::numeric_limits<T>::quiet_NaN();
    src[lanes[3]] = std::numeric_limits<T>::signaling_NaN();
    EXPECT_EQ(run(level, src, dst), orvoOk) << level.name;
    for (int i = 0; i < len; ++i) {
        if (std::isnan(src[i])) {
            EXPECT_TRUE(std::isnan(dst[i])) << level.name << " lane " << i;
        } else {
            EXPECT_EQ(bitsOf(dst[i]), bitsOf(clean[i])) << level.name << " lane " << i;
        }
    }
}

TEST(ExpSpecialLanes, ANaNLeavesItsNeighboursUntouched) {
    for (const auto& level : kExp32) checkNaNLanes(level);
    for (const auto& level : kExp64) checkNaNLanes(level);
}

// Inputs from every region: fast path, thresholds, fixup range, specials.
template <class T> std::vector<T> mixedInputs(int n, std::mt19937_64& rng) {
    const T edges[] = {T(0), T(88.7), T(-87.3), T(-100), T(709.5), T(-740), T(698.7),
                       std::numeric_limits<T>::infinity(), -std::numeric_limits<T>::infinity(),
                       std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::max()};
    std::uniform_real_distribution<double> wide(kSingle<T> ? -110.0 : -760.0, kSingle<T> ? 95.0 : 715.0);
    std::vector<T> v(n);
    for (int i = 0; i < n; ++i) v[i] = rng() % 4 == 0 ? edges[rng() % std::size(edges)] : T(wide(rng));
    return v;
}

template <class T> void checkPositionIndependence(const Level<T>& level, std::mt19937_64& rng) {
    for (int len : {kBlock<T> - 1, 5 * kBlock<T> + kBlock<T> - 1}) {
        std::vector<T> src = mixedInputs<T>(len, rng), dst;
        const orvoStatus status = run(level, src, dst);
        orvoStatus lastStatus = orvoOk;
        for (int i = 0; i < len; ++i) {
            T alone;
            const orvoStatus s = level.kernel(&src[i], &alone, 1);
            if (s != orvoOk) lastStatus = s;
            EXPECT_EQ(bitsOf(dst[i]), bitsOf(alone)) << level.name << " x = " << src[i] << " at " << i;
        }
        EXPECT_EQ(status, lastStatus) << level.name;
        std::vector<T> inPlace = src;
        EXPECT_EQ(level.kernel(inPlace.data(), inPlace.data(), len), status);
        for (int i = 0; i < len; ++i) EXPECT_EQ(bitsOf(inPlace[i]), bitsOf(dst[i])) << level.name << " in place, " << i;
    }
}

TEST(ExpPosition, BlockAndTailGiveTheSameBits) {
    std::mt19937_64 rng(20240611);
    for (const auto& level : kExp32) checkPositionIndependence(level, rng);
    for (const auto& level : kExp64) checkPositionIndependence(level, rng);
}

// ---------------------------------------------------------------------------

// Random inputs over the whole range, fixup ranges included; the worst error
// of each level against its promise.
template <class T, size_t N> void checkAccuracy(const Level<T> (&levels)[N], const std::vector<T>& src) {
    std::vector<std::vector<T>> results(N);
    for (size_t l = 0; l < N; ++l) run(levels[l], src, results[l]);
    double worst[N] = {};
    T worstAt[N] = {};
    Big exact;
    for (size_t i = 0; i < src.size(); ++i) {
        exactExp(exact, src[i]);
        const bool overflows = mpfr_cmp_d(exact.v, std::numeric_limits<T>::max()) > 0;
        for (size_t l = 0; l < N; ++l) {
            const T r = results[l][i];
            if (overflows) {
                EXPECT_TRUE(std::isinf(r)) << levels[l].name << " x = " << src[i];
                continue;
            }
            const double e = ulpError(exact, r);
            if (!(e <= worst[l])) worst[l] = e, worstAt[l] = src[i];
        }
    }
    for (size_t l = 0; l < N; ++l) {
        EXPECT_LE(worst[l], boundUlps(levels[l])) << levels[l].name << " at x = " << worstAt[l];
        std::printf("  exp %s: max error %.4g ulp at x = %.17g\n", levels[l].name, worst[l], double(worstAt[l]));
    }
}

TEST(ExpAccuracy, EveryLevelHoldsItsPromiseOverTheWholeRange) {
    std::mt19937_64 rng(7);
    auto uniform = [&](double lo, double hi) { return lo + (hi - lo) * double(rng() >> 11) * 0x1p-53; };
    std::vector<float> src32;
    for (int i = 0; i < 40000; ++i) {
        src32.push_back(fromBits<float>(uint32_t(rng() % 0x42D00000) | uint32_t(rng() & 1) << 31));  // |x| < 104
        src32.push_back(float(uniform(-104, 89)));
        src32.push_back(float(uniform(-104, -86)));
    }
    checkAccuracy(kExp32, src32);
    std::vector<double> src64;
    for (int i = 0; i < 25000; ++i) {
        src64.push_back(fromBits<double>((0x3C30000000000000 + rng() % 0x04574F0000000000)  /* 2^-60 <= |x| < 746 */ | (rng() & 1) << 63));
        src64.push_back(uniform(-746, 710));
        src64.push_back(uniform(-746, -697));
        src64.push_back(uniform(697, 709.8));
    }
    checkAccuracy(kExp64, src64);
}

}  // namespace
