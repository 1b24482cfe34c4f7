// The six Exp kernels: tables against their rules, the fast paths' values at
// 0, the ends of the range with statuses and flags, special lanes among
// ordinary ones, and accuracy against MPFR over the whole range.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
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
template <class T> constexpr bool kSingle = sizeof(T) == 4;
template <class T> constexpr int kBlock = kSingle<T> ? 16 : 8;
template <class T> constexpr int kPrecision = kSingle<T> ? 24 : 53;
template <class T> T fromBits(BitsOf<T> b) { return std::bit_cast<T>(b); }
template <class T> BitsOf<T> bitsOf(T v) { return std::bit_cast<BitsOf<T>>(v); }

template <class T> struct Level {
    const char* name;
    orvoStatus (*kernel)(const T*, T*, int);
    int correctBits;
    BitsOf<T> atZero;  // what the fast path gives at 0
    double boundUlps() const { return std::ldexp(1.0, kPrecision<T> - correctBits); }
};
const Level<float> kExp32[] = {{"A11", orvoExp_32f_A11, 11, 0x3F7FFB49},
                               {"A21", orvoExp_32f_A21, 21, 0x3F800001},
                               {"A24", orvoExp_32f_A24, 24, 0x3F800000}};
const Level<double> kExp64[] = {{"A26", orvoExp_64f_A26, 26, 0x3FF000000001D8C0},
                                {"A50", orvoExp_64f_A50, 50, 0x3FEFFFFFFFFFFFFF},
                                {"A53", orvoExp_64f_A53, 53, 0x3FF0000000000000}};

template <class T> orvoStatus run(const Level<T>& level, const std::vector<T>& src, std::vector<T>& dst) {
    dst.assign(src.size(), T(-1234));
    return level.kernel(src.data(), dst.data(), static_cast<int>(src.size()));
}

// Inputs that take every level's fast path.
template <class T> std::vector<T> ordinary(int n) {
    std::vector<T> v(n);
    for (int i = 0; i < n; ++i) v[i] = static_cast<T>(0.731 * (i % 37) - 13.0);
    return v;
}

struct Big {
    mpfr_t v;
    Big() { mpfr_init2(v, 256); }
    ~Big() { mpfr_clear(v); }
};

void exactExp(Big& out, double x) {
    mpfr_set_d(out.v, x, MPFR_RNDN);
    mpfr_exp(out.v, out.v, MPFR_RNDN);
}

// |got - exp| in ulps of the exact value's binade (the denormal ulp below
// the normal range).
template <class T> double ulpError(const Big& exact, T got) {
    Big d;
    const long binade = std::max<long>(mpfr_get_exp(exact.v) - 1, std::numeric_limits<T>::min_exponent - 1);
    mpfr_sub_d(d.v, exact.v, got, MPFR_RNDN);
    mpfr_mul_2si(d.v, d.v, kPrecision<T> - 1 - binade, MPFR_RNDN);
    return std::fabs(mpfr_get_d(d.v, MPFR_RNDN));
}

TEST(ExpTables, EachFollowsItsRuleAndTheQuotedRows) {
    EXPECT_EQ(bitsOf(ExpTable512f[1]), 0x3F802C64u);
    EXPECT_EQ(bitsOf(ExpTable128f[1][0]), 0x3F80B1EDu);
    EXPECT_EQ(bitsOf(ExpTable128f[1][1]), 0x331FB333u);
    EXPECT_EQ(bitsOf(ExpTable64Scaled[0]), 0x3F0EBFBA4E01A90Du);
    EXPECT_EQ(bitsOf(ExpTable1024Scaled[0]), 0x3FC5555556E68764u);
    EXPECT_EQ(bitsOf(ExpTable64Abs[1][1]), 0xBC719083535B085Du);
    EXPECT_EQ(bitsOf(ExpTable64Rel[1][1]), 0xBC7160139CD8DC5Du);

    Big v, rest;
    auto twoTo = [&](int j, int n) {
        mpfr_set_si(v.v, j, MPFR_RNDN);
        mpfr_div_si(v.v, v.v, n, MPFR_RNDN);
        mpfr_exp2(v.v, v.v, MPFR_RNDN);
    };
    for (int j = 0; j < 512; ++j) {
        twoTo(j, 512);
        EXPECT_EQ(ExpTable512f[j], mpfr_get_flt(v.v, MPFR_RNDN)) << j;
    }
    for (int j = 0; j < 128; ++j) {
        twoTo(j, 128);
        EXPECT_EQ(ExpTable128f[j][0], mpfr_get_flt(v.v, MPFR_RNDN)) << j;
        mpfr_sub_d(rest.v, v.v, ExpTable128f[j][0], MPFR_RNDN);
        EXPECT_EQ(ExpTable128f[j][1], mpfr_get_flt(rest.v, MPFR_RNDN)) << j;
    }
    for (auto [table, n] : {std::pair{ExpTable64Scaled, 64}, std::pair{ExpTable1024Scaled, 1024}}) {
        for (int j = 0; j < n; ++j) {
            twoTo(j, n);
            mpfr_mul_d(v.v, v.v, table[0], MPFR_RNDN);
            EXPECT_EQ(table[j], mpfr_get_d(v.v, MPFR_RNDN)) << n << " rows, row " << j;
        }
    }
    for (int j = 0; j < 64; ++j) {
        twoTo(j, 64);
        const double hi = mpfr_get_d(v.v, MPFR_RNDN);
        EXPECT_EQ(ExpTable64Abs[j][0], hi);
        EXPECT_EQ(ExpTable64Rel[j][0], hi);
        mpfr_sub_d(rest.v, v.v, hi, MPFR_RNDN);
        EXPECT_EQ(bitsOf(ExpTable64Abs[j][1]), bitsOf(mpfr_get_d(rest.v, MPFR_RNDN))) << j;
        mpfr_div_d(rest.v, v.v, hi, MPFR_RNDN);
        mpfr_sub_ui(rest.v, rest.v, 1, MPFR_RNDN);
        EXPECT_EQ(bitsOf(ExpTable64Rel[j][1]), bitsOf(mpfr_get_d(rest.v, MPFR_RNDN))) << j;
    }
}

// The polynomials are balanced for least maximal error, not for exp(0) = 1;
// zeros of either sign and denormals are ordinary fast-path inputs.
template <class T> void checkAtZero(const Level<T>& level) {
    const T zeros[] = {T(0), -T(0), fromBits<T>(1), -fromBits<T>(12345),
                       std::numeric_limits<T>::min() - std::numeric_limits<T>::denorm_min()};
    for (int len : {1, kBlock<T> + 5}) {
        std::vector<T> src(len), dst;
        for (int i = 0; i < len; ++i) src[i] = zeros[i % 5];
        EXPECT_EQ(run(level, src, dst), orvoOk);
        for (int i = 0; i < len; ++i) EXPECT_EQ(bitsOf(dst[i]), level.atZero) << level.name << " at " << src[i];
    }
}

TEST(ExpFastPath, ZerosAndDenormalsGiveEachLevelsValueAtZero) {
    for (const auto& level : kExp32) checkAtZero(level);
    for (const auto& level : kExp64) checkAtZero(level);
}

enum class Expect { Finite, Infinity, Normal, Denormal, Zero };

template <class T> struct LimitCase {
    BitsOf<T> input;
    Expect expect;
    orvoStatus status;
    uint32_t flag;  // the flag the event shows, if any
};

template <class T> bool looksLike(T r, Expect e) {
    const T smallestNormal = std::numeric_limits<T>::min();
    switch (e) {
    case Expect::Finite: return std::isfinite(r) && r > 1;
    case Expect::Infinity: return std::isinf(r) && r > 0;
    case Expect::Normal: return r >= smallestNormal && std::isfinite(r);
    case Expect::Denormal: return r > 0 && r < smallestNormal;
    case Expect::Zero: return bitsOf(r) == 0;
    }
    return false;
}

// Each case alone (the tail) and at lane 3 of a block of ordinary inputs;
// finite results also within the level's bound.
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
            SCOPED_TRACE(::testing::Message() << level.name << " x = " << x << ", len " << len);
            EXPECT_EQ(status, c.status);
            EXPECT_TRUE(looksLike(dst[at], c.expect)) << "result " << dst[at];
            if (c.flag) {
                EXPECT_TRUE(flags & c.flag) << "flags " << flags;
            }
            // Infinities raise no event.  (A finite lane with status 0 may
            // have set flags in the fast formula before its fixup ran.)
            if (std::isinf(x)) {
                EXPECT_FALSE(flags & (kFlagOverflow | kFlagUnderflow)) << "flags " << flags;
            }
            if (std::isfinite(dst[at]) && dst[at] != 0) {
                Big e;
                exactExp(e, x);
                EXPECT_LE(ulpError(e, dst[at]), level.boundUlps());
            }
        }
    }
}

TEST(ExpLimits, OverflowUnderflowAndInfinities) {
    using E = Expect;
    const std::vector<LimitCase<float>> cases32 = {
        {0x42B17217, E::Finite, orvoOk, 0},                             // 88.72283172607422
        {0x42B17218, E::Infinity, orvoWarnOverflow, kFlagOverflow},     // the next one up
        {0xC2AEAC4F, E::Normal, orvoOk, 0},                             // -87.33654022216797
        {0xC2AEAC50, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},   // the next one down
        {0xC2C80000, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},   // -100
        {0xC2CFF1B4, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},   // -103.97207641601562
        {0xC2CFF1B5, E::Zero, orvoWarnUnderflow, kFlagUnderflow},       // the next one down
        {0x7F800000, E::Infinity, orvoOk, 0},
        {0xFF800000, E::Zero, orvoOk, 0},
    };
    const std::vector<LimitCase<double>> cases64 = {
        {0x40862E42FEFA39EF, E::Finite, orvoOk, 0},  // 709.782712893384: exponent 1024, then doubled
        {0x40862E42FEFA39F0, E::Infinity, orvoWarnOverflow, kFlagOverflow},
        {0xC086232BDD7ABCD2, E::Normal, orvoOk, 0},  // -708.39641853226408
        {0xC086232BDD7ABCD3, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},
        {0xC087000000000000, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},  // -736: no split
        {0xC0874910D52D3051, E::Denormal, orvoWarnUnderflow, kFlagUnderflow},  // -745.13321910194111
        {0xC0874910D52D3052, E::Zero, orvoWarnUnderflow, kFlagUnderflow},
        {0x7FF0000000000000, E::Infinity, orvoOk, 0},
        {0xFFF0000000000000, E::Zero, orvoOk, 0},
    };
    for (const auto& level : kExp32) checkLimits(level, cases32);
    for (const auto& level : kExp64) checkLimits(level, cases64);
}

// A11's cubic is below 1 at a fraction of 0: with the exponent -126 added
// it would give a denormal pattern for these nine inputs, where exp is normal.
TEST(ExpLimits, A11ResultsJustAboveTheSmallestNormalStayNormal) {
    std::vector<float> src = ordinary<float>(16), dst;
    for (uint32_t b = 0xC2AEAC47; b <= 0xC2AEAC4F; ++b) src[b - 0xC2AEAC47 + 2] = fromBits<float>(b);
    for (int len : {11, 16}) {  // in the tail and in a block
        src.resize(len);
        EXPECT_EQ(run(kExp32[0], src, dst), orvoOk);
        for (int i = 2; i < 11; ++i) EXPECT_GE(bitsOf(dst[i]), 0x00800000u) << "x = " << src[i] << ", len " << len;
    }
}

// Inputs from every region, NaNs among them: each element gives the same bits
// and status in a block as alone in the tail, in place or not.
template <class T> void checkPositionIndependence(const Level<T>& level, std::mt19937_64& rng) {
    const T edges[] = {T(88.7), T(-87.3), T(-100), T(709.5), T(-740), T(698.7),
                       std::numeric_limits<T>::infinity(), -std::numeric_limits<T>::infinity(),
                       std::numeric_limits<T>::quiet_NaN(), -std::numeric_limits<T>::quiet_NaN(),
                       std::numeric_limits<T>::signaling_NaN()};
    std::uniform_real_distribution<double> wide(kSingle<T> ? -110.0 : -760.0, kSingle<T> ? 95.0 : 715.0);
    for (int len : {kBlock<T> - 1, 6 * kBlock<T> - 1}) {
        std::vector<T> src(len), dst;
        for (T& x : src) x = rng() % 4 == 0 ? edges[rng() % std::size(edges)] : T(wide(rng));
        const orvoStatus status = run(level, src, dst);
        orvoStatus last = orvoOk;
        for (int i = 0; i < len; ++i) {
            T alone;
            if (orvoStatus s = level.kernel(&src[i], &alone, 1)) last = s;
            EXPECT_EQ(bitsOf(dst[i]), bitsOf(alone)) << level.name << " x = " << src[i] << " at " << i;
        }
        EXPECT_EQ(status, last) << level.name;
        std::vector<T> inPlace = src;
        EXPECT_EQ(level.kernel(inPlace.data(), inPlace.data(), len), status);
        EXPECT_EQ(std::memcmp(inPlace.data(), dst.data(), len * sizeof(T)), 0) << level.name << " in place";
    }
}

TEST(ExpSpecialLanes, BlockAndTailGiveTheSameBitsAndNaNsStayInTheirLanes) {
    std::mt19937_64 rng(20240611);
    for (const auto& level : kExp32) checkPositionIndependence(level, rng);
    for (const auto& level : kExp64) checkPositionIndependence(level, rng);
}

// Random inputs over the whole range, fixup ranges included.
template <class T, size_t N> void checkAccuracy(const Level<T> (&levels)[N], const std::vector<T>& src) {
    std::vector<T> results[N];
    for (size_t l = 0; l < N; ++l) run(levels[l], src, results[l]);
    double worst[N] = {};
    T worstAt[N] = {};
    Big exact;
    for (size_t i = 0; i < src.size(); ++i) {
        exactExp(exact, src[i]);
        const bool overflows = mpfr_cmp_d(exact.v, std::numeric_limits<T>::max()) > 0;
        for (size_t l = 0; l < N; ++l) {
            const double e = overflows ? (std::isinf(results[l][i]) ? 0 : INFINITY) : ulpError(exact, results[l][i]);
            if (!(e <= worst[l])) worst[l] = e, worstAt[l] = src[i];
        }
    }
    for (size_t l = 0; l < N; ++l) {
        EXPECT_LE(worst[l], levels[l].boundUlps()) << levels[l].name << " at x = " << worstAt[l];
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
        src64.push_back(fromBits<double>((0x3C30000000000000 + rng() % 0x04574F0000000000) | (rng() & 1) << 63));
        src64.push_back(uniform(-746, 710));
        src64.push_back(uniform(-746, -697));
        src64.push_back(uniform(697, 709.8));
    }
    checkAccuracy(kExp64, src64);
}

}  // namespace
