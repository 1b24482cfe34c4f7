// The oracle itself: its error measure on hand-made cases, its own erf,
// erfc, complex tangents and Newton inverses against MPFR, MPC and known
// values, its samples, and a sweep of the C library's functions, which an
// independent implementation must pass within a few ulps.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "frame/catalogue.h"
#include "oracle/domains.h"
#include "oracle/measure.h"
#include "oracle/reference.h"
#include "oracle/samples.h"
#include "oracle/sweep.h"

using namespace orvo;
using namespace orvo::oracle;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Num {
    mpfr_t v;
    explicit Num(double x, mpfr_prec_t prec = 200) { mpfr_init2(v, prec); mpfr_set_d(v, x, MPFR_RNDN); }
    ~Num() { mpfr_clear(v); }
    operator mpfr_ptr() { return v; }
};

double err(double computed, double exact, Format f = kBinary64, bool strictZero = true) {
    Num y(exact);
    return realError(computed, {y, strictZero}, f);
}

const CatalogueEntry& entry(const char* name) {
    for (const auto& e : kCatalogue)
        if (std::strcmp(e.name, name) == 0) return e;
    throw std::runtime_error(name);
}

}  // namespace

TEST(OracleMeasure, UlpsOfTheExactBinadeDownToTheSubnormalSpacing) {
    EXPECT_EQ(err(std::nextafter(1.0, 2.0), 1.0), 1.0);
    EXPECT_EQ(err(std::nextafter(1.0, 0.0), 1.0), 0.5);  // the binade of the exact value counts
    EXPECT_EQ(err(1.0, std::nextafter(1.0, 0.0)), 1.0);
    EXPECT_EQ(err(4 * 0x1p-1074, 3 * 0x1p-1074), 1.0);
    EXPECT_EQ(err(0x1p-149f, 0x1p-150, kBinary32), 0.5);
    EXPECT_EQ(err(static_cast<float>(1 + 0x1p-22), 1.0, kBinary32), 2.0);
    // A value MPFR underflowed to zero is tiny, not an exact zero.
    EXPECT_EQ(err(0x1p-1074, 0.0, kBinary64, false), 1.0);
}

TEST(OracleMeasure, OverflowAndSpecialValues) {
    Num huge(0x1.8p1023);
    mpfr_mul_2ui(huge, huge, 1, MPFR_RNDN);  // 1.5 * 2^1024, beyond binary64
    EXPECT_EQ(realError(kInf, {huge, true}, kBinary64), 0);
    EXPECT_GT(realError(std::numeric_limits<double>::max(), {huge, true}, kBinary64), 1e15);
    // Just below the overflow threshold an infinity is within one ulp.
    Num edge(std::numeric_limits<double>::max());
    mpfr_add_d(edge, edge, 0x1p970, MPFR_RNDN);
    EXPECT_LE(realError(kInf, {edge, true}, kBinary64), 1.0);
    EXPECT_EQ(err(kNaN, kNaN), 0);
    EXPECT_EQ(err(1.0, kNaN), kInf);
    EXPECT_EQ(err(kNaN, 1.0), kInf);
    EXPECT_EQ(err(-kInf, kInf), kInf);
    EXPECT_EQ(err(0.0, -0.0), kInf);
    EXPECT_EQ(err(-0.0, -0.0), 0);
    EXPECT_EQ(err(0x1p-1074, 0.0), kInf);
}

TEST(OracleMeasure, ComplexIsNormwise) {
    Num re(1.0), im(0x1p-40);
    // An error of one ulp of 1 in the small part is one ulp normwise.
    EXPECT_EQ(complexError(1.0, 0x1p-40 + 0x1p-52, {re, true}, {im, true}, false, kBinary64), 1.0);
    Num nan(kNaN), inf(kInf);
    EXPECT_EQ(complexError(kNaN, -kInf, {nan, true}, {inf, true}, true, kBinary64), 0);
    EXPECT_EQ(complexError(kNaN, -kInf, {nan, true}, {inf, true}, false, kBinary64), kInf);
}

TEST(OracleMeasure, LevelBoundsAndBits) {
    EXPECT_EQ(levelBound("A11", kBinary32), 8192);
    EXPECT_EQ(levelBound("A21", kBinary32), 8);
    EXPECT_EQ(levelBound("A24", kBinary32), 1);
    EXPECT_EQ(levelBound("A26", kBinary64), 0x1p27);
    EXPECT_EQ(levelBound("A50", kBinary64), 8);
    EXPECT_EQ(levelBound("", kBinary64), 0);
    EXPECT_EQ(correctBits(8, kBinary32), 21);
    EXPECT_EQ(correctBits(0.5, kBinary64), 53);
}

TEST(OracleReference, OwnErfAndErfcAgreeWithMpfrToTheLastBit) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> u(-30, 30);
    Num x(0), fast(0, 128), slow(0, 128);
    for (int i = 0; i < 300; ++i) {
        mpfr_set_d(x, i < 10 ? 1 + i : u(rng), MPFR_RNDN);
        erfcFast(fast, x);
        mpfr_erfc(slow, x, MPFR_RNDN);
        ASSERT_EQ(mpfr_cmp(fast, slow), 0) << "erfc " << mpfr_get_d(x, MPFR_RNDN);
        erfFast(fast, x);
        mpfr_erf(slow, x, MPFR_RNDN);
        ASSERT_EQ(mpfr_cmp(fast, slow), 0) << "erf " << mpfr_get_d(x, MPFR_RNDN);
    }
}

TEST(OracleReference, InversesByNewtonInvertToTheWorkingPrecision) {
    Num y(0, 128), back(0, 400), x(0);
    for (double v : {0x1p-1074, 1e-300, 1e-5, 0.3, 0.49, 0.5, 0.9, 1 - 0x1p-53, -0.75}) {
        mpfr_set_d(x, v, MPFR_RNDN);
        erfInverse(y, x);
        mpfr_erf(back, y, MPFR_RNDN);
        mpfr_sub(back, back, x, MPFR_RNDN);
        // erf' is at most 1.13: an error of 2^-126 relative in y moves erf
        // by at most about that much relative to x, and far less near 1.
        EXPECT_LT(mpfr_get_exp(back.v), mpfr_get_exp(x.v) - 120) << v;
    }
    for (double v : {0x1p-1074, 1e-300, 0.01, 1.0, 1.5, 2 - 0x1p-52}) {
        mpfr_set_d(x, v, MPFR_RNDN);
        erfcInverse(y, x);
        mpfr_erfc(back, y, MPFR_RNDN);
        mpfr_sub(back, back, x, MPFR_RNDN);
        if (v != 1.0) {
            EXPECT_LT(mpfr_get_exp(back.v), mpfr_get_exp(x.v) - 110) << v;
        } else {
            EXPECT_TRUE(mpfr_zero_p(y.v));
        }
    }
    mpfr_set_d(x, 0.75, MPFR_RNDN);
    cdfNormInverse(y, x);
    EXPECT_EQ(mpfr_get_d(y, MPFR_RNDN), 0.6744897501960817);  // 0.67448975019608174320...
    mpfr_set_d(x, -1, MPFR_RNDN);
    cdfNorm(y, x);
    EXPECT_EQ(mpfr_get_d(y, MPFR_RNDN), 0.15865525393145705);
    mpfr_set_d(x, -0.0, MPFR_RNDN);
    erfInverse(y, x);
    EXPECT_TRUE(mpfr_zero_p(y.v) && mpfr_signbit(y.v));
    mpfr_set_d(x, 2.0, MPFR_RNDN);
    erfcInverse(y, x);
    EXPECT_TRUE(mpfr_inf_p(y.v) && mpfr_sgn(y.v) < 0);
}

TEST(OracleReference, ConventionsOfTheLibraryWhereTheyDifferFromMpfr) {
    const Reference* log1p = findReference("Log1p", false);
    const Reference* invSqrt = findReference("InvSqrt", false);
    const Reference* pow3o2 = findReference("Pow3o2", false);
    const Reference* modf = findReference("Modf", false);
    Num r(0, 64), f(0, 64), x(-0.0);
    log1p->real1(r, x);
    EXPECT_TRUE(mpfr_zero_p(r.v) && !mpfr_signbit(r.v));  // ln(1 + -0) is +0
    invSqrt->real1(r, x);
    EXPECT_TRUE(mpfr_inf_p(r.v) && mpfr_sgn(r.v) < 0);  // 1/sqrt(-0) is -infinity
    mpfr_set_inf(x, -1);
    pow3o2->real1(r, x);
    EXPECT_TRUE(mpfr_nan_p(r.v));
    mpfr_set_d(x, -3.0, MPFR_RNDN);
    modf->realPair(r, f, x);
    EXPECT_EQ(mpfr_get_d(r, MPFR_RNDN), -3.0);
    EXPECT_TRUE(mpfr_zero_p(f.v) && mpfr_signbit(f.v));  // the fraction keeps the sign
}

TEST(OracleReference, ComplexTangentsAgreeWithMpc) {
    const Reference* tanh = findReference("Tanh", true);
    const Reference* tan = findReference("Tan", true);
    mpc_t z, mine, theirs;
    mpc_init2(z, 53);
    mpc_init2(mine, 128);
    mpc_init2(theirs, 128);
    std::mt19937_64 rng(3);
    std::uniform_real_distribution<double> u(-20, 20);
    // Parts within 2^-120 of the larger part of MPC's value.
    auto close = [&](mpc_ptr a, mpc_ptr b) {
        const mpfr_exp_t scale = std::max(mpfr_get_exp(mpc_realref(b)), mpfr_get_exp(mpc_imagref(b)));
        mpc_sub(a, a, b, MPC_RNDNN);
        for (mpfr_ptr p : {mpc_realref(a), mpc_imagref(a)})
            if (!mpfr_zero_p(p) && mpfr_get_exp(p) >= scale - 120) return false;
        return true;
    };
    for (int i = 0; i < 200; ++i) {
        mpc_set_d_d(z, u(rng), i % 10 ? u(rng) : 0.0, MPC_RNDNN);
        tanh->complex1(mine, z);
        mpc_tanh(theirs, z, MPC_RNDNN);
        EXPECT_TRUE(close(mine, theirs)) << "tanh, sample " << i;
        tan->complex1(mine, z);
        mpc_tan(theirs, z, MPC_RNDNN);
        EXPECT_TRUE(close(mine, theirs)) << "tan, sample " << i;
    }
    mpc_clear(z);
    mpc_clear(mine);
    mpc_clear(theirs);
}

TEST(OracleSamples, ThresholdNeighbourhoodsAndExclusionsAreThere) {
    const CatalogueEntry& exp = entry("orvoExp_32f_A11");
    const auto samples = drawSamples(exp, *findDomain("Exp", false), 1000, 1);
    int around = 0;
    for (const auto& s : samples)
        if (s.in[0] >= 0x42AEAC47 && s.in[0] <= 0x42AEAC57) ++around;
    EXPECT_GE(around, 17);  // every pattern within 8 of the mask's threshold
    EXPECT_EQ(samples.size(), drawSamples(exp, *findDomain("Exp", false), 1000, 1).size());

    const CatalogueEntry& div = entry("orvoDiv_32fc_A11");
    for (const auto& s : drawSamples(div, *findDomain("Div", true), 2000, 1))
        for (int i = 0; i < 4; ++i) {
            const float v = std::bit_cast<float>(static_cast<uint32_t>(s.in[i]));
            if (std::isfinite(v) && v != 0) {
                ASSERT_LE(std::abs(std::ilogb(v)), 30);
            }
        }
}

// The exhaustive mode skips the exact oracle where a family's binary64
// approximation says an element is far from the bound: the approximations
// must hold far better than the 2^-12 ulps of binary32 it leaves as margin.
TEST(OracleSweep, ApproximationsOfTheExhaustiveModeHoldTo40Bits) {
    std::mt19937_64 rng(11);
    for (const auto& d : allDomains()) {
        if (d.complex || !d.approx) continue;
        const Reference* ref = findReference(d.family, false);
        if (ref->form != Form::Real1) continue;
        const CatalogueEntry* e = nullptr;
        for (const auto& c : kCatalogue)
            if (!e && std::strcmp(c.family, d.family) == 0 && c.type == ElementType::F32) e = &c;
        const auto samples = drawSamples(*e, d, 400, rng());
        Num x(0), y(0, 96);
        for (const auto& s : samples) {
            const double v = std::bit_cast<float>(static_cast<uint32_t>(s.in[0]));
            mpfr_set_d(x, v, MPFR_RNDN);
            ref->real1(y, x);
            const double exact = mpfr_get_d(y, MPFR_RNDN), a = d.approx(v);
            if (!std::isfinite(exact) || exact == 0 || std::fabs(exact) < 0x1p-126 || std::fabs(exact) > 0x1p127) continue;
            ASSERT_LE(std::fabs(a - exact), 0x1p-40 * std::fabs(exact)) << d.family << " at " << v;
        }
    }
}

// The C library's functions are an implementation independent of this
// oracle: judged on the same domains they must come out within a few ulps.
// A wrong reference, a wrong ulp or a wrong layout of the arrays shows here.
TEST(OracleSweep, TheCLibraryPassesWithinAFewUlps) {
    for (const char* name : {"orvoExp_32f_A24", "orvoExp_64f_A53", "orvoSin_64f_A53", "orvoCos_32f_A24",
                             "orvoAtan2_64f_A53", "orvoErfc_64f_A53", "orvoTanh_32f_A24", "orvoSinCos_64f_A53",
                             "orvoLn_64f_A53", "orvoExp_64fc_A53", "orvoLn_32fc_A24", "orvoSqrt_64fc_A53",
                             "orvoErf_32f_A24", "orvoCbrt_32f_A24"}) {
        SweepOptions o;
        o.samples = 1500;
        o.judgeBaseline = true;
        const SweepResult r = sweep(entry(name), o);
        ASSERT_TRUE(r.checked) << name << ": " << r.problem;
        EXPECT_LE(r.maxError, 4) << name << " worst " << r.worstInput << " -> " << r.worstResult << " exact "
                                 << r.worstExact;
    }
}
