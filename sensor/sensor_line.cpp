#include "sensor/sensor_line.h"

#include "scan/scanner_utils.h"

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace sensor {
namespace {

// Latest moment a QDateTime still formats reliably (the end of year 9999).
constexpr quint64 latestMilliseconds = 253402300799999ULL;

qsizetype skipSpaces(const QString& text, qsizetype at)
{
    while (at < text.size() && text.at(at).isSpace())
        ++at;
    return at;
}

bool isDigitAt(const QString& text, qsizetype at)
{
    return at < text.size() && text.at(at) >= u'0' && text.at(at) <= u'9';
}

qsizetype skipDigits(const QString& text, qsizetype at)
{
    while (isDigitAt(text, at))
        ++at;
    return at;
}

} // namespace

double leadingDouble(const QString& text)
{
    const qsizetype start = skipSpaces(text, 0);
    qsizetype at = start;
    if (at < text.size() && (text.at(at) == u'+' || text.at(at) == u'-'))
        ++at;
    const qsizetype integerStart = at;
    at = skipDigits(text, at);
    bool hasDigits = at > integerStart;
    if (at < text.size() && text.at(at) == u'.') {
        const qsizetype fractionStart = at + 1;
        const qsizetype fractionEnd = skipDigits(text, fractionStart);
        if (hasDigits || fractionEnd > fractionStart) {
            hasDigits = true;
            at = fractionEnd;
        }
    }
    if (!hasDigits)
        return 0.0;
    if (at < text.size() && (text.at(at) == u'e' || text.at(at) == u'E')) {
        qsizetype exponent = at + 1;
        if (exponent < text.size() && (text.at(exponent) == u'+' || text.at(exponent) == u'-'))
            ++exponent;
        if (isDigitAt(text, exponent))
            at = skipDigits(text, exponent);
    }
    bool ok = false;
    const double value = text.mid(start, at - start).toLatin1().toDouble(&ok);
    return ok ? value : 0.0;
}

int leadingInt(const QString& text)
{
    const double value = leadingDouble(text);
    // Truncation toward zero, saturated, so huge texts cannot overflow the conversion.
    if (value >= static_cast<double>(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= static_cast<double>(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

quint64 leadingUnsigned(const QString& text)
{
    const QByteArray bytes = text.toLatin1();
    errno = 0;
    const unsigned long long value = std::strtoull(bytes.constData(), nullptr, 0);
    if (errno == ERANGE)
        return std::numeric_limits<quint64>::max();
    return value;
}

std::optional<SensorLine> parseSensorLine(const QString& line)
{
    if (line.isEmpty())
        return std::nullopt;
    QStringList fields = line.split(u',');
    if (fields.size() < 3)
        return std::nullopt;

    const quint64 milliseconds = leadingUnsigned(fields.at(0));
    SensorLine parsed;
    if (milliseconds > latestMilliseconds) {
        parsed.timeText = QString::number(milliseconds);
    } else {
        // Whole milliseconds carry the full resolution; no floating-point division needed.
        // The date only carries the instant to the formatters, which show it in the local
        // zone; held as UTC it needs no local-time conversion (a look at /etc/localtime) here
        // or at each formatting.
        parsed.date = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds), Qt::UTC);
        parsed.timeText = scan::ScannerUtils::formatDate(QStringLiteral("MM-dd-YYYY hh:mm:ss.SSSS"), parsed.date);
    }
    parsed.sensorId = leadingInt(fields.at(1));
    fields.remove(0, 2);
    parsed.values = std::move(fields);
    return parsed;
}

} // namespace sensor
