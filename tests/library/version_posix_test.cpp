// POSIX: programs load the library by its SONAME, which carries the major version.
#include "ovra/ovNarrow.h"
#include "ovra/ovVersion.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>

TEST(LibraryVersion, LoadedUnderTheMajorVersionSoname) {
    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&ov_stricmp), &info), 0);
    ASSERT_NE(info.dli_fname, nullptr);
    const std::string path = info.dli_fname;
    const std::string soname = "libovra.so." + std::to_string(OVRA_VERSION_MAJOR);
    ASSERT_GE(path.size(), soname.size()) << path;
    EXPECT_EQ(path.substr(path.size() - soname.size()), soname) << path;
}
