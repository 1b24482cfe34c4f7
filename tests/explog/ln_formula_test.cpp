// The binary64 formulas with the processor's reciprocal estimate replaced by
// the worst ones the architecture allows (any value within 1.5 2^-12 of the
// reciprocal), and with any c near 1/m' in place of the rounded estimate:
// the levels must not depend on one processor's estimate.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "explog/ln.h"
#include "explog/ln_exact.h"

using namespace orvo::explog;
using namespace orvo::simd;
using orvo::test::ExactLog;
using orvo::test::kLnBound;

namespace {

// Inputs where c matters most: next to 1 on both sides (where r and the
// table value cancel unless c is 512 or 1024), mantissas whose 1/m' lies
// near a half-integer (where estimates round either way) or as far from c
// as an estimate that still rounds to c may be, and mantissas over the whole binade at assorted exponents.
std::vector<double> testInputs() {
    std::mt19937_64 rng(20240511);
    std::vector<double> xs;
    for (int k = 1; k <= 64; ++k) {
        xs.push_back(1.0 - k * 0x1p-53);
        xs.push_back(1.0 + k * 0x1p-52);
    }
    std::uniform_real_distribution<double> nearOne(-0x1p-7, 0x1p-7);
    for (int i = 0; i < 20000; ++i) xs.push_back(1.0 + nearOne(rng));
    std::uniform_real_distribution<double> jitter(-0.3, 0.3);
    for (int c = 512; c <= 1024; ++c) {
        // 1/m' just inside the reach of the extreme estimates from c + 1 or c - 1
        const double reach = 0.5 + 0x1.8p-12 * c - 0x1p-10;
        for (double off : {-reach, -0.5, -0.25, 0.25, 0.5, reach}) {
            const double mantissa = 1024.0 / (c + off + 0x1p-20 * jitter(rng));
            if (mantissa < 1 || mantissa >= 2) continue;
            for (int e : {-1, 0, 1, -1022, 1023, 17}) xs.push_back(std::ldexp(mantissa, e));
        }
    }
    std::uniform_real_distribution<double> binade(1, 2);
    for (int i = 0; i < 20000; ++i) xs.push_back(std::ldexp(binade(rng), static_cast<int>(rng() % 2046) - 1022));
    return xs;
}

// The binary32 values nearest the ends of the allowed range of estimates,
// and the processor's own.
std::vector<float> estimatesFor(double x) {
    const float mPrime = narrow(lnScaledMantissa(x));
    const double reciprocal = 1.0 / mPrime;
    const float low = std::nextafter(static_cast<float>(reciprocal * (1 - 0x1.8p-12)), INFINITY);
    const float high = std::nextafter(static_cast<float>(reciprocal * (1 + 0x1.8p-12)), 0.0f);
    return {low, high, rcpEstimate(mPrime)};
}

template <class Level> double worstWithAnyEstimate(const std::vector<double>& xs, double& worstX) {
    ExactLog exact;
    double worst = 0;
    for (double x : xs) {
        for (float estimate : estimatesFor(x)) {
            const double e = exact.ulps(x, Level::evalWithEstimate(x, estimate), 53);
            if (e > worst) {
                worst = e;
                worstX = x;
            }
        }
    }
    return worst;
}

}  // namespace

TEST(LnFormula64, EveryLevelHoldsForEveryEstimateTheArchitectureAllows) {
    const std::vector<double> xs = testInputs();
    double at = 0;
    EXPECT_LE(worstWithAnyEstimate<LnA26>(xs, at), kLnBound[3]) << "A26 at " << at;
    EXPECT_LE(worstWithAnyEstimate<LnA50>(xs, at), kLnBound[4]) << "A50 at " << at;
    EXPECT_LE(worstWithAnyEstimate<LnA53>(xs, at), kLnBound[5]) << "A53 at " << at;
}

TEST(LnFormula64, VectorLanesGiveTheScalarBitsForAnyEstimate) {
    // Estimates enter each lane alone, so a lane's result depends on its own
    // estimate only: four different estimates in one vector.
    const double xs[4] = {0.99951171875, 1.000244140625, 3.0e-300, 7.25e12};
    f64x4 x;
    f32x4 estimate;
    for (int i = 0; i < 4; ++i) {
        x[i] = xs[i];
        estimate[i] = estimatesFor(xs[i])[i % 2];
    }
    const f64x4 r26 = LnA26::evalWithEstimate(x, estimate), r53 = LnA53::evalWithEstimate(x, estimate);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(asBits(r26[i]), asBits(LnA26::evalWithEstimate(xs[i], estimate[i])));
        EXPECT_EQ(asBits(r53[i]), asBits(LnA53::evalWithEstimate(xs[i], estimate[i])));
    }
}

TEST(LnFormula64, TableServesEveryCWithinOneOfTheReciprocal) {
    // Away from 1, any integer c within one of 1/m' gives A26's and A50's
    // accuracy: the table is right for every c in [512, 1024].  (Next to 1,
    // a c that is not the nearest integer costs relative accuracy, which is
    // why A50 and A53 refine the estimate first.)
    ExactLog exact;
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> offset(-0.999, 0.999);
    double worst26 = 0, worst50 = 0;
    for (int c = 512; c <= 1024; ++c) {
        for (int k = 0; k < 24; ++k) {
            const double mantissa = 1024.0 / (c + offset(rng));
            if (mantissa < 1 || mantissa >= 2) continue;
            const int e = static_cast<int>(rng() % 2000) - 1000;
            const double x = std::ldexp(mantissa, e);
            if (std::fabs(x - 1) < 0x1p-7) continue;
            ASSERT_LT(std::fabs(c - 1 / lnScaledMantissa(x)), 1.0);
            worst26 = std::max(worst26, exact.ulps(x, LnA26::evalWith(x, static_cast<double>(c)), 53));
            worst50 = std::max(worst50, exact.ulps(x, LnA50::evalWith(x, static_cast<double>(c)), 53));
        }
    }
    EXPECT_LE(worst26, kLnBound[3]);
    EXPECT_LE(worst50, kLnBound[4]);
}
