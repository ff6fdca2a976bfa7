#pragma once

#include "scan/scaned_result_info.h"

#include <QList>
#include <QString>

namespace scanning {

class WiFiScanTest;

// What the results table tells the graph beside it: which networks to plot, their new samples,
// which curve to emphasise, and when a scan starts or stops. The graph tabs implement it.
class GraphSink {
public:
    virtual ~GraphSink() = default;

    // history: the network's samples from the test, newest first.
    virtual void addPlotToGraph(const QString& bssid, const QList<scan::ScanedResultInfo>& history) = 0;
    virtual void updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid) = 0;
    virtual void removePlotFromGraph(const QString& bssid) = 0;
    virtual void highlightGraph(const QString& bssid, const WiFiScanTest& test) = 0;
    // bssid is the selected row's network, empty when no row is selected.
    virtual void updateSSIDDetailsTab(const QString& bssid, const WiFiScanTest& test) = 0;
    virtual void reloadGraph(const WiFiScanTest& test) = 0;
    virtual void didRemoveAllPlots() = 0;
    virtual void scanDidStartedByUser(const WiFiScanTest& test) = 0;
    virtual void scanDidStoppedByUser() = 0;
};

} // namespace scanning
