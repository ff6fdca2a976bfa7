#pragma once

#include "core/interface_generation.h"
#include "core/units.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

// One network as the wireless service reports it after a scan: raw facts plus the width, PHY
// and security that every backend derives the same way from the beacon's elements.
namespace platform {

using ChannelBand = core::ChannelBand;
using ChannelWidthCode = core::ChannelWidthCode;

// PHY standards a network supports, independent of the numbering of either interface generation.
enum PhyModeBit : std::uint32_t {
    PhyA = 1u << 0,
    PhyB = 1u << 1,
    PhyG = 1u << 2,
    PhyN = 1u << 3,
    PhyAC = 1u << 4,
};

// Security codes of the current interface generation.
enum SecurityCode : int {
    SecurityNone = 0,
    SecurityWEP = 1,
    SecurityWPAPersonal = 2,
    SecurityWPAPersonalMixed = 3,
    SecurityWPA2Personal = 4,
    SecurityPersonal = 5,
    SecurityDynamicWEP = 6,
    SecurityWPAEnterprise = 7,
    SecurityWPAEnterpriseMixed = 8,
    SecurityWPA2Enterprise = 9,
    SecurityEnterprise = 10,
};

struct ScanResult {
    QByteArray ssidData;        // the SSID element's bytes as received
    QString ssid;               // text form; empty for a hidden network
    QString bssid;              // as the service prints it (not necessarily normalised)
    int channelNumber = 0;
    ChannelBand channelBand = ChannelBand::Unknown;
    ChannelWidthCode channelWidth = ChannelWidthCode::Unknown;
    int rssiValue = 0;          // dBm
    int noiseMeasurement = 0;   // dBm, 0 when the service does not know
    int securityMode = SecurityNone;
    bool secured = false;
    bool ibss = false;
    int beaconInterval = 0;     // time units
    QString countryCode;        // null when the beacon carries no country
    QByteArray informationElementData;
    std::uint32_t phyModes = 0; // PhyModeBit set

    // Answers for a PHY-mode code as the given interface generation numbers them.
    bool supportsPHYMode(int code, core::InterfaceGeneration generation) const;
    // The element bytes as the oldest interface generation names them; same bytes.
    const QByteArray& ieData() const { return informationElementData; }
};

} // namespace platform
