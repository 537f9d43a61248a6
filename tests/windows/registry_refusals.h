// Registry calls that must fail at once: each gives its failure answer and leaves the
// caller's variables alone.
#pragma once

#include "ovra/ovRegistry.h"

#include <gtest/gtest.h>

#include <memory>

namespace ovtest {

// The value operations on `name` under `path`; with `keys`, those on the key too.
inline void expect_refused(ovRegistry& r, const utString& path, const utString& name, bool keys) {
    ovValueType type = ovREG_INT;
    int number = 7;
    utString text("kept");
    // Writes first, so that the reads would see anything they made.
    if (keys) {
        EXPECT_EQ(0, r.create_key(path));
    }
    EXPECT_EQ(0, r.set_value_data(path, name, ovREG_STRING, text));
    if (keys) {
        EXPECT_EQ(0, r.key_exists(path));
        EXPECT_EQ(nullptr, std::unique_ptr<utStringcoPageArr>(r.key_list(path)));
        EXPECT_EQ(nullptr, std::unique_ptr<utStringcoPageArr>(r.value_list(path)));
        EXPECT_EQ(0, r.remove_key(path));
    }
    EXPECT_EQ(0, r.value_exists(path, name, type));
    EXPECT_EQ(ovREG_OTHER, r.value_type(path, name));
    EXPECT_EQ(0, r.value_data(path, name, number));
    EXPECT_EQ(0, r.value_data(path, name, text));
    EXPECT_EQ(0, r.value_data_utf8(path, name, text));
    EXPECT_EQ(0, r.remove_value(path, name));
    EXPECT_EQ(ovREG_INT, type);
    EXPECT_EQ(7, number);
    EXPECT_EQ("kept", text);
}

inline void expect_views_refused(ovRegistry6432& r, const utString& path) {
    EXPECT_EQ(0, r.key_exists_64(path));
    EXPECT_EQ(0, r.create_key_32(path));
    EXPECT_EQ(0, r.create_key_64(path));
    EXPECT_EQ(0, r.remove_key_32(path));
    EXPECT_EQ(0, r.remove_key_64(path));
}

} // namespace ovtest
