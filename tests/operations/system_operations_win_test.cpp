// Windows: the current directory beyond 259 characters, the computer name.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include "../../source/common/win32.h"

#include <gtest/gtest.h>

#include <string>

TEST(ProcessEnvironmentWin, CurrentDirectoryLongerThanMaxPath) {
    wchar_t start[MAX_PATH];
    ASSERT_GT(GetCurrentDirectoryW(MAX_PATH, start), 0u);
    wchar_t temp[MAX_PATH];
    ASSERT_GT(GetTempPathW(MAX_PATH, temp), 0u);
    const std::wstring base =
        std::wstring(temp) + L"ovra_cwd_" + std::to_wstring(GetCurrentProcessId());
    const std::wstring part(100, L'd');
    std::wstring dir = base;
    CreateDirectoryW(base.c_str(), nullptr);
    for (int i = 0; i < 3; ++i) {
        dir += L"\\" + part;
        CreateDirectoryW((L"\\\\?\\" + dir).c_str(), nullptr);
    }
    const bool entered = SetCurrentDirectoryW(dir.c_str()) != 0;
    ovPathName cwd;
    if (entered) {
        cwd = ovFrustrumChooser(nullptr).process_environment_operations()->current_directory();
        SetCurrentDirectoryW(start);
    }
    for (int i = 0; i < 3; ++i) {
        RemoveDirectoryW((L"\\\\?\\" + dir).c_str());
        dir.resize(dir.size() - part.size() - 1);
    }
    RemoveDirectoryW(base.c_str());
    if (!entered)
        GTEST_SKIP() << "SetCurrentDirectoryW refuses paths beyond MAX_PATH here";
    int status = 0;
    std::wstring expected = base + L"\\" + part + L"\\" + part + L"\\" + part;
    const ovPathName want(ovString(ovSTRING_WCS, expected.c_str(), status));
    EXPECT_GT(expected.size(), static_cast<size_t>(MAX_PATH));
    EXPECT_EQ(cwd.string(), want.string());
}

TEST(SysInfoWin, ComputerNameIsTheSystemName) {
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD n = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(name, &n));
    int status = 0;
    EXPECT_EQ(ovFrustrumChooser(nullptr).system_info_operations()->computer_name(),
              ovString(ovSTRING_WCS, name, status));
}
