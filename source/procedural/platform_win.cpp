#include "procedural/procedural_platform.h"

#include <ctime>
#include <sys/timeb.h>

int ovra_proc::windows_errno(int e) {
    return e;
}

// cmd.exe keeps &, |, <, >, ^ and blanks literal inside double quotes, but
// still expands %VAR% there, and a quote cannot be escaped: such paths are
// refused rather than run.
bool ovra_proc::shell_word(const std::string& path, std::string& word) {
    if (path.find_first_of("%\"") != std::string::npos)
        return false;
    word = "\"" + path + "\"";
    return true;
}

bool ovra_proc::to_tm(int64_t t, bool utc, std::tm& out) {
    const __time64_t tt = t;
    return (utc ? _gmtime64_s(&out, &tt) : _localtime64_s(&out, &tt)) == 0;
}

int64_t ovra_proc::now_seconds() {
    struct __timeb64 now;
    _ftime64(&now);
    return static_cast<int64_t>(now.time);
}

int64_t ovra_proc::from_local_tm(std::tm& fields) {
    return static_cast<int64_t>(_mktime64(&fields));
}
