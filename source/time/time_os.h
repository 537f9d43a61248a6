// Internal: what the clock and the alarm's ticker need from each platform, and the seams
// through which tests replace the clocks and the ticker's sleep. Nothing here is exported:
// tests reach it by linking the library's archive.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace ovra_internal {

// The counter's ticks per second; false when the platform has no counter.
bool performance_frequency(int64_t& frequency);

// The counter now, in ticks.
int64_t performance_counter();

// Starts a detached thread with the smallest stack the platform gives, running
// `body(arg)`; false when the system refuses.
bool start_ticker_thread(void (*body)(void*), void* arg);

// Seconds since 1970 with a millisecond fraction: what ovTimer and the clock without a
// counter read.
double wall_seconds();

// The callback timer's countdown: waits on `wake` for `delay` at most; true when woken
// earlier (a notification), false when the delay ran out.
bool timer_wait(std::condition_variable& wake, std::unique_lock<std::mutex>& lock,
                std::chrono::milliseconds delay);

// For tests only. Each installs a replacement (null puts the real one back) and returns
// the one before.
typedef double (*WallClockFunc)();
WallClockFunc set_wall_clock_for_tests(WallClockFunc clock);

// The ticker sleeps through this between its calls.
typedef void (*TickerSleepFunc)(int milliseconds);
TickerSleepFunc set_ticker_sleep_for_tests(TickerSleepFunc sleep);

// The callback timer counts down through this.
typedef bool (*TimerWaitFunc)(std::condition_variable& wake, std::unique_lock<std::mutex>& lock,
                              std::chrono::milliseconds delay);
TimerWaitFunc set_timer_wait_for_tests(TimerWaitFunc wait);

// Initialises the clock again, as a platform without a counter would (true) or as this
// one does (false).
void reinitialise_clock_for_tests(bool without_counter);

// Sets the alarm's count of bookings without touching the table, to reach the state the
// table's own operations never leave behind.
void set_alarm_booking_count_for_tests(int count);

} // namespace ovra_internal
