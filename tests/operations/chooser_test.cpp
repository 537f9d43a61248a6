// The chooser hands out one object per interface, the same from every chooser and from
// every thread.
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovStringEncoding.h"
#include "ovra/ovSystemOperations.h"

#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

TEST(FrustrumChooser, EveryChooserGivesTheSameObjects) {
    const ovFrustrumChooser plain(nullptr);
    const ovFrustrumChooser with_encoding(ovStringOsEncodingChooser().os_encoding());
    EXPECT_EQ(plain.system_info_operations(), with_encoding.system_info_operations());
    EXPECT_EQ(plain.process_thread_operations(), with_encoding.process_thread_operations());
    EXPECT_EQ(plain.library_loader_operations(), with_encoding.library_loader_operations());
    EXPECT_EQ(plain.process_environment_operations(),
              with_encoding.process_environment_operations());
    EXPECT_EQ(plain.synch_operations(), with_encoding.synch_operations());
    EXPECT_EQ(plain.file_operations(), with_encoding.file_operations());
    EXPECT_NE(plain.synch_operations(), nullptr);
    EXPECT_NE(plain.library_loader_operations(), nullptr);
    EXPECT_NE(plain.file_operations(), nullptr);
}

TEST(FrustrumChooser, ThreadsAskingAtOnceGetOneObject) {
    std::vector<std::pair<const void*, const void*>> seen(8);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&seen, i] {
            const ovFrustrumChooser chooser(nullptr);
            seen[i] = {chooser.process_environment_operations().get(), chooser.file_operations()};
        });
    for (std::thread& t : threads)
        t.join();
    for (const auto& p : seen)
        EXPECT_EQ(p, seen[0]);
}
