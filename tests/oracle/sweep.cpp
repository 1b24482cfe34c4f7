#include "oracle/sweep.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <string_view>
#include <vector>

#include "oracle/domains.h"
#include "oracle/measure.h"
#include "oracle/reference.h"
#include "oracle/samples.h"
#include "support/call.h"

namespace orvo::oracle {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

bool binary32Of(const CatalogueEntry& e) { return realBytes(e.type) == 4; }

double valueOf(uint64_t bits, bool b32) {
    if (b32) return std::bit_cast<float>(static_cast<uint32_t>(bits));
    return std::bit_cast<double>(bits);
}

void setValue(mpfr_ptr x, uint64_t bits, bool b32) {
    if (b32) mpfr_set_flt(x, std::bit_cast<float>(static_cast<uint32_t>(bits)), MPFR_RNDN);
    else mpfr_set_d(x, std::bit_cast<double>(bits), MPFR_RNDN);
}

std::string number(uint64_t bits, bool b32) {
    char buf[96];
    if (b32) {
        const float v = std::bit_cast<float>(static_cast<uint32_t>(bits));
        std::snprintf(buf, sizeof buf, "%.9g [0x%08X]", static_cast<double>(v), static_cast<unsigned>(bits));
    } else {
        std::snprintf(buf, sizeof buf, "%.17g [0x%016llX]", std::bit_cast<double>(bits),
                      static_cast<unsigned long long>(bits));
    }
    return buf;
}

std::string exactText(mpfr_srcptr y, bool b32) {
    char buf[128];
    mpfr_snprintf(buf, sizeof buf, "%.*Rg", b32 ? 12 : 21, y);
    return buf;
}

// Shapes of a function's arrays, from the catalogue.
struct Layout {
    bool b32;
    bool complexIn;   // arguments are complex (pairs of parts)
    bool complexOut;  // results are complex
    int inputs;       // arrays read (1 or 2)
    int outputs;      // arrays written (1 or 2)
    int inBytes, outBytes;
};

Layout layoutOf(const CatalogueEntry& e) {
    Layout l;
    l.b32 = binary32Of(e);
    l.complexIn = isComplex(e.type) && e.shape != Shape::RealToComplex;
    l.complexOut = isComplex(e.type) && e.shape != Shape::ComplexToReal;
    l.inputs = test::inputCount(e);
    l.outputs = test::outputCount(e);
    l.inBytes = test::inputBytes(e);
    l.outBytes = test::outputBytes(e);
    return l;
}

// One element's input of array k (0 or 1), written at dst.
void writeInput(const Layout& l, const Sample& s, int k, unsigned char* dst) {
    const int rb = l.b32 ? 4 : 8;
    auto put = [&](int slot, uint64_t bits) { std::memcpy(dst + slot * rb, &bits, rb); };
    if (l.complexIn) {
        put(0, s.in[2 * k]);
        put(1, s.in[2 * k + 1]);
    } else {
        put(0, s.in[k]);
    }
}

// A buffer whose data starts at a chosen offset from a 64-byte boundary.
struct Buffer {
    std::vector<unsigned char> raw;
    unsigned char* p = nullptr;
    size_t used = 0;
    void reset(size_t bytes, size_t offset) {
        // A filler no correct result has, with room on both sides: a kernel
        // that writes outside its array is caught, and does no harm.
        raw.assign(bytes + 512, 0xA5);
        const auto base = reinterpret_cast<uintptr_t>(raw.data());
        p = raw.data() + ((base + 63) / 64 * 64 - base) + 192 + offset;
        used = bytes;
    }
    bool untouchedOutside() const {
        for (const unsigned char* q = raw.data(); q < p; ++q)
            if (*q != 0xA5) return false;
        for (const unsigned char* q = p + used; q < raw.data() + raw.size(); ++q)
            if (*q != 0xA5) return false;
        return true;
    }
};

// The exact reference and the error measure for one element.
class Judge {
public:
    Judge(const Reference& ref, const CatalogueEntry& e, const Layout& l) : ref_(ref), e_(e), l_(l) {
        f_ = l.b32 ? kBinary32 : kBinary64;
        // Far beyond the element's precision: the measure's own error is
        // some 2^-60 ulps at most.
        const mpfr_prec_t prec = l.b32 ? 96 : 128;
        for (auto& a : arg_) mpfr_init2(a, 64);
        for (auto& r : out_) mpfr_init2(r, prec);
        mpc_init2(z_, 64);
        mpc_init2(w_, 64);
        mpc_init2(rz_, prec);
    }
    ~Judge() {
        for (auto& a : arg_) mpfr_clear(a);
        for (auto& r : out_) mpfr_clear(r);
        mpc_clear(z_);
        mpc_clear(w_);
        mpc_clear(rz_);
    }

    // The error of the computed results (as binary64 values) of sample s.
    double error(const Sample& s, const double* result) {
        compute(s);
        switch (ref_.form) {
        case Form::Real1:
        case Form::Real2:
        case Form::ComplexToReal: return realError(result[0], part(0), f_);
        case Form::RealPair: return std::fmax(realError(result[0], part(0), f_), realError(result[1], part(1), f_));
        case Form::Complex1:
        case Form::Complex2:
        case Form::RealToComplex:
            return complexError(result[0], result[1], part(0), part(1), nonFiniteInput(s), f_);
        }
        return kInf;
    }

    // The exact value(s) of the last sample judged, as text.
    std::string exactText() const {
        switch (ref_.form) {
        case Form::Real1:
        case Form::Real2:
        case Form::ComplexToReal: return oracle::exactText(out_[0], l_.b32);
        case Form::RealPair: return oracle::exactText(out_[0], l_.b32) + " ; " + oracle::exactText(out_[1], l_.b32);
        default:
            return "(" + oracle::exactText(mpc_realref(rz_), l_.b32) + ", " + oracle::exactText(mpc_imagref(rz_), l_.b32) + ")";
        }
    }

private:
    ExactPart part(int i) const {
        mpfr_srcptr v = isComplexForm() ? (i == 0 ? mpc_realref(rz_) : mpc_imagref(rz_)) : out_[i];
        return {v, !underflow_};
    }
    bool isComplexForm() const {
        return ref_.form == Form::Complex1 || ref_.form == Form::Complex2 || ref_.form == Form::RealToComplex;
    }
    bool nonFiniteInput(const Sample& s) const {
        const bool scalar = e_.shape == Shape::ScalarRight;
        const int n = l_.complexIn ? 2 * l_.inputs : l_.inputs;
        for (int i = 0; i < n; ++i)
            if (!std::isfinite(valueOf(s.in[i], l_.b32))) return true;
        if (scalar)
            for (int i = 0; i < 2; ++i)
                if (!std::isfinite(valueOf(s.scalar[i], l_.b32))) return true;
        return false;
    }

    void compute(const Sample& s) {
        const bool b32 = l_.b32;
        const bool scalar = e_.shape == Shape::ScalarRight;
        mpfr_clear_flags();
        switch (ref_.form) {
        case Form::Real1:
            setValue(arg_[0], s.in[0], b32);
            ref_.real1(out_[0], arg_[0]);
            break;
        case Form::Real2:
            setValue(arg_[0], s.in[0], b32);
            setValue(arg_[1], scalar ? s.scalar[0] : s.in[1], b32);
            ref_.real2(out_[0], arg_[0], arg_[1]);
            break;
        case Form::RealPair:
            setValue(arg_[0], s.in[0], b32);
            ref_.realPair(out_[0], out_[1], arg_[0]);
            break;
        case Form::RealToComplex:
            setValue(arg_[0], s.in[0], b32);
            ref_.realToComplex(rz_, arg_[0]);
            break;
        case Form::ComplexToReal:
            setComplex(z_, s.in[0], s.in[1]);
            ref_.complexToReal(out_[0], z_);
            break;
        case Form::Complex1:
            setComplex(z_, s.in[0], s.in[1]);
            ref_.complex1(rz_, z_);
            break;
        case Form::Complex2:
            setComplex(z_, s.in[0], s.in[1]);
            if (scalar) setComplex(w_, s.scalar[0], s.scalar[1]);
            else setComplex(w_, s.in[2], s.in[3]);
            ref_.complex2(rz_, z_, w_);
            break;
        }
        underflow_ = mpfr_underflow_p() != 0;
    }
    void setComplex(mpc_ptr z, uint64_t re, uint64_t im) {
        setValue(mpc_realref(z), re, l_.b32);
        setValue(mpc_imagref(z), im, l_.b32);
    }

    const Reference& ref_;
    const CatalogueEntry& e_;
    Layout l_;
    Format f_;
    mpfr_t arg_[2];
    mpfr_t out_[2];
    mpc_t z_, w_, rz_;
    bool underflow_ = false;
};

// The computed results of one element as binary64 values: one real, two
// reals (Pair), or the two parts of a complex result.
void readResults(const Layout& l, const unsigned char* const* outs, int index, double* result) {
    const int rb = l.b32 ? 4 : 8;
    auto get = [&](const unsigned char* p) {
        uint64_t bits = 0;
        std::memcpy(&bits, p, rb);
        return valueOf(bits, l.b32);
    };
    if (l.complexOut) {
        result[0] = get(outs[0] + index * l.outBytes);
        result[1] = get(outs[0] + index * l.outBytes + rb);
    } else {
        result[0] = get(outs[0] + index * l.outBytes);
        if (l.outputs == 2) result[1] = get(outs[1] + index * l.outBytes);
    }
}

std::string resultText(const Layout& l, const unsigned char* const* outs, int index) {
    const int rb = l.b32 ? 4 : 8;
    auto get = [&](const unsigned char* p) {
        uint64_t bits = 0;
        std::memcpy(&bits, p, rb);
        return number(bits, l.b32);
    };
    if (l.complexOut) return "(" + get(outs[0] + index * l.outBytes) + ", " + get(outs[0] + index * l.outBytes + rb) + ")";
    if (l.outputs == 2) return get(outs[0] + index * l.outBytes) + " ; " + get(outs[1] + index * l.outBytes);
    return get(outs[0] + index * l.outBytes);
}

std::string inputText(const CatalogueEntry& e, const Layout& l, const Sample& s) {
    std::string t;
    auto complexText = [&](uint64_t re, uint64_t im) { return "(" + number(re, l.b32) + ", " + number(im, l.b32) + ")"; };
    if (l.complexIn) {
        t = complexText(s.in[0], s.in[1]);
        if (l.inputs == 2) t += ", " + complexText(s.in[2], s.in[3]);
    } else {
        t = number(s.in[0], l.b32);
        if (l.inputs == 2) t += ", " + number(s.in[1], l.b32);
    }
    if (e.shape == Shape::ScalarRight)
        t += "; scalar " + (l.complexIn ? complexText(s.scalar[0], s.scalar[1]) : number(s.scalar[0], l.b32));
    return t;
}

// Array lengths that put elements into full blocks, half blocks, the tail
// and the padded last block of every kernel style.
constexpr int kLengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 16, 17, 23, 24, 31, 32, 33, 47, 63, 64, 65, 100, 127, 200, 256, 511, 1000};

struct Rng {
    uint64_t state;
    uint64_t next() {
        uint64_t z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
};

uint64_t hashName(const char* s) {
    uint64_t h = 1469598103934665603u;
    for (; *s; ++s) h = (h ^ static_cast<unsigned char>(*s)) * 1099511628211u;
    return h;
}

// Runs the function (and its same-code sibling) over the samples in chunks;
// results land in `results` (outputBytes x outputs per sample, in order).
struct Runner {
    const CatalogueEntry& e;
    const CatalogueEntry* twin;
    Layout l;
    std::vector<unsigned char> results[2];
    long mismatches = 0;
    long firstMismatch = -1;
    std::string problem;

    void (*baseline)(const test::CallArrays&, int) = nullptr;  // call this loop instead of e

    Runner(const CatalogueEntry& entry, const CatalogueEntry* same) : e(entry), twin(same), l(layoutOf(entry)) {}

    void run(const std::vector<Sample>& samples, Rng& rng) {
        const size_t n = samples.size();
        for (int k = 0; k < l.outputs; ++k) results[k].assign(n * l.outBytes, 0);
        // ScalarRight calls take one scalar each: group the samples by it.
        std::map<std::pair<uint64_t, uint64_t>, std::vector<size_t>> groups;
        if (e.shape == Shape::ScalarRight) {
            for (size_t i = 0; i < n; ++i) groups[{samples[i].scalar[0], samples[i].scalar[1]}].push_back(i);
        } else {
            auto& all = groups[{0, 0}];
            all.resize(n);
            for (size_t i = 0; i < n; ++i) all[i] = i;
        }
        Buffer in[2], out[2], twinOut[2];
        for (auto& [scalar, members] : groups) {
            size_t done = 0;
            while (done < members.size()) {
                const size_t len = std::min<size_t>(kLengths[rng.next() % std::size(kLengths)], members.size() - done);
                const size_t offset = (rng.next() % 8) * static_cast<size_t>(realBytes(e.type));
                for (int k = 0; k < l.inputs; ++k) {
                    in[k].reset(len * l.inBytes, offset);
                    for (size_t j = 0; j < len; ++j) writeInput(l, samples[members[done + j]], k, in[k].p + j * l.inBytes);
                }
                // The scalar as a whole element: real part, then imaginary.
                unsigned char scalarBytes[16] = {};
                const int rb = l.b32 ? 4 : 8;
                std::memcpy(scalarBytes, &scalar.first, rb);
                std::memcpy(scalarBytes + rb, &scalar.second, rb);
                call(e, in, out, scalarBytes, len, offset);
                for (int k = 0; k < l.outputs; ++k)
                    for (size_t j = 0; j < len; ++j)
                        std::memcpy(&results[k][members[done + j] * l.outBytes], out[k].p + j * l.outBytes, l.outBytes);
                if (twin) {
                    call(*twin, in, twinOut, scalarBytes, len, offset);
                    for (int k = 0; k < l.outputs; ++k)
                        for (size_t j = 0; j < len; ++j)
                            if (std::memcmp(out[k].p + j * l.outBytes, twinOut[k].p + j * l.outBytes, l.outBytes)) {
                                if (firstMismatch < 0) firstMismatch = static_cast<long>(members[done + j]);
                                ++mismatches;
                            }
                }
                done += len;
            }
        }
    }

    void call(const CatalogueEntry& which, Buffer* in, Buffer* out, const unsigned char* scalar, size_t len, size_t offset) {
        for (int k = 0; k < l.outputs; ++k) out[k].reset(len * l.outBytes, offset);
        test::CallArrays a;
        for (int k = 0; k < l.inputs; ++k) a.in[k] = in[k].p;
        for (int k = 0; k < l.outputs; ++k) a.out[k] = out[k].p;
        a.scalar = scalar;
        if (baseline) {
            baseline(a, static_cast<int>(len));
            return;
        }
        const orvoStatus s = test::call(which, a, static_cast<int>(len));
        if (s < 0 && problem.empty()) problem = std::string(which.name) + " returned status " + std::to_string(s);
        for (int k = 0; k < l.outputs; ++k)
            if (!out[k].untouchedOutside() && problem.empty())
                problem = std::string(which.name) + " wrote outside its output array (length " + std::to_string(len) + ")";
    }
};

}  // namespace

const CatalogueEntry* sibling(const CatalogueEntry& e, const char* level) {
    for (const auto& c : kCatalogue)
        if (c.type == e.type && std::string_view(c.family) == e.family && std::string_view(c.level) == level) return &c;
    return nullptr;
}

namespace {

int levelBits(const char* level) { return *level ? std::atoi(level + 1) : 1000; }

// The entry's code is shared (by the catalogue's SameCodeAs) with a built
// entry of a stricter level: that one's sweep, on the same samples, and its
// bit-for-bit comparison carry the accuracy of this one.
bool stricterTwinBuilt(const CatalogueEntry& e) {
    const char* code = *e.sameCodeAs ? e.sameCodeAs : e.level;
    for (const auto& c : kCatalogue) {
        if (&c == &e || !c.built || c.type != e.type || std::string_view(c.family) != e.family) continue;
        const char* other = *c.sameCodeAs ? c.sameCodeAs : c.level;
        if (std::string_view(other) == code && levelBits(c.level) > levelBits(e.level)) return true;
    }
    return false;
}

}  // namespace

long defaultSamples(const CatalogueEntry& e) {
    const Domain* d = findDomain(e.family, isComplex(e.type));
    double scale = 1;
    if (const char* s = std::getenv("ORVO_SWEEP_SCALE")) scale = std::atof(s);
    double cost = d ? d->cost : 1;
    if (d && d->cost64 > 0 && realBytes(e.type) == 8) cost = d->cost64;
    if (stricterTwinBuilt(e)) cost *= 4;
    return std::max(1L, static_cast<long>(40000 * scale / cost));
}

namespace {

void exhaustiveSweep(const CatalogueEntry& e, const Domain& d, const Reference& ref, const SweepOptions& o,
                     SweepResult& r);

}  // namespace

SweepResult sweep(const CatalogueEntry& e, const SweepOptions& o) {
    SweepResult r;
    r.name = e.name;
    const bool complex = isComplex(e.type);
    const Reference* ref = findReference(e.family, complex);
    const Domain* d = findDomain(e.family, complex);
    const Layout l = layoutOf(e);
    const Format f = l.b32 ? kBinary32 : kBinary64;
    r.bound = levelBound(e.level, f);
    if (!ref || !d) {
        r.problem = std::string("no ") + (ref ? "domain" : "reference") + " for family " + e.family;
        return r;
    }
    const auto loop = l.b32 ? d->loop32 : d->loop64;
    if (o.judgeBaseline && !loop) {
        r.problem = std::string("no C library loop for family ") + e.family;
        return r;
    }
    if (!o.judgeBaseline && !test::findFunction(e.name)) {
        r.problem = std::string(e.name) + " is not exported by the loaded library";
        return r;
    }
    if (o.exhaustive) {
        if (e.type != ElementType::F32 || e.shape != Shape::Unary) {
            r.problem = "the exhaustive mode covers binary32 Unary functions only";
            return r;
        }
        exhaustiveSweep(e, *d, *ref, o, r);
        return r;
    }

    const CatalogueEntry* twin = nullptr;
    if (*e.sameCodeAs && !o.judgeBaseline) {
        twin = sibling(e, e.sameCodeAs);
        if (twin && twin->built && test::findFunction(twin->name)) r.sameCodeAs = twin->name;
        else twin = nullptr;
    }

    const uint64_t seed = o.seed ^ hashName(e.family) ^ static_cast<uint64_t>(e.type);
    std::vector<Sample> samples = drawSamples(e, *d, o.samples ? o.samples : defaultSamples(e), seed);
    Rng rng{seed * 3 + 1};
    for (size_t i = samples.size(); i > 1; --i) std::swap(samples[i - 1], samples[rng.next() % i]);

    Runner runner(e, twin);
    if (o.judgeBaseline) runner.baseline = loop;
    runner.run(samples, rng);
    r.problem = runner.problem;
    r.samples = static_cast<long>(samples.size());

    Judge judge(*ref, e, l);
    const unsigned char* outs[2] = {runner.results[0].data(), l.outputs == 2 ? runner.results[1].data() : nullptr};
    long worst = -1;
    for (size_t i = 0; i < samples.size(); ++i) {
        double result[2] = {0, 0};
        readResults(l, outs, static_cast<int>(i), result);
        const double err = judge.error(samples[i], result);
        if (!(err <= r.bound)) ++r.failures;
        if (worst < 0 || err > r.maxError || (std::isnan(err) && !std::isnan(r.maxError))) {
            r.maxError = err;
            worst = static_cast<long>(i);
        }
    }
    if (worst >= 0) {
        double result[2];
        readResults(l, outs, static_cast<int>(worst), result);
        judge.error(samples[worst], result);
        r.worstInput = inputText(e, l, samples[worst]);
        r.worstResult = resultText(l, outs, static_cast<int>(worst));
        r.worstExact = judge.exactText();
    }
    r.sameCodeMismatches = runner.mismatches;
    if (runner.firstMismatch >= 0) r.sameCodeExample = inputText(e, l, samples[runner.firstMismatch]);
    r.bits = correctBits(r.maxError, f);
    r.checked = runner.problem.empty();
    r.pass = r.checked && r.failures == 0 && r.sameCodeMismatches == 0;
    return r;
}

namespace {

// All 2^32 binary32 inputs.  Where the family names a binary64 function of
// the C library close enough (a few binary64 ulps, some 2^-28 binary32
// ulps), it judges first, and the exact oracle decides every element that
// could be a new maximum or beyond the bound, every special value and every
// result outside the normal range.  Without it, the oracle judges all.
void exhaustiveSweep(const CatalogueEntry& e, const Domain& d, const Reference& ref, const SweepOptions& o,
                     SweepResult& r) {
    const Layout l = layoutOf(e);
    Judge judge(ref, e, l);
    constexpr size_t kChunk = 1 << 16;
    std::vector<float> in(kChunk), out(kChunk);
    const double margin = 0x1p-12;
    double maxError = 0;
    uint32_t worst = 0;
    float worstResult = 0;
    long failures = 0;
    for (uint64_t start = 0; start < (uint64_t{1} << 32); start += kChunk) {
        for (size_t j = 0; j < kChunk; ++j) in[j] = std::bit_cast<float>(static_cast<uint32_t>(start + j));
        test::CallArrays a;
        a.in[0] = in.data();
        a.out[0] = out.data();
        const orvoStatus s = test::call(e, a, static_cast<int>(kChunk));
        if (s < 0 && r.problem.empty()) r.problem = std::string(e.name) + " returned status " + std::to_string(s);
        for (size_t j = 0; j < kChunk; ++j) {
            const double x = in[j], y = out[j];
            if (std::isnan(x)) {
                // Every function of one argument keeps a NaN.
                if (!std::isnan(y)) {
                    ++failures;
                    maxError = kInf;
                    worst = static_cast<uint32_t>(start + j);
                    worstResult = out[j];
                }
                continue;
            }
            bool needExact = true;
            if (d.approx && x != 0 && std::isfinite(x) && std::isfinite(y)) {
                const double a0 = d.approx(x);
                if (a0 != 0 && std::fabs(a0) < 0x1p128 * (1 - 0x1p-20)) {
                    const double ulp = std::ldexp(1.0, std::max(std::ilogb(a0) - 23, -149));
                    const double fast = std::fabs(y - a0) / ulp;
                    const bool exactFamily = r.bound == 0;
                    needExact = exactFamily ? fast != 0 : !(fast + margin <= maxError && fast + margin <= r.bound);
                }
            } else if (d.approx && std::isfinite(x) && x != 0 && std::isnan(y)) {
                // Outside the domain, where the approximation agrees.
                needExact = !std::isnan(d.approx(x));
            } else if (d.approx && std::isfinite(x) && x != 0 && std::isinf(y)) {
                // Beyond the range: right when the exact value rounds to
                // that infinity too.
                const double a0 = d.approx(x);
                needExact = !(std::fabs(a0) >= 0x1p128 * (1 + 0x1p-20) && std::signbit(a0) == std::signbit(y));
            }
            if (!needExact) continue;
            Sample smp;
            smp.in[0] = static_cast<uint32_t>(start + j);
            const double result[2] = {y, 0};
            const double err = judge.error(smp, result);
            if (!(err <= r.bound)) ++failures;
            if (err > maxError || (std::isnan(err) && !std::isnan(maxError))) {
                maxError = err;
                worst = static_cast<uint32_t>(start + j);
                worstResult = out[j];
            }
        }
        if (o.progress && (start / kChunk) % 64 == 63) o.progress(o.context, static_cast<double>(start + kChunk) / 0x1p32);
    }
    Sample smp;
    smp.in[0] = worst;
    const double result[2] = {worstResult, 0};
    judge.error(smp, result);
    r.samples = 1L << 32;
    r.maxError = maxError;
    r.failures = failures;
    r.worstInput = number(worst, true);
    r.worstResult = number(std::bit_cast<uint32_t>(worstResult), true);
    r.worstExact = judge.exactText();
    r.bits = correctBits(maxError, kBinary32);
    r.checked = r.problem.empty();
    r.pass = r.checked && failures == 0;
}

}  // namespace

}  // namespace orvo::oracle
