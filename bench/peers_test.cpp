// The benchmark's peers compute what they stand for, over the same arrays as
// orvo's functions (a peer wired to the wrong arity, type or length would
// time something else), and each level is judged against the peer its goal
// names.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <string_view>

#include "bench/harness.h"
#include "orvo.h"
#include "support/throughput.h"

using namespace orvo;
using namespace orvo::bench;

namespace {

double value(const void* array, int i, bool single) {
    return single ? static_cast<const float*>(array)[i] : static_cast<const double*>(array)[i];
}

const Group* findGroup(const std::vector<Group>& groups, std::string_view family, ElementType type) {
    for (const Group& g : groups)
        if (family == g.family && g.type == type) return &g;
    return nullptr;
}

const CatalogueEntry* findLevel(const Group& g, std::string_view level) {
    for (const CatalogueEntry* e : g.functions)
        if (level == e->level) return e;
    return nullptr;
}

}  // namespace

// Every peer against the group's most accurate orvo function, on a length
// that leaves a partial last vector.
TEST(Peers, ComputeTheirFunction) {
    ASSERT_NE(orvoGetLibVersion(), nullptr);
    constexpr int kLen = 103;
    for (const Group& g : builtGroups()) {
        const CatalogueEntry& top = *g.functions.back();
        const bool single = realBytes(top.type) == 4;
        const int values = kLen * test::outputBytes(top) / realBytes(top.type);
        test::TimingArrays arrays(top, kLen, 1);
        std::vector<unsigned char> expected(static_cast<size_t>(values) * 8);
        test::CallArrays mine = arrays.set(0);
        mine.out[0] = expected.data();
        ASSERT_EQ(test::call(top, mine, kLen), orvoOk) << top.name;
        for (const Peer& p : g.peers) {
            std::vector<unsigned char> got(expected.size(), 0xFF);
            test::CallArrays theirs = arrays.set(0);
            theirs.out[0] = got.data();
            p.loop(p.function, theirs, kLen);
            for (int i = 0; i < values; ++i) {
                const double want = value(expected.data(), i, single), have = value(got.data(), i, single);
                ASSERT_LE(std::fabs(have - want), std::fabs(want) * (single ? 1e-6 : 1e-14))
                    << p.name << " for " << top.name << " at value " << i;
            }
        }
    }
}

TEST(Peers, GoalsNameTheirPeer) {
    if (!dlopen("libsleef.so.3", RTLD_NOW | RTLD_NOLOAD) && !dlopen("libsleef.so.3", RTLD_NOW))
        GTEST_SKIP() << "SLEEF is not installed";
    const std::vector<Group> groups = builtGroups();
    auto goal = [&](std::string_view family, ElementType type, std::string_view level) -> std::string {
        const Group* g = findGroup(groups, family, type);
        const CatalogueEntry* e = g ? findLevel(*g, level) : nullptr;
        if (!e) return "not built";
        const std::optional<Goal> goal = goalOf(*e, *g);
        if (!goal) return "none";
        return goal->peer->name + (goal->len == kShort ? " 1K" : " 1M") + (goal->limit == 1 ? "" : " 1.2");
    };
    EXPECT_EQ(goal("Ln", ElementType::F32, "A24"), "Sleef_logf8_u10avx 1K");
    EXPECT_EQ(goal("Ln", ElementType::F32, "A21"), "Sleef_logf8_u35avx 1K");
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
        EXPECT_EQ(goal("Ln", ElementType::F64, "A26"), "_ZGVdN4v_log 1K");
    else
        EXPECT_EQ(goal("Ln", ElementType::F64, "A26"), "none") << "libmvec's AVX2 variants need AVX2 and FMA";
    // No u35 of exp: the middle level is held to the u10 variant.
    EXPECT_EQ(goal("Exp", ElementType::F32, "A21"), "Sleef_expf8_u10avx 1K");
    // SLEEF's most accurate square root is u05.
    EXPECT_EQ(goal("Sqrt", ElementType::F64, "A53"), "Sleef_sqrtd4_u05avx 1K");
    EXPECT_EQ(goal("Sqrt", ElementType::F32, "A11"), "none");
    EXPECT_EQ(goal("Add", ElementType::C64, "A53"), "a+b 1M 1.2");
    EXPECT_EQ(goal("Inv", ElementType::F32, "A24"), "none");
}
