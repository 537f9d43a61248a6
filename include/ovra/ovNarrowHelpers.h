/* Narrow string helpers of the procedural interface: in-place replacement of
 * a range, case-insensitive comparison, search, character substitution and
 * concatenation on NUL-terminated `char` text and on `utString`, and the path
 * of a shell folder.
 *
 * Error contract: nothing throws, prints or reports; each result is the
 * return value described below. Where the historical functions took no care
 * (null pointers, a range outside the text), these do nothing or answer 0, as
 * each line says, instead of touching memory they were not given.
 *
 * C and C++ callers: `ovconcat` and `ovCSIDL` are plain C; the other
 * functions have C++ names and are declared only to C++.
 *
 * Functions:
 *   ovstrrep      - replace text[first..last] by a replacement, in place.
 *   ovstrncasecmp - case-insensitive comparison of at most n characters.
 *   ovchcasecmp   - case-insensitive comparison of two characters.
 *   ovstrcasecmp  - case-insensitive comparison.
 *   ovpos         - 1-based position of the last character of a needle's
 *                   first occurrence, 0 when absent (see the quirk below).
 *   ovgsub        - replace every `from` by `to`, in a char* or a utString.
 *   ovconcat      - count strings joined into a new heap string.
 *   ov_get_system_folder - a shell folder's path as UTF-8, or "".
 */
#ifndef OVRA_OVNARROWHELPERS_H
#define OVRA_OVNARROWHELPERS_H

#ifndef __cplusplus
#include <stddef.h> /* the export header names wchar_t or char16_t */
#include <uchar.h>
#endif
#include "ovra/ovExport.h"

/* Shell folders, numbered as the Windows shell's CSIDL values. */
typedef enum ovCSIDL {
    ovCSIDL_NONE = -1, /* no folder: gives "" */
    ovCSIDL_DESKTOP = 0x0000,
    ovCSIDL_INTERNET = 0x0001,
    ovCSIDL_PROGRAMS = 0x0002,
    ovCSIDL_CONTROLS = 0x0003,
    ovCSIDL_PRINTERS = 0x0004,
    ovCSIDL_PERSONAL = 0x0005,
    ovCSIDL_FAVORITES = 0x0006,
    ovCSIDL_STARTUP = 0x0007,
    ovCSIDL_RECENT = 0x0008,
    ovCSIDL_SENDTO = 0x0009,
    ovCSIDL_BITBUCKET = 0x000a,
    ovCSIDL_STARTMENU = 0x000b,
    ovCSIDL_MYMUSIC = 0x000d,
    ovCSIDL_MYVIDEO = 0x000e,
    ovCSIDL_DESKTOPDIRECTORY = 0x0010,
    ovCSIDL_DRIVES = 0x0011,
    ovCSIDL_NETWORK = 0x0012,
    ovCSIDL_NETHOOD = 0x0013,
    ovCSIDL_FONTS = 0x0014,
    ovCSIDL_TEMPLATES = 0x0015,
    ovCSIDL_COMMON_STARTMENU = 0x0016,
    ovCSIDL_COMMON_PROGRAMS = 0x0017,
    ovCSIDL_COMMON_STARTUP = 0x0018,
    ovCSIDL_COMMON_DESKTOPDIRECTORY = 0x0019,
    ovCSIDL_APPDATA = 0x001a,
    ovCSIDL_PRINTHOOD = 0x001b,
    ovCSIDL_LOCAL_APPDATA = 0x001c,
    ovCSIDL_ALTSTARTUP = 0x001d,
    ovCSIDL_COMMON_ALTSTARTUP = 0x001e,
    ovCSIDL_COMMON_FAVORITES = 0x001f,
    ovCSIDL_INTERNET_CACHE = 0x0020,
    ovCSIDL_COOKIES = 0x0021,
    ovCSIDL_HISTORY = 0x0022,
    ovCSIDL_COMMON_APPDATA = 0x0023,
    ovCSIDL_WINDOWS = 0x0024,
    ovCSIDL_SYSTEM = 0x0025,
    ovCSIDL_PROGRAM_FILES = 0x0026,
    ovCSIDL_MYPICTURES = 0x0027,
    ovCSIDL_PROFILE = 0x0028,
    ovCSIDL_PROGRAM_FILES_COMMON = 0x002b,
    ovCSIDL_COMMON_TEMPLATES = 0x002d,
    ovCSIDL_COMMON_DOCUMENTS = 0x002e,
    ovCSIDL_COMMON_ADMINTOOLS = 0x002f,
    ovCSIDL_ADMINTOOLS = 0x0030,
    ovCSIDL_CONNECTIONS = 0x0031,
    ovCSIDL_COMMON_MUSIC = 0x0035,
    ovCSIDL_COMMON_PICTURES = 0x0036,
    ovCSIDL_COMMON_VIDEO = 0x0037,
    ovCSIDL_RESOURCES = 0x0038,
    ovCSIDL_RESOURCES_LOCALIZED = 0x0039,
    ovCSIDL_COMMON_OEM_LINKS = 0x003a,
    ovCSIDL_CDBURN_AREA = 0x003b,
    ovCSIDL_COMPUTERSNEARME = 0x003d,
    /* Flags the shell accepts beside a number; they widen the enumeration's
     * range so that any folder number a caller passes is a valid value. */
    ovCSIDL_FLAG_PER_USER_INIT = 0x0800,
    ovCSIDL_FLAG_NO_ALIAS = 0x1000,
    ovCSIDL_FLAG_DONT_UNEXPAND = 0x2000,
    ovCSIDL_FLAG_DONT_VERIFY = 0x4000,
    ovCSIDL_FLAG_CREATE = 0x8000,
    ovCSIDL_FLAG_MASK = 0xff00
} ovCSIDL;

#ifdef __cplusplus
extern "C" {
#endif

/* A new string of the first `count` strings joined (`first`, then count - 1
 * further const char* arguments), allocated with the global operator new:
 * free it with operator delete (C++) and never with free(), so C code has
 * no portable way to release it. count 1 gives a
 * copy of first; count 0 or less gives "". A null string adds nothing.
 * Returns null when memory runs out. The count is not checked against the
 * arguments given. */
OV_API char* ovconcat(int count, const char* first, ...);

#ifdef __cplusplus
} /* extern "C" */

class utString;

/* Replaces text[first..last] (0-based, inclusive; last = first - 1 inserts)
 * by replacement, moving the tail; the caller gives room for a longer
 * result. Nothing happens for null pointers or a range outside the text. */
OV_API void ovstrrep(char* text, int first, int last, const char* replacement);

/* Case-insensitive comparison of at most n characters by ovchcasecmp: the
 * first nonzero pair result, else 0. "ab" against "abc" gives -1. n <= 0 or
 * a null pointer gives 0. */
OV_API int ovstrncasecmp(const char* a, const char* b, int n);

/* Lowers upper-case letters (isupper, current locale) and compares as signed
 * chars: 0 equal, -1 a < b, 1 otherwise. A NUL on either side gives 1 when a
 * is not NUL, else -1, so two NULs give -1. */
OV_API int ovchcasecmp(char a, char b);

/* Case-insensitive comparison (tolower): 0 equal, -1 when a ends first or
 * sorts first as signed chars, 1 otherwise. A null pointer gives 0. */
OV_API int ovstrcasecmp(const char* a, const char* b);

/* The offset just past the first occurrence of needle in haystack (the
 * 1-based position of its last character), 0 when absent. Kept quirk: when
 * the last candidate tried starts at haystack's last character and fails,
 * the answer is 1, not 0 ("cx" in "abc" gives 1, in "abcd" 0). An empty
 * needle gives haystack's length; an empty haystack 0; a null pointer 0. */
OV_API int ovpos(const char* needle, const char* haystack);

/* Replaces every `from` by `to` up to the NUL; nothing for null or from == to. */
OV_API void ovgsub(char* text, char from, char to);
/* The same over a utString's whole length; a string without data, or one that
 * holds no `from`, is left as it is (and not unshared). */
OV_API void ovgsub(utString& text, char from, char to);

/* The folder's path as UTF-8 text, or an empty string for a negative number
 * or a folder the system does not have.
 * Windows: the shell's SHGetFolderPath for the current user.
 * POSIX: the folders with a plain home-relative or XDG meaning; "" for the
 * rest, and for all of them when HOME is unset or empty:
 *   ovCSIDL_PROFILE                       $HOME
 *   ovCSIDL_PERSONAL                      $HOME/Documents
 *   ovCSIDL_DESKTOP, _DESKTOPDIRECTORY    $HOME/Desktop
 *   ovCSIDL_MYMUSIC / _MYVIDEO / _MYPICTURES  $HOME/Music, Videos, Pictures
 *   ovCSIDL_TEMPLATES                     $HOME/Templates
 *   ovCSIDL_APPDATA                       $XDG_CONFIG_HOME or $HOME/.config
 *   ovCSIDL_LOCAL_APPDATA                 $XDG_DATA_HOME or $HOME/.local/share
 *   ovCSIDL_INTERNET_CACHE                $XDG_CACHE_HOME or $HOME/.cache
 *   ovCSIDL_FONTS                         $HOME/.local/share/fonts
 * An XDG variable counts only when it holds an absolute path. */
OV_API utString ov_get_system_folder(ovCSIDL folder);
#endif /* __cplusplus */

#endif /* OVRA_OVNARROWHELPERS_H */
