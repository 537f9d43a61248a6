// The clocks the time tests drive by hand: a wall clock that reads a number the test
// sets (and may step forward on every read), and the high-resolution clock without its
// counter, so that it reads the same number. Both are put back after every test.
#pragma once

#include "ovra/ovTime.h"

#include "time/time_os.h"

#include <gtest/gtest.h>

#include <atomic>

namespace ovtest {

inline std::atomic<double> the_wall_now{0.0};
inline std::atomic<double> the_wall_step{0.0};
inline std::atomic<int> the_wall_reads{0};

inline double fake_wall_clock() {
    ++the_wall_reads;
    const double now = the_wall_now.load();
    the_wall_now.store(now + the_wall_step.load());
    return now;
}

class FakeClockTest : public testing::Test {
protected:
    void SetUp() override {
        the_wall_now = 1000.0;
        the_wall_step = 0.0;
        the_wall_reads = 0;
        ovra_internal::set_wall_clock_for_tests(&fake_wall_clock);
    }
    void TearDown() override {
        ovra_internal::set_wall_clock_for_tests(nullptr);
        ovra_internal::reinitialise_clock_for_tests(false);
    }
    // The high-resolution clock as a platform without a counter has it: it reads timedp,
    // here the fake wall clock.
    static void without_counter() { ovra_internal::reinitialise_clock_for_tests(true); }
    static void set_now(double seconds) { the_wall_now = seconds; }
};

} // namespace ovtest
