// POSIX wide text is UTF-32; the C runtime follows the process locale.
#include "ovra/ovStringEncoding.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

using namespace ovtest;

TEST(ovStringPosix, WideTextIsValidatedUtf32) {
    struct Case {
        const char* name;
        std::wstring text;
        bool fails;
    };
    const Case cases[] = {
        {"astral", std::wstring(1, static_cast<wchar_t>(0x1F600)), false},
        {"surrogate value", std::wstring(1, static_cast<wchar_t>(0xD800)), true},
        {"above U+10FFFF", std::wstring(1, static_cast<wchar_t>(0x110000)), true},
        {"negative", std::wstring(1, static_cast<wchar_t>(-1)), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        int st = -1;
        const ovString s(ovSTRING_WCS, c.text.c_str(), st);
        EXPECT_EQ(st, c.fails ? 1 : 0);
        EXPECT_EQ(s.failed(), c.fails ? 1 : 0);
        if (c.fails)
            EXPECT_EQ(utf8_of(s), "Failed to construct string from UTF16 string.");
        else
            EXPECT_EQ(std::wstring(s.convert(ovSTRING_WCS)), c.text);
    }
    // Surrogates kept from UTF-32 text are copied out as they are.
    const unsigned int odd[] = {0xDC00, 0};
    int st;
    EXPECT_EQ(static_cast<unsigned>(ovString(ovSTRING_UTF32, odd, st).convert(ovSTRING_WCS)[0]),
              0xDC00u);
}

TEST(ovStringPosix, CrtEncodingFollowsAUtf8Locale) {
    const std::string saved = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "C.UTF-8"))
        GTEST_SKIP() << "no C.UTF-8 locale";
    const ovStringCRTEncoding crt;
    int st = -1;
    const ovString s = crt.in("gr\xC3\xBC\xC3\x9F", st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(utf8_of(s), "gr\xC3\xBC\xC3\x9F");
    EXPECT_STREQ(crt.out(s, st).c_str(), "gr\xC3\xBC\xC3\x9F");

    st = -1;
    const ovString bad = crt.in("bad\xC3", st);
    EXPECT_EQ(st, 1);
    EXPECT_FALSE(bad.failed()) << "an ordinary string holding the message";
    EXPECT_EQ(utf8_of(bad), "Failed to construct string from MB string.");
    std::setlocale(LC_ALL, saved.c_str());
}
