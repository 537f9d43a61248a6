#include "ovra/ovNarrowHelpers.h"

#include "ut/utString.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(ov_get_system_folder, AsksTheShellForExistingFolders) {
    for (ovCSIDL folder : {ovCSIDL_APPDATA, ovCSIDL_LOCAL_APPDATA, ovCSIDL_WINDOWS, ovCSIDL_SYSTEM,
                           ovCSIDL_PROFILE}) {
        SCOPED_TRACE(static_cast<int>(folder));
        const utString path = ov_get_system_folder(folder);
        ASSERT_FALSE(path.empty());
        EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::u8path(path.c_str())));
    }
    EXPECT_EQ(ov_get_system_folder(static_cast<ovCSIDL>(-5)), "");
    EXPECT_EQ(ov_get_system_folder(static_cast<ovCSIDL>(0x7777)), "");
}
