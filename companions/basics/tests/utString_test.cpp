#include "ut/utString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <utility>

namespace {

char* new_array(const char* s) {
    char* p = new char[std::strlen(s) + 1];
    std::strcpy(p, s);
    return p;
}

TEST(utString, ConstructionStates) {
    struct Case {
        const char* name;
        std::function<utString()> make;
        bool null;
        const char* text;
    };
    const Case cases[] = {
        {"default", [] { return utString(); }, true, nullptr},
        {"char* null", [] { return utString(static_cast<const char*>(nullptr)); }, true, nullptr},
        {"char*", [] { return utString("abc"); }, false, "abc"},
        {"copy null", [] { return utString(utCOPY, nullptr); }, true, nullptr},
        {"copy empty", [] { return utString(utCOPY, ""); }, false, ""},
        {"literal null", [] { return utString(utSTRING_LIT, nullptr); }, true, nullptr},
        {"literal", [] { return utString(utSTRING_LIT, "lit"); }, false, "lit"},
        {"claim null", [] { return utString(utPTR_CLAIM, nullptr); }, true, nullptr},
        {"claim", [] { return utString(utPTR_CLAIM, new_array("xyz")); }, false, "xyz"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const utString s = c.make();
        EXPECT_EQ(s.is_null(), c.null);
        if (c.null) {
            EXPECT_EQ(s.c_str(), nullptr);
            EXPECT_EQ(s.length(), 0u);
            EXPECT_TRUE(s.empty());
        } else {
            ASSERT_NE(s.c_str(), nullptr);
            EXPECT_STREQ(s.c_str(), c.text);
            EXPECT_EQ(s.length(), std::strlen(c.text));
            EXPECT_EQ(s.empty(), *c.text == '\0');
        }
    }
}

TEST(utString, CopyingDoesNotAliasTheSource) {
    char buf[] = "abc";
    utString s(buf);
    buf[0] = 'X';
    EXPECT_STREQ(s.c_str(), "abc");

    static const char lit[] = "lit";
    const utString l(utSTRING_LIT, lit);
    EXPECT_EQ(l.c_str(), lit);
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
    EXPECT_EQ(b.c_str(), p);

    utString c(utSTRING_LIT, "second");
    c = std::move(b);
    EXPECT_EQ(c.c_str(), p);
    EXPECT_TRUE(b.is_null());

    utString d(utSTRING_LIT, "lit");
    d.swap(c);
    EXPECT_EQ(d.c_str(), p);
    EXPECT_STREQ(c.c_str(), "lit");

    utString& alias = d;
    d = alias;
    d = std::move(alias);
    EXPECT_STREQ(d.c_str(), "first");
}

TEST(utString, Equality) {
    struct Case {
        utString a, b;
        bool equal;
    };
    const Case cases[] = {
        {utString(), utString(), true},
        {utString(), utString(""), false},
        {utString(""), utString(utSTRING_LIT, ""), true},
        {utString("abc"), utString(utSTRING_LIT, "abc"), true},
        {utString("ab"), utString("abc"), false},
        {utString("abc"), utString("abd"), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(c.b == c.a, c.equal);
        EXPECT_EQ(c.a != c.b, !c.equal);
    }
}

TEST(utString, SubstrClampsToTheText) {
    struct Case {
        utString s;
        size_t pos, len;
        const char* want; // null: the null state
    };
    const size_t all = static_cast<size_t>(-1);
    const Case cases[] = {
        {utString("hello"), 1, 3, "ell"},
        {utString("hello"), 0, all, "hello"},
        {utString("hello"), 3, 99, "lo"},
        {utString("hello"), 5, 1, ""},
        {utString("hello"), 99, all, ""},
        {utString("hello"), 2, 0, ""},
        {utString(utSTRING_LIT, "lit"), 1, all, "it"},
        {utString(""), 0, all, ""},
        {utString(), 0, 3, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const utString sub = c.s.substr(c.pos, c.len);
        if (!c.want) {
            EXPECT_TRUE(sub.is_null());
            continue;
        }
        ASSERT_FALSE(sub.is_null());
        EXPECT_STREQ(sub.c_str(), c.want);
        EXPECT_EQ(sub.length(), std::strlen(c.want));
        if (!c.s.empty()) {
            EXPECT_NE(sub.c_str(), c.s.c_str()); // owned, even from a literal
        }
    }
    EXPECT_STREQ(utString("abc").substr(1).c_str(), "bc");
}

TEST(utString, ComparesWithNarrowText) {
    struct Case {
        utString a;
        const char* b;
        bool equal;
    };
    const Case cases[] = {
        {utString("abc"), "abc", true}, {utString("abc"), "abd", false},
        {utString("abc"), "ab", false}, {utString("ab"), "abc", false},
        {utString(""), "", true},       {utString(), nullptr, true},
        {utString(), "", false},        {utString(""), nullptr, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(c.b == c.a, c.equal);
        EXPECT_EQ(c.a != c.b, !c.equal);
        EXPECT_EQ(c.b != c.a, !c.equal);
    }
}

} // namespace
