/* Host, user, arguments, dates and break handling of the procedural
 * interface: blank-padded character functions, the host name, the user's
 * login name, full name and domain, the program's arguments, clock and date
 * queries, a sleep, a change of directory, a process-wide break counter with
 * a handler and a checker, and a few platform queries.
 *
 * Calling convention (for Fortran callers): a character argument is a pointer
 * that need not be NUL-terminated, immediately followed by its hidden length
 * (int, by value); other ints are passed by reference. Character outputs are
 * blank-padded and never NUL-terminated, except where a function says so. A
 * hidden length below 0 counts as 0, and no function writes beyond the hidden
 * length (see ovdate and argget, whose historical forms did). Strings returned
 * as `char*` are new heap strings (ovconcat) that C++ callers release with
 * the global operator delete; C callers release them with ov_free_string.
 *
 * Errors: nothing is raised or printed. Results say what failed: a null
 * string, a length of 0, "USERERROR" / "NAMEERROR" in place of a name, -1
 * from ovchdir. Null pointers are accepted everywhere and change nothing.
 *
 * Process-wide state (the argument store, the break count, handler and
 * checker, the host-name cache) is plain and meant to be set up before
 * threads start. The break count is a `volatile sig_atomic_t`, so
 * ovra_interrupt may be installed as a signal handler; an increment lost to
 * a race is tolerated.
 *
 * Platforms: Windows takes the login name from the account functions and the
 * full name and domain from the process token and the domain controller
 * (NETAPI32.DLL, loaded at run time). POSIX takes the login name from the
 * password database entry of the real user id and has no full name or domain:
 * ov_getusername_GetFullName and ov_getusername_NameFromDomain answer 0 and
 * ovgetdomain null. Login names and domains are UTF-8; the full name is in the
 * ANSI code page on Windows, as the network functions give it.
 *
 * Functions:
 *   ncha, ccase            - trimmed length; ASCII case change in place.
 *   ov_gethostname, ov_gethosttype, ovghnm, ovghtp - host name and type.
 *   ovgetuid, ovgetuser, ovgtun, ovgetdomain - login name, full name, domain.
 *   ov_getusername_GetFullName, ov_getusername_NameFromDomain - the full-name
 *                            chain; ovIsLocalLogonNT - local or domain logon.
 *   argsgi, argsge, get_argc, get_argv, nargq, argget - the argument store.
 *   timedp, ovdate, ddate  - the time as seconds and as text.
 *   ovwait, ovchdir        - sleep; change the working directory.
 *   OvBreakHandler, OvBreakChecker, ovbrks, ovra_interrupt, ovbrkq, ovbrkn,
 *   ovbrkc, ov_break_query, ov_querying_break - the break protocol.
 *   ov_sse2_support, ov_random, ovWinVersion - platform queries.
 *   ov_free_string         - releases a string these functions returned.
 */
#ifndef OVRA_OVHOSTUSER_H
#define OVRA_OVHOSTUSER_H

#ifndef __cplusplus
#include <stddef.h> /* the export header names wchar_t or char16_t */
#include <uchar.h>
#endif
#include "ovra/ovExport.h"

/* What ovWinVersion answers. Only the value 2 is ever given. */
typedef enum ovWinVersionVal { ovWIN_VERSION_NT = 2 } ovWinVersionVal;

#ifdef __cplusplus
extern "C" {
#endif

/* Length of text without trailing blanks (only ' ' counts); 0 for all blanks. */
OV_API int ncha(const char* text, int text_len);

/* *mode 1: 'a'-'z' become upper case; any other value: 'A'-'Z' become lower
 * case; over all text_len characters. Other bytes, non-ASCII ones included,
 * are left as they are. */
OV_API void ccase(char* text, int text_len, const int* mode);

/* The host name, kept from the first call that obtains it; null until one
 * does. Windows asks the sockets layer (WSAStartup, gethostname, WSACleanup),
 * POSIX gethostname. Safe to call from several threads. */
OV_API const char* ov_gethostname(void);
/* The host type: always null. */
OV_API const char* ov_gethosttype(void);
/* Blank-fills buf, copies min(buf_len, length of the host name or type)
 * characters and stores that number in *len (0 when there is none). */
OV_API void ovghnm(char* buf, int buf_len, int* len);
OV_API void ovghtp(char* buf, int buf_len, int* len);

/* *uid = a new copy of the login name, or of "USERERROR" when it cannot be
 * obtained. */
OV_API void ovgetuid(char** uid);
/* *user as ovgetuid; *full = the full name, else the login name, else
 * "NAMEERROR". Either pointer may be null. */
OV_API void ovgetuser(char** user, char** full);
/* Login and full name into two blank-padded buffers. A name longer than its
 * buffer keeps buf_len - 1 characters and one trailing blank (kept on purpose:
 * the blank shows that the name was cut). */
OV_API void ovgtun(char* user, int user_len, char* full, int full_len);
/* A new copy of the logon domain, or null for a local logon, an empty domain
 * or a platform without domains. */
OV_API char* ovgetdomain(void);
/* The full name of the process's account into out (*size bytes): 1 and *size
 * = its length on success; 0 for a local logon, *size 0, any failure along
 * the chain or a name that does not fit with its NUL. */
OV_API int ov_getusername_GetFullName(char* out, unsigned* size);
/* The full name of user in domain, asked of the domain's controller, into out
 * (256 bytes); the number of bytes written with the NUL, or 0 for a local
 * logon or any failure. Names are in the ANSI code page. */
OV_API int ov_getusername_NameFromDomain(const char* user, const char* domain, char* out);
/* 1 when LOGONSERVER, without its leading backslashes and slashes, equals
 * COMPUTERNAME ignoring ASCII case; 0 otherwise or when either is unset. */
OV_API int ovIsLocalLogonNT(void);

/* Stores the program's arguments (the array itself, not a copy). */
OV_API void argsgi(int argc, char** argv);
/* *argc = the stored count; returns the stored vector. */
OV_API char** argsge(int* argc);
OV_API int get_argc(void);
OV_API char** get_argv(void);
/* *n = the stored count. */
OV_API void nargq(int* n);
/* Argument *index into buf: n = min(its length, buf_len) characters, then a
 * NUL when it fits (n < buf_len); *len = n. An index below 0 or not below the
 * count, or a missing argument, gives the empty result ("" when buf_len > 0,
 * *len 0). Not blank-padded: the one NUL-terminated character output. */
OV_API void argget(const int* index, char* buf, int buf_len, int* len);

/* *t = seconds since 1970-01-01 UTC, milliseconds as the fraction. */
OV_API void timedp(double* t);
/* The local time as asctime gives it, 24 characters, a newline and a NUL
 * (26 bytes), cut to buf_len bytes. */
OV_API void ovdate(char* buf, int buf_len);
/* The local time as exactly 20 characters, "16 NOV 2026 01.20.33" (day
 * space-padded), cut to buf_len; then all buf_len characters are upper-cased.
 * Characters after the twentieth are not otherwise written. */
OV_API void ddate(char* buf, int buf_len);
/* Sleeps *ms milliseconds (nothing for 0 or less). */
OV_API void ovwait(const int* ms);
/* Changes the working directory to dir (UTF-8), or to $HOME when dir is null;
 * 0 on success, -1 on failure (also when dir is null and HOME is unset). */
OV_API int ovchdir(const char* dir);

/* The break protocol. An interrupt (ovra_interrupt, or ovbrks with -1) counts
 * up and tells the handler; long-running code polls with ovbrkq or
 * ov_break_query, which first call the application's checker. Setting the
 * count to 0 with ovbrks acknowledges the breaks. */
typedef void (*ovBreakHandlerFunc)(int count);
typedef void (*ovBreakCheckerFunc)(void* data);
/* Stores the handler; null removes it. */
OV_API void OvBreakHandler(ovBreakHandlerFunc handler);
/* Stores the checker and the data passed to it; a null checker removes it. */
OV_API void OvBreakChecker(ovBreakCheckerFunc checker, void* data);
/* *value -1: one more break; any other value: the count becomes *value. Then,
 * when the count is above 0 and a handler is set, calls it with the count. */
OV_API void ovbrks(const int* value);
/* One more break, as ovbrks with -1; the signal number is ignored. Suited as a
 * signal handler (signal(SIGINT, ovra_interrupt)), provided the application's
 * break handler is itself safe to run in one. */
OV_API void ovra_interrupt(int signal_number);
/* Calls the checker (when set), then *count = the break count. */
OV_API void ovbrkq(int* count);
/* *count = the break count, without calling the checker. */
OV_API void ovbrkn(int* count);
/* Removes the checker; the count and the handler stay. */
OV_API void ovbrkc(void);
/* Calls the checker with the querying flag set, then returns the count. */
OV_API int ov_break_query(void);
/* 1 while ov_break_query runs the checker, else 0. */
OV_API int ov_querying_break(void);

/* 1 when the processor has SSE2, else 0. */
OV_API int ov_sse2_support(void);
/* rand() / RAND_MAX: from 0.0 to 1.0 inclusive. RAND_MAX is 32767 on
 * Windows and 2147483647 with glibc. Seeding (srand) is the caller's. */
OV_API double ov_random(void);
/* Always ovWIN_VERSION_NT (2). */
OV_API ovWinVersionVal ovWinVersion(void);

/* Releases a string returned by ovgetuid, ovgetuser or ovgetdomain (or any
 * ovconcat result); null is fine. */
OV_API void ov_free_string(char* text);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* OVRA_OVHOSTUSER_H */
