// Windows: every DLL carries a version resource that matches the headers.
#include "ovra/ovVersion.h"

#include "common/win32.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// The fixed file version of a loaded module: major.minor in the high word,
// patch.build in the low one; false when it has no version resource.
bool file_version(const wchar_t* module_name, DWORD& ms, DWORD& ls) {
    // Loads it if nothing has yet; it sits beside the test program.
    const HMODULE module = LoadLibraryW(module_name);
    if (!module)
        return false;
    wchar_t path[MAX_PATH];
    if (GetModuleFileNameW(module, path, MAX_PATH) == 0)
        return false;
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path, &ignored);
    if (size == 0)
        return false;
    std::vector<unsigned char> data(size);
    if (!GetFileVersionInfoW(path, 0, size, data.data()))
        return false;
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length) || !info)
        return false;
    ms = info->dwFileVersionMS;
    ls = info->dwFileVersionLS;
    return true;
}

} // namespace

TEST(LibraryVersion, DllsCarryTheHeadersVersion) {
    const struct {
        const wchar_t* wide;
        const char* name;
    } dlls[] = {{L"libovra.dll", "libovra.dll"},
                {L"libbasics.dll", "libbasics.dll"},
                {L"libshelves.dll", "libshelves.dll"},
                {L"libglyphs.dll", "libglyphs.dll"}};
    for (const auto& dll : dlls) {
        SCOPED_TRACE(dll.name);
        DWORD ms = 0;
        DWORD ls = 0;
        ASSERT_TRUE(file_version(dll.wide, ms, ls));
        EXPECT_EQ(HIWORD(ms), OVRA_VERSION_MAJOR);
        EXPECT_EQ(LOWORD(ms), OVRA_VERSION_MINOR);
        EXPECT_EQ(HIWORD(ls), OVRA_VERSION_PATCH);
    }
}
