#include "ovra/ovStringParse.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <string>

using namespace ovtest;

namespace {

const char kSmiley[] = "\xF0\x9F\x98\x80"; // U+1F600, two UTF-16 units

// The locale parsers' tests expect "." as the decimal separator.
class CLocale {
public:
    CLocale() : m_saved(std::setlocale(LC_ALL, nullptr)) { std::setlocale(LC_ALL, "C"); }
    ~CLocale() { std::setlocale(LC_ALL, m_saved.c_str()); }

private:
    std::string m_saved;
};

struct Case {
    std::string text;
    int success;
    double value;
    size_t stop;
};

template <class Parser> void check(const Parser& parser, std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE("\"" + c.text + "\"");
        const ovString s = from_utf8(c.text);
        const auto r = parser.parse(s);
        EXPECT_EQ(r.success(), c.success);
        EXPECT_DOUBLE_EQ(r.result(), c.value);
        EXPECT_EQ(r.position(), s.begin() + static_cast<int>(c.stop));
        EXPECT_EQ(utf8_of(r.remainder()), c.text.substr(c.stop));
    }
}

} // namespace

TEST(ovStringIntParsers, HandWrapsWhereTheRuntimeClamps) {
    const CLocale c_locale;
    const ovStringLocaleIntParser locale;
    const ovStringHandIntParser hand;
    // Wherever the runtime and the hand parser agree.
    for (const ovIStringToIntParser* parser : {static_cast<const ovIStringToIntParser*>(&locale),
                                               static_cast<const ovIStringToIntParser*>(&hand)}) {
        SCOPED_TRACE(parser == &hand ? "hand" : "locale");
        check(*parser, {{"-12ab", 1, -12, 3},
                        {"+7", 1, 7, 2},
                        {" \t\r\n012 x", 1, 12, 7},
                        {"-2147483648", 1, INT_MIN, 11},
                        {"3.9", 1, 3, 1},
                        {std::string("12") + kSmiley + "3", 1, 12, 2},
                        {"abc", 0, 0, 0},
                        {"", 0, 0, 0},
                        {kSmiley, 0, 0, 0}});
    }
    check(hand, {{"2147483648", 1, INT_MIN, 10},
                 {"4294967297", 1, 1, 10},
                 {"-", 0, 0, 1},                             // the sign was taken
                 {"- 5", 0, 0, 1},                           // no space after the sign
                 {"  ", 0, 0, 2},                            // white space was skipped
                 {"\xC2\xA0" + std::string("5"), 0, 0, 0}}); // only tab, LF, CR, space
    check(locale, {{"2147483648", 1, INT_MAX, 10},
                   {"-2147483649", 1, INT_MIN, 11},
                   {"99999999999999999999x", 1, INT_MAX, 20},
                   {"-", 0, 0, 0}, // the runtime gives nothing back, not even the sign
                   {"  ", 0, 0, 0},
                   {"0x1A", 1, 0, 1}}); // base 10 only
}

TEST(ovStringDoubleParsers, SimpleTakesEitherSeparatorAndNoExponent) {
    const CLocale c_locale;
    check(ovStringSimpleDoubleParser(), {{"3,5", 1, 3.5, 3},
                                         {"3.5", 1, 3.5, 3},
                                         {".5", 1, 0.5, 2},
                                         {"5.", 1, 5.0, 2},
                                         {"  -0.25x", 1, -0.25, 7},
                                         {"+,125", 1, 0.125, 5},
                                         {"1,2,3", 1, 1.2, 3},
                                         {"1e5", 1, 1.0, 1},
                                         {std::string("7") + kSmiley, 1, 7.0, 1},
                                         {".", 0, 0, 1},
                                         {"-.", 0, 0, 2},
                                         {"abc", 0, 0, 0}});
    check(ovStringLocaleDoubleParser(), {{"3.5", 1, 3.5, 3},
                                         {"3,5", 1, 3.0, 1},
                                         {"1e5", 1, 1e5, 3},
                                         {" -2.5E-1x", 1, -0.25, 8},
                                         {".5", 1, 0.5, 2},
                                         {std::string("7") + kSmiley, 1, 7.0, 1},
                                         {".", 0, 0, 0},
                                         {"", 0, 0, 0}});
}

TEST(ovStringAsciiParser, SplitsOffTheLeadingAsciiRun) {
    const std::pair<std::string, std::string> cases[] = {
        {"abc", "abc"},
        {" a\x7F"
         "b\xC3\xA9"
         "cd",
         " a\x7F"
         "b"},
        {std::string(kSmiley) + "x", ""},
        {"", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("\"" + c.first + "\"");
        const ovString s = from_utf8(c.first);
        const ovStringParseAsciiResult r = ovStringAsciiParser().parse(s);
        EXPECT_EQ(r.success(), 1);
        EXPECT_STREQ(r.ascii().c_str(), c.second.c_str());
        EXPECT_EQ(r.position(), s.begin() + static_cast<int>(c.second.size()));
        EXPECT_EQ(utf8_of(r.remainder()), c.first.substr(c.second.size()));
    }
}

TEST(ovStringParsers, TakeTheNullStringAsEmptyAndAFailedOneAsItsMessage) {
    const CLocale c_locale;
    const ovString null;
    const ovStringParseResultBase results[] = {
        ovStringHandIntParser().parse(null), ovStringLocaleIntParser().parse(null),
        ovStringSimpleDoubleParser().parse(null), ovStringLocaleDoubleParser().parse(null)};
    for (const ovStringParseResultBase& r : results) {
        EXPECT_EQ(r.success(), 0);
        EXPECT_EQ(r.position(), null.begin());
        EXPECT_TRUE(r.original().invalid());
        EXPECT_TRUE(r.remainder().empty());
    }
    const ovStringParseAsciiResult ascii = ovStringAsciiParser().parse(null);
    EXPECT_EQ(ascii.success(), 1);
    EXPECT_STREQ(ascii.ascii().c_str(), "");

    int st = -1;
    const ovString bad(ovSTRING_UTF8, "12\xC3\x28", st);
    ASSERT_EQ(bad.failed(), 1);
    const ovStringParseIntResult r = ovStringHandIntParser().parse(bad);
    EXPECT_EQ(r.success(), 0);
    EXPECT_EQ(r.remainder(), bad);
}

TEST(ovStringParser, ForwardsToTheParsersItHolds) {
    const CLocale c_locale;
    const ovString comma = OVSTRING("3,5");
    const ovString sign = OVSTRING("-");
    const ovStringParser by_hand(ovIStringToIntParsercoPrf(new ovStringHandIntParser),
                                 ovIStringToDoubleParsercoPrf(new ovStringSimpleDoubleParser));
    const ovStringParser by_runtime(ovIStringToIntParsercoPrf(new ovStringLocaleIntParser),
                                    ovIStringToDoubleParsercoPrf(new ovStringLocaleDoubleParser));
    const ovStringParser copy = by_hand;

    EXPECT_EQ(copy.parse_int(sign).position(), sign.begin() + 1);
    EXPECT_EQ(by_runtime.parse_int(sign).position(), sign.begin());
    EXPECT_DOUBLE_EQ(copy.parse_double(comma).result(), 3.5);
    EXPECT_DOUBLE_EQ(by_runtime.parse_double(comma).result(), 3.0);

    const ovStringParser none{ovIStringToIntParsercoPrf(), ovIStringToDoubleParsercoPrf()};
    EXPECT_EQ(none.parse_int(OVSTRING("12")).success(), 0);
    const ovStringParseDoubleResult d = none.parse_double(comma);
    EXPECT_EQ(d.success(), 0);
    EXPECT_EQ(d.position(), comma.begin());
}
