// The benchmark run: which functions and peers are timed, under which names,
// and the results the performance document is written from.
#pragma once

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bench/peers.h"
#include "frame/catalogue.h"

namespace orvo::bench {

// Elements per call: a short array (rotating input sets, in the first-level
// cache) and a long one (beyond the second-level cache).
inline constexpr int kShort = 1024;
inline constexpr int kLong = 1 << 20;

// The built functions of one family on one element type, and their peers.
struct Group {
    const char* family;
    ElementType type;
    std::vector<const CatalogueEntry*> functions;
    std::vector<Peer> peers;
};

std::vector<Group> builtGroups();

std::string typeName(ElementType t);
std::string functionKey(const CatalogueEntry& e, int len);
std::string peerKey(const Group& g, const Peer& p, int len);
// The paired run of e's goal: e's time, or the goal peer's.
std::string goalKey(const CatalogueEntry& e, bool peer);

// A performance goal: orvo's time over the peer's at that length must not
// exceed the limit.
struct Goal {
    const Peer* peer;
    int len;
    double limit;
};

std::optional<Goal> goalOf(const CatalogueEntry& e, const Group& g);

// ns per element by benchmark name; absent when the benchmark did not run.
using Results = std::map<std::string, double>;

void writePerformance(std::FILE* out, const std::vector<Group>& groups, const Results& results, int rounds,
                      int repetitions);

}  // namespace orvo::bench
