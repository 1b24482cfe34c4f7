#include "oracle/samples.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvo::oracle {
namespace {

int mantissaBits(bool b32) { return b32 ? 23 : 52; }
uint64_t signBit(bool b32) { return b32 ? 0x80000000u : 0x8000000000000000u; }
uint64_t infBits(bool b32) { return b32 ? 0x7F800000u : 0x7FF0000000000000u; }

// Patterns in an order that follows the values: negative numbers below
// zero, so that neighbourhoods step across zero and through the binades.
int64_t ordered(uint64_t bits, bool b32) {
    const uint64_t magnitude = bits & ~signBit(b32);
    return (bits & signBit(b32)) ? -static_cast<int64_t>(magnitude) : static_cast<int64_t>(magnitude);
}
uint64_t fromOrdered(int64_t o, bool b32) {
    const int64_t limit = static_cast<int64_t>(infBits(b32));
    o = std::clamp(o, -limit, limit);
    return o < 0 ? signBit(b32) | static_cast<uint64_t>(-o) : static_cast<uint64_t>(o);
}

uint64_t offsetBits(uint64_t bits, int64_t k, bool b32) { return fromOrdered(ordered(bits, b32) + k, b32); }

}  // namespace

// ---- Draw -------------------------------------------------------------------

uint64_t Draw::next() {
    // splitmix64: small, fast, and good enough to spread samples.
    uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

double Draw::unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }

uint64_t Draw::bits(double v) const {
    if (b32_) return std::bit_cast<uint32_t>(static_cast<float>(v));
    return std::bit_cast<uint64_t>(v);
}

double Draw::value(uint64_t bits) const {
    if (b32_) return std::bit_cast<float>(static_cast<uint32_t>(bits));
    return std::bit_cast<double>(bits);
}

double Draw::maxFinite() const {
    return b32_ ? static_cast<double>(std::numeric_limits<float>::max()) : std::numeric_limits<double>::max();
}

uint64_t Draw::spread(double lo, double hi) {
    if (lo > hi) std::swap(lo, hi);
    bool negative;
    double m0, m1;
    if (lo >= 0) { negative = false; m0 = lo; m1 = hi; }
    else if (hi <= 0) { negative = true; m0 = -hi; m1 = -lo; }
    else {
        negative = (next() & 1) != 0;
        m0 = 0;
        m1 = negative ? -lo : hi;
    }
    m1 = std::fmin(m1, maxFinite());
    m0 = std::fmin(m0, m1);
    const int mb = mantissaBits(b32_);
    const uint64_t p0 = bits(m0), p1 = bits(m1);
    const uint64_t e0 = p0 >> mb, e1 = p1 >> mb;
    uint64_t pattern = p0;
    bool found = false;
    for (int attempt = 0; attempt < 16 && !found; ++attempt) {
        const uint64_t e = e0 + below(e1 - e0 + 1);
        uint64_t mantissa;
        if (e == 0) {
            // The subnormals, by the position of their leading bit.
            const int k = static_cast<int>(below(static_cast<uint64_t>(mb)));
            mantissa = (uint64_t{1} << k) | (next() & ((uint64_t{1} << k) - 1));
        } else {
            mantissa = next() & ((uint64_t{1} << mb) - 1);
        }
        pattern = (e << mb) | mantissa;
        found = pattern >= p0 && pattern <= p1;
    }
    if (!found) pattern = p0 + below(p1 - p0 + 1);
    return negative ? pattern | signBit(b32_) : pattern;
}

uint64_t Draw::uniform(double lo, double hi) {
    const double u = unit();
    return bits(lo * (1 - u) + hi * u);
}

uint64_t Draw::near(double centre, double width) {
    const uint64_t c = bits(centre);
    if (next() & 1) {
        // A step in patterns, by exponent from one ulp to 2^24 ulps.
        const int64_t k = static_cast<int64_t>(std::exp2(24 * unit()));
        return offsetBits(c, (next() & 1) ? k : -k, b32_);
    }
    const double d = width * std::exp2(-70 * unit());
    return bits((next() & 1) ? centre + d : centre - d);
}

uint64_t Draw::multiple(double period, double kmax) {
    const double k = std::round(std::exp2(std::log2(kmax) * unit()));
    const long double x = static_cast<long double>(k) * static_cast<long double>(period);
    const uint64_t b = bits(static_cast<double>((next() & 1) ? x : -x));
    const int64_t step = (next() & 3) ? static_cast<int64_t>(below(17)) : static_cast<int64_t>(below(1 << 16));
    return offsetBits(b, (next() & 1) ? step : -step, b32_);
}

uint64_t Draw::piece(const Piece& p) {
    switch (p.kind) {
    case Piece::Spread: return spread(p.a, p.b);
    case Piece::Uniform: return uniform(p.a, p.b);
    case Piece::Near: return near(p.a, p.b);
    case Piece::Multiples: return multiple(p.a, p.b);
    }
    return 0;
}

uint64_t Draw::pick(const std::vector<Piece>& pieces) {
    const unsigned mine = b32_ ? T32 : T64;
    double total = 0;
    for (const auto& p : pieces)
        if (p.types & mine) total += p.weight;
    if (total <= 0) return anyFinite();
    double r = unit() * total;
    for (const auto& p : pieces) {
        if (!(p.types & mine)) continue;
        if (r < p.weight) return piece(p);
        r -= p.weight;
    }
    return anyFinite();
}

// ---- specials and marks -----------------------------------------------------

std::vector<uint64_t> specialValues(bool b32) {
    if (b32)
        return {0x00000000, 0x80000000, 0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC00000, 0x7FA00000, 0x7F800001,
                0xFFFFFFFF, 0x00000001, 0x80000001, 0x007FFFFF, 0x807FFFFF, 0x00400000, 0x80012345, 0x00800000,
                0x80800000, 0x7F7FFFFF, 0xFF7FFFFF, 0x3F800000, 0xBF800000, 0x3F000000, 0xBF000000, 0x40000000,
                0xC0000000, 0x40400000, 0xC0400000};
    return {0x0000000000000000, 0x8000000000000000, 0x7FF0000000000000, 0xFFF0000000000000, 0x7FF8000000000000,
            0xFFF8000000000000, 0x7FF4000000000000, 0x7FF0000000000001, 0xFFFFFFFFFFFFFFFF, 0x0000000000000001,
            0x8000000000000001, 0x000FFFFFFFFFFFFF, 0x800FFFFFFFFFFFFF, 0x0008000000000000, 0x8000012345678901,
            0x0010000000000000, 0x8010000000000000, 0x7FEFFFFFFFFFFFFF, 0xFFEFFFFFFFFFFFFF, 0x3FF0000000000000,
            0xBFF0000000000000, 0x3FE0000000000000, 0xBFE0000000000000, 0x4000000000000000, 0xC000000000000000,
            0x4008000000000000, 0xC008000000000000};
}

namespace {

// A smaller set for the cross products of two arguments.
std::vector<uint64_t> pairSpecials(bool b32) {
    std::vector<uint64_t> all = specialValues(b32), out;
    for (size_t i : {0, 1, 2, 3, 4, 5, 6, 9, 15, 16, 17, 19, 20, 21, 23, 24, 25}) out.push_back(all[i]);
    return out;
}

// The neighbourhood of a mark: the patterns within 8 ulps, and a few more
// out to 2^20 ulps, on both signs.
std::vector<uint64_t> markNeighbourhood(const Mark& m, Draw& d) {
    const bool b32 = d.binary32();
    std::vector<uint64_t> centres;
    switch (m.kind) {
    case Mark::Value: centres.push_back(d.bits(m.value)); break;
    case Mark::Bits32: centres.push_back(m.bits & 0xFFFFFFFFu); break;
    case Mark::Bits64: centres.push_back(m.bits); break;
    case Mark::High64:
        // A test on the upper word switches between (hi-1):FFFFFFFF and
        // hi:0, and between hi:FFFFFFFF and (hi+1):0; the low word of the
        // elements in between is free.
        centres.push_back(m.bits << 32);
        centres.push_back(((m.bits + 1) << 32));
        centres.push_back((m.bits << 32) | (d.next() & 0xFFFFFFFFu));
        break;
    }
    std::vector<uint64_t> out;
    for (uint64_t c : centres) {
        for (uint64_t base : {c & ~signBit(b32), c | signBit(b32)}) {
            for (int k = -8; k <= 8; ++k) out.push_back(offsetBits(base, k, b32));
            for (int i = 0; i < 6; ++i) {
                const int64_t k = static_cast<int64_t>(std::exp2(4 + 16 * d.unit()));
                out.push_back(offsetBits(base, (d.next() & 1) ? k : -k, b32));
            }
        }
    }
    return out;
}

bool markApplies(const Mark& m, bool b32) {
    if (m.kind == Mark::Bits32) return b32;
    if (m.kind == Mark::Bits64 || m.kind == Mark::High64) return !b32;
    return (m.types & (b32 ? T32 : T64)) != 0;
}

const std::vector<Piece>& secondPieces(const Domain& d) { return d.second.empty() ? d.first : d.second; }

}  // namespace

// ---- the samples of one function ----------------------------------------------

std::vector<Sample> drawSamples(const CatalogueEntry& e, const Domain& d, long count, uint64_t seed) {
    const bool b32 = realBytes(e.type) == 4;
    std::vector<Sample> out;
    out.reserve(static_cast<size_t>(count) + 4096);
    Draw draw(b32, seed, out);
    const auto specials = specialValues(b32);
    const auto pairs = pairSpecials(b32);
    const auto& second = secondPieces(d);

    // The real arguments of every element, by shape; complex ones are
    // parts.  `width` real values per sample: 1 (x), 2 (x, y or re, im),
    // 4 (two complex).
    const bool complexIn = isComplex(e.type) && e.shape != Shape::RealToComplex;
    const int width = complexIn ? (e.shape == Shape::Binary ? 4 : 2) : (e.shape == Shape::Binary ? 2 : 1);
    // Real: x from `first`, y from `second`; complex: real parts from
    // `first`, imaginary parts from `second`.
    auto partsFor = [&](int i) -> const std::vector<Piece>& { return (i & 1) ? second : d.first; };
    const auto& scalarPieces = d.scalar.empty() ? second : d.scalar;
    auto randomSample = [&]() {
        Sample s;
        for (int i = 0; i < width; ++i) s.in[i] = draw.pick(partsFor(i));
        return s;
    };

    // Specials: alone, or crossed with each other for two values.
    if (width == 1) {
        for (uint64_t v : specials) draw.emitReal(v);
    } else {
        for (uint64_t a : pairs)
            for (uint64_t b : pairs) {
                Sample s = randomSample();
                s.in[0] = a;
                s.in[1] = b;
                draw.emit(s);
                if (width == 4) {
                    Sample t = randomSample();
                    t.in[2] = a;
                    t.in[3] = b;
                    draw.emit(t);
                }
            }
        for (uint64_t a : specials)
            for (int i = 0; i < width; ++i) {
                Sample s = randomSample();
                s.in[i] = a;
                draw.emit(s);
            }
    }

    // Threshold neighbourhoods, each argument (part) in turn.
    for (const Mark& m : d.marks) {
        if (!markApplies(m, b32)) continue;
        for (uint64_t v : markNeighbourhood(m, draw)) {
            Sample s = randomSample();
            if (e.shape == Shape::ScalarRight && m.arg == 1) {
                s.scalar[0] = v;
                s.ownScalar = true;
            } else if (complexIn) {
                const int base = m.arg == 1 && width == 4 ? 2 : 0;
                s.in[base + (draw.next() & 1)] = v;
            } else {
                s.in[m.arg < width ? m.arg : 0] = v;
            }
            draw.emit(s);
        }
    }

    // Related arguments, then the dense random part.
    const long fixed = static_cast<long>(out.size());
    const long rest = std::max(0L, count - fixed);
    if (d.related) d.related(draw, static_cast<int>(rest / 4));
    const long relatedEnd = static_cast<long>(out.size());
    while (static_cast<long>(out.size()) < std::max(count, fixed)) draw.emit(randomSample());

    // ScalarRight: each sample gets a scalar.  The declared scalars and the
    // specials share the budget with random ones; a related sample already
    // carries its own in in[1] (in[2], in[3] for complex).
    if (e.shape == Shape::ScalarRight) {
        std::vector<std::pair<uint64_t, uint64_t>> scalars;
        for (double s : d.scalars) scalars.push_back({draw.bits(s), 0});
        for (uint64_t v : pairs) scalars.push_back({v, 0});
        // Every special element under every declared or special scalar.
        const size_t fixedScalars = scalars.size();
        for (size_t k = 0; k < fixedScalars; ++k)
            for (uint64_t v : specials) {
                Sample s = randomSample();
                s.in[complexIn ? draw.below(2) : 0] = v;
                s.scalar[0] = scalars[k].first;
                s.ownScalar = true;
                draw.emit(s);
            }
        for (int i = 0; i < 24; ++i)
            scalars.push_back({draw.pick(scalarPieces), complexIn && (i & 1) ? draw.pick(scalarPieces) : 0});
        for (long i = 0; i < static_cast<long>(out.size()); ++i) {
            Sample& s = out[i];
            if (s.ownScalar) continue;
            if (i >= fixed && i < relatedEnd) {
                s.scalar[0] = complexIn ? s.in[2] : s.in[1];
                s.scalar[1] = complexIn ? s.in[3] : 0;
            } else {
                const auto& sc = scalars[draw.below(scalars.size())];
                s.scalar[0] = sc.first;
                s.scalar[1] = sc.second;
            }
            if (complexIn) s.in[2] = s.in[3] = 0;
            else s.in[1] = 0;
        }
    }

    if (d.outside) std::erase_if(out, [&](const Sample& s) { return d.outside(e, s); });
    return out;
}

}  // namespace orvo::oracle
