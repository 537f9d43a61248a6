#include "ub/ubGlyphs.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

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
