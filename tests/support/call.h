// Calling any catalogue function by its entry: arrays as untyped pointers,
// the function found in the loaded library by its exported name.
#pragma once

#include <dlfcn.h>

#include <cstring>
#include <string>

#include "frame/catalogue.h"
#include "orvo.h"

namespace orvo::test {

inline void* findFunction(const char* name) { return dlsym(RTLD_DEFAULT, name); }

// Arrays of a call: in[0], in[1] (Binary), out[0], out[1] (Pair); the scalar
// of a ScalarRight call is read from `scalar` (a whole element).
struct CallArrays {
    const void* in[2] = {nullptr, nullptr};
    void* out[2] = {nullptr, nullptr};
    const void* scalar = nullptr;
};

template <class T> inline orvoStatus callTyped(const CatalogueEntry& e, void* f, const CallArrays& a, int len) {
    switch (e.shape) {
    case Shape::Unary:
    case Shape::ComplexToReal:
    case Shape::RealToComplex:
        return reinterpret_cast<orvoStatus (*)(const void*, void*, int)>(f)(a.in[0], a.out[0], len);
    case Shape::Binary:
        return reinterpret_cast<orvoStatus (*)(const void*, const void*, void*, int)>(f)(a.in[0], a.in[1], a.out[0], len);
    case Shape::Pair:
        return reinterpret_cast<orvoStatus (*)(const void*, void*, void*, int)>(f)(a.in[0], a.out[0], a.out[1], len);
    case Shape::ScalarRight: {
        T scalar{};
        if (a.scalar) std::memcpy(&scalar, a.scalar, sizeof(T));
        return reinterpret_cast<orvoStatus (*)(const void*, T, void*, int)>(f)(a.in[0], scalar, a.out[0], len);
    }
    }
    return -1;
}

// A call through the exported function `f` of entry e, found beforehand
// (timing loops look it up once).
inline orvoStatus call(const CatalogueEntry& e, void* f, const CallArrays& a, int len) {
    switch (e.type) {
    case ElementType::F32: return callTyped<orvo32f>(e, f, a, len);
    case ElementType::F64: return callTyped<orvo64f>(e, f, a, len);
    case ElementType::C32: return callTyped<orvo32fc>(e, f, a, len);
    case ElementType::C64: return callTyped<orvo64fc>(e, f, a, len);
    }
    return -1;
}

inline orvoStatus call(const CatalogueEntry& e, const CallArrays& a, int len) {
    void* f = findFunction(e.name);
    return f ? call(e, f, a, len) : -1000;
}

inline int inputCount(const CatalogueEntry& e) { return e.shape == Shape::Binary ? 2 : 1; }
inline int outputCount(const CatalogueEntry& e) { return e.shape == Shape::Pair ? 2 : 1; }
// Element size of input / output arrays (the two complex-real shapes differ).
inline int inputBytes(const CatalogueEntry& e) {
    return e.shape == Shape::RealToComplex ? realBytes(e.type) : elementBytes(e.type);
}
inline int outputBytes(const CatalogueEntry& e) {
    return e.shape == Shape::ComplexToReal ? realBytes(e.type) : elementBytes(e.type);
}

}  // namespace orvo::test
