/// @file
/// Elapsed time and simple timers.
///
/// `ovHighResTime` is the process-wide high-resolution clock: seconds as a double from
/// the platform's counter, with the interval after which the counter's time wraps round
/// so that `time_diff` stays right across a wrap. `ovStopwatch` adds up ticking
/// intervals of that clock. `ovTimer` measures wall-clock time (`timedp`, seconds since
/// 1970) and busy-waits. `ovCallbackTimer` calls a function once, after a delay, on a
/// thread of its own. `ovChronometer` has a constructor only.
///
/// Error contract: nothing here reports errors or throws, except that constructing an
/// `ovCallbackTimer` raises std::system_error when the system gives no thread, and
/// allocation failure propagates as std::bad_alloc. Null output pointers are skipped;
/// a NaN or negative wait returns at once. An exception thrown by a timer's callback is
/// swallowed on the timer's thread, which goes on serving the timer.
///
/// Clocks: on Windows the counter is QueryPerformanceCounter, one tick of
/// 1 / QueryPerformanceFrequency seconds. On POSIX it is clock_gettime(CLOCK_MONOTONIC)
/// in nanoseconds: increment 1e-9 s, wrap interval 2^63 ticks (about 292 years). Without
/// a counter the clock falls back to `timedp`: increment 0.001 s, wrap interval
/// 2147483.647 s. Either counter is monotonic; `timedp`, and so `ovTimer`, follows the
/// system's wall clock, which an administrator may set back or forward.
///
/// Threads: the clock's state is set once by `initialise`; it is safe to read and to
/// initialise from any thread. An `ovStopwatch` or `ovTimer` is one thread's object (any
/// number of threads may read one that nobody changes). `ovCallbackTimer` locks its own
/// mutex; see the class for what a callback may do.
#pragma once

#include "ovra/ovExport.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <mutex>
#include <thread>

/// The process-wide high-resolution clock. All state and operations are static;
/// constructing an instance only makes sure the clock is initialised.
class OV_API ovHighResTime {
public:
    /// Initialises the clock when that has not been done yet.
    ovHighResTime();
    /// Does nothing.
    ~ovHighResTime();

    /// Finds the counter and its increment and wrap interval; does nothing once done.
    static void initialise();
    /// 1 when the platform's counter is in use, 0 when the clock falls back to timedp.
    static int have_real_time();
    /// Now in seconds: counter × increment, or timedp without a counter. Does not
    /// initialise: construct an ovHighResTime or call initialise first (0.0 before).
    static double time();
    /// t1 - t0, plus the wrap interval when that is negative (t1 taken after a wrap).
    static double time_diff(double t0, double t1);
    /// Seconds after which time() wraps round (0.0 before initialise).
    static double wrap_interval();
    /// Seconds per counter tick (0.0 before initialise).
    static double time_increment();
    /// Writes "ovHighResTime {", the flags, when initialised the wrap interval, the
    /// increment and a fresh time(), then "}", one per line.
    static void print(std::ostream& stream);

protected:
    /// Instances carry nothing worth copying.
    ovHighResTime(const ovHighResTime&);
    /// Instances carry nothing worth assigning.
    ovHighResTime& operator=(const ovHighResTime&);
};

/// How an ovStopwatch starts: 1 stopped, any other value ticking.
enum ovStopwatchState : int {
    ovSTOPWATCH_TICKING = 0, ///< created ticking
    ovSTOPWATCH_STOPPED = 1, ///< created stopped
};

/// Adds up the intervals during which it ticks, on ovHighResTime.
///
/// The total starts at 0.0. `stop` is meant for a ticking watch: on a stopped one it
/// adds the clock's whole reading plus one second to the total.
class OV_API ovStopwatch {
public:
    /// Initialises the clock and starts ticking.
    ovStopwatch();
    /// Initialises the clock; starts ticking unless state is ovSTOPWATCH_STOPPED (1).
    explicit ovStopwatch(ovStopwatchState state);

    /// True while ticking (the start mark is above 0.0).
    bool ticking() const;
    /// Starts an interval now; when already ticking, the running interval is dropped
    /// and the accumulated total kept.
    void start();
    /// Adds the running interval to the total and stops.
    void stop();
    /// Total to 0.0; ticking or not stays as it was.
    void reset();
    /// The total, plus the running interval while ticking.
    double ticking_seconds() const;

private:
    double m_start;
    double m_accumulated;
};

/// Wall-clock elapsed time since construction, and a busy wait.
class OV_API ovTimer {
public:
    /// Starts at timedp's now.
    ovTimer();
    /// Seconds since construction; the whole seconds also split into hours, minutes
    /// and seconds (each output may be null). 3725.9 s gives 1, 2, 5 and returns 3725.9.
    double lapsed(int* hours, int* minutes, int* seconds) const;
    /// Spins on timedp, never sleeping, until at least `seconds` have passed since the
    /// call; returns at once for zero, negative or NaN.
    void wait(double seconds) const;

private:
    double m_start;
};

/// Calls a function once, after a delay, on the timer's own thread.
///
/// Each `set_callback` arms it once and restarts the countdown from the full delay,
/// replacing a callback still pending; an empty function disarms it. A callback runs
/// with the timer's mutex held and may re-arm the timer by calling `set_callback`.
///
/// Destruction stops the thread without calling a pending callback. Destroying the
/// timer from another thread while its callback runs is safe: the destructor waits
/// until the callback has returned. A callback must not destroy its own timer, and must
/// not wait for another thread that calls `set_callback` on the same timer (both would
/// deadlock).
class OV_API ovCallbackTimer {
public:
    /// Starts the timer's thread; std::system_error when the system gives none.
    ovCallbackTimer();
    ovCallbackTimer(const ovCallbackTimer&) = delete;
    ovCallbackTimer& operator=(const ovCallbackTimer&) = delete;
    /// Stops and joins the thread; a pending callback is never called.
    ~ovCallbackTimer();

    /// Arms the timer: `callback` runs once, `delay` after this call (zero or negative:
    /// at once), unless another set_callback comes first.
    void set_callback(std::chrono::milliseconds delay, std::function<void()> callback);

private:
    void run();

    std::thread m_thread;
    std::chrono::duration<int64_t, std::milli> m_delay;
    std::function<void()> m_callback;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stop;
};

/// Reserved for applications: the library gives it a constructor only, which zeroes its
/// fields and initialises ovHighResTime. A derived class may give the fields a meaning.
class OV_API ovChronometer {
public:
    /// Zeroes the fields; initialises the clock.
    ovChronometer();

protected:
    /// Zero; the library gives it no meaning.
    int m_state;
    /// Zeros; the library gives them no meaning.
    int64_t m_marks[3];
};
