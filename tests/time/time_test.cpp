// The high-resolution clock, stopwatches and timers.
#include "ovra/ovHostUser.h"
#include "ovra/ovTime.h"

#include "time/time_os.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

// The wall clock reads a number the test sets, stepping it forward on every read if asked;
// without_counter() makes the high-resolution clock read it too.
std::atomic<double> the_wall_now{0.0};
std::atomic<double> the_wall_step{0.0};
std::atomic<int> the_wall_reads{0};

double fake_wall_clock() {
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

} // namespace

TEST(HighResTime, UsesTheCounterWrapsAfterTwoToTheSixtyThirdTicksAndNeverRunsBackwards) {
    ovHighResTime clock;
    EXPECT_EQ(ovHighResTime::have_real_time(), 1);
    const double increment = ovHighResTime::time_increment();
    EXPECT_GT(increment, 0.0);
    EXPECT_LE(increment, 1e-6) << "a performance counter ticks at least once a microsecond";
    EXPECT_DOUBLE_EQ(ovHighResTime::wrap_interval(), 9223372036854775808.0 * increment);

    double before = ovHighResTime::time();
    EXPECT_GT(before, 0.0);
    for (int i = 0; i < 100000; ++i) {
        const double now = ovHighResTime::time();
        ASSERT_GE(now, before) << "read " << i;
        before = now;
    }
}

TEST(HighResTime, TimeDiffAddsTheWrapIntervalToANegativeDifference) {
    ovHighResTime clock;
    const double wrap = ovHighResTime::wrap_interval();
    const struct {
        double t0, t1, expected;
    } cases[] = {
        {1.0, 4.0, 3.0},
        {3.0, 3.0, 0.0},
        {5.0, 3.0, -2.0 + wrap},
        {wrap - 1.0, 0.5, 1.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.t0 << " -> " << c.t1);
        EXPECT_DOUBLE_EQ(ovHighResTime::time_diff(c.t0, c.t1), c.expected);
    }
}

TEST(HighResTime, PrintShowsTheStateAndAFreshTime) {
    ovHighResTime clock;
    std::ostringstream out;
    ovHighResTime::print(out);
    const std::string text = out.str();
    EXPECT_EQ(
        text.rfind("ovHighResTime {\nthe_have_real_time_flag is 1\nthe_initialised_flag is 1\n"
                   "the_wrap_interval is ",
                   0),
        0u)
        << text;
    EXPECT_NE(text.find("\nthe_time_increment is "), std::string::npos) << text;
    EXPECT_NE(text.find("\ntime() returned "), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 3), "\n}\n") << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 7) << text;
}

TEST_F(FakeClockTest, WithoutACounterTheClockReadsTimedpInMilliseconds) {
    without_counter();
    set_now(1234.5);
    EXPECT_EQ(ovHighResTime::have_real_time(), 0);
    EXPECT_DOUBLE_EQ(ovHighResTime::time_increment(), 0.001);
    EXPECT_DOUBLE_EQ(ovHighResTime::wrap_interval(), 2147483.647);
    EXPECT_DOUBLE_EQ(ovHighResTime::time(), 1234.5);

    std::ostringstream out;
    ovHighResTime::print(out);
    std::ostringstream expected;
    expected << "ovHighResTime {\nthe_have_real_time_flag is 0\nthe_initialised_flag is 1\n"
             << "the_wrap_interval is " << 2147483.647 << "\nthe_time_increment is " << 0.001
             << "\ntime() returned " << 1234.5 << "\n}\n";
    EXPECT_EQ(out.str(), expected.str());
}

TEST_F(FakeClockTest, StopwatchAddsUpTickingIntervalsOnly) {
    without_counter();
    set_now(100.0);
    ovStopwatch watch;
    EXPECT_TRUE(watch.ticking());
    set_now(103.0);
    EXPECT_DOUBLE_EQ(watch.ticking_seconds(), 3.0);

    watch.stop();
    EXPECT_FALSE(watch.ticking());
    set_now(110.0);
    EXPECT_DOUBLE_EQ(watch.ticking_seconds(), 3.0) << "time stopped does not count";

    watch.start();
    set_now(112.0);
    EXPECT_DOUBLE_EQ(watch.ticking_seconds(), 5.0);

    // Starting again drops the running interval and keeps the total.
    watch.start();
    set_now(113.0);
    EXPECT_DOUBLE_EQ(watch.ticking_seconds(), 4.0);

    // Reset clears the total and leaves the running interval alone.
    watch.reset();
    EXPECT_TRUE(watch.ticking());
    EXPECT_DOUBLE_EQ(watch.ticking_seconds(), 1.0);
    set_now(120.0);
    watch.stop();
    EXPECT_DOUBLE_EQ(watch.ticking_seconds(), 8.0);
}

TEST_F(FakeClockTest, StopwatchStateOneStartsStoppedAnyOtherTicking) {
    without_counter();
    set_now(50.0);
    const struct {
        int state;
        bool ticking;
    } cases[] = {{1, false}, {0, true}, {2, true}, {-1, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "state " << c.state);
        const ovStopwatch watch(static_cast<ovStopwatchState>(c.state));
        EXPECT_EQ(watch.ticking(), c.ticking);
        set_now(the_wall_now + 2.0);
        EXPECT_DOUBLE_EQ(watch.ticking_seconds(), c.ticking ? 2.0 : 0.0);
    }
}

TEST_F(FakeClockTest, StopwatchCountsAcrossAWrapOfTheClock) {
    without_counter();
    set_now(2147483.0);
    ovStopwatch watch;
    // The millisecond counter wrapped round to 1.0.
    set_now(1.0);
    EXPECT_NEAR(watch.ticking_seconds(), 1.647, 1e-6);
    watch.stop();
    EXPECT_NEAR(watch.ticking_seconds(), 1.647, 1e-6);
}

TEST_F(FakeClockTest, TimerSplitsWholeSecondsIntoHoursMinutesSeconds) {
    const struct {
        double elapsed;
        int h, m, s;
    } cases[] = {
        {3725.9, 1, 2, 5}, {0.4, 0, 0, 0},      {59.999, 0, 0, 59},
        {3600.0, 1, 0, 0}, {90061.0, 25, 1, 1}, {-3725.9, -1, -2, -5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.elapsed << " s");
        set_now(5000.0);
        const ovTimer timer;
        set_now(5000.0 + c.elapsed);
        int h = 99, m = 99, s = 99;
        EXPECT_NEAR(timer.lapsed(&h, &m, &s), c.elapsed, 1e-9);
        EXPECT_EQ(h, c.h);
        EXPECT_EQ(m, c.m);
        EXPECT_EQ(s, c.s);
        // Each output may be left out.
        EXPECT_NEAR(timer.lapsed(nullptr, &m, nullptr), c.elapsed, 1e-9);
        EXPECT_EQ(m, c.m);
    }
}

TEST_F(FakeClockTest, TimerWaitSpinsUntilTheTimeHasPassed) {
    const ovTimer timer;
    the_wall_step = 0.25;
    const double begin = the_wall_now;
    the_wall_reads = 0;
    timer.wait(1.0);
    EXPECT_GE(the_wall_now - begin, 1.0);
    EXPECT_EQ(the_wall_reads, 5) << "the clock is read until a second has passed";

    for (double seconds : {0.0, -1.0, std::nan("")}) {
        SCOPED_TRACE(seconds);
        the_wall_reads = 0;
        timer.wait(seconds);
        EXPECT_LE(the_wall_reads, 2) << "nothing to wait for";
    }
}

TEST(Stopwatch, MeasuresRealTimeOnTheCounter) {
    ovStopwatch watch;
    watch.reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    watch.stop();
    // A lower bound only: sleeping never takes less than asked.
    EXPECT_GE(watch.ticking_seconds(), 0.025);
}

TEST(Stopwatch, ManyThreadsMayReadOneWatch) {
    const ovStopwatch watch;
    std::vector<std::thread> readers;
    std::atomic<int> bad{0};
    for (int i = 0; i < 4; ++i)
        readers.emplace_back([&] {
            double before = 0.0;
            for (int n = 0; n < 10000; ++n) {
                const double now = watch.ticking_seconds();
                if (now < before)
                    ++bad;
                before = now;
            }
        });
    for (auto& t : readers)
        t.join();
    EXPECT_EQ(bad, 0);
}

TEST(Timer, FollowsTimedp) {
    double before = 0.0, after = 0.0;
    timedp(&before);
    const ovTimer timer;
    timer.wait(0.02);
    timedp(&after);
    int h = -1, m = -1, s = -1;
    const double lapsed = timer.lapsed(&h, &m, &s);
    EXPECT_GE(lapsed, 0.02);
    EXPECT_LE(lapsed, after - before + 1.0);
    EXPECT_EQ(h, 0);
}
