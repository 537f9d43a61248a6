// Assertion reporting that logs and carries on: UT_ASSERT never aborts, so callers still
// need their own fallback for the failed case. Null arguments print as "?"; nothing crashes.
//
// Reports go to one process-wide reporter. The default writes one line per report to the
// standard error stream; an application (or a test) may install its own to collect them.
#ifndef UT_ASSERT_H
#define UT_ASSERT_H

#include "ut/utExport.h"

// Receives one report. Any argument may be null.
typedef void (*utAssertReporter)(const char* file, int line, const char* message,
                                 const char* function, const char* expression);

// Passes the report to the installed reporter. The default writes
// "<file>(<line>): assertion failed in <function>: <expression>[: <message>]\n" to stderr
// and flushes; ": <message>" only for a non-empty message, whose line ends become blanks
// (trailing ones are dropped) so that every report stays one line.
UT_API void ut_report_assert_failure_5(const char* file, int line, const char* message,
                                       const char* function, const char* expression);

// Installs `reporter` (null puts the default back) and returns the one it replaces. Not
// locked: install before threads start reporting.
UT_API utAssertReporter ut_set_assert_reporter(utAssertReporter reporter);

// The default reporter, for a replacement that also wants the usual line.
UT_API void ut_default_assert_reporter(const char* file, int line, const char* message,
                                       const char* function, const char* expression);

// Reports cond (as written) with msg when cond is false; does nothing else.
#define UT_ASSERT(cond, msg)                                                                       \
    do {                                                                                           \
        if (!(cond))                                                                               \
            ::ut_report_assert_failure_5(__FILE__, __LINE__, (msg), __func__, #cond);              \
    } while (0)

#endif // UT_ASSERT_H
