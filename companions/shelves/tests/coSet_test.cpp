#include "co/coSet.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(coSet, AddsEachValueOnce) {
    coSet<std::string> s(4, 50);
    EXPECT_TRUE(s.add("a"));
    EXPECT_TRUE(s.add("b"));
    EXPECT_FALSE(s.add("a"));
    EXPECT_EQ(2, s.size());
    EXPECT_TRUE(s.contains("b"));
    EXPECT_FALSE(s.contains("c"));
    EXPECT_TRUE(s.remove("a"));
    EXPECT_FALSE(s.remove("a"));
    EXPECT_FALSE(s.contains("a"));
}

// Wild sizing arguments are clamped, never allocated as given.
TEST(coSet, SizingArgumentsAreClamped) {
    const int args[][2] = {{-5, 0}, {31, 100000}, {0, -1}};
    for (const auto& a : args) {
        SCOPED_TRACE(testing::Message() << a[0] << " " << a[1]);
        coSet<int> s(a[0], a[1]);
        for (int i = 0; i < 1000; ++i)
            s.add(i % 500);
        EXPECT_EQ(500, s.size());
    }
}

} // namespace
