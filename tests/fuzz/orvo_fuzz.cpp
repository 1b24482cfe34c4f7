// libFuzzer target over every built function.  The input chooses the
// function, the length, where the arrays sit against inaccessible pages,
// the caller's MXCSR state and x87 precision, and the raw bit patterns of
// the inputs.  A call runs out of place and in place; any touch outside
// the arrays crashes on a guard page, and every broken promise below
// aborts with a message, which libFuzzer keeps as a crash:
//   sources unchanged; control words back, no sticky flag cleared, and the
//   caller's flags back exactly where a guard acted; in-place bits and
//   status equal to out of place; each element's bits those it gets alone,
//   and the status the last non-zero one of the elements alone (not for the
//   families whose blocks may take a path set by a neighbour).
//
// Input: name index (2 bytes), length (2), placement (1), state (1), then
// the bytes of the inputs and the scalar, repeated as needed.
#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include "robustness/harness.h"

using namespace orvo;
using namespace orvo::robust;

namespace {

constexpr int kMaxLength = 300;

[[noreturn]] void fail(const CatalogueEntry& e, int len, const char* format, ...) {
    std::fprintf(stderr, "orvo_fuzz: %s, len %d: ", e.name, len);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
    std::abort();
}

const Function* chosen(unsigned index) {
    static const std::vector<Function> built = builtFunctions();
    static std::vector<int> byCatalogue;  // catalogue position -> next built function
    if (built.empty()) return nullptr;
    if (byCatalogue.empty()) {
        for (int k = 0; k < kCatalogueSize; ++k) {
            int pick = 0;
            for (size_t b = 0; b < built.size(); ++b)
                if (built[b].entry >= &kCatalogue[k]) { pick = static_cast<int>(b); break; }
            byCatalogue.push_back(pick);
        }
    }
    return &built[byCatalogue[index % kCatalogueSize]];
}

struct Placed {
    unsigned char* at[4] = {};  // src1, src2, dst1, dst2
    CallArrays arrays;
};

GuardedRegion& region(int role) {
    static GuardedRegion regions[4] = {GuardedRegion(kMaxLength * 16), GuardedRegion(kMaxLength * 16),
                                       GuardedRegion(kMaxLength * 16), GuardedRegion(kMaxLength * 16)};
    return regions[role];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 6) return 0;
    const Function* fn = chosen(data[0] | data[1] << 8);
    if (!fn || !fn->address) return 0;
    const CatalogueEntry& e = *fn->entry;
    const int rawLength = data[2] | data[3] << 8;
    const int len = rawLength >= 0xFFF0 ? rawLength - 0x10000 : rawLength % (kMaxLength + 1);  // a few negatives
    const Side side = data[4] & 1 ? Side::Start : Side::End;
    const size_t startOffset = side == Side::Start ? (data[4] >> 1 & 7) * realBytes(e.type) % elementBytes(e.type) : 0;
    const uint32_t state = mxcsrState(data[5] & 15) | (data[5] & 0x40 ? kFlagsAll : 0u);
    const uint16_t x87 = kX87Precisions[(data[5] >> 4 & 3) % 3];
    const uint8_t* bytes = data + 6;
    const size_t nBytes = size - 6;

    const int nIn = inputCount(e), nOut = outputCount(e);
    const int inBytes = inputBytes(e), outBytes = outputBytes(e);
    const size_t count = len > 0 ? static_cast<size_t>(len) : 0;
    std::vector<unsigned char> image[2], scalar(16, 0);
    size_t cursor = 0;
    auto next = [&] { return nBytes ? bytes[cursor++ % nBytes] : 0; };
    for (int a = 0; a < nIn; ++a) {
        image[a].resize(count * inBytes);
        for (auto& b : image[a]) b = next();
    }
    for (int k = 0; k < elementBytes(e.type); ++k) scalar[k] = next();

    const FpState saved = FpState::current(), caller{state, x87};
    const bool independent = !dependsOnNeighbours(e);

    // One call with the arrays in the guarded regions; aliasOut/aliasIn put
    // that destination on that source.
    auto run = [&](int aliasOut, int aliasIn, std::vector<unsigned char> (&out)[2]) {
        Placed p;
        for (int a = 0; a < nIn; ++a) {
            p.at[a] = region(a).place(count * inBytes, side, startOffset);
            if (count) std::memcpy(p.at[a], image[a].data(), image[a].size());
            p.arrays.in[a] = p.at[a];
        }
        for (int o = 0; o < nOut; ++o) {
            p.at[2 + o] = o == aliasOut ? p.at[aliasIn] : region(2 + o).place(count * outBytes, side, startOffset);
            p.arrays.out[o] = p.at[2 + o];
        }
        p.arrays.scalar = scalar.data();
        caller.apply();
        const orvoStatus status = invoke(*fn, p.arrays, len);
        const FpState after = FpState::current();
        if (!x87StackEmpty()) fail(e, len, "x87 register stack left in use");
        saved.apply();
        if ((after.mxcsr & kMxcsrControlBits) != (state & kMxcsrControlBits))
            fail(e, len, "MXCSR control changed from %#x to %#x", state, after.mxcsr);
        if (after.x87 != x87) fail(e, len, "x87 control word changed from %#x to %#x", x87, after.x87);
        if ((after.mxcsr & state & kFlagsAll) != (state & kFlagsAll)) fail(e, len, "a sticky flag was cleared");
        if (mxcsrGuardActs(e, state) && after.mxcsr != state)
            fail(e, len, "the guard acted but MXCSR came back as %#x, not %#x", after.mxcsr, state);
        for (int a = 0; a < nIn; ++a)
            if (a != aliasIn && count && std::memcmp(p.at[a], image[a].data(), image[a].size()))
                fail(e, len, "source %d changed", a + 1);
        for (int o = 0; o < nOut; ++o) out[o].assign(p.at[2 + o], p.at[2 + o] + count * outBytes);
        return status;
    };

    std::vector<unsigned char> reference[2];
    const orvoStatus status = run(-1, -1, reference);
    if (len < 1) {
        if (status != orvoErrSize) fail(e, len, "status %d for a length below 1", status);
        return 0;
    }
    if (inBytes == outBytes || e.shape == Shape::ComplexToReal) {
        for (int o = 0; o < nOut; ++o)
            for (int a = 0; a < nIn; ++a) {
                std::vector<unsigned char> out[2];
                const orvoStatus s = run(o, a, out);
                if (s != status) fail(e, len, "in place (dst%d = src%d): status %d, out of place %d", o + 1, a + 1, s, status);
                for (int q = 0; q < nOut; ++q) {
                    const int i = firstDifference(out[q].data(), reference[q].data(), len, outBytes);
                    if (i >= 0) fail(e, len, "in place (dst%d = src%d): dst%d[%d] differs from out of place", o + 1, a + 1, q + 1, i);
                }
            }
    }
    if (!independent) return 0;

    // Each element alone, under the same state.
    orvoStatus last = orvoOk;
    for (int i = 0; i < len; ++i) {
        alignas(16) unsigned char in[2][16], out[2][16];
        CallArrays a;
        for (int k = 0; k < nIn; ++k) {
            std::memcpy(in[k], image[k].data() + static_cast<size_t>(i) * inBytes, inBytes);
            a.in[k] = in[k];
        }
        for (int o = 0; o < nOut; ++o) a.out[o] = out[o];
        a.scalar = scalar.data();
        caller.apply();
        const orvoStatus s = invoke(*fn, a, 1);
        saved.apply();
        if (s != orvoOk) last = s;
        for (int o = 0; o < nOut; ++o)
            if (std::memcmp(out[o], reference[o].data() + static_cast<size_t>(i) * outBytes, outBytes))
                fail(e, len, "dst%d[%d] is %s in the array, %s alone", o + 1, i,
                     hexBytes(reference[o].data() + static_cast<size_t>(i) * outBytes, outBytes).c_str(),
                     hexBytes(out[o], outBytes).c_str());
    }
    if (last != status) fail(e, len, "status %d, but the last non-zero status of the elements alone is %d", status, last);
    return 0;
}
