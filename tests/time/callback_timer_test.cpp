// ovCallbackTimer: counted down on a simulated clock where exact times matter, and once
// for real. Real time is only ever waited for with generous limits.
#include "ovra/ovTime.h"

#include "time/time_os.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace std::chrono_literals;

namespace {

// The simulated clock in milliseconds; the deadline the timer's thread is counting down
// to (-1 when it is not counting), and the lock and condition it waits on meanwhile, so
// that moving the clock can wake it. Moves of the clock are counted, which tells such a
// wake-up from the timer's own notifications.
std::atomic<long long> the_sim_now{0};
std::atomic<long long> the_deadline{-1};
std::atomic<long long> the_moves{0};
std::atomic<long long> the_wait_changes{0};
std::atomic<std::mutex*> the_waiting_mutex{nullptr};
std::atomic<std::condition_variable*> the_waiting_wake{nullptr};

bool simulated_wait(std::condition_variable& wake, std::unique_lock<std::mutex>& lock,
                    std::chrono::milliseconds delay) {
    const long long deadline = the_sim_now.load() + delay.count();
    the_waiting_mutex = lock.mutex();
    the_waiting_wake = &wake;
    the_deadline = deadline;
    bool notified = false;
    while (the_sim_now.load() < deadline) {
        const long long moves = the_moves.load();
        ++the_wait_changes;
        wake.wait(lock);
        if (the_moves.load() == moves) {
            notified = true;
            break;
        }
    }
    the_deadline = -1;
    the_waiting_wake = nullptr;
    the_waiting_mutex = nullptr;
    ++the_wait_changes;
    return notified;
}

// Waits (really, up to a generous limit) until `done` holds.
template <class Pred> bool eventually(Pred done) {
    const auto limit = std::chrono::steady_clock::now() + 30s;
    while (!done()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

class SimulatedTimerTest : public testing::Test {
protected:
    void SetUp() override {
        the_sim_now = 0;
        the_deadline = -1;
        ovra_internal::set_timer_wait_for_tests(&simulated_wait);
    }
    void TearDown() override { ovra_internal::set_timer_wait_for_tests(nullptr); }

    static bool counting_down_to(long long deadline) {
        return eventually([=] { return the_deadline.load() == deadline; });
    }
    // Moves the clock, under the timer's lock while it counts down so the move is seen,
    // and lets the timer's thread take it in before anything else happens.
    static void advance(long long ms) {
        std::mutex* mutex = the_waiting_mutex.load();
        if (!mutex) {
            the_sim_now += ms;
            return;
        }
        long long before = 0;
        {
            std::lock_guard<std::mutex> lock(*mutex);
            before = the_wait_changes.load();
            the_sim_now += ms;
            ++the_moves;
            if (std::condition_variable* wake = the_waiting_wake.load())
                wake->notify_all();
        }
        EXPECT_TRUE(eventually([=] { return the_wait_changes.load() != before; }));
    }
    // Time runs far on and nothing more is called.
    static void expect_calls_stay(const std::atomic<int>& calls, int n, const char* why) {
        advance(1000);
        std::this_thread::sleep_for(5ms);
        EXPECT_EQ(calls, n) << why;
    }
};

} // namespace

TEST_F(SimulatedTimerTest, ANewCallbackReplacesThePendingOneAndFiresOnceAtItsDelay) {
    std::atomic<int> first{0}, second{0};
    ovCallbackTimer timer;
    timer.set_callback(100ms, [&] { ++first; });
    ASSERT_TRUE(counting_down_to(100));
    advance(60);
    timer.set_callback(100ms, [&] { ++second; });
    ASSERT_TRUE(counting_down_to(160)) << "the second delay counts from its own call";
    advance(99);
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(first + second, 0) << "one millisecond early";
    advance(1);
    ASSERT_TRUE(eventually([&] { return second == 1; }));
    expect_calls_stay(second, 1, "one shot per set_callback");
    EXPECT_EQ(first, 0);
}

TEST_F(SimulatedTimerTest, ACallbackMayArmItsTimerAgain) {
    std::atomic<int> calls{0};
    ovCallbackTimer timer;
    std::function<void()> again = [&] {
        if (++calls < 3)
            timer.set_callback(50ms, again);
    };
    timer.set_callback(10ms, again);
    ASSERT_TRUE(counting_down_to(10));
    advance(10);
    ASSERT_TRUE(counting_down_to(60)) << "re-armed from inside, counted from the call";
    advance(50);
    ASSERT_TRUE(counting_down_to(110));
    advance(50);
    ASSERT_TRUE(eventually([&] { return calls == 3; }));
    expect_calls_stay(calls, 3, "no more re-arming");
}

TEST_F(SimulatedTimerTest, AnEmptyCallbackDisarmsTheTimer) {
    std::atomic<int> calls{0};
    ovCallbackTimer timer;
    timer.set_callback(100ms, [&] { ++calls; });
    ASSERT_TRUE(counting_down_to(100));
    timer.set_callback(100ms, nullptr);
    ASSERT_TRUE(eventually([] { return the_deadline.load() == -1; }));
    expect_calls_stay(calls, 0, "disarmed");
    EXPECT_EQ(the_deadline, -1) << "nothing is being counted down";
}

TEST_F(SimulatedTimerTest, DestructionWithACallbackPendingNeverCallsIt) {
    std::atomic<int> calls{0};
    {
        ovCallbackTimer timer;
        timer.set_callback(100ms, [&] { ++calls; });
        ASSERT_TRUE(counting_down_to(100));
    }
    advance(1000);
    EXPECT_EQ(calls, 0);
}

TEST_F(SimulatedTimerTest, ZeroAndNegativeDelaysFireAtOnceAndAThrowingCallbackHarmsNothing) {
    std::atomic<int> calls{0}, thrown{0};
    ovCallbackTimer timer;
    timer.set_callback(0ms, [&] {
        ++thrown;
        throw std::runtime_error("callback failed");
    });
    ASSERT_TRUE(eventually([&] { return thrown == 1; }));
    timer.set_callback(-5ms, [&] { ++calls; });
    ASSERT_TRUE(eventually([&] { return calls == 1; }));
    timer.set_callback(5ms, [&] { ++calls; });
    ASSERT_TRUE(counting_down_to(5));
    advance(5);
    EXPECT_TRUE(eventually([&] { return calls == 2; }));
}

TEST_F(SimulatedTimerTest, DestroyingFromAnotherThreadWaitsForARunningCallback) {
    std::atomic<int> running{0}, gate{0}, finished{0}, finished_when_destroyed{-1};
    auto timer = std::make_unique<ovCallbackTimer>();
    timer->set_callback(0ms, [&] {
        running = 1;
        eventually([&] { return gate == 1; });
        finished = 1;
    });
    ASSERT_TRUE(eventually([&] { return running == 1; }));
    std::thread destroyer([&] {
        timer.reset();
        finished_when_destroyed = finished.load();
    });
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(finished_when_destroyed, -1) << "the destructor returned under a running callback";
    gate = 1;
    destroyer.join();
    EXPECT_EQ(finished_when_destroyed, 1);
}

// The real countdown: only the later of two quick callbacks comes, never before its delay.
TEST(CallbackTimer, FiresOnTheRealClockNoSoonerThanItsDelay) {
    std::atomic<int> first{0}, second{0};
    std::chrono::steady_clock::time_point fired;
    ovCallbackTimer timer;
    timer.set_callback(60s, [&] { ++first; });
    const auto armed = std::chrono::steady_clock::now();
    timer.set_callback(20ms, [&] {
        fired = std::chrono::steady_clock::now();
        ++second;
    });
    ASSERT_TRUE(eventually([&] { return second == 1; }));
    EXPECT_GE(fired - armed, 20ms);
    EXPECT_EQ(first, 0);
}
