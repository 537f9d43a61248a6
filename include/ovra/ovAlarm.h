/// @file
/// Periodic calls with a resolution of whole seconds.
///
/// `ov_alarm` is one process-wide ticker: a detached thread that sleeps a period and then
/// calls one function, until it is told to stop. `ovAlarm` keeps a table of up to ten
/// handlers, each with its own period in seconds, and drives them from a one-second
/// tick of that ticker. Handlers can be told that signals are suspended, and the table
/// can be printed for diagnosis.
///
/// Error contract: bookings answer an `ovAlarmBookingStatus`; cancelling and asking
/// answer 0 for a null or unknown handler; nothing throws. The one abort: when the table
/// has no free entry although fewer than ten bookings are counted (only a broken table
/// can get there), `book_alarm_call` writes "ovAlarm::book_alarm_call, expected to find
/// a free booking table entry" to standard output and aborts the process.
///
/// Threads: handlers run on the ticker's thread. There is no lock: booking, cancelling
/// and suspending pause the ticker before they change the table, but a tick already
/// under way is not waited for, so set the table up from one thread, or accept that a
/// change made during a tick may miss or see that tick. The state itself is atomic, so
/// such a race gives one of the two orders, never torn values. A handler may book,
/// cancel and suspend itself: it runs between the tick's pause and its restart.
///
/// The ticker's thread lives until the process ends. On Windows it is started with
/// _beginthreadex and a requested stack of 256 bytes, which Windows rounds up to its
/// own minimum; on POSIX it is a detached thread with the platform's minimum stack
/// (PTHREAD_STACK_MIN, 16 KiB on x86-64 glibc), so handlers should stay small.
#pragma once

#include "ovra/ovExport.h"

#include <iosfwd>

/// The outcome of ovAlarm::book_alarm_call.
enum ovAlarmBookingStatus : int {
    ovALARM_BOOKING_OK = 0,             ///< booked
    ovALARM_BOOKING_NO_ROOM = 1,        ///< the table already holds ten bookings
    ovALARM_BOOKING_BAD_PERIOD = 2,     ///< period outside 1 to 86400 seconds
    ovALARM_BOOKING_NULL_HANDLER = 3,   ///< no handler given
    ovALARM_BOOKING_ALREADY_BOOKED = 4, ///< the handler is in the table already
};

/// Why a handler is called.
enum ovAlarmHandlerInfo : int {
    ovALARM_SIGNAL = 0,           ///< its period has elapsed
    ovALARM_SIGNAL_SUSPENDED = 1, ///< signals are (or remain) suspended
};

/// Writes the enumerator's name, or "unknown ovAlarmBookingStatus".
OV_API std::ostream& operator<<(std::ostream& stream, ovAlarmBookingStatus status);
/// Writes the enumerator's name, or "unknown ovAlarmHandlerInfo".
OV_API std::ostream& operator<<(std::ostream& stream, ovAlarmHandlerInfo info);

/// A booked function; its address is its identity in the table.
typedef void (*ovAlarmHandler)(ovAlarmHandlerInfo info);

/// The booking table. Static operations only; instances are prohibited.
class OV_API ovAlarm {
public:
    /// Books handler to be called every `period` seconds, first `period` seconds from
    /// now. Checked in this order: null handler, period outside 1..86400, handler
    /// already booked, no room. While signals are suspended the new handler is called
    /// at once, on the caller's thread, with ovALARM_SIGNAL_SUSPENDED.
    static ovAlarmBookingStatus book_alarm_call(int period, ovAlarmHandler handler);
    /// 1 when handler was booked and is now removed; 0 for null or unknown handlers.
    static int cancel_alarm_call(ovAlarmHandler handler);
    /// 1 with its period and the seconds to its next call when handler is booked;
    /// otherwise 0 and both outputs untouched.
    static int alarm_booking_info(ovAlarmHandler handler, int& period, int& seconds_left);
    /// Nonzero: pauses the ticker and calls every booked handler, in table order, with
    /// ovALARM_SIGNAL_SUSPENDED (again on every such call). Zero: resumes. Time does not
    /// advance while suspended: each booking keeps its seconds left.
    static void suspend_signals(int flag);
    /// 1 while signals are suspended.
    static int signals_suspended();
    /// The number of bookings.
    static int num_bookings();
    /// The size of the table: 10.
    static int max_bookings();
    /// Writes the counters, the flags and every entry of the table, for diagnosis.
    static void print(std::ostream& stream);

private:
    ovAlarm();
    ~ovAlarm();
};

extern "C" {

/// Makes `func` the ticker's function and calls it every `seconds` seconds on the
/// ticker's thread (started on the first call); 0 stops the calls. A change of period
/// takes effect after the sleep under way. Negative seconds change nothing; periods
/// above 2147483 seconds are cut to 2^31 - 1 milliseconds; a null function is never
/// called.
OV_API void ov_alarm(int seconds, void (*func)(void));

/// The function ovAlarm gives the ticker: one tick of the booking table.
OV_API void ov_alarm_handler(void);
}
