#include "interface/interface_info_controller.h"

#include "interface/log_category.h"
#include "scan/scanner_utils.h"

namespace connection {
namespace {

using scan::ScannerUtils;

// The directed scan's answer for the connected BSSID, parsed into a copy of the record;
// nothing when the interface is gone or the network was not heard.
std::optional<scan::ScanedResultInfo> scanForNetwork(const std::shared_ptr<platform::WirelessInterface>& interface,
                                                     scan::ScanedResultInfo record)
{
    if (!interface)
        return std::nullopt;
    const core::InterfaceGeneration generation = interface->generation();
    const QString bssid = interface->snapshot().bssid;
    QList<platform::ScanResult> results;
    if (core::isOSSnowLeopard(generation)) {
        const platform::ScanOutcome outcome = interface->scanForNetworksWithBSSID(bssid);
        if (outcome.error)
            qCInfo(lcConnection).noquote() << outcome.error->description;
        results = outcome.networks;
    } else {
        const platform::ScanOutcome outcome = interface->scanForNetworksWithSSID({});
        results = (outcome.error || outcome.networks.isEmpty()) ? interface->cachedScanResults() : outcome.networks;
    }
    if (!ScannerUtils::hasValue(bssid))
        return std::nullopt;
    const QString wanted = ScannerUtils::normalizeMAC(bssid);
    for (const platform::ScanResult& network : results) {
        if (ScannerUtils::normalizeMAC(network.bssid) != wanted)
            continue;
        if (!core::isOSSnowLeopard(generation)) {
            const int width = static_cast<int>(network.channelWidth);
            record.channelWidth = width == 3 ? 80 : width == 4 ? 160 : width * 20;
        }
        record.parseInformationElement(network.ieData());
        if (!core::isOSSnowLeopard(generation)) {
            record.populateMaxDataRate();
            if (record.supportedDataRates && !record.supportedDataRates->isEmpty())
                record.maxDataRate = record.supportedDataRates->last();
            record.supportedPHYModes = ScannerUtils::getSupportedPHYModeString(network, generation);
        }
        return record;
    }
    return std::nullopt;
}

} // namespace

InterfaceInfoController::InterfaceInfoController(std::shared_ptr<platform::WirelessInterface> interface,
                                                 scanning::TimerSource& timers, platform::CommandRunner& commands,
                                                 QString toolCommand, ConnectedNetworkSource connectedNetwork,
                                                 QObject* parent)
    : QObject(parent), interface_(std::move(interface)), timers_(timers), commands_(commands),
      toolCommand_(std::move(toolCommand)), connectedNetwork_(std::move(connectedNetwork))
{
}

InterfaceInfoController::~InterfaceInfoController()
{
    work_.shutDown();
    work_.waitForDone();
}

void InterfaceInfoController::interfaceSelected(std::shared_ptr<platform::WirelessInterface> interface)
{
    pauseTimer();
    interface_ = std::move(interface);
    if (tabShown_)
        resetInferfaceInfoDetails();
    resumeTimer();
}

void InterfaceInfoController::startInterfaceTabGraphRefresh()
{
    if (refreshTimer_)
        return;
    refreshTimer_ = timers_.scheduledTimer(refreshInterval, true, [this] { updateInterfaceInfoTab(); });
}

void InterfaceInfoController::stopInterfaceTabGraphRefresh()
{
    if (refreshTimer_)
        refreshTimer_->invalidate();
    refreshTimer_.reset();
}

void InterfaceInfoController::pauseTimer()
{
    if (!refreshTimer_)
        return;
    pauseStart_ = timers_.now();
    previousFireDate_ = refreshTimer_->fireDate();
    refreshTimer_->setFireDate(scanning::TimerSource::distantFuture());
}

void InterfaceInfoController::resumeTimer()
{
    if (!refreshTimer_ || !pauseStart_.isValid())
        return;
    const qint64 pausedMs = pauseStart_.msecsTo(timers_.now());
    refreshTimer_->setFireDate(previousFireDate_.addMSecs(pausedMs));
    pauseStart_ = {};
    previousFireDate_ = {};
}

void InterfaceInfoController::setTabShown(bool shown)
{
    tabShown_ = shown;
    if (shown)
        resetInferfaceInfoDetails();
    else
        emit reportItemVisibleChanged(false);
}

void InterfaceInfoController::resetInferfaceInfoDetails()
{
    emit reportItemVisibleChanged(true);
    const platform::InterfaceSnapshot link = interface_ ? interface_->snapshot() : platform::InterfaceSnapshot{};
    supportedChannelsArray_ = sortedSupportedChannels(link);
    if (connectedNetwork_) {
        if (std::optional<scan::ScanedResultInfo> connected = connectedNetwork_())
            currentNetworkDetails_ = *connected;
    }
    if (!(link.powerOn && ScannerUtils::hasValue(link.bssid)))
        currentNetworkDetails_.resetInformationElementInformation();
    if (!isToolTimerPending())
        executeAirPortCommand();
    updateInterfaceInfoTab();
}

void InterfaceInfoController::updateInterfaceInfoTab()
{
    const platform::InterfaceSnapshot link = interface_ ? interface_->snapshot() : platform::InterfaceSnapshot{};
    const core::InterfaceGeneration generation =
        interface_ ? interface_->generation() : core::InterfaceGeneration::Later;
    const bool associated = link.powerOn && ScannerUtils::hasValue(link.bssid);
    if (tabShown_) {
        if (!core::isOSSnowLeopard(generation))
            applyLinkToRecord(link, currentNetworkDetails_);
        currentNetworkDetails_.ssid = link.ssid;
        fields_ = interfaceFields(link, currentNetworkDetails_, supportedChannelsArray_, mcsInx_, generation);
        fieldSources_ = connection::fieldSources(link);
        currentNetworkDetails_.vendorName = ScannerUtils::vendorNameForMAC(link.bssid);
        signalToNoise_ = associated ? std::optional<int>(link.rssiValue - link.noiseMeasurement) : std::nullopt;
        if (signalToNoise_)
            currentNetworkDetails_.singnalToNoise = *signalToNoise_;
    }

    const InterfaceSample sample = sampleFor(link, generation, timers_.now());
    if (isPlaceholderSample(link, generation)) {
        currentNetworkDetails_.channelBond = 0;
        currentNetworkDetails_.channelWidth = 0;
    } else if (currentNetworkDetails_.numberOfStreams == 0 && connectedNetwork_) {
        // The scanner knows the connected network's elements before the directed scan does.
        if (std::optional<scan::ScanedResultInfo> connected = connectedNetwork_()) {
            connected->singnalToNoise = currentNetworkDetails_.singnalToNoise;
            currentNetworkDetails_ = *connected;
        }
    }
    samples_.add(sample);
    emit samplesChanged();
    if (tabShown_)
        emit fieldsChanged();
}

void InterfaceInfoController::executeAirPortCommand()
{
    if (toolRunning_)
        return;
    toolRunning_ = true;
    toolTimer_.reset();
    work_.start([this, interface = interface_, record = currentNetworkDetails_, command = toolCommand_] {
        const platform::CommandOutput output = commands_.runShellCommand(command);
        const QString errorText = QString::fromUtf8(output.standardError);
        if (!errorText.isEmpty())
            qCInfo(lcConnection).noquote() << QStringLiteral("error is %1").arg(errorText);
        const std::optional<QString> mcs = mcsIndexFromToolOutput(QString::fromUtf8(output.standardOutput));
        const std::optional<scan::ScanedResultInfo> scanned = scanForNetwork(interface, record);
        work_.runOnOwnerThread(
            [this, mcs, scanned, interface] {
                toolRunning_ = false;
                if (mcs)
                    mcsInx_ = *mcs;
                // A switch of interface during the run makes its answer about another link.
                if (scanned && interface == interface_)
                    applyElementDetails(*scanned);
                scheduleTimerOnMainThread();
            },
            false);
    });
}

void InterfaceInfoController::applyElementDetails(const scan::ScanedResultInfo& scanned)
{
    scan::ScanedResultInfo& r = currentNetworkDetails_;
    r.shortGIFor24MhzEnabled = scanned.shortGIFor24MhzEnabled;
    r.shortGIFor40MhzEnabled = scanned.shortGIFor40MhzEnabled;
    r.supportedPHYModes = scanned.supportedPHYModes;
    r.maxDataRate = scanned.maxDataRate;
    r.supportedDataRates = scanned.supportedDataRates;
    r.isWPS = scanned.isWPS;
    r.groupDataChiperEncryption = scanned.groupDataChiperEncryption;
    r.pairWiseChiperEncryption = scanned.pairWiseChiperEncryption;
    r.channelWidth = scanned.channelWidth;
    r.channelOffset = scanned.channelOffset;
    r.numberOfStreams = scanned.numberOfStreams;
    r.apname = scanned.apname;
    r.connectedClientCount = scanned.connectedClientCount;
    r.protectionMode = scanned.protectionMode;
    r.channelUtilization = scanned.channelUtilization;
    r.mobilityDomain = scanned.mobilityDomain;
    r.cc = scanned.cc;
}

void InterfaceInfoController::scheduleTimerOnMainThread()
{
    if (!tabShown_) {
        toolTimer_.reset();
        return;
    }
    toolTimer_ = timers_.scheduledTimer(toolInterval, false, [this] { executeAirPortCommand(); });
}

void InterfaceInfoController::changePower(bool on)
{
    work_.start([this, interface = interface_, on] {
        const platform::MaybeError error = interface ? interface->setPower(on) : platform::MaybeError{};
        work_.runOnOwnerThread(
            [this, error] {
                if (error)
                    emit actionFailed(*error);
                else
                    currentNetworkDetails_.resetInformationElementInformation();
                updateInterfaceInfoTab();
            },
            false);
    });
}

void InterfaceInfoController::disconnect()
{
    mcsInx_ = QStringLiteral("");
    currentNetworkDetails_.resetInformationElementInformation();
    work_.start([this, interface = interface_] {
        if (interface)
            interface->disassociate();
        work_.runOnOwnerThread([this] { updateInterfaceInfoTab(); }, false);
    });
}

} // namespace connection
