#pragma once

#include "scan/scaned_result_info.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

namespace scanning {

// One named scan test: its label and interval, the rows of its latest refresh, and the sample
// history of every network seen while it ran (newest first, at most maxHistory samples each).
class WiFiScanTest {
public:
    static constexpr int maxHistory = 13;

    QString testLabel = QStringLiteral("Scanning");
    int testDuration = 0;
    int refreshInterval = 0;  // seconds
    bool isTestRunning = false;
    int index = 0;
    QMap<QString, QList<scan::ScanedResultInfo>> scanedResults;  // normalised BSSID -> history
    QString activeBSSID;
    QList<scan::ScanedResultInfo> scanedData1;
    QStringList selectedBSSIDs;
    bool shouldPlotAll = false;

    // Adds a refreshed record to its BSSID's history: a first sample starts the history (not
    // selected); later ones are added at the front only when the record was seen within the
    // interval, and the oldest falls off beyond maxHistory. Returns whether a sample was added.
    bool addSample(const scan::ScanedResultInfo& record, int intervalSeconds, const QDateTime& now);
};

} // namespace scanning
