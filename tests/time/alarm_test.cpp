// The alarm: the booking table driven tick by tick through the ticker's sleep, and once
// on the real ticker.
#include "ovra/ovAlarm.h"

#include "time/time_os.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

using namespace std::chrono_literals;

namespace {

// The ticker's sleep, replaced: the ticker waits here until the test lets one tick
// through. Never destroyed: the ticker may still wait in it when the process ends.
struct TickGate {
    std::mutex mutex;
    std::condition_variable changed;
    bool asleep = false;
    bool open = false;
    long long sleeps = 0;
    int last_period_ms = 0;
};

TickGate& gate() {
    static TickGate* the_gate = new TickGate;
    return *the_gate;
}

void gated_sleep(int milliseconds) {
    TickGate& g = gate();
    std::unique_lock<std::mutex> lock(g.mutex);
    g.last_period_ms = milliseconds;
    g.asleep = true;
    ++g.sleeps;
    g.changed.notify_all();
    g.changed.wait(lock, [&] { return g.open; });
    g.open = false;
    g.asleep = false;
}

// Waits until the ticker sleeps in the gate; false after a generous real limit.
bool ticker_asleep(std::unique_lock<std::mutex>& lock) {
    return gate().changed.wait_for(lock, 30s, [] { return gate().asleep && !gate().open; });
}

// One sleep of the ticker ends: it calls its function unless stopped, and is back in the
// gate before this returns.
bool tick() {
    TickGate& g = gate();
    std::unique_lock<std::mutex> lock(g.mutex);
    if (!ticker_asleep(lock))
        return false;
    const long long before = g.sleeps;
    g.open = true;
    g.changed.notify_all();
    return g.changed.wait_for(lock, 30s, [&] { return g.sleeps > before && g.asleep; });
}

int last_period_ms() {
    std::lock_guard<std::mutex> lock(gate().mutex);
    return gate().last_period_ms;
}

// Every handler call, as (handler number, info).
std::mutex the_calls_mutex;
std::vector<std::pair<int, ovAlarmHandlerInfo>> the_calls;

std::vector<std::pair<int, ovAlarmHandlerInfo>> take_calls() {
    std::lock_guard<std::mutex> lock(the_calls_mutex);
    return std::exchange(the_calls, {});
}

template <int N> void handler(ovAlarmHandlerInfo info) {
    std::lock_guard<std::mutex> lock(the_calls_mutex);
    the_calls.emplace_back(N, info);
}

const ovAlarmHandler the_handlers[] = {&handler<0>, &handler<1>, &handler<2>, &handler<3>,
                                       &handler<4>, &handler<5>, &handler<6>, &handler<7>,
                                       &handler<8>, &handler<9>, &handler<10>};

using Calls = std::vector<std::pair<int, ovAlarmHandlerInfo>>;

std::atomic<int> the_ticker_calls{0};
void count_ticker_call() {
    ++the_ticker_calls;
}

class AlarmTest : public testing::Test {
protected:
    void SetUp() override {
        ovra_internal::set_ticker_sleep_for_tests(&gated_sleep);
        // Makes the ticker if there is none yet, stopped, and waits until it sleeps in the
        // gate (a real sleep under way ends first).
        ov_alarm(0, nullptr);
        std::unique_lock<std::mutex> lock(gate().mutex);
        ASSERT_TRUE(ticker_asleep(lock));
        take_calls();
    }
    void TearDown() override {
        ovAlarm::suspend_signals(0);
        for (ovAlarmHandler h : the_handlers)
            ovAlarm::cancel_alarm_call(h);
        ovAlarm::cancel_alarm_call(&rebooking_handler);
        EXPECT_EQ(ovAlarm::num_bookings(), 0);
        ov_alarm(0, nullptr);
    }

    static int seconds_left(ovAlarmHandler h) {
        int period = -1, left = -1;
        return ovAlarm::alarm_booking_info(h, period, left) ? left : -1;
    }

    static void rebooking_handler(ovAlarmHandlerInfo info) {
        handler<99>(info);
        // Cancels itself and books again with another period.
        ovAlarm::cancel_alarm_call(&rebooking_handler);
        ovAlarm::book_alarm_call(5, &rebooking_handler);
    }
};

} // namespace

TEST_F(AlarmTest, BookingChecksNullHandlerThenPeriodThenTheTable) {
    const struct {
        int period;
        ovAlarmHandler handler;
        ovAlarmBookingStatus expected;
    } cases[] = {
        {0, &handler<0>, ovALARM_BOOKING_BAD_PERIOD},
        {-1, &handler<0>, ovALARM_BOOKING_BAD_PERIOD},
        {86401, &handler<0>, ovALARM_BOOKING_BAD_PERIOD},
        {0, nullptr, ovALARM_BOOKING_NULL_HANDLER},
        {5, nullptr, ovALARM_BOOKING_NULL_HANDLER},
        {86400, &handler<0>, ovALARM_BOOKING_OK},
        {1, &handler<1>, ovALARM_BOOKING_OK},
        {7, &handler<0>, ovALARM_BOOKING_ALREADY_BOOKED},
        {0, &handler<0>, ovALARM_BOOKING_BAD_PERIOD},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.period << " " << c.expected);
        EXPECT_EQ(ovAlarm::book_alarm_call(c.period, c.handler), c.expected);
    }
    EXPECT_EQ(ovAlarm::num_bookings(), 2);
    int period = 0, left = 0;
    ASSERT_EQ(ovAlarm::alarm_booking_info(&handler<0>, period, left), 1);
    EXPECT_EQ(period, 86400) << "the second booking of a handler changes nothing";
    EXPECT_EQ(left, 86400);
}

TEST_F(AlarmTest, PrintShowsEveryEntryAndTheEleventhBookingWaitsForACancellation) {
    ASSERT_EQ(ovAlarm::book_alarm_call(4, &handler<0>), ovALARM_BOOKING_OK);
    std::ostringstream out;
    ovAlarm::print(out);
    const std::string text = out.str();
    const std::string head = "ovAlarm {\n  the_signal_counter:  ";
    ASSERT_EQ(text.rfind(head, 0), 0u) << text;
    const int counter = std::stoi(text.substr(head.size()));
    EXPECT_NE(text.find("\n  the_alarm_suspended: 0\n  the_alarm_on:        1\n"
                        "  the_num_bookings:    1\n  the_bookings:        "),
              std::string::npos)
        << text;
    std::ostringstream first;
    first << " {\n    Booking 0 {\n      the_period:      4\n      the_handler:     "
          << reinterpret_cast<const void*>(&handler<0>)
          << "\n      the_next_signal: " << counter + 4 << "\n    }\n";
    EXPECT_NE(text.find(first.str()), std::string::npos) << text;
    EXPECT_NE(text.find("    Booking 9 {\n      FREE\n    }\n  }\n}\n"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 6 + 5 + 9 * 3 + 2) << text;

    EXPECT_EQ(ovAlarm::max_bookings(), 10);
    for (int i = 1; i < 10; ++i)
        ASSERT_EQ(ovAlarm::book_alarm_call(10 + i, the_handlers[i]), ovALARM_BOOKING_OK) << i;
    EXPECT_EQ(ovAlarm::book_alarm_call(1, the_handlers[10]), ovALARM_BOOKING_NO_ROOM);
    EXPECT_EQ(ovAlarm::num_bookings(), 10);

    EXPECT_EQ(ovAlarm::cancel_alarm_call(the_handlers[3]), 1);
    EXPECT_EQ(ovAlarm::num_bookings(), 9);
    ASSERT_EQ(ovAlarm::book_alarm_call(1, the_handlers[10]), ovALARM_BOOKING_OK);

    // The freed entry, the fourth, is the one taken.
    std::ostringstream after;
    ovAlarm::print(after);
    std::ostringstream entry;
    entry << "    Booking 3 {\n      the_period:      1\n      the_handler:     "
          << reinterpret_cast<const void*>(the_handlers[10]) << "\n";
    EXPECT_NE(after.str().find(entry.str()), std::string::npos) << after.str();
}

TEST_F(AlarmTest, AHandlerOfPeriodThreeIsCalledOnEveryThirdTick) {
    ASSERT_EQ(ovAlarm::book_alarm_call(3, &handler<0>), ovALARM_BOOKING_OK);
    ASSERT_EQ(ovAlarm::book_alarm_call(2, &handler<1>), ovALARM_BOOKING_OK);
    const Calls nothing;
    const Calls expected[] = {
        nothing,
        {{1, ovALARM_SIGNAL}},
        {{0, ovALARM_SIGNAL}},
        {{1, ovALARM_SIGNAL}},
        nothing,
        {{0, ovALARM_SIGNAL}, {1, ovALARM_SIGNAL}},
        nothing,
        {{1, ovALARM_SIGNAL}},
        {{0, ovALARM_SIGNAL}},
    };
    for (int t = 0; t < 9; ++t) {
        SCOPED_TRACE(testing::Message() << "tick " << t + 1);
        EXPECT_EQ(seconds_left(&handler<0>), 3 - t % 3);
        ASSERT_TRUE(tick());
        EXPECT_EQ(take_calls(), expected[t]);
    }
    EXPECT_EQ(last_period_ms(), 1000) << "the table ticks once a second";
}

TEST_F(AlarmTest, SuspendingNotifiesEveryBookingAndStopsTime) {
    ASSERT_EQ(ovAlarm::book_alarm_call(2, &handler<0>), ovALARM_BOOKING_OK);
    ASSERT_EQ(ovAlarm::book_alarm_call(3, &handler<1>), ovALARM_BOOKING_OK);
    ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), Calls{});

    ovAlarm::suspend_signals(1);
    EXPECT_EQ(ovAlarm::signals_suspended(), 1);
    EXPECT_EQ(take_calls(), (Calls{{0, ovALARM_SIGNAL_SUSPENDED}, {1, ovALARM_SIGNAL_SUSPENDED}}));
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), Calls{}) << "no signals while suspended";
    EXPECT_EQ(seconds_left(&handler<0>), 1);
    EXPECT_EQ(seconds_left(&handler<1>), 2);

    // Every suspension notifies again; a booking made meanwhile is told at once.
    ovAlarm::suspend_signals(1);
    EXPECT_EQ(take_calls(), (Calls{{0, ovALARM_SIGNAL_SUSPENDED}, {1, ovALARM_SIGNAL_SUSPENDED}}));
    ASSERT_EQ(ovAlarm::book_alarm_call(1, &handler<2>), ovALARM_BOOKING_OK);
    EXPECT_EQ(take_calls(), (Calls{{2, ovALARM_SIGNAL_SUSPENDED}}));

    ovAlarm::suspend_signals(0);
    EXPECT_EQ(ovAlarm::signals_suspended(), 0);
    ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), (Calls{{0, ovALARM_SIGNAL}, {2, ovALARM_SIGNAL}}));
    ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), (Calls{{1, ovALARM_SIGNAL}, {2, ovALARM_SIGNAL}}));
}

TEST_F(AlarmTest, CancellingTheLastBookingStopsTheTicks) {
    EXPECT_EQ(ovAlarm::cancel_alarm_call(nullptr), 0);
    EXPECT_EQ(ovAlarm::cancel_alarm_call(&handler<5>), 0);
    int period = 17, left = 23;
    EXPECT_EQ(ovAlarm::alarm_booking_info(&handler<5>, period, left), 0);
    EXPECT_EQ(ovAlarm::alarm_booking_info(nullptr, period, left), 0);
    EXPECT_EQ(period, 17);
    EXPECT_EQ(left, 23);

    ASSERT_EQ(ovAlarm::book_alarm_call(1, &handler<0>), ovALARM_BOOKING_OK);
    ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), (Calls{{0, ovALARM_SIGNAL}}));
    EXPECT_EQ(ovAlarm::cancel_alarm_call(&handler<0>), 1);
    EXPECT_EQ(ovAlarm::cancel_alarm_call(&handler<0>), 0) << "already gone";

    std::ostringstream before;
    ovAlarm::print(before);
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(tick());
    std::ostringstream after;
    ovAlarm::print(after);
    EXPECT_EQ(take_calls(), Calls{});
    EXPECT_EQ(after.str(), before.str()) << "the counter stands still without bookings";
    EXPECT_NE(after.str().find("  the_alarm_on:        0\n"), std::string::npos);
}

TEST_F(AlarmTest, AHandlerMayCancelAndBookItselfDuringItsCall) {
    ASSERT_EQ(ovAlarm::book_alarm_call(1, &rebooking_handler), ovALARM_BOOKING_OK);
    ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), (Calls{{99, ovALARM_SIGNAL}}));
    int period = 0, left = 0;
    ASSERT_EQ(ovAlarm::alarm_booking_info(&rebooking_handler, period, left), 1);
    EXPECT_EQ(period, 5);
    EXPECT_EQ(left, 5) << "the new booking counts from the tick it was made in";
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), Calls{});
    ASSERT_TRUE(tick());
    EXPECT_EQ(take_calls(), (Calls{{99, ovALARM_SIGNAL}}));
}

TEST(Alarm, EnumerationsPrintTheirNames) {
    const auto name = [](auto value) {
        std::ostringstream out;
        out << value;
        return out.str();
    };
    const auto status = [](int n) { return static_cast<ovAlarmBookingStatus>(n); };
    const auto info = [](int n) { return static_cast<ovAlarmHandlerInfo>(n); };
    const std::pair<std::string, const char*> cases[] = {
        {name(status(0)), "ovALARM_BOOKING_OK"},
        {name(status(1)), "ovALARM_BOOKING_NO_ROOM"},
        {name(status(2)), "ovALARM_BOOKING_BAD_PERIOD"},
        {name(status(3)), "ovALARM_BOOKING_NULL_HANDLER"},
        {name(status(4)), "ovALARM_BOOKING_ALREADY_BOOKED"},
        {name(status(5)), "unknown ovAlarmBookingStatus"},
        {name(status(-1)), "unknown ovAlarmBookingStatus"},
        {name(info(0)), "ovALARM_SIGNAL"},
        {name(info(1)), "ovALARM_SIGNAL_SUSPENDED"},
        {name(info(2)), "unknown ovAlarmHandlerInfo"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.first, c.second);
}

TEST_F(AlarmTest, TheTickerCallsItsFunctionEveryPeriodUntilStopped) {
    the_ticker_calls = 0;
    ov_alarm(2, &count_ticker_call);
    ASSERT_TRUE(tick());
    ASSERT_TRUE(tick());
    EXPECT_EQ(the_ticker_calls, 2);
    EXPECT_EQ(last_period_ms(), 2000);

    // Negative seconds change nothing; a long period is cut to what fits.
    ov_alarm(-3, nullptr);
    ASSERT_TRUE(tick());
    EXPECT_EQ(the_ticker_calls, 3);
    ov_alarm(3000000, &count_ticker_call);
    ASSERT_TRUE(tick());
    EXPECT_EQ(last_period_ms(), 2147483647);

    // A null function is never called; zero stops the calls.
    ov_alarm(1, nullptr);
    ASSERT_TRUE(tick());
    ov_alarm(0, &count_ticker_call);
    ASSERT_TRUE(tick());
    EXPECT_EQ(the_ticker_calls, 4);
}

TEST_F(AlarmTest, ATableThatLostTrackOfItsEntriesAbortsWithAMessage) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int i = 0; i < 10; ++i)
        ASSERT_EQ(ovAlarm::book_alarm_call(1, the_handlers[i]), ovALARM_BOOKING_OK);
    EXPECT_DEATH(
        {
            // The message goes to standard output; the check reads standard error.
            dup2(2, 1);
            ovra_internal::set_alarm_booking_count_for_tests(5);
            ovAlarm::book_alarm_call(1, the_handlers[10]);
        },
        "ovAlarm::book_alarm_call, expected to find a free booking table entry");
}

// The real ticker: a booked handler is called, once a second, without any help.
TEST(AlarmRealTime, TheTickerCallsABookedHandler) {
    ovra_internal::set_ticker_sleep_for_tests(nullptr);
    {
        // A ticker left in the gate by other tests goes back to real sleeps.
        std::lock_guard<std::mutex> lock(gate().mutex);
        gate().open = true;
        gate().changed.notify_all();
    }
    take_calls();
    ASSERT_EQ(ovAlarm::book_alarm_call(1, &handler<7>), ovALARM_BOOKING_OK);
    const auto limit = std::chrono::steady_clock::now() + 30s;
    size_t calls = 0;
    while (calls < 2 && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(10ms);
        std::lock_guard<std::mutex> lock(the_calls_mutex);
        calls = the_calls.size();
    }
    ovAlarm::cancel_alarm_call(&handler<7>);
    EXPECT_GE(calls, 2u);
    for (const auto& call : take_calls())
        EXPECT_EQ(call, std::make_pair(7, ovALARM_SIGNAL));
}
