#include "../dir_link.h"

#include <system_error>

bool ovtest::make_dir_link(const std::filesystem::path& target, const std::filesystem::path& link,
                           std::string& why) {
    std::error_code ec;
    std::filesystem::create_directory_symlink(target, link, ec);
    if (ec)
        why = "this system cannot make a directory symbolic link: " + ec.message();
    return !ec;
}
