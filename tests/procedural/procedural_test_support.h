// Shared by the procedural tests: a scratch folder, environment changes that
// undo themselves, and a guard that puts the I/O table back.
#pragma once

#include "ovra/ovIOWrap.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>

namespace proc_test {

inline void set_env(const char* name, const char* value) {
#if defined(_WIN32)
    _putenv_s(name, value ? value : ""); // "" removes it
#else
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
#endif
}

// Sets (or, with null, removes) a variable for one scope.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : m_name(name) {
        const char* old = std::getenv(name);
        m_had = old != nullptr;
        if (old)
            m_old = old;
        set_env(name, value);
    }
    ~ScopedEnv() { set_env(m_name.c_str(), m_had ? m_old.c_str() : nullptr); }

private:
    std::string m_name, m_old;
    bool m_had = false;
};

// A fresh folder, removed with its contents at the end of the scope.
class ScratchDir {
public:
    ScratchDir() {
        static int counter = 0;
        std::ostringstream name;
        name << "ovra_proc_" << std::rand() << "_" << ++counter;
        m_path = std::filesystem::temp_directory_path() / name.str();
        std::filesystem::create_directories(m_path);
    }
    ~ScratchDir() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    // The path of `leaf` inside, with slashes.
    std::string at(const std::string& leaf = "") const {
        return leaf.empty() ? m_path.generic_string() : (m_path / leaf).generic_string();
    }
    std::string write(const std::string& leaf, const std::string& content) const {
        std::ofstream(m_path / leaf, std::ios::binary) << content;
        return at(leaf);
    }

private:
    std::filesystem::path m_path;
};

inline std::string read_all(const std::string& path) {
    std::ifstream in(std::filesystem::u8path(path), std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

inline auto io_table() {
    return std::tie(ov_the_open_func, ov_the_read_func, ov_the_write_func, ov_the_stat_func,
                    ov_the_close_func, ov_the_tell_func, ov_the_lseek_func, ov_the_truncate_func,
                    ov_the_commit_func, ov_the_unlink_func, ov_the_chmod_func, ov_the_isatty_func,
                    ov_the_alt_handles, ov_the_stati64_func);
}

template <class... T> std::tuple<T...> copy_of(const std::tuple<T&...>& refs) {
    return refs;
}

// Puts every table entry back as it was.
class TableGuard {
public:
    ~TableGuard() { io_table() = m_saved; }

private:
    decltype(copy_of(io_table())) m_saved = io_table();
};

} // namespace proc_test
