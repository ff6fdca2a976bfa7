#pragma once

#include <QDateTime>
#include <QString>

namespace scan {

// Date texts through ICU in the local time zone with a fixed locale, so that file names and
// logs read the same on every machine.
class DateFormat {
public:
    DateFormat() = delete;

    // Unicode date pattern ("YYYY" week-based year, "hh" 12-hour clock, "SSSS" fractional
    // seconds); null for an invalid date.
    static QString format(const QString& pattern, const QDateTime& date);
    // Phrase such as "5 minutes ago" for a moment that lies secondsAgo seconds in the past,
    // in the largest unit that fits.
    static QString relativePhrase(double secondsAgo);
};

} // namespace scan
