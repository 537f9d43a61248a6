#include "ovra/ovNarrow.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

int sign(int v) {
    return (v > 0) - (v < 0);
}

// Switches LC_CTYPE to the first locale of `names` the system has, and back.
class CtypeLocale {
public:
    explicit CtypeLocale(std::initializer_list<const char*> names)
        : m_old(std::setlocale(LC_CTYPE, nullptr)) {
        for (const char* name : names) {
            if (std::setlocale(LC_CTYPE, name)) {
                m_found = true;
                break;
            }
        }
    }
    ~CtypeLocale() { std::setlocale(LC_CTYPE, m_old.c_str()); }
    bool found() const { return m_found; }

private:
    std::string m_old;
    bool m_found = false;
};

} // namespace

TEST(ov_stricmp, ComparesWithoutAsciiCaseNullFirst) {
    struct Case {
        const char *a, *b;
        int expected;
    } const cases[] = {
        {"File.TXT", "file.txt", 0},
        {"abc", "ABD", -1},
        {"ABD", "abc", 1},
        {"ab", "ABC", -1},
        {"_", "A", -1}, // folds to lower case: '_' < 'a'
        {"\xC3\x84", "\xC3\xA4", -1},
        {nullptr, nullptr, 0},
        {nullptr, "", -1},
        {"", nullptr, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.a ? c.a : "null") << " vs " << (c.b ? c.b : "null"));
        EXPECT_EQ(sign(ov_stricmp(c.a, c.b)), c.expected);
    }
}

void expect_no_lead_bytes() {
    SCOPED_TRACE(std::setlocale(LC_CTYPE, nullptr));
    for (int b = 0; b < 256; ++b)
        EXPECT_EQ(ov_lead_byte(static_cast<char>(b)), 0) << "byte " << b;
}

TEST(ov_lead_byte, NoLeadBytesInTheCLocale) {
    const CtypeLocale locale({"C"});
    ASSERT_TRUE(locale.found());
    expect_no_lead_bytes();
}

TEST(ov_lead_byte, NoLeadBytesInUtf8Locales) {
    const CtypeLocale locale({"C.UTF-8", "C.utf8", "en_US.UTF-8", ".UTF8"});
    if (!locale.found())
        GTEST_SKIP() << "no UTF-8 locale here (C.UTF-8, en_US.UTF-8 or .UTF8)";
    expect_no_lead_bytes();
}

TEST(ov_lead_byte, FindsTheLeadBytesOfShiftJis) {
    const CtypeLocale locale({".932", "ja_JP.SJIS", "ja_JP.sjis", "Japanese_Japan.932"});
    if (!locale.found())
        GTEST_SKIP() << "no Shift-JIS locale here";
    EXPECT_EQ(ov_lead_byte('\x82'), 1);
    EXPECT_EQ(ov_lead_byte('\xE0'), 1);
    EXPECT_EQ(ov_lead_byte('A'), 0);
    EXPECT_EQ(ov_lead_byte('\xB1'), 0) << "half-width katakana are single bytes";
}
