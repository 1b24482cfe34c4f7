// The error of a computed result against the exact one, and what a level
// allows.
//
// Real results: the distance in units of the last place of the exact
// result's binade, the subnormal spacing at the bottom of the range.  An
// exact result beyond the largest finite number (one that rounds to
// infinity) is met by that infinity; a computed infinity where the exact
// value is finite counts as the first power of two beyond the range, so a
// low level may overflow early only within its bound.
//
// Complex results: normwise, the larger of the two parts' distances in ulps
// of max(|re|, |im|) of the exact result.
//
// Special values: an exact NaN needs a NaN; an exact infinity needs the same
// infinity; an exact zero (one that the function has by its nature, not one
// that MPFR underflowed to) needs a zero of the same sign.  Anything else
// that misses a special value has an infinite error.  For complex results of
// arguments with an infinite or NaN part the signs of infinities and zeros
// are not checked: the conventions of the complex functions leave many of
// them open.
#pragma once

#include <mpfr.h>

namespace orvo::oracle {

struct Format {
    int p;      // significand bits
    int emin;   // exponent of the smallest normal binade
    int emax;   // exponent of the largest binade
};
inline constexpr Format kBinary32{24, -126, 127};
inline constexpr Format kBinary64{53, -1022, 1023};

// One part of an exact result.
struct ExactPart {
    mpfr_srcptr value;
    bool zeroIsExact;  // false when MPFR underflowed to this zero
};

double realError(double computed, ExactPart exact, Format f);
double complexError(double re, double im, ExactPart exactRe, ExactPart exactIm, bool signsFree, Format f);

// Ulps a level allows: 2^(p - n) for level An, 0 for an exact family ("").
double levelBound(const char* level, Format f);
// Correct significand bits that an error in ulps leaves: p - log2(error),
// at most p.
double correctBits(double errorUlps, Format f);

}  // namespace orvo::oracle
