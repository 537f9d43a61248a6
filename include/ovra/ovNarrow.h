/// @file
/// Narrow-character helpers of the procedural interface: plain exported
/// functions on NUL-terminated `char` text in the C runtime's terms.
///
/// Error contract: nothing here throws, prints or crashes on bad arguments.
/// A null pointer is an accepted argument wherever text is taken, with the
/// meaning given for each function.
///
/// Functions:
///   ov_stricmp(a, b)  - case-insensitive comparison: negative, 0 or positive.
///   ov_lead_byte(c)   - 1 when c starts a double-byte character of the current
///                       locale's code page, else 0.
#pragma once

#include "ovra/ovExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Compares a and b without regard to case; the result is the difference of
/// the first pair of folded bytes that differ (as unsigned char), 0 when equal.
/// Windows: the runtime's _stricmp, which folds by the current locale.
/// POSIX: ASCII letters only, as in the "C" locale, whatever the locale is.
/// A null pointer sorts before every text, "" included; two nulls are equal.
OV_API int ov_stricmp(const char* a, const char* b);

/// 1 when c is the first byte of a character that needs more bytes in the
/// current locale's multibyte code page (the runtime's isleadbyte), else 0.
/// Always 0 in single-byte and UTF-8 locales: there is no lead-byte notion
/// there. POSIX asks mbrlen whether c alone is an incomplete character.
OV_API int ov_lead_byte(char c);

#ifdef __cplusplus
}
#endif
