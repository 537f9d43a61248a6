// POSIX: the current directory at any depth, the host name.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

TEST(ProcessEnvironmentPosix, CurrentDirectoryLongerThanPathMax) {
    char start[PATH_MAX];
    ASSERT_NE(getcwd(start, sizeof start), nullptr);
    char temp[] = "/tmp/ovra_cwd_XXXXXX";
    ASSERT_NE(mkdtemp(temp), nullptr);
    ASSERT_EQ(chdir(temp), 0);
    // Walked down one level at a time: no single call sees the whole path.
    const std::string part(200, 'd');
    std::string expected = temp;
    const int depth = PATH_MAX / 200 + 2;
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(mkdir(part.c_str(), 0700), 0);
        ASSERT_EQ(chdir(part.c_str()), 0);
        expected += "/" + part;
    }
    const ovPathName cwd =
        ovFrustrumChooser(nullptr).process_environment_operations()->current_directory();
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(chdir(".."), 0);
        rmdir(part.c_str());
    }
    ASSERT_EQ(chdir(start), 0);
    rmdir(temp);
    ASSERT_GT(expected.size(), static_cast<size_t>(PATH_MAX));
    EXPECT_EQ(std::string(cwd.string().convert(ovSTRING_UTF8)), expected);
}

TEST(SysInfoPosix, ComputerNameIsTheHostName) {
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    const ovString name = ovFrustrumChooser(nullptr).system_info_operations()->computer_name();
    EXPECT_EQ(std::string(name.convert(ovSTRING_UTF8)), host);
}
