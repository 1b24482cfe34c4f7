// The samples of one sweep: specials, threshold neighbourhoods, related
// arguments and dense random draws over the family's domain.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/catalogue.h"
#include "oracle/domains.h"

namespace orvo::oracle {

// Specials of a format: zeros, infinities, NaNs (quiet, negative,
// signalling), the ends of the subnormal and normal ranges, a few small
// integers; as bit patterns.
std::vector<uint64_t> specialValues(bool binary32);

// `count` samples for entry e (at least the specials and the threshold
// neighbourhoods, however small count is), deterministic from the seed,
// with the samples the level does not promise left out.
std::vector<Sample> drawSamples(const CatalogueEntry& e, const Domain& d, long count, uint64_t seed);

}  // namespace orvo::oracle
