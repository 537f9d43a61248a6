#include "ub/ubGlyphs.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

// Windows must convert names to UTF-16, so malformed UTF-8 is refused instead of mangled.
TEST(ubFopenWin, InvalidUtf8IsRefused) {
    const char* const bad[] = {
        "\xC3",             // truncated sequence
        "a\xFF.txt",        // byte never valid in UTF-8
        "\xC0\xAF.txt",     // overlong encoding of '/'
        "\xED\xA0\x80.txt", // encoded surrogate
    };
    for (const char* path : bad) {
        SCOPED_TRACE(testing::PrintToString(path));
        errno = 0;
        EXPECT_EQ(ub_fopen(path, "rb"), nullptr);
        EXPECT_EQ(errno, EINVAL);
        errno = 0;
        EXPECT_EQ(ub_fopen("x.txt", path), nullptr); // mode too
        EXPECT_EQ(errno, EINVAL);
    }
}

} // namespace
