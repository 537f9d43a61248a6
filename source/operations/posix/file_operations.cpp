// POSIX file operations: UTF-8 paths to the C library and the system calls.
#include "operations/path_os.h"
#include "ovra/ovFileOperations.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

using ovra_internal::is_dot;
using ovra_internal::utf8_path;

namespace {

// Windows clears the read-only attribute before removing; the POSIX meaning of that
// attribute is the owner's write permission. Only a real file or directory of the
// expected kind is touched (never through a link), and no permission is widened
// beyond the owner's.
void allow_owner_write(const char* path, bool directory) {
    struct stat st;
    if (::lstat(path, &st) != 0)
        return;
    const bool kind = directory ? S_ISDIR(st.st_mode) : S_ISREG(st.st_mode);
    if (kind && !(st.st_mode & S_IWUSR))
        ::chmod(path, (st.st_mode & 07777) | S_IWUSR);
}

// Folds "." and ".." out of an absolute "/"-separated text; ".." at the root stays
// at the root, as the system resolves it.
std::string fold(const std::string& absolute) {
    std::vector<std::string> parts;
    size_t i = 0;
    while (i < absolute.size()) {
        size_t j = absolute.find('/', i);
        if (j == std::string::npos)
            j = absolute.size();
        const std::string part = absolute.substr(i, j - i);
        if (part == "..") {
            if (!parts.empty())
                parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        i = j + 1;
    }
    std::string out;
    for (const std::string& part : parts)
        out += "/" + part;
    return out.empty() ? "/" : out;
}

// The current directory, or "" when it cannot be read (removed, or too deep).
std::string current_directory() {
    std::vector<char> buffer(256);
    for (;;) {
        if (::getcwd(buffer.data(), buffer.size()))
            return buffer.data();
        if (errno != ERANGE || buffer.size() > (1u << 24))
            return std::string();
        buffer.resize(buffer.size() * 2);
    }
}

ovString from_utf8(const char* text) {
    int status = 0;
    return ovString(ovSTRING_UTF8, text, status);
}

} // namespace

ovPosixReadMode::~ovPosixReadMode() {}
ovPosixRWMode::~ovPosixRWMode() {}
ovPosixWriteMode::~ovPosixWriteMode() {}

FILE* ovPosixReadMode::file_open(const ovPathName& path) const {
    FILE* f = std::fopen(utf8_path(path), "rb");
    if (!f)
        return nullptr;
    // glibc opens a directory for reading; Windows does not, and a directory has no
    // bytes to read.
    struct stat st;
    if (::fstat(::fileno(f), &st) == 0 && S_ISDIR(st.st_mode)) {
        std::fclose(f);
        errno = EISDIR;
        return nullptr;
    }
    return f;
}

FILE* ovPosixRWMode::file_open(const ovPathName& path) const {
    return std::fopen(utf8_path(path), "r+b");
}

FILE* ovPosixWriteMode::file_open(const ovPathName& path) const {
    return std::fopen(utf8_path(path), "wb");
}

ovPosixFileOperations::~ovPosixFileOperations() {}

ovPathType ovPosixFileOperations::type_of_path(const ovPathName& path) const {
    if (is_dot(path))
        return ovPATH_DIRECTORY;
    struct stat st;
    if (::stat(utf8_path(path), &st) != 0)
        return ovPATH_DOESNT_EXIST;
    return S_ISDIR(st.st_mode) ? ovPATH_DIRECTORY : ovPATH_FILE;
}

int ovPosixFileOperations::remove_file(const ovPathName& path) const {
    const char* p = utf8_path(path);
    allow_owner_write(p, false);
    // unlink, not remove: remove would also take an empty directory.
    return ::unlink(p) == 0 ? 1 : 0;
}

int ovPosixFileOperations::create_directory(const ovPathName& path) const {
    return ::mkdir(utf8_path(path), 0777) == 0 ? 1 : 0;
}

int ovPosixFileOperations::delete_directory(const ovPathName& path) const {
    if (type_of_path(path) != ovPATH_DIRECTORY)
        return 0;
    const char* p = utf8_path(path);
    allow_owner_write(p, true);
    return ::rmdir(p) == 0 ? 1 : 0;
}

ovIFileIteratorcoPrf ovPosixFileOperations::iterator(const ovPathName& path) const {
    return ovIFileIteratorcoPrf(new ovPosixFileIterator(ovPath(path, nullptr, nullptr)));
}

int ovPosixFileOperations::check_encoding(const ovPathName& path) const {
    return path.invalid() ? 0 : 1;
}

ovString ovPosixFileOperations::os_style_path(const ovPathName& path) const {
    return path.string();
}

int64_t ovPosixFileOperations::file_size(const ovPathName& path) const {
    // What cannot be opened for reading has size 0, as with the stream-based body.
    // For a regular file that is answered without making an open file: the owner's
    // read bit lets the owner in (no access list takes that away); every other case
    // asks the system with the effective identity, as open does (root may read what
    // its bits refuse).
    const char* p = utf8_path(path);
    struct stat st;
    if (::stat(p, &st) != 0 || S_ISDIR(st.st_mode))
        return 0;
    if (S_ISREG(st.st_mode)) {
        const bool readable = ((st.st_mode & S_IRUSR) && ::geteuid() == st.st_uid) ||
                              ::faccessat(AT_FDCWD, p, R_OK, AT_EACCESS) == 0;
        return readable ? static_cast<int64_t>(st.st_size) : 0;
    }
    // Devices and the like: opened for real, non-blocking so that a FIFO answers at once.
    const int fd = ::open(p, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return 0;
    const off_t end = ::lseek(fd, 0, SEEK_END);
    ::close(fd);
    return end > 0 ? static_cast<int64_t>(end) : 0;
}

ovPathName ovPosixFileOperations::full_path(const ovPathName& path) const {
    if (path.invalid())
        return ovPathName();
    std::string text = utf8_path(path);
    if (text.empty() || text[0] != '/') {
        const std::string cwd = current_directory();
        if (cwd.empty())
            return ovPathName();
        text = cwd + "/" + text;
    }
    return ovPathName(from_utf8(fold(text).c_str()));
}

ovStatus ovPosixFileOperations::rename(const ovPathName& from, const ovPathName& to) const {
    return ovStatus(std::rename(utf8_path(from), utf8_path(to)) == 0 ? 1 : 0);
}

ovPosixFileIterator::ovPosixFileIterator(const ovPath& path)
    : ovIFileIterator(path), m_invalid(1), m_dir(nullptr) {
    if (path.is_directory())
        m_invalid = 0;
}

ovPosixFileIterator::~ovPosixFileIterator() {
    if (m_dir)
        ::closedir(static_cast<DIR*>(m_dir));
}

int ovPosixFileIterator::get_next_file() {
    if (m_invalid)
        return 0;
    if (!m_dir) {
        m_dir = ::opendir(utf8_path(listed_path()));
        if (!m_dir)
            return 0;
    }
    errno = 0;
    const dirent* entry = ::readdir(static_cast<DIR*>(m_dir));
    if (!entry) {
        ::closedir(static_cast<DIR*>(m_dir));
        m_dir = nullptr;
        return 0;
    }
    set_current(ovFileName(from_utf8(entry->d_name)));
    return 1;
}
