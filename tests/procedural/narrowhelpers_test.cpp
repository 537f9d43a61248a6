#include "ovra/ovNarrowHelpers.h"

#include "ut/utString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace {

int sign(int v) {
    return (v > 0) - (v < 0);
}

} // namespace

TEST(ovstrrep, ReplacesARangeGrowingOrShrinking) {
    struct Case {
        const char* text;
        int first, last;
        const char *with, *expected;
    } const cases[] = {
        {"abcdef", 1, 2, "XYZW", "aXYZWdef"},
        {"abcdef", 1, 2, "", "adef"},
        {"abcdef", 1, 2, "QR", "aQRdef"},
        {"abcdef", 0, 5, "z", "z"},
        {"abcdef", 3, 2, "++", "abc++def"}, // an empty range inserts
        {"abc", 3, 2, "!", "abc!"},
        {"", 0, -1, "new", "new"},
        // Outside the text: nothing happens.
        {"abc", 2, 3, "x", "abc"},
        {"abc", -1, 0, "x", "abc"},
        {"abc", 2, 0, "x", "abc"},
        {"abc", 4, 4, "x", "abc"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << c.text << " [" << c.first << "," << c.last << "] " << c.with);
        char buf[32] = {};
        std::strcpy(buf, c.text);
        ovstrrep(buf, c.first, c.last, c.with);
        EXPECT_STREQ(buf, c.expected);
    }
    ovstrrep(nullptr, 0, 0, "x");
    char buf[] = "abc";
    ovstrrep(buf, 0, 0, nullptr);
    EXPECT_STREQ(buf, "abc");
}

TEST(ovcasecmp, ComparesWithoutCaseAsDocumented) {
    struct Case {
        const char *a, *b;
        int n, ncmp, cmp;
    } const cases[] = {
        {"ABC", "abd", 2, 0, -1},     {"ABC", "abd", 3, -1, -1},
        {"ab", "abc", 10, -1, -1},    {"abc", "ab", 10, 1, 1},
        {"Hello", "hELLO", 99, 0, 0}, {"a", "", 5, 1, 1},
        {"", "a", 5, -1, -1},         {"", "", 5, 0, 0},
        {"b", "A", 1, 1, 1},          {"x", "y", 0, 0, -1},
        {"x", "y", -3, 0, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.a << " vs " << c.b << " n " << c.n);
        EXPECT_EQ(ovstrncasecmp(c.a, c.b, c.n), c.ncmp);
        EXPECT_EQ(sign(ovstrcasecmp(c.a, c.b)), c.cmp);
    }
    EXPECT_EQ(ovstrcasecmp(nullptr, "a"), 0);
    EXPECT_EQ(ovstrcasecmp("a", nullptr), 0);
    EXPECT_EQ(ovstrncasecmp(nullptr, "a", 3), 0);
}

TEST(ovchcasecmp, NulRulesAndSignedOrder) {
    EXPECT_EQ(ovchcasecmp('A', 'a'), 0);
    EXPECT_EQ(ovchcasecmp('a', 'B'), -1);
    EXPECT_EQ(ovchcasecmp('c', 'B'), 1);
    EXPECT_EQ(ovchcasecmp('\0', '\0'), -1);
    EXPECT_EQ(ovchcasecmp('a', '\0'), 1);
    EXPECT_EQ(ovchcasecmp('\0', 'a'), -1);
    // Signed: a byte above 127 sorts before ASCII.
    EXPECT_EQ(ovchcasecmp('\xE9', 'a'), -1);
}

TEST(ovpos, FindsTheEndOfTheFirstOccurrenceKeepingTheLastCandidateQuirk) {
    struct Case {
        const char *needle, *haystack;
        int expected;
    } const cases[] = {
        {"cd", "abcdef", 4}, {"x", "abc", 0},   {"cx", "abc", 1},   {"cx", "abcd", 0},
        {"a", "abc", 1},     {"abc", "abc", 3}, {"", "abc", 3},     {"", "", 0},
        {"a", "", 0},        {"bc", "abbc", 4}, {"aab", "aaab", 4}, {"abcd", "abc", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.needle << " in " << c.haystack);
        EXPECT_EQ(ovpos(c.needle, c.haystack), c.expected);
    }
    EXPECT_EQ(ovpos(nullptr, "abc"), 0);
    EXPECT_EQ(ovpos("a", nullptr), 0);
}

TEST(ovgsub, ReplacesEveryCharacterInTextAndUtString) {
    char text[] = "a.b.c";
    ovgsub(text, '.', '/');
    EXPECT_STREQ(text, "a/b/c");
    ovgsub(static_cast<char*>(nullptr), 'a', 'b');

    static const char literal[] = "x.y";
    utString shared(utSTRING_LIT, literal);
    ovgsub(shared, '.', '_');
    EXPECT_EQ(shared, "x_y");
    EXPECT_STREQ(literal, "x.y") << "the literal is never written";
    utString none(utSTRING_LIT, literal);
    ovgsub(none, 'q', 'r');
    EXPECT_EQ(none.c_str(), literal) << "nothing to replace: still shared";
    utString null;
    ovgsub(null, 'a', 'b');
    EXPECT_TRUE(null.is_null());
}

TEST(ovconcat, JoinsCountStringsIntoANewHeapString) {
    struct Deleter {
        void operator()(char* p) const { ::operator delete(p); }
    };
    auto joined = [](char* p) { return std::unique_ptr<char, Deleter>(p); };
    EXPECT_STREQ(joined(ovconcat(3, "a", "bc", "")).get(), "abc");
    EXPECT_STREQ(joined(ovconcat(1, "solo")).get(), "solo");
    EXPECT_STREQ(joined(ovconcat(2, "x", static_cast<const char*>(nullptr))).get(), "x");
    EXPECT_STREQ(joined(ovconcat(0, "ignored")).get(), "");
    EXPECT_STREQ(joined(ovconcat(-2, "ignored")).get(), "");
}
