#include "scanning/scan_processor.h"

#include "core/units.h"
#include "scan/record_builder.h"
#include "scan/scanner_utils.h"
#include "scanning/log_category.h"

#include <QStringList>

#include <algorithm>
#include <exception>
#include <execinfo.h>

namespace scanning {

namespace {

QString callStack()
{
    void* frames[64];
    const int count = ::backtrace(frames, 64);
    char** symbols = ::backtrace_symbols(frames, count);
    if (!symbols)
        return {};
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines.append(QString::fromLocal8Bit(symbols[i]));
    std::free(symbols);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

ScanProcessor::ScanProcessor(std::shared_ptr<platform::WirelessInterface> interface, ScanDatabase& database,
                             core::UserSettings& settings, const TimerSource& clock, ChannelInfoRefresher& channelInfo,
                             FilterCriteria& filter)
    : interface_(std::move(interface)), database_(database), settings_(settings), clock_(clock),
      channelInfo_(channelInfo), filter_(filter)
{
}

ScanProcessor::Result ScanProcessor::updateViewOfScanData(WiFiScanTest& test,
                                                          const QList<platform::ScanResult>& networks,
                                                          int refreshIntervalSeconds)
{
    try {
        return process(test, networks, refreshIntervalSeconds);
    } catch (const std::exception& error) {
        qCInfo(lcScanning).noquote() << QStringLiteral("Unable perform scan. %1").arg(QString::fromUtf8(error.what()));
        qCInfo(lcScanning).noquote()
            << QStringLiteral("Uncaught exception %1").arg(QStringLiteral("OS: Backtrace:\n%1").arg(callStack()));
        return Result::Failed;
    }
}

ScanProcessor::Result ScanProcessor::process(WiFiScanTest& test, const QList<platform::ScanResult>& networks,
                                             int refreshIntervalSeconds)
{
    const bool merge = core::settingIsOn(settings_.value(QStringLiteral("mergeScanResults")));
    const platform::InterfaceSnapshot link = interface_->snapshot();
    const QString activeBSSID = link.bssid.isEmpty() ? QString() : scan::ScannerUtils::normalizeMAC(link.bssid);
    test.activeBSSID = activeBSSID;
    const QDateTime now = clock_.now();
    const double secondsSince1970 = static_cast<double>(now.toMSecsSinceEpoch()) / 1000.0;

    bool scanReportedActive = false;
    QList<ObservationRow> rows;
    rows.reserve(networks.size());
    for (const platform::ScanResult& network : networks) {
        const QString bssid = scan::ScannerUtils::normalizeMAC(network.bssid);
        bssidToCWNetworkMapping_.insert(bssid, std::make_shared<const platform::ScanResult>(network));
        scanReportedActive = scanReportedActive || (!activeBSSID.isEmpty() && bssid == activeBSSID);
        rows.append(ObservationRow::fromScanResult(network, channelInfo_.channelTextFor(bssid, network.channelNumber),
                                                   secondsSince1970, interface_->generation()));
    }
    if (!database_.storeScan(rows, merge))
        return Result::DatabaseFailed;
    database_.updateNetworkCountsForSummaryWindow(settings_);
    // Without it the summary window would put every network on 5 GHz.
    database_.update24MhzNetworkCountsForSummaryWindow(settings_);
    totalRecords_ = settings_.value(QStringLiteral("TOTAL_NETWORKS")).toInt();

    const auto stored = database_.readForDisplay(filter_.condition, activeBSSID, merge);
    const std::optional<int> matchCount = merge ? database_.matchCount(filter_.condition, activeBSSID) : std::nullopt;
    // A read that failed leaves the previous rows standing rather than emptying the table.
    if (stored) {
        const QList<scan::ScanedResultInfo> records = recordsFromRows(*stored);
        for (const scan::ScanedResultInfo& record : records)
            test.addSample(record, refreshIntervalSeconds, now);
        test.scanedData1 = records;

        const bool activeShown = std::any_of(records.cbegin(), records.cend(), [&](const scan::ScanedResultInfo& record) {
            return record.bssid == activeBSSID;
        });
        if (!activeBSSID.isEmpty() && !activeShown) {
            const scan::ScanedResultInfo connected = connectedNetworkRecord(link, test, now);
            test.scanedData1.append(connected);
            test.addSample(connected, refreshIntervalSeconds, now);
            if (!scanReportedActive)
                ++totalRecords_;
        }
    }
    updateCountLabel(static_cast<int>(test.scanedData1.size()), merge, matchCount);
    return Result::Processed;
}

QList<scan::ScanedResultInfo> ScanProcessor::recordsFromRows(const QList<scan::StoredObservation>& rows)
{
    QList<scan::ScanedResultInfo> records;
    records.reserve(rows.size());
    for (const scan::StoredObservation& row : rows) {
        scan::ScanedResultInfo record = scan::buildRecord(row, bssidToCWNetworkMapping_.value(row.bssid), interface_->generation(),
                                              settings_, &channelInfo_.bssidSecurityTypeMapping());
        rememberAccessPointName(record);
        filter_.addSSID(record.ssid);
        filter_.addChannel(QString::number(record.originalChannel));
        records.append(std::move(record));
    }
    return records;
}

void ScanProcessor::rememberAccessPointName(const scan::ScanedResultInfo& record)
{
    if (!scan::ScannerUtils::hasValue(record.apname))
        return;
    const auto saved = savedAccessPointNames_.constFind(record.bssid);
    if (saved != savedAccessPointNames_.cend() && *saved == record.apname)
        return;
    savedAccessPointNames_.insert(record.bssid, record.apname);
    settings_.setValue(record.bssid + QStringLiteral("-apname"), record.apname);
}

scan::ScanedResultInfo ScanProcessor::connectedNetworkRecord(const platform::InterfaceSnapshot& link,
                                                       const WiFiScanTest& test, const QDateTime& now) const
{
    const QString bssid = scan::ScannerUtils::normalizeMAC(link.bssid);
    const QList<scan::ScanedResultInfo> history = test.scanedResults.value(bssid);
    scan::ScanedResultInfo record = history.size() >= 2 ? history.first().copy() : scan::ScanedResultInfo();
    record.bssid = bssid;
    record.ssid = link.ssid;
    record.rssi = link.rssiValue;
    record.noise = link.noiseMeasurement;
    record.singnalToNoise = std::max(0, link.rssiValue - link.noiseMeasurement);
    record.phyMode = link.activePHYMode;
    record.securityMode = link.security;
    record.securityModeString = channelInfo_.bssidSecurityTypeMapping().value(
        bssid, scan::ScannerUtils::stringForSecurityMode(link.security, interface_->generation()));
    if (link.wlanChannel) {
        record.originalChannel = link.wlanChannel->channelNumber;
        record.channel = QString::number(link.wlanChannel->channelNumber);
        record.channelBond = core::bandGhz(link.wlanChannel->channelBand, link.wlanChannel->channelNumber);
        record.channelWidth = core::widthMhz(link.wlanChannel->channelWidth);
    }
    record.cc = link.countryCode;
    record.lastSeen = now;
    record.network = bssidToCWNetworkMapping_.value(bssid);
    record.vendorName = scan::ScannerUtils::vendorNameForMAC(bssid);
    const QString tag = settings_.value(bssid).toString();
    record.bssidTag = scan::ScannerUtils::hasValue(tag) ? tag : QStringLiteral("");
    return record;
}

void ScanProcessor::updateCountLabel(int shown, bool merge, std::optional<int> matchCount)
{
    if (merge) {
        const int hidden = matchCount ? *matchCount - shown : 0;
        const int merged = matchCount && *matchCount > 0 && hidden > 0 ? hidden : 0;
        countLabel_ = QStringLiteral("%1 of %2 shown (merged %3)").arg(shown).arg(totalRecords_).arg(merged);
    } else {
        countLabel_ = QStringLiteral("%1 of %2 shown").arg(shown).arg(totalRecords_);
    }
}

} // namespace scanning
