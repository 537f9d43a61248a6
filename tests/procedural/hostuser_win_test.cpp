// The account and network functions as Wine (or Windows) provides them.
#include "ovra/ovHostUser.h"

#include "procedural_test_support.h"

#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <lmaccess.h>
#include <lmapibuf.h>
#include <lmcons.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

std::string utf8(const wchar_t* wide) {
    char out[1024] = {};
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, out, sizeof out, nullptr, nullptr);
    return out;
}

// The process token's account domain, as the system gives it.
bool token_domain(std::string& domain) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token))
        return false;
    DWORD record[250] = {};
    DWORD length = 0;
    const BOOL read = GetTokenInformation(token, TokenUser, record, sizeof record, &length);
    CloseHandle(token);
    wchar_t name[200], dom[200];
    DWORD name_count = 200, dom_count = 200;
    SID_NAME_USE use;
    if (!read || !LookupAccountSidW(nullptr, reinterpret_cast<TOKEN_USER*>(record)->User.Sid, name,
                                    &name_count, dom, &dom_count, &use))
        return false;
    domain = utf8(dom);
    return true;
}

} // namespace

TEST(HostUserWin, LoginNameFromTheAccountFunctions) {
    wchar_t wide[UNLEN + 1] = {};
    DWORD count = UNLEN + 1;
    ASSERT_TRUE(GetUserNameW(wide, &count));
    char* uid = nullptr;
    ovgetuid(&uid);
    EXPECT_EQ(std::string(uid), utf8(wide));
    ov_free_string(uid);
}

TEST(HostUserWin, LocalLogonHasNoDomainOrFullName) {
    const char* computer = std::getenv("COMPUTERNAME");
    if (!computer || !*computer)
        GTEST_SKIP() << "COMPUTERNAME is not set in this environment";
    proc_test::ScopedEnv server("LOGONSERVER", (std::string("\\\\") + computer).c_str());
    ASSERT_EQ(ovIsLocalLogonNT(), 1);
    EXPECT_EQ(ovgetdomain(), nullptr);
    char out[256] = "untouched";
    unsigned size = sizeof out;
    EXPECT_EQ(ov_getusername_GetFullName(out, &size), 0);
    EXPECT_EQ(ov_getusername_NameFromDomain("user", "DOMAIN", out), 0);
    EXPECT_STREQ(out, "untouched");
}

TEST(HostUserWin, DomainFromTheProcessToken) {
    proc_test::ScopedEnv server("LOGONSERVER", "\\\\OVRA-NO-SUCH-SERVER");
    std::string expected;
    if (!token_domain(expected))
        GTEST_SKIP() << "this system gives no account for the process token";
    char* domain = ovgetdomain();
    if (expected.empty())
        EXPECT_EQ(domain, nullptr);
    else
        EXPECT_EQ(std::string(domain ? domain : "<null>"), expected);
    ov_free_string(domain);
}

// The controller's record: Windows in a domain gives the full name; a machine
// without a domain controller answers from its own account database.
TEST(HostUserWin, FullNameChainFallsBackToTheLoginName) {
    proc_test::ScopedEnv server("LOGONSERVER", "\\\\OVRA-NO-SUCH-SERVER");
    char out[256] = {};
    unsigned size = 0;
    EXPECT_EQ(ov_getusername_GetFullName(out, &size), 0) << "no room at all";
    EXPECT_EQ(ov_getusername_NameFromDomain(nullptr, "DOMAIN", out), 0);
    EXPECT_EQ(ov_getusername_NameFromDomain("ovra-no-such-user", "OVRA-NO-SUCH-DOMAIN", out), 0);

    char* user = nullptr;
    char* full = nullptr;
    ovgetuser(&user, &full);
    ASSERT_NE(full, nullptr);
    size = sizeof out;
    const int got = ov_getusername_GetFullName(out, &size);
    if (got) {
        EXPECT_STREQ(full, out);
        EXPECT_EQ(size, std::strlen(out));
        // A room one byte short of the name and its NUL refuses it.
        unsigned tight = size;
        char small[256] = {};
        EXPECT_EQ(ov_getusername_GetFullName(small, &tight), 0);
    } else {
        EXPECT_STREQ(full, user) << "the login name stands in for the full name";
    }
    ov_free_string(user);
    ov_free_string(full);

    // What the network functions give on this system decides what can be checked.
    if (!got) {
        HMODULE netapi = LoadLibraryW(L"NETAPI32.DLL");
        if (!netapi)
            GTEST_SKIP() << "NETAPI32.DLL is missing";
        typedef DWORD(WINAPI * UserInfoFn)(LPCWSTR, LPCWSTR, DWORD, LPBYTE*);
        typedef DWORD(WINAPI * FreeFn)(LPVOID);
        const auto user_info = reinterpret_cast<UserInfoFn>(
            reinterpret_cast<void*>(GetProcAddress(netapi, "NetUserGetInfo")));
        const auto buffer_free = reinterpret_cast<FreeFn>(
            reinterpret_cast<void*>(GetProcAddress(netapi, "NetApiBufferFree")));
        ASSERT_TRUE(user_info && buffer_free);
        wchar_t login[UNLEN + 1] = {};
        DWORD count = UNLEN + 1;
        ASSERT_TRUE(GetUserNameW(login, &count));
        LPBYTE record = nullptr;
        const DWORD status = user_info(nullptr, login, 2, &record);
        if (record)
            buffer_free(record);
        GTEST_SKIP() << "NetUserGetInfo gives no level-2 record with a full name here (status "
                     << status
                     << "; Wine does not implement level 2), so only the fallback "
                        "to the login name was checked";
    }
}
