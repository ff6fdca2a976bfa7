#pragma once

#include "monitor/beep_schedule.h"
#include "monitor/graph_plot_data_source.h"
#include "monitor/monitor_texts.h"
#include "platform/api/wireless_interface.h"
#include "scan/scaned_result_info.h"
#include "scanning/background_work.h"

#include <QObject>

#include <memory>

// Follows one access point closely: every interval a directed scan for its SSID runs off the
// GUI thread, and the result, matched by BSSID, updates the record's signal and noise, the
// texts, the 13-point history and the beep rate. A round that does not find it changes nothing.
namespace monitor {

class NetworkMonitor : public QObject {
    Q_OBJECT
public:
    // refreshIntervalSeconds below 1 counts as 1: a rescan takes about that long anyway.
    NetworkMonitor(scan::ScanedResultInfo selectedNetwork, std::shared_ptr<platform::WirelessInterface> interface,
                   int refreshIntervalSeconds, scanning::TimerSource& timers, std::function<void()> beep,
                   QObject* parent = nullptr);

    // Starts the rescans with empty history; the first one comes one interval later.
    void initWindowToShow();
    // Stops the rescans and audio tracking and forgets the signal history.
    void close();
    bool isOpen() const { return refreshTimer_ != nullptr; }

    // One rescan now, unless one is still in flight.
    void scanSelectedNetwork();
    // The GUI-thread half of a rescan: what the directed scan brought back.
    void applyRescan(const platform::ScanOutcome& outcome);

    QString windowTitle() const;
    int refreshInterval() const { return refreshInterval_; }
    bool isScanning() const { return scanning_; }
    const scan::ScanedResultInfo& selectedNetwork() const { return selectedNetwork_; }
    const MonitorTexts& texts() const { return texts_; }
    const GraphPlotDataSource& graphPointsForMonitor() const { return graphPoints_; }
    BeepSchedule& beeper() { return beeper_; }

signals:
    void rescanStarted();
    // After every round; found is false when the access point was not among the results.
    void rescanned(bool found);
    void rescanFailed(const QString& reason);

private:
    bool takeFound(const QList<platform::ScanResult>& networks);

    scan::ScanedResultInfo selectedNetwork_;
    const QString normalizedBSSID_;
    std::shared_ptr<platform::WirelessInterface> interface_;
    const int refreshInterval_;
    scanning::TimerSource& timers_;
    MonitorTexts texts_;
    GraphPlotDataSource graphPoints_;
    BeepSchedule beeper_;
    std::unique_ptr<scanning::Timer> refreshTimer_;
    bool scanning_ = false;
    // Last, so it is destroyed first: no hand-off reaches a monitor being torn down.
    scanning::BackgroundWork work_;
};

} // namespace monitor
