#include "monitor/network_monitor.h"

#include "core/units.h"
#include "scan/record_builder.h"
#include "scan/scanner_utils.h"

#include <algorithm>

namespace monitor {

NetworkMonitor::NetworkMonitor(scan::ScanedResultInfo selectedNetwork,
                               std::shared_ptr<platform::WirelessInterface> interface, int refreshIntervalSeconds,
                               scanning::TimerSource& timers, std::function<void()> beep, QObject* parent)
    : QObject(parent), selectedNetwork_(std::move(selectedNetwork)),
      normalizedBSSID_(scan::ScannerUtils::normalizeMAC(selectedNetwork_.bssid)), interface_(std::move(interface)),
      refreshInterval_(std::max(refreshIntervalSeconds, 1)), timers_(timers), texts_(initialTexts(selectedNetwork_)),
      beeper_(timers, std::move(beep))
{
    graphPoints_.setRefreshInterval(refreshInterval_);
}

void NetworkMonitor::initWindowToShow()
{
    refreshTimer_ = timers_.scheduledTimer(std::chrono::seconds(refreshInterval_), true,
                                           [this] { scanSelectedNetwork(); });
    graphPoints_.removeAllDataPoint();
    graphPoints_.removeAllScanedDataPoint();
    graphPoints_.setRefreshInterval(refreshInterval_);
}

void NetworkMonitor::close()
{
    if (refreshTimer_)
        refreshTimer_->invalidate();
    refreshTimer_.reset();
    beeper_.switchOff();
    graphPoints_.removeAllDataPoint();
}

QString NetworkMonitor::windowTitle() const
{
    return QStringLiteral("Monitoring - %1").arg(selectedNetwork_.bssid);
}

void NetworkMonitor::scanSelectedNetwork()
{
    // A directed scan that outlasts the interval is not stacked up behind another.
    if (scanning_ || !interface_)
        return;
    scanning_ = true;
    emit rescanStarted();
    const bool oldest = scan::ScannerUtils::isOSSnowLeopard(interface_->generation());
    work_.start([interface = interface_, work = &work_, this, oldest,
                 ssid = selectedNetwork_.network ? selectedNetwork_.network->ssidData : selectedNetwork_.ssid.toUtf8(),
                 bssid = normalizedBSSID_] {
        platform::ScanOutcome outcome =
            oldest ? interface->scanForNetworksWithBSSID(bssid) : interface->scanForNetworksWithSSID(ssid);
        work->runOnOwnerThread([this, outcome = std::move(outcome)] { applyRescan(outcome); }, false);
    });
}

void NetworkMonitor::applyRescan(const platform::ScanOutcome& outcome)
{
    scanning_ = false;
    if (outcome.error) {
        emit rescanFailed(outcome.error->description);
        emit rescanned(false);
        return;
    }
    const bool found = takeFound(outcome.networks);
    if (found)
        beeper_.distanceChanged(selectedNetwork_.rssi);
    emit rescanned(found);
}

bool NetworkMonitor::takeFound(const QList<platform::ScanResult>& networks)
{
    const core::InterfaceGeneration generation = interface_->generation();
    if (scan::ScannerUtils::isOSSnowLeopard(generation)) {
        // The oldest generation's directed scan names the BSSID itself: one answer is the
        // network, and the texts come from the record as it stands.
        if (networks.size() != 1)
            return false;
        texts_.name = selectedNetwork_.ssid;
        texts_.bssid = normalizedBSSID_;
        texts_.phy = scan::ScannerUtils::stringForPHYMode(selectedNetwork_.phyMode, generation);
        texts_.channel = selectedNetwork_.channel;
        texts_.ibss = ibssText(selectedNetwork_.ibss != 0);
    } else {
        const auto match = std::find_if(networks.begin(), networks.end(), [this](const platform::ScanResult& network) {
            return scan::ScannerUtils::normalizeMAC(network.bssid) == normalizedBSSID_;
        });
        if (match == networks.end())
            return false;
        selectedNetwork_.rssi = match->rssiValue;
        // The same floor the table shows for an unmeasured noise, so the two never disagree.
        selectedNetwork_.noise = scan::noiseOrTypicalFloor(
            match->noiseMeasurement, core::bandGhz(match->channelBand, match->channelNumber));
        texts_.name = match->ssid;
        texts_.bssid = normalizedBSSID_;
        texts_.phy = scan::ScannerUtils::getSupportedPHYModeString(*match, generation);
        texts_.channel = channelText(match->channelNumber, core::widthMhz(match->channelWidth));
        texts_.ibss = ibssText(match->ibss);
    }
    texts_.signal = signalText(selectedNetwork_.rssi, selectedNetwork_.noise);
    graphPoints_.addDataPoint(QString::number(selectedNetwork_.rssi));
    graphPoints_.addNoiseDataPoint(selectedNetwork_.noise);
    return true;
}

} // namespace monitor
