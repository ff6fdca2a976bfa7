// One scan of the driver: the platform call on a background thread, then storing, reading back
// and the histories on the owner thread.
#include "scanning/scan_test_driver.h"

#include "scan/record_builder.h"
#include "core/units.h"
#include "scan/scanner_utils.h"

#include <QDebug>

#include <algorithm>
#include <exception>

void ScanTestDriver::startBackgroundScan()
{
    pool_.start([this] { performScanningInBackground(); });
}

void ScanTestDriver::performScanningInBackground()
{
    try {
        runOnOwnerThread([this] { startRefreshAnimation(); }, true);
        if (currentInterface_->snapshot().interfaceState == platform::InterfaceStateScanning) {
            scanInProgress = false;
            return;
        }
        runOnOwnerThread([this] { setMessageLabel(QString()); }, false);

        platform::ScanOutcome outcome = currentInterface_->scanForNetworksWithSSID(QByteArray());
        QList<platform::ScanResult> networks = outcome.networks;
        if (!core::isOSSnowLeopard(currentInterface_->generation())) {
            // The service often answers a scan it could not run, or an empty one, from what it
            // heard recently; that beats showing nothing.
            if (outcome.error) {
                qWarning().noquote() << QStringLiteral("localizedDescription --- %1").arg(outcome.error->description);
                networks = currentInterface_->cachedScanResults();
            } else if (networks.isEmpty()) {
                networks = currentInterface_->cachedScanResults();
            }
        }

        if (outcome.error && networks.isEmpty()) {
            // Scans fail now and then for no lasting reason; only a run of three is worth a word.
            if (consecutiveScanFailures != 2) {
                ++consecutiveScanFailures;
            } else {
                consecutiveScanFailures = 0;
                const QString message = QStringLiteral("Unable to perform wireless scanning. Reason (%1, code:%2 ).")
                                            .arg(outcome.error->description)
                                            .arg(outcome.error->code);
                runOnOwnerThread([this, message] { setMessageLabel(message); }, false);
            }
            runOnOwnerThread([this] { stopRefreshAnimation(); }, true);
            scanInProgress = false;
            return;
        }

        consecutiveScanFailures = 0;
        runOnOwnerThread([this, networks] { updateViewOfScanData(networks); }, true);
        if (shuttingDown_)
            scanInProgress = false;
    } catch (const std::exception& error) {
        qWarning().noquote() << QStringLiteral("performScanningInBackground : %1").arg(QString::fromUtf8(error.what()));
        scanInProgress = false;
    }
}

QString ScanTestDriver::channelTextFor(const QString& bssid, int channelNumber)
{
    const QString number = QString::number(channelNumber);
    const auto stored = bssidToChannelMapping_.constFind(bssid);
    if (stored == bssidToChannelMapping_.cend())
        return number;
    // The tool's text is kept only while it still describes the channel the service reports;
    // "1" must not keep "11,+1".
    if (*stored == number || stored->startsWith(number + QLatin1Char(',')))
        return *stored;
    bssidToChannelMapping_.erase(stored);
    return number;
}

QList<ScanedResultInfo> ScanTestDriver::recordsFromRows(const QList<StoredObservation>& rows)
{
    QList<ScanedResultInfo> records;
    records.reserve(rows.size());
    for (const StoredObservation& row : rows) {
        ScanedResultInfo record = buildRecord(row, bssidToCWNetworkMapping_.value(row.bssid), currentInterface_->generation(),
                                              settings_, &bssidSecurityTypeMapping_);
        rememberAccessPointName(record);
        if (!allSSIDs_.contains(record.ssid))
            allSSIDs_.append(record.ssid);
        const QString channel = QString::number(record.originalChannel);
        if (!allChannels_.contains(channel))
            allChannels_.append(channel);
        records.append(std::move(record));
    }
    return records;
}

void ScanTestDriver::rememberAccessPointName(const ScanedResultInfo& record)
{
    if (!ScannerUtils::hasValue(record.apname))
        return;
    const auto saved = savedAccessPointNames_.constFind(record.bssid);
    if (saved != savedAccessPointNames_.cend() && *saved == record.apname)
        return;
    savedAccessPointNames_.insert(record.bssid, record.apname);
    settings_.setValue(record.bssid + QStringLiteral("-apname"), record.apname);
}

ScanedResultInfo ScanTestDriver::connectedNetworkRecord(const platform::InterfaceSnapshot& link,
                                                        const WiFiScanTest& test, const QDateTime& now) const
{
    const QString bssid = ScannerUtils::normalizeMAC(link.bssid);
    const QList<ScanedResultInfo> history = test.scanedResults.value(bssid);
    ScanedResultInfo record = history.size() >= 2 ? history.first().copy() : ScanedResultInfo();
    record.bssid = bssid;
    record.ssid = link.ssid;
    record.rssi = link.rssiValue;
    record.noise = link.noiseMeasurement;
    record.singnalToNoise = std::max(0, link.rssiValue - link.noiseMeasurement);
    record.phyMode = link.activePHYMode;
    record.securityMode = link.security;
    record.securityModeString =
        bssidSecurityTypeMapping_.value(bssid, ScannerUtils::stringForSecurityMode(link.security, currentInterface_->generation()));
    if (link.wlanChannel) {
        record.originalChannel = link.wlanChannel->channelNumber;
        record.channel = QString::number(link.wlanChannel->channelNumber);
        record.channelBond = core::bandGhz(link.wlanChannel->channelBand, link.wlanChannel->channelNumber);
        record.channelWidth = core::widthMhz(link.wlanChannel->channelWidth);
    }
    record.cc = link.countryCode;
    record.lastSeen = now;
    record.network = bssidToCWNetworkMapping_.value(bssid);
    record.vendorName = ScannerUtils::vendorNameForMAC(bssid);
    const QString tag = settings_.value(bssid).toString();
    record.bssidTag = ScannerUtils::hasValue(tag) ? tag : QStringLiteral("");
    return record;
}

void ScanTestDriver::updateCountLabel(int shown, bool merge, std::optional<int> matchCount)
{
    if (merge) {
        const int hidden = matchCount ? *matchCount - shown : 0;
        const int merged = matchCount && *matchCount > 0 && hidden > 0 ? hidden : 0;
        countLabel_ = QStringLiteral("%1 of %2 shown (merged %3)").arg(shown).arg(totalRecords_).arg(merged);
    } else {
        countLabel_ = QStringLiteral("%1 of %2 shown").arg(shown).arg(totalRecords_);
    }
    emit countLabelChanged(countLabel_);
}

void ScanTestDriver::updateViewOfScanData(const QList<platform::ScanResult>& networks)
{
    if (wifiScanTestArray_.isEmpty()) {
        scanInProgress = false;
        stopRefreshAnimation();
        return;
    }
    const std::shared_ptr<WiFiScanTest> test = wifiScanTestArray_.first();
    try {
        const bool merge = core::settingIsOn(settings_.value(QStringLiteral("mergeScanResults")));
        const platform::InterfaceSnapshot link = currentInterface_->snapshot();
        const QString activeBSSID = link.bssid.isEmpty() ? QString() : ScannerUtils::normalizeMAC(link.bssid);
        test->activeBSSID = activeBSSID;
        const QDateTime now = timers_.now();
        const double secondsSince1970 = static_cast<double>(now.toMSecsSinceEpoch()) / 1000.0;

        bool scanReportedActive = false;
        QList<ObservationRow> rows;
        rows.reserve(networks.size());
        for (const platform::ScanResult& network : networks) {
            const QString bssid = ScannerUtils::normalizeMAC(network.bssid);
            bssidToCWNetworkMapping_.insert(bssid, std::make_shared<const platform::ScanResult>(network));
            scanReportedActive = scanReportedActive || (!activeBSSID.isEmpty() && bssid == activeBSSID);
            rows.append(ObservationRow::fromScanResult(network, channelTextFor(bssid, network.channelNumber),
                                                       secondsSince1970, currentInterface_->generation()));
        }
        database_.storeScan(rows, merge);
        database_.updateNetworkCountsForSummaryWindow(settings_);
        totalRecords_ = settings_.value(QStringLiteral("TOTAL_NETWORKS")).toInt();

        const auto stored = database_.readForDisplay(filterCriteria_, activeBSSID, merge);
        const std::optional<int> matchCount = merge ? database_.matchCount(filterCriteria_, activeBSSID) : std::nullopt;
        // A read that failed leaves the previous rows standing rather than emptying the table.
        if (stored) {
            const QList<ScanedResultInfo> records = recordsFromRows(*stored);
            for (const ScanedResultInfo& record : records)
                test->addSample(record, refreshIntervalSeconds_, now);
            test->scanedData1 = records;

            const bool activeShown = std::any_of(records.cbegin(), records.cend(), [&](const ScanedResultInfo& record) {
                return record.bssid == activeBSSID;
            });
            if (!activeBSSID.isEmpty() && !activeShown) {
                const ScanedResultInfo connected = connectedNetworkRecord(link, *test, now);
                test->scanedData1.append(connected);
                test->addSample(connected, refreshIntervalSeconds_, now);
                if (!scanReportedActive)
                    ++totalRecords_;
            }
        }
        updateCountLabel(static_cast<int>(test->scanedData1.size()), merge, matchCount);
        if (listener_)
            listener_->updateView(test);
    } catch (const std::exception& error) {
        qWarning().noquote() << QStringLiteral("Unable perform scan. %1").arg(QString::fromUtf8(error.what()));
    }
    scanInProgress = false;
    stopRefreshAnimation();
    emit scanProcessed(test);
}
