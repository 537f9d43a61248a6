#include "ovra/ovFileUtils.h"

#include "procedural_test_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using proc_test::ScratchDir;

namespace {

int remove_tree(const std::string& path) {
    int ierr = -5;
    const int n = static_cast<int>(path.size());
    fcuddl(path.data(), n, &n, &ierr);
    return ierr;
}

bool exists(const std::string& path) {
    return std::filesystem::exists(path);
}

} // namespace

// The path reaches rm as one word: blanks, shell characters and a leading dash
// are part of the name, no other tree goes and no command runs.
TEST(fcuddl, NamesReachRmAsOneWord) {
    ScratchDir dir;
    dir.write("other", "o");
    std::filesystem::create_directories(dir.at("a"));
    std::filesystem::create_directories(dir.at("b"));
    dir.write("a/keep", "1");
    dir.write("b/keep", "2");
    // Commands would run in the working directory: point it at the scratch folder.
    const auto old = std::filesystem::current_path();
    std::filesystem::current_path(dir.at());
    const char* const names[] = {
        "a b",          "x;touch ran", "x$(touch ran)", "x`touch ran`", "x' ; touch 'ran",
        "x&&touch ran", "x|touch ran", "x\ntouch ran",  "x'\"'\"",      "-rf",
    };
    for (const char* name : names) {
        SCOPED_TRACE(name);
        std::filesystem::create_directories(dir.at(name) + "/inner");
        EXPECT_EQ(remove_tree(name), 0);
        EXPECT_FALSE(exists(dir.at(name)));
        EXPECT_FALSE(exists(dir.at("ran")));
        EXPECT_FALSE(exists(dir.at("x")));
        EXPECT_TRUE(exists(dir.at("a/keep")));
        EXPECT_TRUE(exists(dir.at("b/keep")));
        EXPECT_TRUE(exists(dir.at("other")));
    }
    // An absolute name, and a missing tree: the interpreter's failure.
    std::filesystem::create_directories(dir.at("a b/x"));
    EXPECT_EQ(remove_tree(dir.at("a b")), 0);
    EXPECT_FALSE(exists(dir.at("a b")));
    EXPECT_NE(remove_tree(dir.at("nothing here")), 0);
    std::filesystem::current_path(old);
}
