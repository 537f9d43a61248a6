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

// The path reaches rm as one word: a blank does not split it into two trees.
TEST(fcuddl, NameWithABlankRemovesOnlyThatTree) {
    ScratchDir dir;
    std::filesystem::create_directories(dir.at("a b/x"));
    std::filesystem::create_directories(dir.at("a"));
    std::filesystem::create_directories(dir.at("b"));
    dir.write("a/keep", "1");
    dir.write("b/keep", "2");
    EXPECT_EQ(remove_tree(dir.at("a b")), 0);
    EXPECT_FALSE(exists(dir.at("a b")));
    EXPECT_TRUE(exists(dir.at("a/keep")));
    EXPECT_TRUE(exists(dir.at("b/keep")));
}

// Shell characters in a name are part of the name; no command runs.
TEST(fcuddl, ShellCharactersRunNothing) {
    ScratchDir dir;
    const std::string marker = dir.at("ran");
    const char* const names[] = {
        "x;touch ran",  "x$(touch ran)", "x`touch ran`", "x' ; touch 'ran",
        "x&&touch ran", "x|touch ran",   "x\ntouch ran", "x'\"'\"",
    };
    for (const char* name : names) {
        SCOPED_TRACE(name);
        std::filesystem::create_directories(dir.at(name) + "/inner");
        // Commands would run in the working directory: point it at the scratch folder.
        const auto old = std::filesystem::current_path();
        std::filesystem::current_path(dir.at());
        const int ierr = remove_tree(dir.at(name));
        std::filesystem::current_path(old);
        EXPECT_EQ(ierr, 0);
        EXPECT_FALSE(exists(dir.at(name)));
        EXPECT_FALSE(exists(marker));
        EXPECT_FALSE(exists(dir.at("x")));
    }
}

TEST(fcuddl, LeadingDashIsANameNotAnOption) {
    ScratchDir dir;
    std::filesystem::create_directories(dir.at("-rf/inner"));
    dir.write("other", "o");
    const auto old = std::filesystem::current_path();
    std::filesystem::current_path(dir.at());
    const int ierr = remove_tree("-rf");
    std::filesystem::current_path(old);
    EXPECT_EQ(ierr, 0);
    EXPECT_FALSE(exists(dir.at("-rf")));
    EXPECT_TRUE(exists(dir.at("other")));
}

TEST(fcuddl, MissingTreeReportsTheInterpretersFailure) {
    ScratchDir dir;
    EXPECT_NE(remove_tree(dir.at("nothing here")), 0);
}
