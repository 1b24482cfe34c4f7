// The committed logarithm tables against their rules, the sums that must be
// exact, and the rows that are fixed by value.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include "explog/ln_tables.h"

using namespace orvo::explog;

namespace {

uint64_t bitsOf(double d) { return std::bit_cast<uint64_t>(d); }

constexpr double kL1 = std::bit_cast<double>(uint64_t{0x3FE62E42FEFA0000});
constexpr double kL2 = std::bit_cast<double>(uint64_t{0x3D7CF79ABC9E0000});
constexpr double kLn2Hi = std::bit_cast<double>(uint64_t{0x3FE62E42FEFA3800});
constexpr double kLn2Lo = std::bit_cast<double>(uint64_t{0x3D2EF35793C76730});

struct Mp {
    mpfr_t v;
    Mp() { mpfr_init2(v, 320); }
    ~Mp() { mpfr_clear(v); }
};

bool isMultipleOf(double v, int log2Step) { return std::ldexp(v, log2Step) == std::trunc(std::ldexp(v, log2Step)); }

// a + b and a * b are exact in binary64 (checked at 320 bits).
bool sumIsExact(double a, double b) {
    Mp s;
    mpfr_set_d(s.v, a, MPFR_RNDN);
    mpfr_add_d(s.v, s.v, b, MPFR_RNDN);
    return mpfr_cmp_d(s.v, a + b) == 0;
}
bool productIsExact(double a, double b) {
    Mp s;
    mpfr_set_d(s.v, a, MPFR_RNDN);
    mpfr_mul_d(s.v, s.v, b, MPFR_RNDN);
    return mpfr_cmp_d(s.v, a * b) == 0;
}

}  // namespace

TEST(LnTables, Table513IsMinusLnOfCOver512Or1024RoundedToNearest) {
    Mp v;
    for (int c = 513; c <= 1023; ++c) {
        mpfr_set_si(v.v, c <= 724 ? 512 : 1024, MPFR_RNDN);
        mpfr_div_si(v.v, v.v, c, MPFR_RNDN);
        mpfr_log(v.v, v.v, MPFR_RNDN);
        ASSERT_EQ(bitsOf(kLnTable513[c - 512]), bitsOf(mpfr_get_d(v.v, MPFR_RNDN))) << "c = " << c;
    }
    // Both ends are -ln 1, stored with the signs they are known by.
    EXPECT_EQ(LnTable513Bits[0], 0x8000000000000000u);
    EXPECT_EQ(LnTable513Bits[512], 0x0000000000000000u);
    EXPECT_NEAR(kLnTable513[724 - 512], -0.3465, 1e-4);
    EXPECT_NEAR(kLnTable513[725 - 512], 0.3453, 1e-4);
}

TEST(LnTables, PairRowsSumExactlyWithTheExponentTermAndCarryTheRest) {
    Mp v, rest;
    for (int c = 512; c <= 1024; ++c) {
        const double hi = kLnTable513Pair[2 * (c - 512)], lo = kLnTable513Pair[2 * (c - 512) + 1];
        ASSERT_TRUE(isMultipleOf(hi, 40)) << "c = " << c;
        for (int e = 1; e <= 2046; e += (e < 1100 && e > 990) ? 1 : 15) {
            ASSERT_TRUE(productIsExact(e, kL1) && sumIsExact(e * kL1, hi)) << "c = " << c << ", E = " << e;
        }
        if (c == 512 || c == 1024) continue;
        // lo is what hi leaves of -ln(c/1024) - 1023 (L1 + L2), rounded.
        mpfr_set_si(v.v, 1024, MPFR_RNDN);
        mpfr_div_si(v.v, v.v, c, MPFR_RNDN);
        mpfr_log(v.v, v.v, MPFR_RNDN);
        mpfr_set_d(rest.v, kL1, MPFR_RNDN);
        mpfr_add_d(rest.v, rest.v, kL2, MPFR_RNDN);
        mpfr_mul_si(rest.v, rest.v, 1023, MPFR_RNDN);
        mpfr_sub(v.v, v.v, rest.v, MPFR_RNDN);
        mpfr_sub_d(v.v, v.v, hi, MPFR_RNDN);
        ASSERT_EQ(bitsOf(lo), bitsOf(mpfr_get_d(v.v, MPFR_RNDN))) << "c = " << c;
        ASSERT_LT(std::fabs(lo), 0x1p-28) << "c = " << c;
    }
    // Next to 1 the rows cancel what they meet exactly: E = 1022 with c = 512
    // below 1, E = 1023 with c = 1024 at and above it.
    EXPECT_EQ(1022 * kL1 + kLnTable513Pair[0], 0.0);
    EXPECT_EQ(1022 * kL2 + kLnTable513Pair[1], 0.0);
    EXPECT_EQ(1023 * kL1 + kLnTable513Pair[1024], 0.0);
    EXPECT_EQ(1023 * kL2 + kLnTable513Pair[1025], 0.0);
}

TEST(LnTables, PairRowsKnownByValue) {
    const struct { int c; uint64_t hi, lo; } rows[] = {
        {512, 0xC086232BDD7A8300, 0xBE1CE91EEF3FB100},
        {513, 0xC086232FDC7AD828, 0xBE1CEFCFFDA73B6A},
        {725, 0xC08625F441808B78, 0xBE1CF19AE74998F9},
        {1024, 0xC08628B76E3A4180, 0xBE1CF05CD5EED880},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(LnTable513PairBits[2 * (r.c - 512)], r.hi) << "c = " << r.c;
        EXPECT_EQ(LnTable513PairBits[2 * (r.c - 512) + 1], r.lo) << "c = " << r.c;
    }
}

TEST(LnTables, FixupRowsHoldAReciprocalAndItsLogInTwoParts) {
    Mp v;
    for (int j = 0; j <= 64; ++j) {
        const double rcp = kLnFixupTable[3 * j], logHi = kLnFixupTable[3 * j + 1], logLo = kLnFixupTable[3 * j + 2];
        EXPECT_EQ(rcp, std::nearbyint(2048.0 * 64 / (64 + j)) / 2048) << "j = " << j;
        ASSERT_TRUE(isMultipleOf(logHi, 42)) << "j = " << j;
        for (int n = -1100; n <= 1100; n += 7) ASSERT_TRUE(sumIsExact(n * kLn2Hi, logHi)) << "j = " << j << ", n = " << n;
        if (j == 64) continue;  // the fixup's own two parts of ln 2
        mpfr_set_d(v.v, rcp, MPFR_RNDN);
        mpfr_log(v.v, v.v, MPFR_RNDN);
        mpfr_neg(v.v, v.v, MPFR_RNDN);
        mpfr_sub_d(v.v, v.v, logHi, MPFR_RNDN);
        EXPECT_EQ(logLo, mpfr_get_d(v.v, MPFR_RNDN)) << "j = " << j;
        EXPECT_LT(std::fabs(logLo), 0x1p-36) << "j = " << j;
    }
    const uint64_t known[][3] = {{0x3FF0000000000000, 0, 0},
                                 {0x3FEF800000000000, 0x3F90205658A00000, 0xBD894F716C1B8BDF},
                                 {0x3FE0000000000000, 0x3FE62E42FEFA3800, 0x3D2EF35793C76730}};
    const int knownRows[] = {0, 1, 64};
    for (int k = 0; k < 3; ++k)
        for (int col = 0; col < 3; ++col) EXPECT_EQ(LnFixupTableBits[3 * knownRows[k] + col], known[k][col]);
    EXPECT_EQ(kLnFixupTable[3 * 64 + 1], kLn2Hi);
    EXPECT_EQ(kLnFixupTable[3 * 64 + 2], kLn2Lo);
}
