// UTF-8 forms of platform calls, so callers can pass UTF-8 names everywhere, including
// where the native calls want UTF-16. Failures return the call's usual failure value and
// set errno; null or malformed (non-UTF-8) arguments give EINVAL.
//
// Windows: each converts its UTF-8 arguments to UTF-16 and calls the wide runtime or
// Win32 function. POSIX: file names are bytes already, so the plain calls are made.
#ifndef UB_GLYPHS_H
#define UB_GLYPHS_H

#include "ub/ubExport.h"

#include <cstdio>
#include <sys/stat.h>

// fopen with a UTF-8 path and mode; nullptr (errno set) on failure or bad arguments.
UB_API FILE* ub_fopen(const char* utf8_path, const char* mode);

// open/_wopen with a UTF-8 path; the third argument, read only with O_CREAT, is the
// permission mode. Returns the descriptor or -1.
UB_API int ub_open(const char* utf8_path, int flags, ...);

// stat with a UTF-8 path into the platform's record. Windows: the record has a 32-bit
// size, and a file too large for it fails with EOVERFLOW, as the runtime's own does.
UB_API int ub_stat(const char* utf8_path, struct stat* result);

#if defined(_WIN32)
// _wstat64 with a UTF-8 path: the record with a 64-bit size.
UB_API int ub_stat64_func(const char* utf8_path, struct _stat64* result);
#else
// stat with a UTF-8 path; the platform's record already has a 64-bit size.
UB_API int ub_stat64_func(const char* utf8_path, struct stat* result);
#endif

// unlink, chmod, mkdir and rmdir with a UTF-8 path: 0 or -1. mkdir takes no mode
// (POSIX gives 0777 before the umask).
UB_API int ub_unlink(const char* utf8_path);
UB_API int ub_chmod(const char* utf8_path, int mode);
UB_API int ub_mkdir(const char* utf8_path);
UB_API int ub_rmdir(const char* utf8_path);

// system with a UTF-8 command: the command interpreter's status. A null command asks
// whether an interpreter exists, as system(NULL) does.
UB_API int ub_system(const char* utf8_command);

#if defined(_WIN32)
// MessageBoxW with UTF-8 text and caption; `owner` is an HWND or null. Null text or
// caption pass through as MessageBoxW takes them. Returns the button pressed, or 0 on
// failure; malformed UTF-8 shows nothing and gives 0 with errno EINVAL.
UB_API int MessageBoxU(void* owner, const char* text, const char* caption, unsigned int type);

// SHGetFolderPathW with the path written as UTF-8 into `path`, which holds MAX_PATH
// bytes; `owner` is an HWND and `token` a HANDLE, both may be null. Returns the HRESULT;
// a path whose UTF-8 form does not fit fails with E_FAIL and leaves "".
UB_API long SHGetFolderPathU(void* owner, int folder, void* token, unsigned long flags, char* path);

// GetUserNameW with the name written as UTF-8 into `name`, which holds *size bytes. On
// success returns nonzero and *size = the bytes written with the NUL; a name that does
// not fit fails with ERROR_INSUFFICIENT_BUFFER.
UB_API int GetUserNameU(char* name, unsigned long* size);

// LookupAccountSidW with UTF-8 names: `system` may be null (the local system), `sid` is a
// PSID; `name` and `domain` hold *name_size and *domain_size bytes, which become the
// lengths written without the NUL. `use` (a SID_NAME_USE) may be null. Nonzero on success.
UB_API int LookupAccountSidU(const char* system, void* sid, char* name, unsigned long* name_size,
                             char* domain, unsigned long* domain_size, int* use);
#endif

// The narrow find-data record of FindFirstFileU and FindNextFileU, laid out as the
// platform's narrow WIN32_FIND_DATA; cFileName is the entry's name in UTF-8. POSIX fills
// the name, dwFileAttributes (0x10 for a directory, else 0x80) and the size fields.
struct ubFindData {
    unsigned int dwFileAttributes;
    unsigned int ftCreationTime[2];
    unsigned int ftLastAccessTime[2];
    unsigned int ftLastWriteTime[2];
    unsigned int nFileSizeHigh;
    unsigned int nFileSizeLow;
    unsigned int dwReserved0;
    unsigned int dwReserved1;
    char cFileName[260];
    char cAlternateFileName[14];
};

// The search handle of a failed FindFirstFileU, as INVALID_HANDLE_VALUE.
#define UB_INVALID_HANDLE ((void*)(~(unsigned long long)0))

// Starts a listing of `utf8_pattern` (a directory joined with a wildcard name, such as
// "dir/*") and fills `data` with its first entry: the search handle, or
// UB_INVALID_HANDLE (errno set) when nothing matches or the directory cannot be read.
// Entries come in the system's order, "." and ".." included. An entry whose UTF-8 name
// does not fit in cFileName is passed over. POSIX matches the wildcard name with fnmatch.
UB_API void* FindFirstFileU(const char* utf8_pattern, ubFindData* data);
// The next entry: non-zero when `data` was filled, 0 at the end or on error.
UB_API int FindNextFileU(void* handle, ubFindData* data);
// Ends a listing; non-zero on success. UB_INVALID_HANDLE and null give 0.
UB_API int FindCloseU(void* handle);

#endif // UB_GLYPHS_H
