// The chooser's file operations: one instance for every chooser and every thread.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovStringEncoding.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST(ovFrustrumChooser, FileOperationsAreOneSharedInstance) {
    const ovIFileOperations* first = ovFrustrumChooser(nullptr).file_operations();
    ASSERT_NE(first, nullptr);
    const ovFrustrumChooser chooser(ovStringOsEncodingChooser().os_encoding());
    EXPECT_EQ(chooser.file_operations(), first);
    EXPECT_EQ(chooser.file_operations(), first);

    std::vector<const ovIFileOperations*> seen(8, nullptr);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back(
            [&seen, i] { seen[i] = ovFrustrumChooser(nullptr).file_operations(); });
    for (std::thread& t : threads)
        t.join();
    for (const ovIFileOperations* p : seen)
        EXPECT_EQ(p, first);
}
