#include "ovio/io_os.h"

#include <cstdlib>
#include <unistd.h>

const char* ovra_internal::null_device() {
    return "/dev/null";
}

int ovra_internal::access_exists(const char* name) {
    return access(name, F_OK);
}

void ovra_internal::bounds_failure() {
    std::abort();
}
