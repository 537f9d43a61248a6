// Fixture of the ovInputFile tests: reports are collected instead of printed, the pause
// between retries is cut to nothing, and the switches are put back after each test.
#pragma once

#include "ovra/ovInputFile.h"

#include "ovio/input_file_os.h"
#include "ut/utAssert.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ovtest {

struct Report {
    std::string file, message, function, expression;
    int line;
};

inline std::vector<Report> the_reports;

inline void collect_report(const char* file, int line, const char* message, const char* function,
                           const char* expression) {
    the_reports.push_back({file, message, function, expression, line});
}

class InputFileTest : public testing::Test {
protected:
    void SetUp() override {
        the_reports.clear();
        m_reporter = ut_set_assert_reporter(&collect_report);
        m_pause = ovra_internal::read_retry_pause_ms();
        ovra_internal::read_retry_pause_ms() = 0;
    }
    void TearDown() override {
        ut_set_assert_reporter(m_reporter);
        ovra_internal::read_retry_pause_ms() = m_pause;
        ovInputFile::check_for_read_error(0);
        ovInputFile::read_error_recovery(0);
    }

private:
    utAssertReporter m_reporter = nullptr;
    unsigned m_pause = 0;
};

// Closes the stream's descriptor underneath it: every later read and seek fails for
// real (EBADF), on both targets.
void close_descriptor(FILE* stream);

// How many times `needle` occurs in `text`.
inline int occurrences(const std::string& text, const std::string& needle) {
    int n = 0;
    for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1))
        ++n;
    return n;
}

} // namespace ovtest
