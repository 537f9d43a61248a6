#include "ub/ubGlyphs.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <string>
#include <sys/stat.h>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

// "ü日😀.txt": two-, three- and four-byte UTF-8 sequences (the last needs a surrogate pair
// where names are UTF-16).
const char kName[] = "\xC3\xBC\xE6\x97\xA5\xF0\x9F\x98\x80.txt";

class ubFopen : public testing::Test {
protected:
    void SetUp() override {
        dir_ =
            fs::temp_directory_path() / ("glyphs_test_" + std::to_string(std::random_device{}()));
        ASSERT_TRUE(fs::create_directory(dir_));
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(dir_, ec);
    }
    std::string utf8_path(const char* name) const { return (dir_ / fs::u8path(name)).u8string(); }

    fs::path dir_;
};

TEST_F(ubFopen, WritesAndReadsBackANonAsciiName) {
    const std::string path = utf8_path(kName);
    FILE* out = ub_fopen(path.c_str(), "wb");
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(std::fwrite("payload", 1, 7, out), 7u);
    ASSERT_EQ(std::fclose(out), 0);

    // The name on disk must be the decoded one, not the UTF-8 bytes read as another code page.
    std::vector<fs::path> entries(fs::directory_iterator(dir_), fs::directory_iterator{});
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].filename(), fs::u8path(kName));

    FILE* in = ub_fopen(path.c_str(), "rb");
    ASSERT_NE(in, nullptr);
    char buf[16] = {};
    EXPECT_EQ(std::fread(buf, 1, sizeof buf, in), 7u);
    std::fclose(in);
    EXPECT_STREQ(buf, "payload");
}

TEST_F(ubFopen, FailuresGiveNullAndErrno) {
    const std::string missing = utf8_path("missing.txt");
    struct Case {
        const char* name;
        const char* path;
        const char* mode;
        int error;
    };
    const Case cases[] = {
        {"null path", nullptr, "rb", EINVAL},
        {"null mode", missing.c_str(), nullptr, EINVAL},
        {"missing file", missing.c_str(), "rb", ENOENT},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        errno = 0;
        EXPECT_EQ(ub_fopen(c.path, c.mode), nullptr);
        EXPECT_EQ(errno, c.error);
    }
}

} // namespace

// The path calls on one non-ASCII tree: make a folder, a file in it by descriptor,
// stat both records, change permissions, remove everything again.
TEST_F(ubFopen, PathCallsWorkOnNonAsciiNames) {
    const std::string folder = utf8_path(kName) + ".d";
    ASSERT_EQ(ub_mkdir(folder.c_str()), 0);
    EXPECT_EQ(ub_mkdir(folder.c_str()), -1);
    EXPECT_EQ(errno, EEXIST);
    const std::string file = folder + "/" + kName;
    const int fd = ub_open(file.c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
#if defined(_WIN32)
    EXPECT_EQ(_write(fd, "1234", 4), 4);
    EXPECT_EQ(_close(fd), 0);
#else
    EXPECT_EQ(write(fd, "1234", 4), 4);
    EXPECT_EQ(close(fd), 0);
#endif
    struct stat st;
    ASSERT_EQ(ub_stat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 4);
    EXPECT_TRUE(S_ISREG(st.st_mode));
    ASSERT_EQ(ub_stat(folder.c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
#if defined(_WIN32)
    struct _stat64 big;
#else
    struct stat big;
#endif
    ASSERT_EQ(ub_stat64_func(file.c_str(), &big), 0);
    EXPECT_EQ(big.st_size, 4);
    EXPECT_EQ(ub_chmod(file.c_str(), 0444), 0);
    EXPECT_EQ(ub_chmod(file.c_str(), 0644), 0);
    EXPECT_EQ(ub_rmdir(folder.c_str()), -1) << "not empty";
    EXPECT_EQ(ub_unlink(file.c_str()), 0);
    EXPECT_EQ(ub_unlink(file.c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(ub_rmdir(folder.c_str()), 0);
    EXPECT_EQ(ub_stat(folder.c_str(), &st), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(ubPathCalls, NullNamesGiveEinval) {
    struct stat st;
    errno = 0;
    EXPECT_EQ(ub_open(nullptr, O_RDONLY), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(ub_stat(nullptr, &st), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(ub_stat("x", nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
    for (int (*call)(const char*) : {ub_unlink, ub_mkdir, ub_rmdir}) {
        errno = 0;
        EXPECT_EQ(call(nullptr), -1);
        EXPECT_EQ(errno, EINVAL);
    }
    errno = 0;
    EXPECT_EQ(ub_chmod(nullptr, 0644), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST(ubSystem, RunsACommandAndAnswersTheNullQuery) {
    EXPECT_NE(ub_system(nullptr), 0) << "a command interpreter exists";
    EXPECT_EQ(ub_system("exit 0"), 0);
    EXPECT_NE(ub_system("exit 2"), 0);
}
