#include "ut/utAssert.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(utAssert, ReportFormat) {
    struct Case {
        const char* file;
        int line;
        const char* function;
        const char* expression;
        const char* message;
        const char* expected;
    };
    const Case cases[] = {
        {"a.cpp", 12, "f", "x > 0", "bad x", "a.cpp(12): assertion failed in f: x > 0: bad x\n"},
        {"a.cpp", 12, "f", "x > 0", nullptr, "a.cpp(12): assertion failed in f: x > 0\n"},
        {"a.cpp", 12, "f", "x > 0", "", "a.cpp(12): assertion failed in f: x > 0\n"},
        {nullptr, -1, nullptr, nullptr, nullptr, "?(-1): assertion failed in ?: ?\n"},
        {nullptr, 0, nullptr, nullptr, "m", "?(0): assertion failed in ?: ?: m\n"},
        // Line ends inside a message become blanks; trailing ones go.
        {"f.cpp", 3, "g", "ok", "a\nb\r\n", "f.cpp(3): assertion failed in g: ok: a b\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        CaptureStderr();
        ut_report_assert_failure_5(c.file, c.line, c.message, c.function, c.expression);
        EXPECT_EQ(GetCapturedStderr(), c.expected);
    }
}

TEST(utAssert, MacroReportsOnlyFailuresAndContinues) {
    int evaluations = 0;
    CaptureStderr();
    UT_ASSERT(++evaluations == 1, "never shown");
    EXPECT_EQ(GetCapturedStderr(), "");

    CaptureStderr();
    const int line = __LINE__ + 1;
    UT_ASSERT(evaluations == 2, "count");
    const std::string expected = std::string(__FILE__) + "(" + std::to_string(line) +
                                 "): assertion failed in " + __func__ +
                                 ": evaluations == 2: count\n";
    EXPECT_EQ(GetCapturedStderr(), expected);
    EXPECT_EQ(evaluations, 1);
}

std::string the_reports;

void collect(const char* file, int line, const char* message, const char* function,
             const char* expression) {
    the_reports += std::string(file ? file : "null") + "|" + std::to_string(line) + "|" +
                   (message ? message : "null") + "|" + (function ? function : "null") + "|" +
                   (expression ? expression : "null") + ";";
}

TEST(utAssert, ReporterCanBeReplacedAndRestored) {
    the_reports.clear();
    const utAssertReporter before = ut_set_assert_reporter(&collect);
    EXPECT_EQ(before, &ut_default_assert_reporter);
    CaptureStderr();
    ut_report_assert_failure_5("x.cpp", 7, "multi\nline", "fn", "expr");
    ut_report_assert_failure_5(nullptr, 0, nullptr, nullptr, nullptr);
    EXPECT_EQ(GetCapturedStderr(), "") << "the replacement alone sees reports";
    EXPECT_EQ(the_reports, "x.cpp|7|multi\nline|fn|expr;null|0|null|null|null;");

    EXPECT_EQ(ut_set_assert_reporter(nullptr), &collect) << "null restores the default";
    CaptureStderr();
    ut_report_assert_failure_5("y.cpp", 1, nullptr, "f", "e");
    EXPECT_EQ(GetCapturedStderr(), "y.cpp(1): assertion failed in f: e\n");
}

} // namespace
