#include "sensor/gps_row.h"

#include "core/csv_cell.h"
#include "platform/api/wireless_types.h"
#include "scan/scanner_utils.h"

#include <array>
#include <charconv>

namespace sensor {

QString fixedDecimals(double value, int decimals)
{
    // Not QString::asprintf: its own formatter rounds exact halves away from zero (432.25 gives
    // 432.3 where printf gives 432.2). to_chars rounds as printf does and ignores the locale.
    std::array<char, 400> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(text.data(), result.ptr - text.data());
}

QString gpsRow(const GpsFix& fix, const std::optional<platform::InterfaceSnapshot>& link,
               core::InterfaceGeneration generation)
{
    const QString time =
        fix.date.isValid() ? scan::ScannerUtils::formatDate(QStringLiteral("MM-dd-YYYY hh:mm:ss"), fix.date) : QString();
    const QString bssid = link ? core::csvCell(link->bssid) : QString();
    const QString ssid = link ? core::csvCell(link->ssid) : QString();
    // The widths of "%3.5f" and "%3.1f" never pad: one decimal alone already makes three characters.
    const QString latitude = fixedDecimals(fix.latitude, 5);
    const QString longitude = fixedDecimals(fix.longitude, 5);
    const QString altitude = fixedDecimals(fix.altitude, 1);

    QString rssi, noise, channel;
    if (core::isOSSnowLeopard(generation)) {
        // The oldest generation hands over number objects: absent values give empty columns.
        if (link) {
            rssi = QString::number(link->rssiValue);
            noise = QString::number(link->noiseMeasurement);
            if (link->wlanChannel)
                channel = QString::number(link->wlanChannel->channelNumber);
        }
    } else {
        rssi = QString::number(link ? link->rssiValue : 0);
        noise = QString::number(link ? link->noiseMeasurement : 0);
        channel = QString::number(link && link->wlanChannel ? link->wlanChannel->channelNumber : 0);
    }
    return QStringList{time, bssid, ssid, rssi, noise, channel, latitude, longitude, altitude}.join(u',');
}

} // namespace sensor
