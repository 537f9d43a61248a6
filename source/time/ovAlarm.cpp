#include "ovra/ovAlarm.h"

#include "common/immortal.h"
#include "time/time_os.h"

#include <atomic>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <thread>

namespace {

// The ticker: its state lives as long as its thread, that is, as long as the process.
struct Ticker {
    std::atomic<int> period_ms{1000};
    std::atomic<int> stopped{1};
    std::atomic<void (*)(void)> func{nullptr};
};

void real_sleep(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::atomic<ovra_internal::TickerSleepFunc> the_ticker_sleep{&real_sleep};

void tick_forever(void* arg) {
    Ticker& ticker = *static_cast<Ticker*>(arg);
    for (;;) {
        the_ticker_sleep.load()(ticker.period_ms.load());
        if (ticker.stopped.load())
            continue;
        if (void (*func)(void) = ticker.func.load())
            func();
    }
}

Ticker& ticker() {
    static ovra_internal::Immortal<Ticker> the_ticker;
    static const bool started =
        ovra_internal::start_ticker_thread(&tick_forever, &the_ticker.value);
    (void)started;
    return the_ticker.value;
}

// The booking table and its counters. No lock guards them (a tick under way is not
// waited for); atomics keep each value whole when a tick and a booking meet.
struct Booking {
    std::atomic<int> the_period{0};
    std::atomic<ovAlarmHandler> the_handler{nullptr};
    std::atomic<int> the_next_signal{0};
};

const int kMaxBookings = 10;

struct AlarmTable {
    std::atomic<int> the_signal_counter{0};
    std::atomic<int> the_alarm_suspended{0};
    std::atomic<int> the_alarm_on{0};
    std::atomic<int> the_num_bookings{0};
    Booking the_bookings[kMaxBookings];
};

// Constant-initialised: every entry is free before anything runs.
AlarmTable the_table;

void alarm(bool on) {
    AlarmTable& t = the_table;
    if (on) {
        if (!t.the_alarm_on.load() && !t.the_alarm_suspended.load() &&
            t.the_num_bookings.load() > 0) {
            ov_alarm(1, &ov_alarm_handler);
            t.the_alarm_on.store(1);
        }
    } else if (t.the_alarm_on.load()) {
        ov_alarm(0, &ov_alarm_handler);
        t.the_alarm_on.store(0);
    }
}

Booking* find(ovAlarmHandler handler) {
    if (!handler)
        return nullptr;
    for (Booking& b : the_table.the_bookings)
        if (b.the_handler.load() == handler)
            return &b;
    return nullptr;
}

void make_alarm_calls(ovAlarmHandlerInfo info) {
    AlarmTable& t = the_table;
    for (Booking& b : t.the_bookings) {
        const ovAlarmHandler handler = b.the_handler.load();
        if (!handler)
            continue;
        if (info == ovALARM_SIGNAL_SUSPENDED) {
            handler(info);
            continue;
        }
        const int due = b.the_next_signal.load();
        if (due != t.the_signal_counter.load())
            continue;
        handler(info);
        // A handler that cancelled or booked again during its call keeps what it made.
        if (b.the_handler.load() == handler && b.the_next_signal.load() == due)
            b.the_next_signal.store(due + b.the_period.load());
    }
}

void process_alarm_signal() {
    alarm(false);
    ++the_table.the_signal_counter;
    make_alarm_calls(ovALARM_SIGNAL);
    alarm(true);
}

ovAlarmBookingStatus book(int period, ovAlarmHandler handler) {
    AlarmTable& t = the_table;
    if (!handler)
        return ovALARM_BOOKING_NULL_HANDLER;
    if (period < 1 || period > 86400)
        return ovALARM_BOOKING_BAD_PERIOD;
    if (find(handler))
        return ovALARM_BOOKING_ALREADY_BOOKED;
    if (t.the_num_bookings.load() >= kMaxBookings)
        return ovALARM_BOOKING_NO_ROOM;
    Booking* free_entry = nullptr;
    for (Booking& b : t.the_bookings) {
        if (!b.the_handler.load()) {
            free_entry = &b;
            break;
        }
    }
    if (!free_entry) {
        std::printf("ovAlarm::book_alarm_call, expected to find a free booking table entry\n");
        std::fflush(stdout);
        std::abort();
    }
    free_entry->the_period.store(period);
    free_entry->the_next_signal.store(t.the_signal_counter.load() + period);
    free_entry->the_handler.store(handler);
    ++t.the_num_bookings;
    if (t.the_alarm_suspended.load())
        handler(ovALARM_SIGNAL_SUSPENDED);
    return ovALARM_BOOKING_OK;
}

} // namespace

void ovra_internal::set_alarm_booking_count_for_tests(int count) {
    the_table.the_num_bookings.store(count);
}

ovra_internal::TickerSleepFunc ovra_internal::set_ticker_sleep_for_tests(TickerSleepFunc sleep) {
    return the_ticker_sleep.exchange(sleep ? sleep : &real_sleep);
}

std::ostream& operator<<(std::ostream& stream, ovAlarmBookingStatus status) {
    switch (status) {
    case ovALARM_BOOKING_OK:
        return stream << "ovALARM_BOOKING_OK";
    case ovALARM_BOOKING_NO_ROOM:
        return stream << "ovALARM_BOOKING_NO_ROOM";
    case ovALARM_BOOKING_BAD_PERIOD:
        return stream << "ovALARM_BOOKING_BAD_PERIOD";
    case ovALARM_BOOKING_NULL_HANDLER:
        return stream << "ovALARM_BOOKING_NULL_HANDLER";
    case ovALARM_BOOKING_ALREADY_BOOKED:
        return stream << "ovALARM_BOOKING_ALREADY_BOOKED";
    }
    return stream << "unknown ovAlarmBookingStatus";
}

std::ostream& operator<<(std::ostream& stream, ovAlarmHandlerInfo info) {
    switch (info) {
    case ovALARM_SIGNAL:
        return stream << "ovALARM_SIGNAL";
    case ovALARM_SIGNAL_SUSPENDED:
        return stream << "ovALARM_SIGNAL_SUSPENDED";
    }
    return stream << "unknown ovAlarmHandlerInfo";
}

extern "C" OV_API void ov_alarm(int seconds, void (*func)(void)) {
    if (seconds < 0)
        return;
    Ticker& t = ticker();
    t.func.store(func);
    if (seconds == 0) {
        t.stopped.store(1);
        return;
    }
    const long long ms = static_cast<long long>(seconds) * 1000;
    t.period_ms.store(ms > INT_MAX ? INT_MAX : static_cast<int>(ms));
    t.stopped.store(0);
}

extern "C" OV_API void ov_alarm_handler(void) {
    process_alarm_signal();
}

ovAlarm::ovAlarm() {
    std::printf("ovAlarm::ovAlarm, instances of ovAlarm are prohibited.\n");
}

ovAlarm::~ovAlarm() {
    std::printf("ovAlarm::~ovAlarm, instances of ovAlarm are prohibited.\n");
}

ovAlarmBookingStatus ovAlarm::book_alarm_call(int period, ovAlarmHandler handler) {
    alarm(false);
    const ovAlarmBookingStatus status = book(period, handler);
    alarm(true);
    return status;
}

int ovAlarm::cancel_alarm_call(ovAlarmHandler handler) {
    alarm(false);
    int removed = 0;
    if (Booking* b = find(handler)) {
        b->the_handler.store(nullptr);
        --the_table.the_num_bookings;
        removed = 1;
    }
    alarm(true);
    return removed;
}

int ovAlarm::alarm_booking_info(ovAlarmHandler handler, int& period, int& seconds_left) {
    const Booking* b = find(handler);
    if (!b)
        return 0;
    period = b->the_period.load();
    seconds_left = b->the_next_signal.load() - the_table.the_signal_counter.load();
    return 1;
}

void ovAlarm::suspend_signals(int flag) {
    if (flag) {
        the_table.the_alarm_suspended.store(1);
        alarm(false);
        make_alarm_calls(ovALARM_SIGNAL_SUSPENDED);
    } else {
        the_table.the_alarm_suspended.store(0);
        alarm(true);
    }
}

int ovAlarm::signals_suspended() {
    return the_table.the_alarm_suspended.load();
}

int ovAlarm::num_bookings() {
    return the_table.the_num_bookings.load();
}

int ovAlarm::max_bookings() {
    return kMaxBookings;
}

void ovAlarm::print(std::ostream& stream) {
    const AlarmTable& t = the_table;
    stream << "ovAlarm {\n";
    stream << "  the_signal_counter:  " << t.the_signal_counter.load() << "\n";
    stream << "  the_alarm_suspended: " << t.the_alarm_suspended.load() << "\n";
    stream << "  the_alarm_on:        " << t.the_alarm_on.load() << "\n";
    stream << "  the_num_bookings:    " << t.the_num_bookings.load() << "\n";
    stream << "  the_bookings:        " << static_cast<const void*>(t.the_bookings) << " {\n";
    for (int i = 0; i < kMaxBookings; ++i) {
        const Booking& b = t.the_bookings[i];
        stream << "    Booking " << i << " {\n";
        if (const ovAlarmHandler handler = b.the_handler.load()) {
            stream << "      the_period:      " << b.the_period.load() << "\n";
            stream << "      the_handler:     " << reinterpret_cast<const void*>(handler) << "\n";
            stream << "      the_next_signal: " << b.the_next_signal.load() << "\n";
        } else {
            stream << "      FREE\n";
        }
        stream << "    }\n";
    }
    stream << "  }\n";
    stream << "}\n";
}
