// exp on binary64 at three levels, each built its own way: A26 a 64-entry
// table whose entries carry the exponent and the reciprocal of a quadratic's
// constant term, A50 a 1024-entry scaled table and a cubic, A53 a 64-entry
// table of pairs and a degree-5 polynomial.  The masks test high words only.
#include "explog/exp_fixup.h"
#include "explog/exp_tables.h"
#include "frame/blocked.h"
#include "frame/kernels.h"
#include "tables/exp_table64.h"

namespace {

using namespace orvo;
using namespace orvo::simd;

// 1.5 * 2^52: adding and subtracting it rounds to an integer, which is left
// in the low bits of the sum's pattern.
template <class V> V roundingMagic() { return constant<V>(0x4338000000000000); }

struct ExpBinary64 {
    using T = double;
    static constexpr int kBlock = 8;
    static orvoStatus fixup(const double* in, double* out) { return ExpFixup64f(in, out); }
};

struct ExpA26 : ExpBinary64 {
    // The scaled table entry times 2^e must itself stay normal, about 14
    // binades short of the range of exp.
    template <class I> static auto special(I highWord) { return gtSigned(highWord & 0x7FFFFFFFu, 0x4085D533); }

    // y = 64 x/ln2 = n + f with f from the rounded product (no second
    // reduction term); exp(x) = 2^(n/64) (f^2 + c1 f + c0) / c0 with 1/c0
    // folded into the table, and the exponent added to the entry before the
    // one multiplication.
    template <class V> static V eval(V x) {
        const V y = x * constant<V>(0x40571547652B82FE);  // 64/ln2
        const V s = y + roundingMagic<V>();
        const V k = s - roundingMagic<V>();
        const V f = y - k;
        const V p = (f + constant<V>(0x4067154FB6857607)) * f + constant<V>(0x40D0A6A6C7C54F24);
        const auto sBits = asBits(s);
        const V t = asFloat(asBits(gather<V>(ExpTable64Scaled, sBits & 0x3Fu)) + ((sBits & ~uint64_t{0x3F}) << 46));
        return p * t;
    }
};

// Both wider levels keep every lane whose exponent could leave the normal range.
template <class I> auto outsideNormalRange64(I highWord) { return gtSigned(highWord & 0x7FFFFFFFu, 0x4086232A); }

struct ExpA50 : ExpBinary64 {
    template <class I> static auto special(I highWord) { return outsideNormalRange64(highWord); }

    // x = n ln2/1024 + r; exp(r) ~ (r^3 + c2 r^2 + c1 r + c0) / c0 with 1/c0
    // folded into the table (c1 and c0 differ in the last bit on purpose).
    template <class V> static V eval(V x) {
        const V s = x * constant<V>(0x40971547652B82FE) + roundingMagic<V>();  // 1024/ln2
        const V k = s - roundingMagic<V>();
        const V r = (x - k * constant<V>(0x3F462E42FEC00000)) - k * constant<V>(0x3D5D1CF79ABC9E3B);
        V p = (constant<V>(0x4008000002503ECD) + r) * r + constant<V>(0x4017FFFFFE3CA7B0);
        p = p * r + constant<V>(0x4017FFFFFE3CA7AF);
        const auto sBits = asBits(s);
        const V v = gather<V>(ExpTable1024Scaled, sBits & 0x3FFu) * p;
        return asFloat(asBits(v) + ((sBits & ~uint64_t{0x3FF}) << 42));
    }
};

struct ExpA53 : ExpBinary64 {
    template <class I> static auto special(I highWord) { return outsideNormalRange64(highWord); }

    // x = n ln2/64 + r, n = 64 e + j; exp(x) = 2^e (hi + lo) (1 + p) with
    // p = r + r^2 (c2 + c3 r + c4 r^2 + c5 r^3).
    template <class V> static V eval(V x) {
        const V s = x * constant<V>(0x40571547652B82FE) + roundingMagic<V>();  // 64/ln2
        const V k = s - roundingMagic<V>();
        const V r = (x - k * constant<V>(0x3F862E42FEFA0000)) - k * constant<V>(0x3D1CF79ABC9E3B3A);
        const V c = horner({0x3F8111112D9F549B, 0x3FA555573F218B93, 0x3FC555555555653E, 0x3FDFFFFFFFFFDB3B}, r);
        const V p = c * (r * r) + r;
        const auto sBits = asBits(s);
        V hi, lo;
        gatherPair<V>(&ExpTable64Abs[0][0], sBits & 0x3Fu, hi, lo);
        const V v = (p * hi + lo) + hi;
        return asFloat(asBits(v) + ((sBits & ~uint64_t{0x3F}) << 46));
    }
};

}  // namespace

ORVO_KERNEL(Exp_64f_A26)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<ExpA26>(src, dst, len); }
ORVO_KERNEL(Exp_64f_A50)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<ExpA50>(src, dst, len); }
ORVO_KERNEL(Exp_64f_A53)(const orvo64f* src, orvo64f* dst, int len) { return runBlocked<ExpA53>(src, dst, len); }
