#include "procedural/procedural_platform.h"

#include <cerrno>
#include <ctime>

namespace {

// POSIX errno names and the Windows runtime's numbers for the same failure.
struct ErrnoPair {
    int posix;
    int windows;
};
const ErrnoPair kErrnoPairs[] = {
    {EPERM, 1},      {ENOENT, 2},  {ESRCH, 3},       {EINTR, 4},         {EIO, 5},     {ENXIO, 6},
    {E2BIG, 7},      {ENOEXEC, 8}, {EBADF, 9},       {ECHILD, 10},       {EAGAIN, 11}, {ENOMEM, 12},
    {EACCES, 13},    {EFAULT, 14}, {EBUSY, 16},      {EEXIST, 17},       {EXDEV, 18},  {ENODEV, 19},
    {ENOTDIR, 20},   {EISDIR, 21}, {EINVAL, 22},     {ENFILE, 23},       {EMFILE, 24}, {ENOTTY, 25},
    {EFBIG, 27},     {ENOSPC, 28}, {ESPIPE, 29},     {EROFS, 30},        {EMLINK, 31}, {EPIPE, 32},
    {EDOM, 33},      {ERANGE, 34}, {EDEADLK, 36},    {ENAMETOOLONG, 38}, {ENOLCK, 39}, {ENOSYS, 40},
    {ENOTEMPTY, 41}, {EILSEQ, 42}, {EOVERFLOW, 132},
};

} // namespace

int ovra_proc::windows_errno(int e) {
    if (e <= 0)
        return e;
    for (const ErrnoPair& p : kErrnoPairs) {
        if (p.posix == e)
            return p.windows;
    }
    return kNoWindowsErrno;
}

// Single quotes keep every character literal for sh; a quote itself closes
// the quoting, is given escaped, and reopens it.
bool ovra_proc::shell_word(const std::string& path, std::string& word) {
    word = "'";
    for (char c : path) {
        if (c == '\'')
            word += "'\\''";
        else
            word += c;
    }
    word += '\'';
    return true;
}

bool ovra_proc::to_tm(int64_t t, bool utc, std::tm& out) {
    const time_t tt = static_cast<time_t>(t);
    return (utc ? gmtime_r(&tt, &out) : localtime_r(&tt, &out)) != nullptr;
}

int64_t ovra_proc::now_seconds() {
    return static_cast<int64_t>(std::time(nullptr));
}

int64_t ovra_proc::from_local_tm(std::tm& fields) {
    return static_cast<int64_t>(std::mktime(&fields));
}
