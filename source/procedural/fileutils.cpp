#include "ovra/ovFileUtils.h"
#include "ovra/ovIOWrap.h"

#include "procedural/procedural_platform.h"

#include "ub/ubGlyphs.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr int kMaxPath = 1024; // characters; buffers hold one more for the NUL

// Switch for environment references in paths; plain, as all set-up state is.
int the_allow_env_in_paths = 1;

// Characters of `in` that count: n, or fewer when a NUL comes first.
size_t used_length(const char* in, long n) {
    if (!in || n <= 0)
        return 0;
    const void* nul = std::memchr(in, '\0', static_cast<size_t>(n));
    return nul ? static_cast<size_t>(static_cast<const char*>(nul) - in) : static_cast<size_t>(n);
}

// Copies at most `max` characters of s (to its NUL) to out and terminates.
size_t put(char* out, const char* s, size_t max) {
    const size_t k = strnlen(s, max);
    std::memcpy(out, s, k);
    out[k] = '\0';
    return k;
}

// Appends at most `max` characters of s[0..len) after out[at].
size_t append(char* out, size_t at, const char* s, size_t len, size_t max) {
    const size_t k = len < max ? len : max;
    std::memcpy(out + at, s, k);
    out[at + k] = '\0';
    return at + k;
}

// A name given as plain text: followed through variables whose values name
// further variables.
void expand_logical_name(const char* in, size_t len, char* out) {
    const std::string name(in, len);
    const char* value = std::getenv(name.c_str());
    if (!value) {
        put(out, in, len < kMaxPath ? len : kMaxPath);
        return;
    }
    put(out, value, kMaxPath);
    for (int level = 0; level < 62; ++level) {
        value = std::getenv(out);
        // A one-character value ends the chain: drive letters and flags are
        // values, not names.
        if (!value || std::strlen(value) == 1)
            break;
        put(out, value, kMaxPath);
    }
}

// The prepared path of a Fortran name in a buffer of its own; rejects null
// counts by returning false.
bool prepare(const char* name, const int* n, char (&path)[kMaxPath + 1]) {
    if (!n)
        return false;
    fc_process_pathname(name, *n, path);
    return true;
}

void set(int* p, int v) {
    if (p)
        *p = v;
}

} // namespace

extern "C" {

OV_API int fc_allow_env_in_paths(int flag) {
    the_allow_env_in_paths = flag;
    return flag;
}

OV_API void fc_env_variable(const char* in, int n, char* out) {
    if (!out)
        return;
    out[0] = '\0';
    const size_t len = used_length(in, n);
    if (len == 0)
        return;
    if (in[0] != '$' && in[0] != '~') {
        expand_logical_name(in, len, out);
        return;
    }
    char name[kMaxPath + 1];
    size_t k = 0;
    if (in[0] == '~') {
        std::memcpy(name, "HOME", 4);
        k = 4;
    }
    size_t pos = 1;
    while (pos < len && in[pos] != '/' && k < kMaxPath)
        name[k++] = in[pos++];
    name[k] = '\0';
    const char* value = std::getenv(name);
    if (pos >= len || in[pos] != '/') {
        put(out, value ? value : "", kMaxPath);
        return;
    }
    const size_t vlen = value ? put(out, value, kMaxPath) : 0;
    append(out, vlen, in + pos, len - pos, kMaxPath - vlen);
}

OV_API void fc_process_pathname(const char* name, int n, char* out) {
    if (!out)
        return;
    if (the_allow_env_in_paths) {
        fc_env_variable(name, n, out);
    } else {
        // Counts beyond the buffer are clamped rather than written past it.
        const int count = n < 0 ? 0 : (n > kMaxPath ? kMaxPath : n);
        const size_t k = used_length(name, count);
        std::memcpy(out, name ? name : "", k);
        std::memset(out + k, 0, static_cast<size_t>(count) - k + 1);
    }
    const int length = static_cast<int>(std::strlen(out));
    iochsl(out, length, &length);
}

OV_API void fcuerr(const int* errno_value, int* cls, int* code) {
    struct Row {
        int windows_errno, cls, code;
    };
    // Keyed by the Windows runtime's numbers. EINTR counts as success and
    // ENOTDIR shares its pair with ENAMETOOLONG: both kept as callers know them.
    static const Row kTable[] = {
        {0, 0, 0},   {1, 7, 72},   {2, 1, 11},       {4, 0, 0},   {5, 3, 35},  {9, 1, 32},
        {11, 9, 91}, {13, 7, 71},  {16, 8, 84},      {17, 4, 41}, {19, 8, 85}, {20, 1, 13},
        {21, 1, 15}, {23, 9, 92},  {24, 3, 38},      {28, 8, 82}, {30, 7, 74}, {38, 1, 13},
        {41, 2, 23}, {140, 2, 21}, {-1000, 20, 140},
    };
    int c = 12, d = 120;
    if (errno_value) {
        const int e = ovra_proc::windows_errno(*errno_value);
        for (const Row& row : kTable) {
            if (row.windows_errno == e) {
                c = row.cls;
                d = row.code;
                break;
            }
        }
    }
    set(cls, c);
    set(code, d);
}

OV_API void fcmcer(const int* errno_value, int* cls) {
    int code = 0;
    fcuerr(errno_value, cls, &code);
}

OV_API void fcusta(const char* name, int /*name_len*/, const int* n, int* id, int* type,
                   int* ierr) {
    char path[kMaxPath + 1];
    if (!ierr)
        return;
    if (!prepare(name, n, path)) {
        *ierr = -1;
        return;
    }
    long long device = 0, inode = 0;
    unsigned mode = 0;
    struct stat st;
    if (ov_stat(path, &st) == 0) {
        device = st.st_dev;
        inode = static_cast<long long>(st.st_ino);
        mode = st.st_mode;
    } else {
        // Only the 32-bit record overflows; the 64-bit one describes any file.
        ovStat64 big;
        if (errno != EOVERFLOW || ub_stat64_func(path, &big) != 0) {
            *ierr = errno;
            return;
        }
        device = big.st_dev;
        inode = static_cast<long long>(big.st_ino);
        mode = big.st_mode;
    }
    *ierr = 0;
    if (id) {
        id[0] = static_cast<int>(device);
        id[1] = static_cast<int>(inode);
    }
    if (type) {
        const unsigned kind = (mode / 4096) % 16;
        *type = kind == 4 ? 0 : (kind == 8 || kind == 0 ? 1 : -1);
    }
}

OV_API void fcsize(const char* name, int name_len, const int* n, int* size, int* ierr) {
    if (!ierr)
        return;
    *ierr = 0;
    if (!n || !size || *n < 1 || *n > kMaxPath - 1 || *n > name_len) {
        *ierr = -1;
        return;
    }
    fcusiz(name, name_len, *n, *size, *ierr);
    if (*ierr != 0)
        fcmcer(ierr, ierr);
}

OV_API void fcumkd(const char* name, int /*name_len*/, const int* n, int* ierr) {
    char path[kMaxPath + 1];
    if (!ierr)
        return;
    if (!prepare(name, n, path)) {
        *ierr = -1;
        return;
    }
    *ierr = ub_mkdir(path) == 0 ? 0 : errno;
}

OV_API void fcudel(const char* name, int /*name_len*/, const int* n, const int* is_file,
                   int* ierr) {
    char path[kMaxPath + 1];
    if (!ierr)
        return;
    if (!is_file || !prepare(name, n, path)) {
        *ierr = -1;
        return;
    }
    const int result = *is_file ? ov_unlink(path) : ub_rmdir(path);
    *ierr = result == -1 ? errno : 0;
}

OV_API void fcuddl(const char* name, int /*name_len*/, const int* n, int* ierr) {
    char path[kMaxPath + 1];
    if (!ierr)
        return;
    if (!prepare(name, n, path)) {
        *ierr = -1;
        return;
    }
    try {
        std::string target(path);
        if (!target.empty() && target[0] == '-')
            target.insert(0, "./");
        std::string word;
        if (!ovra_proc::shell_word(target, word)) {
            *ierr = -1;
            return;
        }
        *ierr = g_system(("rm -r " + word + " > /dev/null").c_str());
    } catch (...) {
        *ierr = ENOMEM;
    }
}

OV_API void fcudat(const char* name, int /*name_len*/, const int* n, const int* which, int* date,
                   int* ierr) {
    char path[kMaxPath + 1];
    if (!ierr)
        return;
    if (!which || !prepare(name, n, path)) {
        *ierr = -1;
        return;
    }
    struct stat st;
    if (ov_stat(path, &st) != 0) {
        *ierr = errno;
        return;
    }
    *ierr = 0;
    std::tm local{};
    const int64_t when = *which == 2 ? st.st_mtime : st.st_ctime;
    if (!date)
        return;
    if (!ovra_proc::to_tm(when, false, local)) {
        for (int i = 0; i < 7; ++i)
            date[i] = -1;
        return;
    }
    date[0] = local.tm_year + 1900;
    date[1] = local.tm_mon + 1;
    date[2] = local.tm_mday;
    date[3] = local.tm_hour;
    date[4] = local.tm_min;
    date[5] = local.tm_sec;
    date[6] = 0;
}

OV_API void fcdate(const char* name, int name_len, const int* n, void* /*unused*/, const int* which,
                   int* date, int* ierr) {
    if (!ierr)
        return;
    if (!n || !which || *n < 1 || (*which != 1 && *which != 2)) {
        *ierr = -1;
        return;
    }
    fcudat(name, name_len, n, which, date, ierr);
    fcmcer(ierr, ierr);
}

} // extern "C"

OV_API void fcusiz(const char* name, int /*name_len*/, int n, int& size, int& ierr) {
    char path[kMaxPath + 1];
    size = 0;
    fc_process_pathname(name, n, path);
    struct stat st;
    if (ov_stat(path, &st) != 0) {
        ierr = errno;
        return;
    }
    // POSIX records hold 64-bit sizes; refuse what 32 bits cannot say, as the
    // Windows record's stat does.
    if (st.st_size > INT_MAX) {
        ierr = EOVERFLOW;
        return;
    }
    ierr = 0;
    size = static_cast<int>(st.st_size);
}
