#include "ovra/ovTime.h"

#include "time/time_os.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr std::chrono::milliseconds the_longest_delay = std::chrono::hours(24 * 365 * 100);

bool real_timer_wait(std::condition_variable& wake, std::unique_lock<std::mutex>& lock,
                     std::chrono::milliseconds delay) {
    // Capped at a century, so that the deadline cannot overflow the clock.
    const auto deadline = std::chrono::steady_clock::now() + std::min(delay, the_longest_delay);
    return wake.wait_until(lock, deadline) == std::cv_status::no_timeout;
}

std::atomic<ovra_internal::TimerWaitFunc> the_timer_wait{&real_timer_wait};

} // namespace

bool ovra_internal::timer_wait(std::condition_variable& wake, std::unique_lock<std::mutex>& lock,
                               std::chrono::milliseconds delay) {
    return the_timer_wait.load(std::memory_order_relaxed)(wake, lock, delay);
}

ovra_internal::TimerWaitFunc ovra_internal::set_timer_wait_for_tests(TimerWaitFunc wait) {
    return the_timer_wait.exchange(wait ? wait : &real_timer_wait);
}

ovCallbackTimer::ovCallbackTimer() : m_delay(0), m_stop(false) {
    // Started last: the loop uses every other member.
    m_thread = std::thread([this] { run(); });
}

ovCallbackTimer::~ovCallbackTimer() {
    {
        // Woken under the lock, so that the wake-up finds the thread waiting.
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
        m_wake.notify_all();
    }
    m_thread.join();
}

void ovCallbackTimer::set_callback(std::chrono::milliseconds delay,
                                   std::function<void()> callback) {
    if (std::this_thread::get_id() == m_thread.get_id()) {
        // From inside a callback: the loop holds the mutex while it runs.
        m_delay = delay;
        m_callback = std::move(callback);
    } else {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_delay = delay;
        m_callback = std::move(callback);
        m_wake.notify_all();
    }
}

void ovCallbackTimer::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || m_callback; });
        if (m_stop)
            return;
        // Any wake-up before the deadline (a new callback, the destructor) starts over,
        // so a new set_callback counts its whole delay from its own call.
        if (ovra_internal::timer_wait(m_wake, lock, m_delay))
            continue;
        std::function<void()> callback = std::move(m_callback);
        m_callback = nullptr;
        m_delay = std::chrono::milliseconds(0);
        try {
            callback();
        } catch (...) {
            // Nobody is there to hear it; the timer stays usable.
        }
    }
}
