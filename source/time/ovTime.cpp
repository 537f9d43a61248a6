#include "ovra/ovTime.h"

#include "ovra/ovHostUser.h"
#include "time/time_os.h"

#include <atomic>
#include <cmath>
#include <ostream>

namespace {

// The clock's state is written once and then only read, but a first use may come from
// any thread: atomics make that safe at the cost of nothing on the read path.
struct ClockState {
    std::atomic<int> have_real_time{0};
    std::atomic<int> initialised{0};
    std::atomic<double> increment{0.0};
    std::atomic<double> wrap{0.0};
};
ClockState the_clock;

std::atomic<bool> the_counter_hidden{false};

double real_wall_seconds() {
    double t = 0.0;
    timedp(&t);
    return t;
}

std::atomic<ovra_internal::WallClockFunc> the_wall_clock{&real_wall_seconds};

void set_up_clock() {
    int64_t frequency = 0;
    if (!the_counter_hidden.load() && ovra_internal::performance_frequency(frequency) &&
        frequency > 0) {
        const double increment = 1.0 / static_cast<double>(frequency);
        the_clock.increment.store(increment);
        // 2^63 ticks.
        the_clock.wrap.store(9223372036854775808.0 * increment);
        the_clock.have_real_time.store(1);
    } else {
        the_clock.increment.store(0.001);
        the_clock.wrap.store(2147483647.0 * 0.001);
        the_clock.have_real_time.store(0);
    }
    the_clock.initialised.store(1, std::memory_order_release);
}

} // namespace

double ovra_internal::wall_seconds() {
    return the_wall_clock.load(std::memory_order_relaxed)();
}

ovra_internal::WallClockFunc ovra_internal::set_wall_clock_for_tests(WallClockFunc clock) {
    return the_wall_clock.exchange(clock ? clock : &real_wall_seconds);
}

void ovra_internal::reinitialise_clock_for_tests(bool without_counter) {
    the_counter_hidden.store(without_counter);
    set_up_clock();
}

ovHighResTime::ovHighResTime() {
    if (!the_clock.initialised.load(std::memory_order_acquire))
        initialise();
}

ovHighResTime::~ovHighResTime() = default;

ovHighResTime::ovHighResTime(const ovHighResTime&) = default;

ovHighResTime& ovHighResTime::operator=(const ovHighResTime&) = default;

void ovHighResTime::initialise() {
    // Two first users at once both find the same values; each store is whole.
    if (!the_clock.initialised.load(std::memory_order_acquire))
        set_up_clock();
}

int ovHighResTime::have_real_time() {
    return the_clock.have_real_time.load(std::memory_order_relaxed);
}

double ovHighResTime::time() {
    if (the_clock.have_real_time.load(std::memory_order_relaxed))
        return static_cast<double>(ovra_internal::performance_counter()) *
               the_clock.increment.load(std::memory_order_relaxed);
    return ovra_internal::wall_seconds();
}

double ovHighResTime::time_diff(double t0, double t1) {
    const double diff = t1 - t0;
    return diff < 0.0 ? diff + wrap_interval() : diff;
}

double ovHighResTime::wrap_interval() {
    return the_clock.wrap.load(std::memory_order_relaxed);
}

double ovHighResTime::time_increment() {
    return the_clock.increment.load(std::memory_order_relaxed);
}

void ovHighResTime::print(std::ostream& stream) {
    const int initialised = the_clock.initialised.load(std::memory_order_acquire);
    stream << "ovHighResTime {\n";
    stream << "the_have_real_time_flag is " << have_real_time() << "\n";
    stream << "the_initialised_flag is " << initialised << "\n";
    if (initialised) {
        stream << "the_wrap_interval is " << wrap_interval() << "\n";
        stream << "the_time_increment is " << time_increment() << "\n";
        stream << "time() returned " << time() << "\n";
    }
    stream << "}\n";
}

ovStopwatch::ovStopwatch() : m_start(-1.0), m_accumulated(0.0) {
    ovHighResTime clock;
    start();
}

ovStopwatch::ovStopwatch(ovStopwatchState state) : m_start(-1.0), m_accumulated(0.0) {
    ovHighResTime clock;
    if (state != ovSTOPWATCH_STOPPED)
        start();
}

bool ovStopwatch::ticking() const {
    return m_start > 0.0;
}

void ovStopwatch::start() {
    m_start = ovHighResTime::time();
}

void ovStopwatch::stop() {
    m_accumulated += ovHighResTime::time_diff(m_start, ovHighResTime::time());
    m_start = -1.0;
}

void ovStopwatch::reset() {
    m_accumulated = 0.0;
}

double ovStopwatch::ticking_seconds() const {
    if (ticking())
        return m_accumulated + ovHighResTime::time_diff(m_start, ovHighResTime::time());
    return m_accumulated;
}

ovTimer::ovTimer() : m_start(ovra_internal::wall_seconds()) {}

double ovTimer::lapsed(int* hours, int* minutes, int* seconds) const {
    const double elapsed = ovra_internal::wall_seconds() - m_start;
    // Whole seconds; a clock set back gives a negative count, split the same way.
    const long long whole = std::fabs(elapsed) < 9.0e18 ? static_cast<long long>(elapsed) : 0;
    if (hours)
        *hours = static_cast<int>(whole / 3600);
    if (minutes)
        *minutes = static_cast<int>(whole % 3600 / 60);
    if (seconds)
        *seconds = static_cast<int>(whole % 60);
    return elapsed;
}

void ovTimer::wait(double seconds) const {
    const double begin = ovra_internal::wall_seconds();
    while (ovra_internal::wall_seconds() - begin < seconds) {
    }
}

ovChronometer::ovChronometer() : m_state(0), m_marks{0, 0, 0} {
    ovHighResTime clock;
}
