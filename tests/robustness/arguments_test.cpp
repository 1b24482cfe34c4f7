// Argument checks of every built function: the status its style's check
// order gives, nothing written, sources untouched, and the floating-point
// state untouched, sticky flags included.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "robustness/harness.h"

using namespace orvo;
using namespace orvo::robust;

namespace {

constexpr unsigned char kCanary = 0xA5, kSource = 0x3C;
constexpr int kBytes = 256;

struct Buffers {
    std::vector<unsigned char> in[2], out[2], scalar;
    Buffers() {
        for (auto& b : in) b.assign(kBytes, kSource);
        for (auto& b : out) b.assign(kBytes, kCanary);
        scalar.assign(16, 0);
    }
    CallArrays arrays(const CatalogueEntry& e) {
        CallArrays a;
        a.in[0] = in[0].data();
        if (inputCount(e) == 2) a.in[1] = in[1].data();
        a.out[0] = out[0].data();
        if (outputCount(e) == 2) a.out[1] = out[1].data();
        a.scalar = scalar.data();
        return a;
    }
    bool untouched() const {
        for (const auto& b : out)
            for (unsigned char c : b)
                if (c != kCanary) return false;
        for (const auto& b : in)
            for (unsigned char c : b)
                if (c != kSource) return false;
        return true;
    }
};

// Every way to make one pointer argument null, and all of them at once.
std::vector<CallArrays> withNulls(const CatalogueEntry& e, CallArrays a) {
    std::vector<CallArrays> out;
    for (int i = 0; i < inputCount(e); ++i) {
        CallArrays b = a;
        b.in[i] = nullptr;
        out.push_back(b);
    }
    for (int i = 0; i < outputCount(e); ++i) {
        CallArrays b = a;
        b.out[i] = nullptr;
        out.push_back(b);
    }
    CallArrays none;
    none.scalar = a.scalar;
    out.push_back(none);
    return out;
}

// States no kernel would choose: a distinctive set of sticky flags with a
// directed rounding mode, DAZ and FZ; and every exception unmasked with no
// flag set, where any arithmetic that raised a flag would trap.  Any write
// to MXCSR or the x87 control word shows.
constexpr uint32_t kOddMxcsr = kMxcsrDefault | kRoundUp | kDaz | kFz | kFlagDenormal | kFlagInexact | kFlagUnderflow;
constexpr uint32_t kUnmasked = kRoundDown;
constexpr uint16_t kOddX87[] = {0x007F, 0x0E72};  // 24-bit precision; 53-bit toward zero with unmasked invalid and zero-divide

const std::vector<Function>& functions() {
    static const std::vector<Function> f = builtFunctions();
    return f;
}

class ArgumentChecks : public ::testing::TestWithParam<int> {};

}  // namespace

TEST_P(ArgumentChecks, StatusByCheckOrderNothingWrittenStateUntouched) {
    const Function& fn = functions()[GetParam()];
    const CatalogueEntry& e = *fn.entry;
    ASSERT_NE(fn.address, nullptr) << e.name << " is not exported";
    const FpState saved = FpState::current();
    Buffers buf;
    const CallArrays good = buf.arrays(e);
    const orvoStatus sizeAndNull = e.checks == Checks::LenFirst ? orvoErrSize : orvoErrNullPtr;
    int calls = 0;
    for (uint32_t state : {kOddMxcsr, kUnmasked}) {
        for (uint16_t x87 : kOddX87) {
            SCOPED_TRACE(describeMxcsr(state) + ", " + describeX87(x87));
            orvoStatus got[64];
            int n = 0;
            FpState{state, x87}.apply();
            for (int len : {0, -1, -7, INT_MIN}) {
                got[n++] = invoke(fn, good, len);
                for (const CallArrays& bad : withNulls(e, good)) got[n++] = invoke(fn, bad, len);
            }
            for (const CallArrays& bad : withNulls(e, good)) got[n++] = invoke(fn, bad, 1);
            const FpState after = FpState::current();
            saved.apply();
            calls += n;
            EXPECT_EQ(after.mxcsr, state) << "MXCSR after a failed call";
            EXPECT_EQ(after.x87, x87) << "x87 control word after a failed call";

            n = 0;
            const int nulls = static_cast<int>(withNulls(e, good).size());
            for (int len : {0, -1, -7, INT_MIN}) {
                EXPECT_EQ(got[n++], orvoErrSize) << "len " << len;
                for (int k = 0; k < nulls; ++k) EXPECT_EQ(got[n++], sizeAndNull) << "len " << len << " and null pointer case " << k;
            }
            for (int k = 0; k < nulls; ++k) EXPECT_EQ(got[n++], orvoErrNullPtr) << "len 1 and null pointer case " << k;
            EXPECT_TRUE(buf.untouched()) << "a failed call wrote an array";
        }
    }
    std::printf("[ checked  ] %s: %d calls\n", e.name, calls);
}

INSTANTIATE_TEST_SUITE_P(Built, ArgumentChecks, ::testing::Range(0, static_cast<int>(functions().size())),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return std::string(functions()[info.param].entry->name);
                         });
