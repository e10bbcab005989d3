#include <stdlib.h>
#include <time.h>

#include <string>

#include <gtest/gtest.h>

#include "nimb/datetime.h"

namespace {

using nimb::DateTime;

const long long HOUR = 3600 * 1000LL;

// Dates are read and written in the local zone: the test fixes it first.
void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

TEST(DateTimeTest, TextAndCalendarInTheLocalZone) {
    setZone("UTC0");
    EXPECT_EQ(DateTime::dateTimeToStr(0, nullptr, 0), "1970/01/01 00:00:00.000");
    const long long jan31 =
        DateTime::strToDateTime("2024/01/31 12:00:00.000", DateTime::DEFAULT_FORMAT);
    EXPECT_EQ(DateTime::dateTimeToStr(DateTime::addMonth(jan31, 1)), "2024/02/29 12:00:00.000");
    EXPECT_EQ(DateTime::dateTimeToStr(DateTime::addYear(DateTime::addMonth(jan31, 1), 1)),
              "2025/02/28 12:00:00.000");
    EXPECT_EQ(DateTime::addHour(jan31, -2), DateTime::addSec(jan31, -7200));
    EXPECT_EQ(DateTime::addMin(jan31, 90), jan31 + 90 * 60000);
    EXPECT_EQ(DateTime::addWeek(jan31, -1), jan31 - 7 * 24 * HOUR);

    // Three hours east of Greenwich, no daylight saving time.
    setZone("XST-3");
    EXPECT_EQ(DateTime::dateTimeToStr(0, std::string("yyyy-MM-dd HH:mm"), 0), "1970-01-01 03:00");
    EXPECT_EQ(DateTime::strToDateTime("1970/01/01 03:00:00.000"), 0);
    EXPECT_EQ(DateTime::diffTimeZone(), 3 * HOUR);
}

}  // namespace
