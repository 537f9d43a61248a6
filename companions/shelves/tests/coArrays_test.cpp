#include "co/coArrays.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(coDynArr, SizesAppendsAndBoundsChecks) {
    coDynArr<std::string> a(2);
    EXPECT_EQ(2, a.size());
    a[1] = "x";
    a.append("y");
    EXPECT_EQ("y", a[2]);
    EXPECT_EQ(nullptr, a.at(3));
    EXPECT_EQ(nullptr, a.at(-1));
    a.set_size(-4);
    EXPECT_EQ(0, a.size());
    EXPECT_EQ(0, coDynArr<int>(-1).size());
}

TEST(coPageArr, ElementsStayPutAcrossPages) {
    coPageArr<std::string> a(0, 2, 1); // pages of 4, table grows by 2
    const std::string* first = nullptr;
    for (int i = 0; i < 100; ++i) {
        a.append(std::to_string(i));
        if (i == 0)
            first = &a[0];
    }
    EXPECT_EQ(100, a.size());
    EXPECT_EQ(first, &a[0]); // never moved by growth
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(std::to_string(i), a[i]);
    EXPECT_EQ(nullptr, a.at(100));
}

TEST(coPageArr, AllocatesPagesOnlyAsElementsArrive) {
    coPageArr<int> hinted(31, 5, 10); // a wild hint: clamped, nothing allocated
    EXPECT_EQ(0, hinted.capacity());
    hinted.append(1);
    EXPECT_EQ(32, hinted.capacity());
    coPageArr<int> tiny(-3, -3, -3); // pages of one element
    for (int i = 0; i < 3; ++i)
        tiny.append(i);
    EXPECT_EQ(3, tiny.capacity());
    EXPECT_EQ(2, tiny[2]);
}

} // namespace
