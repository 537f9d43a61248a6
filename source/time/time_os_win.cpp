// Windows: the performance counter, and a runtime thread for the alarm's ticker.
#include "time/time_os.h"

#include "common/win32.h"

#include <process.h>

namespace {

// The ticker is started once; its body and argument stay here for the thread to read.
void (*the_body)(void*) = nullptr;
void* the_arg = nullptr;

unsigned __stdcall ticker_start(void*) {
    the_body(the_arg);
    return 0;
}

} // namespace

bool ovra_internal::performance_frequency(int64_t& frequency) {
    LARGE_INTEGER f;
    if (!QueryPerformanceFrequency(&f) || f.QuadPart <= 0)
        return false;
    frequency = f.QuadPart;
    return true;
}

int64_t ovra_internal::performance_counter() {
    LARGE_INTEGER c;
    QueryPerformanceCounter(&c);
    return c.QuadPart;
}

bool ovra_internal::start_ticker_thread(void (*body)(void*), void* arg) {
    the_body = body;
    the_arg = arg;
    // 256 bytes asked; Windows commits at least a page and reserves the program's
    // default, so this is the smallest stack it gives.
    const uintptr_t handle = _beginthreadex(nullptr, 256, &ticker_start, nullptr, 0, nullptr);
    if (!handle)
        return false;
    CloseHandle(reinterpret_cast<HANDLE>(handle));
    return true;
}
