// What only the Windows file operations do: backslashed OS forms, a
// rename that refuses an existing target, and the system's full paths.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"

#include "../../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

const ovIFileOperations* ops() {
    return ovFrustrumChooser(nullptr).file_operations();
}

std::string contents(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

TEST(ovWinFileOperations, OsStyleUsesBackslashes) {
    const struct {
        const char* in;
        const char* out;
    } cases[] = {
        {"a/b/c", "a\\b\\c"}, {"abc", "abc"}, {"C:/x/y", "C:\\x\\y"}, {"//s/h", "\\\\s\\h"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(utf8_of(ops()->os_style_path(ovPathName(utf8_text(c.in)))), c.out);
    }
}

TEST(ovWinFileOperations, RenameFileRefusesAnExistingTarget) {
    ScratchDir dir;
    std::ofstream(dir.native("a")) << "a";
    std::ofstream(dir.native("b")) << "b";
    EXPECT_FALSE(ops()->rename_file(dir.path("a"), ovFileName(utf8_text("b"))));
    EXPECT_EQ(contents(dir.native("a")), "a");
    EXPECT_EQ(contents(dir.native("b")), "b");
}

TEST(ovWinFileOperations, FullPathIsTheSystems) {
    const ovPathName full = ops()->full_path(ovPathName(utf8_text("x/../y")));
    const std::string text = utf8_of(full.string());
    ASSERT_GE(text.size(), 5u);
    EXPECT_EQ(text.substr(1, 2), ":/");
    EXPECT_EQ(text.substr(text.size() - 2), "/y");
    // A drive's root stays a root.
    EXPECT_EQ(utf8_of(ops()->full_path(ovPathName(utf8_text("C:/"))).string()), "C:/");
}

TEST(ovWinFileOperations, AttributesOfTheDriveAndOfDotForms) {
    EXPECT_EQ(ops()->type_of_path(ovPathName(utf8_text("C:/"))), ovPATH_DIRECTORY);
    // A dot that is not exactly "." goes to the system, which also finds a directory.
    EXPECT_EQ(ops()->type_of_path(ovPathName(utf8_text("./."))), ovPATH_DIRECTORY);
}

TEST(ovWinFileOperations, DirectoriesWithoutPermission) {
    GTEST_SKIP() << "Wine keeps no access control lists: a directory cannot be locked "
                    "against the user running the tests";
}
