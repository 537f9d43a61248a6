// Windows wide text is UTF-16: the wide and UTF-16 forms are one.
#include "ovra/ovStringEncoding.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

using namespace ovtest;

TEST(ovStringWindows, WideTextIsUtf16) {
    int st = -1;
    const wchar_t lone[] = {L'a', 0xD800, 0};
    const ovString bad(ovSTRING_WCS, lone, st);
    EXPECT_EQ(st, 1);
    EXPECT_EQ(utf8_of(bad), "Failed to construct string from UTF16 string.");

    const ovString s(ovSTRING_L, L"\U0001F600");
    EXPECT_EQ(s.length(), 1u);
    EXPECT_EQ(s.convert(ovSTRING_WCS), s.convert(ovSTRING_UTF16));
}
