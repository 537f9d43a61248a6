// What holds on every platform: empty names are refused before the registry is
// touched, and the process facts are there.
#include "ovra/ovRegistry.h"
#include "ovra/ovWindowsServices.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

TEST(ovRegistry, EmptyPathsAndNamesAreRefusedAtOnce) {
    ovRegistry plain(ovHKEY_LOCAL_MACHINE);
    ovRegistry6432 both(ovHKEY_CURRENT_USER);
    const utString empty(""), null, some("Software"), name("x");
    for (ovRegistry* r : {&plain, static_cast<ovRegistry*>(&both)}) {
        for (const utString* path : {&empty, &null}) {
            SCOPED_TRACE(path->is_null() ? "null path" : "empty path");
            ovValueType type = ovREG_INT;
            int number = 7;
            utString text("kept");
            EXPECT_EQ(0, r->key_exists(*path));
            EXPECT_EQ(0, r->value_exists(*path, name, type));
            EXPECT_EQ(ovREG_OTHER, r->value_type(*path, name));
            EXPECT_EQ(0, r->value_data(*path, name, number));
            EXPECT_EQ(0, r->value_data(*path, name, text));
            EXPECT_EQ(0, r->value_data_utf8(*path, name, text));
            EXPECT_EQ(nullptr, std::unique_ptr<utStringcoPageArr>(r->key_list(*path)));
            EXPECT_EQ(nullptr, std::unique_ptr<utStringcoPageArr>(r->value_list(*path)));
            EXPECT_EQ(0, r->set_value_data(*path, name, ovREG_STRING, text));
            EXPECT_EQ(0, r->create_key(*path));
            EXPECT_EQ(0, r->remove_key(*path));
            EXPECT_EQ(0, r->remove_value(*path, name));
            EXPECT_EQ(7, number);
            EXPECT_EQ("kept", text);
            EXPECT_EQ(ovREG_INT, type);
        }
        // A named key with an empty value name.
        ovValueType type = ovREG_INT;
        utString text("kept");
        EXPECT_EQ(0, r->value_exists(some, empty, type));
        EXPECT_EQ(ovREG_OTHER, r->value_type(some, empty));
        EXPECT_EQ(0, r->value_data(some, empty, text));
        EXPECT_EQ(0, r->value_data_utf8(some, empty, text));
        EXPECT_EQ(0, r->set_value_data(some, empty, ovREG_STRING, text));
        EXPECT_EQ(0, r->remove_value(some, empty));
        EXPECT_EQ("kept", text);
    }
    EXPECT_EQ(0, both.key_exists_64(empty));
    EXPECT_EQ(0, both.create_key_32(empty));
    EXPECT_EQ(0, both.create_key_64(empty));
    EXPECT_EQ(0, both.remove_key_32(empty));
    EXPECT_EQ(0, both.remove_key_64(empty));
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

TEST(ovProcessControl, KnowsItsIdAndExecutable) {
    ovProcessControl control;
    EXPECT_GT(control.getpid(), 0);
    EXPECT_EQ(control.getpid(), ovProcessControl().getpid());
    const utString path = control.process_path();
    ASSERT_FALSE(path.empty());
    EXPECT_NE(nullptr, std::strstr(path.c_str(), "windows_tests")) << path.c_str();
}

} // namespace
