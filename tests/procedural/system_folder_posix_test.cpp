#include "ovra/ovNarrowHelpers.h"

#include "procedural_test_support.h"

#include "ut/utString.h"

#include <gtest/gtest.h>

using proc_test::ScopedEnv;

TEST(ov_get_system_folder, MapsHomeAndXdgFoldersAndNothingElseNorWithoutHome) {
    ScopedEnv home("HOME", "/home/me");
    ScopedEnv config("XDG_CONFIG_HOME", "/cfg");
    ScopedEnv data("XDG_DATA_HOME", "relative/ignored");
    ScopedEnv cache("XDG_CACHE_HOME", nullptr);
    struct Case {
        ovCSIDL folder;
        const char* expected;
    } const cases[] = {
        {ovCSIDL_PROFILE, "/home/me"},
        {ovCSIDL_PERSONAL, "/home/me/Documents"},
        {ovCSIDL_DESKTOP, "/home/me/Desktop"},
        {ovCSIDL_DESKTOPDIRECTORY, "/home/me/Desktop"},
        {ovCSIDL_MYPICTURES, "/home/me/Pictures"},
        {ovCSIDL_APPDATA, "/cfg"},
        {ovCSIDL_LOCAL_APPDATA, "/home/me/.local/share"},
        {ovCSIDL_INTERNET_CACHE, "/home/me/.cache"},
        {ovCSIDL_SYSTEM, ""},
        {ovCSIDL_PRINTERS, ""},
        {static_cast<ovCSIDL>(-5), ""},
        {static_cast<ovCSIDL>(0x7777), ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.folder));
        EXPECT_EQ(ov_get_system_folder(c.folder), c.expected);
    }
    ScopedEnv no_home("HOME", nullptr);
    ScopedEnv no_config("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(ov_get_system_folder(ovCSIDL_PROFILE), "");
    EXPECT_EQ(ov_get_system_folder(ovCSIDL_APPDATA), "");
}
