// Memory bounds of every built function: each array placed once ending
// exactly at an inaccessible page and once starting right after one, at
// every short length and across block sizes, with ordinary values and
// specials at every position.  A touch outside the caller's arrays fails
// with the function, length, array and side; sources stay as they were;
// in-place calls and both placements give the same bits, and an element
// gives the bits it gives alone, with the last status of its elements.
#include <gtest/gtest.h>

#include <sstream>

#include "robustness/harness.h"

using namespace orvo;
using namespace orvo::robust;

namespace {

constexpr int kMaxLength = 4097;

std::vector<int> lengths() {
    std::vector<int> v;
    for (int n = 0; n <= 80; ++n) v.push_back(n);
    for (int n : {127, 128, 129, 255, 256, 257, 1000, kMaxLength}) v.push_back(n);
    return v;
}

const std::vector<Function>& functions() {
    static const std::vector<Function> f = builtFunctions();
    return f;
}

// One array slot of a call: src1, src2, dst1, dst2.
enum Role { Src1, Src2, Dst1, Dst2 };
const char* const kRoleNames[] = {"src1", "src2", "dst1", "dst2"};

// A call's placement: every array against the guard pages of its own
// region on the same side; an in-place call puts one destination on one
// source.
struct Layout {
    Side side;
    int aliasOut = -1, aliasIn = -1;  // dst[aliasOut] == src[aliasIn]
};

struct Call {
    CallArrays arrays;
    unsigned char* at[4] = {};  // where each role's array starts
    int bytes[4] = {};          // element size of each role
};

class BoundsChecker {
public:
    explicit BoundsChecker(const Function& fn)
        : fn_(fn), e_(*fn.entry), tuples_(tuplesFor(e_)), alone_(fn, tuples_),
          independent_(!dependsOnNeighbours(e_)) {}

    long calls() const { return calls_ + alone_.calls; }
    bool aloneChangedState() const { return alone_.stateChanged; }

    // False after a failure: the rest of this function's cases would mostly
    // repeat it.
    bool check(int len, Fill fill) {
        const int nIn = inputCount(e_), nOut = outputCount(e_);
        const int inBytes = inputBytes(e_), outBytes = outputBytes(e_);
        const int scalarTuple = scalarSlots(e_) ? tuples_.mixedIndex(len * 3 + static_cast<int>(fill)) : 0;

        // The inputs' images, and the expected results element by element.
        std::vector<unsigned char> image[2];
        for (int a = 0; a < nIn; ++a) image[a].resize(static_cast<size_t>(len) * inBytes);
        std::vector<int> tupleOf(len);
        void* const imagePtr[2] = {image[0].data(), image[1].data()};
        for (int i = 0; i < len; ++i) {
            tupleOf[i] = tupleAt(tuples_, fill, len, i);
            writeElement(e_, tuples_.all[tupleOf[i]], imagePtr, i);
        }
        unsigned char scalar[16] = {};
        writeScalar(e_, tuples_.all[scalarTuple], scalar);

        std::vector<unsigned char> expected[2];
        orvoStatus expectedStatus = len < 1 ? orvoErrSize : orvoOk;
        if (independent_ && len > 0) {
            for (int o = 0; o < nOut; ++o) expected[o].resize(static_cast<size_t>(len) * outBytes);
            for (int i = 0; i < len; ++i) {
                const Alone& r = alone_.get(tupleOf[i], scalarTuple);
                for (int o = 0; o < nOut; ++o)
                    std::memcpy(expected[o].data() + static_cast<size_t>(i) * outBytes, r.out[o], outBytes);
                if (r.status != orvoOk) expectedStatus = r.status;
            }
        }

        std::vector<Layout> layouts = {{Side::End}, {Side::Start}};
        if (len > 0) {
            const Side side = (len + static_cast<int>(fill)) % 2 ? Side::End : Side::Start;
            const bool sameSize = inBytes == outBytes || e_.shape == Shape::ComplexToReal;
            if (sameSize)
                for (int o = 0; o < nOut; ++o)
                    for (int a = 0; a < nIn; ++a) layouts.push_back({side, o, a});
        }

        std::vector<unsigned char> reference[2];
        orvoStatus referenceStatus = 0;
        for (size_t k = 0; k < layouts.size(); ++k) {
            const Layout& lay = layouts[k];
            Call c = place(len, lay, scalar);
            // Destinations start out different in every placement, so an
            // element left unwritten shows as a difference.
            for (int a = 0; a < nIn && len > 0; ++a) std::memcpy(c.at[Src1 + a], image[a].data(), image[a].size());
            for (int o = 0; o < nOut && len > 0; ++o)
                if (o != lay.aliasOut) std::memset(c.at[Dst1 + o], 0xA5 ^ static_cast<int>(k * 0x3B), static_cast<size_t>(len) * outBytes);

            std::ostringstream where;
            where << e_.name << " len " << len << ", " << fillName(fill) << " values, arrays " << sideName(lay.side);
            if (lay.aliasOut >= 0) where << ", in place: " << kRoleNames[Dst1 + lay.aliasOut] << " = " << kRoleNames[Src1 + lay.aliasIn];
            SCOPED_TRACE(where.str());

            const FpState before{kMxcsrDefault, kX87Extended};
            before.apply();
            orvoStatus status = 0;
            Fault fault;
            ++calls_;
            if (runCatchingFaults([&] { status = invoke(fn_, c.arrays, len); }, fault)) {
                ADD_FAILURE() << describeFault(fault, c, len);
                return false;
            }
            const FpState after = FpState::current();
            EXPECT_EQ(after.mxcsr & kMxcsrControlBits, before.mxcsr & kMxcsrControlBits)
                << "MXCSR left as " << describeMxcsr(after.mxcsr);
            EXPECT_EQ(after.x87, before.x87) << "x87 control word left as " << describeX87(after.x87);
            EXPECT_TRUE(x87StackEmpty()) << "x87 register stack left in use";
            before.apply();

            for (int a = 0; a < nIn; ++a) {
                if (a == lay.aliasIn) continue;
                const int i = firstDifference(c.at[Src1 + a], image[a].data(), len, inBytes);
                EXPECT_EQ(i, -1) << kRoleNames[Src1 + a] << " changed at element " << i;
            }
            if (len < 1) {  // the arrays are empty: an end-placed one starts on the guard page
                EXPECT_EQ(status, orvoErrSize);
                continue;
            }
            if (k == 0) {
                referenceStatus = status;
                for (int o = 0; o < nOut; ++o) reference[o].assign(c.at[Dst1 + o], c.at[Dst1 + o] + static_cast<size_t>(len) * outBytes);
                if (independent_) {
                    EXPECT_EQ(status, expectedStatus) << "status differs from the last non-zero status of the elements alone";
                    for (int o = 0; o < nOut; ++o) {
                        const int i = firstDifference(reference[o].data(), expected[o].data(), len, outBytes);
                        if (i >= 0)
                            ADD_FAILURE() << kRoleNames[Dst1 + o] << "[" << i << "] = "
                                          << hexBytes(reference[o].data() + static_cast<size_t>(i) * outBytes, outBytes)
                                          << " but the element alone gives "
                                          << hexBytes(expected[o].data() + static_cast<size_t>(i) * outBytes, outBytes)
                                          << "; input " << describeTuple(e_, tuples_.all[tupleOf[i]]);
                    }
                }
                continue;
            }
            EXPECT_EQ(status, referenceStatus) << "status differs from the first placement's";
            for (int o = 0; o < nOut; ++o) {
                const int i = firstDifference(c.at[Dst1 + o], reference[o].data(), len, outBytes);
                if (i >= 0)
                    ADD_FAILURE() << kRoleNames[Dst1 + o] << "[" << i << "] = "
                                  << hexBytes(c.at[Dst1 + o] + static_cast<size_t>(i) * outBytes, outBytes)
                                  << " but out of place, ending at a guard page, it is "
                                  << hexBytes(reference[o].data() + static_cast<size_t>(i) * outBytes, outBytes)
                                  << "; input " << describeTuple(e_, tuples_.all[tupleOf[i]]);
            }
        }
        return !::testing::Test::HasFailure();
    }

private:
    Call place(int len, const Layout& lay, const unsigned char* scalar) {
        static GuardedRegion regions[4] = {GuardedRegion(kMaxLength * 16), GuardedRegion(kMaxLength * 16),
                                           GuardedRegion(kMaxLength * 16), GuardedRegion(kMaxLength * 16)};
        regions_ = regions;
        Call c;
        const int nIn = inputCount(e_), nOut = outputCount(e_);
        for (int a = 0; a < nIn; ++a) {
            c.bytes[Src1 + a] = inputBytes(e_);
            c.at[Src1 + a] = regions[Src1 + a].place(static_cast<size_t>(len) * inputBytes(e_), lay.side);
            c.arrays.in[a] = c.at[Src1 + a];
        }
        for (int o = 0; o < nOut; ++o) {
            c.bytes[Dst1 + o] = outputBytes(e_);
            c.at[Dst1 + o] = o == lay.aliasOut ? c.at[Src1 + lay.aliasIn]
                                               : regions[Dst1 + o].place(static_cast<size_t>(len) * outputBytes(e_), lay.side);
            c.arrays.out[o] = c.at[Dst1 + o];
        }
        c.arrays.scalar = scalar;
        return c;
    }

    std::string describeFault(const Fault& f, const Call& c, int len) const {
        std::ostringstream s;
        s << (f.signal == SIGBUS ? "SIGBUS" : "SIGSEGV") << " at address 0x" << std::hex << f.address << std::dec;
        bool named = false;
        for (int r = Src1; r <= Dst2; ++r) {
            if (!c.at[r]) continue;
            // An aliased destination shares its source's region.
            const GuardedRegion* region = nullptr;
            for (int q = Src1; q <= Dst2; ++q)
                if (c.at[q] == c.at[r] && q <= r) { region = &regions_[q]; break; }
            const int guard = region->guardOf(f.address);
            if (!guard) continue;
            const intptr_t offset = static_cast<intptr_t>(f.address) - reinterpret_cast<intptr_t>(c.at[r]);
            const intptr_t element = offset >= 0 ? offset / c.bytes[r] : -((-offset + c.bytes[r] - 1) / c.bytes[r]);
            s << ": " << kRoleNames[r] << (guard < 0 ? " before its start" : " past its end") << ", element "
              << element << " of " << len;
            named = true;
        }
        if (!named) s << ": outside every guard page (a wild access)";
        return s.str();
    }

    const Function& fn_;
    const CatalogueEntry& e_;
    Tuples tuples_;
    AloneCache alone_;
    bool independent_;
    long calls_ = 0;
    const GuardedRegion* regions_ = nullptr;
};

class MemoryBounds : public ::testing::TestWithParam<int> {};

}  // namespace

TEST_P(MemoryBounds, GuardPagesAtBothEndsOfEveryArray) {
    const Function& fn = functions()[GetParam()];
    ASSERT_NE(fn.address, nullptr) << fn.entry->name << " is not exported";
    BoundsChecker checker(fn);
    bool alive = true;
    for (int len : lengths()) {
        for (Fill fill : kFills) {
            alive = checker.check(len, fill);
            if (!alive) break;
        }
        if (!alive) break;
    }
    EXPECT_FALSE(checker.aloneChangedState()) << "a call of one element left a control word changed";
    std::printf("[ checked  ] %s: %ld calls\n", fn.entry->name, checker.calls());
}

INSTANTIATE_TEST_SUITE_P(Built, MemoryBounds, ::testing::Range(0, static_cast<int>(functions().size())),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return std::string(functions()[info.param].entry->name);
                         });
