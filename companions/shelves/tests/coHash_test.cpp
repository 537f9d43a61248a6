#include "co/coHash.h"

#include <gtest/gtest.h>

namespace {

TEST(coHash, Fnv1aOverExactlyNBytes) {
    const unsigned int basis = 0x811c9dc5u;
    struct Case {
        const char* data;
        int n;
        unsigned int expected;
    };
    const Case cases[] = {
        {"", 0, basis},
        {"a", 1, 0xe40c292cu},
        {"foobar", 6, 0xbf9cf968u},
        {"foobarXYZ", 6, 0xbf9cf968u}, // stops at n
        {"\xff\x80", 2, 0xee1eea4au},  // high bytes must not sign-extend
        {nullptr, 16, basis},
        {"abc", -1, basis},
        {"abc", -2147483647 - 1, basis},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.data ? c.data : "<null>") << " n=" << c.n);
        EXPECT_EQ(co_hash(c.data, c.n), c.expected);
    }
}

} // namespace
