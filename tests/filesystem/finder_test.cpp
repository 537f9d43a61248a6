#include "ovra/ovFileFinder.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovStringCompare.h"
#include "ovra/ovStringEncoding.h"

#include "../support/literal_match.h"
#include "../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <vector>

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

// Every string of length min..max over the alphabet.
std::vector<std::string> all_strings(const std::string& alphabet, size_t min, size_t max) {
    std::vector<std::string> out;
    std::vector<std::string> level{""};
    for (size_t len = 0; len <= max; ++len) {
        if (len >= min)
            out.insert(out.end(), level.begin(), level.end());
        std::vector<std::string> next;
        for (const auto& s : level)
            for (char c : alphabet)
                next.push_back(s + c);
        level.swap(next);
    }
    return out;
}

// Reaches the protected wildcard routine of the older finder.
class FilterProbe : public ovFileFinder {
public:
    explicit FilterProbe(int case_sensitive = 1) : ovFileFinder(utString(".")) {
        set_case_sensitive(case_sensitive);
    }
    int matches(const char* name, const char* filter) const {
        return filename_matches_filter(name, filter);
    }
    static int valid_char(char c) { return check_filter_character_valid(c); }
};

bool exact_match(const std::string& pattern, const std::string& name) {
    static const ovStringCompareNumeric exact;
    return ovFileMatch(utf8_text(pattern), &exact).match(ovFileName(utf8_text(name))) != 0;
}

void write_file(const fs::path& p, const std::string& text = "x") {
    std::ofstream(p, std::ios::binary) << text;
}

std::vector<std::string> names_of(const ovPathcoDList& list) {
    std::vector<std::string> out;
    for (const ovPath& p : list)
        out.push_back(utf8_of(p.path_ov()));
    std::sort(out.begin(), out.end());
    return out;
}

std::multiset<std::string> listed(ovFileFinder& finder) {
    std::multiset<std::string> out;
    while (++finder)
        out.insert(finder.file_name().c_str());
    return out;
}

} // namespace

// The newer matcher (exact and case-blind) and the older filter (the same): their rules
// differ on a star at the end and on empty texts, which the newer one never matches.
TEST(ovFileMatch, RulesOfBothMatchersAndCase) {
    const ovStringCompareInsensitive any_case(nullptr);
    const FilterProbe sensitive(1), insensitive(0);
    const struct {
        const char *pattern, *name;
        int match, match_any_case, filter, filter_any_case; // -1: not asked
    } cases[] = {
        {"*", "anything", 1, 1, 1, 1},
        {"abc*", "abc", 0, 0, 1, 1},
        {"abc*", "abcd", 1, 1, 1, 1},
        {"*.txt", "a.txt", 1, 1, 1, 1},
        {"*.txt", "a.txt.bak", 0, 0, 0, 0},
        {"a?c", "abc", 1, 1, 1, 1},
        {"data_??.csv", "data_01.csv", 1, 1, 1, 1},
        {"data_??.csv", "data_1.csv", 0, 0, 0, 0},
        {"ABC", "abc", 0, 1, 0, 1},
        {"*a*a*a*a*a*a*a*b", "aaaaaaaaaaaab", 1, 1, 1, 1},
        {"*.TXT", "a.txt", 0, 1, 0, 1},
        {"*.TXT", "a.txx", 0, 0, 0, 0},
        {"A?C*", "abcd", 0, 1, 0, 1},
        {"A?C*", "abc", 0, 0, 0, 1},
        {"*.c", "a.C", 0, 1, 0, 1},
        {"ab", "abc", 0, 0, 0, 0},
        {"*", "", -1, -1, 1, 1},
        {"?", "", -1, -1, 0, 0},
        {"", "x", -1, -1, 0, 0},
        {"", "", -1, -1, 1, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " / " + c.name);
        if (c.match >= 0) {
            EXPECT_EQ(exact_match(c.pattern, c.name), c.match != 0);
            EXPECT_EQ(literal_match(c.name, 0, c.pattern, 0), c.match != 0);
            const ovFileMatch m(utf8_text(c.pattern), &any_case);
            EXPECT_EQ(m.match(ovFileName(utf8_text(c.name))) != 0, c.match_any_case != 0);
        }
        EXPECT_EQ(sensitive.matches(c.name, c.pattern) != 0, c.filter != 0);
        EXPECT_EQ(literal_filter(c.name, c.pattern), c.filter != 0);
        EXPECT_EQ(insensitive.matches(c.name, c.pattern) != 0, c.filter_any_case != 0);
    }
}

TEST(ovFileMatch, InvalidPatternsMatchNothing) {
    const ovStringCompareNumeric exact;
    for (const char* p : {"", "a/b", "*/"}) {
        SCOPED_TRACE(p);
        const ovFileMatch m(utf8_text(p), &exact);
        EXPECT_TRUE(m.invalid());
        EXPECT_FALSE(m.match(ovFileName(utf8_text("a"))));
    }
    const ovFileMatch ok(utf8_text("*.c"), &exact);
    EXPECT_FALSE(ok.invalid());
    EXPECT_EQ(utf8_of(ok.string()), "*.c");
    ovFileMatch copy(utf8_text("x"), &exact);
    copy = ok;
    EXPECT_TRUE(copy.match(ovFileName(utf8_text("a.c"))));
}

TEST(ovFileMatch, BothMatchersAgreeWithTheRecursionOnEveryShortInput) {
    const auto patterns = all_strings("ab*?", 0, 6);
    const auto names = all_strings("ab", 0, 5);
    const ovStringCompareNumeric exact;
    const FilterProbe probe;
    std::vector<ovFileName> file_names;
    for (const auto& n : names)
        file_names.emplace_back(utf8_text(n));
    size_t disagreements = 0;
    for (const auto& p : patterns) {
        const ovFileMatch m(utf8_text(p), &exact);
        for (size_t i = 0; i < names.size(); ++i) {
            const std::string& n = names[i];
            // An empty pattern or name is invalid to the newer matcher.
            const bool match_differs = !p.empty() && !n.empty() &&
                                       (m.match(file_names[i]) != 0) != literal_match(n, 0, p, 0);
            const bool filter_differs =
                (probe.matches(n.c_str(), p.c_str()) != 0) != literal_filter(n.c_str(), p.c_str());
            if ((match_differs || filter_differs) && ++disagreements < 10)
                ADD_FAILURE() << "pattern " << p << " name " << n << (match_differs ? " match" : "")
                              << (filter_differs ? " filter" : "");
        }
    }
    EXPECT_EQ(disagreements, 0u);
}

// Exponential for the plain recursion; these must finish at once.
TEST(ovFileMatch, PathologicalPatternsAreBounded) {
    const std::string as(256, 'a');
    std::string stars;
    while (stars.size() + 2 <= 254)
        stars += "*a";
    stars += "*b";
    const FilterProbe probe;
    for (const std::string& p : {std::string("*a*a*a*a*a*a*a*b"), stars}) {
        SCOPED_TRACE(p.substr(0, 20));
        EXPECT_FALSE(exact_match(p, as));
        EXPECT_TRUE(exact_match(p, as + "b"));
        EXPECT_FALSE(probe.matches(as.c_str(), p.c_str()));
        EXPECT_TRUE(probe.matches((as + "b").c_str(), p.c_str()));
    }
    // A pattern of stars only, long enough to overflow a recursive stack.
    const std::string many(20000, '*');
    EXPECT_TRUE(exact_match(many + "b", as + "b"));
    EXPECT_FALSE(probe.matches(as.c_str(), (many + "b").c_str()));
}

TEST(ovFileFinder, ChecksOfFiltersAndPaths) {
    for (const char* bad : {"a:b", "a|b", "a<b", "a>b", "a\"b", "a/b", "a\\b", ""}) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(ovFileFinder::check_filter_valid(utString(bad)));
    }
    for (const char* good : {"*.c", "a?b", "x"}) {
        SCOPED_TRACE(good);
        EXPECT_TRUE(ovFileFinder::check_filter_valid(utString(good)));
    }
    EXPECT_FALSE(ovFileFinder::check_filter_valid(utString()));
    EXPECT_TRUE(FilterProbe::valid_char('*'));
    EXPECT_FALSE(FilterProbe::valid_char(':'));
    EXPECT_FALSE(ovFileFinder::check_path_valid(utString()));
    EXPECT_FALSE(ovFileFinder::check_path_valid(utString("")));
    EXPECT_TRUE(ovFileFinder::check_path_valid(utString("x")));
}

TEST(ovFileFinder, PathChecksAndRemoval) {
    ScratchDir dir;
    fs::create_directory(dir.native("sub"));
    write_file(dir.native("f.txt"));
    const std::string sub = dir.native("sub").generic_u8string();
    const std::string file = dir.native("f.txt").generic_u8string();
    EXPECT_EQ(ovFileFinder::check_path_exists(utString(sub.c_str())), ovFILE_IS_DIRECTORY);
    EXPECT_EQ(ovFileFinder::check_path_exists(utString(file.c_str())), ovFILE_IS_FILE);
    EXPECT_EQ(ovFileFinder::check_path_exists(utString((sub + "/none").c_str())),
              ovFILE_NO_SUCH_PATH);
    EXPECT_TRUE(ovFileFinder::check_directory_exists(utString((sub + "//").c_str())));
    EXPECT_TRUE(ovFileFinder::check_directory_exists(utString((sub + "\\").c_str())));
    EXPECT_FALSE(ovFileFinder::check_directory_exists(utString(file.c_str())));
    EXPECT_FALSE(ovFileFinder::check_directory_exists(utString("")));
    EXPECT_TRUE(ovFileFinder::check_file_exists(utString(file.c_str())));
    EXPECT_FALSE(ovFileFinder::check_file_exists(utString(sub.c_str())));

    EXPECT_EQ(ovFileFinder::remove_file(utString(sub.c_str())), ovFILE_IS_A_DIRECTORY);
    EXPECT_TRUE(fs::is_directory(dir.native("sub")));
    EXPECT_EQ(ovFileFinder::remove_file(utString(file.c_str())), ovFILE_REMOVED);
    EXPECT_FALSE(fs::exists(dir.native("f.txt")));
    EXPECT_EQ(ovFileFinder::remove_file(utString(file.c_str())), ovFILE_NOT_FOUND);
}

#if !defined(_WIN32)
TEST(ovFileFinder, RootSlashesAreQueriedUnchanged) {
    // Nothing is left after trimming "///", so the text goes as it is: the root.
    EXPECT_TRUE(ovFileFinder::check_directory_exists(utString("///")));
}
#endif

TEST(ovFileFinder, ListsDotEntriesAndFilters) {
    ScratchDir dir;
    write_file(dir.native("a.c"));
    write_file(dir.native("B.C"));
    fs::create_directory(dir.native("d"));
    const std::string top = dir.native().generic_u8string();

    ovFileFinder every{utString(top.c_str())};
    EXPECT_TRUE(every.invalid());
    std::multiset<std::string> all;
    while (++every)
        all.insert(every().c_str());
    EXPECT_EQ(all, (std::multiset<std::string>{".", "..", "a.c", "B.C", "d"}));
    EXPECT_FALSE(++every);

    ovFileFinder filtered(utString(top.c_str()), utString("*.c"));
    EXPECT_EQ(listed(filtered), (std::multiset<std::string>{"a.c"}));
    ovFileFinder insensitive(utString(top.c_str()), utString("*.c"));
    insensitive.set_case_sensitive(0);
    EXPECT_EQ(insensitive.case_sensitive(), 0);
    EXPECT_EQ(listed(insensitive), (std::multiset<std::string>{"a.c", "B.C"}));

    ovFileFinder missing(utString((top + "/none").c_str()));
    EXPECT_FALSE(++missing);
    EXPECT_TRUE(missing.invalid());
}

TEST(ovFileFinderEx, ListsWithoutDotEntries) {
    ScratchDir dir;
    write_file(dir.native("x.txt"));
    write_file(dir.native("y.dat"));
    fs::create_directory(dir.native("z"));
    const ovPath top(dir.path(), nullptr, nullptr);

    std::set<std::string> seen;
    ovFileFinderEx finder(top);
    EXPECT_FALSE(finder.invalid());
    EXPECT_TRUE(finder.undefined());
    while (++finder)
        seen.insert(utf8_of(finder().string()));
    EXPECT_EQ(seen, (std::set<std::string>{"x.txt", "y.dat", "z"}));

    const ovStringCompareNumeric exact;
    const ovFileMatch txt(utf8_text("*.txt"), &exact);
    ovFileMatchFinder matching(top, &txt);
    ASSERT_TRUE(++matching);
    EXPECT_EQ(utf8_of(matching().string()), "x.txt");
    EXPECT_FALSE(++matching);

    EXPECT_TRUE(ovFileFinderEx(ovPath(dir.path("x.txt"), nullptr, nullptr)).invalid());
}

TEST(ovRecursiveFileFinder, RelativeAndJoinedPaths) {
    ScratchDir dir;
    fs::create_directories(dir.native("sub/inner"));
    write_file(dir.native("top.txt"));
    write_file(dir.native("skip.dat"));
    write_file(dir.native("sub/inner/x.txt"));
    write_file(dir.native("sub/Y.TXT"));
    const ovPath top(dir.path(), nullptr, nullptr);

    const auto found = [&](const char* filter, int case_sensitive) {
        ovPathcoDList list;
        ovRecursiveFileFinder(top).get_files_including_sub_folders(utString(filter), case_sensitive,
                                                                   1, list);
        return names_of(list);
    };
    EXPECT_EQ(found("*.txt", 1), (std::vector<std::string>{"sub/inner/x.txt", "top.txt"}));
    EXPECT_EQ(found("*.txt", 0),
              (std::vector<std::string>{"sub/Y.TXT", "sub/inner/x.txt", "top.txt"}));

    ovPathcoDList joined;
    ovRecursiveFileFinder(top).get_files_including_sub_folders(utString("x.*"), 1, 0, joined);
    ASSERT_EQ(joined.size(), 1);
    EXPECT_EQ(utf8_of(joined.first()->path_ov()), utf8_of(dir.path("sub/inner/x.txt").string()));
    EXPECT_TRUE(joined.first()->is_file());
}
