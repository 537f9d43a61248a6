#include "ovra/ovDateArray.h"

#include "procedural/procedural_platform.h"

#include "ut/utString.h"

#include <climits>
#include <cstdio>
#include <ctime>
#include <ostream>

namespace {

void fill(const std::tm& t, int* date) {
    date[0] = t.tm_year + 1900;
    date[1] = t.tm_mon + 1;
    date[2] = t.tm_mday;
    date[3] = t.tm_hour;
    date[4] = t.tm_min;
    date[5] = t.tm_sec;
    date[6] = 0;
}

void convert(int64_t seconds, int utc, int* date) {
    if (!date)
        return;
    std::tm t{};
    if (ovra_proc::to_tm(seconds, utc != 0, t)) {
        fill(t, date);
        return;
    }
    for (int i = 0; i < 7; ++i)
        date[i] = -1;
}

} // namespace

OV_API void ut_date_array(int seconds, int utc, int date[7]) {
    convert(seconds, utc, date);
}

OV_API int ut_date_seconds(int date[7], int utc, int& seconds) {
    seconds = 0;
    // INT_MIN would overflow as the zero-based month.
    if (!date || date[0] < 1970 || date[1] == INT_MIN)
        return 0;
    int dst = 0;
    if (utc == 0) {
        std::tm now{};
        dst = ovra_proc::to_tm(ovra_proc::now_seconds(), false, now) ? now.tm_isdst : -1;
    }
    std::tm t{};
    t.tm_year = date[0] - 1900;
    t.tm_mon = date[1] - 1;
    t.tm_mday = date[2];
    t.tm_hour = date[3];
    t.tm_min = date[4];
    t.tm_sec = date[5];
    // A daylight-saving hour would put the first hour of 1970 before the epoch.
    if (date[0] == 1970 && date[1] == 1 && date[2] == 1 && date[3] == 0 && dst != 0)
        dst = 0;
    t.tm_isdst = dst;
    const int64_t result = ovra_proc::from_local_tm(t);
    if (result == -1 || result < INT_MIN || result > INT_MAX)
        return 0;
    seconds = static_cast<int>(result);
    return 1;
}

OV_API void ut_date_current(int utc, int date[7]) {
    convert(ovra_proc::now_seconds(), utc, date);
}

OV_API int ut_date_current() {
    return static_cast<int>(ovra_proc::now_seconds());
}

// The C runtime's asctime layout, written here: asctime shares one static
// buffer between threads.
OV_API void ut_date_string(int seconds, int utc, utString& text) {
    static const char* const kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm t{};
    if (!ovra_proc::to_tm(seconds, utc != 0, t) || t.tm_wday < 0 || t.tm_wday > 6 || t.tm_mon < 0 ||
        t.tm_mon > 11) {
        text = utString("");
        return;
    }
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n", kDays[t.tm_wday],
                  kMonths[t.tm_mon], t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, 1900 + t.tm_year);
    text = utString(buf);
    text.remove_trailing_chars("\n");
}

OV_API void ut_date_print(std::ostream& out, int date[7]) {
    static const char* const kLabels[] = {
        "year:         ", "month:        ", "day of month: ", "hour:         ",
        "minute:       ", "second:       ", "millisecond:  "};
    out << "ut_date_print {\n";
    for (int i = 0; i < 7; ++i) {
        out << kLabels[i];
        if (date)
            out << date[i];
        out << "\n";
    }
    out << "}\n";
}
