// The peers, by family.  SLEEF and libmvec are opened and searched by name:
// SLEEF's functions are Sleef_<f><f8|d4>_<uNN><avx|avx2>, libmvec's follow
// the vector function ABI, _ZGV<c|d>N<8|4><v...>_<f>[f] (c: AVX, d: AVX2).
#include "bench/peers.h"

#include <dlfcn.h>
#include <immintrin.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "oracle/domains.h"

namespace orvo::bench {
namespace {

// ---- loops --------------------------------------------------------------------

template <class T> struct Wide;
template <> struct Wide<float> {
    using V = __m256;
    static constexpr int n = 8;
    static V load(const float* p) { return _mm256_loadu_ps(p); }
    static void store(float* p, V v) { _mm256_storeu_ps(p, v); }
};
template <> struct Wide<double> {
    using V = __m256d;
    static constexpr int n = 4;
    static V load(const double* p) { return _mm256_loadu_pd(p); }
    static void store(double* p, V v) { _mm256_storeu_pd(p, v); }
};

// A vector function over the array, the last partial vector through a
// buffer padded with the first remaining element.
template <class T, int Arity> void vectorLoop(void* function, const test::CallArrays& a, int n) {
    using W = Wide<T>;
    using V = typename W::V;
    const T* x = static_cast<const T*>(a.in[0]);
    const T* y = static_cast<const T*>(a.in[Arity - 1]);
    T* r = static_cast<T*>(a.out[0]);
    auto apply = [function](const T* p, const T* q) -> V {
        if constexpr (Arity == 1) return reinterpret_cast<V (*)(V)>(function)(W::load(p));
        else return reinterpret_cast<V (*)(V, V)>(function)(W::load(p), W::load(q));
    };
    int i = 0;
    for (; i + W::n <= n; i += W::n) W::store(r + i, apply(x + i, y + i));
    if (i < n) {
        T px[W::n], py[W::n], pr[W::n];
        for (int j = 0; j < W::n; ++j) px[j] = x[i + (i + j < n ? j : 0)], py[j] = y[i + (i + j < n ? j : 0)];
        W::store(pr, apply(px, py));
        for (int j = 0; i + j < n; ++j) r[i + j] = pr[j];
    }
}

// The same expression as a bare AVX loop: 256-bit unaligned loads and
// stores, one vector operation, nothing else.  `Parts` values per element.
template <class T, class Op, int Parts> void bareLoop(void*, const test::CallArrays& a, int elements) {
    using W = Wide<T>;
    const int n = elements * Parts;
    const T* x = static_cast<const T*>(a.in[0]);
    const T* y = static_cast<const T*>(a.in[1] ? a.in[1] : a.in[0]);
    T* r = static_cast<T*>(a.out[0]);
    int i = 0;
    for (; i + W::n <= n; i += W::n) W::store(r + i, Op::vector(W::load(x + i), W::load(y + i)));
    for (; i < n; ++i) r[i] = Op::scalar(x[i], y[i]);
}

struct Plus {
    template <class T> static T scalar(T a, T b) { return a + b; }
    static __m256 vector(__m256 a, __m256 b) { return _mm256_add_ps(a, b); }
    static __m256d vector(__m256d a, __m256d b) { return _mm256_add_pd(a, b); }
};
struct Minus {
    template <class T> static T scalar(T a, T b) { return a - b; }
    static __m256 vector(__m256 a, __m256 b) { return _mm256_sub_ps(a, b); }
    static __m256d vector(__m256d a, __m256d b) { return _mm256_sub_pd(a, b); }
};
struct Times {
    template <class T> static T scalar(T a, T b) { return a * b; }
    static __m256 vector(__m256 a, __m256 b) { return _mm256_mul_ps(a, b); }
    static __m256d vector(__m256d a, __m256d b) { return _mm256_mul_pd(a, b); }
};
struct Over {
    template <class T> static T scalar(T a, T b) { return a / b; }
    static __m256 vector(__m256 a, __m256 b) { return _mm256_div_ps(a, b); }
    static __m256d vector(__m256d a, __m256d b) { return _mm256_div_pd(a, b); }
};
struct Square {
    template <class T> static T scalar(T a, T) { return a * a; }
    static __m256 vector(__m256 a, __m256) { return _mm256_mul_ps(a, a); }
    static __m256d vector(__m256d a, __m256d) { return _mm256_mul_pd(a, a); }
};
struct Magnitude {
    template <class T> static T scalar(T a, T) { return std::fabs(a); }
    static __m256 vector(__m256 a, __m256) { return _mm256_and_ps(a, _mm256_castsi256_ps(_mm256_set1_epi32(0x7FFFFFFF))); }
    static __m256d vector(__m256d a, __m256d) {
        return _mm256_and_pd(a, _mm256_castsi256_pd(_mm256_set1_epi64x(0x7FFFFFFFFFFFFFFF)));
    }
};
struct Reciprocal {
    template <class T> static T scalar(T a, T) { return T(1) / a; }
    static __m256 vector(__m256 a, __m256) { return _mm256_div_ps(_mm256_set1_ps(1), a); }
    static __m256d vector(__m256d a, __m256d) { return _mm256_div_pd(_mm256_set1_pd(1), a); }
};
struct Root {
    template <class T> static T scalar(T a, T) { return std::sqrt(a); }
    static __m256 vector(__m256 a, __m256) { return _mm256_sqrt_ps(a); }
    static __m256d vector(__m256d a, __m256d) { return _mm256_sqrt_pd(a); }
};
struct ReciprocalRoot {
    template <class T> static T scalar(T a, T) { return T(1) / std::sqrt(a); }
    static __m256 vector(__m256 a, __m256) { return _mm256_div_ps(_mm256_set1_ps(1), _mm256_sqrt_ps(a)); }
    static __m256d vector(__m256d a, __m256d) { return _mm256_div_pd(_mm256_set1_pd(1), _mm256_sqrt_pd(a)); }
};
// Complex conjugate on the flat array of parts: the imaginary parts are
// the odd positions.
struct Conjugate {
    static __m256 vector(__m256 a, __m256) { return _mm256_xor_ps(a, _mm256_setr_ps(0, -0.f, 0, -0.f, 0, -0.f, 0, -0.f)); }
    static __m256d vector(__m256d a, __m256d) { return _mm256_xor_pd(a, _mm256_setr_pd(0, -0.0, 0, -0.0)); }
};
template <class T> void bareConjugate(void*, const test::CallArrays& a, int elements) {
    using W = Wide<T>;
    const int n = 2 * elements;
    const T* x = static_cast<const T*>(a.in[0]);
    T* r = static_cast<T*>(a.out[0]);
    int i = 0;
    for (; i + W::n <= n; i += W::n) W::store(r + i, Conjugate::vector(W::load(x + i), W::load(x + i)));
    for (; i < n; i += 2) r[i] = x[i], r[i + 1] = -x[i + 1];
}
// ---- the libraries ------------------------------------------------------------

bool avx2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}

// The vector functions of SLEEF and libmvec by family, under the C name of
// the binary64 function.
struct Names {
    const char* family;
    const char* stem;
    int arity;
    bool libmvec;  // SLEEF has them all
};
constexpr Names kLibraryNames[] = {
    {"Exp", "exp", 1, true},     {"Ln", "log", 1, true},       {"Log10", "log10", 1, true}, {"Expm1", "expm1", 1, true},
    {"Log1p", "log1p", 1, true}, {"Pow", "pow", 2, true},      {"Sin", "sin", 1, true},     {"Cos", "cos", 1, true},
    {"Tan", "tan", 1, true},     {"Asin", "asin", 1, true},    {"Acos", "acos", 1, true},   {"Atan", "atan", 1, true},
    {"Atan2", "atan2", 2, true}, {"Sinh", "sinh", 1, true},    {"Cosh", "cosh", 1, true},   {"Tanh", "tanh", 1, true},
    {"Asinh", "asinh", 1, true}, {"Acosh", "acosh", 1, true},  {"Atanh", "atanh", 1, true}, {"Erf", "erf", 1, true},
    {"Erfc", "erfc", 1, true},   {"Cbrt", "cbrt", 1, true},    {"Hypot", "hypot", 2, true}, {"Sqrt", "sqrt", 1, false},
};

template <class T, int Arity> void addLibraryPeers(const Names& f, bool single, std::vector<Peer>& out) {
    using Loop = void (*)(void*, const test::CallArrays&, int);
    const Loop vector = vectorLoop<T, Arity>;
    const std::string stem = f.stem;
    static void* const sleef = dlopen("libsleef.so.3", RTLD_NOW | RTLD_LOCAL);
    static void* const libmvec = dlopen("libmvec.so.1", RTLD_NOW | RTLD_LOCAL);
    static const bool hasAvx2 = avx2();
    if (sleef) {
        for (const char* isa : {"avx", "avx2"}) {
            if (std::string_view(isa) == "avx2" && !hasAvx2) continue;
            for (int u : {5, 10, 15, 35}) {
                char name[64];
                std::snprintf(name, sizeof name, "Sleef_%s%s_u%02d%s", f.stem, single ? "f8" : "d4", u, isa);
                if (void* fn = dlsym(sleef, name))
                    out.push_back({Source::Sleef, std::string_view(isa) == "avx" ? "AVX" : "AVX2", u / 10.0, name, fn, vector});
            }
        }
    }
    if (f.libmvec && libmvec) {
        for (const char isa : {'c', 'd'}) {
            if (isa == 'd' && !hasAvx2) continue;
            const std::string name = std::string("_ZGV") + isa + "N" + (single ? "8" : "4") + std::string(Arity, 'v') +
                                     "_" + stem + (single ? "f" : "");
            if (void* fn = dlsym(libmvec, name.c_str()))
                out.push_back({Source::Libmvec, isa == 'c' ? "AVX" : "AVX2", 0, name, fn, vector});
        }
    }
}

template <class T, class Op, int Parts = 1> void addBare(const char* text, std::vector<Peer>& out) {
    out.push_back({Source::BareAvx, "AVX", 0, text, nullptr, bareLoop<T, Op, Parts>});
}

// The plain loop over the C library that orvo-report compares with, from
// the family's domain.
void addLibmLoop(const char* family, ElementType type, std::vector<Peer>& out) {
    const oracle::Domain* d = oracle::findDomain(family, isComplex(type));
    if (!d || !*d->baseline) return;
    const bool single = realBytes(type) == 4;
    auto loop = single ? d->loop32 : d->loop64;
    if (!loop) return;
    std::string name = d->baseline;
    if (!single && name.back() == 'f') name.pop_back();  // expf: exp in binary64
    out.push_back({Source::Libm, "", 0, name, reinterpret_cast<void*>(loop),
                   [](void* f, const test::CallArrays& a, int n) {
                       reinterpret_cast<void (*)(const test::CallArrays&, int)>(f)(a, n);
                   }});
}

template <class T> std::vector<Peer> realPeers(std::string_view family) {
    constexpr bool single = sizeof(T) == 4;
    std::vector<Peer> out;
    for (const Names& f : kLibraryNames) {
        if (family != f.family) continue;
        if (f.arity == 1) addLibraryPeers<T, 1>(f, single, out);
        else addLibraryPeers<T, 2>(f, single, out);
    }
    // Single operations: a bare AVX loop of the one instruction (the
    // reference of the element-wise kernels).
    if (family == "Add") addBare<T, Plus>("a+b", out);
    if (family == "Sub") addBare<T, Minus>("a-b", out);
    if (family == "Mul") addBare<T, Times>("a*b", out);
    if (family == "Sqr") addBare<T, Square>("x*x", out);
    if (family == "Abs") addBare<T, Magnitude>(single ? "fabsf" : "fabs", out);
    if (family == "Inv") addBare<T, Reciprocal>("1/x", out);
    if (family == "Div") addBare<T, Over>("a/b", out);
    if (family == "InvSqrt") addBare<T, ReciprocalRoot>(single ? "1/sqrtf" : "1/sqrt", out);
    if (family == "Sqrt") addBare<T, Root>("sqrt", out);
    return out;
}

template <class T> std::vector<Peer> complexPeers(std::string_view family) {
    std::vector<Peer> out;
    if (family == "Add") addBare<T, Plus, 2>("a+b", out);
    if (family == "Sub") addBare<T, Minus, 2>("a-b", out);
    if (family == "Conj") out.push_back({Source::BareAvx, "AVX", 0, "conj", nullptr, bareConjugate<T>});
    return out;
}

}  // namespace

std::string Peer::column() const {
    switch (source) {
    case Source::Libm: return "libm";
    case Source::Sleef: {
        char u[8];
        std::snprintf(u, sizeof u, "u%02d", static_cast<int>(ulps * 10 + 0.5));
        return "SLEEF " + std::string(u) + " " + isa;
    }
    case Source::Libmvec: return "libmvec " + isa;
    case Source::BareAvx: return "bare AVX";
    }
    return "";
}

std::vector<Peer> peersOf(const char* family, ElementType type) {
    std::vector<Peer> out;
    addLibmLoop(family, type, out);
    std::vector<Peer> vector;
    switch (type) {
    case ElementType::F32: vector = realPeers<float>(family); break;
    case ElementType::F64: vector = realPeers<double>(family); break;
    case ElementType::C32: vector = complexPeers<float>(family); break;
    case ElementType::C64: vector = complexPeers<double>(family); break;
    }
    out.insert(out.end(), vector.begin(), vector.end());
    return out;
}

}  // namespace orvo::bench
