// UTF-8 forms of platform calls, so callers can pass UTF-8 names everywhere, including
// where the native calls want UTF-16. Failures return the call's usual failure value and
// set errno; null or malformed (non-UTF-8) arguments give EINVAL.
#ifndef UB_GLYPHS_H
#define UB_GLYPHS_H

#include "ub/ubExport.h"

#include <cstdio>

// fopen with a UTF-8 path and mode; nullptr (errno set) on failure or bad arguments.
UB_API FILE* ub_fopen(const char* utf8_path, const char* mode);

#if defined(_WIN32)
// MessageBoxW with UTF-8 text and caption; `owner` is an HWND or null. Null text or
// caption pass through as MessageBoxW takes them. Returns the button pressed, or 0 on
// failure; malformed UTF-8 shows nothing and gives 0 with errno EINVAL.
UB_API int MessageBoxU(void* owner, const char* text, const char* caption, unsigned int type);
#endif

#endif // UB_GLYPHS_H
