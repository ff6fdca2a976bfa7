#pragma once

#include "graphs/color_codes_manager.h"
#include "scan/scaned_result_info.h"

#include <QDateTime>

// Records and a colour table shared by the graph model tests.
namespace graphs_test {

inline scan::ScanedResultInfo network(const QString& bssid, int channel, int rssi, int width = 20, long long offset = 0)
{
    scan::ScanedResultInfo r;
    r.bssid = bssid;
    r.ssid = QStringLiteral("net-") + bssid.right(2);
    r.originalChannel = channel;
    r.channel = QString::number(channel);
    r.rssi = rssi;
    r.channelWidth = width;
    r.channelOffset = offset;
    r.channelBond = channel > 14 ? 5.0 : 2.4;
    return r;
}

// A sample seen secondsAgo before a fixed moment.
inline scan::ScanedResultInfo sample(const QString& bssid, int rssi, int secondsAgo)
{
    scan::ScanedResultInfo r = network(bssid, 6, rssi);
    r.lastSeen = QDateTime(QDate(2024, 5, 1), QTime(14, 30, 0)).addSecs(-secondsAgo);
    return r;
}

inline graphs::ColorCodesManager& builtInColours()
{
    static graphs::ColorCodesManager manager{QString::fromLatin1(graphs::ColorCodesManager::resourcePath)};
    return manager;
}

} // namespace graphs_test
