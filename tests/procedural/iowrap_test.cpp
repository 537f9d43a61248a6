#include "ovra/ovIOWrap.h"

#include "procedural_test_support.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <fcntl.h>
#include <string>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

using proc_test::ScratchDir;
using proc_test::TableGuard;

namespace {

#if defined(_WIN32)
constexpr int kBinary = O_BINARY;
#else
constexpr int kBinary = 0;
#endif

int g_seen_mode = -1;
int recording_open(const char* path, int flags, ...) {
    va_list ap;
    va_start(ap, flags);
    g_seen_mode = va_arg(ap, int);
    va_end(ap);
    (void)path;
    return 42;
}
// Stands in for any table entry; only the entry's presence matters.
template <class R, class... A> R fake(A...) {
    return R();
}
const ovReadFunc fake_read = fake;
const ovWriteFunc fake_write = fake;
const ovStatFunc fake_stat = fake;
const ovCloseFunc fake_close = fake;
const ovTellFunc fake_tell = fake;
const ovLseekFunc fake_lseek = fake;
const ovUnlinkFunc fake_unlink = fake;
const ovStati64Func fake_stat64 = fake;
int alt_handles_seven() {
    return 7;
}

} // namespace

// The name is UTF-8 on both targets.
TEST(ov_iowrap, DefaultsWriteSeekReadTruncateAndRemoveARealFile) {
    ScratchDir dir;
    const std::string path = dir.at("\xC3\xA9t\xC3\xA9-\xE2\x82\xAC.bin");
    const int fd = ov_open3(path.c_str(), O_CREAT | O_RDWR | O_TRUNC | kBinary, 0644);
    ASSERT_GE(fd, 0) << std::strerror(errno);
    EXPECT_EQ(ov_write(fd, "hello world", 11), 11);
    EXPECT_EQ(ov_tell(fd), 11);
    EXPECT_EQ(ov_commit(fd), 0);
    EXPECT_EQ(ov_lseek(fd, 6, SEEK_SET), 6);
    char buf[8] = {};
    EXPECT_EQ(ov_read(fd, buf, 5), 5);
    EXPECT_STREQ(buf, "world");
    EXPECT_EQ(ov_truncate(fd, 5), 0);
    EXPECT_EQ(ov_isatty(fd), 0);
    EXPECT_EQ(ov_close(fd), 0);
    EXPECT_EQ(proc_test::read_all(path), "hello");

    struct stat st;
    ASSERT_EQ(ov_stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 5);
    ovStat64 big;
    ASSERT_EQ(ov_stati64(path.c_str(), &big), 0);
    EXPECT_EQ(big.st_size, 5);
    EXPECT_EQ(ov_chmod(path.c_str(), 0600), 0);
    EXPECT_EQ(ov_unlink(path.c_str()), 0);
    errno = 0;
    EXPECT_EQ(ov_stat(path.c_str(), &st), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(ov_open2(path.c_str(), O_RDONLY), -1);
}

TEST(ov_iowrap, OpenTwoPassesAModeOfZeroAltHandlesAreZeroUntilInstalled) {
    TableGuard guard;
    ov_the_open_func = recording_open;
    EXPECT_EQ(ov_open2("anything", O_RDONLY), 42);
    EXPECT_EQ(g_seen_mode, 0);
    EXPECT_EQ(ov_open3("anything", O_RDONLY, 0640), 42);
    EXPECT_EQ(g_seen_mode, 0640);
    EXPECT_EQ(ov_the_alt_handles, nullptr);
    EXPECT_EQ(ov_iowrap_alt_handles(), 0);
    ov_the_alt_handles = alt_handles_seven;
    EXPECT_EQ(ov_iowrap_alt_handles(), 7);
}

TEST(ov_iowrap_set_io_functions, RefusesNullRequiredEntriesAndChangesNothing) {
    TableGuard guard;
    const ovReadFunc before = ov_the_read_func;
    for (int missing = 0; missing < 9; ++missing) {
        SCOPED_TRACE(missing);
        EXPECT_EQ(ov_iowrap_set_io_functions(
                      missing == 0 ? nullptr : recording_open, missing == 1 ? nullptr : fake_read,
                      missing == 2 ? nullptr : fake_write, missing == 3 ? nullptr : fake_stat,
                      missing == 4 ? nullptr : fake_close, missing == 5 ? nullptr : fake_tell,
                      missing == 6 ? nullptr : fake_lseek, nullptr, nullptr,
                      missing == 7 ? nullptr : fake_unlink, nullptr, nullptr,
                      missing == 8 ? nullptr : alt_handles_seven),
                  0);
        EXPECT_EQ(ov_the_read_func, before);
        EXPECT_EQ(ov_the_alt_handles, nullptr);
    }
}

TEST(ov_iowrap_set_io_functions, StoresNullOptionalEntriesAsGivenStati64RefusesNull) {
    TableGuard guard;
    const ovStati64Func stat64_before = ov_the_stati64_func;
    EXPECT_EQ(ov_iowrap_set_io_functions(recording_open, fake_read, fake_write, fake_stat,
                                         fake_close, fake_tell, fake_lseek, nullptr, nullptr,
                                         fake_unlink, nullptr, nullptr, alt_handles_seven),
              1);
    EXPECT_EQ(ov_the_open_func, recording_open);
    EXPECT_EQ(ov_the_truncate_func, nullptr);
    EXPECT_EQ(ov_the_commit_func, nullptr);
    EXPECT_EQ(ov_the_chmod_func, nullptr);
    EXPECT_EQ(ov_the_isatty_func, nullptr);
    EXPECT_EQ(ov_the_stati64_func, stat64_before);
    EXPECT_EQ(ov_iowrap_alt_handles(), 7);
    EXPECT_EQ(ov_read(3, nullptr, 10), 0);

    EXPECT_EQ(ov_iowrap_set_stati64(nullptr), 0);
    EXPECT_EQ(ov_the_stati64_func, stat64_before);
    EXPECT_EQ(ov_iowrap_set_stati64(fake_stat64), 1);
    EXPECT_EQ(ov_the_stati64_func, fake_stat64);
}

TEST(iochsl, TurnsBackslashesWithinTheCountOnly) {
    struct Case {
        const char* text;
        int count;
        const char* expected;
    } const cases[] = {
        {"a\\b\\c", 5, "a/b/c"},    {"a\\b\\c", 2, "a/b\\c"}, {"a\\b\\c", 0, "a\\b\\c"},
        {"a\\b\\c", -3, "a\\b\\c"}, {"\\\\", 2, "//"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " count " << c.count);
        std::string text = c.text;
        iochsl(&text[0], 99, &c.count);
        EXPECT_EQ(text, c.expected);
    }
    iochsl(nullptr, 0, nullptr); // nothing to do, nothing breaks
}

TEST(g_system, ReturnsTheInterpretersStatus) {
    EXPECT_EQ(g_system("exit 0"), 0);
    EXPECT_NE(g_system("exit 3"), 0);
}
