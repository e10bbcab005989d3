#include "nimb/datetime.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace nimb {

namespace {

QDateTime local(long long ms) { return QDateTime::fromMSecsSinceEpoch(ms, Qt::LocalTime); }

}  // namespace

const char* const DateTime::DEFAULT_FORMAT = "yyyy/MM/dd HH:mm:ss.zzz";

long long DateTime::now(int offsetMs) { return QDateTime::currentMSecsSinceEpoch() + offsetMs; }

std::string DateTime::dateTimeToStr(long long ms, const char* format, int offsetMs) {
    const QString pattern = QString::fromUtf8(format ? format : DEFAULT_FORMAT);
    // In the C locale: digits and names never follow the user's language, so
    // that logs and stored texts read the same on every machine.
    return QLocale::c().toString(local(ms + offsetMs), pattern).toStdString();
}

std::string DateTime::dateTimeToStr(long long ms, const std::string& format, int offsetMs) {
    return dateTimeToStr(ms, format.c_str(), offsetMs);
}

long long DateTime::strToDateTime(const char* text, const char* format) {
    return QLocale::c()
        .toDateTime(QString::fromUtf8(text ? text : ""), QString::fromUtf8(format ? format : ""))
        .toMSecsSinceEpoch();
}

long long DateTime::strToDateTime(const std::string& text, const std::string& format) {
    return strToDateTime(text.c_str(), format.c_str());
}

long long DateTime::diffTimeZone() {
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime utc = now.toUTC();
    const QDateTime utcFieldsAsLocal(utc.date(), utc.time(), Qt::LocalTime);
    return utcFieldsAsLocal.msecsTo(now);
}

long long DateTime::addMSec(long long ms, long long n) { return local(ms).addMSecs(n).toMSecsSinceEpoch(); }
long long DateTime::addSec(long long ms, long long n) { return local(ms).addSecs(n).toMSecsSinceEpoch(); }
long long DateTime::addMin(long long ms, long long n) { return addSec(ms, n * 60); }
long long DateTime::addHour(long long ms, long long n) { return addSec(ms, n * 3600); }
long long DateTime::addDay(long long ms, long long n) { return local(ms).addDays(n).toMSecsSinceEpoch(); }
long long DateTime::addWeek(long long ms, long long n) { return addDay(ms, n * 7); }
long long DateTime::addMonth(long long ms, int n) { return local(ms).addMonths(n).toMSecsSinceEpoch(); }
long long DateTime::addYear(long long ms, int n) { return local(ms).addYears(n).toMSecsSinceEpoch(); }

}  // namespace nimb
