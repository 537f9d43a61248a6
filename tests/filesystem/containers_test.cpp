#include "ovra/ovContainers.h"

#include "../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ovtest;

TEST(ovContainers, StringSetsAndTablesOrderByCodePoint) {
    ovStringcoSet s;
    for (const char* t : {"b", "a", "ab", "", "a"})
        s.insert(utf8_text(t));
    std::vector<std::string> order;
    for (const ovString& v : s)
        order.push_back(utf8_of(v));
    EXPECT_EQ(order, (std::vector<std::string>{"", "a", "ab", "b"}));
    EXPECT_TRUE(s.contains(utf8_text("ab")));
    EXPECT_TRUE(s.remove(utf8_text("ab")));

    ovStringcoTable t;
    t.set(utf8_text("k"), utf8_text("v1"));
    t.set(utf8_text("k"), utf8_text("v2"));
    ASSERT_NE(t.find(utf8_text("k")), nullptr);
    EXPECT_EQ(utf8_of(*t.find(utf8_text("k"))), "v2");
    EXPECT_EQ(t.find(utf8_text("K")), nullptr);
}

TEST(ovContainers, PathListsAndArrays) {
    ovPathcoDList l;
    l.insert_last(ovPath(utf8_text("a/b"), nullptr, nullptr));
    l.insert_first(ovPath(utf8_text("c"), nullptr, nullptr));
    ovPathcoDListCursor c(l);
    ++c;
    ASSERT_TRUE(c.valid());
    EXPECT_EQ(utf8_of(c.get()->path_ov()), "a/b");

    ovPathcoSet paths;
    EXPECT_TRUE(paths.insert(ovPath(utf8_text("x\\y"), nullptr, nullptr)));
    EXPECT_FALSE(paths.insert(ovPath(utf8_text("x/y/"), nullptr, nullptr))); // same path

    ovFileNamecoDynArr names;
    names.append(ovFileName(utf8_text("n.txt")));
    EXPECT_EQ(names.size(), 1);
    EXPECT_EQ(names.at(1), nullptr);

    ovStringFormatSpecifiercoDynArr specifiers(2);
    EXPECT_TRUE(specifiers[0].invalid());
}
