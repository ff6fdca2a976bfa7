#pragma once

#include "scanning/wifi_scan_test.h"

#include <QStringList>

#include <memory>

namespace scanning {

// What the scan driver tells the results view: which test it shows, when a scan test starts
// and stops, and that the current test has new rows. The view owns the plot selection; the
// driver reads it back when the user picks another test.
class ScanResultsListener {
public:
    virtual ~ScanResultsListener() = default;

    virtual void setCurrentTest(const std::shared_ptr<WiFiScanTest>& test) = 0;
    virtual void reset() = 0;
    virtual void clearView() = 0;
    virtual void updateView(const std::shared_ptr<WiFiScanTest>& test) = 0;
    virtual void scanDidStartedByUser(const std::shared_ptr<WiFiScanTest>& test) = 0;
    virtual void scanDidStoppedByUser() = 0;

    virtual QStringList selectedBssids() const = 0;
    virtual void setSelectedBssids(const QStringList& bssids) = 0;
    virtual bool shouldPlotAll() const = 0;
};

} // namespace scanning
