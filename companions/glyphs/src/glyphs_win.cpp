#include "ub/ubGlyphs.h"

#include "utf8_win.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX // the C++ runtime may already define it
#define NOMINMAX
#endif
#include <shlobj.h>
#include <windows.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cwchar>
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <string>

namespace {

// False for null or malformed UTF-8, so bad names are refused rather than silently altered.
bool to_wide(const char* utf8, std::wstring& out) {
    return utf8 && ub_detail::utf8_to_wide(utf8, out);
}

// Runs `call` on the wide form of `utf8`; -1 with EINVAL for a null or malformed name.
template <class Call> int with_wide(const char* utf8, Call call) {
    if (!utf8) {
        errno = EINVAL;
        return -1;
    }
    try {
        std::wstring wide;
        if (!to_wide(utf8, wide)) {
            errno = EINVAL;
            return -1;
        }
        return call(wide.c_str());
    } catch (...) {
        errno = ENOMEM;
        return -1;
    }
}

} // namespace

FILE* ub_fopen(const char* utf8_path, const char* mode) {
    if (!utf8_path || !mode) {
        errno = EINVAL;
        return nullptr;
    }
    try {
        std::wstring wpath, wmode;
        if (!to_wide(utf8_path, wpath) || !to_wide(mode, wmode)) {
            errno = EINVAL;
            return nullptr;
        }
        return _wfopen(wpath.c_str(), wmode.c_str());
    } catch (...) {
        errno = ENOMEM;
        return nullptr;
    }
}

int MessageBoxU(void* owner, const char* text, const char* caption, unsigned int type) {
    try {
        std::wstring wtext, wcaption;
        if ((text && !to_wide(text, wtext)) || (caption && !to_wide(caption, wcaption))) {
            errno = EINVAL;
            SetLastError(ERROR_NO_UNICODE_TRANSLATION);
            return 0;
        }
        return MessageBoxW(static_cast<HWND>(owner), text ? wtext.c_str() : nullptr,
                           caption ? wcaption.c_str() : nullptr, type);
    } catch (...) {
        errno = ENOMEM;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}

int ub_open(const char* utf8_path, int flags, ...) {
    int mode = 0;
    if (flags & _O_CREAT) {
        va_list ap;
        va_start(ap, flags);
        mode = va_arg(ap, int);
        va_end(ap);
    }
    return with_wide(utf8_path, [&](const wchar_t* w) { return _wopen(w, flags, mode); });
}

// The runtime's 32-bit-size stat refuses files its record cannot describe; the MinGW
// inline form would truncate the size instead, so the check is made here.
int ub_stat(const char* utf8_path, struct stat* result) {
    if (!result) {
        errno = EINVAL;
        return -1;
    }
    struct _stat64 full;
    if (ub_stat64_func(utf8_path, &full) != 0)
        return -1;
    if (full.st_size > INT_MAX) {
        errno = EOVERFLOW;
        return -1;
    }
    result->st_dev = full.st_dev;
    result->st_ino = full.st_ino;
    result->st_mode = full.st_mode;
    result->st_nlink = full.st_nlink;
    result->st_uid = full.st_uid;
    result->st_gid = full.st_gid;
    result->st_rdev = full.st_rdev;
    result->st_size = static_cast<_off_t>(full.st_size);
    result->st_atime = full.st_atime;
    result->st_mtime = full.st_mtime;
    result->st_ctime = full.st_ctime;
    return 0;
}

int ub_stat64_func(const char* utf8_path, struct _stat64* result) {
    if (!result) {
        errno = EINVAL;
        return -1;
    }
    return with_wide(utf8_path, [&](const wchar_t* w) { return _wstat64(w, result); });
}

int ub_unlink(const char* utf8_path) {
    return with_wide(utf8_path, [](const wchar_t* w) { return _wunlink(w); });
}

int ub_chmod(const char* utf8_path, int mode) {
    return with_wide(utf8_path, [&](const wchar_t* w) { return _wchmod(w, mode); });
}

int ub_mkdir(const char* utf8_path) {
    return with_wide(utf8_path, [](const wchar_t* w) { return _wmkdir(w); });
}

int ub_rmdir(const char* utf8_path) {
    return with_wide(utf8_path, [](const wchar_t* w) { return _wrmdir(w); });
}

int ub_system(const char* utf8_command) {
    if (!utf8_command)
        return _wsystem(nullptr);
    return with_wide(utf8_command, [](const wchar_t* w) { return _wsystem(w); });
}

long SHGetFolderPathU(void* owner, int folder, void* token, unsigned long flags, char* path) {
    if (!path)
        return E_INVALIDARG;
    path[0] = '\0';
    wchar_t wide[MAX_PATH] = {};
    const HRESULT hr =
        SHGetFolderPathW(static_cast<HWND>(owner), folder, static_cast<HANDLE>(token), flags, wide);
    if (FAILED(hr))
        return hr;
    const int n = WideCharToMultiByte(CP_UTF8, 0, wide, -1, path, MAX_PATH, nullptr, nullptr);
    if (n <= 0) {
        path[0] = '\0';
        return E_FAIL;
    }
    return hr;
}

namespace {

// Copies one wide record into the narrow one; false when the name's UTF-8 form does
// not fit.
bool to_narrow_record(const WIN32_FIND_DATAW& w, ubFindData* data) {
    ubFindData d = {};
    d.dwFileAttributes = w.dwFileAttributes;
    d.ftCreationTime[0] = w.ftCreationTime.dwLowDateTime;
    d.ftCreationTime[1] = w.ftCreationTime.dwHighDateTime;
    d.ftLastAccessTime[0] = w.ftLastAccessTime.dwLowDateTime;
    d.ftLastAccessTime[1] = w.ftLastAccessTime.dwHighDateTime;
    d.ftLastWriteTime[0] = w.ftLastWriteTime.dwLowDateTime;
    d.ftLastWriteTime[1] = w.ftLastWriteTime.dwHighDateTime;
    d.nFileSizeHigh = w.nFileSizeHigh;
    d.nFileSizeLow = w.nFileSizeLow;
    d.dwReserved0 = w.dwReserved0;
    d.dwReserved1 = w.dwReserved1;
    if (WideCharToMultiByte(CP_UTF8, 0, w.cFileName, -1, d.cFileName,
                            static_cast<int>(sizeof d.cFileName), nullptr, nullptr) <= 0)
        return false;
    WideCharToMultiByte(CP_UTF8, 0, w.cAlternateFileName, -1, d.cAlternateFileName,
                        static_cast<int>(sizeof d.cAlternateFileName), nullptr, nullptr);
    *data = d;
    return true;
}

// The wide text as UTF-8 into out (size bytes); the bytes written with the NUL, or 0.
int to_utf8(const wchar_t* wide, char* out, unsigned long size) {
    if (!out || size == 0 || size > static_cast<unsigned long>(INT_MAX))
        return 0;
    return WideCharToMultiByte(CP_UTF8, 0, wide, -1, out, static_cast<int>(size), nullptr, nullptr);
}

} // namespace

void* FindFirstFileU(const char* utf8_pattern, ubFindData* data) {
    if (!data) {
        errno = EINVAL;
        return UB_INVALID_HANDLE;
    }
    HANDLE h = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW w;
    const int ok = with_wide(utf8_pattern, [&](const wchar_t* wide) {
        h = FindFirstFileW(wide, &w);
        return h == INVALID_HANDLE_VALUE ? -1 : 0;
    });
    if (ok != 0)
        return UB_INVALID_HANDLE;
    while (!to_narrow_record(w, data)) {
        if (!FindNextFileW(h, &w)) {
            FindClose(h);
            errno = ENOENT;
            return UB_INVALID_HANDLE;
        }
    }
    return h;
}

int FindNextFileU(void* handle, ubFindData* data) {
    if (!handle || handle == UB_INVALID_HANDLE || !data) {
        errno = EINVAL;
        return 0;
    }
    WIN32_FIND_DATAW w;
    do {
        if (!FindNextFileW(static_cast<HANDLE>(handle), &w))
            return 0;
    } while (!to_narrow_record(w, data));
    return 1;
}

int FindCloseU(void* handle) {
    if (!handle || handle == UB_INVALID_HANDLE)
        return 0;
    return FindClose(static_cast<HANDLE>(handle)) ? 1 : 0;
}

int GetUserNameU(char* name, unsigned long* size) {
    if (!name || !size || *size == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    wchar_t wide[257] = {};
    DWORD count = 257;
    if (!GetUserNameW(wide, &count))
        return 0;
    const int n = to_utf8(wide, name, *size);
    if (n <= 0) {
        name[0] = '\0';
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    *size = static_cast<unsigned long>(n);
    return 1;
}

int LookupAccountSidU(const char* system, void* sid, char* name, unsigned long* name_size,
                      char* domain, unsigned long* domain_size, int* use) {
    if (!sid || !name || !name_size || !domain || !domain_size || *name_size == 0 ||
        *domain_size == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::wstring wide_system;
    if (system && !to_wide(system, wide_system)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    wchar_t wide_name[257] = {};
    wchar_t wide_domain[257] = {};
    DWORD name_count = 257, domain_count = 257;
    SID_NAME_USE kind = SidTypeUnknown;
    if (!LookupAccountSidW(system ? wide_system.c_str() : nullptr, static_cast<PSID>(sid),
                           wide_name, &name_count, wide_domain, &domain_count, &kind))
        return 0;
    const int n = to_utf8(wide_name, name, *name_size);
    const int d = to_utf8(wide_domain, domain, *domain_size);
    if (n <= 0 || d <= 0) {
        name[0] = '\0';
        domain[0] = '\0';
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    *name_size = static_cast<unsigned long>(n - 1);
    *domain_size = static_cast<unsigned long>(d - 1);
    if (use)
        *use = static_cast<int>(kind);
    return 1;
}
