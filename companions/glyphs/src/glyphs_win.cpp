#include "ub/ubGlyphs.h"

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

// False on malformed UTF-8, so bad names are refused rather than silently altered.
bool to_wide(const char* utf8, std::wstring& out) {
    const int n = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, nullptr, 0);
    if (n <= 0)
        return false;
    out.resize(static_cast<size_t>(n));
    if (MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, &out[0], n) != n)
        return false;
    out.pop_back(); // the converted terminator
    return true;
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

// The wide text as UTF-8 into out (size bytes); the bytes written with the NUL, or 0.
int to_utf8(const wchar_t* wide, char* out, unsigned long size) {
    if (!out || size == 0 || size > static_cast<unsigned long>(INT_MAX))
        return 0;
    return WideCharToMultiByte(CP_UTF8, 0, wide, -1, out, static_cast<int>(size), nullptr, nullptr);
}

} // namespace

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
