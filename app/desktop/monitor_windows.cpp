#include "app/desktop/monitor_windows.h"

#include "monitor/view/monitor_window_panel.h"
#include "monitor/view/samples_window.h"
#include "platform/sound/beep_player.h"
#include "scanning/wifi_scan_test.h"

#include <algorithm>

namespace app::desktop {

MonitorWindows::MonitorWindows(scanning::TimerSource& timers, const QString& applicationDir, QWidget* mainWindow,
                               QObject* parent)
    : QObject(parent),
      timers_(timers),
      mainWindow_(mainWindow),
      player_(std::make_unique<platform::sound::BeepPlayer>(platform::sound::BeepPlayer::locateBeepSound(applicationDir))),
      samples_(new monitor::view::WiFiShowSamplesWindow(timers, [player = player_.get()] { player->play(); }, mainWindow))
{
    connect(player_.get(), &platform::sound::BeepPlayer::unavailable, this, &MonitorWindows::soundUnavailable);
}

MonitorWindows::~MonitorWindows() { closeAll(); }

void MonitorWindows::showSamples(const QList<scan::ScanedResultInfo>& history)
{
    if (history.isEmpty() || !samples_)
        return;
    samplesBssid_ = history.first().bssid;
    samples_->showSamples(history, history.first().ssid);
}

void MonitorWindows::followScan(const scanning::WiFiScanTest& test)
{
    if (!samples_ || !samples_->isVisible() || samplesBssid_.isEmpty())
        return;
    const QList<scan::ScanedResultInfo> history = test.scanedResults.value(samplesBssid_);
    if (!history.isEmpty())
        samples_->updateSamples(history);
}

void MonitorWindows::scanDidStoppedByUser()
{
    if (samples_)
        samples_->scanDidStoppedByUser();
}

void MonitorWindows::openMonitor(const scan::ScanedResultInfo& network,
                                 std::shared_ptr<platform::WirelessInterface> interface, int refreshInterval)
{
    // One window a network: asking again brings the open one forward.
    for (const QPointer<monitor::view::MonitorWindowPanel>& open : std::as_const(monitors_)) {
        if (open && open->networkMonitor().selectedNetwork().bssid == network.bssid) {
            open->raise();
            open->activateWindow();
            return;
        }
    }
    auto* panel = new monitor::view::MonitorWindowPanel(network, std::move(interface), refreshInterval, timers_,
                                                        [player = player_.get()] { player->play(); }, QString(),
                                                        mainWindow_);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    monitors_.removeAll(nullptr);
    monitors_.append(panel);
    panel->initWindowToShow();
}

void MonitorWindows::closeAll()
{
    for (const QPointer<monitor::view::MonitorWindowPanel>& open : std::as_const(monitors_)) {
        if (open)
            open->close();
    }
    monitors_.clear();
    if (samples_)
        samples_->close();
}

int MonitorWindows::openMonitorCount() const
{
    return static_cast<int>(std::count_if(monitors_.cbegin(), monitors_.cend(),
                                          [](const QPointer<monitor::view::MonitorWindowPanel>& open) { return !open.isNull(); }));
}

} // namespace app::desktop
