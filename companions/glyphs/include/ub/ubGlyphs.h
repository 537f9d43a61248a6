// UTF-8 forms of platform calls, so callers can pass UTF-8 names everywhere, including
// where the native calls want UTF-16. Failures return the call's usual failure value and
// set errno; null or malformed (non-UTF-8) arguments give EINVAL.
#ifndef UB_GLYPHS_H
#define UB_GLYPHS_H

#include "ub/ubExport.h"

#include <cstdio>

// fopen with a UTF-8 path and mode; nullptr (errno set) on failure or bad arguments.
UB_API FILE* ub_fopen(const char* utf8_path, const char* mode);

#endif // UB_GLYPHS_H
