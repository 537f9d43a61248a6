#include "ovra/ovDMKFile.h"
#include "ovra/ovPath.h"

#include "../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#if !defined(_WIN32)
#include <unistd.h>
#endif

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

void write_file(const fs::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
}

std::string utf8(const fs::path& p) {
    return p.generic_u8string();
}

// The interface's own 64-bit fallbacks, over the stream's 32-bit positions.
class Narrow32 final : public ovDMKFileStdio {
public:
    using ovDMKFileStdio::ovDMKFileStdio;
    int seek64(long long offset, int origin) override { return ovIDMKFile::seek64(offset, origin); }
    long long tell64() override { return ovIDMKFile::tell64(); }
};

} // namespace

TEST(ovDMKFileStdio, WritesReadsAndPositions) {
    ScratchDir dir;
    const std::string path = utf8(dir.native("d.bin"));
    {
        ovDMKFileStdio out(utString(path.c_str()), ovDMK_WRITE);
        ASSERT_TRUE(out.file_open());
        EXPECT_EQ(out.write("0123456789", 1, 10), 10);
        EXPECT_EQ(out.write("\nline\n", 1, 6), 6);
    }
    ovDMKFileStdio in(utString(path.c_str()), ovDMK_READ);
    ASSERT_TRUE(in.file_open());
    EXPECT_EQ(in.length64(), 16);
    char buf[16] = {};
    EXPECT_EQ(in.read(buf, 2, 2), 2);
    EXPECT_EQ(std::string(buf, 4), "0123");
    EXPECT_EQ(in.tell(), 4);
    EXPECT_EQ(in.length64(), 16);
    EXPECT_EQ(in.tell64(), 4);
    EXPECT_EQ(in.seek64(11, SEEK_SET), 0);
    ASSERT_NE(in.gets(buf, sizeof buf), nullptr);
    EXPECT_STREQ(buf, "line\n");
    EXPECT_EQ(in.gets(buf, sizeof buf), nullptr);
    in.rewind();
    EXPECT_EQ(in.tell(), 0);
    EXPECT_EQ(in.seek(-2, SEEK_END), 0);
    EXPECT_EQ(in.tell64(), 14);

    EXPECT_FALSE(ovDMKFileStdio(utString(path.c_str()), static_cast<ovDMKMode>(7)).file_open());
    EXPECT_FALSE(ovDMKFileStdio().file_open());
    EXPECT_FALSE(
        ovDMKFileStdio(utString(utf8(dir.native("none")).c_str()), ovDMK_READ).file_open());

    write_file(dir.native("gone"), "x");
    EXPECT_EQ(in.remove(utf8(dir.native("gone")).c_str()), 0);
    EXPECT_FALSE(fs::exists(dir.native("gone")));
    EXPECT_NE(in.remove(utf8(dir.native("gone")).c_str()), 0);
}

TEST(ovIDMKFile, FallbacksFor32BitStreams) {
    ScratchDir dir;
    write_file(dir.native("ten"), "0123456789");
    FILE* f = std::fopen(dir.native("ten").string().c_str(), "rb");
    ASSERT_NE(f, nullptr);
    Narrow32 s(f);
    ASSERT_EQ(s.seek(4, SEEK_SET), 0);
    EXPECT_EQ(s.length64(), 10);
    EXPECT_EQ(s.tell64(), 4);
    EXPECT_EQ(s.seek64(2147483648LL, SEEK_SET), -1);
    EXPECT_EQ(s.seek64(-2147483649LL, SEEK_CUR), -1);
    EXPECT_EQ(s.tell64(), 4);
    EXPECT_EQ(s.seek64(7, SEEK_SET), 0);
    EXPECT_EQ(s.tell64(), 7);
    std::fclose(f);
}

TEST(ovDMKFileStdio, OpenThroughAPath) {
    ScratchDir dir;
    write_file(dir.native("f"), "abc");
    ovDMKFileStdio d;
    ASSERT_TRUE(d.open(ovPath(dir.path("f"), nullptr, nullptr), ovDMK_READ));
    EXPECT_EQ(d.length64(), 3);
    // A missing directory: no stream afterwards, even though one was open.
    EXPECT_FALSE(d.open(ovPath(dir.path("none/f"), nullptr, nullptr), ovDMK_READ));
    EXPECT_FALSE(d.file_open());
    ASSERT_TRUE(d.open(ovPath(dir.path("w"), nullptr, nullptr), ovDMK_WRITE));
    EXPECT_EQ(d.write("xy", 1, 2), 2);

    // Opened on a caller's stream: a stream opened later is not closed by the object.
    FILE* mine = std::fopen(dir.native("f").string().c_str(), "rb");
    ASSERT_NE(mine, nullptr);
    {
        ovDMKFileStdio adopted(mine);
        EXPECT_TRUE(adopted.file_open());
        char c = 0;
        EXPECT_EQ(adopted.read(&c, 1, 1), 1);
        EXPECT_EQ(c, 'a');
    }
    EXPECT_EQ(std::fgetc(mine), 'b'); // still open
    std::fclose(mine);
}

TEST(accessc, ModesAndLengths) {
    ScratchDir dir;
    write_file(dir.native("ro"), "x");
    const std::string path = utf8(dir.native("ro"));
    const int n = static_cast<int>(path.size());
    EXPECT_EQ(accessc(path.c_str(), n, "r"), 0);
    EXPECT_EQ(accessc(path.c_str(), n, "x"), 0);
    // Only the first `length` characters count.
    const std::string longer = path + "trailing";
    EXPECT_EQ(accessc(longer.c_str(), n, "r"), 0);
    EXPECT_EQ(accessc(longer.c_str(), n + 1, "r"), -1);
    EXPECT_EQ(accessc(path.c_str(), n - 1, "x"), -1);
    EXPECT_EQ(accessc("", 0, "x"), -1);

    fs::permissions(dir.native("ro"),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
#if !defined(_WIN32)
    if (geteuid() == 0)
        GTEST_SKIP() << "running as root: a read-only file is writable all the same";
#endif
    EXPECT_EQ(accessc(path.c_str(), n, "w"), -1);
    EXPECT_EQ(accessc(path.c_str(), n, "x"), 0);
}

TEST(accessc, LengthOutOfRangeEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(accessc("x", 1024, "r"), "range check");
    EXPECT_DEATH(accessc("x", -1, "r"), "range check");
}
