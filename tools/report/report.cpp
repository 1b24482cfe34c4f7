// orvo-report: for every function the library implements, how far its
// results lie from the exact ones (in ulps, and as correct bits against the
// level's promise), the worst input found, and its throughput next to a
// plain scalar loop over the C library.  Exit status 1 when any function
// falls short of its level.
#include <fnmatch.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "frame/catalogue.h"
#include "oracle/domains.h"
#include "oracle/measure.h"
#include "oracle/sweep.h"
#include "orvo.h"
#include "support/call.h"
#include "support/timing.h"

using namespace orvo;

namespace {

struct Options {
    std::vector<std::string> only;
    std::string csv, markdown;
    double scale = 1;  // of the test sweep's samples
    long samples = 0;
    bool timing = true;
    bool exhaustive = false;
    bool libm = false;
    bool domains = false;
    int jobs = 0;
};

struct Row {
    const CatalogueEntry* entry;
    oracle::SweepResult sweep;
    double orvoElPerNs = 0, baseElPerNs = 0;
    std::string baseline;
};

[[noreturn]] void usage(int status) {
    std::fprintf(status ? stderr : stdout,
                 "usage: orvo-report [options]\n"
                 "  --only PATTERN     functions whose name matches (glob, or a part of the name;\n"
                 "                     with or without the orvo prefix; repeat or separate by commas)\n"
                 "  --csv FILE         also write the table as CSV\n"
                 "  --markdown FILE    also write the table as Markdown\n"
                 "  --scale F          samples per function, relative to the default (default 1)\n"
                 "  --samples N        samples per function\n"
                 "  --no-timing        accuracy only\n"
                 "  --exhaustive       every binary32 input of the binary32 Unary functions (hours)\n"
                 "  --libm             judge the plain C library loops instead of orvo (same samples)\n"
                 "  --jobs N           threads for the accuracy sweeps (default: all processors)\n"
                 "  --domains          list the input domain of every family and exit\n"
                 "Exit status: 0 when every function meets its level, 1 when one falls short, 2 on bad use.\n");
    std::exit(status);
}

Options parse(int argc, char** argv) {
    Options o;
    auto value = [&](int& i) -> const char* {
        if (i + 1 >= argc) usage(2);
        return argv[++i];
    };
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--only") {
            std::string list = value(i);
            size_t p = 0;
            while (p <= list.size()) {
                const size_t q = std::min(list.find(',', p), list.size());
                if (q > p) o.only.push_back(list.substr(p, q - p));
                p = q + 1;
            }
        } else if (a == "--csv") o.csv = value(i);
        else if (a == "--markdown") o.markdown = value(i);
        else if (a == "--scale") o.scale *= std::atof(value(i));
        else if (a == "--samples") o.samples = std::atol(value(i));
        else if (a == "--no-timing") o.timing = false;
        else if (a == "--exhaustive") o.exhaustive = true;
        else if (a == "--libm") o.libm = true;
        else if (a == "--jobs") o.jobs = std::atoi(value(i));
        else if (a == "--domains") o.domains = true;
        else if (a == "--help" || a == "-h") usage(0);
        else usage(2);
    }
    return o;
}

bool matches(const Options& o, const char* name) {
    if (o.only.empty()) return true;
    for (const std::string& p : o.only) {
        const bool glob = p.find_first_of("*?[") != std::string::npos;
        for (const char* n : {name, name + 4}) {
            if (glob ? fnmatch(p.c_str(), n, 0) == 0 : std::strstr(n, p.c_str()) != nullptr) return true;
        }
    }
    return false;
}

// ---- throughput -------------------------------------------------------------

struct Arrays {
    std::vector<unsigned char> in[2], out[2];
    unsigned char scalar[16] = {};
};

Arrays benchArrays(const CatalogueEntry& e, const oracle::Domain& d, int n) {
    Arrays a;
    const bool b32 = realBytes(e.type) == 4;
    const int parts = test::inputBytes(e) / realBytes(e.type);
    uint64_t state = 0x5EED;
    auto next = [&]() {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state >> 11) * 0x1p-53;
    };
    auto put = [&](unsigned char* p, double v) {
        if (b32) {
            const float f = static_cast<float>(v);
            std::memcpy(p, &f, 4);
        } else {
            std::memcpy(p, &v, 8);
        }
    };
    for (int k = 0; k < test::inputCount(e); ++k) {
        a.in[k].resize(static_cast<size_t>(n) * test::inputBytes(e));
        for (int i = 0; i < n * parts; ++i) put(&a.in[k][i * realBytes(e.type)], d.benchLo + (d.benchHi - d.benchLo) * next());
    }
    for (int k = 0; k < test::outputCount(e); ++k) a.out[k].resize(static_cast<size_t>(n) * test::outputBytes(e));
    // A power that takes the general path of Powx, not a squaring loop.
    put(a.scalar, 1.5);
    return a;
}

test::CallArrays callArrays(Arrays& a, const CatalogueEntry& e) {
    test::CallArrays c;
    for (int k = 0; k < test::inputCount(e); ++k) c.in[k] = a.in[k].data();
    for (int k = 0; k < test::outputCount(e); ++k) c.out[k] = a.out[k].data();
    c.scalar = a.scalar;
    return c;
}

void measure(Row& row) {
    const CatalogueEntry& e = *row.entry;
    const oracle::Domain* d = oracle::findDomain(e.family, isComplex(e.type));
    if (!d) return;
    constexpr int kLen = 1000;
    Arrays a = benchArrays(e, *d, kLen);
    const test::CallArrays c = callArrays(a, e);
    row.orvoElPerNs = 1 / test::timeCalls([&] { test::call(e, c, kLen); }, kLen).nsPerElement;
    auto loop = realBytes(e.type) == 4 ? d->loop32 : d->loop64;
    if (loop && *d->baseline) {
        row.baseline = d->baseline;
        if (realBytes(e.type) == 8 && row.baseline.back() == 'f') row.baseline.pop_back();  // expf: exp in binary64
        row.baseElPerNs = 1 / test::timeCalls([&] { loop(c, kLen); }, kLen).nsPerElement;
    }
}

// ---- output -----------------------------------------------------------------

// "1.5 [0x3FC00000]" -> "1.5": the table's short form of a value.
std::string shortValues(const std::string& s) {
    std::string out;
    bool skip = false;
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '[') { skip = true; if (!out.empty() && out.back() == ' ') out.pop_back(); continue; }
        if (s[i] == ']') { skip = false; continue; }
        if (!skip) out += s[i];
    }
    return out;
}

std::string format(const char* f, double v) {
    char buf[64];
    std::snprintf(buf, sizeof buf, f, v);
    return buf;
}

std::string promise(const CatalogueEntry& e) {
    if (!*e.level) return "exact";
    const oracle::Format f = realBytes(e.type) == 4 ? oracle::kBinary32 : oracle::kBinary64;
    const double bound = oracle::levelBound(e.level, f);
    const std::string ulps = bound >= 1024 ? "2^" + std::to_string(std::ilogb(bound)) : format("%.0f", bound);
    return std::string(e.level + 1) + " bits (" + ulps + " ulp)";
}

std::string verdict(const Row& r) {
    if (!r.sweep.checked) return "unchecked";
    if (r.sweep.sameCodeMismatches) return "FAIL (differs from " + r.sweep.sameCodeAs.substr(4) + ")";
    return r.sweep.failures ? "FAIL" : "ok";
}

std::vector<std::string> header() {
    return {"Function", "Samples", "Max err (ulp)", "Bits", "Promise", "Verdict", "Worst input",
            "orvo (el/ns)", "Scalar loop", "Loop (el/ns)", "Speed-up"};
}

std::vector<std::string> cells(const Row& r, bool full) {
    const auto& s = r.sweep;
    const bool timed = r.orvoElPerNs > 0;
    const bool base = timed && r.baseElPerNs > 0;
    return {r.entry->name,
            s.checked ? std::to_string(s.samples) : "-",
            s.checked ? (std::isinf(s.maxError) ? "inf" : format("%.3g", s.maxError)) : "-",
            s.checked ? format("%.1f", s.bits) : "-",
            promise(*r.entry),
            verdict(r),
            s.checked ? (full ? s.worstInput : shortValues(s.worstInput)) : s.problem,
            timed ? format("%.3f", r.orvoElPerNs) : "-",
            base ? r.baseline : "-",
            base ? format("%.3f", r.baseElPerNs) : "-",
            base ? format("%.2fx", r.orvoElPerNs / r.baseElPerNs) : "-"};
}

void printText(const std::vector<Row>& rows) {
    std::vector<std::vector<std::string>> t = {header()};
    for (const Row& r : rows) t.push_back(cells(r, false));
    std::vector<size_t> width(t[0].size(), 0);
    for (const auto& line : t)
        for (size_t i = 0; i < line.size(); ++i) width[i] = std::max(width[i], std::min<size_t>(line[i].size(), 48));
    for (const auto& line : t) {
        std::string out;
        for (size_t i = 0; i < line.size(); ++i) {
            std::string c = line[i].size() > 48 ? line[i].substr(0, 45) + "..." : line[i];
            const bool right = i == 1 || i == 2 || i == 3 || i >= 7;
            const std::string pad(width[i] - c.size(), ' ');
            out += right ? pad + c : c + pad;
            if (i + 1 < line.size()) out += "  ";
        }
        while (!out.empty() && out.back() == ' ') out.pop_back();
        std::printf("%s\n", out.c_str());
    }
}

std::string csvQuote(const std::string& s) {
    if (s.find_first_of(",\"\n") == std::string::npos) return s;
    std::string q = "\"";
    for (char c : s) q += c == '"' ? std::string("\"\"") : std::string(1, c);
    return q + "\"";
}

bool writeCsv(const std::string& file, const std::vector<Row>& rows) {
    FILE* f = std::fopen(file.c_str(), "w");
    if (!f) return false;
    auto line = [&](const std::vector<std::string>& c) {
        for (size_t i = 0; i < c.size(); ++i) std::fprintf(f, "%s%s", i ? "," : "", csvQuote(c[i]).c_str());
        std::fprintf(f, "\n");
    };
    std::vector<std::string> h = header();
    h.push_back("Worst result");
    h.push_back("Exact");
    line(h);
    for (const Row& r : rows) {
        auto c = cells(r, true);
        c[2] = r.sweep.checked ? format("%.6g", r.sweep.maxError) : "";
        c.push_back(r.sweep.worstResult);
        c.push_back(r.sweep.worstExact);
        line(c);
    }
    return std::fclose(f) == 0;
}

bool writeMarkdown(const std::string& file, const std::vector<Row>& rows) {
    FILE* f = std::fopen(file.c_str(), "w");
    if (!f) return false;
    auto line = [&](const std::vector<std::string>& c) {
        std::fprintf(f, "|");
        for (const auto& s : c) {
            std::string e;
            for (char ch : s) e += ch == '|' ? std::string("\\|") : std::string(1, ch);
            std::fprintf(f, " %s |", e.c_str());
        }
        std::fprintf(f, "\n");
    };
    const auto h = header();
    line(h);
    std::fprintf(f, "|");
    for (size_t i = 0; i < h.size(); ++i) std::fprintf(f, "%s", (i == 1 || i == 2 || i == 3 || i >= 7) ? "---:|" : "---|");
    std::fprintf(f, "\n");
    for (const Row& r : rows) line(cells(r, false));
    return std::fclose(f) == 0;
}

// ---- progress on stderr -----------------------------------------------------

struct Progress {
    bool tty = isatty(2) != 0;
    std::mutex m;
    void show(const char* phase, int done, int total, const char* name) {
        if (!tty) return;
        std::lock_guard<std::mutex> lock(m);
        std::fprintf(stderr, "\r\033[K%s %d/%d %s", phase, done, total, name);
        std::fflush(stderr);
    }
    void clear() {
        if (tty) std::fprintf(stderr, "\r\033[K");
    }
};

void exhaustiveProgress(void* context, double fraction) {
    auto* name = static_cast<const char*>(context);
    if (isatty(2)) std::fprintf(stderr, "\r\033[Kexhaustive %s %.1f%%", name, 100 * fraction), std::fflush(stderr);
}

}  // namespace

int main(int argc, char** argv) {
    const Options o = parse(argc, argv);
    const orvoLibraryVersion* v = orvoGetLibVersion();
    if (o.domains) {
        for (const auto& d : oracle::allDomains())
            std::printf("%-10s %-7s %2zu thresholds  %s\n", d.family, d.complex ? "complex" : "real", d.marks.size(), d.about);
        return 0;
    }

    std::vector<Row> rows;
    int unbuilt = 0;
    for (const auto& e : kCatalogue) {
        if (!matches(o, e.name)) continue;
        if (!e.built) {
            ++unbuilt;
            continue;
        }
        if (o.exhaustive && (e.type != ElementType::F32 || e.shape != Shape::Unary)) continue;
        rows.push_back({&e, {}, 0, 0, {}});
    }
    if (rows.empty()) {
        std::fprintf(stderr, "orvo-report: no implemented function matches\n");
        return 2;
    }

    // Accuracy, on all processors; then throughput, one function at a time.
    Progress progress;
    const int total = static_cast<int>(rows.size());
    std::atomic<int> next{0}, done{0};
    const int jobs = std::max(1, o.jobs ? o.jobs : static_cast<int>(std::thread::hardware_concurrency()));
    auto worker = [&]() {
        for (int i; (i = next++) < total;) {
            Row& r = rows[i];
            oracle::SweepOptions so;
            so.samples = o.samples ? o.samples : std::max(1L, static_cast<long>(oracle::defaultSamples(*r.entry) * o.scale));
            so.exhaustive = o.exhaustive;
            so.judgeBaseline = o.libm;
            so.progress = exhaustiveProgress;
            so.context = const_cast<char*>(r.entry->name);
            progress.show("accuracy", done, total, r.entry->name);
            r.sweep = oracle::sweep(*r.entry, so);
            progress.show("accuracy", ++done, total, r.entry->name);
        }
    };
    std::vector<std::thread> threads;
    for (int t = 1; t < jobs; ++t) threads.emplace_back(worker);
    worker();
    for (auto& t : threads) t.join();
    if (o.timing && !o.libm)
        for (int i = 0; i < total; ++i) {
            progress.show("throughput", i, total, rows[i].entry->name);
            measure(rows[i]);
        }
    progress.clear();

    std::printf("orvo %s (%s), %d functions%s\n", v->version, v->name, total,
                unbuilt ? (" (" + std::to_string(unbuilt) + " more matched but are not built yet)").c_str() : "");
    if (o.libm) std::printf("Judging the C library's plain loops, not orvo.\n");
    printText(rows);
    int failing = 0;
    for (const Row& r : rows) failing += verdict(r) != "ok";
    std::printf("%d of %d functions meet their level%s.\n", total - failing, total,
                failing ? "; the others are marked" : "");
    if (!o.csv.empty() && !writeCsv(o.csv, rows)) std::fprintf(stderr, "orvo-report: cannot write %s\n", o.csv.c_str());
    if (!o.markdown.empty() && !writeMarkdown(o.markdown, rows))
        std::fprintf(stderr, "orvo-report: cannot write %s\n", o.markdown.c_str());
    return failing ? 1 : 0;
}
