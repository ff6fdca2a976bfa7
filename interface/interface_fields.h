#pragma once

#include "core/interface_generation.h"
#include "platform/api/wireless_types.h"
#include "scan/scaned_result_info.h"

#include <QList>
#include <QMap>
#include <QString>

// The texts of the interface tab, computed from what the interface reports, the record of the
// connected network and the last MCS index the command-line tool printed. The oldest release's
// accessors and texts differ from the later ones; the generation chooses.
namespace connection {

struct InterfaceFields {
    int powerSegment = 1;  // 0 on, 1 off
    bool disconnectEnabled = false;
    QString opMode;
    QString securityMode;
    QString phyMode;
    QString ssid;
    QString bssid;
    QString txRate;
    QString rssi;
    QString noise;
    QString txPower;
    QString countryCode;
    QString supportedChannels;
    QString channel;
    QString supportedPHYModes;
    QString supportedDataRates;
    QString mcsIndex;
    QString streams;
};

// What a refresh writes into the record before the texts are made (later releases): channel
// width, band and channel text from the interface's channel.
void applyLinkToRecord(const platform::InterfaceSnapshot& link, scan::ScanedResultInfo& record);

// Supported channels in ascending order, as the tab reads them when it is selected.
QList<int> sortedSupportedChannels(const platform::InterfaceSnapshot& link);

InterfaceFields interfaceFields(const platform::InterfaceSnapshot& link, const scan::ScanedResultInfo& record,
                                const QList<int>& supportedChannels, const QString& mcsInx,
                                core::InterfaceGeneration generation);

// Where each field's text came from, keyed by the field's name (e.g. "rssiField"): the
// backend's own sources, the command-line tool for the MCS index, the directed scan for the
// connected network's elements.
QMap<QString, QString> fieldSources(const platform::InterfaceSnapshot& link);

// The noise shown for a reading: a zero reading stands for the band's usual floor.
int displayedNoise(int noiseMeasurement, double bandGhz);

// The MCS index the tool printed: the first "MCS:" line searching from the last line back to
// the second; nullopt when there is none.
std::optional<QString> mcsIndexFromToolOutput(const QString& output);

} // namespace connection
