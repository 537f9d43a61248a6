#include "ut/utString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace {

char* new_array(const char* s) { return std::strcpy(new char[std::strlen(s) + 1], s); }

// Null state, text and length together.
void expect_text(const utString& s, const char* text) {
    EXPECT_EQ(s.is_null(), text == nullptr);
    if (!text) {
        EXPECT_EQ(s.c_str(), nullptr);
        EXPECT_TRUE(s.empty());
        EXPECT_EQ(s.length(), 0u);
        return;
    }
    ASSERT_NE(s.c_str(), nullptr);
    EXPECT_STREQ(s.c_str(), text);
    EXPECT_EQ(s.length(), std::strlen(text));
    EXPECT_EQ(s.empty(), *text == '\0');
}

TEST(utString, ConstructionStates) {
    const struct {
        utString s;
        const char* text; // null: the null state
    } cases[] = {
        {utString(), nullptr},
        {utString(static_cast<const char*>(nullptr)), nullptr},
        {utString("abc"), "abc"},
        {utString(utCOPY, nullptr), nullptr},
        {utString(utCOPY, ""), ""},
        {utString(utSTRING_LIT, nullptr), nullptr},
        {utString(utSTRING_LIT, "lit"), "lit"},
        {utString(utPTR_CLAIM, nullptr), nullptr},
        {utString(utPTR_CLAIM, new_array("xyz")), "xyz"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        expect_text(c.s, c.text);
    }
}

TEST(utString, CopyingDoesNotAliasTheSource) {
    char buf[] = "abc";
    utString s(buf);
    buf[0] = 'X';
    EXPECT_STREQ(s.c_str(), "abc");

    static const char lit[] = "lit";
    const utString l(utSTRING_LIT, lit);
    EXPECT_EQ(utString(l).c_str(), lit); // a literal is shared, not copied
    const utString deep(utDEEP_COPY, l);
    EXPECT_NE(deep.c_str(), lit);
    EXPECT_EQ(deep, l);
    EXPECT_TRUE(utString(utDEEP_COPY, utString()).is_null());

    utString copy;
    {
        utString owned(utPTR_CLAIM, new_array("owned"));
        copy = owned;
        EXPECT_NE(copy.c_str(), owned.c_str());
    }
    EXPECT_STREQ(copy.c_str(), "owned"); // outlives the original
}

TEST(utString, MoveSwapAndSelfAssignment) {
    utString a("first");
    const char* p = a.c_str();
    utString b(std::move(a));
    EXPECT_TRUE(a.is_null());
    utString c(utSTRING_LIT, "second");
    c = std::move(b);
    EXPECT_TRUE(b.is_null());
    utString d(utSTRING_LIT, "lit");
    d.swap(c);
    EXPECT_EQ(d.c_str(), p) << "moves hand the buffer on";
    EXPECT_STREQ(c.c_str(), "lit");

    utString& alias = d;
    d = alias;
    d = std::move(alias);
    EXPECT_STREQ(d.c_str(), "first");
}

TEST(utString, Equality) {
    const struct {
        utString a;
        const char* b;
        bool equal;
    } cases[] = {
        {utString(), nullptr, true},
        {utString(), "", false},
        {utString(""), nullptr, false},
        {utString(utSTRING_LIT, ""), "", true},
        {utString(utSTRING_LIT, "abc"), "abc", true},
        {utString("ab"), "abc", false},
        {utString("abc"), "ab", false},
        {utString("abc"), "abd", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const utString b(c.b);
        EXPECT_EQ(c.a == b, c.equal);
        EXPECT_EQ(b == c.a, c.equal);
        EXPECT_EQ(c.a != b, !c.equal);
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(c.b == c.a, c.equal);
        EXPECT_EQ(c.a != c.b, !c.equal);
        EXPECT_EQ(c.b != c.a, !c.equal);
    }
}

TEST(utString, SubstrClampsToTheText) {
    const size_t all = static_cast<size_t>(-1);
    const struct {
        utString s;
        size_t pos, len;
        const char* want; // null: the null state
    } cases[] = {
        {utString("hello"), 1, 3, "ell"},
        {utString("hello"), 0, all, "hello"},
        {utString("hello"), 3, 99, "lo"},
        {utString("hello"), 5, 1, ""},
        {utString("hello"), 99, all, ""},
        {utString("hello"), 2, 0, ""},
        {utString(utSTRING_LIT, "lit"), 1, all, "it"},
        {utString(), 0, 3, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const utString sub = c.s.substr(c.pos, c.len);
        expect_text(sub, c.want);
        if (c.want) {
            EXPECT_NE(sub.c_str(), c.s.c_str()); // owned, even from a literal
        }
    }
    EXPECT_STREQ(utString("abc").substr(1).c_str(), "bc");
}

TEST(utString, ParseReadsWholeDecimalNumbers) {
    const struct {
        const char* text;
        double value;
    } good[] = {{"12.9", 12.9}, {"-4", -4}, {" 1e3 ", 1000}, {"0", 0}, {"+.5", 0.5}};
    for (const auto& c : good) {
        SCOPED_TRACE(c.text);
        double v = -1;
        EXPECT_TRUE(utString(c.text).parse(v));
        EXPECT_DOUBLE_EQ(v, c.value);
    }
    const char* const bad[] = {"", " ", "abc", "12abc", "1.2.3", "1,5", "inf", "nan", "1e999"};
    for (const char* text : bad) {
        SCOPED_TRACE(text);
        double v = 7;
        EXPECT_FALSE(utString(text).parse(v));
        EXPECT_EQ(v, 7); // untouched
    }
    double v = 7;
    EXPECT_FALSE(utString().parse(v));
}

} // namespace

TEST(utString, FindModifyAndTrailingChars) {
    const utString abc("abcabc");
    EXPECT_EQ(abc.find('b'), 1u);
    EXPECT_EQ(abc.find('b', 2), 4u);
    EXPECT_EQ(abc.find('z'), utString::npos);
    EXPECT_EQ(abc.find('a', 99), utString::npos);
    EXPECT_EQ(utString().find('a'), utString::npos);

    // A literal is copied before it is written, so the literal stays intact.
    static const char literal[] = "lit";
    utString lit(utSTRING_LIT, literal);
    char* w = lit.modify();
    ASSERT_NE(w, literal);
    w[0] = 'L';
    EXPECT_EQ(lit, "Lit");
    EXPECT_STREQ(literal, "lit");
    EXPECT_EQ(utString().modify(), nullptr);

    struct Case {
        const char *text, *chars, *expected;
    } const cases[] = {
        {"line\n", "\n", "line"},  {"x\n\n", "\n", "x"}, {"\n", "\n", ""},
        {"ab  ", " ", "ab"},       {"ab", "\n", "ab"},   {"ab\n", "", "ab\n"},
        {"ab\n", nullptr, "ab\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        utString s(utSTRING_LIT, c.text);
        s.remove_trailing_chars(c.chars);
        EXPECT_EQ(s, c.expected);
        EXPECT_EQ(s.length(), std::strlen(c.expected));
    }
    utString null;
    null.remove_trailing_chars("\n");
    EXPECT_TRUE(null.is_null());
}
