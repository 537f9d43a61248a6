#include "ovra/ovByteArray.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(ovByteArray, DefaultAndEmptyArrays) {
    const ovByteArray none;
    EXPECT_TRUE(none.invalid());
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none.get_ptr(), nullptr);
    EXPECT_EQ(none.length(), 0u);

    const ovByteArray zero("", 0);
    EXPECT_FALSE(zero.invalid());
    EXPECT_TRUE(zero.empty());
    const ovByteArray from_null(nullptr, 5);
    EXPECT_TRUE(from_null.invalid());
    EXPECT_EQ(from_null.length(), 0u);
    EXPECT_TRUE(ovByteArray(std::unique_ptr<char[]>(), 7).invalid());
}

TEST(ovByteArray, TakesAUniqueBufferWithoutCopying) {
    std::unique_ptr<char[]> buffer(new char[4]{'a', 'b', '\0', 'd'});
    const char* raw = buffer.get();
    const ovByteArray a(std::move(buffer), 4);
    EXPECT_EQ(a.get_ptr(), raw);
    EXPECT_EQ(a.length(), 4u);
    EXPECT_EQ(std::memcmp(a.get_ptr(), "ab\0d", 4), 0);
}

TEST(ovByteArray, CopiesShareAndOutliveTheOriginal) {
    ovByteArray copy;
    const char* raw;
    {
        const ovByteArray a("hello", 5);
        raw = a.get_ptr();
        copy = a;
        ovByteArray b(a);
        EXPECT_EQ(b.get_ptr(), raw);
        b = b; // assigning to itself keeps the bytes
        EXPECT_EQ(b.get_ptr(), raw);
        b = ovByteArray();
        EXPECT_TRUE(b.invalid());
    }
    // The last copy keeps the bytes alive (ASan would see a use after free).
    EXPECT_EQ(copy.get_ptr(), raw);
    EXPECT_EQ(std::memcmp(copy.get_ptr(), "hello", 5), 0);
}

TEST(ovByteArray, ComparesBytes) {
    const struct {
        const char* a;
        size_t na;
        const char* b;
        size_t nb;
        bool equal;
    } cases[] = {
        {"abc", 3, "abc", 3, true},    {"abc", 3, "abd", 3, false}, {"abc", 3, "ab", 2, false},
        {"a\0b", 3, "a\0c", 3, false}, {"", 0, "", 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.a);
        const ovByteArray a(c.a, c.na), b(c.b, c.nb);
        EXPECT_EQ(a == b, c.equal);
        EXPECT_EQ(a != b, !c.equal);
    }
    const ovByteArray x("xyz", 3);
    const ovByteArray shared = x;
    EXPECT_TRUE(x == shared);
    // The default array and an empty one have the same (no) bytes.
    EXPECT_TRUE(ovByteArray() == ovByteArray("", 0));
}
