#include "co/coDList.h"
#include "co/coSet.h"
#include "co/coTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<int> items(const coDList<int>& l) { return std::vector<int>(l.begin(), l.end()); }

} // namespace

TEST(coDList, EndsAndIteration) {
    coDList<int> l;
    EXPECT_TRUE(l.empty());
    EXPECT_EQ(l.first(), nullptr);
    EXPECT_FALSE(l.remove_first());
    l.insert_last(2);
    l.insert_last(3);
    l.insert_first(1);
    EXPECT_EQ(items(l), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(*l.first(), 1);
    EXPECT_EQ(*l.last(), 3);
    EXPECT_TRUE(l.remove_last());
    EXPECT_TRUE(l.remove_first());
    EXPECT_EQ(items(l), (std::vector<int>{2}));
    coDList<int> more;
    more.insert_last(7);
    l.append(more);
    EXPECT_TRUE(more.empty());
    EXPECT_EQ(items(l), (std::vector<int>{2, 7}));
    l.clear();
    EXPECT_EQ(l.size(), 0);
}

TEST(coDList, CursorsWalkBothWaysAndEdit) {
    coDList<int> l;
    for (int i = 1; i <= 4; ++i)
        l.insert_last(i);
    coDListCursor<int> c(l);
    ASSERT_TRUE(c.valid());
    ++c;
    EXPECT_EQ(*c.get(), 2);
    c.insert_before(10);
    c.insert_after(20);
    EXPECT_EQ(items(l), (std::vector<int>{1, 10, 2, 20, 3, 4}));
    EXPECT_TRUE(c.remove());
    EXPECT_EQ(*c.get(), 20);
    --c;
    --c;
    EXPECT_EQ(*c.get(), 1);
    --c;
    EXPECT_FALSE(c.valid());
    EXPECT_EQ(c.get(), nullptr);
    EXPECT_FALSE(c.remove());
    c.insert_before(99); // off the list: appends
    EXPECT_EQ(*l.last(), 99);
    c.to_last();
    EXPECT_EQ(*c.get(), 99);
    ++c;
    EXPECT_FALSE(c.valid());
    coDList<int> none;
    coDListCursor<int> e(none);
    EXPECT_FALSE(e.valid());
    e.to_last();
    EXPECT_FALSE(e.valid());
}

TEST(coSet, InsertContainsRemove) {
    coSet<std::string> s;
    EXPECT_TRUE(s.insert("b"));
    EXPECT_TRUE(s.insert("a"));
    EXPECT_FALSE(s.insert("b"));
    EXPECT_EQ(s.size(), 2);
    EXPECT_TRUE(s.contains("a"));
    EXPECT_EQ(*s.begin(), "a");
    EXPECT_TRUE(s.remove("a"));
    EXPECT_FALSE(s.remove("a"));
    EXPECT_FALSE(s.contains("a"));
}

TEST(coTable, InsertSetFindRemove) {
    coTable<std::string, int> t;
    EXPECT_TRUE(t.insert("x", 1));
    EXPECT_FALSE(t.insert("x", 2));
    EXPECT_EQ(*t.find("x"), 1);
    t.set("x", 3);
    t.set("a", 4);
    EXPECT_EQ(*t.find("x"), 3);
    EXPECT_EQ(t.find("none"), nullptr);
    EXPECT_EQ(t.begin()->first, "a");
    EXPECT_TRUE(t.remove("x"));
    EXPECT_FALSE(t.contains("x"));
    EXPECT_EQ(t.size(), 1);
}
