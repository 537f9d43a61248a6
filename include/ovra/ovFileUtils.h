/* File utilities of the procedural interface: Fortran-callable functions that
 * query, size, date, create and delete files and directories by name, the
 * error translation they share, and the path preparation behind them.
 *
 * Calling convention (kept exactly, for Fortran callers): a name arrives as a
 * character pointer that need not be NUL-terminated, immediately followed by
 * its hidden length (int, by value). Only `fcsize` looks at the hidden length;
 * the number of characters used is the next argument, `n`, an int passed by
 * reference. Trailing blanks are not trimmed: pass the trimmed length. Other
 * ints are passed by reference. The outcome is written to the last argument,
 * `ierr`: 0 success, a positive C runtime errno value or an error class, -1
 * for rejected arguments. Nothing is returned, raised or printed.
 *
 * Path preparation: the first `n` characters of the name (an embedded NUL
 * ends it sooner) have environment references expanded (`fc_env_variable`,
 * unless switched off with `fc_allow_env_in_paths(0)`) and backslashes turned
 * into slashes; the result, at most 1024 characters, goes to the I/O table of
 * ovra/ovIOWrap.h. A count below 0 counts as 0 and one above 1024 as 1024, so
 * no count writes past the 1025-byte path buffer. A null name counts as "".
 * Null `n`, `ierr` or any other required pointer gives -1 in `ierr` (nothing
 * at all when `ierr` is null); `id`, `type` and `date` may be null.
 *
 * Errors: `ierr` is the platform's errno. `fcuerr` and `fcmcer` classify
 * errno values by the Windows runtime's numbering; on POSIX the platform's
 * value is first translated to the Windows number, so one failure gives the
 * same class and code on both. EINTR classifies as success (0, 0), and
 * ENOTDIR and ENAMETOOLONG share (1, 13), on purpose.
 *
 * Functions:
 *   fcusta  - status: device and inode, and type (0 directory, 1 file, -1 other).
 *   fcusiz  - size in bytes (C++ only: references and a by-value count).
 *   fcsize  - checked fcusiz: -1 for a bad count, else error classes.
 *   fcumkd  - create one directory.
 *   fcudel  - delete a file or an empty directory.
 *   fcuddl  - delete a directory tree with the shell's "rm -r".
 *   fcudat  - modification or creation date as a seven-int date array.
 *   fcdate  - checked fcudat: -1 for bad arguments, else error classes.
 *   fcuerr  - errno value to (class, code); fcmcer - to class only.
 *   fc_process_pathname - prepare a path as the functions above do.
 *   fc_env_variable     - expand one environment reference.
 *   fc_allow_env_in_paths - switch expansion on (nonzero) or off (0).
 *   ov_stricmp, ov_lead_byte - narrow-character helpers.
 */
#ifndef OVRA_OVFILEUTILS_H
#define OVRA_OVFILEUTILS_H

#ifndef __cplusplus
#include <stddef.h> /* the export header names wchar_t or char16_t */
#include <uchar.h>
#endif
#include "ovra/ovExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Status of a file or directory. On success *ierr = 0, id[0] = device,
 * id[1] = inode number (16 bits on Windows, the low 32 bits on POSIX), *type
 * = 0 for a directory, 1 for a regular file, -1 otherwise. On failure *ierr =
 * errno and nothing else is written. A stat failing with EOVERFLOW (a file
 * too large for the 32-bit record) is retried with the 64-bit record. */
OV_API void fcusta(const char* name, int name_len, const int* n, int* id, int* type, int* ierr);

/* Size in bytes: *ierr = -1 when *n is below 1, above 1023 or above
 * name_len; otherwise fcusiz's result, with errno replaced by its class. */
OV_API void fcsize(const char* name, int name_len, const int* n, int* size, int* ierr);

/* Creates one directory; *ierr = errno on failure, else 0. */
OV_API void fcumkd(const char* name, int name_len, const int* n, int* ierr);

/* Deletes a file (*is_file nonzero, through the I/O table) or an empty
 * directory (*is_file 0); *ierr = errno on failure, else 0. */
OV_API void fcudel(const char* name, int name_len, const int* n, const int* is_file, int* ierr);

/* Deletes a directory tree by running "rm -r <path> > /dev/null" through
 * g_system, on every platform; *ierr is the interpreter's status (0 success).
 * The path reaches rm as one word: POSIX quotes it for sh in single quotes,
 * Windows in double quotes for cmd.exe, where a path holding '%' or '"' is
 * refused with -1. A path starting with '-' is given as "./-..." so that rm
 * never reads it as an option. */
OV_API void fcuddl(const char* name, int name_len, const int* n, int* ierr);

/* Date of a file: the modification time when *which is 2, else the creation
 * time (Windows) or status-change time (POSIX), in local time. date[0..6] =
 * year, month 1-12, day, hour, minute, second, 0. *ierr = errno on failure. */
OV_API void fcudat(const char* name, int name_len, const int* n, const int* which, int* date,
                   int* ierr);

/* Checked fcudat: *ierr = -1 when *n is below 1 or *which is not 1 or 2;
 * otherwise fcudat's result replaced by its class. `unused` is ignored. */
OV_API void fcdate(const char* name, int name_len, const int* n, void* unused, const int* which,
                   int* date, int* ierr);

/* Classifies an errno value: *cls and *code from the error table; values the
 * table lacks give (12, 120), -1000 gives (20, 140). */
OV_API void fcuerr(const int* errno_value, int* cls, int* code);
/* fcuerr without the code. */
OV_API void fcmcer(const int* errno_value, int* cls);

/* Prepares a path into out (at least 1025 bytes): expansion as
 * fc_env_variable when allowed, else the first n characters; then every
 * backslash becomes a slash. */
OV_API void fc_process_pathname(const char* name, int n, char* out);

/* Expands the first n characters of in into out (at least 1025 bytes; the
 * result is at most 1024 characters):
 *   "$VAR/rest" - VAR's value, then "/rest"; an undefined VAR gives "/rest".
 *   "~/rest"    - HOME's value, then "/rest"; "~user/x" looks up HOMEuser.
 *   "$VAR", "~" - the value alone, or "" when undefined.
 *   "NAME"      - when NAME is an environment variable, its value, followed
 *                 while the value names another variable (up to 63 levels;
 *                 a one-character value stops the chain); else NAME as is.
 * Only a slash ends a variable name. The lookup of a whole name uses the first
 * n characters only (a Fortran name has no terminator to read up to). */
OV_API void fc_env_variable(const char* in, int n, char* out);

/* Switches environment expansion in paths on (nonzero) or off (0); returns
 * flag. Process-wide and unlocked; on at start. */
OV_API int fc_allow_env_in_paths(int flag);

/* Compares a and b without regard to case; the result is the difference of
 * the first pair of folded bytes that differ (as unsigned char), 0 when equal.
 * Windows: the runtime's _stricmp, which folds by the current locale.
 * POSIX: ASCII letters only, as in the "C" locale, whatever the locale is.
 * A null pointer sorts before every text, "" included; two nulls are equal. */
OV_API int ov_stricmp(const char* a, const char* b);

/* 1 when c is the first byte of a character that needs more bytes in the
 * current locale's multibyte code page (the runtime's isleadbyte), else 0.
 * Always 0 in single-byte and UTF-8 locales: there is no lead-byte notion
 * there. POSIX asks mbrlen whether c alone is an incomplete character. */
OV_API int ov_lead_byte(char c);

#ifdef __cplusplus
} /* extern "C" */

/* Size of a file: size = 0, then on success ierr = 0 and size = the 32-bit
 * size; on failure ierr = errno. A file too large for 32 bits fails with
 * EOVERFLOW on both platforms. n is by value here. */
OV_API void fcusiz(const char* name, int name_len, int n, int& size, int& ierr);
#endif

#endif /* OVRA_OVFILEUTILS_H */
