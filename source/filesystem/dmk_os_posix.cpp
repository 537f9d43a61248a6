#include "filesystem/dmk_os.h"

#include <sys/types.h>
#include <unistd.h>

int ovra_internal::seek64(FILE* f, long long offset, int origin) {
    return ::fseeko(f, static_cast<off_t>(offset), origin);
}

long long ovra_internal::tell64(FILE* f) {
    return static_cast<long long>(::ftello(f));
}

int ovra_internal::access_utf8(const char* path, int what) {
    const int mode = what == 4 ? R_OK : (what == 2 ? W_OK : F_OK);
    return ::access(path, mode) == 0 ? 0 : -1;
}
