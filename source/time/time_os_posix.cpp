// POSIX: the monotonic clock as the counter, and a pthread for the alarm's ticker.
#include "time/time_os.h"

#include <climits>
#include <pthread.h>
#include <time.h>
#include <unistd.h>

namespace {

// The ticker is started once; its body and argument stay here for the thread to read.
void (*the_body)(void*) = nullptr;
void* the_arg = nullptr;

void* ticker_start(void*) {
    the_body(the_arg);
    return nullptr;
}

bool start_detached(size_t stack_size) {
    pthread_attr_t attr;
    if (pthread_attr_init(&attr) != 0)
        return false;
    bool ok = pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED) == 0;
    if (ok && stack_size)
        ok = pthread_attr_setstacksize(&attr, stack_size) == 0;
    pthread_t thread;
    ok = ok && pthread_create(&thread, &attr, &ticker_start, nullptr) == 0;
    pthread_attr_destroy(&attr);
    return ok;
}

} // namespace

bool ovra_internal::performance_frequency(int64_t& frequency) {
    timespec ts;
    if (clock_gettime(CLOCK_MONOTONIC, &ts) != 0)
        return false;
    frequency = 1000000000;
    return true;
}

int64_t ovra_internal::performance_counter() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

bool ovra_internal::start_ticker_thread(void (*body)(void*), void* arg) {
    the_body = body;
    the_arg = arg;
    // The smallest stack the system takes; sysconf knows it where PTHREAD_STACK_MIN is
    // only a lower bound. Should the system want more (static TLS counts against the
    // stack on some), the default stack serves instead.
    const long minimum = sysconf(_SC_THREAD_STACK_MIN);
    const size_t stack = minimum > PTHREAD_STACK_MIN ? static_cast<size_t>(minimum)
                                                     : static_cast<size_t>(PTHREAD_STACK_MIN);
    return start_detached(stack) || start_detached(0);
}
