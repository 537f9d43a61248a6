// Assertion reporting that logs and carries on: UT_ASSERT never aborts, so callers still
// need their own fallback for the failed case. Null arguments print as "?"; nothing crashes.
#ifndef UT_ASSERT_H
#define UT_ASSERT_H

#include "ut/utExport.h"

// Writes "<file>(<line>): assertion failed in <function>: <expression>[: <message>]\n" to
// stderr and flushes. ": <message>" is added only when message is non-null and non-empty.
UT_API void ut_report_assert_failure_5(const char* file, int line, const char* function,
                                       const char* expression, const char* message);

// Reports cond (as written) with msg when cond is false; does nothing else.
#define UT_ASSERT(cond, msg)                                                                       \
    do {                                                                                           \
        if (!(cond))                                                                               \
            ::ut_report_assert_failure_5(__FILE__, __LINE__, __func__, #cond, (msg));              \
    } while (0)

#endif // UT_ASSERT_H
