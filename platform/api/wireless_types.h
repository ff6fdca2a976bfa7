#pragma once

#include "platform/api/platform_error.h"
#include "platform/api/scan_result.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

// Values exchanged with the wireless service, numbered as its current generation numbers them.
namespace platform {

enum InterfaceModeCode : int { InterfaceModeNone = 0, InterfaceModeStation = 1, InterfaceModeIBSS = 2, InterfaceModeHostAP = 3 };

// The oldest generation numbers operating modes from Infrastructure = 0.
enum OpModeCode : int { OpModeStation = 0, OpModeIBSS = 1, OpModeHostAP = 2, OpModeMonitor = 3 };

enum InterfaceStateCode : int {
    InterfaceStateInactive = 0,
    InterfaceStateScanning = 1,
    InterfaceStateAuthenticating = 2,
    InterfaceStateAssociating = 3,
    InterfaceStateRunning = 4,
};

enum PhyModeCode : int { PhyModeNone = 0, PhyMode11a = 1, PhyMode11b = 2, PhyMode11g = 3, PhyMode11n = 4, PhyMode11ac = 5 };

// Security reported for an interface that is not associated or whose security is not known.
constexpr int SecurityUnknown = -1;

struct WlanChannel {
    int channelNumber = 0;
    ChannelBand channelBand = ChannelBand::Unknown;
    ChannelWidthCode channelWidth = ChannelWidthCode::Unknown;
    bool operator==(const WlanChannel&) const = default;
};

// Everything an interface reports about itself at one moment.
struct InterfaceSnapshot {
    QString interfaceName;
    bool powerOn = false;
    int interfaceMode = InterfaceModeNone;
    int interfaceState = InterfaceStateInactive;
    QString bssid;          // empty when not associated
    QByteArray ssidData;
    QString ssid;
    int security = SecurityUnknown;
    int activePHYMode = PhyModeNone;
    int rssiValue = 0;      // dBm
    int noiseMeasurement = 0;  // dBm, 0 when unknown
    double transmitRate = 0.0; // Mbps
    int transmitPower = 0;  // mW
    QString countryCode;
    std::optional<WlanChannel> wlanChannel;
    QList<WlanChannel> supportedWLANChannels;
    std::uint32_t supportedPHYModes = 0;  // PhyModeBit set
    // Link details of the current transmit rate, when the service reports them.
    std::optional<int> mcsIndex;
    std::optional<int> spatialStreams;
    std::optional<bool> shortGuardInterval;
    std::optional<int> channelWidthMhz;
    // Where each value came from, keyed by the member's name (e.g. "rssiValue"), for a user who
    // reports a wrong value; a backend fills in what it can say. The key "*" names the source of
    // every value without an entry of its own.
    QMap<QString, QString> sources;

    // The oldest generation's operating mode for the same state.
    int opMode() const;
};

struct ScanOutcome {
    QList<ScanResult> networks;
    MaybeError error;
};

struct NetworkProfile {
    QByteArray ssidData;
    QString ssid;
    int security = SecurityNone;
};

struct EapProfile {
    QString userDefinedName;
    QString ssid;
    QString username;
    QString password;
};

// How an 802.1X join authenticates: the inner method, and the CA certificate the server's is
// checked against (empty: the system's default store).
struct EapOptions {
    enum class Method { PeapMschapv2, TtlsPap };
    Method method = Method::PeapMschapv2;
    QString caCertificatePath;
};

struct EapCredentials {
    QString username;
    QString password;
};

} // namespace platform
