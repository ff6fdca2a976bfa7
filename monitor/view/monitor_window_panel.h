#pragma once

#include "monitor/network_monitor.h"

#include <QWidget>

#include <functional>
#include <memory>

class QFormLayout;
class QLabel;
class QProgressBar;
namespace plot::widget {
class PlotView;
}

// The monitor window of one access point: its fields, its signal and noise over the last twelve
// intervals and the audio-tracking switch, refreshed by each rescan.
namespace monitor::view {

class AudioTrackingButton;

class MonitorWindowPanel : public QWidget {
    Q_OBJECT
public:
    // location: where the user is, as the opener knows it; parent: the window this one stays above.
    MonitorWindowPanel(scan::ScanedResultInfo selectedNetwork, std::shared_ptr<platform::WirelessInterface> interface,
                       int refreshInterval, scanning::TimerSource& timers, std::function<void()> beep,
                       const QString& location = {}, QWidget* parent = nullptr);
    ~MonitorWindowPanel() override;

    // Starts the rescans with an empty graph and shows the window.
    void initWindowToShow();

    const NetworkMonitor& networkMonitor() const { return monitor_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QLabel* addField(QFormLayout* form, const QString& caption, const char* objectName);
    void showTexts();
    void showGraph();

    NetworkMonitor monitor_;
    QLabel* monitorNetworkName_;
    QLabel* monitorNetworkSecurity_;
    QLabel* monitorNetworkChannel_;
    QLabel* monitorNetworkSignal_;
    QLabel* monitorNetworkBSSID_;
    QLabel* monitorNetworkPHY_;
    QLabel* monitorNetworkIBSS_;
    QLabel* monitorLocation_;
    QLabel* monitorVendorName_;
    QProgressBar* monitorSpinner_;
    plot::widget::PlotView* graphHost_;
    AudioTrackingButton* beeperSwitch_;
};

} // namespace monitor::view
