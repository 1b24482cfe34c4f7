// Exact references of every family of the catalogue, real and complex, on
// MPFR and MPC numbers.  Each reference writes its result correctly rounded
// (or within a few units of the last place of a precision far beyond the
// element's) at the precision of its output variables; the exponent range is
// MPFR's, so nothing overflows or underflows on the way.
#pragma once

#include <mpc.h>
#include <mpfr.h>

namespace orvo::oracle {

// How the exact value of a family is formed from its arguments.
enum class Form { Real1, Real2, RealPair, Complex1, Complex2, ComplexToReal, RealToComplex };

struct Reference {
    Form form;
    void (*real1)(mpfr_ptr r, mpfr_srcptr x) = nullptr;
    void (*real2)(mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) = nullptr;  // also Powx: y is the scalar
    void (*realPair)(mpfr_ptr r1, mpfr_ptr r2, mpfr_srcptr x) = nullptr;
    void (*complex1)(mpc_ptr r, mpc_srcptr z) = nullptr;
    void (*complex2)(mpc_ptr r, mpc_srcptr z, mpc_srcptr w) = nullptr;
    void (*complexToReal)(mpfr_ptr r, mpc_srcptr z) = nullptr;
    void (*realToComplex)(mpc_ptr r, mpfr_srcptr t) = nullptr;
};

// The reference of a family on real or on complex elements; null if the
// oracle has none (then the sweep reports the function as unchecked).
const Reference* findReference(const char* family, bool complex);

// The inverses of the error function family, by Newton's iteration on MPFR
// at a precision well beyond that of r.  Exposed for the oracle's own tests.
void erfInverse(mpfr_ptr r, mpfr_srcptr x);
void erfcInverse(mpfr_ptr r, mpfr_srcptr y);
void cdfNormInverse(mpfr_ptr r, mpfr_srcptr p);
void cdfNorm(mpfr_ptr r, mpfr_srcptr x);
// erf and erfc, faster than MPFR's where MPFR is slow.
void erfFast(mpfr_ptr r, mpfr_srcptr x);
void erfcFast(mpfr_ptr r, mpfr_srcptr x);

}  // namespace orvo::oracle
