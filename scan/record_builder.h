#pragma once

#include "core/interface_generation.h"
#include "core/user_settings.h"
#include "scan/scaned_result_info.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <memory>

namespace scan {

// One stored observation as the scan driver reads it back: the columns of its grouped query.
struct StoredObservation {
    QString bssid;
    QString ssid;
    int originalChannel = 0;
    QString channel;       // display text; empty means "the channel number"
    QString phyModes;      // PHY letters, e.g. "b/g/n"
    int rssi = 0;
    int noise = 0;
    int singnalToNoise = 0;
    int securityMode = 0;
    int ibss = 0;
    QDateTime lastSeen;
    double channelBond = 0.0;
};

// Turns a stored observation and the live scan result of the same BSSID into a record:
// element decoding, country, channel width, noise default, signal-to-noise, vendor and tag.
// generation: the backend's; settings: where BSSID tags are kept. securityTexts, when given,
// maps BSSID to the security text the driver collected.
ScanedResultInfo buildRecord(const StoredObservation& row,
                             std::shared_ptr<const platform::ScanResult> network,
                             core::InterfaceGeneration generation, const core::UserSettings& settings,
                             const QHash<QString, QString>* securityTexts = nullptr);

// A noise of 0 means the service did not measure it: the typical floor of the band instead
// (-92 dBm at 2.4 GHz, -94 dBm at 5 GHz); a measured value, or an unknown band, stays.
int noiseOrTypicalFloor(int noise, double channelBond);

// The stored observation the driver would write for a scan result, with the SSID text as given.
StoredObservation observationFromScanResult(const platform::ScanResult& network, const QDateTime& seen,
                                            core::InterfaceGeneration generation);

} // namespace scan
