#include "ut/utAssert.h"

#include <cstdio>
#include <string>

namespace {
utAssertReporter the_reporter = &ut_default_assert_reporter;
}

void ut_default_assert_reporter(const char* file, int line, const char* message,
                                const char* function, const char* expression) {
    std::string text = message ? message : "";
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    for (char& c : text) {
        if (c == '\n' || c == '\r')
            c = ' ';
    }
    const bool has_message = !text.empty();
    // One call so concurrent reports do not interleave within a line.
    std::fprintf(stderr, "%s(%d): assertion failed in %s: %s%s%s\n", file ? file : "?", line,
                 function ? function : "?", expression ? expression : "?", has_message ? ": " : "",
                 text.c_str());
    std::fflush(stderr);
}

void ut_report_assert_failure_5(const char* file, int line, const char* message,
                                const char* function, const char* expression) {
    the_reporter(file, line, message, function, expression);
}

utAssertReporter ut_set_assert_reporter(utAssertReporter reporter) {
    const utAssertReporter before = the_reporter;
    the_reporter = reporter ? reporter : &ut_default_assert_reporter;
    return before;
}
