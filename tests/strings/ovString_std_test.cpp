// std::string_view in, std::string out, and UTF-8 given as pointer and length.
#include "ovra/ovString.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using namespace ovtest;

TEST(ovStringStd, PointerAndLengthReadsExactlyThoseBytes) {
    const std::string kFailed = "Failed to construct string from UTF8 string.";
    const struct {
        const char* name;
        std::string bytes;
        size_t n;
        int status;
        std::string utf8; // what the string holds: its text, or the message
    } cases[] = {
        {"ascii", "hello", 5, 0, "hello"},
        {"prefix only", "hello", 3, 0, "hel"},
        {"empty", "hello", 0, 0, ""},
        {"two-byte", "na\xC3\xAFve", 6, 0, "na\xC3\xAFve"},
        {"four-byte", "\xF0\x9F\x98\x80", 4, 0, "\xF0\x9F\x98\x80"},
        {"cut inside a character", "na\xC3\xAFve", 3, 1, kFailed},
        {"bad byte",
         "a\xFF"
         "b",
         3, 1, kFailed},
        {"lone 0x80 as everywhere", "\x80", 1, 0, "\xC2\x80"},
        {"0 byte inside", std::string("a\0b", 3), 3, 1, kFailed},
        {"0 byte just past the end", std::string("ab\0", 3), 2, 0, "ab"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int status = -1;
        const ovString s(ovSTRING_UTF8, c.bytes.data(), c.n, status);
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(s.failed(), c.status);
        EXPECT_EQ(s.invalid(), 0);
        EXPECT_EQ(s.to_utf8(), c.utf8);
    }
}

TEST(ovStringStd, PointerAndLengthAgreesWithTheTerminatedForm) {
    for (const char* text : {"", "plain", "h\xC3\xA9llo", "\xE6\x97\xA5\xE6\x9C\xAC",
                             "bad \xC3\x28", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        SCOPED_TRACE(text);
        int terminated_status = -1;
        int counted_status = -1;
        const ovString terminated(ovSTRING_UTF8, text, terminated_status);
        const ovString counted(ovSTRING_UTF8, text, std::char_traits<char>::length(text),
                               counted_status);
        EXPECT_EQ(counted_status, terminated_status);
        EXPECT_EQ(counted.failed(), terminated.failed());
        EXPECT_EQ(code_points(counted), code_points(terminated));
        EXPECT_EQ(utf8_of(counted), utf8_of(terminated));
    }
}

TEST(ovStringStd, NullPointerGivesTheNullString) {
    int status = -1;
    const ovString s(ovSTRING_UTF8, static_cast<const char*>(nullptr), 7, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(s.invalid(), 1);
    EXPECT_EQ(s.to_utf8(), "");
}

TEST(ovStringStd, StringViewAndStdStringIn) {
    using namespace std::string_literals;
    int status = -1;
    const ovString from_view(ovSTRING_UTF8, std::string_view("\xE6\x97\xA5 x", 5), status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(code_points(from_view), (codes{0x65E5, 0x20, 0x78}));

    // A std::string converts to the view; its own length counts, not a 0.
    const std::string text = "caf\xC3\xA9";
    EXPECT_EQ(ovString(ovSTRING_UTF8, text).to_utf8(), text);
    const ovString with_zero(ovSTRING_UTF8, "a\0b"s);
    EXPECT_EQ(with_zero.failed(), 1);

    // An empty view, even one with no data, is a valid empty string.
    const ovString empty(ovSTRING_UTF8, std::string_view(), status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(empty.invalid(), 0);
    EXPECT_EQ(empty.empty(), 1);

    // Without a status, failure shows in the string.
    const ovString bad(ovSTRING_UTF8, std::string_view("\xFF"));
    EXPECT_EQ(bad.failed(), 1);
}

TEST(ovStringStd, ToUtf8) {
    EXPECT_EQ(ovString().to_utf8(), "");
    EXPECT_EQ(ovString(ovSTRING_EMPTY).to_utf8(), "");
    EXPECT_EQ(from_utf8("\xF0\x9F\x98\x80 ok").to_utf8(), "\xF0\x9F\x98\x80 ok");
    // A failed string gives its message, as convert does.
    EXPECT_EQ(from_utf8("\xC3").to_utf8(), "Failed to construct string from UTF8 string.");
    // The result is the caller's own: it outlives the string.
    std::string kept;
    {
        const ovString s = from_utf8("temporary");
        kept = s.to_utf8();
    }
    EXPECT_EQ(kept, "temporary");
}
