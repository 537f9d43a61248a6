// Windows: the counter is QueryPerformanceCounter.
#include "ovra/ovTime.h"

#include "common/win32.h"

#include <gtest/gtest.h>

TEST(HighResTimeWin, CountsTicksOfThePerformanceCounter) {
    ovHighResTime clock;
    LARGE_INTEGER frequency, before, after;
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
    EXPECT_DOUBLE_EQ(ovHighResTime::time_increment(),
                     1.0 / static_cast<double>(frequency.QuadPart));

    QueryPerformanceCounter(&before);
    const double t = ovHighResTime::time();
    QueryPerformanceCounter(&after);
    const double inc = ovHighResTime::time_increment();
    EXPECT_GE(t, static_cast<double>(before.QuadPart) * inc);
    EXPECT_LE(t, static_cast<double>(after.QuadPart) * inc);
}
