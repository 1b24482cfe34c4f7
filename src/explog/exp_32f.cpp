// exp on binary32 at three levels, each built its own way: A11 a cubic in the
// base-2 fraction with no table, A21 a 512-entry table and a first-degree
// correction, A24 a 128-entry table of pairs and a quadratic.  Every lane
// runs the formula; the mask sends |x| > ~87.34 (where the result could
// leave the normal range and the exponent addition would wrap), infinities
// and NaN to the binary64 fixup.
#include "explog/exp_fixup.h"
#include "explog/exp_tables.h"
#include "frame/blocked.h"
#include "frame/kernels.h"

namespace {

using namespace orvo;
using namespace orvo::simd;

// 1.5 * 2^23: adding and subtracting it rounds to an integer, which is left
// in the low bits of the sum's pattern.
template <class V> V roundingMagic() { return constant<V>(0x4B400000); }

// The magnitude at which exp falls to the smallest normal binary32 (87.3365402).
constexpr uint32_t kNormalRangeLimit = 0x42AEAC4F;

struct ExpBinary32 {
    using T = float;
    static constexpr int kBlock = 16;
    static orvoStatus fixup(const float* in, float* out) { return ExpFixup32f(in, out); }
};

struct ExpA11 : ExpBinary32 {
    // A11's cubic is below 1 at f = 0, so the nine inputs just above -87.3365
    // would reach a denormal pattern by the exponent addition although exp is
    // normal there: they go to the fixup too.
    template <class I> static auto special(I bits) { return gtSigned(bits & 0x7FFFFFFFu, 0x42AEAC46); }

    // 2^(x/ln2) = 2^k 2^f, |f| <= 1/2, with f taken from the rounded product
    // itself (no second reduction term: its error at large |x| is within
    // the level).  The cubic's coefficients balance the maximal relative
    // error, so exp(0) comes out as c0, not 1.
    template <class V> static V eval(V x) {
        const V y = x * constant<V>(0x3FB8AA3B);  // 1/ln2
        const V s = y + roundingMagic<V>();
        const V k = s - roundingMagic<V>();
        const V f = y - k;
        const V p = horner({0x3D61FBCC, 0x3E786F13, 0x3F31798D, 0x3F7FFB49}, f);
        // Only the low 9 bits of s survive the shift: enough for every k the
        // mask lets through.
        return asFloat(asBits(p) + (asBits(s) << 23));
    }
};

struct ExpA21 : ExpBinary32 {
    template <class I> static auto special(I bits) { return gtSigned(bits & 0x7FFFFFFFu, kNormalRangeLimit); }

    // x = n ln2/512 + r, n = 512 e + j; exp(x) = 2^e T[j] (1 + r'), where a
    // fixed bias in r' centres the error of the first-degree term.
    template <class V> static V eval(V x) {
        const V s = x * constant<V>(0x4438AA3B) + roundingMagic<V>();  // 512/ln2
        const V k = s - roundingMagic<V>();
        const V r = (x - k * constant<V>(0x3AB10000)) - k * constant<V>(0x36642FF0);
        const V biased = r + constant<V>(0x33F5FDF1);
        const auto sBits = asBits(s);
        const V t = gather<V>(ExpTable512f, sBits & 0x1FFu);
        const V v = biased * t + t;
        return asFloat(asBits(v) + ((sBits & ~0x1FFu) << 14));
    }
};

struct ExpA24 : ExpBinary32 {
    template <class I> static auto special(I bits) { return gtSigned(bits & 0x7FFFFFFFu, kNormalRangeLimit); }

    // x = n ln2/128 + r, n = 128 e + j; exp(x) = 2^e (hi + lo) (1 + q) with
    // q = r + c2 r^2.  The high part of ln2/128 was rounded upward, so the
    // low part is negative.
    template <class V> static V eval(V x) {
        const V s = x * constant<V>(0x4338AA3B) + roundingMagic<V>();  // 128/ln2
        const V k = s - roundingMagic<V>();
        const V r = (x - k * constant<V>(0x3BB18000)) - k * constant<V>(0xB5DE8083);
        const V q = (r * r) * constant<V>(0x3EFFFFE1) + r;
        const auto sBits = asBits(s);
        V hi, lo;
        gatherPair<V>(&ExpTable128f[0][0], sBits & 0x7Fu, hi, lo);
        const V v = (q * hi + lo) + hi;
        return asFloat(asBits(v) + ((sBits & ~0x7Fu) << 16));
    }
};

}  // namespace

ORVO_KERNEL(Exp_32f_A11)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<ExpA11>(src, dst, len); }
ORVO_KERNEL(Exp_32f_A21)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<ExpA21>(src, dst, len); }
ORVO_KERNEL(Exp_32f_A24)(const orvo32f* src, orvo32f* dst, int len) { return runBlocked<ExpA24>(src, dst, len); }
