// The chooser's defaults are this platform's own classes.
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include <gtest/gtest.h>

TEST(FrustrumChooserPosix, DefaultsAreThePosixClasses) {
    const ovFrustrumChooser chooser(nullptr);
    EXPECT_NE(dynamic_cast<const ovPosixSysInfoOperations*>(chooser.system_info_operations()),
              nullptr);
    EXPECT_NE(
        dynamic_cast<const ovPosixProcessThreadOperations*>(chooser.process_thread_operations()),
        nullptr);
    EXPECT_NE(dynamic_cast<const ovPosixLibraryLoaderOperations*>(
                  chooser.library_loader_operations().get()),
              nullptr);
    EXPECT_NE(dynamic_cast<ovPosixProcessEnvironmentOperations*>(
                  chooser.process_environment_operations().get()),
              nullptr);
    EXPECT_NE(dynamic_cast<const ovPosixSynchOperations*>(chooser.synch_operations()), nullptr);
}
