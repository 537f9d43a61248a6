// A fresh directory for one test, removed with everything in it afterwards. Made and
// removed with std::filesystem, so that what the library does is checked against a
// second, independent view of the disk.
#pragma once

#include "ovra/ovPathName.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>

namespace ovtest {

inline ovString utf8_text(const std::string& s) {
    int status = 0;
    return ovString(ovSTRING_UTF8, s.c_str(), status);
}

inline std::string utf8_of(const ovString& s) {
    const char* p = s.convert(ovSTRING_UTF8);
    return p ? p : "<null>";
}

class ScratchDir {
public:
    ScratchDir() {
        static std::atomic<unsigned> serial{0};
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        m_dir = std::filesystem::temp_directory_path() /
                ("ovra_test_" + std::to_string(now) + "_" + std::to_string(++serial));
        std::filesystem::create_directories(m_dir);
    }
    ~ScratchDir() {
        std::error_code ec;
        // Give back any permission a test took away, so that everything can go.
        for (auto it = std::filesystem::recursive_directory_iterator(
                 m_dir, std::filesystem::directory_options::skip_permission_denied, ec);
             !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec))
            std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::add, ec);
        std::filesystem::remove_all(m_dir, ec);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;

    const std::filesystem::path& native() const { return m_dir; }
    std::filesystem::path native(const std::string& name) const { return m_dir / name; }
    // The directory, or a name inside it, as the library spells paths.
    ovPathName path() const { return ovPathName(utf8_text(m_dir.generic_u8string())); }
    ovPathName path(const std::string& name) const {
        return ovPathName(utf8_text((m_dir / name).generic_u8string()));
    }

private:
    std::filesystem::path m_dir;
};

} // namespace ovtest
