#include "ut/utAssert.h"

#include <cstdio>

void ut_report_assert_failure_5(const char* file, int line, const char* function,
                                const char* expression, const char* message) {
    const bool has_message = message && *message;
    // One call so concurrent reports do not interleave within a line.
    std::fprintf(stderr, "%s(%d): assertion failed in %s: %s%s%s\n", file ? file : "?", line,
                 function ? function : "?", expression ? expression : "?", has_message ? ": " : "",
                 has_message ? message : "");
    std::fflush(stderr);
}
