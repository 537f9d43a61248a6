#include "ub/ubWindows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// A scratch key of the test prefix's registry, removed afterwards.
class RegU : public testing::Test {
protected:
    void SetUp() override {
        path_ = "Software\\ubGlyphsTest-" + std::to_string(GetCurrentProcessId());
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyU(HKEY_CURRENT_USER, path_.c_str(), &key_));
    }
    void TearDown() override {
        if (key_)
            RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, std::wstring(path_.begin(), path_.end()).c_str());
    }
    std::string path_;
    HKEY key_ = nullptr;
};

const char kName[] = "n\xC3\xA4me";    // "näme"
const char kText[] = "\xE2\x82\xAC 5"; // "€ 5"

TEST_F(RegU, TextGoesInAsUtf16AndComesBackAsUtf8) {
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExU(key_, kName, 0, REG_SZ,
                                            reinterpret_cast<const BYTE*>(kText), sizeof kText));
    // The registry holds UTF-16: the W call sees the euro sign as one unit.
    wchar_t wide[16] = {};
    DWORD wsize = sizeof wide;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_, L"n\u00e4me", nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(wide), &wsize));
    EXPECT_EQ(std::wstring(L"\u20ac 5"), wide);

    char data[16] = {};
    DWORD size = sizeof data;
    DWORD type = 0;
    ASSERT_EQ(ERROR_SUCCESS,
              RegQueryValueExU(key_, kName, nullptr, &type, reinterpret_cast<BYTE*>(data), &size));
    EXPECT_EQ(DWORD{REG_SZ}, type);
    EXPECT_STREQ(kText, data);
    EXPECT_EQ(sizeof kText, size); // UTF-8 bytes with the terminator

    // Too small: the size needed, nothing written.
    char small[4] = {'x', 'x', 'x', 'x'};
    size = sizeof small;
    EXPECT_EQ(ERROR_MORE_DATA, RegQueryValueExU(key_, kName, nullptr, nullptr,
                                                reinterpret_cast<BYTE*>(small), &size));
    EXPECT_EQ(sizeof kText, size);
    EXPECT_EQ('x', small[0]);

    // Size only.
    size = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExU(key_, kName, nullptr, nullptr, nullptr, &size));
    EXPECT_EQ(sizeof kText, size);
}

TEST_F(RegU, NumbersPassAsBytes) {
    const DWORD number = 0x01020304;
    ASSERT_EQ(ERROR_SUCCESS,
              RegSetValueExU(key_, "n", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), 4));
    DWORD back = 0, size = 4, type = 0;
    ASSERT_EQ(ERROR_SUCCESS,
              RegQueryValueExU(key_, "n", nullptr, &type, reinterpret_cast<BYTE*>(&back), &size));
    EXPECT_EQ(number, back);
    EXPECT_EQ(DWORD{REG_DWORD}, type);
}

TEST_F(RegU, MalformedUtf8ChangesNothing) {
    const char* const bad[] = {"\xC3", "a\xFF", "\xED\xA0\x80"};
    for (const char* text : bad) {
        SCOPED_TRACE(testing::PrintToString(text));
        HKEY sub = nullptr;
        EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, RegCreateKeyU(key_, text, &sub));
        EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION,
                  RegSetValueExU(key_, text, 0, REG_SZ, reinterpret_cast<const BYTE*>("x"), 2));
        EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION,
                  RegSetValueExU(key_, "v", 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                                 static_cast<DWORD>(strlen(text) + 1)));
        EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, RegOpenKeyExU(key_, text, 0, KEY_READ, &sub));
        EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, RegDeleteValueU(key_, text));
    }
    DWORD values = 1, keys = 1;
    ASSERT_EQ(ERROR_SUCCESS,
              RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                               nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0u, keys);
    EXPECT_EQ(0u, values);
}

TEST_F(RegU, EnumerationCutsLongNamesAtACharacterBoundary) {
    HKEY sub = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyU(key_, kName, &sub));
    RegCloseKey(sub);
    char name[64];
    ASSERT_EQ(ERROR_SUCCESS, RegEnumKeyU(key_, 0, name, sizeof name));
    EXPECT_STREQ(kName, name);
    // "näme" is 5 bytes; 3 of room would split the 2-byte letter: only "n" fits.
    EXPECT_EQ(ERROR_MORE_DATA, RegEnumKeyU(key_, 0, name, 3));
    EXPECT_STREQ("n", name);
    EXPECT_EQ(ERROR_NO_MORE_ITEMS, RegEnumKeyU(key_, 1, name, sizeof name));

    const std::string long_name(2000, 'v');
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExU(key_, long_name.c_str(), 0, REG_SZ,
                                            reinterpret_cast<const BYTE*>(kText), sizeof kText));
    char value_name[1024];
    DWORD size = sizeof value_name;
    DWORD type = 0;
    char data[16];
    DWORD data_size = sizeof data;
    EXPECT_EQ(ERROR_MORE_DATA, RegEnumValueU(key_, 0, value_name, &size, nullptr, &type,
                                             reinterpret_cast<BYTE*>(data), &data_size));
    EXPECT_EQ(1023u, size);
    EXPECT_EQ(std::string(1023, 'v'), value_name);
    EXPECT_EQ(DWORD{REG_SZ}, type);
    EXPECT_STREQ(kText, data);
}

TEST(ModulesU, PathsAndLibrariesInUtf8) {
    const HMODULE self = GetModuleHandleU(nullptr);
    ASSERT_NE(nullptr, self);
    char path[MAX_PATH * 3];
    const DWORD n = GetModuleFileNameU(self, path, sizeof path);
    ASSERT_GT(n, 0u);
    EXPECT_EQ(strlen(path), n);
    EXPECT_NE(nullptr, strstr(path, "glyphs_tests"));
    char tiny[4];
    EXPECT_EQ(4u, GetModuleFileNameU(self, tiny, sizeof tiny));
    EXPECT_EQ(DWORD{ERROR_INSUFFICIENT_BUFFER}, GetLastError());
    EXPECT_EQ(3u, strlen(tiny));

    const HMODULE advapi = LoadLibraryU("AdvAPI32.dll");
    ASSERT_NE(nullptr, advapi);
    EXPECT_NE(nullptr, GetProcAddress(advapi, "RegDeleteKeyExW"));
    FreeLibrary(advapi);
    EXPECT_EQ(nullptr, LoadLibraryU("a\xFF.dll"));
    EXPECT_EQ(DWORD{ERROR_NO_UNICODE_TRANSLATION}, GetLastError());
}

TEST(CreateActCtxU, RefusesBadDescriptions) {
    EXPECT_EQ(INVALID_HANDLE_VALUE, CreateActCtxU(nullptr));
    ACTCTXA small = {};
    small.cbSize = 8;
    EXPECT_EQ(INVALID_HANDLE_VALUE, CreateActCtxU(&small));
    ACTCTXA bad = {};
    bad.cbSize = sizeof bad;
    bad.lpSource = "a\xFF.manifest";
    EXPECT_EQ(INVALID_HANDLE_VALUE, CreateActCtxU(&bad));
    EXPECT_EQ(DWORD{ERROR_NO_UNICODE_TRANSLATION}, GetLastError());
    ACTCTXA missing = {};
    missing.cbSize = sizeof missing;
    missing.lpSource = "C:\\no\\such\\file.manifest";
    EXPECT_EQ(INVALID_HANDLE_VALUE, CreateActCtxU(&missing));
}

} // namespace
