// The Plain skeleton: kernels with no special element at all, written for
// memory bandwidth.  A walk over `n` values is: an optional small-array
// shortcut, an optional overlap test, an optional peel that aligns one array
// to 32 bytes, whole blocks, and a tail that is either scalar steps or one
// padded block.
//
// A family describes itself by a struct K:
//   using T = float | double;        the array's value type (complex arrays
//                                    are walked as flat arrays of values)
//   using V;                         vector type of the block's arithmetic
//   using S;                         type of one tail step (T, or a 128-bit
//                                    vector for a complex element)
//   static constexpr int kBlock;     values per block
//   static constexpr int kSmallCutoff;   n at or below it: scalar only (0: none)
//   static constexpr bool kOverlapTest;  dst near a source: scalar only
//   static constexpr Peel kPeel;         which array the peel aligns
//   static constexpr bool kPaddedTail;   tail as one padded block
//   static constexpr int kUnit;          values per element (the padding unit)
//   template <class W> static W eval(W x [, W y]);   the formula
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/args.h"
#include "frame/simd.h"

namespace orvo {

enum class Peel { None, Destination, Source };

template <class K, int NI> struct PlainKernel {
    using T = typename K::T;
    using V = typename K::V;
    using S = typename K::S;
    static constexpr int kBlock = K::kBlock;
    static constexpr int kLanes = simd::kLanes<V>;
    static constexpr int kStep = simd::kLanes<S>;
    static_assert(kBlock % kLanes == 0);

    template <class W> static W evaluate(const W (&x)[NI]) {
        if constexpr (NI == 2) return K::eval(x[0], x[1]);
        else return K::eval(x[0]);
    }

    // Blocks over [from, from + count), count a multiple of the block.  The
    // array pointers are copied to locals and the loops over a block's
    // vectors unrolled, so that the block lives in registers: a store may
    // alias anything, and pointers or vectors kept in memory would be
    // reloaded after each one.
    static void blocks(const T* const (&srcArrays)[NI], T* dst, int64_t from, int64_t count) {
        const T* src[NI];
        for (int a = 0; a < NI; ++a) src[a] = srcArrays[a];
        for (int64_t i = from; i < from + count; i += kBlock) {
            V x[NI][kBlock / kLanes];
#pragma GCC unroll 16
            for (int a = 0; a < NI; ++a)
#pragma GCC unroll 16
                for (int v = 0; v < kBlock / kLanes; ++v) {
                    const T* p = src[a] + i + v * kLanes;
                    x[a][v] = K::kPeel == Peel::Source ? simd::loadAligned<V>(p) : simd::load<V>(p);
                }
#pragma GCC unroll 16
            for (int v = 0; v < kBlock / kLanes; ++v) {
                V xv[NI];
                for (int a = 0; a < NI; ++a) xv[a] = x[a][v];
                const V r = evaluate(xv);
                T* q = dst + i + v * kLanes;
                if constexpr (K::kPeel == Peel::Destination) simd::storeAligned(q, r);
                else simd::store(q, r);
            }
        }
    }

    // Scalar steps over [from, to), ascending, each element read just before
    // it is computed: an overlapping call gets the result of this loop.
    static void steps(const T* const (&src)[NI], T* dst, int64_t from, int64_t to) {
        for (int64_t i = from; i < to; i += kStep) {
            S x[NI];
            for (int a = 0; a < NI; ++a) x[a] = simd::load<S>(src[a] + i);
            simd::store(dst + i, evaluate(x));
        }
    }

    // The last values of the array as one block in an aligned scratch block:
    // the lanes past the end hold copies of the first remaining element, so
    // only the caller's values are ever computed, and nothing beyond the end
    // is read or written.
    static void paddedBlock(const T* const (&src)[NI], T* dst, int64_t from, int64_t count) {
        alignas(32) T in[NI][kBlock];
        alignas(32) T out[kBlock];
        for (int a = 0; a < NI; ++a) {
            std::memcpy(in[a], src[a] + from, count * sizeof(T));
            for (int64_t j = count; j < kBlock; j += K::kUnit) std::memcpy(&in[a][j], src[a] + from, K::kUnit * sizeof(T));
        }
        const T* scratchSrc[NI];
        for (int a = 0; a < NI; ++a) scratchSrc[a] = in[a];
        blocks(reinterpret_cast<const T* const(&)[NI]>(scratchSrc), out, 0, kBlock);
        std::memcpy(dst + from, out, count * sizeof(T));
    }

    static bool overlaps(const T* const (&src)[NI], const T* dst, int64_t n) {
        const int64_t bytes = n * static_cast<int64_t>(sizeof(T));
        for (int a = NI - 1; a >= 0; --a) {
            const int64_t distance = reinterpret_cast<intptr_t>(dst) - reinterpret_cast<intptr_t>(src[a]);
            if (distance == 0 || (distance < bytes && distance > -bytes)) return true;
        }
        return false;
    }

    static void walk(const T* const (&src)[NI], T* dst, int64_t n) {
        if constexpr (K::kSmallCutoff > 0)
            if (n <= K::kSmallCutoff) return steps(src, dst, 0, n);
        if constexpr (K::kOverlapTest)
            if (overlaps(src, dst, n)) return steps(src, dst, 0, n);
        int64_t peel = 0;
        if constexpr (K::kPeel != Peel::None) {
            const uintptr_t address = reinterpret_cast<uintptr_t>(K::kPeel == Peel::Destination ? dst : src[0]);
            if (address % sizeof(T) != 0) return steps(src, dst, 0, n);
            peel = static_cast<int64_t>((32 - address % 32) % 32 / sizeof(T));
            if (peel + kBlock > n) return steps(src, dst, 0, n);
            steps(src, dst, 0, peel);
        }
        const int64_t whole = (n - peel) / kBlock * kBlock;
        blocks(src, dst, peel, whole);
        const int64_t rest = n - peel - whole;
        if (rest == 0) return;
        if constexpr (K::kPaddedTail) paddedBlock(src, dst, peel + whole, rest);
        else steps(src, dst, peel + whole, n);
    }
};

}  // namespace orvo
