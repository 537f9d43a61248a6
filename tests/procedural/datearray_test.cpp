#include "ovra/ovDateArray.h"

#include "procedural_test_support.h"

#include "ut/utString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <sstream>
#include <vector>

using proc_test::ScopedEnv;

namespace {

std::vector<int> array_of(int seconds, int utc) {
    std::vector<int> date(7, -9);
    ut_date_array(seconds, utc, date.data());
    return date;
}

} // namespace

TEST(ut_date_array, ConvertsUtcSecondsToArraysAndAsctimeText) {
    struct Case {
        int seconds;
        std::vector<int> expected;
        const char* text;
    } const cases[] = {
        {0, {1970, 1, 1, 0, 0, 0, 0}, "Thu Jan  1 00:00:00 1970"},
        {951782400, {2000, 2, 29, 0, 0, 0, 0}, "Tue Feb 29 00:00:00 2000"},
        {2147483647, {2038, 1, 19, 3, 14, 7, 0}, "Tue Jan 19 03:14:07 2038"},
        {1000000000, {2001, 9, 9, 1, 46, 40, 0}, "Sun Sep  9 01:46:40 2001"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.seconds);
        EXPECT_EQ(array_of(c.seconds, 1), c.expected);
        utString text;
        ut_date_string(c.seconds, 1, text);
        EXPECT_EQ(text, c.text);
    }
    utString local;
    ut_date_string(1000000000, 0, local);
    EXPECT_EQ(local.length(), 24u);
    EXPECT_EQ(local.find('\n'), utString::npos);
    // The Windows runtime converts nothing before the epoch: every element -1.
    const std::vector<int> before = array_of(-1, 1);
    EXPECT_TRUE(before == std::vector<int>({1969, 12, 31, 23, 59, 59, 0}) ||
                before == std::vector<int>(7, -1));
    ut_date_array(0, 1, nullptr);
}

// Local arrays come back to their seconds when they share today's daylight-saving
// state (the conversion takes today's) and fall in 1970 or later locally.
TEST(ut_date_seconds, RoundTripsLocalArraysAndRefusesBefore1970) {
    const std::time_t now = std::time(nullptr);
    const int dst_now = std::localtime(&now)->tm_isdst;
    for (int seconds : {0, 3600, 86400, 86400 * 180, 1000000000, 1700000000, 2147483000}) {
        SCOPED_TRACE(seconds);
        const std::time_t t = seconds;
        const std::tm* local = std::localtime(&t);
        if (local->tm_year < 70 || local->tm_isdst != dst_now)
            continue;
        std::vector<int> date = array_of(seconds, 0);
        int back = -1;
        EXPECT_EQ(ut_date_seconds(date.data(), 0, back), 1);
        EXPECT_EQ(back, seconds);
    }
    int date[7] = {1969, 12, 31, 23, 0, 0, 0};
    int seconds = 77;
    EXPECT_EQ(ut_date_seconds(date, 0, seconds), 0);
    EXPECT_EQ(seconds, 0);
    seconds = 77;
    EXPECT_EQ(ut_date_seconds(nullptr, 0, seconds), 0);
    EXPECT_EQ(seconds, 0);
    int far[7] = {2500, 1, 1, 0, 0, 0, 0};
    EXPECT_EQ(ut_date_seconds(far, 0, seconds), 0) << "beyond the int range";
    EXPECT_EQ(seconds, 0);
}

// The fields are read as local time even for utc, which only chooses no daylight
// saving: in winter (no daylight saving anywhere north) both flags agree.
TEST(ut_date_seconds, UtcFlagReadsTheFieldsAsLocalTime) {
    int date[7] = {2001, 1, 9, 1, 46, 40, 0};
    int seconds = 0;
    ASSERT_EQ(ut_date_seconds(date, 1, seconds), 1);
    const std::time_t t = seconds;
    const std::tm* local = std::localtime(&t);
    if (local->tm_isdst > 0)
        GTEST_SKIP() << "the local zone keeps daylight saving in January";
    EXPECT_EQ(array_of(seconds, 0), std::vector<int>(date, date + 7));
}

TEST(ut_date_current, AgreesWithItself) {
    const int before = ut_date_current();
    int date[7];
    ut_date_current(1, date);
    const int after = ut_date_current();
    EXPECT_GE(date[0], 2024);
    EXPECT_EQ(date[6], 0);
    std::vector<int> lo = array_of(before, 1), hi = array_of(after, 1);
    EXPECT_LE(lo, std::vector<int>(date, date + 7));
    EXPECT_GE(hi, std::vector<int>(date, date + 7));
}

TEST(ut_date_print, OneLabelledLineEach) {
    int date[7] = {2001, 9, 9, 1, 46, 40, 0};
    std::ostringstream out;
    ut_date_print(out, date);
    EXPECT_EQ(out.str(), "ut_date_print {\n"
                         "year:         2001\n"
                         "month:        9\n"
                         "day of month: 9\n"
                         "hour:         1\n"
                         "minute:       46\n"
                         "second:       40\n"
                         "millisecond:  0\n"
                         "}\n");
}
