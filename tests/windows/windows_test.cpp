// What holds on every platform: empty names are refused before the registry is
// touched, and a 64-bit process is never under Wow64.
#include "ovra/ovRegistry.h"
#include "ovra/ovWindowsServices.h"

#include "registry_refusals.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(ovRegistry, EmptyPathsAndNamesAreRefusedAtOnce) {
    ovRegistry plain(ovHKEY_LOCAL_MACHINE);
    ovRegistry6432 both(ovHKEY_CURRENT_USER);
    const utString empty(""), null;
    for (ovRegistry* r : {&plain, static_cast<ovRegistry*>(&both)}) {
        for (const utString* path : {&empty, &null}) {
            SCOPED_TRACE(path->is_null() ? "null path" : "empty path");
            ovtest::expect_refused(*r, *path, utString("x"), true);
        }
        SCOPED_TRACE("a named key with an empty value name");
        ovtest::expect_refused(*r, utString("Software"), empty, false);
    }
    ovtest::expect_views_refused(both, empty);
    ovtest::expect_views_refused(both, null);
}

// The set behind the merged key list: each name once, the null string apart from "".
TEST(utStringcoSet, HoldsEachTextOnce) {
    utStringcoSet seen(4, 50);
    EXPECT_TRUE(seen.add(utString("Wow6432Node")));
    EXPECT_FALSE(seen.add(utString("Wow6432Node")));
    EXPECT_TRUE(seen.add(utString("")));
    EXPECT_TRUE(seen.add(utString()));
    EXPECT_FALSE(seen.add(utString()));
    EXPECT_EQ(3, seen.size());
    for (int i = 0; i < 200; ++i)
        seen.add(utString(std::to_string(i % 100).c_str()));
    EXPECT_EQ(103, seen.size());
}

// This library is built for 64-bit processes only, so never under Wow64.
TEST(ovProcessWow64, A64BitProcessIsNotUnderWow64) {
    const ovProcessWow64 wow;
    EXPECT_EQ(1, wow.ok());
    EXPECT_EQ(0, wow.is_wow_64());
}

} // namespace
