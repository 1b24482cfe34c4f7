// The Blocked skeleton: blocks of elements through 256-bit vector code with
// no branch per element; the rare lane that the fast formula can't serve is
// flagged by a SpecialMask built from integer compares on the input patterns
// and settled afterwards by the family's scalar fixup.
//
// A family describes itself by a struct K:
//   using T = float | double;              element type
//   static constexpr int kBlock;           elements per block (4, 8 or 16)
//   template <class V> static V eval(V x)                    Unary
//   template <class V> static V eval(V x, V y)               Binary
//   template <class V> static void eval(V x, V& r1, V& r2)   Pair
//       the fast formula, run on f32x8/f64x4 in blocks and on float/double
//       in the tail: one text, so both paths give the same bits;
//   template <class I> static auto special(I bits [, I bits2])
//       the SpecialMask test on the input patterns (binary64: high words),
//       run on u32x4 pieces of four lanes in blocks and on uint32_t in the tail;
//   static orvoStatus fixup(const T* in, [const T* in2,] T* out [, T* out2])
//       the ScalarFixup: the lane's value and status, computed alone.
// Optional: static void evalBlock(const V (&x)[NI][n], V (&r)[NO][n]) for a
// family whose block is one formula (its lanes are not independent); eval is
// then the one-element form used by the tail.
// Optional: static constexpr bool kQuiet = true for kernels that report no
// status and raise no event (their fixups' statuses are ignored).
#pragma once

#include <cstdint>

#include "frame/args.h"
#include "frame/fp_event_raiser.h"
#include "frame/simd.h"

namespace orvo {

template <class T> struct BlockVector;
template <> struct BlockVector<float> { using type = simd::f32x8; };
template <> struct BlockVector<double> { using type = simd::f64x4; };

// The pattern that a SpecialMask inspects: all 32 bits of a binary32 lane,
// the high word of a binary64 lane (blocks: see patterns() below).
inline uint32_t maskPattern(float x) { return simd::asBits(x); }
inline uint32_t maskPattern(double x) { return simd::highWords(x); }

template <class K, int NI, int NO> struct BlockedKernel {
    using T = typename K::T;
    using V = typename BlockVector<T>::type;
    static constexpr int kBlock = K::kBlock;
    static constexpr int kLanes = simd::kLanes<V>;
    static constexpr int kVectors = kBlock / kLanes;
    static_assert(kBlock % kLanes == 0 && kBlock <= 32);
    static constexpr bool kQuiet = requires { K::kQuiet; };

    // Each kernel passes the address of a private zero word as its name.
    static inline const char kEventName[4] = {};

    static void raise(orvoStatus status, uint32_t index, const T* src, T* dst1, T* dst2) {
        if constexpr (requires { K::raiseEvent; })  // a test kernel watching its events
            K::raiseEvent(status, index, src, src, dst1, dst2, kEventName);
        else if constexpr (std::is_same_v<T, float>)
            FpEventRaiser32(status, index, src, src, dst1, dst2, kEventName);
        else
            FpEventRaiser64(status, index, src, src, dst1, dst2, kEventName);
    }

    template <class W> static auto laneMask(const W (&x)[NI]) {
        if constexpr (NI == 1) return K::special(maskPattern(x[0]));
        else return K::special(maskPattern(x[0]), maskPattern(x[1]));
    }

    template <class W> static void evaluate(const W (&x)[NI], W (&r)[NO]) {
        if constexpr (NI == 2) r[0] = K::eval(x[0], x[1]);
        else if constexpr (NO == 2) K::eval(x[0], r[0], r[1]);
        else r[0] = K::eval(x[0]);
    }

    static orvoStatus fixup(T* const (&in)[NI], T* const (&out)[NO]) {
        if constexpr (NI == 2) return K::fixup(in[0], in[1], out[0]);
        else if constexpr (NO == 2) return K::fixup(in[0], out[0], out[1]);
        else return K::fixup(in[0], out[0]);
    }

    // One flagged lane: its fixup runs on scratch copies (so an in-place call
    // is safe); a status is shown to the caller's array and the raiser, and
    // what the element holds after the raiser returns is what gets stored.
    __attribute__((noinline, cold)) static void settleLane(T* const (&in)[NI], T* const (&out)[NO],
                                                           const T* const (&src)[NI], T* const (&dst)[NO],
                                                           uint32_t index, orvoStatus& kept) {
        orvoStatus status = fixup(in, out);
        if constexpr (!kQuiet) {
            if (status != orvoOk) {
                for (int o = 0; o < NO; ++o) dst[o][index] = *out[o];
                raise(status, index, src[0], dst[0], dst[NO - 1]);
                for (int o = 0; o < NO; ++o) *out[o] = dst[o][index];
                kept = status;
            }
        }
    }

    __attribute__((noinline)) static void settleBlock(unsigned mask, const V (&x)[NI][kVectors],
                                                      const V (&r)[NO][kVectors], const T* const (&src)[NI],
                                                      T* const (&dst)[NO], uint32_t start, orvoStatus& kept) {
        alignas(64) T scratchIn[NI][kBlock];
        alignas(64) T scratchOut[NO][kBlock];
        for (int a = 0; a < NI; ++a)
            for (int v = 0; v < kVectors; ++v) simd::store(&scratchIn[a][v * kLanes], x[a][v]);
        for (int o = 0; o < NO; ++o)
            for (int v = 0; v < kVectors; ++v) simd::store(&scratchOut[o][v * kLanes], r[o][v]);
        for (int lane = 0; lane < kBlock; ++lane) {
            if (!(mask >> lane & 1u)) continue;
            T* in[NI];
            T* out[NO];
            for (int a = 0; a < NI; ++a) in[a] = &scratchIn[a][lane];
            for (int o = 0; o < NO; ++o) out[o] = &scratchOut[o][lane];
            settleLane(in, out, src, dst, start + lane, kept);
        }
        for (int o = 0; o < NO; ++o)
            for (int v = 0; v < kVectors; ++v)
                simd::store(dst[o] + start + v * kLanes, simd::load<V>(&scratchOut[o][v * kLanes]));
    }

    // The SpecialMask is built from the block's memory in 128-bit pieces of
    // four 32-bit patterns: integer compares have no 256-bit form on this
    // target, and loading the pieces is cheaper than taking the vectors apart.
    static simd::u32x4 patterns(const T* p) {
        if constexpr (std::is_same_v<T, float>) {
            return simd::asBits(simd::load<simd::f32x4>(p));
        } else {
            const __m128 low = _mm_castpd_ps(_mm_loadu_pd(p)), high = _mm_castpd_ps(_mm_loadu_pd(p + 2));
            return (simd::u32x4)_mm_castps_si128(_mm_shuffle_ps(low, high, 0xDD));  // the high words
        }
    }

    static auto pieceMask(const T* const (&src)[NI], int at) {
        if constexpr (NI == 1) return K::special(patterns(src[0] + at));
        else return K::special(patterns(src[0] + at), patterns(src[1] + at));
    }

    static unsigned blockMask(const T* const (&src)[NI], int i) {
        if constexpr (kBlock == 16) {
            return simd::laneBits16(pieceMask(src, i), pieceMask(src, i + 4), pieceMask(src, i + 8),
                                    pieceMask(src, i + 12));
        } else {
            unsigned mask = 0;
            for (int at = 0; at < kBlock; at += 4) mask |= simd::laneBits(pieceMask(src, i + at)) << at;
            return mask;
        }
    }

    // The fast formula over a whole block: vector by vector, each lane on its
    // own, unless the family evaluates a block as one formula (evalBlock).
    // Unrolled, so that a long formula's block stays in registers rather
    // than in arrays on the stack.
    static void evaluateBlock(const V (&x)[NI][kVectors], V (&r)[NO][kVectors]) {
        if constexpr (requires { K::evalBlock(x, r); }) {
            K::evalBlock(x, r);
        } else {
#pragma GCC unroll 4
            for (int v = 0; v < kVectors; ++v) {
                V xv[NI], rv[NO];
                for (int a = 0; a < NI; ++a) xv[a] = x[a][v];
                evaluate(xv, rv);
                for (int o = 0; o < NO; ++o) r[o][v] = rv[o];
            }
        }
    }

    static orvoStatus run(const T* const (&srcArrays)[NI], T* const (&dstArrays)[NO], int len) {
        // The loops read the array pointers from copies that never escape:
        // vector stores may alias anything, so pointers that the slow paths
        // can see would be reloaded after every store.
        const T* src[NI];
        T* dst[NO];
        for (int a = 0; a < NI; ++a) src[a] = srcArrays[a];
        for (int o = 0; o < NO; ++o) dst[o] = dstArrays[o];
        orvoStatus kept = orvoOk;
        const int full = len & ~(kBlock - 1);
        for (int i = 0; i < full; i += kBlock) {
            V x[NI][kVectors];
            V r[NO][kVectors];
            for (int a = 0; a < NI; ++a)
                for (int v = 0; v < kVectors; ++v) x[a][v] = simd::load<V>(src[a] + i + v * kLanes);
            const unsigned mask = blockMask(src, i);
            evaluateBlock(x, r);
            if (__builtin_expect(mask != 0, 0)) {
                // Copies made here, so that only this path keeps the block
                // in memory: the fast path stores its results and nothing else.
                V xs[NI][kVectors], rs[NO][kVectors];
                for (int a = 0; a < NI; ++a)
                    for (int v = 0; v < kVectors; ++v) xs[a][v] = x[a][v];
                for (int o = 0; o < NO; ++o)
                    for (int v = 0; v < kVectors; ++v) rs[o][v] = r[o][v];
                settleBlock(mask, xs, rs, srcArrays, dstArrays, static_cast<uint32_t>(i), kept);
                continue;
            }
            for (int o = 0; o < NO; ++o)
                for (int v = 0; v < kVectors; ++v) simd::store(dst[o] + i + v * kLanes, r[o][v]);
        }
        // The tail: one element at a time through the same formula text.
        for (int i = full; i < len; ++i) {
            T x[NI], r[NO];
            for (int a = 0; a < NI; ++a) x[a] = src[a][i];
            const bool special = laneMask(x);
            evaluate(x, r);
            if (__builtin_expect(special, 0)) {
                T* in[NI];
                T* out[NO];
                for (int a = 0; a < NI; ++a) in[a] = &x[a];
                for (int o = 0; o < NO; ++o) out[o] = &r[o];
                settleLane(in, out, srcArrays, dstArrays, static_cast<uint32_t>(i), kept);
            }
            for (int o = 0; o < NO; ++o) dst[o][i] = r[o];
        }
        return kept;
    }
};

// Entry points by shape, after the length-first argument checks.
template <class K> inline orvoStatus runBlocked(const typename K::T* src, typename K::T* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src, dst)) return s;
    return BlockedKernel<K, 1, 1>::run({src}, {dst}, len);
}
template <class K>
inline orvoStatus runBlocked(const typename K::T* src1, const typename K::T* src2, typename K::T* dst, int len) {
    if (orvoStatus s = checkLengthFirst(len, src1, src2, dst)) return s;
    return BlockedKernel<K, 2, 1>::run({src1, src2}, {dst}, len);
}
template <class K>
inline orvoStatus runBlockedPair(const typename K::T* src, typename K::T* dst1, typename K::T* dst2, int len) {
    if (orvoStatus s = checkLengthFirst(len, src, dst1, dst2)) return s;
    return BlockedKernel<K, 1, 2>::run({src}, {dst1, dst2}, len);
}

}  // namespace orvo
