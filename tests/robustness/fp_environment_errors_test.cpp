// How far results move under a caller's non-default MXCSR state, for the
// kernels no guard protects from it, under each of the 16 states of
// rounding mode, FZ and DAZ: the largest error in ulps against the exact
// result where the family is one IEEE operation, and for every such kernel
// the largest departure from its own results under the default state.
// This measures and publishes, it never fails: a kernel without a guard
// runs under the caller's state by design (docs/fp-environment.md holds the
// tables; set ORVO_FP_ENV_TABLE=FILE to write them there).
//
// Errors as the accuracy sweep counts them: in ulps of the exact result's
// binade (the subnormal spacing at the bottom), complex results normwise in
// ulps of the larger part; departures alike, in ulps of the default state's
// result.  A result that should be a NaN, an infinity or a signed zero and
// is not counts as a special mismatch.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <random>
#include <sstream>

#include "robustness/harness.h"

using namespace orvo;
using namespace orvo::robust;

namespace {

constexpr mpfr_prec_t kExact = 2400;  // holds any sum or product of two binary64 values exactly
constexpr int kElements = 4000;
// MPFR's rounding modes in the order of MXCSR's rounding control.
constexpr mpfr_rnd_t kModes[4] = {MPFR_RNDN, MPFR_RNDD, MPFR_RNDU, MPFR_RNDZ};

// The exact results of the families that are one IEEE operation per part,
// or false for a family without a reference here.
// The results are exact; the rounding mode only gives an exact zero its sign
// (x - x is -0 when rounding down).
bool exactResult(const CatalogueEntry& e, const double* a, const double* b, mpfr_t* out, mpfr_rnd_t mode) {
    const bool complex = isComplex(e.type);
    const int parts = complex ? 2 : 1;
    auto set = [](mpfr_t r, double v) { mpfr_set_d(r, v, MPFR_RNDN); };
    const std::string_view f = e.family;
    if (f == "Add" || f == "Sub") {
        for (int p = 0; p < parts; ++p) {
            mpfr_t y;
            mpfr_init2(y, kExact);
            set(out[p], a[p]);
            set(y, b[p]);
            if (f == "Add") mpfr_add(out[p], out[p], y, mode);
            else mpfr_sub(out[p], out[p], y, mode);
            mpfr_clear(y);
        }
        return true;
    }
    if (complex && f != "Conj") return false;  // complex Mul and Abs are more than one operation
    if (f == "Mul" || f == "Sqr") {
        mpfr_t y;
        mpfr_init2(y, kExact);
        set(out[0], a[0]);
        set(y, f == "Mul" ? b[0] : a[0]);
        mpfr_mul(out[0], out[0], y, mode);
        mpfr_clear(y);
        return true;
    }
    if (f == "Abs") {
        set(out[0], a[0]);
        mpfr_abs(out[0], out[0], MPFR_RNDN);
        return true;
    }
    if (f == "Conj") {
        set(out[0], a[0]);
        set(out[1], a[1]);
        mpfr_neg(out[1], out[1], MPFR_RNDN);
        return true;
    }
    return false;
}

bool hasReference(const CatalogueEntry& e) {
    double zero[2] = {0, 0};
    mpfr_t out[2];
    mpfr_init2(out[0], kExact);
    mpfr_init2(out[1], kExact);
    const bool has = exactResult(e, zero, zero, out, MPFR_RNDN);
    mpfr_clear(out[0]);
    mpfr_clear(out[1]);
    return has;
}

double readReal(const unsigned char* p, int bytes) {
    if (bytes == 4) {
        float f;
        std::memcpy(&f, p, 4);
        return f;
    }
    double d;
    std::memcpy(&d, p, 8);
    return d;
}

struct ElementError {
    double ulps = 0;       // finite comparisons
    bool special = false;  // NaN, infinity or zero sign wrong
};

// Error of one element's result parts against the exact parts.
ElementError errorOf(const CatalogueEntry& e, const double* result, mpfr_t* exact, int parts) {
    const int precision = realBytes(e.type) == 4 ? 24 : 53;
    const int lowest = realBytes(e.type) == 4 ? -149 : -1074;  // exponent of the subnormal spacing
    const double largest = realBytes(e.type) == 4 ? 3.4028234663852886e38 : 1.7976931348623157e308;
    ElementError err;
    // The larger part of the exact result sets the ulp of the element.
    mpfr_t scale, diff;
    mpfr_inits2(kExact, scale, diff, static_cast<mpfr_ptr>(nullptr));
    mpfr_set_zero(scale, 1);
    for (int p = 0; p < parts; ++p) {
        const double r = result[p];
        if (mpfr_nan_p(exact[p])) {
            err.special |= !std::isnan(r);
            continue;
        }
        if (mpfr_inf_p(exact[p])) {
            err.special |= !(std::isinf(r) && std::signbit(r) == (mpfr_signbit(exact[p]) != 0));
            continue;
        }
        if (std::isnan(r)) {
            err.special = true;
            continue;
        }
        mpfr_abs(diff, exact[p], MPFR_RNDN);
        if (mpfr_cmp(diff, scale) > 0) mpfr_set(scale, diff, MPFR_RNDN);
    }
    // Exact results past the largest finite value round as the mode says
    // (infinity or the largest finite value); they are not measured.
    if (mpfr_cmp_d(scale, largest) > 0) {
        mpfr_clears(scale, diff, static_cast<mpfr_ptr>(nullptr));
        return err;
    }
    const long exponent = mpfr_zero_p(scale) ? lowest + precision : mpfr_get_exp(scale);
    const long ulpExponent = std::max<long>(exponent - precision, lowest);
    for (int p = 0; p < parts; ++p) {
        const double r = result[p];
        if (mpfr_nan_p(exact[p]) || mpfr_inf_p(exact[p]) || std::isnan(r)) continue;
        if (std::isinf(r)) {
            err.special = true;
            continue;
        }
        if (mpfr_zero_p(exact[p]) && r == 0 && std::signbit(r) != (mpfr_signbit(exact[p]) != 0)) err.special = true;
        mpfr_set_d(diff, r, MPFR_RNDN);
        mpfr_sub(diff, diff, exact[p], MPFR_RNDN);
        mpfr_abs(diff, diff, MPFR_RNDN);
        mpfr_mul_2si(diff, diff, -ulpExponent, MPFR_RNDN);
        err.ulps = std::max(err.ulps, mpfr_get_d(diff, MPFR_RNDU));
    }
    mpfr_clears(scale, diff, static_cast<mpfr_ptr>(nullptr));
    return err;
}

// Inputs: the palette's tuples, patterns spread over every binade, and
// values of the lowest binades and denormals, where FZ and DAZ act.
std::vector<unsigned char> inputsFor(const CatalogueEntry& e, int a) {
    const int rb = realBytes(e.type), slots = slotsPerInputElement(e);
    std::vector<unsigned char> bytes(static_cast<size_t>(kElements) * inputBytes(e));
    const Tuples t = tuplesFor(e);
    std::mt19937_64 random(0x5EED + a);
    const int exponentBits = rb == 4 ? 8 : 11, fractionBits = rb == 4 ? 23 : 52;
    for (int i = 0; i < kElements; ++i) {
        for (int s = 0; s < slots; ++s) {
            uint64_t bits;
            if (i < static_cast<int>(t.all.size())) {
                bits = palette(e.type)[t.all[i][a * slots + s]].bits;
            } else {
                const uint64_t r = random();
                const uint64_t maxExponent = (1ull << exponentBits) - 2;  // finite
                const uint64_t exponent = i % 2 ? r % (maxExponent + 1) : (r >> 20) % 40;
                const uint64_t fraction = (r >> 3) & ((1ull << fractionBits) - 1);
                bits = (r >> 63) << (rb * 8 - 1) | exponent << fractionBits | fraction;
            }
            std::memcpy(bytes.data() + (static_cast<size_t>(i) * slots + s) * rb, &bits, rb);
        }
    }
    return bytes;
}

// Departure of a result from the default state's, as an error against the
// default result taken as exact.
ElementError departureOf(const CatalogueEntry& e, const double* result, const double* byDefault, int parts) {
    mpfr_t reference[2];
    for (int p = 0; p < parts; ++p) {
        mpfr_init2(reference[p], kExact);
        mpfr_set_d(reference[p], byDefault[p], MPFR_RNDN);
    }
    const ElementError err = errorOf(e, result, reference, parts);
    for (int p = 0; p < parts; ++p) mpfr_clear(reference[p]);
    return err;
}

std::string formatUlps(double u) {
    std::ostringstream s;
    if (u == 0) s << "0";
    else if (u < 1000) s << std::setprecision(3) << u;
    else s << std::setprecision(2) << std::scientific << u;
    return s.str();
}

}  // namespace

TEST(FpEnvironmentErrors, UnguardedKernelsUnderEachMxcsrState) {
    std::ostringstream header;
    header << "| Function |";
    for (int k = 0; k < kMxcsrStates; ++k) header << " " << describeMxcsr(mxcsrState(k)) << " |";
    header << "\n|---|";
    for (int k = 0; k < kMxcsrStates; ++k) header << "---|";
    header << "\n";
    std::ostringstream errors, departures;
    const FpState saved = FpState::current();
    long calls = 0;
    for (const Function& fn : builtFunctions()) {
        const CatalogueEntry& e = *fn.entry;
        bool anyUncovered = false;
        for (int k = 0; k < kMxcsrStates; ++k) anyUncovered |= !mxcsrCovered(e, mxcsrState(k));
        if (!anyUncovered || e.shape == Shape::Pair) continue;
        const bool exactKnown = hasReference(e);
        const int rb = realBytes(e.type), inParts = slotsPerInputElement(e), outParts = outputBytes(e) / rb;
        std::vector<unsigned char> in[2], scalar(16, 0);
        for (int a = 0; a < inputCount(e); ++a) in[a] = inputsFor(e, a);
        auto valuesOf = [&](const std::vector<unsigned char>& v, int i, int parts, double* out) {
            for (int p = 0; p < parts; ++p) out[p] = readReal(v.data() + (static_cast<size_t>(i) * parts + p) * rb, rb);
        };
        auto runUnder = [&](uint32_t state) {
            std::vector<unsigned char> out(static_cast<size_t>(kElements) * outputBytes(e));
            CallArrays arrays;
            for (int a = 0; a < inputCount(e); ++a) arrays.in[a] = in[a].data();
            arrays.out[0] = out.data();
            arrays.scalar = scalar.data();
            FpState{state, kX87Extended}.apply();
            invoke(fn, arrays, kElements);
            saved.apply();
            ++calls;
            return out;
        };
        const std::vector<unsigned char> byDefault = runUnder(kMxcsrDefault);
        mpfr_t exact[2];
        mpfr_init2(exact[0], kExact);
        mpfr_init2(exact[1], kExact);
        if (exactKnown) errors << "| " << e.name << " |";
        departures << "| " << e.name << " |";
        for (int k = 0; k < kMxcsrStates; ++k) {
            const uint32_t state = mxcsrState(k);
            if (mxcsrCovered(e, state) && k != 0) {
                if (exactKnown) errors << " = |";
                departures << " = |";
                continue;
            }
            const std::vector<unsigned char> out = runUnder(state);
            ElementError worstError, worstDeparture;
            int errorSpecials = 0, departureSpecials = 0;
            for (int i = 0; i < kElements; ++i) {
                double x[2] = {}, y[2] = {}, r[2] = {}, r0[2] = {};
                valuesOf(in[0], i, inParts, x);
                if (inputCount(e) == 2) valuesOf(in[1], i, inParts, y);
                valuesOf(out, i, outParts, r);
                valuesOf(byDefault, i, outParts, r0);
                if (exactKnown) {
                    exactResult(e, x, y, exact, kModes[k & 3]);
                    const ElementError err = errorOf(e, r, exact, outParts);
                    worstError.ulps = std::max(worstError.ulps, err.ulps);
                    errorSpecials += err.special;
                }
                const ElementError dep = departureOf(e, r, r0, outParts);
                worstDeparture.ulps = std::max(worstDeparture.ulps, dep.ulps);
                departureSpecials += dep.special;
            }
            if (exactKnown) errors << " " << formatUlps(worstError.ulps) << (errorSpecials ? " *" : "") << " |";
            departures << " " << formatUlps(worstDeparture.ulps) << (departureSpecials ? " *" : "") << " |";
        }
        if (exactKnown) errors << "\n";
        departures << "\n";
        mpfr_clear(exact[0]);
        mpfr_clear(exact[1]);
    }
    const std::string text = "Largest error against the exact result, in ulps:\n\n" + header.str() + errors.str() +
                             "\nLargest departure from the default state's results, in ulps of those:\n\n" + header.str() +
                             departures.str();
    std::printf("%s", text.c_str());
    if (const char* file = std::getenv("ORVO_FP_ENV_TABLE")) std::ofstream(file) << text;
    std::printf("[ checked  ] %ld calls of %d elements\n", calls, kElements);
}
