#include "ovra/ovPathName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

ovString text(const char* utf8) {
    int st = 0;
    return ovString(ovSTRING_UTF8, utf8, st);
}

ovString failed_text() {
    int st = 0;
    return ovString(ovSTRING_UTF8, "\xC3\x28", st);
}

std::string utf8(const ovString& s) {
    const char* p = s.convert(ovSTRING_UTF8);
    return p ? p : "<null>";
}

std::string path(const char* t) {
    return utf8(ovPathName(text(t)).string());
}

// The normalising rules written plainly: one separator, the root kept as it is, runs of
// separators after it made one, a trailing one dropped.
std::string reference_normalise(std::string s) {
    if (s.empty())
        return ".";
    std::replace(s.begin(), s.end(), '\\', '/');
    const size_t root = s.compare(1, 2, ":/") == 0 ? 3
                        : s.rfind("//", 0) == 0    ? 2
                        : s.rfind("/", 0) == 0     ? 1
                                                   : 0;
    std::string rest;
    for (char c : s.substr(root))
        if (c != '/' || rest.empty() || rest.back() != '/')
            rest += c;
    if (!rest.empty() && rest.back() == '/')
        rest.pop_back();
    return s.substr(0, root) + rest;
}

// Short texts are all checked against the rules above; these are longer.
TEST(ovPathName, NormalisesText) {
    const struct {
        const char* in;
        const char* out;
    } cases[] = {
        {"C:\\dir\\\\sub\\", "C:/dir/sub"},      {"//server//share/", "//server/share"},
        {"\\\\server\\share", "//server/share"}, {"a//b///c//", "a/b/c"},
        {"c:/../Dir/./x", "c:/../Dir/./x"},      {"\xC3\xA9\\\xC3\xBC\\\\", "\xC3\xA9/\xC3\xBC"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(path(c.in), c.out);
    }
}

TEST(ovPathName, NormalisingMatchesTheRulesOnEveryShortText) {
    // Every text of up to six characters over the characters that matter.
    std::vector<std::string> level{""};
    for (size_t len = 0; len <= 6; ++len) {
        std::vector<std::string> next;
        for (const std::string& t : level) {
            ASSERT_EQ(path(t.c_str()), reference_normalise(t)) << "text \"" << t << "\"";
            for (char c : {'a', '/', '\\', ':', '.'})
                next.push_back(t + c);
        }
        level.swap(next);
    }
}

TEST(ovPathName, RootsRelativePathsDirnameAndBasename) {
    const struct {
        const char* in; // null: the default-constructed empty path
        int root, relative;
        const char *dirname, *basename;
        int basename_invalid; // a root has no name
    } cases[] = {
        {nullptr, 1, 1, ".", "", 1},        {".", 0, 1, ".", ".", 0},
        {"a", 0, 1, ".", "a", 0},           {"/", 1, 0, "/", "/", 1},
        {"//", 1, 0, "//", "//", 1},        {"C:/", 1, 0, "C:/", "C:/", 1},
        {"C:", 0, 1, ".", "C:", 0},         {"C:name", 0, 1, ".", "C:name", 0},
        {"/a", 0, 0, "/", "a", 0},          {"//server", 0, 0, "//", "server", 0},
        {"//s/x", 0, 0, "//s", "x", 0},     {"C:/a", 0, 0, "C:/", "a", 0},
        {"C:/a/b", 0, 0, "C:/a", "b", 0},   {"a/b/c", 0, 1, "a/b", "c", 0},
        {"a/b.txt", 0, 1, "a", "b.txt", 0}, {"//srv/share", 0, 0, "//srv", "share", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in ? c.in : "<empty path>");
        const ovPathName p = c.in ? ovPathName(text(c.in)) : ovPathName();
        EXPECT_EQ(p.is_root(), c.root);
        EXPECT_EQ(p.relative_path(), c.relative);
        EXPECT_EQ(utf8(p.dirname().string()), c.dirname);
        const ovFileName b = p.basename();
        EXPECT_EQ(utf8(b.string()), c.basename);
        EXPECT_EQ(b.invalid(), c.basename_invalid);
    }
}

TEST(ovPathName, AdjoinAndCombine) {
    const struct {
        const char* base; // null: the default-constructed empty path
        const char* tail;
        const char* out;
    } cases[] = {
        {".", "x", "./x"}, {"/", "x", "/x"},           {"//", "srv", "//srv"}, {"C:/", "x", "C:/x"},
        {"a", "b", "a/b"}, {"a/b", "c\\d", "a/b/c/d"}, {"a", "/abs", "a/abs"}, {nullptr, "x", "/x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.base ? c.base : "<empty path>") + " + " + c.tail);
        const ovPathName base = c.base ? ovPathName(text(c.base)) : ovPathName();
        // The name keeps its text as given; the joined path is normalised.
        EXPECT_EQ(utf8(base.adjoin(ovFileName(text(c.tail))).string()), c.out);
        EXPECT_EQ(utf8((base + ovFileName(text(c.tail))).string()), c.out);
        EXPECT_EQ(utf8(base.combine(ovPathName(text(c.tail))).string()), c.out);
        EXPECT_EQ(utf8((base + ovPathName(text(c.tail))).string()), c.out);
    }
    // An empty name adds nothing, but an empty path is ".".
    EXPECT_EQ(utf8(ovPathName(text("a")).adjoin(ovFileName()).string()), "a");
    EXPECT_EQ(utf8(ovPathName(text("a")).combine(ovPathName(text(""))).string()), "a/.");
}

TEST(ovPathName, NullOrFailedTextGivesAnInvalidPathThatStaysInvalid) {
    const ovString bad[] = {ovString(), failed_text()};
    for (const ovString& t : bad) {
        SCOPED_TRACE(t.failed() ? "failed" : "null");
        const ovPathName p(t);
        EXPECT_TRUE(p.invalid());
        EXPECT_TRUE(p.string().invalid()); // never the failure message
        EXPECT_TRUE(ovPathName(p).invalid());
        EXPECT_TRUE(p.dirname().invalid());
        EXPECT_TRUE(p.basename().invalid());
        EXPECT_TRUE(p.adjoin(ovFileName(text("x"))).invalid());
        EXPECT_TRUE(p.combine(ovPathName(text("x"))).invalid());
        EXPECT_TRUE(ovPathName(text("a")).combine(p).invalid());
        EXPECT_TRUE(ovPathName(text("a")).adjoin(ovFileName(t)).invalid());
    }
    EXPECT_FALSE(ovPathName().invalid());
    EXPECT_FALSE(ovPathName(text("")).invalid());
}

TEST(ovFileName, ValidityAndEquality) {
    const struct {
        ovString in;
        int invalid;
    } cases[] = {
        {text("a"), 0},   {text("a\\b"), 0}, {text(".profile"), 0}, {text(""), 1},
        {text("a/b"), 1}, {text("/"), 1},    {ovString(), 1},       {failed_text(), 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8(c.in));
        const ovFileName n(c.in);
        EXPECT_EQ(n.invalid(), c.invalid);
        EXPECT_EQ(ovFileName(n).invalid(), c.invalid);
    }
    EXPECT_TRUE(ovFileName().invalid());
    EXPECT_EQ(utf8(ovFileName(text("a\\b")).string()), "a\\b");
    EXPECT_TRUE(ovFileName(failed_text()).string().invalid());

    // Equality compares the text only, valid or not.
    EXPECT_TRUE(ovFileName(text("a.txt")) != ovFileName(text("A.TXT")));
    EXPECT_TRUE(ovFileName(text("a/b")) == ovFileName(text("a/b")));
    EXPECT_TRUE(ovFileName() == ovFileName(text("")));
    EXPECT_TRUE(ovFileName(text("")) != ovFileName(ovString()));
}

TEST(ovFileName, Extensions) {
    const struct {
        const char* name;
        int has;
        const char *with_dot, *without_dot, *stem;
    } cases[] = {
        {"name.txt", 1, ".txt", "txt", "name"},
        {"a.tar.gz", 1, ".gz", "gz", "a.tar"},
        {".profile", 1, ".profile", "profile", ""},
        {"name.", 1, ".", "", "name"},
        {"name", 0, "", "", "name"},
        {"", 0, "", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ovFileName n(text(c.name));
        EXPECT_EQ(n.has_extension(), c.has);
        EXPECT_EQ(utf8(n.extension_with_dot()), c.with_dot);
        EXPECT_EQ(utf8(n.extension_without_dot()), c.without_dot);
        EXPECT_EQ(utf8(n.without_extension()), c.stem);
    }
}

TEST(ovFileName, AddAndReplaceExtension) {
    const struct {
        const char *name, *ext, *added, *replaced;
        int added_invalid;
    } cases[] = {
        {"a", "txt", "a.txt", "a.txt", 0},
        {"a.tar.gz", "zip", "a.tar.gz.zip", "a.tar.zip", 0},
        {".profile", "bak", ".profile.bak", ".bak", 0},
        {"a", "x/y", "a.x/y", "a.x/y", 1},
        {"", "txt", ".txt", ".txt", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " + " + c.ext);
        const ovFileName n(text(c.name));
        const ovFileName added = n.add_extension(text(c.ext));
        EXPECT_EQ(utf8(added.string()), c.added);
        EXPECT_EQ(added.invalid(), c.added_invalid);
        EXPECT_EQ(utf8(n.replace_extension(text(c.ext)).string()), c.replaced);
    }
    // Null in, null out.
    const ovFileName null_name{ovString()};
    EXPECT_TRUE(null_name.add_extension(text("x")).string().invalid());
    EXPECT_TRUE(null_name.replace_extension(text("x")).string().invalid());
    EXPECT_TRUE(ovFileName(text("a")).add_extension(ovString()).string().invalid());
    EXPECT_TRUE(ovFileName(text("a")).replace_extension(failed_text()).string().invalid());
}

struct Split {
    const char* path;
    const char *directory, *name, *extension; // null: the null utString
};

void check_split(const Split& c, bool with_dot) {
    SCOPED_TRACE(c.path ? c.path : "<null>");
    ovSplitPath splitter;
    utString d("old"), n("old"), e("old");
    const utString p(c.path);
    if (with_dot)
        splitter.split_path_with_dot(p, d, n, e);
    else
        splitter.split_path(p, d, n, e);
    EXPECT_EQ(d, c.directory);
    EXPECT_EQ(n, c.name);
    EXPECT_EQ(e, c.extension);

    // The path may be one of the outputs.
    utString alias(c.path);
    if (with_dot)
        splitter.split_path_with_dot(alias, d, n, alias);
    else
        splitter.split_path(alias, alias, n, e);
    EXPECT_EQ(with_dot ? alias : d, with_dot ? c.extension : c.directory);
}

// split_path: the last dot of the last component; split_path_with_dot: the first.
TEST(ovSplitPath, SplitsAtTheLastOrTheFirstDot) {
    const Split cases[] = {
        {"d/a.tar.gz", "d", "a.tar", "gz"},
        {"name.txt", "", "name", "txt"},
        {"a\\b.c", "a", "b", "c"},
        {"x.d/file", "x.d", "file", ""},
        {"/x", "", "x", ""},
        {"dir/", "dir", "", ""},
        {".profile", "", "", "profile"},
        {"", "", "", ""},
        {nullptr, "", nullptr, ""},
    };
    for (const Split& c : cases)
        check_split(c, false);
    const Split with_dot[] = {
        {"d/a.tar.gz", "d/", "a", ".tar.gz"},
        {"name.txt", "", "name", ".txt"},
        {"a\\b", "a\\", "b", ""},
        {"x/../y", "x/../", "y", ""},
        {"..", "..", "", ""},
        {".", "", "", "."},
        {".profile", "", "", ".profile"},
        {"", "", "", ""},
        {nullptr, "", nullptr, ""},
    };
    for (const Split& c : with_dot)
        check_split(c, true);
}

} // namespace
