// Points in time as signed 64-bit milliseconds since the Unix epoch, and
// their text in the machine's local time zone.
#pragma once

#include <string>

#include "nimb/object.h"

namespace nimb {

class DateTime : public Object {
public:
    // The default text format, Qt's date-format letters.
    static const char* const DEFAULT_FORMAT;  // "yyyy/MM/dd HH:mm:ss.zzz"

    // Milliseconds since the epoch now, plus offsetMs.
    static long long now(int offsetMs = 0);

    // ms + offsetMs as local time in format (the default format when null).
    static std::string dateTimeToStr(long long ms, const char* format = nullptr, int offsetMs = 0);
    static std::string dateTimeToStr(long long ms, const std::string& format, int offsetMs = 0);
    // The milliseconds of the local time that text denotes in format; a
    // null text or format counts as empty. What a text that does not match
    // gives is the date-time library's value for an invalid time.
    static long long strToDateTime(const char* text, const char* format = DEFAULT_FORMAT);
    static long long strToDateTime(const std::string& text, const std::string& format);

    // The current offset of local time from UTC in milliseconds, positive
    // east of Greenwich, daylight saving time included.
    static long long diffTimeZone();

    // ms moved by n units of the local calendar; months and years keep the
    // day where possible and clamp to the month's last day.
    static long long addMSec(long long ms, long long n);
    static long long addSec(long long ms, long long n);
    static long long addMin(long long ms, long long n);
    static long long addHour(long long ms, long long n);
    static long long addDay(long long ms, long long n);
    static long long addWeek(long long ms, long long n);
    static long long addMonth(long long ms, int n);
    static long long addYear(long long ms, int n);
};

}  // namespace nimb
