// The caller's floating-point state: every built function under the 16
// MXCSR states of rounding mode, FZ and DAZ and the three x87 precisions.
// The control words always come back as they were and no sticky flag is
// cleared; where a guard acts, the flags come back exactly; where the guard
// (or the default state) covers the state, the results are the default
// state's bits.  And an unmasked exception traps inside the event raiser
// with the element's result already stored.
#include <elf.h>
#include <execinfo.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>
#include <ucontext.h>

#include <map>

#include "frame/blocked.h"
#include "robustness/harness.h"

using namespace orvo;
using namespace orvo::robust;

namespace {

const std::vector<Function>& functions() {
    static const std::vector<Function> f = builtFunctions();
    return f;
}

// The inputs of one call, in ordinary memory, and what it gave.
struct CallRun {
    std::vector<unsigned char> in[2], out[2];
    unsigned char scalar[16] = {};
    orvoStatus status = 0;
};

CallRun prepare(const CatalogueEntry& e, const Tuples& t, Fill fill, int len) {
    CallRun r;
    for (int a = 0; a < inputCount(e); ++a) r.in[a].resize(static_cast<size_t>(len) * inputBytes(e));
    for (int o = 0; o < outputCount(e); ++o) r.out[o].resize(static_cast<size_t>(len) * outputBytes(e));
    void* const in[2] = {r.in[0].data(), r.in[1].data()};
    for (int i = 0; i < len; ++i) writeElement(e, t.all[tupleAt(t, fill, len, i)], in, i);
    if (scalarSlots(e)) writeScalar(e, t.all[t.mixedIndex(len)], r.scalar);
    return r;
}

orvoStatus execute(const Function& fn, CallRun& r, int len) {
    CallArrays a;
    for (int k = 0; k < 2; ++k) {
        if (!r.in[k].empty()) a.in[k] = r.in[k].data();
        if (!r.out[k].empty()) a.out[k] = r.out[k].data();
    }
    a.scalar = r.scalar;
    return r.status = invoke(fn, a, len);
}

class FpEnvironment : public ::testing::TestWithParam<int> {};

}  // namespace

TEST_P(FpEnvironment, ControlWordsRestoredFlagsKeptResultsAsFarAsTheGuardCovers) {
    const Function& fn = functions()[GetParam()];
    const CatalogueEntry& e = *fn.entry;
    ASSERT_NE(fn.address, nullptr);
    const Tuples t = tuplesFor(e);
    constexpr int kLen = 67;  // blocks of 4, 8, 16 and a tail
    const FpState saved = FpState::current();
    long calls = 0;
    // The first failing state is reported; the others would mostly repeat it.
    for (Fill fill : {Fill::Mixed, Fill::SparseModerate}) {
        if (HasFailure()) break;
        CallRun reference = prepare(e, t, fill, kLen);
        FpState{kMxcsrDefault, kX87Extended}.apply();
        execute(fn, reference, kLen);
        saved.apply();
        for (int k = 0; k < kMxcsrStates && !HasFailure(); ++k) {
            for (uint16_t x87 : kX87Precisions) {
                for (uint32_t flags : {0u, kFlagsAll}) {
                    if (HasFailure()) break;
                    const uint32_t state = mxcsrState(k) | flags;
                    SCOPED_TRACE(std::string(e.name) + " under " + describeMxcsr(state) + (flags ? " with all flags set" : "") +
                                 ", " + describeX87(x87) + ", " + fillName(fill) + " values");
                    CallRun r = prepare(e, t, fill, kLen);
                    FpState{state, x87}.apply();
                    execute(fn, r, kLen);
                    const FpState after = FpState::current();
                    const bool stackEmpty = x87StackEmpty();
                    saved.apply();
                    ++calls;
                    EXPECT_EQ(after.x87, x87) << "x87 control word changed";
                    EXPECT_TRUE(stackEmpty) << "x87 register stack left in use";
                    EXPECT_EQ(after.mxcsr & kMxcsrControlBits, state & kMxcsrControlBits) << "MXCSR control bits changed";
                    EXPECT_EQ(after.mxcsr & flags, flags) << "a sticky flag was cleared";
                    if (mxcsrGuardActs(e, state)) {
                        EXPECT_EQ(after.mxcsr, state) << "the guard acted, so the caller's flags must come back as they were";
                    }
                    if (!mxcsrCovered(e, state)) continue;
                    EXPECT_EQ(r.status, reference.status) << "status differs from the default state's";
                    for (int o = 0; o < outputCount(e); ++o) {
                        const int i = firstDifference(r.out[o].data(), reference.out[o].data(), kLen, outputBytes(e));
                        if (i >= 0)
                            ADD_FAILURE() << "output " << o + 1 << " element " << i << " is "
                                          << hexBytes(r.out[o].data() + static_cast<size_t>(i) * outputBytes(e), outputBytes(e))
                                          << ", under the default state "
                                          << hexBytes(reference.out[o].data() + static_cast<size_t>(i) * outputBytes(e), outputBytes(e));
                    }
                }
            }
        }
    }
    std::printf("[ checked  ] %s: %ld calls, %d MXCSR states x 3 x87 precisions\n", e.name, calls, kMxcsrStates);
}

INSTANTIATE_TEST_SUITE_P(Built, FpEnvironment, ::testing::Range(0, static_cast<int>(functions().size())),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return std::string(functions()[info.param].entry->name);
                         });

// ---- unmasked exceptions ---------------------------------------------------

namespace {

// Traps are recorded and stepped over: the handler masks the exception in
// the interrupted context and sets the trap flag; after that one
// instruction the SIGTRAP handler unmasks it again.  So every trap of a
// call is seen, and the call still runs to its end.
struct Trap {
    int code;                        // FPE_FLTOVF and kin
    std::vector<void*> frames;       // from the faulting instruction outwards
    std::vector<unsigned char> dst;  // the destination as it was at the trap
};

struct TrapWatch {
    uint32_t unmasked = 0;  // exception mask bits cleared by the test
    const unsigned char* dst = nullptr;
    size_t dstBytes = 0;
    std::vector<Trap> traps;
};
TrapWatch* watch = nullptr;

constexpr unsigned long long kTrapFlag = 0x100;

void onFpe(int, siginfo_t* info, void* context) {
    auto* uc = static_cast<ucontext_t*>(context);
    Trap t;
    t.code = info->si_code;
    void* frames[16];
    const int n = backtrace(frames, 16);
    // Frames 0 and 1 are this handler and the signal trampoline.
    t.frames.assign(frames + std::min(n, 2), frames + n);
    t.frames.insert(t.frames.begin(), reinterpret_cast<void*>(uc->uc_mcontext.gregs[REG_RIP]));
    t.dst.assign(watch->dst, watch->dst + watch->dstBytes);
    watch->traps.push_back(std::move(t));
    uc->uc_mcontext.fpregs->mxcsr |= watch->unmasked;
    uc->uc_mcontext.gregs[REG_EFL] |= kTrapFlag;
}

void onStep(int, siginfo_t*, void* context) {
    auto* uc = static_cast<ucontext_t*>(context);
    uc->uc_mcontext.gregs[REG_EFL] &= ~kTrapFlag;
    uc->uc_mcontext.fpregs->mxcsr &= ~watch->unmasked;
}

// The name of the function that holds a code address, from the symbol table
// of the file it was loaded from (the raisers are hidden symbols).
std::string functionAt(void* pc) {
    static std::map<std::string, std::vector<unsigned char>> files;
    Dl_info info;
    if (!dladdr(pc, &info) || !info.dli_fname) return "";
    std::string path = info.dli_fname;
    if (path.empty() || access(path.c_str(), R_OK) != 0) path = "/proc/self/exe";
    auto& image = files[path];
    if (image.empty()) {
        const int fd = open(path.c_str(), O_RDONLY);
        if (fd < 0) return "";
        struct stat st;
        fstat(fd, &st);
        image.resize(st.st_size);
        if (read(fd, image.data(), image.size()) != static_cast<ssize_t>(image.size())) image.clear();
        close(fd);
        if (image.empty()) return "";
    }
    const auto* eh = reinterpret_cast<const Elf64_Ehdr*>(image.data());
    const uintptr_t offset = reinterpret_cast<uintptr_t>(pc) - (eh->e_type == ET_DYN ? reinterpret_cast<uintptr_t>(info.dli_fbase) : 0);
    const auto* sections = reinterpret_cast<const Elf64_Shdr*>(image.data() + eh->e_shoff);
    for (int s = 0; s < eh->e_shnum; ++s) {
        if (sections[s].sh_type != SHT_SYMTAB) continue;
        const auto* symbols = reinterpret_cast<const Elf64_Sym*>(image.data() + sections[s].sh_offset);
        const char* names = reinterpret_cast<const char*>(image.data() + sections[sections[s].sh_link].sh_offset);
        for (size_t k = 0; k < sections[s].sh_size / sizeof(Elf64_Sym); ++k) {
            const Elf64_Sym& sym = symbols[k];
            if (ELF64_ST_TYPE(sym.st_info) == STT_FUNC && offset >= sym.st_value && offset < sym.st_value + sym.st_size)
                return names + sym.st_name;
        }
    }
    return "";
}

// Whether a trap happened inside an event raiser: the faulting instruction
// lies in one, or in a helper that one called.
bool insideRaiser(const Trap& t) {
    for (size_t k = 0; k < t.frames.size() && k < 3; ++k)
        if (functionAt(t.frames[k]).find("FpEventRaiser") != std::string::npos) return true;
    return false;
}

struct StatusException {
    orvoStatus status;
    uint32_t maskBit;  // MXCSR exception mask
    int code;          // si_code of its trap
};
constexpr StatusException kStatusExceptions[] = {
    {orvoWarnDomain, 0x0080, FPE_FLTINV},
    {orvoWarnSingularity, 0x0200, FPE_FLTDIV},
    {orvoWarnOverflow, 0x0400, FPE_FLTOVF},
    {orvoWarnUnderflow, 0x0800, FPE_FLTUND},
};

// Runs f with one exception unmasked, recording each trap with a copy of
// the destination at that moment.
template <class F> std::vector<Trap> watchTraps(uint32_t maskBit, const void* dst, size_t dstBytes, F&& f) {
    static const bool installed = [] {
        void* warm[2];
        backtrace(warm, 2);  // loads the unwinder before any handler needs it
        struct sigaction sa {};
        sigemptyset(&sa.sa_mask);
        sa.sa_flags = SA_SIGINFO;
        sa.sa_sigaction = onFpe;
        sigaction(SIGFPE, &sa, nullptr);
        sa.sa_sigaction = onStep;
        sigaction(SIGTRAP, &sa, nullptr);
        return true;
    }();
    (void)installed;
    TrapWatch w;
    w.unmasked = maskBit;
    w.dst = static_cast<const unsigned char*>(dst);
    w.dstBytes = dstBytes;
    watch = &w;
    const FpState saved = FpState::current();
    setMxcsr(kMxcsrDefault & ~maskBit);
    f();
    saved.apply();
    watch = nullptr;
    return std::move(w.traps);
}

// A test kernel on the Blocked skeleton whose flagged lanes get their
// value without arithmetic, so the only exceptions of a call are those the
// raiser makes: |x| above 2^20 is flagged; 2^21 overflows, -2^21
// underflows, 2^22 is a domain error, -2^22 a singularity, anything else
// flagged gets 7 with status 0.
struct RaisingKernel {
    using T = float;
    static constexpr int kBlock = 16;
    template <class V> static V eval(V x) { return x * simd::constant<V>(0x3F000000); }
    template <class I> static auto special(I bits) {
        return simd::gtSigned(bits & simd::bitsConstant<float>(0x7FFFFFFF), 0x49800000);
    }
    static orvoStatus fixup(const float* in, float* out) {
        const uint32_t b = std::bit_cast<uint32_t>(*in);
        struct { uint32_t input, result; orvoStatus status; } const cases[] = {
            {0x4A000000, 0x7F800000, orvoWarnOverflow}, {0xCA000000, 0x80000000, orvoWarnUnderflow},
            {0x4A800000, 0x7FC00000, orvoWarnDomain},   {0xCA800000, 0xFF800000, orvoWarnSingularity}};
        for (const auto& c : cases)
            if (b == c.input) {
                *out = std::bit_cast<float>(c.result);
                return c.status;
            }
        *out = 7.0f;
        return orvoOk;
    }
};

}  // namespace

TEST(UnmaskedException, TrapsInsideTheRaiserWithTheResultAlreadyInDst) {
    const float inputs[] = {0x1p21f, -0x1p21f, 0x1p22f, -0x1p22f};
    const orvoStatus statuses[] = {orvoWarnOverflow, orvoWarnUnderflow, orvoWarnDomain, orvoWarnSingularity};
    constexpr int kLen = 37;
    for (int c = 0; c < 4; ++c) {
        const StatusException* se = nullptr;
        for (const auto& s : kStatusExceptions)
            if (s.status == statuses[c]) se = &s;
        for (int pos : {5, 16, 31, 36}) {  // inside blocks, at their edges, in the tail
            SCOPED_TRACE("status " + std::to_string(se->status) + " at element " + std::to_string(pos));
            std::vector<float> src(kLen), dst(kLen, -1.0f), masked(kLen);
            for (int i = 0; i < kLen; ++i) src[i] = 0.25f * i;
            src[pos] = inputs[c];
            src[(pos + 9) % kLen] = 0x1p23f;  // flagged, status 0: no event
            ASSERT_EQ(runBlocked<RaisingKernel>(src.data(), masked.data(), kLen), se->status);
            orvoStatus status = 0;
            const auto traps = watchTraps(se->maskBit, dst.data(), kLen * sizeof(float),
                                          [&] { status = runBlocked<RaisingKernel>(src.data(), dst.data(), kLen); });
            EXPECT_EQ(status, se->status);
            EXPECT_EQ(std::memcmp(dst.data(), masked.data(), kLen * sizeof(float)), 0) << "results differ from the masked run";
            ASSERT_EQ(traps.size(), 1u) << "one trap: the raiser's, for the one element with a status";
            EXPECT_EQ(traps[0].code, se->code);
            EXPECT_TRUE(insideRaiser(traps[0])) << "trapped in " << functionAt(traps[0].frames[0]);
            float atTrap;
            std::memcpy(&atTrap, traps[0].dst.data() + pos * sizeof(float), sizeof(float));
            EXPECT_EQ(std::bit_cast<uint32_t>(atTrap), std::bit_cast<uint32_t>(masked[pos]))
                << "the element's result was not yet in dst when the raiser trapped";
        }
    }
}

// The same for every built function that reports a status: for each
// status one of its palette values gives alone, that value in a block and
// in the tail among quiet values.  Kernels may raise the exception in their
// own arithmetic before the raiser does; every trap inside the raiser must
// find the element's final value in dst (the first destination), and
// Blocked kernels trap there for each element with the status.
TEST(UnmaskedException, BuiltFunctionsWithStatusesTrapInTheirRaiser) {
    int checked = 0;
    for (const Function& fn : functions()) {
        const CatalogueEntry& e = *fn.entry;
        const Tuples t = tuplesFor(e);
        AloneCache alone(fn, t);
        const int scalar = scalarSlots(e) ? t.mixedIndex(0) : 0;
        // A quiet tuple: status 0 and no trap of any of the four exceptions alone.
        int quiet = -1;
        for (int k = 0; k < t.small + t.moderate && quiet < 0; ++k) {
            if (alone.get(k, scalar).status != orvoOk) continue;
            CallRun r = prepare(e, t, Fill::SparseSmall, 1);
            void* const in[2] = {r.in[0].data(), r.in[1].data()};
            writeElement(e, t.all[k], in, 0);
            bool trapped = false;
            for (const auto& se : kStatusExceptions)
                trapped |= !watchTraps(se.maskBit, r.out[0].data(), r.out[0].size(), [&] { execute(fn, r, 1); }).empty();
            if (!trapped) quiet = k;
        }
        if (quiet < 0) continue;
        std::map<orvoStatus, int> firstTuple;
        for (int k = 0; k < static_cast<int>(t.all.size()); ++k) {
            const orvoStatus s = alone.get(k, scalar).status;
            if (s > 0 && !firstTuple.count(s)) firstTuple[s] = k;
        }
        for (const auto& [status, tuple] : firstTuple) {
            const StatusException* se = nullptr;
            for (const auto& s : kStatusExceptions)
                if (s.status == status) se = &s;
            if (!se) continue;
            constexpr int kLen = 37;
            for (int pos : {21, 36}) {
                SCOPED_TRACE(std::string(e.name) + ": status " + std::to_string(status) + " at element " + std::to_string(pos));
                CallRun masked = prepare(e, t, Fill::SparseSmall, kLen);
                void* const in[2] = {masked.in[0].data(), masked.in[1].data()};
                for (int i = 0; i < kLen; ++i) writeElement(e, t.all[i == pos ? tuple : quiet], in, i);
                CallRun trapping = masked;
                ASSERT_EQ(execute(fn, masked, kLen), status);
                const size_t bytes = outputBytes(e);
                const auto traps = watchTraps(se->maskBit, trapping.out[0].data(), trapping.out[0].size(),
                                              [&] { execute(fn, trapping, kLen); });
                ++checked;
                EXPECT_EQ(trapping.status, status);
                int inRaiser = 0;
                for (const Trap& trap : traps) {
                    if (!insideRaiser(trap)) continue;
                    ++inRaiser;
                    EXPECT_EQ(trap.code, se->code);
                    EXPECT_EQ(std::memcmp(trap.dst.data() + pos * bytes, masked.out[0].data() + pos * bytes, bytes), 0)
                        << "the element's result was not yet in dst when the raiser trapped";
                }
                if (e.style == Style::Blocked) {
                    EXPECT_EQ(inRaiser, 1) << "traps: " << traps.size();
                }
            }
        }
    }
    std::printf("[ checked  ] %d calls of built functions with a status under an unmasked exception\n", checked);
}
