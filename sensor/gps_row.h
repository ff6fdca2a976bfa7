#pragma once

#include "core/interface_generation.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace platform {
struct InterfaceSnapshot;
}

// The log row of one GPS fix joined with the current Wi-Fi link:
// TIME,BSSID,SSID,RSSI,NOISE,CHANNEL,LATITUDE,LONGITUDE,ALTITUDE.
namespace sensor {

struct GpsFix {
    double latitude = 0.0;
    double longitude = 0.0;
    double altitude = 0.0;
    QDateTime date;
};

// Without a snapshot (no interface) the link columns stay empty or zero, as the platform
// generation's format gives them. Follows the platform generation flag.
QString gpsRow(const GpsFix& fix, const std::optional<platform::InterfaceSnapshot>& link,
               core::InterfaceGeneration generation);

// A field quoted the CSV way when it holds a separator, a quote or a line break, so a network
// name from the air cannot shift the columns or split the row.
QString csvField(const QString& text);

} // namespace sensor
