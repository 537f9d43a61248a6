/* Low-level I/O wrappers: descriptor-level file I/O and a few path-level file
 * operations of the procedural interface, each routed through a process-wide
 * table of replaceable function pointers.
 *
 * An application that wants all of the library's low-level I/O to go its own
 * way (a virtual file system, handles of its own, injected faults in tests)
 * installs its functions once, before any I/O, with
 * `ov_iowrap_set_io_functions` and `ov_iowrap_set_stati64`, or assigns the
 * `ov_the_..._func` variables directly. Nothing is locked: replace the table
 * before other threads start.
 *
 * Error contract: every wrapper calls the function its pointer holds at the
 * moment of the call, passes the arguments unchanged and returns the result
 * unchanged, so the conventions are the C runtime's: -1 with errno set on
 * failure. No wrapper checks its pointer, except `ov_iowrap_alt_handles`: a
 * table entry set to null must not be called. Paths are UTF-8.
 *
 * Defaults. Windows: the runtime's _read, _write, _close, _tell, _lseek,
 * _chsize and _isatty, and the glyphs library's UTF-8 ub_open, ub_stat,
 * ub_unlink, ub_chmod and ub_stat64_func. POSIX: read, write, close, lseek
 * (tell is lseek(fd, 0, SEEK_CUR)), ftruncate, isatty, and the plain path
 * calls, which take UTF-8 names as they are. Everywhere the commit default is
 * a no-op returning 0 and the alternative-handles function is null.
 *
 * Records: `struct stat` and `ovStat64` (the 64-bit-size record) are the
 * platform's own. Windows: `struct stat` has a 32-bit size and 64-bit times,
 * and `ovStat64` is `struct _stat64`. POSIX: both are the platform's
 * `struct stat`, whose size is already 64-bit.
 *
 * C and C++ callers: the wrappers, `g_system` and `iochsl` have plain C
 * names. The two setters and the table variables have C++ names that encode
 * their types and are declared only to C++.
 *
 * Functions:
 *   ov_read, ov_write, ov_lseek, ov_close, ov_tell, ov_truncate, ov_commit,
 *   ov_isatty         - descriptor calls through the table.
 *   ov_open2, ov_open3 - open a UTF-8 path; ov_open2 passes a mode of 0.
 *   ov_stat, ov_stati64, ov_unlink, ov_chmod - path calls through the table.
 *   ov_iowrap_alt_handles - the installed alternative-handles function, or 0.
 *   g_system          - runs a UTF-8 command line through the command
 *                       interpreter; returns its status.
 *   iochsl            - Fortran-callable: backslashes to slashes in place.
 *   ov_iowrap_set_io_functions, ov_iowrap_set_stati64 (C++) - install.
 */
#ifndef OVRA_OVIOWRAP_H
#define OVRA_OVIOWRAP_H

#ifndef __cplusplus
#include <stddef.h> /* the export header names wchar_t or char16_t */
#include <uchar.h>
#endif
#include "ovra/ovExport.h"

#include <sys/stat.h>
#include <sys/types.h>

#if defined(_WIN32)
typedef struct _stat64 ovStat64;
#else
typedef struct stat ovStat64;
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Reads up to count bytes from fd. */
OV_API int ov_read(int fd, void* buffer, unsigned int count);
/* Writes count bytes to fd. */
OV_API int ov_write(int fd, const void* buffer, unsigned int count);
/* Moves fd's position; returns the new position. */
OV_API long ov_lseek(int fd, long offset, int origin);
/* Closes fd. */
OV_API int ov_close(int fd);
/* Opens path with the runtime's O_ flags and a permission mode of 0. */
OV_API int ov_open2(const char* path, int flags);
/* Opens path with the runtime's O_ flags and the permission mode for O_CREAT. */
OV_API int ov_open3(const char* path, int flags, int mode);
/* Fills *result with path's status. */
OV_API int ov_stat(const char* path, struct stat* result);
/* Fills *result with path's status, with a 64-bit size. */
OV_API int ov_stati64(const char* path, ovStat64* result);
/* fd's position. */
OV_API long ov_tell(int fd);
/* Sets fd's file to size bytes. */
OV_API int ov_truncate(int fd, long size);
/* Flushes fd to the disk; the default does nothing and returns 0. */
OV_API long ov_commit(int fd);
/* Removes the file path. */
OV_API int ov_unlink(const char* path);
/* Sets path's permission bits. */
OV_API int ov_chmod(const char* path, int mode);
/* Nonzero when fd is a terminal. */
OV_API int ov_isatty(int fd);
/* Calls the installed alternative-handles function; 0 when there is none. */
OV_API int ov_iowrap_alt_handles(void);

/* Runs command (UTF-8) through the command interpreter (cmd.exe on Windows,
 * /bin/sh on POSIX); returns its status, -1 if it could not be run. */
OV_API int g_system(const char* command);

/* Fortran-callable: replaces every backslash among the first *count bytes of
 * text by a slash, in place. text_len is the hidden length and is ignored. A
 * null text or count, or a count below 1, changes nothing. */
OV_API void iochsl(char* text, int text_len, const int* count);

#ifdef __cplusplus
} /* extern "C" */

typedef int (*ovOpenFunc)(const char* path, int flags, ...);
typedef int (*ovReadFunc)(int fd, void* buffer, unsigned int count);
typedef int (*ovWriteFunc)(int fd, const void* buffer, unsigned int count);
typedef int (*ovStatFunc)(const char* path, struct stat* result);
typedef int (*ovCloseFunc)(int fd);
typedef long (*ovTellFunc)(int fd);
typedef long (*ovLseekFunc)(int fd, long offset, int origin);
typedef int (*ovTruncateFunc)(int fd, long size);
typedef long (*ovCommitFunc)(int fd);
typedef int (*ovUnlinkFunc)(const char* path);
typedef int (*ovChmodFunc)(const char* path, int mode);
typedef int (*ovIsattyFunc)(int fd);
typedef int (*ovAltHandlesFunc)(void);
typedef int (*ovStati64Func)(const char* path, ovStat64* result);

/* The table. Public: read or assign any entry directly. */
extern OV_API ovOpenFunc ov_the_open_func;
extern OV_API ovReadFunc ov_the_read_func;
extern OV_API ovWriteFunc ov_the_write_func;
extern OV_API ovStatFunc ov_the_stat_func;
extern OV_API ovCloseFunc ov_the_close_func;
extern OV_API ovTellFunc ov_the_tell_func;
extern OV_API ovLseekFunc ov_the_lseek_func;
extern OV_API ovTruncateFunc ov_the_truncate_func;
extern OV_API ovCommitFunc ov_the_commit_func;
extern OV_API ovUnlinkFunc ov_the_unlink_func;
extern OV_API ovChmodFunc ov_the_chmod_func;
extern OV_API ovIsattyFunc ov_the_isatty_func;
extern OV_API ovAltHandlesFunc ov_the_alt_handles;
extern OV_API ovStati64Func ov_the_stati64_func;

/* Installs thirteen functions at once. Returns 0 and changes nothing when any
 * of open, read, write, stat, close, tell, lseek, unlink or alt_handles is
 * null. A null truncate, commit, chmod or isatty is stored as given (and must
 * then not be called); returns 1. The stat64 entry is not part of this call. */
OV_API int ov_iowrap_set_io_functions(ovOpenFunc open, ovReadFunc read, ovWriteFunc write,
                                      ovStatFunc stat, ovCloseFunc close, ovTellFunc tell,
                                      ovLseekFunc lseek, ovTruncateFunc truncate,
                                      ovCommitFunc commit, ovUnlinkFunc unlink, ovChmodFunc chmod,
                                      ovIsattyFunc isatty, ovAltHandlesFunc alt_handles);
/* Installs the stat64 function; 0 and no change for null, else 1. */
OV_API int ov_iowrap_set_stati64(ovStati64Func stati64);
#endif /* __cplusplus */

#endif /* OVRA_OVIOWRAP_H */
