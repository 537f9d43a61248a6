// WMI, Wow64, process facts and activation contexts against the real system services.
#include "ovra/ovWindowsServices.h"

#include "common/win32.h"

#include <objbase.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

namespace {

class WmiTest : public testing::Test {
protected:
    void SetUp() override {
        const HRESULT hr = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        ASSERT_TRUE(SUCCEEDED(hr)) << std::hex << hr;
    }
    void TearDown() override { CoUninitialize(); }
};

TEST_F(WmiTest, ReadsTextAndNumbers) {
    utString error("untouched");
    const utString caption = ovWMI::value("Win32_OperatingSystem", "Caption", error);
    EXPECT_NE(nullptr, std::strstr(caption.c_str(), "Windows")) << caption.c_str();
    EXPECT_EQ("untouched", error);
    // Numbers come back as their decimal text.
    const utString type = ovWMI::value("Win32_OperatingSystem", "OSType", error);
    ASSERT_FALSE(type.empty()) << error.c_str();
    EXPECT_EQ(std::strspn(type.c_str(), "0123456789"), type.length()) << type.c_str();
}

TEST_F(WmiTest, EachFailingStepHasItsMessage) {
    const struct {
        const char* class_name;
        const char* property;
        const char* error;
    } cases[] = {
        {"Win32_OperatingSystem WHERE", "Caption", "Query failed"},
        {"Win32_OperatingSystem WHERE Caption = 'no such system'", "Caption", "Enumeration empty"},
        {"Win32_OperatingSystem", "NoSuchProperty", "IWbemClassObject::Get failed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.class_name + std::string(" / ") + c.property);
        utString error;
        EXPECT_EQ("", ovWMI::value(c.class_name, c.property, error));
        EXPECT_STREQ(c.error, error.c_str());
    }
}

// A property that exists but holds nothing is a failure, not an empty text.
TEST_F(WmiTest, ANullPropertyFails) {
    utString error;
    const utString code = ovWMI::value("Win32_BIOS", "IdentificationCode", error);
    if (!code.empty())
        GTEST_SKIP() << "this system's BIOS has an identification code: no null property known";
    EXPECT_STREQ("IWbemClassObject::Get failed", error.c_str());
}

TEST_F(WmiTest, AnUnknownClassFailsTheQuery) {
    utString error;
    EXPECT_EQ("", ovWMI::value("Win32_NoSuchClass", "Caption", error));
    ASSERT_FALSE(error.empty());
    if (error == "Enumeration empty")
        GTEST_SKIP() << "Wine's WMI runs queries of unknown classes and finds no instance "
                        "instead of refusing them";
    EXPECT_STREQ("Query failed", error.c_str());
}

// The caller owns COM: on a thread that never initialised it the locator cannot be made.
TEST(ovWMI, NeedsTheCallersCom) {
    utString result("x"), error;
    std::thread([&] { result = ovWMI::value("Win32_OperatingSystem", "Caption", error); }).join();
    EXPECT_EQ("", result);
    EXPECT_EQ("Instantiation of IWbemLocator failed", error);
}

TEST(ovProcessControlWin, IdAndPathAreTheSystems) {
    ovProcessControl control;
    EXPECT_EQ(static_cast<int>(GetCurrentProcessId()), control.getpid());
    wchar_t path[MAX_PATH] = {};
    ASSERT_GT(GetModuleFileNameW(nullptr, path, MAX_PATH), 0u);
    char narrow[MAX_PATH * 3] = {};
    WideCharToMultiByte(CP_UTF8, 0, path, -1, narrow, sizeof narrow, nullptr, nullptr);
    EXPECT_EQ(narrow, control.process_path());
}

// A copy of a small DLL of this build with a manifest written here as resource 2; the
// manifest names a DLL, so the active context can be told by its redirection entry.
class ActCtxTest : public testing::Test {
protected:
    void SetUp() override {
        wchar_t source[MAX_PATH] = {};
        const HMODULE glyphs = GetModuleHandleW(L"libglyphs.dll");
        ASSERT_NE(nullptr, glyphs);
        ASSERT_GT(GetModuleFileNameW(glyphs, source, MAX_PATH), 0u);
        wchar_t temp[MAX_PATH] = {};
        ASSERT_GT(GetTempPathW(MAX_PATH, temp), 0u);
        module_ =
            std::wstring(temp) + L"ovra-actctx-" + std::to_wstring(GetCurrentProcessId()) + L".dll";
        ASSERT_TRUE(CopyFileW(source, module_.c_str(), FALSE));
        static const char manifest[] =
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
            "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">\n"
            "  <assemblyIdentity type=\"win32\" name=\"ovra.test.isolated\" "
            "version=\"1.2.3.4\" processorArchitecture=\"amd64\"/>\n"
            "  <file name=\"ovra_redirected.dll\"/>\n"
            "</assembly>\n";
        const HANDLE update = BeginUpdateResourceW(module_.c_str(), FALSE);
        if (!update)
            GTEST_SKIP() << "BeginUpdateResourceW cannot write resources here";
        const BOOL added =
            UpdateResourceW(update, MAKEINTRESOURCEW(24), MAKEINTRESOURCEW(2), // RT_MANIFEST
                            MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL), const_cast<char*>(manifest),
                            sizeof manifest - 1);
        ASSERT_TRUE(EndUpdateResourceW(update, !added));
        ASSERT_TRUE(added);
        char utf8[MAX_PATH * 3] = {};
        WideCharToMultiByte(CP_UTF8, 0, module_.c_str(), -1, utf8, sizeof utf8, nullptr, nullptr);
        path_ = utString(utf8);
    }
    void TearDown() override {
        if (!module_.empty())
            DeleteFileW(module_.c_str());
    }
    // Whether the manifest's DLL entry is visible on this thread's activation stack.
    static bool manifest_active() {
        ACTCTX_SECTION_KEYED_DATA data = {};
        data.cbSize = sizeof data;
        return FindActCtxSectionStringW(0, nullptr, ACTIVATION_CONTEXT_SECTION_DLL_REDIRECTION,
                                        L"ovra_redirected.dll", &data) != FALSE;
    }

    std::wstring module_;
    utString path_;
};

TEST_F(ActCtxTest, ActivationPutsTheManifestInForceOnce) {
    {
        ovActivationContext context(path_);
        EXPECT_FALSE(manifest_active());
        context.activate();
        EXPECT_TRUE(manifest_active());
        context.deactivate();
        EXPECT_FALSE(manifest_active());
        context.deactivate(); // nothing held: nothing happens
        EXPECT_FALSE(manifest_active());

        // A second activate() undoes the first, so one deactivate() leaves nothing behind.
        context.activate();
        context.activate();
        EXPECT_TRUE(manifest_active());
        context.deactivate();
        EXPECT_FALSE(manifest_active());
        context.activate();
    }
    EXPECT_FALSE(manifest_active()); // destruction deactivates
}

TEST_F(ActCtxTest, BecomingNothingOrAMissingModuleLeavesNoContext) {
    ovActivationContext context(path_);
    context.become("");
    context.activate();
    EXPECT_FALSE(manifest_active());

    const struct {
        const char* module;
        int resource;
    } cases[] = {{"C:\\no\\such\\module.dll", 2}, {"bad \xFF.dll", 2}, {nullptr, 1}};
    for (const auto& c : cases) {
        const utString module = c.module ? utString(c.module) : path_;
        SCOPED_TRACE(module.c_str());
        context.become(module, c.resource); // resource 1 is not in the module
        context.activate();
        EXPECT_FALSE(manifest_active());
        context.deactivate();
    }
    context.become(path_, 2);
    context.activate();
    EXPECT_TRUE(manifest_active());
}

} // namespace
