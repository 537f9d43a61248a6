/* Date arrays: conversions between a time in whole seconds since 1970-01-01
 * 00:00:00 UTC and a seven-int date array (year, month 1-12, day 1-31, hour,
 * minute, second, millisecond), the current time, a text form and a
 * diagnostic print. A utc flag selects UTC when nonzero and local time when 0.
 * The millisecond is always written as 0 and ignored on input.
 *
 * Error contract: nothing throws or prints except `ut_date_print`. A time the
 * platform cannot convert gives -1 in every element; `ut_date_seconds`
 * answers 0 (and 0 seconds) for what it cannot convert. A null array is
 * accepted and does nothing (or fails, for `ut_date_seconds`).
 *
 * Platforms: Windows' runtime converts no time before 1970 (all -1); POSIX
 * converts negative seconds too.
 *
 * All functions have C++ names; a C compiler sees nothing of this header.
 *
 * Functions:
 *   ut_date_array   - seconds to a date array.
 *   ut_date_seconds - a date array to seconds: 1 success, 0 failure.
 *   ut_date_current - the current time as an array, or in seconds.
 *   ut_date_string  - seconds as the 24-character "Www Mmm dd hh:mm:ss yyyy".
 *   ut_date_print   - the array, one labelled element a line.
 */
#ifndef OVRA_OVDATEARRAY_H
#define OVRA_OVDATEARRAY_H

#ifdef __cplusplus
#include "ovra/ovExport.h"

#include <iosfwd>

class utString;

/* Fills date from seconds, in UTC or local time. */
OV_API void ut_date_array(int seconds, int utc, int date[7]);

/* Seconds of the date array, its fields always read as local time (kept on
 * purpose: utc only chooses the daylight-saving flag, 0 for UTC, the current
 * local flag for local time). A year before 1970, a time the platform cannot
 * convert, or one beyond the int range fails: seconds = 0, result 0. */
OV_API int ut_date_seconds(int date[7], int utc, int& seconds);

/* The current time, in whole seconds, as a date array. */
OV_API void ut_date_current(int utc, int date[7]);
/* The current time in whole seconds. */
OV_API int ut_date_current();

/* text = the time in the runtime's asctime form without its newline, e.g.
 * "Thu Jan  1 00:00:00 1970"; "" when the time cannot be converted. */
OV_API void ut_date_string(int seconds, int utc, utString& text);

/* Writes "ut_date_print {", seven labelled lines and "}" to out. */
OV_API void ut_date_print(std::ostream& out, int date[7]);
#endif /* __cplusplus */

#endif /* OVRA_OVDATEARRAY_H */
