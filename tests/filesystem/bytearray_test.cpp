#include "ovra/ovByteArray.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

TEST(ovByteArray, DefaultEmptyAndTakenArrays) {
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

    // A unique buffer is taken without copying.
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

namespace {

std::string text_of(const ovByteArray& a) {
    return a.get_ptr() ? std::string(a.get_ptr(), static_cast<size_t>(a.length())) : "<none>";
}

ovByteArray bytes(const std::string& s) {
    return ovByteArray(s.data(), s.size());
}

} // namespace

TEST(ovByteArray, ReplaceAllScansOnceWithoutRestarting) {
    const struct {
        const char* text;
        const char* find;
        const char* replacement;
        const char* result;
        int count;
    } cases[] = {
        {"abab", "ab", "xyz", "xyzxyz", 2},
        {"aaab", "aab", "X", "aaab", 0}, // a failed partial match is not restarted inside
        {"aaaa", "aa", "b", "bb", 2},    // matches do not overlap
        {"xabx", "ab", "", "xx", 1},
        {"abc", "abcd", "z", "abc", 0},
        {"abc", "c", "CC", "abCC", 1},
        {"aab", "ab", "-", "aab", 0}, // the mismatching a is not taken as a new start
        {"abab", "", "x", "abab", 0}, // an empty pattern replaces nothing
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " / " + c.find);
        ovByteArray a = bytes(c.text);
        const ovByteArray before = a;
        EXPECT_EQ(a.replace_all(bytes(c.find), bytes(c.replacement)), c.count);
        EXPECT_EQ(text_of(a), c.result);
        EXPECT_EQ(text_of(before), c.text); // earlier copies keep the old bytes
        EXPECT_EQ(a.get_ptr() == before.get_ptr(), c.count == 0);
    }
    ovByteArray none;
    EXPECT_EQ(none.replace_all(bytes("a"), bytes("b")), 0);
    EXPECT_TRUE(none.invalid());
}

TEST(ovByteArray, DeepCopyCopyPointerAndConcatenation) {
    const ovByteArray a = bytes("hello");
    const ovByteArray deep(utDEEP_COPY, a);
    EXPECT_NE(deep.get_ptr(), a.get_ptr());
    EXPECT_EQ(deep, a);
    EXPECT_TRUE(ovByteArray(utDEEP_COPY, ovByteArray()).invalid());

    std::unique_ptr<char[]> copy(a.get_copy_ptr());
    ASSERT_NE(copy.get(), nullptr);
    EXPECT_EQ(std::string(copy.get(), 5), "hello");
    EXPECT_NE(copy.get(), a.get_ptr());
    EXPECT_EQ(ovByteArray().get_copy_ptr(), nullptr);

    EXPECT_EQ(text_of(a + bytes(" world")), "hello world");
    EXPECT_EQ(text_of(ovByteArray() + a), "hello");
    EXPECT_FALSE((ovByteArray() + ovByteArray()).invalid());
    EXPECT_TRUE((ovByteArray() + ovByteArray()).empty());
}
