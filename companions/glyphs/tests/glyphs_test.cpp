#include "ub/ubGlyphs.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

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
