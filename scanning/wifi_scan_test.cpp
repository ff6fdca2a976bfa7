#include "scanning/wifi_scan_test.h"

namespace scanning {

bool WiFiScanTest::addSample(const scan::ScanedResultInfo& record, int intervalSeconds, const QDateTime& now)
{
    auto history = scanedResults.find(record.bssid);
    if (history == scanedResults.end()) {
        scan::ScanedResultInfo first = record;
        first.isSelected = 0;
        scanedResults.insert(record.bssid, {first});
        return true;
    }
    // Rows kept from older scans carry their old time and must not pose as fresh samples.
    const qint64 age = record.lastSeen.isValid() ? record.lastSeen.secsTo(now) : 0;
    if (age > intervalSeconds) {
        return false;
    }
    history->prepend(record);
    if (history->size() > maxHistory) {
        history->removeLast();
    }
    return true;
}

} // namespace scanning
