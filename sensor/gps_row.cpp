#include "sensor/gps_row.h"

#include "platform/api/wireless_types.h"
#include "scan/scanner_utils.h"

namespace sensor {

QString csvField(const QString& text)
{
    static const QString special = QStringLiteral(",\"\r\n");
    bool needsQuotes = false;
    for (const QChar c : text)
        needsQuotes = needsQuotes || special.contains(c);
    if (!needsQuotes)
        return text;
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString gpsRow(const GpsFix& fix, const std::optional<platform::InterfaceSnapshot>& link,
               core::InterfaceGeneration generation)
{
    const QString time = ScannerUtils::formatDate(QStringLiteral("MM-dd-YYYY hh:mm:ss"), fix.date);
    const QString bssid = link ? csvField(link->bssid) : QString();
    const QString ssid = link ? csvField(link->ssid) : QString();
    const QString position = QString::asprintf("%3.5f,%3.5f,%3.1f", fix.latitude, fix.longitude, fix.altitude);

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
    return QStringList{time, bssid, ssid, rssi, noise, channel, position}.join(u',');
}

} // namespace sensor
