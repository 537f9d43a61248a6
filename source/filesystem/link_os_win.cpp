#include "filesystem/link_os.h"

#include "common/win32.h"

namespace {

const wchar_t* wide(const ovPathName& path) {
    const wchar_t* p = path.string().convert(ovSTRING_WCS);
    return p ? p : L"";
}

} // namespace

bool ovra_internal::is_link(const ovPathName& path) {
    const DWORD a = GetFileAttributesW(wide(path));
    return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool ovra_internal::remove_link(const ovPathName& path) {
    const wchar_t* p = wide(path);
    const DWORD a = GetFileAttributesW(p);
    if (a == INVALID_FILE_ATTRIBUTES)
        return false;
    if (a & FILE_ATTRIBUTE_READONLY)
        SetFileAttributesW(p, a & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    // A directory link (junction or directory symbolic link) goes as a directory; the
    // call removes the link, not the directory it points to.
    if (a & FILE_ATTRIBUTE_DIRECTORY)
        return RemoveDirectoryW(p) != 0;
    return DeleteFileW(p) != 0;
}
