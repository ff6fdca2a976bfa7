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
    // Invalid for a reading time no date can hold: the TIME cell is then left empty.
    QDateTime date;
};

// Without a snapshot (no interface) the link columns stay empty or zero, as the interface
// generation's format gives them.
QString gpsRow(const GpsFix& fix, const std::optional<platform::InterfaceSnapshot>& link,
               core::InterfaceGeneration generation);

// A number as printf's "%.<decimals>f" writes it in the C locale, exact halves rounded to even.
QString fixedDecimals(double value, int decimals);

} // namespace sensor
