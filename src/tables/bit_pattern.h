// Table entries are written as the bit patterns of their values, so that a
// table reads exactly as its generator printed it and no decimal conversion
// stands between the rule and the stored value.
#pragma once

#include <bit>
#include <cstdint>

namespace orvo::tables {

constexpr float f32(uint32_t bits) { return std::bit_cast<float>(bits); }
constexpr double f64(uint64_t bits) { return std::bit_cast<double>(bits); }

}  // namespace orvo::tables
