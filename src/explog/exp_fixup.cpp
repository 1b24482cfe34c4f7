// exp in binary64 to well beyond the highest level's accuracy: a 64-row
// table of 2^(j/64) with relative low parts, a degree-6 polynomial on
// |r| <= ln2/128, and an exponent field built by hand so that results at
// the top of the range and in the denormal range come out right.  The
// single routine is the double routine on the widened input with binary32
// limits, rounded to binary32 once at the very end.
#include "explog/exp_fixup.h"

#include <cstdint>

#include "frame/simd.h"
#include "tables/exp_table64.h"

namespace orvo {
namespace {

using simd::asBits;
using simd::asFloat;
using simd::constant;

// Keeps the compiler from folding an operation whose point is the flag the
// hardware raises when it runs.
inline double opaque(double v) {
    asm volatile("" : "+x"(v));
    return v;
}

// The power of two whose binary64 exponent field is `field` (1..2046).
inline double powerOfTwoField(uint32_t field) { return asFloat(static_cast<uint64_t>(field) << 52); }

template <class T> struct ExpFixupFormat;

template <> struct ExpFixupFormat<float> {
    static constexpr uint32_t kExponentMask = 0xFF;
    static constexpr int kFieldShift = 23;
    static constexpr uint32_t kTinyField = 75;  // |x| < 2^-52
    static constexpr uint64_t kOverflowAbove = 0x40562E42E0000000;      // 88.722831726074219
    static constexpr uint64_t kDenormalBelow = 0xC055D589E0000000;      // -87.336540222167969
    static constexpr uint64_t kTotalUnderflowBelow = 0xC059FE3680000000;  // -103.97207641601562
    // Both parts of ln2/64 are subtracted low part first.
    static constexpr bool kLowPartFirst = true;
};

template <> struct ExpFixupFormat<double> {
    static constexpr uint64_t kExponentMask = 0x7FF;
    static constexpr int kFieldShift = 52;
    static constexpr uint64_t kTinyField = 971;  // |x| < 2^-52
    static constexpr uint64_t kOverflowAbove = 0x40862E42FEFA39EF;      // 709.78271289338397
    static constexpr uint64_t kDenormalBelow = 0xC086232BDD7ABCD2;      // -708.39641853226408
    static constexpr uint64_t kTotalUnderflowBelow = 0xC0874910D52D3051;  // -745.13321910194111
    static constexpr bool kLowPartFirst = false;
};

template <class T> orvoStatus expFixup(const T* in, T* out) {
    using Format = ExpFixupFormat<T>;
    const T x = *in;
    const auto field = (asBits(x) >> Format::kFieldShift) & Format::kExponentMask;

    // Infinities and NaN: exp(-inf) = +0; x*x keeps +inf and quiets a NaN.
    if (field == Format::kExponentMask) {
        if (x < 0) {
            *out = 0;
            return orvoOk;
        }
        *out = x * x;
        return orvoOk;
    }

    const double xd = x;
    // exp(x) = 1 + x within half an ulp of 1.
    if (field < Format::kTinyField) {
        *out = static_cast<T>(xd + 1.0);
        return orvoOk;
    }
    // The largest finite value squared overflows in the hardware itself, so
    // that the flags agree with the +inf it yields.
    if (xd > constant<double>(Format::kOverflowAbove)) {
        const double largest = opaque(constant<double>(0x7FEFFFFFFFFFFFFF));
        *out = static_cast<T>(opaque(largest * largest));
        return orvoWarnOverflow;
    }
    // Below half the smallest denormal: +0 from a product that underflows.
    if (xd < constant<double>(Format::kTotalUnderflowBelow)) {
        const double justAboveSmallestNormal = opaque(constant<double>(0x0010000000000001));
        *out = static_cast<T>(opaque(justAboveSmallestNormal * justAboveSmallestNormal));
        return orvoWarnUnderflow;
    }

    // x = n ln2/64 + r, n = 64 m + j; ln2/64 in two parts, the first with
    // trailing zeros so that n times it is exact.
    const double magic = constant<double>(0x4338000000000000);
    const double a = xd * constant<double>(0x40571547652B82FE);  // 64/ln2
    const double s = a + magic;
    const double k = s - magic;
    const double ln2By64High = constant<double>(0x3F862E42FEFA0000);
    const double ln2By64Low = constant<double>(0x3D1CF79ABC9E3B3A);
    const double r = Format::kLowPartFirst ? (xd - k * ln2By64Low) - k * ln2By64High
                                           : (xd - k * ln2By64High) - k * ln2By64Low;

    // exp(r) - 1 = r + r^2 (1/2 + d3 r + d4 r^2 + d5 r^3 + d6 r^4).
    const double q = simd::horner({0x3F56C16A1C2A3FFD, 0x3F8111123AAF20D3, 0x3FA5555555558FCC, 0x3FC55555555548F8,
                                   0x3FE0000000000000 /* 1/2 */}, r);
    const double p = (q * r) * r + r;

    const uint64_t sBits = asBits(s);
    const uint32_t j = static_cast<uint32_t>(sBits) & 0x3F;
    // Exponent arithmetic is modulo 2^11, so the logical shift of the low
    // word gives the right field for negative n too.
    const uint32_t m = static_cast<uint32_t>(sBits) >> 6;
    const double hi = ExpTable64Rel[j][0];
    const double lo = ExpTable64Rel[j][1];
    // 2^(j/64) exp(r) = hi (1 + lo) (1 + p) ~ hi + hi (p + lo)
    const double w = (p + lo) * hi;

    if (xd >= constant<double>(Format::kDenormalBelow)) {
        const uint32_t e = (m + 1023) & 0x7FF;
        // An exponent of 1024 has no field: scale by 2^1023, then double.
        const double result = e <= 2046 ? (w + hi) * powerOfTwoField(e) : ((w + hi) * powerOfTwoField(e - 1)) * 2.0;
        *out = static_cast<T>(result);
        return orvoOk;
    }

    // Denormal result: work 60 binades higher, where everything is normal,
    // and let only one rounding happen on the way down.
    const uint32_t e = (m + 1083) & 0x7FF;
    const double scale = powerOfTwoField(e);
    const double scaledW = w * scale;
    const double scaledHi = hi * scale;
    const double t = scaledW + scaledHi;
    const double down = constant<double>(0x3C30000000000000);  // 2^-60
    double result;
    if (e <= 50) {
        result = t * down;
    } else {
        // h keeps t's leading bits, which scale down exactly; the error of
        // t and the rest of it go into l, whose scaling is the one rounding.
        const double tError = scaledW + (scaledHi - t);
        const double splitter = t * constant<double>(0x41F8000000000000);  // 1.5 * 2^32
        const double h = (t + splitter) - splitter;
        const double l = tError + (t - h);
        result = h * down + l * down;
    }
    *out = static_cast<T>(result);
    return orvoWarnUnderflow;
}

}  // namespace

orvoStatus ExpFixup32f(const orvo32f* in, orvo32f* out) { return expFixup(in, out); }
orvoStatus ExpFixup64f(const orvo64f* in, orvo64f* out) { return expFixup(in, out); }

}  // namespace orvo
