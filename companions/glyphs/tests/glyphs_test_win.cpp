#include "ub/ubGlyphs.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

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

// Only refusals are tested: a well-formed call opens a box that would wait for a click.
TEST(ubMessageBoxU, MalformedUtf8ShowsNothing) {
    const struct {
        const char* text;
        const char* caption;
    } cases[] = {{"a\xFF", "Error"}, {"fine", "\xC3"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + " " + testing::PrintToString(c.caption));
        errno = 0;
        EXPECT_EQ(MessageBoxU(nullptr, c.text, c.caption, 0), 0);
        EXPECT_EQ(errno, EINVAL);
    }
}

} // namespace

TEST(ubPathCallsWin, InvalidUtf8IsRefused) {
    const char bad[] = "bad\xC3(name";
    struct stat st;
    errno = 0;
    EXPECT_EQ(ub_open(bad, O_RDONLY), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(ub_stat(bad, &st), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(ub_mkdir(bad), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(ub_system(bad), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST(SHGetFolderPathU, WritesTheFolderAsUtf8) {
    char path[260] = "x";
    EXPECT_GE(SHGetFolderPathU(nullptr, 0x001a /* CSIDL_APPDATA */, nullptr, 0, path), 0);
    EXPECT_GT(std::strlen(path), 3u);
    EXPECT_LT(SHGetFolderPathU(nullptr, 0x7777, nullptr, 0, path), 0);
    EXPECT_STREQ(path, "");
}

TEST(GetUserNameU, WritesTheLoginNameAsUtf8) {
    char name[256] = {};
    unsigned long size = sizeof name;
    ASSERT_NE(GetUserNameU(name, &size), 0);
    EXPECT_GT(std::strlen(name), 0u);
    EXPECT_EQ(size, std::strlen(name) + 1) << "bytes written with the NUL";

    char tiny[1] = {'x'};
    unsigned long tiny_size = 1;
    EXPECT_EQ(GetUserNameU(tiny, &tiny_size), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(tiny_size, 1u);
    unsigned long zero = 0;
    EXPECT_EQ(GetUserNameU(name, &zero), 0);
    EXPECT_EQ(GetUserNameU(nullptr, &size), 0);
}

TEST(LookupAccountSidU, NamesAWellKnownAccount) {
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    PSID everyone = nullptr;
    ASSERT_TRUE(
        AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everyone));
    char name[200] = {}, domain[200] = {};
    unsigned long name_size = sizeof name, domain_size = sizeof domain;
    int use = -1;
    EXPECT_NE(LookupAccountSidU(nullptr, everyone, name, &name_size, domain, &domain_size, &use),
              0);
    EXPECT_STREQ(name, "Everyone");
    EXPECT_EQ(name_size, std::strlen(name)) << "length without the NUL";
    EXPECT_EQ(domain_size, std::strlen(domain));
    EXPECT_EQ(use, static_cast<int>(SidTypeWellKnownGroup));

    char small[3] = {};
    unsigned long small_size = sizeof small;
    domain_size = sizeof domain;
    EXPECT_EQ(
        LookupAccountSidU(nullptr, everyone, small, &small_size, domain, &domain_size, nullptr), 0);
    EXPECT_EQ(LookupAccountSidU("\xC3", everyone, name, &name_size, domain, &domain_size, nullptr),
              0)
        << "a malformed system name is refused";
    EXPECT_EQ(LookupAccountSidU(nullptr, nullptr, name, &name_size, domain, &domain_size, nullptr),
              0);
    FreeSid(everyone);
}
