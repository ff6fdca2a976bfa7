#pragma once

#include "scan/scaned_result_info.h"

#include <QString>

// The texts of the monitor window's fields, as each rescan fills them.
namespace monitor {

struct MonitorTexts {
    QString name;
    QString security;
    QString channel;
    QString signal;
    QString bssid;
    QString phy;
    QString ibss;
    QString location;
    QString vendor;
};

// "-45, -92 (47)": signal, noise and the signal-to-noise ratio between them.
QString signalText(int rssi, int noise);
// "36/80MHz".
QString channelText(int channel, int widthMhz);
QString ibssText(bool ibss);
// What the window shows before the first rescan: the record as the opener gave it.
MonitorTexts initialTexts(const scan::ScanedResultInfo& record);

} // namespace monitor
