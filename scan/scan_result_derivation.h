#pragma once

#include "platform/api/scan_result.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace scan {

// What a backend knows of a BSS before decoding: address, frequency, signal, capability bits
// and the raw element bytes. Every backend (live interface, simulator, capture replay) hands
// these facts over and gets the same scan result back, so width, PHY modes, security, SSID
// text, channel and country are derived in exactly one place.
struct RawBssFacts {
    QString bssid;
    std::optional<int> frequencyMhz;   // where the radio heard it, when known
    int signalDbm = 0;                 // 0 when unknown
    int noiseDbm = 0;                  // 0 when unknown
    std::uint16_t capabilityInfo = 0;  // the fixed field of the beacon or probe response
    int beaconInterval = 0;
    QByteArray informationElements;
};

platform::ScanResult deriveScanResult(const RawBssFacts& facts);

// The key managements a BSS offers in its RSN and WPA elements; the security code alone cannot
// tell WPA3-only from transition mode, or name Opportunistic Wireless Encryption.
struct AuthenticationSuites {
    bool psk = false;
    bool sae = false;
    bool enterprise = false;
    bool owe = false;
};
AuthenticationSuites authenticationSuites(const QByteArray& informationElements);

// Helpers exposed for the backends and their tests.
// SSID text: UTF-8 when valid, else one Latin-1 character per byte; "" when empty or all zero.
QString ssidText(const QByteArray& ssidBytes);
std::optional<int> channelForFrequency(int frequencyMhz);

} // namespace scan
