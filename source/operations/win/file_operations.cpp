// Windows file operations: the C runtime's wide calls, and Win32 for attributes,
// full paths and listing.
#include "common/win32.h"
#include "operations/path_os.h"
#include "ovra/ovFileOperations.h"

#include <cstdio>
#include <direct.h>
#include <io.h>
#include <memory>
#include <sys/stat.h>

using ovra_internal::is_dot;
using ovra_internal::wide_path;

namespace {

// Read and write (octal 0666): clears the read-only attribute.
constexpr int kReadWrite = _S_IREAD | _S_IWRITE;
constexpr DWORD kFullPathRoom = 260;

// Text the system wrote, or the empty path when it does not decode.
ovPathName from_system(const wchar_t* text) {
    int status = 0;
    const ovString s(ovSTRING_UTF16, text, status);
    if (status != 0)
        return ovPathName();
    return ovPathName(s);
}

} // namespace

ovWinReadMode::~ovWinReadMode() {}
ovWinRWMode::~ovWinRWMode() {}
ovWinWriteMode::~ovWinWriteMode() {}

FILE* ovWinReadMode::file_open(const ovPathName& path) const {
    return _wfopen(wide_path(path), L"rb");
}

FILE* ovWinRWMode::file_open(const ovPathName& path) const {
    return _wfopen(wide_path(path), L"r+b");
}

FILE* ovWinWriteMode::file_open(const ovPathName& path) const {
    return _wfopen(wide_path(path), L"wb");
}

ovWinFileOperations::~ovWinFileOperations() {}

ovPathType ovWinFileOperations::type_of_path(const ovPathName& path) const {
    if (is_dot(path))
        return ovPATH_DIRECTORY;
    const DWORD attributes = GetFileAttributesW(wide_path(path));
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return ovPATH_DOESNT_EXIST;
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) ? ovPATH_DIRECTORY : ovPATH_FILE;
}

int ovWinFileOperations::remove_file(const ovPathName& path) const {
    const wchar_t* p = wide_path(path);
    _wchmod(p, kReadWrite);
    return _wremove(p) == 0 ? 1 : 0;
}

int ovWinFileOperations::create_directory(const ovPathName& path) const {
    return _wmkdir(wide_path(path)) == 0 ? 1 : 0;
}

int ovWinFileOperations::delete_directory(const ovPathName& path) const {
    if (type_of_path(path) != ovPATH_DIRECTORY)
        return 0;
    const wchar_t* p = wide_path(path);
    _wchmod(p, kReadWrite);
    return _wrmdir(p) == 0 ? 1 : 0;
}

ovIFileIteratorcoPrf ovWinFileOperations::iterator(const ovPathName& path) const {
    return ovIFileIteratorcoPrf(new ovWinFileIterator(ovPath(path, nullptr, nullptr)));
}

int ovWinFileOperations::check_encoding(const ovPathName& path) const {
    return path.invalid() ? 0 : 1;
}

ovString ovWinFileOperations::os_style_path(const ovPathName& path) const {
    return path.string().replace_all(OVSTRING("/"), OVSTRING("\\"));
}

int64_t ovWinFileOperations::file_size(const ovPathName& path) const {
    FILE* f = read_mode().file_open(path);
    if (!f)
        return 0;
    _fseeki64(f, 0, SEEK_END);
    const int64_t size = _ftelli64(f);
    std::fclose(f);
    return size;
}

ovPathName ovWinFileOperations::full_path(const ovPathName& path) const {
    const wchar_t* p = wide_path(path);
    wchar_t room[kFullPathRoom];
    DWORD n = GetFullPathNameW(p, kFullPathRoom, room, nullptr);
    if (n == 0)
        return ovPathName();
    if (n < kFullPathRoom)
        return from_system(room);
    // Too long for the first buffer: n is the room needed, terminator included, and
    // nothing in `room` may be read. Ask once more with that room; an answer that
    // grew in between (the current directory changed) is refused rather than chased.
    const DWORD needed = n;
    std::unique_ptr<wchar_t[]> big(new wchar_t[needed]);
    n = GetFullPathNameW(p, needed, big.get(), nullptr);
    if (n == 0 || n >= needed)
        return ovPathName();
    return from_system(big.get());
}

ovStatus ovWinFileOperations::rename(const ovPathName& from, const ovPathName& to) const {
    return ovStatus(_wrename(wide_path(from), wide_path(to)) == 0 ? 1 : 0);
}

ovWinFileIterator::ovWinFileIterator(const ovPath& path)
    : ovIFileIterator(path), m_invalid(1), m_handle(INVALID_HANDLE_VALUE) {
    if (path.is_directory())
        m_invalid = 0;
}

ovWinFileIterator::~ovWinFileIterator() {
    if (m_handle != INVALID_HANDLE_VALUE)
        FindClose(m_handle);
}

int ovWinFileIterator::undefined() const {
    return m_handle == INVALID_HANDLE_VALUE ? 1 : 0;
}

int ovWinFileIterator::get_next_file() {
    // Not a directory when made: list nothing, so that the empty path never lists
    // the root of the current drive through the pattern "/*".
    if (m_invalid)
        return 0;
    WIN32_FIND_DATAW data;
    BOOL found;
    if (undefined()) {
        const ovString pattern = listed_path().path_ov() + OVSTRING("/*");
        m_handle = FindFirstFileW(pattern.convert(ovSTRING_WCS), &data);
        found = m_handle != INVALID_HANDLE_VALUE;
    } else {
        found = FindNextFileW(m_handle, &data);
    }
    if (!found) {
        if (m_handle != INVALID_HANDLE_VALUE)
            FindClose(m_handle);
        m_handle = INVALID_HANDLE_VALUE;
        return 0;
    }
    int ignored = 0;
    set_current(ovFileName(ovString(ovSTRING_UTF16, data.cFileName, ignored)));
    return 1;
}
