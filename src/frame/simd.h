// Lane types for kernels whose formula is written once and run both on a
// whole vector (the block) and on a single element (the scalar tail).
//
// A formula is a template over its value type V: f32x8 or float for binary32
// kernels, f64x4 or double for binary64 kernels (f32x4 and f64x2 where a
// kernel works on 128-bit vectors).  Arithmetic operators are the hardware's
// correctly rounded operations in both forms, so a formula written once gives
// the same bits in a block and in the tail: that is the whole point of this
// header.  Built without FMA and with contraction off, nothing fuses.
//
// Integer work on bit patterns uses unsigned lanes (wrapping arithmetic);
// signed comparisons of patterns go through gtSigned().
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace orvo::simd {

using f32x8 = float __attribute__((vector_size(32)));
using f32x4 = float __attribute__((vector_size(16)));
using f64x4 = double __attribute__((vector_size(32)));
using f64x2 = double __attribute__((vector_size(16)));
using u32x8 = uint32_t __attribute__((vector_size(32)));
using u32x4 = uint32_t __attribute__((vector_size(16)));
using i32x8 = int32_t __attribute__((vector_size(32)));
using i32x4 = int32_t __attribute__((vector_size(16)));
using u64x4 = uint64_t __attribute__((vector_size(32)));
using u64x2 = uint64_t __attribute__((vector_size(16)));
using i64x4 = int64_t __attribute__((vector_size(32)));
using i64x2 = int64_t __attribute__((vector_size(16)));

// Properties of each value type: element type, lane count, bit-pattern type.
template <class V> struct Lanes;
template <> struct Lanes<float>  { using Elem = float;  using Bits = uint32_t; static constexpr int n = 1; };
template <> struct Lanes<double> { using Elem = double; using Bits = uint64_t; static constexpr int n = 1; };
template <> struct Lanes<f32x8>  { using Elem = float;  using Bits = u32x8;    static constexpr int n = 8; };
template <> struct Lanes<f32x4>  { using Elem = float;  using Bits = u32x4;    static constexpr int n = 4; };
template <> struct Lanes<f64x4>  { using Elem = double; using Bits = u64x4;    static constexpr int n = 4; };
template <> struct Lanes<f64x2>  { using Elem = double; using Bits = u64x2;    static constexpr int n = 2; };

template <class V> using BitsOf = typename Lanes<V>::Bits;
// The scalar type of one lane of a vector (the type itself for scalars).
template <class B> using LaneOf = std::remove_cvref_t<decltype(std::declval<B>()[0])>;
template <class V> using ElemOf = typename Lanes<V>::Elem;
template <class V> inline constexpr int kLanes = Lanes<V>::n;
template <class V> inline constexpr bool kIsScalar = Lanes<V>::n == 1;

// ---- bit casts ----------------------------------------------------------

template <class V> inline BitsOf<V> asBits(V v) { return std::bit_cast<BitsOf<V>>(v); }

inline float asFloat(uint32_t b) { return std::bit_cast<float>(b); }
inline f32x8 asFloat(u32x8 b) { return std::bit_cast<f32x8>(b); }
inline f32x4 asFloat(u32x4 b) { return std::bit_cast<f32x4>(b); }
inline double asFloat(uint64_t b) { return std::bit_cast<double>(b); }
inline f64x4 asFloat(u64x4 b) { return std::bit_cast<f64x4>(b); }
inline f64x2 asFloat(u64x2 b) { return std::bit_cast<f64x2>(b); }

// A constant given by its bit pattern, replicated over every lane.
template <class V> inline V constant(uint64_t bits) {
    if constexpr (kIsScalar<V>) return asFloat(static_cast<BitsOf<V>>(bits));
    else return asFloat(BitsOf<V>{} + static_cast<LaneOf<BitsOf<V>>>(bits));
}

// Integer lanes filled with one value (for masks and field arithmetic).
template <class V> inline BitsOf<V> bitsConstant(uint64_t value) {
    if constexpr (kIsScalar<V>) return static_cast<BitsOf<V>>(value);
    else return BitsOf<V>{} + static_cast<LaneOf<BitsOf<V>>>(value);
}

// ---- loads and stores ---------------------------------------------------
// Vectors meet memory as unaligned 128-bit halves: on the target processor
// split accesses are faster than unaligned 256-bit ones.

template <class V> inline V load(const ElemOf<V>* p) {
    if constexpr (kIsScalar<V>) return *p;
    else if constexpr (sizeof(V) == 16) { V v; std::memcpy(&v, p, 16); return v; }
    else if constexpr (std::is_same_v<V, f32x8>)
        return (f32x8)_mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(p)), _mm_loadu_ps(p + 4), 1);
    else
        return (f64x4)_mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p)), _mm_loadu_pd(p + 2), 1);
}

template <class V> inline void store(ElemOf<V>* p, V v) {
    if constexpr (kIsScalar<V>) *p = v;
    else if constexpr (sizeof(V) == 16) std::memcpy(p, &v, 16);
    else if constexpr (std::is_same_v<V, f32x8>) {
        _mm_storeu_ps(p, _mm256_castps256_ps128((__m256)v));
        _mm_storeu_ps(p + 4, _mm256_extractf128_ps((__m256)v, 1));
    } else {
        _mm_storeu_pd(p, _mm256_castpd256_pd128((__m256d)v));
        _mm_storeu_pd(p + 2, _mm256_extractf128_pd((__m256d)v, 1));
    }
}

// Whole 256-bit store to a 32-byte aligned address (kernels that peel).
template <class V> inline void storeAligned(ElemOf<V>* p, V v) {
    if constexpr (std::is_same_v<V, f32x8>) _mm256_store_ps(p, (__m256)v);
    else if constexpr (std::is_same_v<V, f64x4>) _mm256_store_pd(p, (__m256d)v);
    else store(p, v);
}

// Whole 256-bit load from a 32-byte aligned address.
template <class V> inline V loadAligned(const ElemOf<V>* p) {
    if constexpr (std::is_same_v<V, f32x8>) return (f32x8)_mm256_load_ps(p);
    else if constexpr (std::is_same_v<V, f64x4>) return (f64x4)_mm256_load_pd(p);
    else return load<V>(p);
}

// The lanes of an index vector as integers for addressing.  They pass
// through memory: one vector store and a scalar load per lane cost less
// than taking the lanes out of the register one by one (two instructions
// each for all but the first of every 128-bit half).
template <class I> struct LaneIndices {
    LaneOf<I> at[sizeof(I) / sizeof(LaneOf<I>)];
    explicit LaneIndices(I index) {
        std::memcpy(at, &index, sizeof at);
        asm("" : "+m"(at));  // kept in memory: no lane-by-lane extraction
    }
    size_t operator[](int i) const { return at[i]; }
};

// Table look-up lane by lane: the target has no gather instruction.
template <class V, class I> inline V gather(const ElemOf<V>* table, I index) {
    if constexpr (kIsScalar<V>) return table[index];
    else {
        const LaneIndices<I> at(index);
        V r;
        for (int i = 0; i < kLanes<V>; ++i) r[i] = table[at[i]];
        return r;
    }
}

// ---- comparisons and selection -----------------------------------------
// Masks are all-ones lanes (vectors) or bool (scalars); | and & combine both.

// A threshold of signed compares on 32-bit lanes, hidden from the optimiser,
// which would otherwise turn some compares with a constant (x > -2^21 - 1)
// into a min and an equality test: two instructions for one.
inline i32x4 opaqueThreshold(int32_t threshold) {
    __m128i t = _mm_set1_epi32(threshold);
    asm("" : "+x"(t));
    return (i32x4)t;
}

template <class I> inline auto gtSigned(I bits, int64_t threshold) {
    if constexpr (std::is_same_v<I, uint32_t>) return static_cast<int32_t>(bits) > static_cast<int32_t>(threshold);
    else if constexpr (std::is_same_v<I, uint64_t>) return static_cast<int64_t>(bits) > threshold;
    else if constexpr (sizeof(LaneOf<I>) == 4 && sizeof(I) == 32) {
        // Two 128-bit compares: without AVX2 the compiler would otherwise
        // compare the eight lanes one by one.
        const i32x8 s = (i32x8)bits;
        const i32x4 t = opaqueThreshold(static_cast<int32_t>(threshold));
        const i32x4 low = __builtin_shufflevector(s, s, 0, 1, 2, 3) > t;
        const i32x4 high = __builtin_shufflevector(s, s, 4, 5, 6, 7) > t;
        return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
    } else if constexpr (sizeof(LaneOf<I>) == 4) {
        return (i32x4)bits > opaqueThreshold(static_cast<int32_t>(threshold));
    } else {
        using Signed = std::conditional_t<sizeof(I) == 32, i64x4, i64x2>;
        return (Signed)bits > threshold;
    }
}

template <class M, class V> inline V select(M mask, V ifTrue, V ifFalse) {
    if constexpr (kIsScalar<V>) return mask ? ifTrue : ifFalse;
    else return asFloat(((BitsOf<V>)mask & asBits(ifTrue)) | (~(BitsOf<V>)mask & asBits(ifFalse)));
}

// ---- operations with a hardware instruction of their own ----------------

inline float rcpEstimate(float x) { return _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(x))); }
inline f32x4 rcpEstimate(f32x4 x) { return (f32x4)_mm_rcp_ps((__m128)x); }
inline f32x8 rcpEstimate(f32x8 x) { return (f32x8)_mm256_rcp_ps((__m256)x); }

inline float rsqrtEstimate(float x) { return _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(x))); }
inline f32x4 rsqrtEstimate(f32x4 x) { return (f32x4)_mm_rsqrt_ps((__m128)x); }
inline f32x8 rsqrtEstimate(f32x8 x) { return (f32x8)_mm256_rsqrt_ps((__m256)x); }

inline float sqrt(float x) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(x))); }
inline f32x4 sqrt(f32x4 x) { return (f32x4)_mm_sqrt_ps((__m128)x); }
inline f32x8 sqrt(f32x8 x) { return (f32x8)_mm256_sqrt_ps((__m256)x); }
inline double sqrt(double x) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(x))); }
inline f64x2 sqrt(f64x2 x) { return (f64x2)_mm_sqrt_pd((__m128d)x); }
inline f64x4 sqrt(f64x4 x) { return (f64x4)_mm256_sqrt_pd((__m256d)x); }

// min and max with the instruction's rule: when either operand is NaN, or
// both are zeros, the second operand is the result.
inline float min(float a, float b) { return _mm_cvtss_f32(_mm_min_ss(_mm_set_ss(a), _mm_set_ss(b))); }
inline f32x4 min(f32x4 a, f32x4 b) { return (f32x4)_mm_min_ps((__m128)a, (__m128)b); }
inline f32x8 min(f32x8 a, f32x8 b) { return (f32x8)_mm256_min_ps((__m256)a, (__m256)b); }
inline double min(double a, double b) { return _mm_cvtsd_f64(_mm_min_sd(_mm_set_sd(a), _mm_set_sd(b))); }
inline f64x2 min(f64x2 a, f64x2 b) { return (f64x2)_mm_min_pd((__m128d)a, (__m128d)b); }
inline f64x4 min(f64x4 a, f64x4 b) { return (f64x4)_mm256_min_pd((__m256d)a, (__m256d)b); }
inline float max(float a, float b) { return _mm_cvtss_f32(_mm_max_ss(_mm_set_ss(a), _mm_set_ss(b))); }
inline f32x4 max(f32x4 a, f32x4 b) { return (f32x4)_mm_max_ps((__m128)a, (__m128)b); }
inline f32x8 max(f32x8 a, f32x8 b) { return (f32x8)_mm256_max_ps((__m256)a, (__m256)b); }
inline double max(double a, double b) { return _mm_cvtsd_f64(_mm_max_sd(_mm_set_sd(a), _mm_set_sd(b))); }
inline f64x2 max(f64x2 a, f64x2 b) { return (f64x2)_mm_max_pd((__m128d)a, (__m128d)b); }
inline f64x4 max(f64x4 a, f64x4 b) { return (f64x4)_mm256_max_pd((__m256d)a, (__m256d)b); }

// Round to an integral value with an explicit mode (_MM_FROUND_* constants).
template <int Mode> inline float roundTo(float x) { return _mm_cvtss_f32(_mm_round_ss(_mm_setzero_ps(), _mm_set_ss(x), Mode)); }
template <int Mode> inline f32x4 roundTo(f32x4 x) { return (f32x4)_mm_round_ps((__m128)x, Mode); }
template <int Mode> inline f32x8 roundTo(f32x8 x) { return (f32x8)_mm256_round_ps((__m256)x, Mode); }
template <int Mode> inline double roundTo(double x) { return _mm_cvtsd_f64(_mm_round_sd(_mm_setzero_pd(), _mm_set_sd(x), Mode)); }
template <int Mode> inline f64x2 roundTo(f64x2 x) { return (f64x2)_mm_round_pd((__m128d)x, Mode); }
template <int Mode> inline f64x4 roundTo(f64x4 x) { return (f64x4)_mm256_round_pd((__m256d)x, Mode); }

// Widening and narrowing between the two precisions, lane for lane.
inline double widen(float x) { return static_cast<double>(x); }
inline f64x4 widen(f32x4 x) { return (f64x4)_mm256_cvtps_pd((__m128)x); }
inline float narrow(double x) { return static_cast<float>(x); }
inline f32x4 narrow(f64x4 x) { return (f32x4)_mm256_cvtpd_ps((__m256d)x); }

// The high 32-bit words of binary64 lanes: the part that masks inspect.
inline uint32_t highWords(double x) { return static_cast<uint32_t>(asBits(x) >> 32); }
inline u32x4 highWords(f64x4 x) {
    __m256 v = _mm256_castpd_ps((__m256d)x);
    return (u32x4)_mm_castps_si128(_mm_shuffle_ps(_mm256_castps256_ps128(v), _mm256_extractf128_ps(v, 1), 0xDD));
}
inline u32x4 highWords(f64x2 x) {
    __m128 v = _mm_castpd_ps((__m128d)x);
    return (u32x4)_mm_castps_si128(_mm_shuffle_ps(v, v, 0xDD));
}

// Bit i set when lane i of a mask is set; lane order is element order.
inline unsigned laneBits(bool m) { return m ? 1u : 0u; }
inline unsigned laneBits(i32x4 m) { return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps((__m128i)m))); }
inline unsigned laneBits(i32x8 m) { return static_cast<unsigned>(_mm256_movemask_ps((__m256)m)); }
inline unsigned laneBits(i64x2 m) { return static_cast<unsigned>(_mm_movemask_pd(_mm_castsi128_pd((__m128i)m))); }
inline unsigned laneBits(i64x4 m) { return static_cast<unsigned>(_mm256_movemask_pd((__m256d)m)); }

// Sixteen 32-bit lane masks in four 128-bit quarters narrowed by saturating
// packs to one byte per lane, then one byte-sign extraction: the mask word
// of a 16-element binary32 block without any 256-bit integer instruction.
inline unsigned laneBits16(i32x4 qa0, i32x4 qa1, i32x4 qb0, i32x4 qb1) {
    __m128i bytes = _mm_packs_epi16(_mm_packs_epi32((__m128i)qa0, (__m128i)qa1), _mm_packs_epi32((__m128i)qb0, (__m128i)qb1));
    return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}
inline unsigned laneBits16(i32x8 a, i32x8 b) {
    return laneBits16(__builtin_shufflevector(a, a, 0, 1, 2, 3), __builtin_shufflevector(a, a, 4, 5, 6, 7),
                      __builtin_shufflevector(b, b, 0, 1, 2, 3), __builtin_shufflevector(b, b, 4, 5, 6, 7));
}

// Table look-up of (hi, lo) rows stored side by side: one 64-bit (binary32)
// or 128-bit (binary64) load per lane, then the two columns pulled apart.
template <class V, class I> inline void gatherPair(const ElemOf<V>* rows, I index, V& hi, V& lo) {
    if constexpr (kIsScalar<V>) {
        hi = rows[2 * index];
        lo = rows[2 * index + 1];
    } else if constexpr (std::is_same_v<V, f32x8>) {
        const LaneIndices<I> at(index);
        auto row = [&](int i) { return rows + 2 * at[i]; };
        auto twoRows = [&](int i) {
            const __m128 first = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(row(i)));
            return _mm_loadh_pi(first, reinterpret_cast<const __m64*>(row(i + 1)));
        };
        const __m256 a = _mm256_insertf128_ps(_mm256_castps128_ps256(twoRows(0)), twoRows(4), 1);
        const __m256 b = _mm256_insertf128_ps(_mm256_castps128_ps256(twoRows(2)), twoRows(6), 1);
        hi = (f32x8)_mm256_shuffle_ps(a, b, 0x88);
        lo = (f32x8)_mm256_shuffle_ps(a, b, 0xDD);
    } else {
        static_assert(std::is_same_v<V, f64x4>);
        const LaneIndices<I> at(index);
        auto row = [&](int i) { return rows + 2 * at[i]; };
        auto twoRows = [&](int i, int j) {
            return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(row(i))), _mm_loadu_pd(row(j)), 1);
        };
        const __m256d a = twoRows(0, 2), b = twoRows(1, 3);
        hi = (f64x4)_mm256_unpacklo_pd(a, b);
        lo = (f64x4)_mm256_unpackhi_pd(a, b);
    }
}

// ---- binary32 values carried in the low words of 64-bit lanes ----------
// Kernels of binary64 that take the single-precision estimate of a surrogate
// build the surrogate's pattern in the low word of each 64-bit lane; these
// move such words into binary32 lanes and back (zero-extended).
inline uint32_t lowWords(uint64_t b) { return static_cast<uint32_t>(b); }
inline u32x4 lowWords(u64x4 b) { return __builtin_convertvector(b, u32x4); }
inline u32x4 lowWords(u64x2 b) {
    const u32x4 w = std::bit_cast<u32x4>(b);
    return __builtin_shufflevector(w, u32x4{}, 0, 2, 4, 4);
}
inline uint64_t zeroExtendWords(uint32_t w) { return w; }
inline u64x2 zeroExtendWords(u32x4 w) { return std::bit_cast<u64x2>(__builtin_shufflevector(w, u32x4{}, 0, 4, 1, 4)); }

// ---- polynomials ----------------------------------------------------------
// Horner's rule, coefficients given as bit patterns, highest degree first.
template <class V, size_t N> inline V horner(const uint64_t (&c)[N], V t) {
    V p = constant<V>(c[0]);
    for (size_t i = 1; i < N; ++i) p = p * t + constant<V>(c[i]);
    return p;
}

// ---- signed "less than" on patterns, integer lanes to floating lanes (logarithms) ----
// ltSigned(bits, T): bits < T as signed 32-bit integers, the mirror of
// gtSigned.  toFloat and toDouble convert signed 32-bit lanes exactly.
inline bool ltSigned(uint32_t bits, int32_t threshold) { return static_cast<int32_t>(bits) < threshold; }
inline i32x4 ltSigned(u32x4 bits, int32_t threshold) { return opaqueThreshold(threshold) > (i32x4)bits; }
inline int32_t asSigned(uint32_t b) { return static_cast<int32_t>(b); }
inline i32x4 asSigned(u32x4 b) { return (i32x4)b; }
inline i32x8 asSigned(u32x8 b) { return (i32x8)b; }
inline float toFloat(int32_t v) { return static_cast<float>(v); }
inline f32x8 toFloat(i32x8 v) { return (f32x8)_mm256_cvtepi32_ps((__m256i)v); }
inline double toDouble(int32_t v) { return static_cast<double>(v); }
inline f64x4 toDouble(i32x4 v) { return (f64x4)_mm256_cvtepi32_pd((__m128i)v); }

// ---- clang: masks of binary64 compares (the libFuzzer build) ----
// clang's compare of binary64 lanes gives long long lanes, GCC's long ones.
#ifdef __clang__
inline unsigned laneBits(long long __attribute__((vector_size(16))) m) { return laneBits((i64x2)m); }
inline unsigned laneBits(long long __attribute__((vector_size(32))) m) { return laneBits((i64x4)m); }
#endif

}  // namespace orvo::simd
