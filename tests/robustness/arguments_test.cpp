// Argument checks of every built function: the status its style's check
// order gives, nothing written, and the floating-point state untouched.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "support/call.h"
#include "support/fpstate.h"

using namespace orvo;
using namespace orvo::test;

namespace {

constexpr unsigned char kCanary = 0xA5;
constexpr int kBytes = 256;

struct Buffers {
    std::vector<unsigned char> in[2], out[2], scalar;
    Buffers() {
        for (auto& b : in) b.assign(kBytes, 0x3C);
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
        return true;
    }
};

// Every way to make one pointer argument null.
std::vector<CallArrays> withOneNull(const CatalogueEntry& e, CallArrays a) {
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
    return out;
}

// A state no kernel would choose, with a distinctive set of sticky flags, so
// any write to MXCSR or the x87 control word shows.
constexpr uint32_t kOddMxcsr = kMxcsrDefault | kRoundUp | kDaz | kFlagDenormal | kFlagInexact;
constexpr uint16_t kOddX87 = 0x007F;  // 24-bit precision, nearest, all masked

}  // namespace

TEST(ArgumentChecks, EveryBuiltFunction) {
    const uint16_t savedX87 = x87Control();
    int checked = 0;
    for (const auto& e : kCatalogue) {
        if (!e.built) continue;
        SCOPED_TRACE(e.name);
        ++checked;
        Buffers buf;
        const CallArrays good = buf.arrays(e);
        const orvoStatus sizeAndNull = e.checks == Checks::LenFirst ? orvoErrSize : orvoErrNullPtr;
        setX87Control(kOddX87);
        {
            ScopedMxcsr state(kOddMxcsr);
            for (int len : {0, -1, -7, INT_MIN}) {
                EXPECT_EQ(call(e, good, len), orvoErrSize) << "len " << len;
                for (const CallArrays& bad : withOneNull(e, good)) {
                    EXPECT_EQ(call(e, bad, len), sizeAndNull) << "len " << len << " and a null pointer";
                }
            }
            for (const CallArrays& bad : withOneNull(e, good)) EXPECT_EQ(call(e, bad, 1), orvoErrNullPtr);
            EXPECT_EQ(mxcsr(), kOddMxcsr);
        }
        EXPECT_EQ(x87Control(), kOddX87);
        setX87Control(savedX87);
        EXPECT_TRUE(buf.untouched()) << "a failed call wrote its destination";
    }
    EXPECT_GT(checked, 0);
}
