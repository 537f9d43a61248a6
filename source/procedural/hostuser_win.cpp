// Windows: the sockets layer for the host name, the account functions for the
// login name, and the process token and the domain controller for the domain
// and the full name.
#include "ovra/ovHostUser.h"
#include "ovra/ovNarrowHelpers.h"

#include "procedural/hostuser_platform.h"

// Lean <windows.h> first, so that the sockets header below is the only one.
#include "common/win32.h"

#include "ub/ubGlyphs.h"
#include "ub/ubWindows.h"

#include <direct.h>
#include <lmaccess.h>
#include <lmcons.h>
#include <winsock2.h>

#include <cstring>
#include <string>

namespace {

typedef DWORD(WINAPI* NetGetDCNameFn)(LPCWSTR, LPCWSTR, LPBYTE*);
typedef DWORD(WINAPI* NetUserGetInfoFn)(LPCWSTR, LPCWSTR, DWORD, LPBYTE*);
typedef DWORD(WINAPI* NetApiBufferFreeFn)(LPVOID);

template <class Fn> Fn lookup(HMODULE module, const char* name) {
    return reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The text in code page `page` as wide text of at most 512 characters.
bool widened(UINT page, const char* text, std::wstring& out) {
    if (!text)
        return false;
    wchar_t buffer[513] = {};
    const int n = MultiByteToWideChar(page, 0, text, -1, buffer, 513);
    if (n <= 0)
        return false;
    out = buffer;
    return true;
}

// The full name of a domain user from the domain's controller, in the ANSI code
// page into out (256 bytes): the bytes written with the NUL, or 0.
int full_name_from_controller(const std::wstring& user, const std::wstring& domain, char* out) {
    // Loaded once and kept: the functions stay in use for the life of the process.
    static HMODULE netapi = LoadLibraryU("NETAPI32.DLL");
    if (!netapi)
        return 0;
    const auto get_dc_name = lookup<NetGetDCNameFn>(netapi, "NetGetDCName");
    const auto get_user_info = lookup<NetUserGetInfoFn>(netapi, "NetUserGetInfo");
    const auto buffer_free = lookup<NetApiBufferFreeFn>(netapi, "NetApiBufferFree");
    if (!get_dc_name || !get_user_info || !buffer_free)
        return 0;
    // Without a controller the user is asked of the local machine.
    LPBYTE controller = nullptr;
    if (get_dc_name(nullptr, domain.c_str(), &controller) != 0)
        controller = nullptr;
    LPBYTE record = nullptr;
    const DWORD status =
        get_user_info(reinterpret_cast<LPCWSTR>(controller), user.c_str(), 2, &record);
    int written = 0;
    if (status == 0 && record) {
        const USER_INFO_2* info = reinterpret_cast<const USER_INFO_2*>(record);
        if (info->usri2_full_name)
            written = WideCharToMultiByte(CP_ACP, 0, info->usri2_full_name, -1, out, 256, nullptr,
                                          nullptr);
        buffer_free(record);
    }
    if (controller)
        buffer_free(controller);
    return written > 0 ? written : 0;
}

// Account and domain name of the process token's user, as UTF-8.
bool token_account(std::string& name, std::string& domain) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token))
        return false;
    // DWORD-aligned room for the TOKEN_USER record and its SID.
    DWORD record[250] = {};
    DWORD length = 0;
    const BOOL read = GetTokenInformation(token, TokenUser, record, sizeof record, &length);
    CloseHandle(token);
    if (!read)
        return false;
    char account[200] = {};
    char domain_name[200] = {};
    unsigned long account_size = sizeof account, domain_size = sizeof domain_name;
    if (!LookupAccountSidU(nullptr, reinterpret_cast<TOKEN_USER*>(record)->User.Sid, account,
                           &account_size, domain_name, &domain_size, nullptr))
        return false;
    name = account;
    domain = domain_name;
    return true;
}

} // namespace

// Version 1.0 of the sockets layer is enough for gethostname; it is started and
// cleaned up around each attempt, so nothing stays initialised.
bool ovra_proc::host_name(std::string& name) {
    WSADATA data;
    const bool started = WSAStartup(MAKEWORD(1, 0), &data) == 0;
    char buffer[256] = {};
    const bool got = started && gethostname(buffer, sizeof buffer - 1) == 0 && buffer[0] != '\0';
    WSACleanup();
    if (got)
        name = buffer;
    return got;
}

bool ovra_proc::login_name(std::string& name) {
    char buffer[256] = {};
    unsigned long size = sizeof buffer;
    if (!GetUserNameU(buffer, &size) || buffer[0] == '\0')
        return false;
    name = buffer;
    return true;
}

int ovra_proc::change_directory(const char* path) {
    std::wstring wide;
    if (!widened(CP_UTF8, path, wide))
        return -1;
    return _wchdir(wide.c_str()) == 0 ? 0 : -1;
}

OV_API char* ovgetdomain(void) {
    if (ovIsLocalLogonNT() == 1)
        return nullptr;
    std::string name, domain;
    if (!token_account(name, domain) || domain.empty())
        return nullptr;
    return ovconcat(1, domain.c_str());
}

OV_API int ov_getusername_GetFullName(char* out, unsigned* size) {
    if (!out || !size || *size == 0 || ovIsLocalLogonNT() == 1)
        return 0;
    std::string name, domain;
    std::wstring wide_name, wide_domain;
    if (!token_account(name, domain) || !widened(CP_UTF8, name.c_str(), wide_name) ||
        !widened(CP_UTF8, domain.c_str(), wide_domain))
        return 0;
    char full[256] = {};
    if (full_name_from_controller(wide_name, wide_domain, full) == 0)
        return 0;
    const size_t length = std::strlen(full);
    if (length + 1 > *size)
        return 0;
    std::memcpy(out, full, length + 1);
    *size = static_cast<unsigned>(length);
    return 1;
}

OV_API int ov_getusername_NameFromDomain(const char* user, const char* domain, char* out) {
    if (!out || ovIsLocalLogonNT() == 1)
        return 0;
    std::wstring wide_user, wide_domain;
    if (!widened(CP_ACP, user, wide_user) || !widened(CP_ACP, domain, wide_domain))
        return 0;
    return full_name_from_controller(wide_user, wide_domain, out);
}

OV_API int ov_sse2_support(void) {
    return IsProcessorFeaturePresent(PF_XMMI64_INSTRUCTIONS_AVAILABLE) ? 1 : 0;
}
