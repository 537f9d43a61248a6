// Makes a link to a directory the way the platform does: a symbolic link on POSIX, a
// directory symbolic link on Windows. False, with the reason, when the system cannot.
#pragma once

#include <filesystem>
#include <string>

namespace ovtest {

bool make_dir_link(const std::filesystem::path& target, const std::filesystem::path& link,
                   std::string& why);

} // namespace ovtest
