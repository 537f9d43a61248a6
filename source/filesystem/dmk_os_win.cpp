#include "filesystem/dmk_os.h"

#include "common/win32.h"

#include <io.h>
#include <string>

int ovra_internal::seek64(FILE* f, long long offset, int origin) {
    return ::_fseeki64(f, offset, origin);
}

long long ovra_internal::tell64(FILE* f) {
    return ::_ftelli64(f);
}

int ovra_internal::access_utf8(const char* path, int what) {
    const int n = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path, -1, nullptr, 0);
    if (n <= 0)
        return -1;
    std::wstring wide(static_cast<size_t>(n), L'\0');
    if (MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path, -1, &wide[0], n) != n)
        return -1;
    return ::_waccess(wide.c_str(), what) == 0 ? 0 : -1;
}
