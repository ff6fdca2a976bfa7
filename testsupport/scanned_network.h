#pragma once

#include "core/units.h"
#include "platform/api/scan_result.h"

#include <QString>

namespace testsupport {

// A network as a scan reports it, with only what the scanner tests look at: identity, channel
// (its band follows), signal and a fixed noise floor.
inline platform::ScanResult scannedNetwork(const QString& bssid, const QString& ssid, int channel, int rssi)
{
    platform::ScanResult result;
    result.bssid = bssid;
    result.ssid = ssid;
    result.channelNumber = channel;
    result.channelBand = core::bandForChannel(channel);
    result.rssiValue = rssi;
    result.noiseMeasurement = -95;
    return result;
}

} // namespace testsupport
