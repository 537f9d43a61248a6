// Windows: the system's own kernel32 through a bare name.
#include "ovra/ovDynamicLibrary.h"

#include <gtest/gtest.h>

TEST(DynamicLibraryWin, Kernel32ByBareNameOnly) {
    ovDynamicLibraryLoader loader{utObserverPtr<const ovILibraryLoaderOperations>()};
    ovStatus status(0);
    std::unique_ptr<ovDynamicLibrary> kernel32 = loader.load_library("kernel32", status);
    ASSERT_TRUE(status.ok());
    ASSERT_NE(kernel32, nullptr);
    EXPECT_NE(kernel32->proc_address("GetCurrentProcessId", status), nullptr);

    ovStatus doubled(1);
    EXPECT_EQ(loader.load_library("kernel32.dll", doubled), nullptr) << "asks for kernel32.dll.dll";
    EXPECT_FALSE(doubled.ok());
}
