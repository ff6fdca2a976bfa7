#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

// One phone reading line split into its time, sensor identifier and values. Numbers are read
// leniently (the longest numeric prefix, 0 when there is none), so a damaged field degrades a
// reading instead of dropping it.
namespace sensor {

struct SensorLine {
    // Invalid when the time lies past the year 9999, which no date can hold.
    QDateTime date;
    // The reading's time as "MM-dd-YYYY hh:mm:ss.SSSS"; past the year 9999 the millisecond
    // count as sent, so the reading is still logged with the time it carried.
    QString timeText;
    int sensorId = 0;
    QStringList values;
};

// Nullopt for empty input or fewer than three fields.
std::optional<SensorLine> parseSensorLine(const QString& line);

// Decimal prefix with optional sign, fraction and exponent; independent of the C locale.
double leadingDouble(const QString& text);
int leadingInt(const QString& text);
// Unsigned prefix with base detection: "0x" hexadecimal, a leading "0" octal, else decimal.
// A minus sign wraps around as unsigned arithmetic does.
quint64 leadingUnsigned(const QString& text);

} // namespace sensor
