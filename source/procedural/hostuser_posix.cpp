// POSIX: no account domains, so the full-name chain has nothing to ask.
#include "ovra/ovHostUser.h"

#include "procedural/hostuser_platform.h"

#include <climits>
#include <pwd.h>
#include <unistd.h>
#include <vector>

bool ovra_proc::host_name(std::string& name) {
    char buffer[256] = {};
    if (gethostname(buffer, sizeof buffer - 1) != 0 || buffer[0] == '\0')
        return false;
    name = buffer;
    return true;
}

// The password database of the real user id, not getlogin(): that needs a
// controlling terminal and fails under services, cron and test runners.
bool ovra_proc::login_name(std::string& name) {
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    if (size <= 0)
        size = 16384;
    std::vector<char> buffer(static_cast<size_t>(size));
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
        !found->pw_name || !found->pw_name[0])
        return false;
    name = found->pw_name;
    return true;
}

int ovra_proc::change_directory(const char* path) {
    return chdir(path) == 0 ? 0 : -1;
}

OV_API char* ovgetdomain(void) {
    return nullptr;
}

OV_API int ov_getusername_GetFullName(char*, unsigned*) {
    return 0;
}

OV_API int ov_getusername_NameFromDomain(const char*, const char*, char*) {
    return 0;
}

OV_API int ov_sse2_support(void) {
#if defined(__x86_64__) || defined(__i386__)
    return __builtin_cpu_supports("sse2") ? 1 : 0;
#else
    return 0;
#endif
}
