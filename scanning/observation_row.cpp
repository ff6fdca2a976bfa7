#include "scanning/scan_database.h"

#include "core/units.h"

#include "scan/scanner_utils.h"

#include <algorithm>

namespace scanning {

namespace {

const QString hiddenName = QStringLiteral("[Hidden]");

// The oldest generation reports one PHY mode per network, its best: n, then g, b, a.
int oldestPhyModeCode(const platform::ScanResult& network)
{
    constexpr int n = 3, g = 2, b = 1, a = 0;
    if (network.phyModes & platform::PhyN) return n;
    if (network.phyModes & platform::PhyG) return g;
    if (network.phyModes & platform::PhyB) return b;
    if (network.phyModes & platform::PhyA) return a;
    return -1;
}

// The oldest generation numbers security modes differently and knows no mixed or generic
// modes; those map to the strongest mode it can name.
int oldestSecurityModeCode(int current)
{
    switch (current) {
    case platform::SecurityNone: return 0;
    case platform::SecurityWEP: return 1;
    case platform::SecurityWPAPersonal: return 2;
    case platform::SecurityWPAPersonalMixed:
    case platform::SecurityWPA2Personal:
    case platform::SecurityPersonal: return 3;
    case platform::SecurityDynamicWEP: return 4;
    case platform::SecurityWPAEnterprise: return 5;
    default: return 6;
    }
}

} // namespace

ObservationRow ObservationRow::fromScanResult(const platform::ScanResult& network, const QString& channelText,
                                              double secondsSince1970, core::InterfaceGeneration generation)
{
    const bool oldest = core::isOSSnowLeopard(generation);
    ObservationRow row;
    row.generation = generation;
    row.originalChannel = network.channelNumber;
    row.channel = oldest ? channelText : QString::number(network.channelNumber);
    row.phyMode = oldest ? scan::ScannerUtils::stringForPHYMode(oldestPhyModeCode(network), generation)
                         : scan::ScannerUtils::getSupportedPHYModeString(network, generation);
    row.rssi = network.rssiValue;
    row.noise = QString::number(network.noiseMeasurement);
    row.hidden = network.ssid.isEmpty();
    row.ssid = row.hidden ? hiddenName : network.ssid;
    row.bssid = scan::ScannerUtils::normalizeMAC(network.bssid);
    row.singnalToNoise = std::max(network.rssiValue - network.noiseMeasurement, 0);
    if (oldest)
        row.securityMode = QString::number(oldestSecurityModeCode(network.securityMode));
    else
        row.securityMode = network.securityMode == platform::SecurityNone ? QStringLiteral("0") : QStringLiteral("-1");
    row.ibss = network.ibss ? QStringLiteral("1") : QStringLiteral("0");
    row.lastSeen = secondsSince1970;
    row.channelBond = core::bandGhz(oldest ? core::ChannelBand::Unknown : network.channelBand, network.channelNumber);
    row.normalizedSsid = row.hidden ? hiddenName : scan::ScannerUtils::normalizeString(network.ssid);
    return row;
}

} // namespace scanning
