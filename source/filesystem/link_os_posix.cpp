#include "filesystem/link_os.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

const char* utf8(const ovPathName& path) {
    const char* p = path.string().convert(ovSTRING_UTF8);
    return p ? p : "";
}

} // namespace

bool ovra_internal::is_link(const ovPathName& path) {
    struct stat st;
    return ::lstat(utf8(path), &st) == 0 && S_ISLNK(st.st_mode);
}

bool ovra_internal::remove_link(const ovPathName& path) {
    return ::unlink(utf8(path)) == 0;
}
