#pragma once

#include "monitor/view/monitor_window_panel.h"
#include "monitor/view/samples_window.h"
#include "scan/scaned_result_info.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

class QWidget;

namespace platform {
class WirelessInterface;
}
namespace platform::sound {
class BeepPlayer;
}
namespace scanning {
class TimerSource;
class WiFiScanTest;
}

// The windows that follow one access point: the samples window (one, reused) and any number of
// monitor windows, all beeping through one player, all closed with the main window.
namespace app::desktop {

class MonitorWindows : public QObject {
    Q_OBJECT
public:
    MonitorWindows(scanning::TimerSource& timers, const QString& applicationDir, QWidget* mainWindow,
                   QObject* parent = nullptr);
    ~MonitorWindows() override;

    // The samples of one access point, newest first (empty: nothing to show, nothing opens).
    void showSamples(const QList<scan::ScanedResultInfo>& history);
    // After each scan: the open samples window follows its access point's newest samples.
    void followScan(const scanning::WiFiScanTest& test);
    void scanDidStoppedByUser();
    // A monitor window of its own for the network, rescanning at the scan interval.
    void openMonitor(const scan::ScanedResultInfo& network, std::shared_ptr<platform::WirelessInterface> interface,
                     int refreshInterval);
    void closeAll();

    monitor::view::WiFiShowSamplesWindow* samplesWindow() const { return samples_; }
    int openMonitorCount() const;

signals:
    // Sound cannot be played (no sound server); said once.
    void soundUnavailable(const QString& reason);

private:
    scanning::TimerSource& timers_;
    QWidget* mainWindow_;
    std::unique_ptr<platform::sound::BeepPlayer> player_;
    // Children of the main window, which may be gone before this object.
    QPointer<monitor::view::WiFiShowSamplesWindow> samples_;
    QString samplesBssid_;
    QList<QPointer<monitor::view::MonitorWindowPanel>> monitors_;
};

} // namespace app::desktop
