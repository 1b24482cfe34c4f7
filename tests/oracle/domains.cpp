// The input domain of every family, one declaration each.  A domain names
// the ranges drawn densely by exponent and uniformly, the thresholds of the
// kernels' masks and scalar routines (searched ulp by ulp on both sides),
// related arguments where two values matter together, and the samples that
// a level does not promise, where its method gives that accuracy up by
// construction.  Specials (zeros, infinities, NaNs, subnormals, the range's
// ends) are added for every family by the sampler.
#include "oracle/domains.h"

#include <bit>
#include <cmath>
#include <limits>
#include <numbers>
#include <string_view>

namespace orvo::oracle {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kPi = std::numbers::pi;

// ---- building blocks --------------------------------------------------------

Piece spread(double a, double b, double w = 1, unsigned t = TAll) { return {Piece::Spread, a, b, w, t}; }
Piece uniform(double a, double b, double w = 1, unsigned t = TAll) { return {Piece::Uniform, a, b, w, t}; }
Piece near(double c, double width, double w = 1, unsigned t = TAll) { return {Piece::Near, c, width, w, t}; }
Piece multiples(double period, double kmax, double w = 1, unsigned t = TAll) { return {Piece::Multiples, period, kmax, w, t}; }

Mark val(double v, int arg = 0, unsigned t = TAll) { Mark m{Mark::Value}; m.value = v; m.arg = arg; m.types = t; return m; }
Mark f32(uint32_t bits, int arg = 0) { Mark m{Mark::Bits32}; m.bits = bits; m.arg = arg; m.types = T32; return m; }
Mark f64(uint64_t bits, int arg = 0) { Mark m{Mark::Bits64}; m.bits = bits; m.arg = arg; m.types = T64; return m; }
Mark hi(uint32_t word, int arg = 0) { Mark m{Mark::High64}; m.bits = word; m.arg = arg; m.types = T64; return m; }

const std::vector<Piece> kAnywhere = {spread(-kInf, kInf, 2), uniform(-10, 10, 1)};

bool single(const CatalogueEntry& e) { return realBytes(e.type) == 4; }
bool levelIs(const CatalogueEntry& e, const char* level) { return std::string_view(e.level) == level; }

template <class T> T partOf(const Sample& s, int i, bool b32) {
    if (b32) return std::bit_cast<float>(static_cast<uint32_t>(s.in[i]));
    return std::bit_cast<double>(s.in[i]);
}
double part(const CatalogueEntry& e, const Sample& s, int i) {
    return single(e) ? partOf<float>(s, i, true) : partOf<double>(s, i, false);
}

// ---- related arguments ------------------------------------------------------

// Sums that cancel, and addends many binades apart.
void addRelated(Draw& d, int count) {
    for (int i = 0; i < count; ++i) {
        const uint64_t x = d.anyFinite();
        const double xv = d.value(x);
        const double y = (i & 1) ? -xv * (1 + std::ldexp(d.unit() - 0.5, -static_cast<int>(d.below(30))))
                                 : xv * std::ldexp(1.0, static_cast<int>(d.below(120)) - 60);
        d.emitReal2(x, d.bits(y));
    }
}

// Products and quotients near the ends of the range.
void productRelated(Draw& d, int count, bool quotient) {
    const Format f = d.format();
    for (int i = 0; i < count; ++i) {
        const uint64_t y = d.spread(-d.maxFinite(), d.maxFinite());
        const double yv = d.value(y);
        const int edge = (i % 3 == 0) ? f.emax : (i % 3 == 1) ? f.emin : f.emin - f.p + 1;
        const double target = std::ldexp(1 + d.unit(), edge + static_cast<int>(d.below(5)) - 2);
        const double x = quotient ? target * yv : target / yv;
        d.emitReal2(d.bits(x), y);
    }
}
void mulRelated(Draw& d, int count) { productRelated(d, count, false); }
void divRelated(Draw& d, int count) { productRelated(d, count, true); }

// x^y with y log x near the overflow and underflow limits of both formats
// and of the masks (87.3, 88.7, 103.97, 708.4, 709.8, 745.1, 1022 ln 2),
// and negative bases with integer exponents.
void powRelated(Draw& d, int count) {
    static const double kLimits[] = {87.3007812, 87.33654, 88.7228317, 103.972076, 708.396418, 709.782712,
                                     745.133219, 708.39641853226408, 1022 * std::numbers::ln2, 0.0};
    for (int i = 0; i < count; ++i) {
        uint64_t x = d.spread(0, d.maxFinite());
        double xv = d.value(x);
        if (xv == 1 || xv == 0 || std::isinf(xv)) continue;
        double y;
        if (i % 4 == 3) {
            // A negative base and an integer power.
            y = std::round(std::ldexp(d.unit(), static_cast<int>(d.below(d.binary32() ? 26 : 55))));
            x |= d.binary32() ? 0x80000000u : 0x8000000000000000u;
        } else {
            const double z = kLimits[d.below(std::size(kLimits))] * ((i & 1) ? 1 : -1) * (1 + (d.unit() - 0.5) * 1e-3);
            y = z / std::log(xv);
        }
        d.emitReal2(x, d.bits(y));
    }
}

// Sums of squares around the band of Hypot's mask, and parts many binades
// apart.
void hypotRelated(Draw& d, int count) {
    for (int i = 0; i < count; ++i) {
        double x;
        if (i % 2) {
            // Exponents of the sums of squares at the band's ends, at the
            // bottom of the normal range and at overflow.
            static const int kEdges32[] = {-67, 66, -126, 128};
            static const int kEdges64[] = {-67, 66, -1022, 1024};
            const int edge = (d.binary32() ? kEdges32 : kEdges64)[d.below(4)];
            x = std::ldexp(std::sqrt((0.5 + d.unit()) * (edge & 1 ? 2 : 1)), (edge - (edge & 1)) / 2);
        } else {
            x = d.value(d.anyFinite());
        }
        const double y = x * std::ldexp(0.5 + d.unit(), static_cast<int>(d.below(80)) - 40);
        d.emitReal2(d.bits(x), d.bits((i & 2) ? -y : y));
    }
}

// Angles of points whose coordinates lie many binades apart (the scalar
// routine's cases at 53, 54 and 74 binades) or nearly equal.
void atan2Related(Draw& d, int count) {
    for (int i = 0; i < count; ++i) {
        const double x = d.value(d.anyFinite());
        const double y = (i % 3) ? x * std::ldexp(0.5 + d.unit(), static_cast<int>(d.below(170)) - 85)
                                 : x * (1 + std::ldexp(d.unit() - 0.5, -static_cast<int>(d.below(30))));
        d.emitReal2(d.bits((i & 4) ? -y : y), d.bits((i & 8) ? -x : x));
    }
}

void emitComplex(Draw& d, double re, double im) {
    Sample s;
    s.in[0] = d.bits(re);
    s.in[1] = d.bits(im);
    d.emit(s);
}

// Points near the unit circle (the logarithm's cancellation), on the
// negative real axis (its branch cut) and near +-1, +-i.
void unitCircleRelated(Draw& d, int count) {
    for (int i = 0; i < count; ++i) {
        const double t = 2 * kPi * d.unit();
        const double r = 1 + std::ldexp(d.unit() - 0.5, -static_cast<int>(d.below(d.binary32() ? 26 : 55)));
        if (i % 4 == 3) emitComplex(d, -std::ldexp(d.unit() + 0.5, static_cast<int>(d.below(40)) - 20), (i & 4) ? -0.0 : 0.0);
        else if (i % 4 == 2) emitComplex(d, std::round(std::cos(t)) * r, std::ldexp(d.unit() - 0.5, -static_cast<int>(d.below(60))));
        else emitComplex(d, r * std::cos(t), r * std::sin(t));
    }
}

// Products whose parts cancel: a c close to b d (Mul), a c close to -b d
// (MulByConj).
void cancellingProducts(Draw& d, int count) {
    for (int i = 0; i < count; ++i) {
        const double a = d.value(d.uniform(-4, 4)), b = d.value(d.uniform(-4, 4)), c = d.value(d.uniform(-4, 4));
        const double bd = a * c * (1 + std::ldexp(d.unit() - 0.5, -static_cast<int>(d.below(50))));
        const double dd = ((i & 1) ? bd : -bd) / b;
        Sample s;
        s.in[0] = d.bits(a);
        s.in[1] = d.bits(b);
        s.in[2] = d.bits(c);
        s.in[3] = d.bits(dd);
        d.emit(s);
    }
}

// z^c with moderate powers, where the results stay in range.
void complexPowRelated(Draw& d, int count) {
    for (int i = 0; i < count; ++i) {
        Sample s;
        s.in[0] = d.uniform(-4, 4);
        s.in[1] = d.uniform(-4, 4);
        s.in[2] = d.uniform(-3, 3);
        s.in[3] = (i & 1) ? d.uniform(-3, 3) : 0;
        d.emit(s);
    }
}

// ---- what a level does not promise -------------------------------------------

// The low complex levels multiply and divide by the plain formulas with no
// scaling: their promise holds while the products and c^2 + d^2 stay inside
// the normal range of the working type.
bool plainProductOutside(const CatalogueEntry& e, const Sample& s, int lowExp, int highExp) {
    for (int i = 0; i < 4; ++i) {
        const double v = std::fabs(part(e, s, i));
        if (std::isfinite(v) && v != 0 && (std::ilogb(v) < lowExp || std::ilogb(v) > highExp)) return true;
    }
    return false;
}
bool mulOutside(const CatalogueEntry& e, const Sample& s) {
    if (single(e) ? levelIs(e, "A11") : levelIs(e, "A26")) return plainProductOutside(e, s, -100000, single(e) ? 62 : 510);
    return false;
}
bool divOutside(const CatalogueEntry& e, const Sample& s) {
    if (single(e) ? levelIs(e, "A11") : levelIs(e, "A26"))
        return single(e) ? plainProductOutside(e, s, -30, 30) : plainProductOutside(e, s, -250, 250);
    return false;
}

// Complex powers form c * ln z by the plain binary64 product, whose
// roundings grow with the exponent: leave out the samples where those
// roundings alone, some 6 |c| |ln z| units of binary64, could take more
// than half the level's bound.
bool complexPowOutside(const CatalogueEntry& e, const Sample& s) {
    const bool b32 = single(e);
    const double zr = part(e, s, 0), zi = part(e, s, 1);
    double cr, ci;
    if (e.shape == Shape::ScalarRight) {
        cr = b32 ? std::bit_cast<float>(static_cast<uint32_t>(s.scalar[0])) : std::bit_cast<double>(s.scalar[0]);
        ci = b32 ? std::bit_cast<float>(static_cast<uint32_t>(s.scalar[1])) : std::bit_cast<double>(s.scalar[1]);
    } else {
        cr = part(e, s, 2);
        ci = part(e, s, 3);
    }
    const double l = std::hypot(std::log(std::hypot(zr, zi)), std::atan2(zi, zr));
    const double c = std::hypot(cr, ci);
    if (!std::isfinite(l * c)) return false;
    const Format f = b32 ? kBinary32 : kBinary64;
    const double inherent = 6 * c * l * std::ldexp(1.0, f.p - 53);
    return inherent > 0.5 * levelBound(e.level, f);
}

// Erfc of binary64 at A53 tells a NaN by its upper word alone: a NaN whose
// upper word is 0x7FF00000 gives 0 and one with 0xFFF00000 gives 2, on
// purpose.  Such NaNs are not in its domain.
bool erfcOutside(const CatalogueEntry& e, const Sample& s) {
    if (single(e) || !levelIs(e, "A53")) return false;
    const uint64_t b = s.in[0];
    return (b & 0x7FFFFFFFFFFFFFFFu) > 0x7FF0000000000000u && ((b >> 32) & 0x7FFFFFFFu) == 0x7FF00000u;
}

// ---- the C library's plain loops, for the report ------------------------------

template <class T, T (*F)(T)> void unaryLoop(const test::CallArrays& a, int n) {
    const T* x = static_cast<const T*>(a.in[0]);
    T* y = static_cast<T*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i]);
}
template <class T, T (*F)(T, T)> void binaryLoop(const test::CallArrays& a, int n) {
    const T* x = static_cast<const T*>(a.in[0]);
    const T* z = static_cast<const T*>(a.in[1]);
    T* y = static_cast<T*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i], z[i]);
}
template <class T, T (*F)(T, T)> void scalarLoop(const test::CallArrays& a, int n) {
    const T* x = static_cast<const T*>(a.in[0]);
    const T s = *static_cast<const T*>(a.scalar);
    T* y = static_cast<T*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i], s);
}
template <class T> T plus(T a, T b) { return a + b; }
template <class T> T minus(T a, T b) { return a - b; }
template <class T> T times(T a, T b) { return a * b; }
template <class T> T over(T a, T b) { return a / b; }
template <class T> T square(T a) { return a * a; }
template <class T> T reciprocal(T a) { return T(1) / a; }
template <class T> T invSqrt(T a) { return T(1) / std::sqrt(a); }
template <class T> T invCbrt(T a) { return T(1) / std::cbrt(a); }
template <class T> T cbrtSquared(T a) { const T c = std::cbrt(a); return c * c; }
template <class T> T timesSqrt(T a) { return a * std::sqrt(a); }
template <class T> T cdfNorm(T a) { return T(0.5) * std::erfc(-a * T(0.70710678118654752440)); }

// The inverses in binary64, for the exhaustive mode's first judgement
// (checked against the exact oracle to 2^-40): erf(y) = x by Newton's
// method on erf for |x| below 1/2; erfc(y) = v by Newton's method on
// ln erfc, whose slope stays moderate where erfc itself vanishes.
double erfNewton(double x) {
    double y = x * (1 / (std::numbers::inv_sqrtpi * 2));
    for (int i = 0; i < 60; ++i) {
        const double step = (x - std::erf(y)) / (std::numbers::inv_sqrtpi * 2 * std::exp(-y * y));
        y += step;
        if (std::fabs(step) <= 0x1p-60 * std::fabs(y)) break;
    }
    return y;
}
double approxErfcInv(double v) {
    if (!(v > 0 && v < 2)) return std::numeric_limits<double>::quiet_NaN();
    if (v > 1) return -approxErfcInv(2 - v);
    if (v >= 0.5) return erfNewton(1 - v);
    double y = std::sqrt(-std::log(v));
    for (int i = 0; i < 60; ++i) {
        const double e = std::erfc(y);
        const double step = (std::log(e) - std::log(v)) * e / (std::numbers::inv_sqrtpi * 2 * std::exp(-y * y));
        y += step;
        if (std::fabs(step) <= 0x1p-60 * std::fabs(y)) break;
    }
    return y;
}
double approxErfInv(double x) {
    if (std::fabs(x) >= 0.5) return std::copysign(approxErfcInv(1 - std::fabs(x)), x);
    return erfNewton(x);
}
double approxCdfNormInv(double p) { return -std::numbers::sqrt2 * approxErfcInv(2 * p); }

void sinCosLoop32(const test::CallArrays& a, int n) {
    const float* x = static_cast<const float*>(a.in[0]);
    float *s = static_cast<float*>(a.out[0]), *c = static_cast<float*>(a.out[1]);
    for (int i = 0; i < n; ++i) sincosf(x[i], &s[i], &c[i]);
}
void sinCosLoop64(const test::CallArrays& a, int n) {
    const double* x = static_cast<const double*>(a.in[0]);
    double *s = static_cast<double*>(a.out[0]), *c = static_cast<double*>(a.out[1]);
    for (int i = 0; i < n; ++i) sincos(x[i], &s[i], &c[i]);
}
// cos t + i sin t by one sincos per element.
void cisLoop32(const test::CallArrays& a, int n) {
    const float* t = static_cast<const float*>(a.in[0]);
    float* z = static_cast<float*>(a.out[0]);
    for (int i = 0; i < n; ++i) sincosf(t[i], &z[2 * i + 1], &z[2 * i]);
}
void cisLoop64(const test::CallArrays& a, int n) {
    const double* t = static_cast<const double*>(a.in[0]);
    double* z = static_cast<double*>(a.out[0]);
    for (int i = 0; i < n; ++i) sincos(t[i], &z[2 * i + 1], &z[2 * i]);
}
void modfLoop32(const test::CallArrays& a, int n) {
    const float* x = static_cast<const float*>(a.in[0]);
    float *ip = static_cast<float*>(a.out[0]), *fp = static_cast<float*>(a.out[1]);
    for (int i = 0; i < n; ++i) fp[i] = modff(x[i], &ip[i]);
}
void modfLoop64(const test::CallArrays& a, int n) {
    const double* x = static_cast<const double*>(a.in[0]);
    double *ip = static_cast<double*>(a.out[0]), *fp = static_cast<double*>(a.out[1]);
    for (int i = 0; i < n; ++i) fp[i] = modf(x[i], &ip[i]);
}

}  // namespace
}  // namespace orvo::oracle

// The C library's complex functions, by their C names and types.
extern "C" {
__complex__ float cexpf(__complex__ float);
__complex__ double cexp(__complex__ double);
__complex__ float clogf(__complex__ float);
__complex__ double clog(__complex__ double);
__complex__ float clog10f(__complex__ float);
__complex__ double clog10(__complex__ double);
__complex__ float csqrtf(__complex__ float);
__complex__ double csqrt(__complex__ double);
__complex__ float csinf(__complex__ float);
__complex__ double csin(__complex__ double);
__complex__ float ccosf(__complex__ float);
__complex__ double ccos(__complex__ double);
__complex__ float ctanf(__complex__ float);
__complex__ double ctan(__complex__ double);
__complex__ float csinhf(__complex__ float);
__complex__ double csinh(__complex__ double);
__complex__ float ccoshf(__complex__ float);
__complex__ double ccosh(__complex__ double);
__complex__ float ctanhf(__complex__ float);
__complex__ double ctanh(__complex__ double);
__complex__ float casinf(__complex__ float);
__complex__ double casin(__complex__ double);
__complex__ float cacosf(__complex__ float);
__complex__ double cacos(__complex__ double);
__complex__ float catanf(__complex__ float);
__complex__ double catan(__complex__ double);
__complex__ float casinhf(__complex__ float);
__complex__ double casinh(__complex__ double);
__complex__ float cacoshf(__complex__ float);
__complex__ double cacosh(__complex__ double);
__complex__ float catanhf(__complex__ float);
__complex__ double catanh(__complex__ double);
__complex__ float cpowf(__complex__ float, __complex__ float);
__complex__ double cpow(__complex__ double, __complex__ double);
__complex__ float conjf(__complex__ float);
__complex__ double conj(__complex__ double);
float cabsf(__complex__ float);
double cabs(__complex__ double);
float cargf(__complex__ float);
double carg(__complex__ double);
}

namespace orvo::oracle {
namespace {

using C32 = __complex__ float;
using C64 = __complex__ double;

template <class C, C (*F)(C)> void complexLoop(const test::CallArrays& a, int n) {
    const C* x = static_cast<const C*>(a.in[0]);
    C* y = static_cast<C*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i]);
}
template <class C, C (*F)(C, C)> void complexBinaryLoop(const test::CallArrays& a, int n) {
    const C* x = static_cast<const C*>(a.in[0]);
    const C* z = static_cast<const C*>(a.in[1]);
    C* y = static_cast<C*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i], z[i]);
}
template <class C, C (*F)(C, C)> void complexScalarLoop(const test::CallArrays& a, int n) {
    const C* x = static_cast<const C*>(a.in[0]);
    const C s = *static_cast<const C*>(a.scalar);
    C* y = static_cast<C*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i], s);
}
template <class C, class R, R (*F)(C)> void toRealLoop(const test::CallArrays& a, int n) {
    const C* x = static_cast<const C*>(a.in[0]);
    R* y = static_cast<R*>(a.out[0]);
    for (int i = 0; i < n; ++i) y[i] = F(x[i]);
}
template <class C> C complexTimes(C a, C b) { return a * b; }
template <class C> C complexOver(C a, C b) { return a / b; }
template <class C> C complexPlus(C a, C b) { return a + b; }
template <class C> C complexMinus(C a, C b) { return a - b; }
template <class C> C timesConj(C a, C b) { return a * ~b; }

// A family's loops for both formats.
#define LOOPS1(f32, f64) "" #f32, unaryLoop<float, f32>, unaryLoop<double, f64>
#define LOOPS2(f32, f64) "" #f32, binaryLoop<float, f32>, binaryLoop<double, f64>
#define CLOOPS1(f32, f64) "" #f32, complexLoop<C32, f32>, complexLoop<C64, f64>
#define CLOOPS2(name, f32, f64) name, complexBinaryLoop<C32, f32>, complexBinaryLoop<C64, f64>

// ---- the table ----------------------------------------------------------------

std::vector<Domain> makeDomains() {
    std::vector<Domain> t;
    auto add = [&t](Domain d) { t.push_back(std::move(d)); };

    // Element-wise arithmetic: every finite pair, cancelling sums, products
    // at the ends of the range.
    add({.family = "Abs", .complex = false, .about = "all of the range", .first = kAnywhere,
         .baseline = "fabsf", .loop32 = unaryLoop<float, fabsf>, .loop64 = unaryLoop<double, fabs>, .approx = fabs});
    add({.family = "Add", .complex = false, .about = "all pairs; cancelling sums; addends far apart",
         .first = kAnywhere, .related = addRelated, .baseline = "a+b", .loop32 = binaryLoop<float, plus<float>>,
         .loop64 = binaryLoop<double, plus<double>>});
    add({.family = "Sub", .complex = false, .about = "all pairs; cancelling differences; operands far apart",
         .first = kAnywhere, .related = addRelated, .baseline = "a-b", .loop32 = binaryLoop<float, minus<float>>,
         .loop64 = binaryLoop<double, minus<double>>});
    add({.family = "Mul", .complex = false, .about = "all pairs; products at overflow, underflow, subnormal edges",
         .first = kAnywhere, .related = mulRelated, .baseline = "a*b", .loop32 = binaryLoop<float, times<float>>,
         .loop64 = binaryLoop<double, times<double>>});
    add({.family = "Sqr", .complex = false, .about = "all of the range; squares at the range's ends",
         .first = kAnywhere,
         .marks = {val(0x1p64, 0, T32), val(0x1p-63, 0, T32), val(0x1p-75, 0, T32), val(0x1p512, 0, T64),
                   val(0x1p-511, 0, T64), val(0x1p-537, 0, T64)},
         .baseline = "x*x", .loop32 = unaryLoop<float, square<float>>, .loop64 = unaryLoop<double, square<double>>,
         .approx = square<double>});

    // Reciprocal and division: the band masks around the largest finite
    // numbers and the exponent bands of binary64.
    const std::vector<Mark> divisorMarks = {f32(0x7E7FE800), f32(0x7E7FE801), f32(0x7E800000), f32(0x7E800001),
                                            f32(0x00800000), hi(0x00100000), hi(0x00200000), hi(0x7FE00000)};
    std::vector<Mark> divMarks;
    for (Mark m : divisorMarks) { m.arg = 1; divMarks.push_back(m); }
    add({.family = "Inv", .complex = false, .about = "all of the range; the band masks; tiny subnormals that overflow",
         .first = kAnywhere, .marks = divisorMarks, .baseline = "1/x", .loop32 = unaryLoop<float, reciprocal<float>>,
         .loop64 = unaryLoop<double, reciprocal<double>>, .approx = reciprocal<double>});
    add({.family = "Div", .complex = false,
         .about = "all pairs; the divisor's band masks; quotients at overflow, underflow, subnormal edges",
         .first = kAnywhere, .marks = divMarks, .related = divRelated, .baseline = "a/b",
         .loop32 = binaryLoop<float, over<float>>, .loop64 = binaryLoop<double, over<double>>});

    // Roots.
    const std::vector<Piece> positive = {spread(0, kInf, 3), spread(-kInf, 0, 0.3), uniform(0, 100, 1)};
    const std::vector<Mark> rootMarks = {f32(0x00800000), f32(0x7F7FF001), f32(0x7F7FF002), f32(0x7F7FFFFF),
                                         hi(0x7FEF0000), hi(0x00100000), val(1), val(2), val(4)};
    add({.family = "Sqrt", .complex = false, .about = "positive numbers by exponent, some negative; the top of the range",
         .first = positive, .marks = rootMarks, .baseline = "sqrtf", .loop32 = unaryLoop<float, sqrtf>,
         .loop64 = unaryLoop<double, sqrt>, .benchLo = 0, .benchHi = 100, .approx = sqrt});
    add({.family = "InvSqrt", .complex = false, .about = "positive numbers by exponent, some negative; the top of the range",
         .first = positive, .marks = rootMarks, .baseline = "1/sqrtf", .loop32 = unaryLoop<float, invSqrt<float>>,
         .loop64 = unaryLoop<double, invSqrt<double>>, .benchLo = 0, .benchHi = 100, .approx = invSqrt<double>});
    const std::vector<Piece> cubeArgs = {spread(-kInf, kInf, 3), uniform(-30, 30, 1)};
    const std::vector<Mark> cubeMarks = {f32(0x00800000), f32(0x7F7FFFFF), hi(0x00100000), hi(0x7FEFFFFF),
                                         val(8), val(-27), val(2), val(4), val(1)};
    add({.family = "Cbrt", .complex = false, .about = "all of the range; exact cubes; the three exponent remainders",
         .first = cubeArgs, .marks = cubeMarks, .baseline = "cbrtf", .loop32 = unaryLoop<float, cbrtf>,
         .loop64 = unaryLoop<double, cbrt>, .approx = cbrt});
    add({.family = "InvCbrt", .complex = false, .about = "all of the range; exact cubes; zeros give infinities",
         .first = cubeArgs, .marks = cubeMarks, .baseline = "1/cbrtf", .loop32 = unaryLoop<float, invCbrt<float>>,
         .loop64 = unaryLoop<double, invCbrt<double>>, .approx = invCbrt<double>});
    add({.family = "Pow2o3", .complex = false,
         .about = "all of the range (x^(2/3) is the square of the real cube root, positive for negative x)",
         .first = cubeArgs, .marks = cubeMarks, .baseline = "cbrtf^2", .loop32 = unaryLoop<float, cbrtSquared<float>>,
         .loop64 = unaryLoop<double, cbrtSquared<double>>, .approx = cbrtSquared<double>});
    add({.family = "Pow3o2", .complex = false,
         .about = "positive numbers by exponent, some negative (no real value); results at overflow",
         .first = positive,
         .marks = {f32(0x00800000), f32(0x7F7FFFFF), val(1), val(4), val(0x1p85, 0, T32), val(0x1.965fea53d6e3dp+682, 0, T64)},
         .baseline = "x*sqrtf", .loop32 = unaryLoop<float, timesSqrt<float>>, .loop64 = unaryLoop<double, timesSqrt<double>>,
         .benchLo = 0, .benchHi = 100, .approx = timesSqrt<double>});
    add({.family = "Hypot", .complex = false,
         .about = "all pairs; sums of squares around the mask's band; parts far apart",
         .first = kAnywhere, .related = hypotRelated, .baseline = "hypotf", .loop32 = binaryLoop<float, hypotf>,
         .loop64 = binaryLoop<double, hypot>});

    // Rounding: halves and near-integers, the binade where every number is
    // an integer.
    const std::vector<Piece> roundArgs = {spread(-kInf, kInf, 2), uniform(-100, 100, 2), multiples(0.5, 0x1p25, 1, T32),
                                          multiples(0.5, 0x1p54, 1, T64)};
    const std::vector<Mark> roundMarks = {val(0x1p23), val(0x1p52, 0, T64), val(0.5), val(1.5), val(2.5),
                                          f32(0x3EFFFFFF), f32(0x4B000001)};
    add({.family = "Ceil", .complex = false, .about = "all of the range; near integers and halves", .first = roundArgs,
         .marks = roundMarks, .baseline = "ceilf", .loop32 = unaryLoop<float, ceilf>, .loop64 = unaryLoop<double, ceil>,
         .approx = ceil});
    add({.family = "Floor", .complex = false, .about = "all of the range; near integers and halves", .first = roundArgs,
         .marks = roundMarks, .baseline = "floorf", .loop32 = unaryLoop<float, floorf>,
         .loop64 = unaryLoop<double, floor>, .approx = floor});
    add({.family = "Trunc", .complex = false, .about = "all of the range; near integers and halves", .first = roundArgs,
         .marks = roundMarks, .baseline = "truncf", .loop32 = unaryLoop<float, truncf>,
         .loop64 = unaryLoop<double, trunc>, .approx = trunc});
    add({.family = "Round", .complex = false, .about = "all of the range; near integers and halves (ties away)",
         .first = roundArgs, .marks = roundMarks, .baseline = "roundf", .loop32 = unaryLoop<float, roundf>,
         .loop64 = unaryLoop<double, round>, .approx = round});
    add({.family = "Rint", .complex = false, .about = "all of the range; near integers and halves (ties to even)",
         .first = roundArgs, .marks = roundMarks, .baseline = "rintf", .loop32 = unaryLoop<float, rintf>,
         .loop64 = unaryLoop<double, rint>, .approx = rint});
    add({.family = "NearbyInt", .complex = false, .about = "all of the range; near integers and halves (ties to even)",
         .first = roundArgs, .marks = roundMarks, .baseline = "nearbyintf", .loop32 = unaryLoop<float, nearbyintf>,
         .loop64 = unaryLoop<double, nearbyint>, .approx = nearbyint});
    add({.family = "Modf", .complex = false, .about = "all of the range; near integers; the vector path's limit",
         .first = roundArgs, .marks = {f32(0x4B000000), hi(0x43200000), hi(0x43300000), val(0.5), val(1)},
         .baseline = "modff", .loop32 = modfLoop32, .loop64 = modfLoop64});

    // Exponentials and logarithms.
    add({.family = "Exp", .complex = false,
         .about = "all of the range; dense between the underflow and overflow limits; the masks and the fixup's limits",
         .first = {spread(-kInf, kInf, 1), uniform(-104, 89, 3, T32), uniform(-746, 710, 3, T64), uniform(-1, 1, 1)},
         .marks = {f32(0x42AEAC4F), f32(0x42AEAC46), f32(0x42B17217), f32(0xC2AEAC4F), f32(0xC2CFF1B4), f32(0x25800000),
                   hi(0x4085D533), hi(0x4086232A), f64(0x40862E42FEFA39EF), f64(0xC086232BDD7ABCD2),
                   f64(0xC0874910D52D3051), f64(0x3CB0000000000000), val(0)},
         .baseline = "expf", .loop32 = unaryLoop<float, expf>, .loop64 = unaryLoop<double, exp>, .approx = exp});
    const std::vector<Piece> logArgs = {spread(0, kInf, 3), spread(-kInf, 0, 0.2), near(1, 0.5, 2), uniform(0, 4, 1)};
    const std::vector<Mark> logMarks = {val(1), f32(0x3F2AAAAB), f32(0x3F475F7D), f32(0x3F4826F6), val(1 + 0.009765625),
                                        val(1 - 0.009765625), f32(0x00800000), f32(0x7F7FFFFF), f64(0x0010000000000000),
                                        f64(0x7FEFFFFFFFFFFFFF), val(1024 / 724.5), val(0.5 * 1024 / 724.5)};
    add({.family = "Ln", .complex = false,
         .about = "positive numbers by exponent, some negative; near 1; the 2/3 split and the table's switch at 724",
         .first = logArgs, .marks = logMarks, .baseline = "logf", .loop32 = unaryLoop<float, logf>,
         .loop64 = unaryLoop<double, log>, .benchLo = 1e-3, .benchHi = 1e3, .approx = log});
    std::vector<Mark> log10Marks = logMarks;
    for (double v : {1 + 0.005859375, 1 - 0.005859375, 10.0, 100.0, 1000.0, 0.1}) log10Marks.push_back(val(v));
    add({.family = "Log10", .complex = false, .about = "as Ln; powers of ten", .first = logArgs, .marks = log10Marks,
         .baseline = "log10f", .loop32 = unaryLoop<float, log10f>, .loop64 = unaryLoop<double, log10>,
         .benchLo = 1e-3, .benchHi = 1e3, .approx = log10});
    add({.family = "Expm1", .complex = false,
         .about = "all of the range; near 0; the block test's bounds, the general path's branches",
         .first = {spread(-kInf, kInf, 1), uniform(-1, 1, 2), uniform(-40, 89, 2, T32), uniform(-40, 710, 2, T64),
                   near(0, 0.5, 1)},
         .marks = {f32(0x3B800000), f32(0x42B17217), val(709.78271289338397), val(-38.816242111356935), hi(0x3FD33333),
                   hi(0x40862E42), hi(0x4055A92D), hi(0x404419EC), hi(0x3F700000), hi(0x3C600000)},
         .baseline = "expm1f", .loop32 = unaryLoop<float, expm1f>, .loop64 = unaryLoop<double, expm1>,
         .benchLo = -2, .benchHi = 2, .approx = expm1});
    add({.family = "Log1p", .complex = false, .about = "above -1 by exponent; near 0 and near -1; the masks' limits",
         .first = {spread(-1, kInf, 3), spread(-kInf, -1, 0.2), near(0, 0.5, 2), near(-1, 0.5, 1)},
         .marks = {val(-1), f32(0xBF7FFFFF), f32(0x7A800000), f32(0x39800000), f32(0x7F000000), f64(0xBFEFFFFFFFFFFFFF),
                   f64(0x7F3FFFFFFFFFF000), f64(0x3E00000000000000)},
         .baseline = "log1pf", .loop32 = unaryLoop<float, log1pf>, .loop64 = unaryLoop<double, log1p>,
         .benchLo = -0.5, .benchHi = 10, .approx = log1p});
    const std::vector<Piece> baseArgs = {spread(0, kInf, 3), spread(-kInf, 0, 1), near(1, 0.5, 1), uniform(0, 10, 1)};
    const std::vector<Piece> powerArgs = {spread(-kInf, kInf, 2), uniform(-10, 10, 2), multiples(1, 0x1p30, 1)};
    const std::vector<Mark> powMarks = {val(1), f32(0x7F7FFFFF), hi(0x7F800000, 1), val(0x1p53, 1), val(0x1p24, 1, T32),
                                        val(0.5, 1), val(-1, 1)};
    add({.family = "Pow", .complex = false,
         .about = "all pairs; y log x near every overflow and underflow limit; negative bases with integer powers",
         .first = baseArgs, .second = powerArgs, .marks = powMarks, .related = powRelated, .cost = 1.5,
         .baseline = "powf", .loop32 = binaryLoop<float, powf>, .loop64 = binaryLoop<double, pow>,
         .benchLo = 0.5, .benchHi = 4});
    add({.family = "Powx", .complex = false,
         .about = "as Pow, grouped by scalar: the squaring powers 2, 3, 4, zero, one, halves, NaN, infinities",
         .first = baseArgs, .second = powerArgs, .marks = powMarks, .related = powRelated,
         .scalars = {2, 3, 4, 0, -0.0, 1, -1, 0.5, -0.5, 1.0 / 3, 2.5, -3, 10, -10, 100, 0x1p24, 7, 1e-3, 0.75, kInf,
                     -kInf, std::numeric_limits<double>::quiet_NaN()},
         .cost = 1.5, .baseline = "powf", .loop32 = scalarLoop<float, powf>, .loop64 = scalarLoop<double, pow>,
         .benchLo = 0.5, .benchHi = 4});

    // Hyperbolic functions.
    const std::vector<Piece> hyperbolicArgs = {spread(-kInf, kInf, 1), uniform(-90, 90, 2, T32), uniform(-711, 711, 2, T64),
                                               uniform(-1, 1, 1)};
    const std::vector<Mark> hyperbolicMarks = {f32(0x42AEAC4E), f32(0x42B16700), val(89.4159927368164),
                                               val(21.487562597358306), val(0.02720470510300388), val(11.090354888959125),
                                               val(22.18070977791825), hi(0x40861D99), hi(0x40862DE9),
                                               val(710.475860073944, 0, T64), hi(0x3C910000)};
    add({.family = "Sinh", .complex = false, .about = "all of the range; the overflow limits; the table's fold",
         .first = hyperbolicArgs, .marks = hyperbolicMarks, .baseline = "sinhf", .loop32 = unaryLoop<float, sinhf>,
         .loop64 = unaryLoop<double, sinh>, .approx = sinh});
    add({.family = "Cosh", .complex = false, .about = "all of the range; the overflow limits; the table's fold",
         .first = hyperbolicArgs, .marks = hyperbolicMarks, .baseline = "coshf", .loop32 = unaryLoop<float, coshf>,
         .loop64 = unaryLoop<double, cosh>, .approx = cosh});
    add({.family = "Tanh", .complex = false, .about = "all of the range; dense up to saturation; the row ramp's ends",
         .first = {spread(-kInf, kInf, 1), uniform(-12, 12, 2), uniform(-22, 22, 1, T64)},
         .marks = {f32(0x3CF80000), val(10), f32(0x3DE00000), f32(0x7F000000), hi(0x3FBE0000), val(20, 0, T64),
                   hi(0x1FF00000), hi(0x7FE00000)},
         .baseline = "tanhf", .loop32 = unaryLoop<float, tanhf>, .loop64 = unaryLoop<double, tanh>, .approx = tanh});
    add({.family = "Asinh", .complex = false, .about = "all of the range; the small and far forms' switches",
         .first = {spread(-kInf, kInf, 2), uniform(-10, 10, 2)},
         .marks = {f32(0x3F99999A), f32(0x5F7FFFFF), val(4), f32(0x32000000), hi(0x3FE20000), f64(0x5FE7DDDF6B095FF1),
                   val(0.125), val(0x1p28), val(1)},
         .baseline = "asinhf", .loop32 = unaryLoop<float, asinhf>, .loop64 = unaryLoop<double, asinh>,
         .approx = asinh});
    add({.family = "Acosh", .complex = false, .about = "from 1 by exponent, near 1, some below 1 (no real value)",
         .first = {spread(1, kInf, 3), near(1, 1, 2), spread(-kInf, 1, 0.3), uniform(1, 10, 1)},
         .marks = {val(1), val(1.5), f32(0x5F800000), val(4), f32(0x5F0AC723), f64(0x3FF214855DA27286), val(0x1p512, 0, T64),
                   f64(0x5FEFFFFFFFFFFFFF), val(1.0625), val(0x1p28)},
         .baseline = "acoshf", .loop32 = unaryLoop<float, acoshf>, .loop64 = unaryLoop<double, acosh>,
         .benchLo = 1, .benchHi = 20, .approx = acosh});
    add({.family = "Atanh", .complex = false, .about = "(-1, 1) uniform and by exponent, near +-1, some outside",
         .first = {uniform(-1, 1, 2), spread(-1, 1, 2), near(1, 0.5, 1), near(-1, 0.5, 1), spread(-kInf, kInf, 0.3)},
         .marks = {val(1), val(0.5), val(0.6), val(0.75), val(0.6875), hi(0x3F700000), hi(0x3FEFFFFF)},
         .baseline = "atanhf", .loop32 = unaryLoop<float, atanhf>, .loop64 = unaryLoop<double, atanh>,
         .benchLo = -0.99, .benchHi = 0.99, .approx = atanh});

    // Trigonometric functions: near multiples of pi/2 at every size, the
    // fast paths' limits, the large-argument reductions.
    const std::vector<Piece> trigArgs = {spread(-kInf, kInf, 2), uniform(-10, 10, 2), uniform(-1e4, 1e4, 1),
                                         multiples(kPi / 2, 0x1p20, 1), multiples(kPi / 2, 0x1p100, 0.5, T64)};
    const std::vector<Mark> trigMarks = {f32(0x461C4000), f32(0x35800000), val(0x1p24, 0, T64), val(0x1p23, 0, T64),
                                         val(8388608 - kPi / 2, 0, T64), val(65568, 0, T64), val(0x1p17, 0, T64),
                                         val(0x1p30, 0, T64), val(12800), val(0x1p-252, 0, T64), val(kPi), val(kPi / 2)};
    add({.family = "Sin", .complex = false, .about = "all of the range; near multiples of pi/2; the paths' limits",
         .first = trigArgs, .marks = trigMarks, .cost = 1.5, .baseline = "sinf", .loop32 = unaryLoop<float, sinf>,
         .loop64 = unaryLoop<double, sin>, .approx = sin});
    add({.family = "Cos", .complex = false, .about = "all of the range; near multiples of pi/2; the paths' limits",
         .first = trigArgs, .marks = trigMarks, .cost = 1.5, .baseline = "cosf", .loop32 = unaryLoop<float, cosf>,
         .loop64 = unaryLoop<double, cos>, .approx = cos});
    add({.family = "SinCos", .complex = false, .about = "as Sin and Cos", .first = trigArgs, .marks = trigMarks,
         .cost = 2, .baseline = "sincosf", .loop32 = sinCosLoop32, .loop64 = sinCosLoop64});
    std::vector<Mark> tanMarks = trigMarks;
    for (Mark m : {val(8256), val(10000), val(128000), hi(0x40FF4000)}) tanMarks.push_back(m);
    add({.family = "Tan", .complex = false, .about = "all of the range; near the poles and zeros; the paths' limits",
         .first = trigArgs, .marks = tanMarks, .cost = 1.5, .baseline = "tanf", .loop32 = unaryLoop<float, tanf>,
         .loop64 = unaryLoop<double, tan>, .approx = tan});
    const std::vector<Piece> unitArgs = {uniform(-1, 1, 3), near(1, 0.5, 1), near(-1, 0.5, 1), spread(-1, 1, 2),
                                         spread(-kInf, kInf, 0.3)};
    add({.family = "Asin", .complex = false, .about = "[-1, 1] uniform and by exponent; near +-1 and 1/2; some outside",
         .first = unitArgs, .marks = {val(0.5), val(1)}, .baseline = "asinf", .loop32 = unaryLoop<float, asinf>,
         .loop64 = unaryLoop<double, asin>, .benchLo = -1, .benchHi = 1, .approx = asin});
    add({.family = "Acos", .complex = false, .about = "[-1, 1] uniform and by exponent; near +-1 and 1/2; some outside",
         .first = unitArgs, .marks = {val(0.5), val(1)}, .baseline = "acosf", .loop32 = unaryLoop<float, acosf>,
         .loop64 = unaryLoop<double, acos>, .benchLo = -1, .benchHi = 1, .approx = acos});
    const std::vector<Mark> atanMarks = {f32(0x01000000), f32(0x7D000000), val(1), f32(0x3EC00000), f32(0x3F3851EC),
                                         f32(0x3FE00000), f32(0x402C0000), hi(0x3FDC0000), hi(0x3FE60000), hi(0x3FF30000),
                                         hi(0x40038000), hi(0x00300000), hi(0x7E000000)};
    add({.family = "Atan", .complex = false, .about = "all of the range; the mask's ends; the intervals of the reduction",
         .first = {spread(-kInf, kInf, 3), uniform(-4, 4, 2)}, .marks = atanMarks, .baseline = "atanf",
         .loop32 = unaryLoop<float, atanf>, .loop64 = unaryLoop<double, atan>, .approx = atan});
    std::vector<Mark> atan2Marks;
    for (Mark m : {f32(0x01000000), f32(0x7D000000), hi(0x00300000), hi(0x7E000000)})
        for (int arg : {0, 1}) { m.arg = arg; atan2Marks.push_back(m); }
    add({.family = "Atan2", .complex = false,
         .about = "all pairs; coordinates 53, 54, 74 binades apart and nearly equal; the mask's ends on either",
         .first = {spread(-kInf, kInf, 2), uniform(-4, 4, 2)}, .marks = atan2Marks, .related = atan2Related,
         .baseline = "atan2f", .loop32 = binaryLoop<float, atan2f>, .loop64 = binaryLoop<double, atan2>});

    // Error function family.
    add({.family = "Erf", .complex = false, .about = "all of the range; dense to saturation; the row ramp and fixup limits",
         .first = {spread(-kInf, kInf, 1), uniform(-6, 6, 3)},
         .marks = {val(3), val(4), f32(0x3CF80000), f32(0x20800000), val(3.875), hi(0x3FBE0000), val(6, 0, T64),
                   val(5.5, 0, T64), val(5.92157, 0, T64), hi(0x1FF00000), f64(0x0000010000000000), f64(0x000E2DFC48DA77B5)},
         .cost = 4, .baseline = "erff", .loop32 = unaryLoop<float, erff>, .loop64 = unaryLoop<double, erf>,
         .benchLo = -4, .benchHi = 4, .approx = erf});
    add({.family = "Erfc", .complex = false,
         .about = "all of the range; dense up to where erfc vanishes; the block rule's and underflow bounds",
         .first = {spread(-kInf, kInf, 1), uniform(-6, 11, 3, T32), uniform(-6, 28, 3, T64)},
         .marks = {f32(0x4120DDFC), f32(0xC07547CA), f32(0x41131CE0), f32(0x32000000), f32(0x3C780000), val(10.5),
                   hi(0x403B39DC), f64(0x403A8B12FC6E4891), hi(0x403A8B12), hi(0x3C800000)},
         .outside = erfcOutside, .cost = 4, .baseline = "erfcf", .loop32 = unaryLoop<float, erfcf>,
         .loop64 = unaryLoop<double, erfc>, .benchLo = -4, .benchHi = 10, .approx = erfc});
    add({.family = "CdfNorm", .complex = false, .about = "all of the range; dense between the bounds L and U",
         .first = {spread(-kInf, kInf, 1), uniform(-15, 6, 3, T32), uniform(-40, 9, 3, T64)},
         .marks = {val(-14.170185089111328), val(5.41998291015625), val(-37.51937934714449, 0, T64),
                   val(8.292361075813595, 0, T64), val(-38.485408335567335, 0, T64), val(-37.74026543984266, 0, T64)},
         .cost = 6, .baseline = "erfcf", .loop32 = unaryLoop<float, cdfNorm<float>>,
         .loop64 = unaryLoop<double, cdfNorm<double>>, .benchLo = -6, .benchHi = 6, .approx = cdfNorm<double>});
    add({.family = "ErfInv", .complex = false, .about = "(-1, 1) uniform and by exponent of x and of 1 - |x|; some outside",
         .first = {uniform(-1, 1, 2), spread(-1, 1, 2), near(1, 0.5, 1), near(-1, 0.5, 1), spread(-kInf, kInf, 0.2)},
         .marks = {val(1), f32(0x33800000), f32(0x3F7FFFFF), hi(0x3CA00000), f64(0x3FEFFFFFFFFFFFFF), val(0.5)},
         .cost = 6, .benchLo = -0.99, .benchHi = 0.99, .approx = approxErfInv});
    add({.family = "ErfcInv", .complex = false, .about = "(0, 2) uniform and by exponent near 0, near 1 and 2; some outside",
         .first = {uniform(0, 2, 2), spread(0, 2, 2), near(2, 1, 1), near(1, 0.5, 1), spread(-kInf, kInf, 0.2)},
         .marks = {val(1), val(2), f32(0x33800000), val(0x1p-53, 0, T64)}, .cost = 6, .benchLo = 0.01, .benchHi = 1.99,
         .approx = approxErfcInv});
    add({.family = "CdfNormInv", .complex = false, .about = "(0, 1) uniform and by exponent near 0, near 1/2 and 1",
         .first = {uniform(0, 1, 2), spread(0, 1, 2), near(1, 0.5, 1), near(0.5, 0.5, 1), spread(-kInf, kInf, 0.2)},
         .marks = {val(0.5), val(1), f32(0x33000000)}, .cost = 6, .benchLo = 0.01, .benchHi = 0.99,
         .approx = approxCdfNormInv});

    // ---- complex families ----
    // Parts drawn by exponent over the whole range and uniformly near the
    // origin; the related points of each family on top.
    const std::vector<Piece> parts = {spread(-kInf, kInf, 2), uniform(-4, 4, 3), near(0, 1, 0.5)};
    add({.family = "Abs", .complex = true, .about = "all of the range; the element routine's band", .first = parts,
         .marks = {f32(0x20800000), f32(0x5F000000), hi(0x20B00000), hi(0x5FE00000)}, .baseline = "cabsf",
         .loop32 = toRealLoop<C32, float, cabsf>, .loop64 = toRealLoop<C64, double, cabs>});
    add({.family = "Add", .complex = true, .about = "all of the range", .first = parts,
         .baseline = "a+b", .loop32 = complexBinaryLoop<C32, complexPlus<C32>>, .loop64 = complexBinaryLoop<C64, complexPlus<C64>>});
    add({.family = "Sub", .complex = true, .about = "all of the range", .first = parts,
         .baseline = "a-b", .loop32 = complexBinaryLoop<C32, complexMinus<C32>>, .loop64 = complexBinaryLoop<C64, complexMinus<C64>>});
    add({.family = "Conj", .complex = true, .about = "all of the range", .first = parts, .baseline = "conjf",
         .loop32 = complexLoop<C32, conjf>, .loop64 = complexLoop<C64, conj>});
    const std::vector<Mark> gateMarks = {hi(0x21B00000), hi(0x5FD00000), hi(0x5FE00000), val(0x1p64, 0, T32)};
    add({.family = "Mul", .complex = true,
         .about = "all of the range; cancelling products; the range gate of the exact-product levels. The plain "
                  "formula of 32fc A11 and 64fc A26 has no scaling: parts up to 2^62 and 2^510 there",
         .first = parts, .marks = gateMarks, .related = cancellingProducts, .outside = mulOutside,
         .baseline = "a*b", .loop32 = complexBinaryLoop<C32, complexTimes<C32>>,
         .loop64 = complexBinaryLoop<C64, complexTimes<C64>>, .benchLo = -4, .benchHi = 4});
    add({.family = "MulByConj", .complex = true,
         .about = "as Mul, for a times the conjugate of b", .first = parts, .marks = gateMarks,
         .related = cancellingProducts, .outside = mulOutside, .baseline = "a*conj(b)",
         .loop32 = complexBinaryLoop<C32, timesConj<C32>>, .loop64 = complexBinaryLoop<C64, timesConj<C64>>,
         .benchLo = -4, .benchHi = 4});
    add({.family = "Div", .complex = true,
         .about = "all of the range; cancelling numerators. The plain formula of 32fc A11 and 64fc A26 squares the "
                  "divisor unscaled: parts within 2^+-30 and 2^+-250 there",
         .first = parts, .marks = gateMarks, .related = cancellingProducts, .outside = divOutside,
         .baseline = "a/b", .loop32 = complexBinaryLoop<C32, complexOver<C32>>,
         .loop64 = complexBinaryLoop<C64, complexOver<C64>>, .benchLo = -4, .benchHi = 4});
    add({.family = "Arg", .complex = true, .about = "all of the range; the vector path's band", .first = parts,
         .marks = {f32(0x01000000), f32(0x7D000000)}, .baseline = "cargf", .loop32 = toRealLoop<C32, float, cargf>,
         .loop64 = toRealLoop<C64, double, carg>});
    add({.family = "CIS", .complex = true, .about = "all of the range; near multiples of pi/2; the scalar routine's limits",
         .first = trigArgs, .marks = {val(0x1p-252, 0, T64), val(0x1p17)}, .baseline = "sincosf", .loop32 = cisLoop32,
         .loop64 = cisLoop64});
    add({.family = "Exp", .complex = true,
         .about = "real parts across the exponent's range, imaginary parts near multiples of pi/2 and large",
         .first = {spread(-kInf, kInf, 1), uniform(-90, 90, 2, T32), uniform(-750, 750, 2, T64), uniform(-4, 4, 2)},
         .second = {spread(-kInf, kInf, 1), uniform(-10, 10, 2), multiples(kPi / 2, 0x1p14, 1), uniform(-2e4, 2e4, 1)},
         .marks = {f32(0x42AEAC50), val(10000), val(512), val(2048)}, .cost = 4, .baseline = "cexpf",
         .loop32 = complexLoop<C32, cexpf>, .loop64 = complexLoop<C64, cexp>, .benchLo = -4, .benchHi = 4});
    add({.family = "Ln", .complex = true, .about = "all of the range; near the unit circle; on the branch cut",
         .first = parts, .marks = {f32(0x01000000), f32(0x7D000000), val(1)}, .related = unitCircleRelated,
         .cost = 4, .baseline = "clogf", .loop32 = complexLoop<C32, clogf>, .loop64 = complexLoop<C64, clog>});
    add({.family = "Log10", .complex = true, .about = "as Ln", .first = parts, .marks = {val(1)},
         .related = unitCircleRelated, .cost = 4, .baseline = "clog10f", .loop32 = complexLoop<C32, clog10f>,
         .loop64 = complexLoop<C64, clog10>});
    add({.family = "Sqrt", .complex = true, .about = "all of the range; the negative real axis; the ordinary range's ends",
         .first = parts, .marks = {hi(0x23400000), hi(0x5FDFFFFF)}, .related = unitCircleRelated,
         .baseline = "csqrtf", .loop32 = complexLoop<C32, csqrtf>, .loop64 = complexLoop<C64, csqrt>});
    add({.family = "Pow", .complex = true,
         .about = "all pairs; moderate powers of points near the origin. The product c ln z is plain binary64: "
                  "where its roundings alone could take half the bound, the level promises nothing",
         .first = parts, .related = complexPowRelated, .outside = complexPowOutside, .cost = 4,
         .baseline = "cpowf", .loop32 = complexBinaryLoop<C32, cpowf>, .loop64 = complexBinaryLoop<C64, cpow>,
         .benchLo = 0.5, .benchHi = 2});
    add({.family = "Powx", .complex = true, .about = "as Pow, grouped by scalar", .first = parts,
         .related = complexPowRelated, .outside = complexPowOutside,
         .scalars = {2, 3, 0.5, -1, 0, 1, -0.5, 2.5}, .scalar = {uniform(-3, 3, 3), spread(-kInf, kInf, 1)},
         .cost = 4, .baseline = "cpowf", .loop32 = complexScalarLoop<C32, cpowf>,
         .loop64 = complexScalarLoop<C64, cpow>, .benchLo = 0.5, .benchHi = 2});
    const std::vector<Piece> circularRe = {spread(-kInf, kInf, 1), uniform(-10, 10, 2), multiples(kPi / 2, 0x1p20, 1)};
    const std::vector<Piece> hyperbolicRe = {spread(-kInf, kInf, 1), uniform(-10, 10, 2), uniform(-800, 800, 1)};
    struct Direct { const char* name; bool circular; void (*l32)(const test::CallArrays&, int); void (*l64)(const test::CallArrays&, int); const char* base; };
    for (const Direct& f : {Direct{"Sin", true, complexLoop<C32, csinf>, complexLoop<C64, csin>, "csinf"},
                            Direct{"Cos", true, complexLoop<C32, ccosf>, complexLoop<C64, ccos>, "ccosf"},
                            Direct{"Tan", true, complexLoop<C32, ctanf>, complexLoop<C64, ctan>, "ctanf"},
                            Direct{"Sinh", false, complexLoop<C32, csinhf>, complexLoop<C64, csinh>, "csinhf"},
                            Direct{"Cosh", false, complexLoop<C32, ccoshf>, complexLoop<C64, ccosh>, "ccoshf"},
                            Direct{"Tanh", false, complexLoop<C32, ctanhf>, complexLoop<C64, ctanh>, "ctanhf"}}) {
        // The circular ones exchange the parts: their large part is the
        // imaginary one.
        add({.family = f.name, .complex = true,
             .about = "all of the range; the hyperbolic part up to and past overflow, the circular part near multiples of pi/2",
             .first = f.circular ? circularRe : hyperbolicRe, .second = f.circular ? hyperbolicRe : circularRe,
             .marks = {val(2048), val(512), val(kPi / 2)}, .cost = 4, .baseline = f.base, .loop32 = f.l32,
             .loop64 = f.l64, .benchLo = -4, .benchHi = 4});
    }
    for (const Direct& f : {Direct{"Asin", true, complexLoop<C32, casinf>, complexLoop<C64, casin>, "casinf"},
                            Direct{"Acos", true, complexLoop<C32, cacosf>, complexLoop<C64, cacos>, "cacosf"},
                            Direct{"Atan", true, complexLoop<C32, catanf>, complexLoop<C64, catan>, "catanf"},
                            Direct{"Asinh", false, complexLoop<C32, casinhf>, complexLoop<C64, casinh>, "casinhf"},
                            Direct{"Acosh", false, complexLoop<C32, cacoshf>, complexLoop<C64, cacosh>, "cacoshf"},
                            Direct{"Atanh", false, complexLoop<C32, catanhf>, complexLoop<C64, catanh>, "catanhf"}}) {
        add({.family = f.name, .complex = true,
             .about = "all of the range; near the unit circle and +-1, +-i; the crossovers 0.6417, 0.9 and 1.5",
             .first = {spread(-kInf, kInf, 2), uniform(-2, 2, 3), near(1, 0.5, 1), near(-1, 0.5, 1)},
             .marks = {val(1), val(0.6417), val(0.9), val(1.5)}, .related = unitCircleRelated, .cost = 4, .cost64 = 40,
             .baseline = f.base, .loop32 = f.l32, .loop64 = f.l64, .benchLo = -2, .benchHi = 2});
    }
    return t;
}

}  // namespace

const std::vector<Domain>& allDomains() {
    static const std::vector<Domain> domains = makeDomains();
    return domains;
}

const Domain* findDomain(const char* family, bool complex) {
    for (const auto& d : allDomains())
        if (d.complex == complex && std::string_view(d.family) == family) return &d;
    return nullptr;
}

}  // namespace orvo::oracle
