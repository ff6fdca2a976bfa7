#include "app/cli/phone_readings.h"

#include <QString>

#include <cmath>
#include <numbers>

namespace app::cli {
namespace {

constexpr double walkingSpeedMetresPerSecond = 1.4;
constexpr double metresPerDegreeLatitude = 111'320.0;
constexpr double magneticDeclinationDegrees = 3.5;

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

double wrappedDegrees(double degrees)
{
    const double wrapped = std::fmod(degrees, 360.0);
    return wrapped < 0.0 ? wrapped + 360.0 : wrapped;
}

QByteArray number(double value, int decimals) { return QByteArray::number(value, 'f', decimals); }

QByteArray line(qint64 timeMs, int sensorId, std::initializer_list<QByteArray> values)
{
    QByteArray text = QByteArray::number(timeMs) + ',' + QByteArray::number(sensorId);
    for (const QByteArray& value : values)
        text += ',' + value;
    return text;
}

// Initial bearing from one point to the next, so the compass agrees with the track.
double bearingDegrees(const GpxPoint& from, const GpxPoint& to)
{
    const double deltaLongitude = radians(to.longitude - from.longitude);
    const double y = std::sin(deltaLongitude) * std::cos(radians(to.latitude));
    const double x = std::cos(radians(from.latitude)) * std::sin(radians(to.latitude)) -
                     std::sin(radians(from.latitude)) * std::cos(radians(to.latitude)) * std::cos(deltaLongitude);
    return wrappedDegrees(std::atan2(y, x) * 180.0 / std::numbers::pi);
}

} // namespace

PhoneReadings::PhoneReadings(QList<GpxPoint> track) : track_(std::move(track)) {}

std::optional<qint64> PhoneReadings::lineCount() const
{
    if (track_.isEmpty())
        return std::nullopt;
    return track_.size() * 4;
}

QByteArray PhoneReadings::nextLine(qint64 nowMs, double stepSeconds)
{
    const qint64 index = lineIndex_++;
    const double phase = static_cast<double>(index / 4) * 0.7;
    switch (index % 4) {
    case 0:
        return gpsLine(nowMs, stepSeconds);
    case 1:
        return line(roundTimeMs_, 2,
                    {number(headingDegrees_, 2), number(wrappedDegrees(headingDegrees_ + magneticDeclinationDegrees), 2)});
    case 2:
        // Gravity on z with the small sway and bounce of a walking phone.
        return line(roundTimeMs_, 3,
                    {number(0.05 * std::sin(phase), 4), number(0.08 * std::cos(phase), 4),
                     number(-1.0 + 0.12 * std::sin(2.0 * phase), 4)});
    default:
        return line(roundTimeMs_, 4,
                    {number(0.02 * std::cos(phase), 4), number(0.03 * std::sin(phase), 4),
                     number(0.01 * std::sin(0.5 * phase), 4)});
    }
}

QByteArray PhoneReadings::gpsLine(qint64 nowMs, double stepSeconds)
{
    roundTimeMs_ = nowMs;
    if (!track_.isEmpty()) {
        const qsizetype round = static_cast<qsizetype>((lineIndex_ - 1) / 4) % track_.size();
        const GpxPoint& point = track_[round];
        if (round > 0)
            headingDegrees_ = bearingDegrees(track_[round - 1], point);
        if (point.time.isValid())
            roundTimeMs_ = point.time.toMSecsSinceEpoch();
        latitude_ = point.latitude;
        longitude_ = point.longitude;
        altitude_ = point.elevation;
    } else if (lineIndex_ > 1) {
        // A slow meander: the heading drifts so the walk does not run off in a straight line.
        headingDegrees_ = wrappedDegrees(headingDegrees_ + 8.0 * std::sin(static_cast<double>(lineIndex_) / 40.0));
        const double metres = walkingSpeedMetresPerSecond * stepSeconds;
        latitude_ += metres * std::cos(radians(headingDegrees_)) / metresPerDegreeLatitude;
        longitude_ += metres * std::sin(radians(headingDegrees_)) /
                      (metresPerDegreeLatitude * std::cos(radians(latitude_)));
        altitude_ += 0.05 * std::sin(static_cast<double>(lineIndex_) / 25.0);
    }
    return line(roundTimeMs_, 1,
                {number(latitude_, 7), number(longitude_, 7), number(altitude_, 1), QByteArrayLiteral("5.0"),
                 QByteArrayLiteral("8.0")});
}

} // namespace app::cli
