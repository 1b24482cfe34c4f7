// The groups of a run, the goals, and the performance document.
#include <dlfcn.h>
#include <gnu/libc-version.h>

#include <climits>
#include <cstring>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string_view>

#include "bench/harness.h"
#include "orvo.h"
#include "support/throughput.h"

namespace orvo::bench {

std::vector<Group> builtGroups() {
    std::vector<Group> groups;
    for (const CatalogueEntry& e : kCatalogue) {
        if (!e.built) continue;
        if (groups.empty() || std::string_view(groups.back().family) != e.family || groups.back().type != e.type)
            groups.push_back({e.family, e.type, {}, peersOf(e.family, e.type)});
        groups.back().functions.push_back(&e);
    }
    return groups;
}

std::string typeName(ElementType t) {
    switch (t) {
    case ElementType::F32: return "32f";
    case ElementType::F64: return "64f";
    case ElementType::C32: return "32fc";
    case ElementType::C64: return "64fc";
    }
    return "";
}

std::string functionKey(const CatalogueEntry& e, int len) { return std::string(e.name) + "/" + std::to_string(len); }

std::string peerKey(const Group& g, const Peer& p, int len) {
    std::string column = p.column();
    for (char& c : column)
        if (c == ' ') c = '_';
    return std::string(g.family) + "_" + typeName(g.type) + "/" + column + "/" + std::to_string(len);
}

std::string goalKey(const CatalogueEntry& e, bool peer) {
    return std::string("goal/") + e.name + (peer ? "/peer" : "/orvo");
}

namespace {

// The element-wise kernels: one hardware operation an element, timed against
// a bare loop of that operation.
bool elementwise(const CatalogueEntry& e) {
    static constexpr std::string_view kFamilies[] = {"Abs", "Add", "Sub", "Mul", "Sqr", "Conj"};
    for (std::string_view f : kFamilies)
        if (f == e.family) return e.style == Style::Plain;
    return false;
}

const Peer* find(const Group& g, Source source, const char* isa, double ulps = -1) {
    const Peer* best = nullptr;
    for (const Peer& p : g.peers) {
        if (p.source != source || p.isa != isa) continue;
        if (ulps >= 0 && p.ulps != ulps) continue;
        if (!best || p.ulps < best->ulps) best = &p;  // without a bound asked: the most accurate
    }
    return best;
}

}  // namespace

// Top levels against SLEEF's most accurate AVX variant (u10; u05 where that
// is what it has), middle levels against its u35 (or the most accurate),
// bottom levels against libmvec's AVX2 variant, at the short length; the
// element-wise kernels against a bare AVX loop at the long one.
std::optional<Goal> goalOf(const CatalogueEntry& e, const Group& g) {
    const Peer* p = nullptr;
    if (elementwise(e)) {
        if ((p = find(g, Source::BareAvx, "AVX"))) return Goal{p, kLong, 1.2};
        return std::nullopt;
    }
    const std::string_view level = e.level;
    if (level == "A24" || level == "A53") p = find(g, Source::Sleef, "AVX");
    else if (level == "A21" || level == "A50") (p = find(g, Source::Sleef, "AVX", 3.5)) || (p = find(g, Source::Sleef, "AVX"));
    else if (level == "A11" || level == "A26") p = find(g, Source::Libmvec, "AVX2");
    if (!p) return std::nullopt;
    return Goal{p, kShort, 1.0};
}

namespace {

// ---- text ---------------------------------------------------------------------------

std::string fmt(const char* f, double v) {
    char b[64];
    std::snprintf(b, sizeof b, f, v);
    return b;
}

std::optional<double> at(const Results& r, const std::string& key) {
    auto it = r.find(key);
    if (it == r.end()) return std::nullopt;
    return it->second;
}

std::string ns(std::optional<double> v) { return v ? fmt("%.3g", *v) : "-"; }

std::string ratio(std::optional<double> a, std::optional<double> b) {
    return a && b && *b > 0 ? fmt("%.2f", *a / *b) : "-";
}

std::string lengthName(int len) { return len == kShort ? "1K" : "1M"; }

std::string cpuModel() {
    std::ifstream in("/proc/cpuinfo");
    for (std::string line; std::getline(in, line);)
        if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
    return "unknown processor";
}

// The file a peer's function was loaded from (its name carries the version).
std::string libraryOf(const std::vector<Group>& groups, Source source) {
    for (const Group& g : groups)
        for (const Peer& p : g.peers) {
            Dl_info info;
            if (p.source != source || !p.function || !dladdr(p.function, &info) || !info.dli_fname) continue;
            char resolved[PATH_MAX];
            const char* path = realpath(info.dli_fname, resolved) ? resolved : info.dli_fname;
            const char* slash = std::strrchr(path, '/');
            return slash ? slash + 1 : path;
        }
    return "not found";
}

// The load average when the document is written: the figures of a busy
// machine are less sure, the memory-bound ones at 1M above all.
std::string loadAverage() {
    std::ifstream in("/proc/loadavg");
    double one = 0, five = 0;
    if (!(in >> one >> five)) return "unknown";
    return fmt("%.2f", one) + " (1 min), " + fmt("%.2f", five) + " (5 min)";
}

std::string today() {
    const std::time_t now = std::time(nullptr);
    char b[32];
    std::strftime(b, sizeof b, "%Y-%m-%d", std::gmtime(&now));
    return b;
}

void row(std::FILE* out, const std::vector<std::string>& cells) {
    std::fprintf(out, "|");
    for (const std::string& c : cells) std::fprintf(out, " %s |", c.c_str());
    std::fprintf(out, "\n");
}

// The line under a table's head: the first `left` columns text, the others
// numbers.
void rule(std::FILE* out, size_t columns, size_t left = 1) {
    std::fprintf(out, "|");
    for (size_t i = 0; i < columns; ++i) std::fprintf(out, i < left ? "---|" : "---:|");
    std::fprintf(out, "\n");
}

}  // namespace

void writePerformance(std::FILE* out, const std::vector<Group>& groups, const Results& results, int rounds,
                      int repetitions) {
    std::fprintf(out,
                 "# Performance\n\n"
                 "Written by `scripts/bench` (do not edit by hand) on %s: orvo %s; %s, load average %s at the end "
                 "of the run; GCC %s; glibc %s; %s.\n\n",
                 today().c_str(), orvoGetLibVersion()->version, cpuModel().c_str(), loadAverage().c_str(), __VERSION__,
                 gnu_get_libc_version(), libraryOf(groups, Source::Sleef).c_str());
    std::fprintf(out,
                 "Every figure is nanoseconds per element: the fastest of %d rounds of calls, each round at least "
                 "4 ms, measured by the same code as the throughput column of `orvo-report`%s. **1K**: calls of %d "
                 "elements that take 2 to 8 input sets in turn (as many as fit in 32 KiB), so that no branch "
                 "predictor learns one array. **1M**: calls of %d elements, beyond the second-level cache. Inputs "
                 "are uniform over a range where each family is typically used, with no special values. Ratios "
                 "are orvo / peer: below 1, orvo is faster. The peers run over the same arrays in the same run:\n\n"
                 "- **libm**: a plain C loop over glibc's scalar function (or the expression named), the one "
                 "`orvo-report` compares with;\n"
                 "- **SLEEF uNN AVX / AVX2**: SLEEF's vector function of that error bound, for AVX or for AVX2 with "
                 "FMA (`Sleef_expf8_u10avx`, ...);\n"
                 "- **libmvec AVX / AVX2**: glibc's vector functions `_ZGVcN8v_expf`, `_ZGVdN8v_expf`, ... (the "
                 "AVX2 ones use FMA, which orvo may not);\n"
                 "- **bare AVX**: a loop of 256-bit loads, the one instruction, 256-bit stores.\n\n",
                 rounds,
                 repetitions > 1 ? fmt("; of %.0f such runs spread over the whole run, the fastest", repetitions).c_str() : "",
                 kShort, kLong);

    // The goals, function by function.
    std::fprintf(out,
                 "## Goals\n\n"
                 "- Top levels (`A24`, `A53`): no slower than SLEEF's u10 AVX variant (for Sqrt its u05, the most "
                 "accurate it has), at 1K.\n"
                 "- Middle levels (`A21`, `A50`): no slower than SLEEF's u35 AVX variant (its u10 where it has no "
                 "u35), at 1K.\n"
                 "- Bottom levels (`A11`, `A26`): no slower than libmvec's AVX2 variant, at 1K.\n"
                 "- Element-wise kernels (Abs, Add, Sub, Mul, Sqr, Conj): within 1.2 times a bare AVX loop, at 1M.\n\n"
                 "Each goal is judged on a run of its own that times the function and the peer in alternate rounds "
                 "over the same arrays, so that whatever else the machine does slows both alike; its figures may "
                 "differ a little from the tables further down.\n\n");
    std::string none;
    for (const Group& g : groups)
        for (const CatalogueEntry* e : g.functions)
            if (!goalOf(*e, g)) none += std::string(none.empty() ? "" : ", ") + (e->name + 4);
    if (!none.empty())
        std::fprintf(out, "Without a goal, as neither SLEEF nor libmvec has the function: %s.\n\n", none.c_str());
    row(out, {"Function", "Goal", "Length", "orvo", "peer", "orvo / peer", "Holds"});
    rule(out, 7, 3);
    int goals = 0, held = 0;
    std::vector<std::string> failing;
    for (const Group& g : groups)
        for (const CatalogueEntry* e : g.functions) {
            const std::optional<Goal> goal = goalOf(*e, g);
            if (!goal) continue;
            // The paired run where there is one.
            auto mine = at(results, goalKey(*e, false)), theirs = at(results, goalKey(*e, true));
            if (!mine || !theirs) {
                mine = at(results, functionKey(*e, goal->len));
                theirs = at(results, peerKey(g, *goal->peer, goal->len));
            }
            std::string verdict = "not run";
            if (mine && theirs) {
                ++goals;
                const bool ok = *mine <= goal->limit * *theirs;
                held += ok;
                verdict = ok ? "yes" : "**no**";
                if (!ok) failing.push_back(std::string(e->name).substr(4));
            }
            const std::string what = (goal->limit == 1 ? "≤ " : fmt("≤ %.1f × ", goal->limit)) +
                                     goal->peer->column() + " (`" + goal->peer->name + "`)";
            row(out, {e->name, what, lengthName(goal->len), ns(mine), ns(theirs), ratio(mine, theirs), verdict});
        }
    std::fprintf(out, "\n%d of %d goals hold.", held, goals);
    if (!failing.empty()) {
        std::fprintf(out, " Not met:");
        for (size_t i = 0; i < failing.size(); ++i) std::fprintf(out, "%s %s", i ? "," : "", failing[i].c_str());
        std::fprintf(out, ".");
    }
    std::fprintf(out, "\n\n");

    // Every function with every peer.
    std::fprintf(out,
                 "## By family\n\n"
                 "Peers first with their own times, then orvo's functions with theirs and the ratios to each peer "
                 "at 1K / at 1M.\n");
    for (const Group& g : groups) {
        const CatalogueEntry& first = *g.functions.front();
        const test::TimingRange range = test::timingRange(first);
        std::fprintf(out, "\n### %s, %s\n\nInputs uniform in [%g, %g].\n\n", g.family, typeName(g.type).c_str(),
                     range.lo, range.hi);
        std::vector<std::string> head = {"", "1K", "1M"};
        for (const Peer& p : g.peers) head.push_back(p.column());
        row(out, head);
        rule(out, head.size());
        for (const Peer& p : g.peers) {
            std::vector<std::string> cells = {p.column() + " `" + p.name + "`", ns(at(results, peerKey(g, p, kShort))),
                                              ns(at(results, peerKey(g, p, kLong)))};
            cells.resize(head.size());
            row(out, cells);
        }
        for (const CatalogueEntry* e : g.functions) {
            const auto mineShort = at(results, functionKey(*e, kShort)), mineLong = at(results, functionKey(*e, kLong));
            std::vector<std::string> cells = {std::string("**") + e->name + "**", ns(mineShort), ns(mineLong)};
            for (const Peer& p : g.peers)
                cells.push_back(ratio(mineShort, at(results, peerKey(g, p, kShort))) + " / " +
                                ratio(mineLong, at(results, peerKey(g, p, kLong))));
            row(out, cells);
        }
    }
}

}  // namespace orvo::bench
