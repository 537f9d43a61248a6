// Behaviour on real files, on both targets. Read errors come from a real stream
// opened for writing only, whose reads fail every time.
#include "input_file_fixture.h"

#include <cstdio>
#include <string>

using namespace ovtest;

namespace {

// A scratch file with `text`, removed at the end of the test.
class ScratchFile {
public:
    explicit ScratchFile(const std::string& text) {
        const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
        m_name = std::string("ovio_") + info->name() + ".txt";
        std::FILE* f = std::fopen(m_name.c_str(), "wb");
        if (f) {
            std::fwrite(text.data(), 1, text.size(), f);
            std::fclose(f);
        }
    }
    ~ScratchFile() { std::remove(m_name.c_str()); }
    const char* name() const { return m_name.c_str(); }

private:
    std::string m_name;
};

} // namespace

TEST_F(InputFileTest, OpensByNameAndCountsLinesAndCharacters) {
    const ScratchFile file("first\nsecond line\nx");
    ovInputFile in(nullptr);
    EXPECT_EQ(in.lines_read(), ovInputFile::kUnknown);
    ASSERT_EQ(in.fopen(file.name(), "rb"), 1);
    EXPECT_EQ(in.position(), 0);

    char line[64];
    ASSERT_NE(in.fgets(line, sizeof line), nullptr);
    EXPECT_STREQ(line, "first\n");
    EXPECT_EQ(in.getc(), 's');
    ASSERT_NE(in.fgets(line, sizeof line), nullptr);
    EXPECT_STREQ(line, "econd line\n");
    EXPECT_EQ(in.lines_read(), 2);
    EXPECT_EQ(in.position(), 6 + 1 + 11);

    // getc counts every attempt, the one that meets the end too.
    EXPECT_EQ(in.getc(), 'x');
    EXPECT_EQ(in.getc(), EOF);
    EXPECT_EQ(in.position(), 20);
    EXPECT_NE(in.feof(), 0);
    EXPECT_EQ(in.fgets(line, sizeof line), nullptr);
    EXPECT_EQ(in.lines_read(), 2);

    // rewind goes back but keeps the counters.
    in.rewind();
    EXPECT_EQ(in.position(), 20);
    ASSERT_NE(in.fgets(line, sizeof line), nullptr);
    EXPECT_STREQ(line, "first\n");

    EXPECT_EQ(in.fclose(), 0);
    EXPECT_EQ(in.lines_read(), ovInputFile::kUnknown);
    EXPECT_EQ(in.position(), ovInputFile::kUnknown);
    EXPECT_EQ(the_reports.size(), 0u);
}

TEST_F(InputFileTest, NoStreamMissingFileAndClosedStreamAreHarmless) {
    ovInputFile in(nullptr);
    EXPECT_EQ(in.fopen("ovio_no_such_dir/none.txt", "rb"), 0);
    EXPECT_EQ(in.stream(), nullptr);
    EXPECT_EQ(in.lines_read(), 0);
    EXPECT_EQ(in.position(), 0);

    char line[8] = "keep";
    for (FILE* stream : {static_cast<FILE*>(nullptr), ovNO_STREAM}) {
        in.set_stream(stream);
        EXPECT_EQ(in.getc(), EOF);
        EXPECT_EQ(in.fgets(line, sizeof line), nullptr);
        EXPECT_EQ(in.feof(), 1);
        EXPECT_EQ(in.ferror(), 1);
        in.clearerr();
        in.rewind();
        EXPECT_EQ(in.fclose(), EOF);
    }
    EXPECT_STREQ(line, "keep");

    // After fclose the object keeps the pointer but never touches the closed stream.
    const ScratchFile file("a\n");
    ASSERT_EQ(in.fopen(file.name(), "rb"), 1);
    FILE* opened = in.stream();
    EXPECT_EQ(in.fclose(), 0);
    EXPECT_EQ(in.stream(), opened);
    EXPECT_EQ(in.getc(), EOF);
    EXPECT_EQ(in.fgets(line, sizeof line), nullptr);
    EXPECT_EQ(in.fclose(), EOF);

    // Bad buffers give null and read nothing.
    ASSERT_EQ(in.fopen(file.name(), "rb"), 1);
    EXPECT_EQ(in.fgets(nullptr, 8), nullptr);
    EXPECT_EQ(in.fgets(line, 0), nullptr);
    EXPECT_EQ(in.fgets(line, sizeof line), line);
    in.fclose();
}

// A stream whose descriptor was closed underneath it: every read and seek fails.
TEST_F(InputFileTest, ReadErrorsThatNeverClear) {
    const ScratchFile file("some text\n");
    ovInputFile in(nullptr);
    char line[64];

    // Both switches off: null at once, no retries, no report.
    ASSERT_EQ(in.fopen(file.name(), "rb"), 1);
    close_descriptor(in.stream());
    EXPECT_EQ(in.fgets(line, sizeof line), nullptr);
    EXPECT_NE(in.ferror(), 0);
    EXPECT_TRUE(the_reports.empty());
    in.fclose();

    // Checking and recovery: five failed attempts, then one report of them all.
    ovInputFile::check_for_read_error(1);
    ovInputFile::read_error_recovery(1);
    ASSERT_EQ(in.fopen(file.name(), "rb"), 1);
    close_descriptor(in.stream());
    EXPECT_EQ(in.fgets(line, sizeof line), nullptr);
    EXPECT_EQ(in.lines_read(), 0);
    ASSERT_EQ(the_reports.size(), 1u);
    const Report& r = the_reports[0];
    EXPECT_EQ(r.file, "source/ovio/ovInputFile");
    EXPECT_EQ(r.line, 220);
    EXPECT_EQ(r.function, "ovInputFile::fgets");
    EXPECT_EQ(r.expression, "recovered");
    const std::string first =
        "File reading error position 0 | recovery attempt 1 |lseek error finding file length : ";
    EXPECT_EQ(r.message.rfind(first, 0), 0u) << r.message;
    EXPECT_EQ(occurrences(r.message, "|lseek error finding file length : "), 5) << r.message;
    EXPECT_NE(r.message.find("| recovery attempt 5 |"), std::string::npos);
    in.fclose();
}
