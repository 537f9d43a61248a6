#include "ovra/ovString.h"

#include "co/coHash.h"
#include "string_test_util.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <sstream>
#include <string>
#include <utility>

using namespace ovtest;

namespace {
const char kUtf8Message[] = "Failed to construct string from UTF8 string.";
const char kUtf16Message[] = "Failed to construct string from UTF16 string.";
const char kUnsafeMessage[] = "Error: this string contains unsafe/non-ASCII characters.";
} // namespace

TEST(ovString, NullAndEmptyStates) {
    const ovString null;
    EXPECT_TRUE(null.invalid());
    EXPECT_TRUE(null.empty());
    EXPECT_FALSE(null.failed());
    EXPECT_EQ(null.convert(ovSTRING_UTF16), nullptr);
    EXPECT_EQ(co_hash(null), 0u);

    const ovString empty(ovSTRING_EMPTY);
    EXPECT_FALSE(empty.invalid());
    EXPECT_TRUE(empty.empty());
    EXPECT_STREQ(empty.convert(ovSTRING_UTF8), "");

    EXPECT_TRUE(null != empty);
    EXPECT_TRUE(empty == from_utf8(""));

    // Every pointer-taking form gives the null string for null.
    int st = -1;
    EXPECT_TRUE(ovString(ovSTRING_UTF8, nullptr, st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_UTF16, static_cast<const ovChar16*>(nullptr), st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_UTF16, nullptr, 4, st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_UTF32, static_cast<const unsigned int*>(nullptr), st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_UTF32, nullptr, 4, st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_L, nullptr).invalid());
    EXPECT_TRUE(ovString(ovSTRING_WCS, nullptr, st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_UTF16LE, nullptr, 4, st).invalid());
    EXPECT_TRUE(ovString(ovSTRING_SAFE_ASCII, nullptr, st).invalid());
    EXPECT_EQ(st, 0);
}

TEST(ovString, BadInputGivesAFailedStringHoldingTheMessage) {
    int st = -1;
    const ovString bad8(ovSTRING_UTF8, "\xC3\x28", st);
    EXPECT_EQ(st, 1);
    EXPECT_TRUE(bad8.failed());
    EXPECT_EQ(utf8_of(bad8), kUtf8Message);

    // The lone 0x80 byte is the one continuation byte that passes.
    const ovString odd(ovSTRING_UTF8, "a\x80", st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(code_points(odd), (codes{'a', 0x80}));

    const u16string lone = u16({'a', 0xD800});
    const ovString bad16(ovSTRING_UTF16, lone.c_str(), st);
    EXPECT_TRUE(st == 1 && bad16.failed());
    EXPECT_EQ(utf8_of(bad16), kUtf16Message);

    // Copies are never failed but keep the text; moves and swaps keep the flag.
    ovString copy(bad8);
    EXPECT_FALSE(copy.failed());
    EXPECT_EQ(utf8_of(copy), kUtf8Message);
    copy = bad8;
    EXPECT_FALSE(copy.failed());
    ovString source(ovSTRING_UTF8, "\xFF", st);
    ovString moved(std::move(source));
    EXPECT_TRUE(moved.failed());
    EXPECT_TRUE(source.invalid());
    ovString other = from_utf8("fine");
    other.swap(moved);
    EXPECT_TRUE(other.failed());
    EXPECT_FALSE(moved.failed());
    EXPECT_EQ(utf8_of(moved), "fine");

    // The flag plays no part in equality.
    EXPECT_TRUE(bad8 == from_utf8(kUtf8Message));
}

TEST(ovString, Utf16SurrogatePairsRoundTrip) {
    const u16string pair = u16({'x', 0xD83D, 0xDE00});
    int st = -1;
    const ovString s(ovSTRING_UTF16, pair.c_str(), st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(code_points(s), (codes{'x', 0x1F600}));
    EXPECT_EQ(u16string(s.convert(ovSTRING_UTF16)), pair);

    // The counted form stops at n, not at a 0.
    const ovString first(ovSTRING_UTF16, pair.c_str(), 1, st);
    EXPECT_EQ(utf8_of(first), "x");
}

TEST(ovString, SafeAsciiStopsAtLowercaseZ) {
    struct Case {
        const char* text;
        int status;
    };
    const Case cases[] = {
        {"abz", 0}, {"ABC 123", 0}, {"tab\tnew\nline", 0}, {"a{b", 1},         {"pipe|", 1},
        {"}", 1},   {"tilde~", 1},  {"del\x7F", 1},        {"caf\xC3\xA9", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        int st = -1;
        ovString s(ovSTRING_SAFE_ASCII, c.text, st);
        EXPECT_EQ(st, c.status);
        EXPECT_EQ(s.failed(), c.status);
        EXPECT_EQ(utf8_of(s), c.status ? kUnsafeMessage : c.text);

        // The way out applies the same test to the UTF-8 form.
        ovString plain = from_utf8(c.text);
        int out_status = -1;
        const utString out = plain.convert(ovSTRING_SAFE_ASCII, out_status);
        EXPECT_EQ(out_status, c.status);
        EXPECT_STREQ(out.c_str(), c.status ? kUnsafeMessage : c.text);
    }
    ovString null;
    int st = -1;
    EXPECT_TRUE(null.convert(ovSTRING_SAFE_ASCII, st).is_null());
    EXPECT_EQ(st, 0);
}

TEST(ovString, LittleEndianBytesKeepStatusZero) {
    int st = -1;
    const unsigned char ab[] = {0x41, 0x00, 0x42};
    const ovString s(ovSTRING_UTF16LE, ab, 3, st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(utf8_of(s), "AB") << "an odd last byte is a unit of its own";

    const unsigned char pair[] = {0x3D, 0xD8, 0x00, 0xDE};
    EXPECT_EQ(code_points(ovString(ovSTRING_UTF16LE, pair, 4, st)), (codes{0x1F600}));

    const unsigned char lone[] = {0x61, 0x00, 0x00, 0xD8};
    st = -1;
    const ovString bad(ovSTRING_UTF16LE, lone, 4, st);
    EXPECT_EQ(st, 0) << "this form leaves status 0 on purpose";
    EXPECT_TRUE(bad.failed());
    EXPECT_EQ(utf8_of(bad), kUtf16Message);

    const ovString none(ovSTRING_UTF16LE, ab, 0, st);
    EXPECT_FALSE(none.invalid());
    EXPECT_TRUE(none.empty());
}

TEST(ovString, Utf32IsKeptAsGivenAndCutAtZero) {
    const unsigned int odd[] = {'a', 0xD800, 0x110000, 0};
    int st = -1;
    const ovString s(ovSTRING_UTF32, odd, st);
    EXPECT_EQ(st, 0);
    EXPECT_FALSE(s.failed());
    EXPECT_EQ(code_points(s), (codes{'a', 0xD800, 0x110000}));
    EXPECT_EQ(utf8_of(s), "a\xED\xA0\x80\xF4\x90\x80\x80") << "encoded bit by bit";

    const unsigned int embedded[] = {'a', 'b', 0, 'c'};
    EXPECT_EQ(code_points(ovString(ovSTRING_UTF32, embedded, 4, st)), (codes{'a', 'b'}));
}

namespace {
// The claiming constructor is for the library's own builders; reach it as one.
struct Claimed : ovString {
    explicit Claimed(const unsigned int* p) : ovString(utPTR_CLAIM, p) {}
};
} // namespace

TEST(ovString, ClaimedArrayIsSharedNotCopied) {
    unsigned int* array = new unsigned int[5]{'a', 0xE9, 'b', 0, 'z'};
    ovString copy;
    {
        const Claimed s(array);
        EXPECT_EQ(s.convert(ovSTRING_UTF32), array) << "no copy";
        EXPECT_EQ(code_points(s), (codes{'a', 0xE9, 'b'})) << "cut at the first 0";
        copy = s;
    }
    // The copy keeps the claimed array alive; ASan checks it is freed once, with delete[].
    EXPECT_EQ(copy.convert(ovSTRING_UTF32), array);
    EXPECT_EQ(utf8_of(copy), "a\xC3\xA9"
                             "b");
    EXPECT_TRUE(Claimed(nullptr).invalid());
}

TEST(ovString, WideAndLiteralForms) {
    const ovString wide(ovSTRING_L, L"WOBBLE");
    EXPECT_TRUE(wide == OVSTRING("WOBBLE"));

    int st = -1;
    const wchar_t* text = L"h\u00E9llo \u65E5\u672C";
    const ovString s(ovSTRING_WCS, text, st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(utf8_of(s), "h\xC3\xA9llo \xE6\x97\xA5\xE6\x9C\xAC");
    EXPECT_EQ(std::wcscmp(s.convert(ovSTRING_WCS), text), 0);

    EXPECT_EQ(code_points(ovSTRING_SPACE_CHARS), (codes{'\t', '\n', '\r', ' '}));
    EXPECT_TRUE(OVSTRING("\xFF").failed()) << "a bad literal shows";
}

TEST(ovString, CachesBelongToEachObject) {
    const ovString s = from_utf8("caf\xC3\xA9");
    const char* first = s.convert(ovSTRING_UTF8);
    EXPECT_EQ(s.convert(ovSTRING_UTF8), first) << "built once";

    const ovString copy(s);
    EXPECT_EQ(copy.convert(ovSTRING_UTF32), s.convert(ovSTRING_UTF32)) << "copies share text";
    EXPECT_NE(copy.convert(ovSTRING_UTF8), first) << "but not caches";
    EXPECT_STREQ(copy.convert(ovSTRING_UTF8), first);

    const ovString deep(utCOPY, s);
    EXPECT_NE(deep.convert(ovSTRING_UTF32), s.convert(ovSTRING_UTF32));
    EXPECT_TRUE(deep == s);
    EXPECT_TRUE(ovString(utCOPY, ovString()).invalid());
    int st;
    const ovString failed(ovSTRING_UTF8, "\xC3", st);
    EXPECT_FALSE(ovString(utCOPY, failed).failed());
}

TEST(ovString, PositionsCompareIndexesButEqualityNeedsTheSameText) {
    const ovString a = from_utf8("abcdef");
    const ovString b = from_utf8("abcdef");
    const ovStringPos pa = a.begin() + 2;
    const ovStringPos pb = b.begin() + 2;
    EXPECT_TRUE(!(pa == pb) && pa != pb);
    EXPECT_TRUE(pa <= pb && pa >= pb && !(pa < pb) && !(pa > pb));
    EXPECT_TRUE(a.begin() < pb);

    ovStringPos p = a.begin();
    ++p;
    p += 3;
    EXPECT_EQ(p.index(), 4u);
    EXPECT_EQ(p + -4, a.begin());
    EXPECT_EQ(a.end() - p, 2u);
    EXPECT_EQ(p - a.end(), static_cast<uint64_t>(-2)) << "unsigned difference";

    const ovStringPos nowhere;
    EXPECT_EQ(nowhere.index(), SIZE_MAX);

    // Positions carry over between strings, clamped to the end.
    const ovString shorter = from_utf8("xy");
    EXPECT_EQ(shorter.convert_pos(a, a.begin() + 1), shorter.begin() + 1);
    EXPECT_EQ(shorter.convert_pos(a, a.end()), shorter.end());
}

TEST(ovString, SearchFindsFirstAndLastMatches) {
    struct Case {
        const char* text;
        const char* pattern;
        size_t first; // SIZE_MAX: not found (end())
        size_t last;
    };
    const size_t none = SIZE_MAX;
    const Case cases[] = {
        {"aXa", "a", 0, 2},
        {"aaa", "aa", 0, 1},
        {"hello", "lo", 3, 3},
        {"hello", "xyz", none, none},
        {"ab", "abc", none, none},
        {"", "a", none, none},
        {"h\xC3\xA9h\xC3\xA9", "\xC3\xA9", 1, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " / " << c.pattern);
        const ovString s = from_utf8(c.text);
        const ovString pat = from_utf8(c.pattern);
        const ovStringPos f = s.find_substring(pat);
        const ovStringPos l = s.find_last(pat);
        EXPECT_EQ(f, c.first == none ? s.end() : s.begin() + static_cast<int>(c.first));
        EXPECT_EQ(l, c.last == none ? s.end() : s.begin() + static_cast<int>(c.last));
    }

    const ovString s = from_utf8("abcabc");
    // An empty pattern is found where the search starts.
    EXPECT_EQ(s.find_substring(ovString(ovSTRING_EMPTY), s.begin() + 2, s.end()), s.begin() + 2);
    EXPECT_EQ(s.find_last(ovString(), s.begin() + 1, s.end()), s.begin() + 1);
    // Ranges: matches must lie wholly inside [from, to).
    const ovString abc = from_utf8("abc");
    EXPECT_EQ(s.find_substring(abc, s.begin() + 1, s.end()), s.begin() + 3);
    EXPECT_EQ(s.find_substring(abc, s.begin(), s.begin() + 2), s.begin() + 2);
    EXPECT_EQ(s.find_last(abc, s.begin(), s.begin() + 5), s.begin());
    EXPECT_EQ(s.find_last(abc, s.begin() + 1, s.begin() + 5), s.begin() + 5);
    // A `to` far beyond the text is safe and comes back when nothing matches.
    const ovStringPos far = s.begin() + 1000;
    EXPECT_EQ(s.find_substring(from_utf8("zz"), s.begin(), far), far);
    EXPECT_EQ(s.find_last(abc, s.begin(), far), s.begin() + 3);
}

TEST(ovString, MatchingAtPositions) {
    const ovString s = from_utf8("prefix-body");
    EXPECT_TRUE(s.begins_with(from_utf8("pre")) && !s.begins_with(from_utf8("body")));
    EXPECT_TRUE(s.ends_with(from_utf8("body")) && s.ends_with(ovString(ovSTRING_EMPTY)));
    EXPECT_FALSE(s.ends_with(from_utf8("a-much-longer-prefix-body"))) << "start wraps, no match";
    EXPECT_TRUE(s.matches(from_utf8("-"), s.begin() + 6));
    EXPECT_FALSE(s.matches(from_utf8("y!"), s.begin() + 10));
    EXPECT_FALSE(ovString(ovSTRING_EMPTY).matches(from_utf8("a"), ovStringPos()));
}

TEST(ovString, ReplaceAllIsLeftToRightAndNonOverlapping) {
    struct Case {
        const char* text;
        const char* old;
        const char* by;
        const char* result;
    };
    const Case cases[] = {
        {"aaaa", "aa", "b", "bb"},       {"aaa", "aa", "b", "ba"},
        {"a.b.c", ".", "::", "a::b::c"}, {"abc", "x", "y", "abc"},
        {"abc", "abc", "", ""},          {"caf\xC3\xA9", "\xC3\xA9", "e", "cafe"},
        {"abc", "", "zz", "abc"}, // an empty search string changes nothing
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " / " << c.old);
        const ovString r = from_utf8(c.text).replace_all(from_utf8(c.old), from_utf8(c.by));
        EXPECT_EQ(utf8_of(r), c.result);
        EXPECT_FALSE(r.failed());
    }
    EXPECT_TRUE(ovString().replace_all(from_utf8("a"), from_utf8("b")) == ovString(ovSTRING_EMPTY));
}

TEST(ovString, SlicingClampsToTheText) {
    const ovString s = from_utf8("h\xC3\xA9llo");
    EXPECT_EQ(utf8_of(s.left(s.begin() + 2)), "h\xC3\xA9");
    EXPECT_EQ(utf8_of(s.mid(s.begin() + 1, s.begin() + 3)), "\xC3\xA9l");
    EXPECT_EQ(utf8_of(s.right(s.begin() + 3)), "lo");
    EXPECT_EQ(utf8_of(s.right(s.end())), "");
    // Beyond the text, or backwards: clamped, never out of bounds.
    EXPECT_EQ(utf8_of(s.left(s.begin() + 99)), "h\xC3\xA9llo");
    EXPECT_EQ(utf8_of(s.mid(s.begin() + 3, s.begin() + 99)), "lo");
    EXPECT_EQ(utf8_of(s.mid(s.begin() + 4, s.begin() + 2)), "");
    EXPECT_EQ(utf8_of(s.right(ovStringPos())), "");
    // An empty or null string slices to a valid empty string.
    for (const ovString& e : {ovString(), ovString(ovSTRING_EMPTY)})
        EXPECT_TRUE(e.mid(e.begin(), e.begin() + 3) == ovString(ovSTRING_EMPTY));
}

TEST(ovString, FirstNonMatchingCharacter) {
    const ovString s = from_utf8(" \t x");
    EXPECT_EQ(s.first_non_matching_character(ovSTRING_SPACE_CHARS), s.begin() + 3);
    const ovString blanks = from_utf8("   ");
    EXPECT_EQ(blanks.first_non_matching_character(ovSTRING_SPACE_CHARS), blanks.end());
    const ovString empty(ovSTRING_EMPTY);
    EXPECT_EQ(empty.first_non_matching_character(ovSTRING_SPACE_CHARS), empty.begin());
    EXPECT_EQ(s.first_non_matching_character(ovString()), s.begin()) << "nothing is in a null set";
}

TEST(ovString, ConcatenationAndEquality) {
    EXPECT_EQ(utf8_of(from_utf8("ab") + from_utf8("\xC3\xA9")), "ab\xC3\xA9");
    EXPECT_TRUE(ovString() + ovString() == ovString(ovSTRING_EMPTY));
    int st;
    const ovString failed(ovSTRING_UTF8, "\xC3", st);
    EXPECT_FALSE((failed + from_utf8("!")).failed());

    ovString s = from_utf8("a");
    const char* cache = s.convert(ovSTRING_UTF8);
    s += from_utf8("b");
    EXPECT_EQ(utf8_of(s), "ab");
    EXPECT_NE(s.convert(ovSTRING_UTF8), cache);

    EXPECT_FALSE(from_utf8("abc") == from_utf8("abd") || from_utf8("ab") == from_utf8("abc"));
    EXPECT_TRUE(from_utf8("ab") != ovString());
}

TEST(ovString, WriteGivesLittleEndianUtf16Bytes) {
    struct Case {
        const char* text;
        std::string bytes;
    };
    const Case cases[] = {
        {"A", std::string("A\0", 2)},
        {"\xE2\x82\xAC", std::string("\xAC\x20", 2)},
        {"\xF0\x9F\x98\x80", std::string("\x3D\xD8\x00\xDE", 4)},
        {"", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        std::ostringstream os;
        EXPECT_EQ(from_utf8(c.text).write(os, ovSTRING_UTF16LE), c.bytes.size());
        EXPECT_EQ(os.str(), c.bytes);
    }
    std::ostringstream os;
    EXPECT_EQ(ovString().write(os, ovSTRING_UTF16LE), 0u);
}

TEST(ovString, HashIsOverTheStoredCodePoints) {
    const ovString a = from_utf8("h\xC3\xA9llo");
    const ovString b(ovSTRING_L, L"h\u00E9llo");
    EXPECT_EQ(co_hash(a), co_hash(b));
    EXPECT_NE(co_hash(a), co_hash(from_utf8("hello")));
    const unsigned int stored[] = {'h', 0xE9, 'l', 'l', 'o'};
    EXPECT_EQ(co_hash(a), co_hash(static_cast<const void*>(stored), 20));
}
