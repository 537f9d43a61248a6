#include "ovra/ovHostUser.h"
#include "ovra/ovNarrowHelpers.h"

#include "procedural/hostuser_platform.h"
#include "procedural/procedural_platform.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>
#include <type_traits>

namespace {

// The break count may be raised from a signal handler: sig_atomic_t is the one
// type such a handler may write, and it is the plain int of the interface.
static_assert(std::is_same<std::sig_atomic_t, int>::value, "break count must stay an int");
volatile std::sig_atomic_t the_break_count = 0;
volatile std::sig_atomic_t the_querying_break = 0;
ovBreakHandlerFunc the_break_handler = nullptr;
ovBreakCheckerFunc the_break_checker = nullptr;
void* the_break_checker_data = nullptr;

int the_argc = 0;
char** the_argv = nullptr;

std::atomic<char*> the_host_name{nullptr};

int clamped(int n) {
    return n < 0 ? 0 : n;
}

// Copies min(n, room) bytes of text into a blank-filled buffer; the number copied.
int blank_padded(char* buf, int buf_len, const char* text, int n) {
    buf_len = clamped(buf_len);
    if (!buf)
        return 0;
    std::memset(buf, ' ', static_cast<size_t>(buf_len));
    if (!text)
        return 0;
    const int copied = n < buf_len ? clamped(n) : buf_len;
    std::memcpy(buf, text, static_cast<size_t>(copied));
    return copied;
}

// The name into a buffer of buf_len, cut to buf_len - 1 so that a name that
// does not fit keeps one trailing blank.
void name_into(char* buf, int buf_len, const char* name) {
    if (!buf || buf_len <= 0)
        return;
    int n = name ? static_cast<int>(std::strlen(name)) : 0;
    if (n > buf_len)
        n = buf_len - 1;
    blank_padded(buf, buf_len, name, n);
}

// asctime's layout, written here because asctime's buffer is shared between threads.
bool asctime_text(char (&text)[26]) {
    static const char kDays[] = "SunMonTueWedThuFriSat";
    static const char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
    std::tm t{};
    if (!ovra_proc::to_tm(ovra_proc::now_seconds(), false, t) || t.tm_wday < 0 || t.tm_wday > 6 ||
        t.tm_mon < 0 || t.tm_mon > 11)
        return false;
    const int n = std::snprintf(text, sizeof text, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n",
                                kDays + 3 * t.tm_wday, kMonths + 3 * t.tm_mon, t.tm_mday, t.tm_hour,
                                t.tm_min, t.tm_sec, t.tm_year + 1900);
    return n == 25;
}

} // namespace

OV_API int ncha(const char* text, int text_len) {
    if (!text)
        return 0;
    int n = clamped(text_len);
    while (n > 0 && text[n - 1] == ' ')
        --n;
    return n;
}

OV_API void ccase(char* text, int text_len, const int* mode) {
    if (!text || !mode)
        return;
    const bool upper = *mode == 1;
    for (int i = 0; i < text_len; ++i) {
        const char c = text[i];
        if (upper && c >= 'a' && c <= 'z')
            text[i] = static_cast<char>(c - 'a' + 'A');
        else if (!upper && c >= 'A' && c <= 'Z')
            text[i] = static_cast<char>(c - 'A' + 'a');
    }
}

OV_API const char* ov_gethostname(void) {
    char* kept = the_host_name.load(std::memory_order_acquire);
    if (kept)
        return kept;
    std::string name;
    if (!ovra_proc::host_name(name))
        return nullptr;
    char* copy = ovconcat(1, name.c_str());
    if (!copy)
        return nullptr;
    // The first copy kept wins; a racing caller's copy goes.
    if (!the_host_name.compare_exchange_strong(kept, copy, std::memory_order_acq_rel)) {
        ::operator delete(copy);
        return kept;
    }
    return copy;
}

OV_API const char* ov_gethosttype(void) {
    return nullptr;
}

OV_API void ovghnm(char* buf, int buf_len, int* len) {
    const char* name = ov_gethostname();
    const int n = blank_padded(buf, buf_len, name, name ? static_cast<int>(std::strlen(name)) : 0);
    if (len)
        *len = n;
}

OV_API void ovghtp(char* buf, int buf_len, int* len) {
    const char* type = ov_gethosttype();
    const int n = blank_padded(buf, buf_len, type, type ? static_cast<int>(std::strlen(type)) : 0);
    if (len)
        *len = n;
}

OV_API void ovgetuid(char** uid) {
    if (!uid)
        return;
    std::string name;
    *uid = ovconcat(1, ovra_proc::login_name(name) ? name.c_str() : "USERERROR");
}

OV_API void ovgetuser(char** user, char** full) {
    std::string name;
    const bool have_login = ovra_proc::login_name(name);
    if (user)
        *user = ovconcat(1, have_login ? name.c_str() : "USERERROR");
    if (!full)
        return;
    char full_name[256] = {};
    unsigned size = sizeof full_name;
    if (ov_getusername_GetFullName(full_name, &size))
        *full = ovconcat(1, full_name);
    else
        *full = ovconcat(1, have_login ? name.c_str() : "NAMEERROR");
}

OV_API void ovgtun(char* user, int user_len, char* full, int full_len) {
    char* login = nullptr;
    char* name = nullptr;
    ovgetuser(&login, &name);
    name_into(user, user_len, login);
    name_into(full, full_len, name);
    ::operator delete(login);
    ::operator delete(name);
}

OV_API int ovIsLocalLogonNT(void) {
    try {
        const char* server = std::getenv("LOGONSERVER");
        const char* computer = std::getenv("COMPUTERNAME");
        if (!server || !computer)
            return 0;
        while (*server == '\\' || *server == '/')
            ++server;
        for (;; ++server, ++computer) {
            const char a = *server >= 'A' && *server <= 'Z' ? *server - 'A' + 'a' : *server;
            const char b = *computer >= 'A' && *computer <= 'Z' ? *computer - 'A' + 'a' : *computer;
            if (a != b)
                return 0;
            if (a == '\0')
                return 1;
        }
    } catch (...) {
        return 0;
    }
}

OV_API void argsgi(int argc, char** argv) {
    the_argc = argc;
    the_argv = argv;
}

OV_API char** argsge(int* argc) {
    if (argc)
        *argc = the_argc;
    return the_argv;
}

OV_API int get_argc(void) {
    return the_argc;
}

OV_API char** get_argv(void) {
    return the_argv;
}

OV_API void nargq(int* n) {
    if (n)
        *n = the_argc;
}

OV_API void argget(const int* index, char* buf, int buf_len, int* len) {
    buf_len = clamped(buf_len);
    const char* arg = nullptr;
    if (index && *index >= 0 && *index < the_argc && the_argv)
        arg = the_argv[*index];
    int n = 0;
    if (buf) {
        if (arg) {
            const size_t length = std::strlen(arg);
            n = length < static_cast<size_t>(buf_len) ? static_cast<int>(length) : buf_len;
            std::memcpy(buf, arg, static_cast<size_t>(n));
        }
        if (n < buf_len)
            buf[n] = '\0';
    }
    if (len)
        *len = n;
}

OV_API void timedp(double* t) {
    if (!t)
        return;
    using namespace std::chrono;
    const long long ms =
        duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    *t = static_cast<double>(ms) / 1000.0;
}

OV_API void ovdate(char* buf, int buf_len) {
    char text[26];
    if (!buf || !asctime_text(text))
        return;
    std::memcpy(buf, text, static_cast<size_t>(buf_len < 26 ? clamped(buf_len) : 26));
}

OV_API void ddate(char* buf, int buf_len) {
    char text[26];
    if (!buf || !asctime_text(text))
        return;
    // "Mon Nov 16 01:20:33 2026\n" gives "16 Nov 2026 01.20.33".
    char out[21];
    std::snprintf(out, sizeof out, "%.2s %.3s %.4s %.2s.%.2s.%.2s", text + 8, text + 4, text + 20,
                  text + 11, text + 14, text + 17);
    std::memcpy(buf, out, static_cast<size_t>(buf_len < 20 ? clamped(buf_len) : 20));
    const int upper = 1;
    ccase(buf, buf_len, &upper);
}

OV_API void ovwait(const int* ms) {
    if (ms && *ms > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(*ms));
}

OV_API int ovchdir(const char* dir) {
    if (!dir)
        dir = std::getenv("HOME");
    if (!dir)
        return -1;
    return ovra_proc::change_directory(dir);
}

OV_API void OvBreakHandler(ovBreakHandlerFunc handler) {
    the_break_handler = handler;
}

OV_API void OvBreakChecker(ovBreakCheckerFunc checker, void* data) {
    the_break_checker = checker;
    the_break_checker_data = data;
}

OV_API void ovbrks(const int* value) {
    if (!value)
        return;
    if (*value == -1)
        the_break_count = the_break_count + 1;
    else
        the_break_count = *value;
    const int count = the_break_count;
    const ovBreakHandlerFunc handler = the_break_handler;
    if (count > 0 && handler)
        handler(count);
}

OV_API void ovra_interrupt(int) {
    static const int kOneMore = -1;
    ovbrks(&kOneMore);
}

OV_API void ovbrkq(int* count) {
    if (the_break_checker)
        the_break_checker(the_break_checker_data);
    if (count)
        *count = the_break_count;
}

OV_API void ovbrkn(int* count) {
    if (count)
        *count = the_break_count;
}

OV_API void ovbrkc(void) {
    the_break_checker = nullptr;
}

OV_API int ov_break_query(void) {
    the_querying_break = 1;
    if (the_break_checker)
        the_break_checker(the_break_checker_data);
    the_querying_break = 0;
    return the_break_count;
}

OV_API int ov_querying_break(void) {
    return the_querying_break;
}

OV_API double ov_random(void) {
    return static_cast<double>(std::rand()) / static_cast<double>(RAND_MAX);
}

OV_API ovWinVersionVal ovWinVersion(void) {
    return ovWIN_VERSION_NT;
}

OV_API void ov_free_string(char* text) {
    ::operator delete(text);
}
