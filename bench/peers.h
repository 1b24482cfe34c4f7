// What a user would call instead of orvo: the C library's scalar functions
// in a plain loop (the one orvo-report compares with, from the family's
// domain), SLEEF's and glibc libmvec's vector functions, and for the
// element-wise kernels a bare AVX loop.  The libraries are black boxes,
// searched by name at run time (so a variant exists here exactly when the
// installed library has it); every peer runs over the same arrays as orvo's
// function.
#pragma once

#include <string>
#include <vector>

#include "frame/catalogue.h"
#include "support/call.h"

namespace orvo::bench {

enum class Source { Libm, Sleef, Libmvec, BareAvx };

struct Peer {
    Source source;
    std::string isa;  // "AVX", "AVX2"; empty for the scalar loop
    double ulps;      // SLEEF: the error bound its name states (u05, u10, u15, u35); 0 otherwise
    std::string name;  // the function called, as a user would name it
    void* function;    // the peer's function (unused by the expression loops)
    void (*loop)(void* function, const test::CallArrays& a, int n);

    std::string column() const;  // "SLEEF u10 AVX", "libmvec AVX2", "libm", "bare AVX"
};

// The peers of a family on one element type that this processor runs.
std::vector<Peer> peersOf(const char* family, ElementType type);

}  // namespace orvo::bench
