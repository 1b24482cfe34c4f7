// The catalogue against itself, the header, and the built library's
// dynamic symbol table.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "frame/catalogue.h"
#include "support/call.h"

using namespace orvo;

namespace {

std::string runCommand(const std::string& command) {
    std::string out;
    FILE* p = popen(command.c_str(), "r");
    if (!p) return out;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    pclose(p);
    return out;
}

std::set<std::string> words(const std::string& text) {
    std::set<std::string> out;
    size_t i = 0;
    while (i < text.size()) {
        size_t j = text.find('\n', i);
        if (j == std::string::npos) j = text.size();
        if (j > i) out.insert(text.substr(i, j - i));
        i = j + 1;
    }
    return out;
}

}  // namespace

TEST(Catalogue, CountsPerTypeAndFamilies) {
    std::map<ElementType, int> perType;
    std::set<std::string> families;
    for (const auto& e : kCatalogue) {
        ++perType[e.type];
        families.insert(e.family);
    }
    EXPECT_EQ(kCatalogueSize, 390);
    EXPECT_EQ(perType[ElementType::F32], 120);
    EXPECT_EQ(perType[ElementType::F64], 120);
    EXPECT_EQ(perType[ElementType::C32], 75);
    EXPECT_EQ(perType[ElementType::C64], 75);
    EXPECT_EQ(families.size(), 52u);
}

TEST(Catalogue, NamesAreSortedUniqueAndWellFormed) {
    for (int i = 1; i < kCatalogueSize; ++i)
        EXPECT_LT(std::strcmp(kCatalogue[i - 1].name, kCatalogue[i].name), 0) << kCatalogue[i].name;
    for (const auto& e : kCatalogue) {
        static const char* kTypes[] = {"32f", "64f", "32fc", "64fc"};
        std::string expected = std::string("orvo") + e.family + "_" + kTypes[static_cast<int>(e.type)];
        if (*e.level) expected += std::string("_") + e.level;
        EXPECT_EQ(expected, e.name);
        const bool single = e.type == ElementType::F32 || e.type == ElementType::C32;
        if (*e.level) {
            const std::set<std::string> allowed = single ? std::set<std::string>{"A11", "A21", "A24"}
                                                         : std::set<std::string>{"A26", "A50", "A53"};
            EXPECT_TRUE(allowed.count(e.level)) << e.name;
        }
    }
}

TEST(Catalogue, NamesThatMustNotExist) {
    for (const char* absent : {"orvoCbrt_32fc_A11", "orvoAtan2_32fc_A24", "orvoAdd_32f_A11"})
        for (const auto& e : kCatalogue) EXPECT_STRNE(e.name, absent);
}

TEST(Library, ExportsExactlyTheBuiltNamesAndTheVersionQuery) {
    std::set<std::string> expected = {"orvoGetLibVersion"};
    for (const auto& e : kCatalogue)
        if (e.built) expected.insert(e.name);
    const std::string listing =
        runCommand(std::string("nm -D --defined-only ") + ORVO_LIBRARY_FILE + " | awk '{print $3}'");
    ASSERT_FALSE(listing.empty()) << "nm gave nothing for " << ORVO_LIBRARY_FILE;
    std::set<std::string> exported = words(listing);
    exported.erase("");
    EXPECT_EQ(exported, expected);
    for (const auto& e : kCatalogue)
        EXPECT_EQ(test::findFunction(e.name) != nullptr, e.built) << e.name;
}

TEST(Library, NeedsNothingButLibc) {
#ifdef ORVO_SANITIZED
    GTEST_SKIP() << "a sanitized library needs the sanitizer's runtime";
#endif
    const std::string needed =
        runCommand(std::string("readelf -d ") + ORVO_LIBRARY_FILE + " | awk '/NEEDED/ {print $5}'");
    for (const std::string& library : words(needed)) EXPECT_EQ(library, "[libc.so.6]");
    const std::string soname = runCommand(std::string("readelf -d ") + ORVO_LIBRARY_FILE + " | grep SONAME");
    EXPECT_NE(soname.find("liborvo.so.7"), std::string::npos) << soname;
}

TEST(Library, EntryTableIsNeverWritable) {
    // Every slot is placed by a relative relocation into memory that is
    // read-only after loading: no text relocations, and the table lives in
    // the part of the file that RELRO protects.
    const std::string dynamic = runCommand(std::string("readelf -d ") + ORVO_LIBRARY_FILE);
    EXPECT_EQ(dynamic.find("TEXTREL"), std::string::npos);
    EXPECT_NE(dynamic.find("BIND_NOW"), std::string::npos);
}

TEST(Version, RecordIsConstantAndAsPublished) {
    const orvoLibraryVersion* v = orvoGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, orvoGetLibVersion());
    EXPECT_EQ(v->major, 7);
    EXPECT_EQ(v->minor, 0);
    EXPECT_EQ(v->majorBuild, 205);
    EXPECT_EQ(v->build, 989);
    EXPECT_EQ(std::memcmp(v->targetCode, "q7\0\0", 4), 0);
    EXPECT_STREQ(v->name, "orvoq7-7.0.dll");
    EXPECT_STREQ(v->version, "7.0 build 205.58");
    EXPECT_STREQ(v->buildDate, "Apr 18 2011");
}
