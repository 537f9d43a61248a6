#include "ub/ubGlyphs.h"

#include <cerrno>

// POSIX file names are bytes already, so UTF-8 passes straight through.
FILE* ub_fopen(const char* utf8_path, const char* mode) {
    if (!utf8_path || !mode) {
        errno = EINVAL;
        return nullptr;
    }
    return std::fopen(utf8_path, mode);
}
