// The accuracy sweep over every built function of the catalogue: each level
// holds over its family's domain, and levels that run the same code give the
// same bits.  ORVO_SWEEP_SCALE multiplies the samples; ORVO_SWEEP_EXHAUSTIVE=1
// sweeps every input of the binary32 Unary functions instead.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "frame/catalogue.h"
#include "oracle/sweep.h"
#include "orvo.h"

using namespace orvo;

namespace {

std::vector<const CatalogueEntry*> builtEntries() {
    std::vector<const CatalogueEntry*> out;
    for (const auto& e : kCatalogue)
        if (e.built) out.push_back(&e);
    return out;
}

bool exhaustiveRequested() {
    const char* v = std::getenv("ORVO_SWEEP_EXHAUSTIVE");
    return v && *v && *v != '0';
}

class Accuracy : public ::testing::TestWithParam<const CatalogueEntry*> {};

TEST_P(Accuracy, LevelHoldsAndSharedCodeGivesTheSameBits) {
    const CatalogueEntry& e = *GetParam();
    // The functions are found by name in the loaded library; this reference
    // keeps the linker from dropping it.
    ASSERT_NE(orvoGetLibVersion(), nullptr);
    oracle::SweepOptions options;
    if (exhaustiveRequested()) {
        if (e.type != ElementType::F32 || e.shape != Shape::Unary) GTEST_SKIP() << "exhaustive mode: binary32 Unary only";
        options.exhaustive = true;
    }
    const oracle::SweepResult r = oracle::sweep(e, options);
    ASSERT_TRUE(r.checked) << e.name << ": " << r.problem;
    EXPECT_EQ(r.failures, 0) << e.name << ": " << r.failures << " of " << r.samples << " elements beyond "
                             << r.bound << " ulps\n  worst input " << r.worstInput << "\n  result      "
                             << r.worstResult << "\n  exact       " << r.worstExact << "\n  error       "
                             << r.maxError << " ulps";
    EXPECT_EQ(r.sameCodeMismatches, 0) << e.name << " and " << r.sameCodeAs << " run the same code but differ on "
                                       << r.sameCodeMismatches << " elements, first at " << r.sameCodeExample;
    RecordProperty("max_error_ulps", std::to_string(r.maxError));
    RecordProperty("samples", std::to_string(r.samples));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Accuracy, ::testing::ValuesIn(builtEntries()),
                         [](const ::testing::TestParamInfo<const CatalogueEntry*>& info) {
                             return std::string(info.param->name + 4);  // without "orvo"
                         });

}  // namespace
