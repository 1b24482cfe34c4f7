// The accuracy sweep of one catalogue function: samples from its family's
// domain, laid out in arrays of many lengths and alignments so that block
// and tail paths both run, called through the loaded library, each element
// judged against the exact reference; and, where the catalogue says that
// another level runs the same code, the two compared bit for bit.
#pragma once

#include <cstdint>
#include <string>

#include "frame/catalogue.h"

namespace orvo::oracle {

struct SweepOptions {
    long samples = 0;  // 0: the function's default budget (see defaultSamples)
    uint64_t seed = 0x0A11CE5EED;
    // All 2^32 inputs of a binary32 Unary function instead of samples.
    bool exhaustive = false;
    // Judge the family's plain C library loop instead of the library's
    // function (same samples, same layout): a check of the oracle itself
    // against an independent implementation, and a comparison.
    bool judgeBaseline = false;
    // Called now and then with the fraction done (exhaustive mode).
    void (*progress)(void* context, double fraction) = nullptr;
    void* context = nullptr;
};

struct SweepResult {
    std::string name;
    bool checked = false;   // a reference and a domain exist and the calls ran
    std::string problem;    // why not, or what went wrong in a call
    long samples = 0;
    double maxError = 0;    // ulps (infinite for a wrong special value)
    double bound = 0;       // ulps the level allows
    double bits = 0;        // correct significand bits the maximum leaves
    long failures = 0;      // elements beyond the bound
    bool pass = false;
    std::string worstInput, worstResult, worstExact;
    std::string sameCodeAs;  // the built function that must give the same bits
    long sameCodeMismatches = 0;
    std::string sameCodeExample;
};

// Samples of the default sweep: a budget divided by the family's oracle
// cost, times the environment variable ORVO_SWEEP_SCALE if set.
long defaultSamples(const CatalogueEntry& e);
SweepResult sweep(const CatalogueEntry& e, const SweepOptions& options = {});

// The entry of the same family and type at another level, or null.
const CatalogueEntry* sibling(const CatalogueEntry& e, const char* level);

}  // namespace orvo::oracle
