#include "ovio/io_os.h"

#include "ovra/ovString.h"

#include <cerrno>
#include <cstdlib>
#include <io.h>

const char* ovra_internal::null_device() {
    return "nul";
}

int ovra_internal::access_exists(const char* name) {
    int status = 0;
    const ovString text(ovSTRING_UTF8, name, status);
    const wchar_t* wide = text.convert(ovSTRING_WCS);
    if (!wide || status) {
        errno = ENOENT;
        return -1;
    }
    return _waccess(wide, 0);
}

void ovra_internal::bounds_failure() {
    std::abort();
}
