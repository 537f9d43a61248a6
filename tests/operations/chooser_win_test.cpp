// The chooser's defaults are this platform's own classes.
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include <gtest/gtest.h>

TEST(FrustrumChooserWin, DefaultsAreTheWinClasses) {
    const ovFrustrumChooser chooser(nullptr);
    EXPECT_NE(dynamic_cast<const ovWinSysInfoOperations*>(chooser.system_info_operations()),
              nullptr);
    EXPECT_NE(
        dynamic_cast<const ovWinProcessThreadOperations*>(chooser.process_thread_operations()),
        nullptr);
    EXPECT_NE(dynamic_cast<const ovWinLibraryLoaderOperations*>(
                  chooser.library_loader_operations().get()),
              nullptr);
    EXPECT_NE(dynamic_cast<ovWinProcessEnvironmentOperations*>(
                  chooser.process_environment_operations().get()),
              nullptr);
    EXPECT_NE(dynamic_cast<const ovWinSynchOperations*>(chooser.synch_operations()), nullptr);

    const ovIFileOperations* files = chooser.file_operations();
    EXPECT_NE(dynamic_cast<const ovWinFileOperations*>(files), nullptr);
    EXPECT_NE(dynamic_cast<const ovWinReadMode*>(&files->read_mode()), nullptr);
    EXPECT_NE(dynamic_cast<const ovWinRWMode*>(&files->rw_mode()), nullptr);
    EXPECT_NE(dynamic_cast<const ovWinWriteMode*>(&files->write_mode()), nullptr);
    ovIFileIteratorcoPrf it = files->iterator(ovPathName(ovString::literal(".")));
    EXPECT_NE(dynamic_cast<ovWinFileIterator*>(it.get()), nullptr);
}
