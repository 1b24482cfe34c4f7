// Input domains of the families: where the sweep draws its samples, which
// thresholds it searches around, which samples a level does not promise,
// and the plain C library loop the report times each family against.
//
// One declaration per family (real and complex apart), all in domains.cpp,
// so adding a family adds one entry there and nothing else.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/catalogue.h"
#include "oracle/measure.h"
#include "support/call.h"

namespace orvo::oracle {

enum TypeMask : unsigned { T32 = 1, T64 = 2, TAll = 3 };

// One element's arguments as bit patterns of the element's real format
// (binary32 patterns in the low 32 bits).  A real argument x is in[0], a
// second real argument in[1]; a complex argument is in[0], in[1] (re, im),
// a second complex argument in[2], in[3].  The scalar of a ScalarRight call
// is scalar[0] (scalar[1] its imaginary part).
struct Sample {
    uint64_t in[4] = {0, 0, 0, 0};
    uint64_t scalar[2] = {0, 0};
    bool ownScalar = false;  // drawn with its element (not from the scalar list)
};

// A way of drawing one real value (an argument, or a part of a complex one).
struct Piece {
    enum Kind {
        Spread,     // [a, b] by exponent: every binade equally likely, then uniform in it
        Uniform,    // [a, b] uniform in value
        Near,       // around a, within b, the distance drawn by exponent down to one ulp
        Multiples,  // within a few ulps of k a, for integers k up to b drawn by exponent
    } kind;
    double a, b;
    double weight = 1;
    unsigned types = TAll;
};

// A threshold of a kernel's mask (or of its scalar routine): its
// neighbourhood is searched ulp by ulp on both sides, with both signs.
struct Mark {
    enum Kind {
        Value,     // a number, rounded to each format of `types`
        Bits32,    // a binary32 pattern
        Bits64,    // a binary64 pattern
        High64,    // the upper word of a binary64: both edges of that word
    } kind;
    double value = 0;
    uint64_t bits = 0;
    int arg = 0;  // 0: first argument (both parts of a complex one); 1: second argument
    unsigned types = TAll;
};

class Draw;

struct Domain {
    const char* family;
    bool complex;
    const char* about;          // what the domain covers and why
    // Real families: `first` draws x, `second` y (Binary; empty: as x).
    // Complex families: `first` draws the real part, `second` the imaginary
    // part of every complex argument (empty: as the real part).
    std::vector<Piece> first = {};
    std::vector<Piece> second = {};
    std::vector<Mark> marks = {};
    // Arguments that matter together (x and y of Pow near overflow, ...):
    // called for a share of the budget, emits through the Draw.
    void (*related)(Draw& d, int count) = nullptr;
    // Samples outside what a level promises: where the family's own method
    // gives up accuracy by construction (each case says why).
    bool (*outside)(const CatalogueEntry& e, const Sample& s) = nullptr;
    std::vector<double> scalars = {};  // ScalarRight: the scalars every sweep tries
    std::vector<Piece> scalar = {};    // ScalarRight: random scalars (each part); empty: as `second`
    double cost = 1;              // oracle time per sample, relative to exp
    double cost64 = 0;            // the same for binary64 elements, if different
    // The plain scalar C library loop for the report's comparison ("" if
    // none), and the inputs of the timing runs.
    const char* baseline = "";
    void (*loop32)(const test::CallArrays& a, int n) = nullptr;
    void (*loop64)(const test::CallArrays& a, int n) = nullptr;
    double benchLo = -10, benchHi = 10;
    // A binary64 function of the C library close enough to judge binary32
    // results to a few 2^-20 ulps: the exhaustive mode filters with it and
    // asks the exact oracle only about the elements near the bound.
    double (*approx)(double) = nullptr;
};

const Domain* findDomain(const char* family, bool complex);
const std::vector<Domain>& allDomains();

// Random draws in one element format, deterministic from a seed.
class Draw {
public:
    Draw(bool binary32, uint64_t seed, std::vector<Sample>& out) : b32_(binary32), state_(seed), out_(out) {}

    bool binary32() const { return b32_; }
    Format format() const { return b32_ ? kBinary32 : kBinary64; }
    uint64_t next();
    double unit();                                     // [0, 1)
    uint64_t below(uint64_t n) { return next() % n; }  // [0, n)

    uint64_t bits(double v) const;  // v rounded to the format
    double value(uint64_t bits) const;
    uint64_t piece(const Piece& p);
    uint64_t pick(const std::vector<Piece>& pieces);  // one piece by weight
    uint64_t spread(double lo, double hi);
    uint64_t uniform(double lo, double hi);
    uint64_t near(double centre, double width);
    uint64_t multiple(double period, double kmax);
    uint64_t anyFinite() { return spread(-maxFinite(), maxFinite()); }
    double maxFinite() const;

    void emit(const Sample& s) { out_.push_back(s); }
    void emitReal(uint64_t x) { Sample s; s.in[0] = x; emit(s); }
    void emitReal2(uint64_t x, uint64_t y) { Sample s; s.in[0] = x; s.in[1] = y; emit(s); }

private:
    bool b32_;
    uint64_t state_;
    std::vector<Sample>& out_;
};

}  // namespace orvo::oracle
