// Prints src/explog/ln_tables.h: the logarithm tables of the natural log
// kernels, from their rules, computed with MPFR at 400 bits.
//
//   build/tools/gen_ln_tables > src/explog/ln_tables.h
//
// LnTable513 (binary64 A26, A50), row c - 512 for c = 512..1024:
//   -ln(c/512) for c <= 724, -ln(c/1024) above (724 = floor(512 sqrt 2)),
//   rounded to nearest.  Row 512 is -0 and row 1024 is +0 (both are -ln 1).
// LnTable513Pair (binary64 A53), rows hi, lo: the value
//   V = -ln(c/1024) - 1023 (L1 + L2),
//   hi = -1023 L1 + (-ln(c/1024) rounded to a multiple of 2^-40), so hi is a
//   multiple of 2^-40 and E L1 + hi is exact for every exponent field E;
//   lo = V - hi rounded to nearest.  Rows 512 and 1024 are the exact
//   negatives of what they meet next to 1: -1022 (L1, L2), -1023 (L1, L2),
//   so that the sums vanish exactly on both sides of 1.
// LnFixupTable (the scalar fixups), rows rcp, logHi, logLo for j = 0..64:
//   rcp = 1/(1 + j/64) rounded to a multiple of 2^-11;
//   logHi = -ln(rcp) rounded to a multiple of 2^-37 (so logHi plus any
//   integer multiple of the fixup's high part of ln 2, a multiple of 2^-42,
//   is exact), logLo = -ln(rcp) - logHi rounded to nearest.  Row 64 holds
//   the fixup's two parts of ln 2 themselves, so that the rows on both sides
//   of a power of two agree.
#include <mpfr.h>

#include <bit>
#include <cstdint>
#include <cstdio>

namespace {

constexpr mpfr_prec_t kPrec = 400;
constexpr uint64_t kL1 = 0x3FE62E42FEFA0000;   // ln 2, high part (A53)
constexpr uint64_t kL2 = 0x3D7CF79ABC9E0000;   // ln 2, low part (A53)
constexpr uint64_t kLn2Hi = 0x3FE62E42FEFA3800;  // ln 2, high part (fixup)
constexpr uint64_t kLn2Lo = 0x3D2EF35793C76730;  // ln 2, low part (fixup)

struct Big {
    mpfr_t v;
    Big() { mpfr_init2(v, kPrec); mpfr_set_zero(v, 1); }
    ~Big() { mpfr_clear(v); }
};

uint64_t bitsOf(double d) { return std::bit_cast<uint64_t>(d); }
double fromBits(uint64_t b) { return std::bit_cast<double>(b); }

// -ln(num / den) into out.
void minusLogRatio(mpfr_t out, long num, long den) {
    mpfr_set_si(out, num, MPFR_RNDN);
    mpfr_div_si(out, out, den, MPFR_RNDN);
    mpfr_log(out, out, MPFR_RNDN);
    mpfr_neg(out, out, MPFR_RNDN);
}

// value rounded to the nearest multiple of 2^-bits, into out (exactly).
void roundToMultiple(mpfr_t out, const mpfr_t value, int bits) {
    mpfr_mul_2si(out, value, bits, MPFR_RNDN);
    mpfr_rint(out, out, MPFR_RNDN);
    mpfr_div_2si(out, out, bits, MPFR_RNDN);
}

// Rows are labelled by their index plus `first` (c for the tables by c).
void printRows(const char* name, int rows, int columns, const uint64_t* bits, int first, const char* comment) {
    std::printf("\n// %s\n", comment);
    std::printf("alignas(64) inline constexpr uint64_t %sBits[%d] = {\n", name, rows * columns);
    for (int i = 0; i < rows; ++i) {
        std::printf("   ");
        for (int k = 0; k < columns; ++k) std::printf(" 0x%016llX,", static_cast<unsigned long long>(bits[i * columns + k]));
        std::printf("  // %d\n", first + i);
    }
    std::printf("};\n");
}

}  // namespace

int main() {
    static uint64_t table513[513], pair513[513 * 2], fixup[65 * 3];
    Big value, hi, t, l1, l2;
    mpfr_set_d(l1.v, fromBits(kL1), MPFR_RNDN);
    mpfr_set_d(l2.v, fromBits(kL2), MPFR_RNDN);

    for (int c = 512; c <= 1024; ++c) {
        minusLogRatio(value.v, c, c <= 724 ? 512 : 1024);
        table513[c - 512] = bitsOf(mpfr_get_d(value.v, MPFR_RNDN));
    }
    table513[0] = 0x8000000000000000;  // -0
    table513[512] = 0x0000000000000000;  // +0

    for (int c = 512; c <= 1024; ++c) {
        double hiD, loD;
        if (c == 512 || c == 1024) {
            const int e = c == 512 ? 1022 : 1023;
            hiD = -e * fromBits(kL1);  // exact: e has 10 bits, L1 36
            loD = -e * fromBits(kL2);  // exact: L2 has 36 bits
        } else {
            minusLogRatio(t.v, c, 1024);
            roundToMultiple(hi.v, t.v, 40);
            mpfr_mul_si(value.v, l1.v, -1023, MPFR_RNDN);  // exact at this precision
            mpfr_add(hi.v, hi.v, value.v, MPFR_RNDN);
            hiD = mpfr_get_d(hi.v, MPFR_RNDN);
            if (mpfr_cmp_d(hi.v, hiD) != 0) return 1;  // hi must be a binary64
            // V - hi = (t - 1023 (L1 + L2)) - hi
            mpfr_add(value.v, l1.v, l2.v, MPFR_RNDN);
            mpfr_mul_si(value.v, value.v, -1023, MPFR_RNDN);
            mpfr_add(value.v, value.v, t.v, MPFR_RNDN);
            mpfr_sub(value.v, value.v, hi.v, MPFR_RNDN);
            loD = mpfr_get_d(value.v, MPFR_RNDN);
        }
        pair513[2 * (c - 512)] = bitsOf(hiD);
        pair513[2 * (c - 512) + 1] = bitsOf(loD);
    }

    for (int j = 0; j <= 64; ++j) {
        Big rcp;
        mpfr_set_si(rcp.v, 64, MPFR_RNDN);
        mpfr_div_si(rcp.v, rcp.v, 64 + j, MPFR_RNDN);
        roundToMultiple(rcp.v, rcp.v, 11);
        const double rcpD = mpfr_get_d(rcp.v, MPFR_RNDN);
        double logHi, logLo;
        if (j == 64) {
            logHi = fromBits(kLn2Hi);
            logLo = fromBits(kLn2Lo);
        } else {
            mpfr_ui_div(value.v, 1, rcp.v, MPFR_RNDN);  // ln(1/rcp): +0 at j = 0
            mpfr_log(value.v, value.v, MPFR_RNDN);
            roundToMultiple(hi.v, value.v, 37);
            logHi = mpfr_get_d(hi.v, MPFR_RNDN);
            mpfr_sub(value.v, value.v, hi.v, MPFR_RNDN);
            logLo = mpfr_get_d(value.v, MPFR_RNDN);
        }
        fixup[3 * j] = bitsOf(rcpD);
        fixup[3 * j + 1] = bitsOf(logHi);
        fixup[3 * j + 2] = bitsOf(logLo);
    }

    std::printf("// Generated by tools/gen_ln_tables.cpp; do not edit.  The rules are in\n"
                "// that file's header, and tests/explog/ln_tables_test.cpp checks them.\n"
                "#pragma once\n\n#include <array>\n#include <bit>\n#include <cstdint>\n\n"
                "namespace orvo::explog {\n");
    printRows("LnTable513", 513, 1, table513, 512,
              "LnTable513: row c - 512 is -ln(c/512) for c <= 724, -ln(c/1024) above.");
    printRows("LnTable513Pair", 513, 2, pair513, 512,
              "LnTable513Pair: rows hi, lo of -ln(c/1024) - 1023 ln 2, hi a multiple of 2^-40.");
    printRows("LnFixupTable", 65, 3, fixup, 0,
              "LnFixupTable: rows rcp, logHi, logLo with rcp ~ 1/(1 + j/64), logHi + logLo = -ln(rcp).");
    std::printf("\nalignas(64) inline constexpr auto kLnTable513 = std::bit_cast<std::array<double, 513>>(LnTable513Bits);\n"
                "alignas(64) inline constexpr auto kLnTable513Pair = std::bit_cast<std::array<double, 1026>>(LnTable513PairBits);\n"
                "alignas(64) inline constexpr auto kLnFixupTable = std::bit_cast<std::array<double, 195>>(LnFixupTableBits);\n"
                "\n}  // namespace orvo::explog\n");
    return 0;
}
