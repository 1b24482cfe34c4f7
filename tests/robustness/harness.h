// The robustness harness: what every exported function is held to, driven
// by the catalogue alone.  Values from a palette of ordinary numbers and
// specials, arrays placed against inaccessible pages, the caller's
// floating-point states, and faults turned into test failures.
#pragma once

#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "support/call.h"
#include "support/fpstate.h"

namespace orvo::robust {

using namespace orvo::test;

// ---- the catalogue's built part, with each function looked up once -------

struct Function {
    const CatalogueEntry* entry;
    void* address;
};

inline std::vector<Function> builtFunctions() {
    // Names are found at run time only; this one direct call keeps the
    // library among the program's needed libraries.
    if (!orvoGetLibVersion()) std::abort();
    std::vector<Function> out;
    for (const auto& e : kCatalogue)
        if (e.built) out.push_back({&e, findFunction(e.name)});
    return out;
}

inline orvoStatus invoke(const Function& fn, const CallArrays& a, int len) {
    switch (fn.entry->type) {
    case ElementType::F32: return callTyped<orvo32f>(*fn.entry, fn.address, a, len);
    case ElementType::F64: return callTyped<orvo64f>(*fn.entry, fn.address, a, len);
    case ElementType::C32: return callTyped<orvo32fc>(*fn.entry, fn.address, a, len);
    case ElementType::C64: return callTyped<orvo64fc>(*fn.entry, fn.address, a, len);
    }
    return -1;
}

inline bool familyIs(const CatalogueEntry& e, std::string_view family) { return family == e.family; }
inline bool levelIs(const CatalogueEntry& e, std::string_view level) { return level == e.level; }

// Real values that make up one element of an input array, and of all the
// inputs of an element together (the scalar of Powx counts as an input).
inline int slotsPerInputElement(const CatalogueEntry& e) { return inputBytes(e) / realBytes(e.type); }
inline int scalarSlots(const CatalogueEntry& e) {
    return e.shape == Shape::ScalarRight ? elementBytes(e.type) / realBytes(e.type) : 0;
}

// ---- the floating-point environment of a caller ---------------------------

constexpr uint32_t kMxcsrControlBits = 0xFFC0;  // DAZ, masks, RC, FZ
constexpr uint16_t kX87Extended = 0x037F, kX87Double = 0x027F, kX87Single = 0x007F;
constexpr uint16_t kX87Precisions[3] = {kX87Extended, kX87Double, kX87Single};

// The 16 states of rounding mode, flush-to-zero and denormals-are-zero, all
// exceptions masked.  State 0 is the default.
constexpr int kMxcsrStates = 16;
constexpr uint32_t mxcsrState(int k) {
    return kMxcsrDefault | static_cast<uint32_t>(k & 3) << 13 | (k & 4 ? kFz : 0u) | (k & 8 ? kDaz : 0u);
}
inline std::string describeMxcsr(uint32_t w) {
    static const char* const modes[] = {"nearest", "down", "up", "zero"};
    std::string s = modes[(w >> 13) & 3];
    if (w & kFz) s += "+FZ";
    if (w & kDaz) s += "+DAZ";
    return s;
}
inline std::string describeX87(uint16_t w) {
    switch (w & 0x0300) {
    case 0x0300: return "x87 64-bit";
    case 0x0200: return "x87 53-bit";
    default: return "x87 24-bit";
    }
}

// Whether the x87 register stack is empty, as the calling convention wants
// it at every return: a kernel on the x87 unit that leaves a value behind
// makes the caller's next x87 code overflow the stack.  (fxsave's abridged
// tag byte has a bit per register in use; reading it changes nothing.)
inline bool x87StackEmpty() {
    alignas(16) unsigned char area[512];
    __asm__ volatile("fxsave %0" : "=m"(area));
    return area[4] == 0;
}

struct FpState {
    uint32_t mxcsr;
    uint16_t x87;
    static FpState current() { return {test::mxcsr(), x87Control()}; }
    void apply() const {
        setX87Control(x87);
        setMxcsr(mxcsr);
    }
};

// Which guard a kernel's style puts up, and so which parts of the caller's
// state cannot reach its arithmetic.
enum class MxcsrForm { None, Full, Truncating, RoundingOnly };
enum class X87Form { None, Extended, Double };

inline MxcsrForm mxcsrForm(const CatalogueEntry& e) {
    switch (e.style) {
    case Style::Guarded:
    case Style::GuardedX87: return familyIs(e, "Modf") ? MxcsrForm::Truncating : MxcsrForm::Full;
    case Style::X87Round:
    case Style::Round: return MxcsrForm::RoundingOnly;
    default: return MxcsrForm::None;
    }
}
inline X87Form x87Form(const CatalogueEntry& e) {
    switch (e.style) {
    case Style::GuardedX87:
    case Style::X87:
    case Style::X87Round:
    case Style::Wrapper: return X87Form::Extended;
    case Style::X87Double: return X87Form::Double;
    default: return X87Form::None;
    }
}

// Whether the MXCSR guard loads a word of its own for a caller in state w
// (and so reloads the caller's whole word, sticky flags included, at exit).
inline bool mxcsrGuardActs(const CatalogueEntry& e, uint32_t w) {
    switch (mxcsrForm(e)) {
    case MxcsrForm::Full: return (w & 0xE040) != 0;
    case MxcsrForm::Truncating: return (w & 0xE040) != 0x6000;
    case MxcsrForm::RoundingOnly: return (w & 0xE000) != 0;
    case MxcsrForm::None: return false;
    }
    return false;
}

// Whether results under MXCSR state w must equal those under the default
// state: the guard replaces every control bit that arithmetic reads, or the
// state is the default.  The x87 precision never reaches a kernel's results:
// those that compute on the x87 unit set its precision themselves, and the
// others don't use it.
inline bool mxcsrCovered(const CatalogueEntry& e, uint32_t w) {
    switch (mxcsrForm(e)) {
    case MxcsrForm::Full:
    case MxcsrForm::Truncating: return true;
    case MxcsrForm::RoundingOnly: return (w & kDaz) == 0;
    case MxcsrForm::None: return (w & 0xE040) == 0;
    }
    return false;
}

// Families whose design lets an element's bits depend on its neighbours:
// the batched binary64 reciprocal of Inv and Div shares one divide among
// four elements, and the extended-precision Tan of binary64 one reciprocal
// between two; in Guarded kernels a special lane sends its whole block down
// the careful path, which for several families computes the other lanes by
// another formula (and in Erfc sets their statuses); Expm1 sends a whole
// block with one lane out of range to its general scalar path; and the
// real Sin, Cos, SinCos and Tan send every lane of a block with one large
// argument through the large-argument reduction.
inline bool dependsOnNeighbours(const CatalogueEntry& e) {
    if (e.style == Style::Guarded || e.style == Style::GuardedX87) return true;
    if (familyIs(e, "Expm1")) return true;
    const bool real = e.type == ElementType::F32 || e.type == ElementType::F64;
    if (real && (familyIs(e, "Sin") || familyIs(e, "Cos") || familyIs(e, "SinCos") || familyIs(e, "Tan"))) return true;
    if ((familyIs(e, "Inv") || familyIs(e, "Div")) && e.type == ElementType::F64 &&
        (levelIs(e, "A26") || levelIs(e, "A50")))
        return true;
    return false;
}

// ---- the palette: values every function meets at every position ----------

enum class Kind { Small, Moderate, Other };

struct PaletteValue {
    uint64_t bits;  // binary32 patterns in the low word
    Kind kind;
};

// Ordinary numbers in (0, 1) and in (1, 4), so that blocks of fast-path
// lanes run for functions with either domain, and the rest: negatives,
// thresholds of overflow and underflow, large arguments of the periodic
// functions, signed zeros, infinities, NaNs of both signs with payloads, a
// signalling NaN, denormals, the smallest and largest normals.
template <class T> std::vector<PaletteValue> paletteOf() {
    using B = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    std::vector<PaletteValue> p;
    auto value = [&](T v, Kind k) { p.push_back({std::bit_cast<B>(v), k}); };
    auto pattern = [&](uint64_t b, Kind k) { p.push_back({b, k}); };
    for (T v : {T(0.1), T(0.25), T(0.5), T(0.75), T(0.9), T(0.375), T(0.6), T(0.05)}) value(v, Kind::Small);
    for (T v : {T(1.1), T(1.5), T(2), T(2.5), T(3), T(1.75), T(1.25), T(3.7)}) value(v, Kind::Moderate);
    const bool single = sizeof(T) == 4;
    for (T v : {T(-0.4), T(-1.5), T(-2.75), T(-30.5), T(1), T(-1), T(10), T(100), T(-100), T(1e5), T(1e10),
                T(single ? 88.8 : 709.9), T(single ? -104 : -745.2), T(single ? 1e30 : 1e300),
                T(single ? -1e30 : -1e300), T(0), T(-0.0), std::numeric_limits<T>::infinity(),
                -std::numeric_limits<T>::infinity(), std::numeric_limits<T>::denorm_min(),
                -std::numeric_limits<T>::denorm_min() * 1000, std::numeric_limits<T>::min(),
                -std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), -std::numeric_limits<T>::max(),
                std::numeric_limits<T>::min() - std::numeric_limits<T>::denorm_min()})
        value(v, Kind::Other);
    if (single) {
        pattern(0x7FC12345, Kind::Other);  // quiet NaN with a payload
        pattern(0xFFC54321, Kind::Other);  // negative quiet NaN
        pattern(0x7F812345, Kind::Other);  // signalling NaN
    } else {
        pattern(0x7FF8123456789ABCull, Kind::Other);
        pattern(0xFFF80000ABCDEF01ull, Kind::Other);
        pattern(0x7FF0123456789ABCull, Kind::Other);
    }
    return p;
}

inline const std::vector<PaletteValue>& palette(ElementType t) {
    static const std::vector<PaletteValue> single = paletteOf<float>(), dual = paletteOf<double>();
    return realBytes(t) == 4 ? single : dual;
}

// ---- tuples: the values of all input slots of one element ------------------

// A function's element tuples: each names a palette value for every input
// slot.  Small and moderate tuples are all-ordinary; mixed tuples carry
// every palette value in every slot, plus pseudo-random combinations.
struct Tuples {
    int slots = 0;
    std::vector<std::vector<uint16_t>> all;  // small, then moderate, then mixed
    int small = 0, moderate = 0, mixed = 0;
    const std::vector<uint16_t>& smallTuple(int k) const { return all[k % small]; }
    const std::vector<uint16_t>& moderateTuple(int k) const { return all[small + k % moderate]; }
    int mixedIndex(int k) const { return small + moderate + k % mixed; }
};

inline uint32_t scramble(uint32_t x) {
    x ^= x >> 16;
    x *= 0x7FEB352Du;
    x ^= x >> 15;
    x *= 0x846CA68Bu;
    x ^= x >> 16;
    return x;
}

inline Tuples tuplesFor(const CatalogueEntry& e) {
    const auto& p = palette(e.type);
    std::vector<uint16_t> smalls, moderates;
    for (size_t i = 0; i < p.size(); ++i) {
        if (p[i].kind == Kind::Small) smalls.push_back(static_cast<uint16_t>(i));
        if (p[i].kind == Kind::Moderate) moderates.push_back(static_cast<uint16_t>(i));
    }
    Tuples t;
    t.slots = inputCount(e) * slotsPerInputElement(e) + scalarSlots(e);
    const int n = static_cast<int>(p.size());
    auto make = [&](auto pick) {
        std::vector<uint16_t> tuple(t.slots);
        for (int s = 0; s < t.slots; ++s) tuple[s] = pick(s);
        t.all.push_back(tuple);
    };
    for (int k = 0; k < 12; ++k) make([&](int s) { return smalls[scramble(k * 17 + s) % smalls.size()]; });
    for (int k = 0; k < 12; ++k) make([&](int s) { return moderates[scramble(k * 19 + s + 500) % moderates.size()]; });
    for (int k = 0; k < n; ++k) make([&](int s) { return static_cast<uint16_t>((k + 7 * s) % n); });
    for (int k = 0; k < 48; ++k) make([&](int s) { return static_cast<uint16_t>(scramble(k * 31 + s + 1000) % n); });
    // Specials against specials: two NaNs (whose payload wins), infinities
    // of both signs, signed zeros, a denormal, in the two inputs or in the
    // two parts of a complex element.
    std::vector<uint16_t> specials;
    for (int k = 0; k < n; ++k) {
        const uint64_t b = p[k].bits;
        const bool single = realBytes(e.type) == 4;
        const uint64_t magnitude = single ? b & 0x7FFFFFFF : b & 0x7FFFFFFFFFFFFFFFull;
        const uint64_t infinity = single ? 0x7F800000 : 0x7FF0000000000000ull;
        if (magnitude >= infinity || magnitude == 0 || magnitude == 1) specials.push_back(static_cast<uint16_t>(k));
    }
    const int per = slotsPerInputElement(e);
    if (t.slots > 1)
        for (uint16_t i : specials)
            for (uint16_t j : specials)
                make([&](int s) { return (inputCount(e) == 2 ? s >= per : (s & 1)) ? j : i; });
    t.small = 12;
    t.moderate = 12;
    t.mixed = static_cast<int>(t.all.size()) - 24;
    return t;
}

// How a call's elements are chosen from the tuples.
enum class Fill { Mixed, SparseSmall, SparseModerate };
constexpr Fill kFills[] = {Fill::Mixed, Fill::SparseSmall, Fill::SparseModerate};
inline const char* fillName(Fill f) {
    return f == Fill::Mixed ? "mixed" : f == Fill::SparseSmall ? "sparse-small" : "sparse-moderate";
}

// Tuple index of element i of a call of length len: mixed fills put any
// value anywhere; sparse fills are runs of ordinary values (long enough for
// whole fast blocks) broken by one mixed element that moves with len.
inline int tupleAt(const Tuples& t, Fill fill, int len, int i) {
    switch (fill) {
    case Fill::Mixed: return t.mixedIndex(static_cast<int>(scramble(i * 0x9E37u + len * 0x85EBu) % t.mixed));
    case Fill::SparseSmall:
        if (i % 23 == len % 23) return t.mixedIndex(i * 7 + len);
        return (i + len) % t.small;
    case Fill::SparseModerate:
        if (i % 37 == (len * 5) % 37) return t.mixedIndex(i * 11 + len * 3);
        return t.small + (i + 2 * len) % t.moderate;
    }
    return 0;
}

// Writes element i's input slots from tuple `tuple` into the input arrays.
inline void writeElement(const CatalogueEntry& e, const std::vector<uint16_t>& tuple, void* const (&in)[2], int i) {
    const auto& p = palette(e.type);
    const int rb = realBytes(e.type), per = slotsPerInputElement(e);
    for (int a = 0; a < inputCount(e); ++a)
        for (int s = 0; s < per; ++s) {
            const uint64_t bits = p[tuple[a * per + s]].bits;
            std::memcpy(static_cast<unsigned char*>(in[a]) + (static_cast<size_t>(i) * per + s) * rb, &bits, rb);
        }
}

// The scalar of a ScalarRight call, from the scalar slots of a tuple.
inline void writeScalar(const CatalogueEntry& e, const std::vector<uint16_t>& tuple, unsigned char* scalar) {
    const auto& p = palette(e.type);
    const int rb = realBytes(e.type), first = inputCount(e) * slotsPerInputElement(e);
    for (int s = 0; s < scalarSlots(e); ++s) std::memcpy(scalar + s * rb, &p[tuple[first + s]].bits, rb);
}

// ---- one element computed alone ------------------------------------------

struct Alone {
    unsigned char out[2][16];
    orvoStatus status;
};

// The results of tuples computed alone (length 1), per scalar tuple.
class AloneCache {
public:
    explicit AloneCache(const Function& fn, const Tuples& t) : fn_(fn), t_(t) {}
    const Alone& get(int tuple, int scalarTuple) {
        const uint64_t key = static_cast<uint64_t>(tuple) << 32 | static_cast<uint32_t>(scalarTuple);
        auto it = cache_.find(key);
        if (it != cache_.end()) return it->second;
        const CatalogueEntry& e = *fn_.entry;
        alignas(16) unsigned char in[2][16] = {}, scalar[16] = {};
        Alone r{};
        void* const ins[2] = {in[0], in[1]};
        writeElement(e, t_.all[tuple], ins, 0);
        writeScalar(e, t_.all[scalarTuple], scalar);
        CallArrays a;
        a.in[0] = in[0];
        if (inputCount(e) == 2) a.in[1] = in[1];
        a.out[0] = r.out[0];
        if (outputCount(e) == 2) a.out[1] = r.out[1];
        a.scalar = scalar;
        const FpState before = FpState::current();
        r.status = invoke(fn_, a, 1);
        const FpState after = FpState::current();
        if ((after.mxcsr & kMxcsrControlBits) != (before.mxcsr & kMxcsrControlBits) || after.x87 != before.x87) {
            stateChanged = true;
            before.apply();
        }
        ++calls;
        return cache_.emplace(key, r).first->second;
    }
    long calls = 0;
    bool stateChanged = false;  // a call alone left a control word changed

private:
    const Function& fn_;
    const Tuples& t_;
    std::unordered_map<uint64_t, Alone> cache_;
};

// ---- arrays against inaccessible pages ------------------------------------

enum class Side { End, Start };
inline const char* sideName(Side s) { return s == Side::End ? "ending at a guard page" : "starting after a guard page"; }

// [guard page][data pages][guard page]: an array placed to end exactly at
// the upper guard, or to start exactly at the end of the lower one.
class GuardedRegion {
public:
    explicit GuardedRegion(size_t maxBytes) {
        page_ = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        data_ = (maxBytes + page_ - 1) / page_ * page_;
        total_ = data_ + 2 * page_;
        void* p = mmap(nullptr, total_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p == MAP_FAILED) std::abort();
        base_ = static_cast<unsigned char*>(p);
        mprotect(base_, page_, PROT_NONE);
        mprotect(base_ + page_ + data_, page_, PROT_NONE);
    }
    ~GuardedRegion() { munmap(base_, total_); }
    GuardedRegion(const GuardedRegion&) = delete;
    GuardedRegion& operator=(const GuardedRegion&) = delete;

    unsigned char* place(size_t bytes, Side side, size_t startOffset = 0) const {
        return side == Side::End ? base_ + page_ + data_ - bytes : base_ + page_ + startOffset;
    }
    // -1: the address lies in the lower guard, +1: in the upper, 0: neither.
    int guardOf(uintptr_t a) const {
        const uintptr_t b = reinterpret_cast<uintptr_t>(base_);
        if (a >= b && a < b + page_) return -1;
        if (a >= b + page_ + data_ && a < b + total_) return 1;
        return 0;
    }

private:
    unsigned char* base_;
    size_t page_, data_, total_;
};

// ---- faults as failures ---------------------------------------------------

struct Fault {
    int signal = 0;
    uintptr_t address = 0;
};

namespace detail {
inline thread_local sigjmp_buf* activeJump = nullptr;
inline thread_local Fault lastFault;

inline void onFault(int sig, siginfo_t* info, void*) {
    if (!activeJump) {  // not ours: let it kill the process as it would have
        signal(sig, SIG_DFL);
        return;
    }
    lastFault = {sig, reinterpret_cast<uintptr_t>(info->si_addr)};
    siglongjmp(*activeJump, 1);
}

inline void installFaultHandlers() {
    static const bool installed = [] {
        struct sigaction sa {};
        sa.sa_sigaction = onFault;
        sa.sa_flags = SA_SIGINFO | SA_NODEFER;
        sigemptyset(&sa.sa_mask);
        sigaction(SIGSEGV, &sa, nullptr);
        sigaction(SIGBUS, &sa, nullptr);
        return true;
    }();
    (void)installed;
}
}  // namespace detail

// Runs f; a SIGSEGV or SIGBUS inside it comes back as a Fault, with the
// caller's floating-point state put back (the kernel may have died inside
// its guard).
template <class F> bool runCatchingFaults(F&& f, Fault& fault) {
    detail::installFaultHandlers();
    const FpState saved = FpState::current();
    sigjmp_buf jump;
    sigjmp_buf* const outer = detail::activeJump;
    if (sigsetjmp(jump, 1) == 0) {
        detail::activeJump = &jump;
        f();
        detail::activeJump = outer;
        return false;
    }
    detail::activeJump = outer;
    saved.apply();
    fault = detail::lastFault;
    return true;
}

// ---- comparing results ----------------------------------------------------

inline std::string hexBytes(const unsigned char* p, int n) {
    static const char digits[] = "0123456789abcdef";
    std::string s = "0x";
    for (int i = n - 1; i >= 0; --i) {  // little-endian: most significant first
        s += digits[p[i] >> 4];
        s += digits[p[i] & 15];
        if (i % 8 == 0 && i) s += '_';
    }
    return s;
}

// First element at which two output arrays differ, or -1.
inline int firstDifference(const unsigned char* a, const unsigned char* b, int len, int bytes) {
    if (len <= 0) return -1;
    if (std::memcmp(a, b, static_cast<size_t>(len) * bytes) == 0) return -1;
    for (int i = 0; i < len; ++i)
        if (std::memcmp(a + static_cast<size_t>(i) * bytes, b + static_cast<size_t>(i) * bytes, bytes)) return i;
    return -1;
}

// The input palette values of element i, for messages.
inline std::string describeTuple(const CatalogueEntry& e, const std::vector<uint16_t>& tuple) {
    const auto& p = palette(e.type);
    std::string s = "(";
    for (size_t k = 0; k < tuple.size(); ++k) {
        uint64_t b = p[tuple[k]].bits;
        if (k) s += ", ";
        s += hexBytes(reinterpret_cast<const unsigned char*>(&b), realBytes(e.type));
    }
    return s + ")";
}

}  // namespace orvo::robust
