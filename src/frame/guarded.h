// The Guarded skeleton: blocks of elements on 128-bit vectors under a fixed
// floating-point state.  A block whose SpecialMask is clear is stored from
// the fast formula.  A block with any special lane is recomputed whole on the
// family's careful path, vector code that scales or selects per lane, so no
// element ever leaves the vector registers for a scalar routine; the careful
// path also reports, per lane, the conditions the kernel's status is made of.
//
// A family describes itself by a struct K:
//   using T = float | double;          element type (vectors: f32x4 | f64x2)
//   using Guard;                       the FpEnvGuard form, e.g.
//                                      MxcsrGuard<MxcsrFull>
//   static constexpr int kBlock;       elements per block (a multiple of the
//                                      vector's lanes)
//   static constexpr bool kHalfBlock;  after the blocks, one block of half
//                                      the size if that many elements remain
//   static constexpr int kGroup;       remainder: elements per step, 1 (one
//                                      by one) up to the vector's lanes
//                                      (gathered); every remaining element
//                                      is done this way, as many steps as it
//                                      takes
//   static constexpr uint64_t kFill;   bit pattern of the harmless value in
//                                      the lanes a remainder step leaves free
//   static constexpr Walk kWalk;       how a careful block's conditions make
//                                      the status (see Walk)
//   template <class I> static auto special(I bits)    the SpecialMask test
//       on the input patterns (binary64: the high words), as lane masks;
//   template <class V> static V fast(V x)              the fast formula;
//   template <class V> static Careful<V> careful(V x)  the careful formula:
//       every lane's value and its domain and singularity lanes.
#pragma once

#include <cstdint>

#include "frame/args.h"
#include "frame/fp_env.h"
#include "frame/simd.h"

namespace orvo {

// How the lanes of a careful block set the kept status.
enum class Walk {
    // Lanes in ascending order; within a lane the domain condition comes
    // before the singularity; the last lane with a condition wins.
    LaneByLane,
    // Two passes over the block: first every singular lane, then every lane
    // out of the domain; so a block with both ends with the domain warning
    // whatever the order of its lanes.
    SingularityThenDomain,
};

template <class V> using LaneMask = decltype(V{} < V{});

// What the careful path gives for one vector of a block.
template <class V> struct Careful {
    V value;
    LaneMask<V> domain;
    LaneMask<V> singularity;
};

template <class T> struct GuardedVector;
template <> struct GuardedVector<float> { using type = simd::f32x4; };
template <> struct GuardedVector<double> { using type = simd::f64x2; };

// The pattern a SpecialMask inspects, on 128-bit vectors: all bits of a
// binary32 lane; the high word of a binary64 lane (lanes 0 and 1 of the
// result, repeated in 2 and 3).
inline simd::u32x4 maskPattern(simd::f32x4 x) { return simd::asBits(x); }
inline simd::u32x4 maskPattern(simd::f64x2 x) { return simd::highWords(x); }

// The kept status after a careful block whose lanes carry these conditions.
template <Walk W> inline void walkConditions(unsigned domain, unsigned singularity, orvoStatus& kept) {
    if constexpr (W == Walk::LaneByLane) {
        const unsigned any = domain | singularity;
        if (any == 0) return;
        const unsigned last = 31u - static_cast<unsigned>(__builtin_clz(any));
        kept = (domain >> last & 1u) ? orvoWarnDomain : orvoWarnSingularity;
    } else {
        if (singularity) kept = orvoWarnSingularity;
        if (domain) kept = orvoWarnDomain;
    }
}

template <class K> struct GuardedKernel {
    using T = typename K::T;
    using V = typename GuardedVector<T>::type;
    static constexpr int kLanes = simd::kLanes<V>;
    static constexpr unsigned kLaneBits = (1u << kLanes) - 1u;
    static_assert(K::kBlock % kLanes == 0 && K::kBlock <= 16);
    static_assert(K::kGroup >= 1 && K::kGroup <= kLanes);
    static_assert(!K::kHalfBlock || (K::kBlock / 2) % kLanes == 0);

    static unsigned specialLanes(V x) { return simd::laneBits(K::special(maskPattern(x))) & kLaneBits; }

    // Recomputes `count` vectors on the careful path, stores them, and walks
    // their lanes; `valid` cuts the walk to the lanes that hold elements.
    static void carefulVectors(const V* x, int count, T* dst, unsigned valid, orvoStatus& kept) {
        unsigned domain = 0, singularity = 0;
        for (int v = 0; v < count; ++v) {
            const Careful<V> c = K::careful(x[v]);
            simd::store(dst + v * kLanes, c.value);
            domain |= simd::laneBits(c.domain) << (v * kLanes);
            singularity |= simd::laneBits(c.singularity) << (v * kLanes);
        }
        walkConditions<K::kWalk>(domain & valid, singularity & valid, kept);
    }

    // One block of N vectors at src, dst.  The loops are unrolled so that
    // the block stays in registers on the fast path; only a careful block
    // goes through memory.
    template <int N> static void block(const T* src, T* dst, orvoStatus& kept) {
        V x[N];
        unsigned mask = 0;
#pragma GCC unroll 4
        for (int v = 0; v < N; ++v) {
            x[v] = simd::load<V>(src + v * kLanes);
            mask |= specialLanes(x[v]) << (v * kLanes);
        }
        if (__builtin_expect(mask == 0, 1)) {
#pragma GCC unroll 4
            for (int v = 0; v < N; ++v) simd::store(dst + v * kLanes, K::fast(x[v]));
            return;
        }
        // A copy made here, so that only this path puts the block in memory.
        V copy[N];
        for (int v = 0; v < N; ++v) copy[v] = x[v];
        carefulVectors(copy, N, dst, ~0u, kept);
    }

    // `count` (fewer than the lanes) elements gathered into one vector whose
    // free lanes hold the family's harmless value; the mask, the store and
    // the walk are cut to the valid lanes.  Nothing beyond the end is read
    // or written.
    static void partial(const T* src, T* dst, int count, orvoStatus& kept) {
        V x = simd::constant<V>(K::kFill);
        for (int j = 0; j < count; ++j) x[j] = src[j];
        const unsigned valid = (1u << count) - 1u;
        V r;
        if (__builtin_expect((specialLanes(x) & valid) == 0, 1)) {
            r = K::fast(x);
        } else {
            T out[kLanes];
            carefulVectors(&x, 1, out, valid, kept);
            r = simd::load<V>(out);
        }
        for (int j = 0; j < count; ++j) dst[j] = r[j];
    }

    static orvoStatus run(const T* src, T* dst, int len) {
        orvoStatus kept = orvoOk;
        int i = 0;
        for (; i + K::kBlock <= len; i += K::kBlock) block<K::kBlock / kLanes>(src + i, dst + i, kept);
        if constexpr (K::kHalfBlock) {
            if (i + K::kBlock / 2 <= len) {
                block<K::kBlock / 2 / kLanes>(src + i, dst + i, kept);
                i += K::kBlock / 2;
            }
        }
        for (; i < len; i += K::kGroup) {
            const int count = len - i < K::kGroup ? len - i : K::kGroup;
            if (count == kLanes) block<1>(src + i, dst + i, kept);
            else partial(src + i, dst + i, count, kept);
        }
        return kept;
    }
};

// Entry point of a Unary guarded kernel: the pointer-first argument checks,
// then the guard for the length of the walk.
template <class K> inline orvoStatus runGuarded(const typename K::T* src, typename K::T* dst, int len) {
    if (orvoStatus s = checkPointersFirst(len, dst, src)) return s;
    typename K::Guard guard;
    return GuardedKernel<K>::run(src, dst, len);
}

}  // namespace orvo
