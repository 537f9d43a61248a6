#include "../dir_link.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#ifndef SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE
#define SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE 0x2
#endif

bool ovtest::make_dir_link(const std::filesystem::path& target, const std::filesystem::path& link,
                           std::string& why) {
    const DWORD flags = SYMBOLIC_LINK_FLAG_DIRECTORY | SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE;
    if (CreateSymbolicLinkW(link.c_str(), target.c_str(), flags))
        return true;
    why = "this system cannot make a directory symbolic link (CreateSymbolicLinkW error " +
          std::to_string(GetLastError()) + ")";
    return false;
}
