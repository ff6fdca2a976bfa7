#pragma once

#include "core/user_settings.h"

#include "platform/api/scan_result.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <optional>

namespace scan {

// One access point (one BSSID) as seen in the latest scan of a test, with everything derived
// from that observation. A fresh record has null texts, zero numbers and zero flags. The field
// names are the keys the results table binds to and keep their historical spellings.
class ScanedResultInfo {
public:
    QString bssid;
    QString vendorName;
    QString ssid;
    int phyMode = 0;
    int rssi = 0;
    int noise = 0;
    int singnalToNoise = 0;
    int securityMode = 0;
    QString cc;
    std::int8_t ibss = 0;
    QDateTime lastSeen;
    QString supportedPHYModes;
    QString securityModeString;
    QString groupDataChiperEncryption;
    QString pairWiseChiperEncryption;
    std::int64_t channelOffset = 0;
    int channelWidth = 0;
    int originalChannel = 0;
    QString channel;
    double channelBond = 0.0;  // band in GHz; 0 means not known
    std::int8_t shortGIFor24MhzEnabled = 0;
    std::int8_t shortGIFor40MhzEnabled = 0;
    std::shared_ptr<const platform::ScanResult> network;
    std::int64_t isSelected = 0;
    int xIndex = 0;
    std::int8_t isWPS = 0;
    std::optional<QStringList> supportedDataRates;  // absent until a parse or reset makes it
    std::int64_t numberOfStreams = 0;
    QString exportType;
    QString maxDataRate;  // the chosen entry of supportedDataRates, e.g. "54(B)"
    QString protectionMode;
    std::int64_t channelUtilization = 0;
    std::int64_t connectedClientCount = 0;
    QString apname;
    QString bssidTag;
    QString mobilityDomain;

    // A new record with only the element-derived fields; identity, signal and time are left
    // for the caller to fill from the live interface.
    ScanedResultInfo copy() const;
    void resetInformationElementInformation();

    void parseInformationElement(const QByteArray& data);

    float getBaseValueForDataRate(std::int64_t streams) const;
    void populateMaxDataRate();
    QString getMaxDataRate();

    // One export row and its heading; HTML when exportType is "html", CSV otherwise. An HTML
    // row leaves out the columns the user hid in settings.
    QString toString(const core::UserSettings& settings);
    QString getHeader(const core::UserSettings& settings) const;
};

} // namespace scan
