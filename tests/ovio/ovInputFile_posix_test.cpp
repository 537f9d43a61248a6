// Read errors that clear after a while, from a stream whose reads fail at a chosen
// offset a chosen number of times (glibc's fopencookie).
#include "input_file_fixture.h"

#include <cerrno>
#include <cstring>
#include <string>

using namespace ovtest;

namespace {

struct Flaky {
    std::string data;
    long long pos = 0;
    long long fail_at = 0; // a read starting here fails...
    int failures = 0;      // ...this many times
    int reads_failed = 0;
};

ssize_t flaky_read(void* cookie, char* buf, size_t size) {
    Flaky& f = *static_cast<Flaky*>(cookie);
    if (f.pos == f.fail_at && f.failures > 0) {
        --f.failures;
        ++f.reads_failed;
        errno = EIO;
        return -1;
    }
    // Never read across the failing offset, so the failure is met there.
    const long long stop = f.pos < f.fail_at ? f.fail_at : static_cast<long long>(f.data.size());
    const size_t n =
        static_cast<size_t>(std::min<long long>(static_cast<long long>(size), stop - f.pos));
    std::memcpy(buf, f.data.data() + f.pos, n);
    f.pos += static_cast<long long>(n);
    return static_cast<ssize_t>(n);
}

int flaky_seek(void* cookie, off64_t* offset, int whence) {
    Flaky& f = *static_cast<Flaky*>(cookie);
    const long long base = whence == SEEK_SET   ? 0
                           : whence == SEEK_CUR ? f.pos
                                                : static_cast<long long>(f.data.size());
    const long long to = base + *offset;
    if (to < 0) {
        errno = EINVAL;
        return -1;
    }
    f.pos = to;
    *offset = to;
    return 0;
}

FILE* open_flaky(Flaky& f) {
    cookie_io_functions_t io{};
    io.read = flaky_read;
    io.seek = flaky_seek;
    return fopencookie(&f, "r", io);
}

const char kText[] = "line one\nline two\nline three\n";

// Counters start unknown for a stream handed in; a derived reader (as the formatted
// I/O class is) may start them at 0, which recovery needs to seek to the right place.
struct CountedInput : ovInputFile {
    explicit CountedInput(FILE* stream) : ovInputFile(stream) {
        m_lines_read = 0;
        m_position = 0;
    }
};

} // namespace

TEST_F(InputFileTest, TransientErrorsRecoverFromTheLastGoodPosition) {
    struct Case {
        const char* name;
        int failures;
        int check, recovery;
        bool line_returned;
        bool reported;
    } const cases[] = {
        {"once, recovery on", 1, 0, 1, true, false},  {"twice, both on", 2, 1, 1, true, false},
        {"once, recovery off", 1, 1, 0, false, true}, // a good retry is still no line
        {"always, both on", 99, 1, 1, false, true},   {"once, both off", 1, 0, 0, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        the_reports.clear();
        ovInputFile::check_for_read_error(c.check);
        ovInputFile::read_error_recovery(c.recovery);
        Flaky f{kText, 0, 9, c.failures, 0}; // the second line fails to read
        FILE* stream = open_flaky(f);
        ASSERT_NE(stream, nullptr);
        CountedInput in(stream);
        char line[64];
        ASSERT_NE(in.fgets(line, sizeof line), nullptr);

        char* got = in.fgets(line, sizeof line);
        EXPECT_EQ(got != nullptr, c.line_returned);
        if (got) {
            EXPECT_STREQ(line, "line two\n");
        }
        EXPECT_EQ(!the_reports.empty(), c.reported);
        EXPECT_EQ(in.lines_read(), got ? 2 : 1);
        EXPECT_EQ(in.position(), got ? 18 : 9);
        if (!the_reports.empty() && c.failures == 1) {
            EXPECT_NE(the_reports[0].message.find("| recovery attempt 1 |line two\n"),
                      std::string::npos)
                << the_reports[0].message;
        }
        if (c.check || c.recovery)
            EXPECT_EQ(f.reads_failed, std::min(c.failures, 6))
                << "one failure, then up to five retries";
        else
            EXPECT_EQ(f.reads_failed, 1) << "no retries with both switches off";
        std::fclose(stream);
    }
}

TEST_F(InputFileTest, RecoveryAfterRewindSeeksToTheOldPosition) {
    ovInputFile::read_error_recovery(1);
    Flaky f{kText, 0, 0, 0, 0};
    FILE* stream = open_flaky(f);
    ASSERT_NE(stream, nullptr);
    CountedInput in(stream);
    char line[64];
    ASSERT_NE(in.fgets(line, sizeof line), nullptr);
    ASSERT_NE(in.fgets(line, sizeof line), nullptr);
    in.rewind(); // the counters stay at the third line
    f.fail_at = 0;
    f.failures = 1;
    ASSERT_NE(in.fgets(line, sizeof line), nullptr);
    EXPECT_STREQ(line, "line three\n") << "recovery went back to the counted position";
    std::fclose(stream);
}

TEST_F(InputFileTest, AReadErrorAtTheEndOfTheFileIsTheEnd) {
    for (int recovery : {1, 0}) {
        SCOPED_TRACE(recovery);
        the_reports.clear();
        ovInputFile::check_for_read_error(1);
        ovInputFile::read_error_recovery(recovery);
        Flaky f{"only\n", 0, 5, 1, 0}; // the read after the last line fails
        FILE* stream = open_flaky(f);
        ASSERT_NE(stream, nullptr);
        CountedInput in(stream);
        char line[16];
        ASSERT_NE(in.fgets(line, sizeof line), nullptr);
        EXPECT_EQ(in.fgets(line, sizeof line), nullptr);
        // Recovered follows the recovery switch, so only with it off is there a report.
        if (recovery) {
            EXPECT_TRUE(the_reports.empty());
        } else {
            ASSERT_EQ(the_reports.size(), 1u);
            EXPECT_EQ(the_reports[0].message,
                      "File reading error position 5 | recovery attempt 1 |EOF");
        }
        std::fclose(stream);
    }
}
