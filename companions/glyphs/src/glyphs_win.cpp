#include "ub/ubGlyphs.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX // the C++ runtime may already define it
#define NOMINMAX
#endif
#include <windows.h>

#include <cerrno>
#include <cwchar>
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
