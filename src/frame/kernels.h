// Declarations of every kernel, derived from the catalogue.  A kernel is
// declared with the type of its exported name in the public header, so a
// kernel defined with any other signature fails to compile, and the header
// itself is checked against the catalogue's shape of each name.
#pragma once

#include <type_traits>

#include "orvo.h"

#define ORVO_HIDDEN __attribute__((visibility("hidden")))

// Defines the kernel behind the exported name orvo<Name>.
#define ORVO_KERNEL(Name) extern "C" ORVO_HIDDEN orvoStatus Kernel_##Name

namespace orvo::catalogue_shapes {
template <class T> struct Real { using type = T; };
template <> struct Real<orvo32fc> { using type = orvo32f; };
template <> struct Real<orvo64fc> { using type = orvo64f; };
template <class T> using Unary = orvoStatus(const T*, T*, int);
template <class T> using Binary = orvoStatus(const T*, const T*, T*, int);
template <class T> using ScalarRight = orvoStatus(const T*, T, T*, int);
template <class T> using Pair = orvoStatus(const T*, T*, T*, int);
template <class T> using ComplexToReal = orvoStatus(const T*, typename Real<T>::type*, int);
template <class T> using RealToComplex = orvoStatus(const typename Real<T>::type*, T*, int);
}  // namespace orvo::catalogue_shapes

#define ORVO_ENTRY(Name, Family, Type, Level, Shape, Style, Block, Checks, SameCodeAs, Built)                 \
    extern "C" ORVO_HIDDEN decltype(orvo##Name) Kernel_##Name;                                                \
    static_assert(std::is_same_v<decltype(orvo##Name), orvo::catalogue_shapes::Shape<orvo##Type>>,              \
                  "prototype of orvo" #Name " does not have its catalogue shape");
#include "frame/catalogue.def"
#undef ORVO_ENTRY
