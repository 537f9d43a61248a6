// POSIX: the counter is the monotonic clock in nanoseconds.
#include "ovra/ovTime.h"

#include <gtest/gtest.h>

#include <time.h>

TEST(HighResTimePosix, CountsNanosecondsOfTheMonotonicClock) {
    ovHighResTime clock;
    EXPECT_DOUBLE_EQ(ovHighResTime::time_increment(), 1e-9);

    timespec before, after;
    clock_gettime(CLOCK_MONOTONIC, &before);
    const double t = ovHighResTime::time();
    clock_gettime(CLOCK_MONOTONIC, &after);
    EXPECT_GE(t, static_cast<double>(before.tv_sec) + before.tv_nsec * 1e-9 - 1e-6);
    EXPECT_LE(t, static_cast<double>(after.tv_sec) + after.tv_nsec * 1e-9 + 1e-6);
}
