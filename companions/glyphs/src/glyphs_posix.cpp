#include "ub/ubGlyphs.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <dirent.h>
#include <fnmatch.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>

// POSIX file names are bytes already, so UTF-8 passes straight through.

FILE* ub_fopen(const char* utf8_path, const char* mode) {
    if (!utf8_path || !mode) {
        errno = EINVAL;
        return nullptr;
    }
    return std::fopen(utf8_path, mode);
}

int ub_open(const char* utf8_path, int flags, ...) {
    int mode = 0;
    if (flags & O_CREAT) {
        va_list ap;
        va_start(ap, flags);
        mode = va_arg(ap, int);
        va_end(ap);
    }
    if (!utf8_path) {
        errno = EINVAL;
        return -1;
    }
    return ::open(utf8_path, flags, static_cast<mode_t>(mode));
}

int ub_stat(const char* utf8_path, struct stat* result) {
    if (!utf8_path || !result) {
        errno = EINVAL;
        return -1;
    }
    return ::stat(utf8_path, result);
}

int ub_stat64_func(const char* utf8_path, struct stat* result) {
    return ub_stat(utf8_path, result);
}

int ub_unlink(const char* utf8_path) {
    if (!utf8_path) {
        errno = EINVAL;
        return -1;
    }
    return ::unlink(utf8_path);
}

int ub_chmod(const char* utf8_path, int mode) {
    if (!utf8_path) {
        errno = EINVAL;
        return -1;
    }
    return ::chmod(utf8_path, static_cast<mode_t>(mode));
}

int ub_mkdir(const char* utf8_path) {
    if (!utf8_path) {
        errno = EINVAL;
        return -1;
    }
    return ::mkdir(utf8_path, 0777);
}

int ub_rmdir(const char* utf8_path) {
    if (!utf8_path) {
        errno = EINVAL;
        return -1;
    }
    return ::rmdir(utf8_path);
}

int ub_system(const char* utf8_command) { return std::system(utf8_command); }

namespace {

// One listing: the open directory and the wildcard its names must match.
struct FindState {
    DIR* dir;
    std::string directory;
    std::string wildcard;
};

// Fills `data` from the next entry that matches and fits; 0 at the end.
int next_entry(FindState* s, ubFindData* data) {
    for (;;) {
        errno = 0;
        const dirent* e = ::readdir(s->dir);
        if (!e)
            return 0;
        const size_t n = std::strlen(e->d_name);
        if (n >= sizeof data->cFileName)
            continue;
        if (::fnmatch(s->wildcard.c_str(), e->d_name, 0) != 0)
            continue;
        std::memset(data, 0, sizeof *data);
        std::memcpy(data->cFileName, e->d_name, n + 1);
        struct stat st;
        const std::string full = s->directory + "/" + e->d_name;
        const bool known = ::stat(full.c_str(), &st) == 0;
        const bool is_dir = known ? S_ISDIR(st.st_mode) : e->d_type == DT_DIR;
        data->dwFileAttributes = is_dir ? 0x10u : 0x80u;
        if (known && !is_dir) {
            const unsigned long long size = static_cast<unsigned long long>(st.st_size);
            data->nFileSizeHigh = static_cast<unsigned int>(size >> 32);
            data->nFileSizeLow = static_cast<unsigned int>(size);
        }
        return 1;
    }
}

} // namespace

void* FindFirstFileU(const char* utf8_pattern, ubFindData* data) {
    if (!utf8_pattern || !data) {
        errno = EINVAL;
        return UB_INVALID_HANDLE;
    }
    const std::string pattern(utf8_pattern);
    const size_t slash = pattern.find_last_of('/');
    std::string directory = slash == std::string::npos ? "." : pattern.substr(0, slash);
    if (slash == 0)
        directory = "/";
    std::unique_ptr<FindState> s(new (std::nothrow)
                                     FindState{nullptr, directory, pattern.substr(slash + 1)});
    if (!s) {
        errno = ENOMEM;
        return UB_INVALID_HANDLE;
    }
    s->dir = ::opendir(directory.c_str());
    if (!s->dir)
        return UB_INVALID_HANDLE;
    if (!next_entry(s.get(), data)) {
        ::closedir(s->dir);
        if (errno == 0)
            errno = ENOENT;
        return UB_INVALID_HANDLE;
    }
    return s.release();
}

int FindNextFileU(void* handle, ubFindData* data) {
    if (!handle || handle == UB_INVALID_HANDLE || !data) {
        errno = EINVAL;
        return 0;
    }
    return next_entry(static_cast<FindState*>(handle), data);
}

int FindCloseU(void* handle) {
    if (!handle || handle == UB_INVALID_HANDLE)
        return 0;
    FindState* s = static_cast<FindState*>(handle);
    ::closedir(s->dir);
    delete s;
    return 1;
}
