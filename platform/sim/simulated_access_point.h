#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

// One simulated access point (one BSSID): what it is, how strong it usually is, and its beacon.
namespace platform::sim {

enum class SecurityKind { Open, Wep, Wpa, WpaWpa2Mixed, Wpa2, Wpa3, Wpa2Enterprise };
enum class HiddenStyle { Visible, Empty, ZeroFilled };
enum class ApNameKind { None, DeviceNameElement, VendorElement };

struct SimulatedAccessPoint {
    QString bssid;                  // lower case, as Linux prints it
    QByteArray ssid;                // the real name, also for hidden networks
    HiddenStyle hidden = HiddenStyle::Visible;
    int channel = 0;                // primary channel
    int frequencyMhz = 0;
    int widthMhz = 20;
    SecurityKind security = SecurityKind::Open;
    bool ibss = false;
    bool legacyOnly = false;        // no HT: b/g, or a on 5 GHz
    bool vhtCapable = false;
    int spatialStreams = 2;
    bool shortGi = true;
    bool wps = false;
    bool fastRoaming = false;
    std::uint16_t mobilityDomainId = 0;
    ApNameKind apNameKind = ApNameKind::None;
    QByteArray apName;
    bool announcesLoad = false;
    int baseStationCount = 0;
    int baseUtilization255 = 0;
    bool announcesCountry = true;
    int baseSignalDbm = -70;
    int beaconInterval = 100;
    bool transient = false;         // a hotspot or a neighbour's node that comes and goes

    std::uint16_t capabilityInfo = 0;
    QByteArray beaconElements;      // with the SSID as the beacon shows it
    qsizetype bssLoadOffset = -1;
};

// The secret an access point of this name accepts; enterprise networks take it as the password.
QString simulatedPassphrase(const QByteArray& ssid);

} // namespace platform::sim
