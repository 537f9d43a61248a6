// The chooser's defaults are this platform's own classes.
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovFileOperations.h"
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

    const ovIFileOperations* files = chooser.file_operations();
    EXPECT_NE(dynamic_cast<const ovPosixFileOperations*>(files), nullptr);
    EXPECT_NE(dynamic_cast<const ovPosixReadMode*>(&files->read_mode()), nullptr);
    EXPECT_NE(dynamic_cast<const ovPosixRWMode*>(&files->rw_mode()), nullptr);
    EXPECT_NE(dynamic_cast<const ovPosixWriteMode*>(&files->write_mode()), nullptr);
    ovIFileIteratorcoPrf it = files->iterator(ovPathName(ovString::literal(".")));
    EXPECT_NE(dynamic_cast<ovPosixFileIterator*>(it.get()), nullptr);
}
