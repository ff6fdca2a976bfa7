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

// An update that threw is logged with where it came from, and the loop goes on.
void logFailure(const std::exception& error)
{
    qCInfo(lcScanning).noquote() << QStringLiteral("Unable perform scan. %1").arg(QString::fromUtf8(error.what()));
    qCInfo(lcScanning).noquote()
        << QStringLiteral("Uncaught exception %1").arg(QStringLiteral("OS: Backtrace:\n%1").arg(callStack()));
}

} // namespace

ScanProcessor::ScanProcessor(std::shared_ptr<platform::WirelessInterface> interface, ScanDatabase& database,
                             core::UserSettings& settings, const TimerSource& clock, ChannelInfoRefresher& channelInfo,
                             FilterCriteria& filter)
    : interface_(std::move(interface)), database_(database), settings_(settings), clock_(clock),
      channelInfo_(channelInfo), filter_(filter)
{
}

std::optional<ScanProcessor::Context> ScanProcessor::captureContext(std::shared_ptr<WiFiScanTest> test,
                                                                   const QList<platform::ScanResult>& networks,
                                                                   int refreshIntervalSeconds)
{
    try {
        return capture(std::move(test), networks, refreshIntervalSeconds);
    } catch (const std::exception& error) {
        logFailure(error);
        return std::nullopt;
    }
}

ScanProcessor::Context ScanProcessor::capture(std::shared_ptr<WiFiScanTest> test, const QList<platform::ScanResult>& networks,
                                              int refreshIntervalSeconds)
{
    Context context;
    context.test = std::move(test);
    context.refreshIntervalSeconds = refreshIntervalSeconds;
    context.merge = core::settingIsOn(settings_.value(QStringLiteral("mergeScanResults")));
    context.filter = filter_.condition;
    context.link = interface_->snapshot();
    context.activeBSSID = context.link.bssid.isEmpty() ? QString() : scan::ScannerUtils::normalizeMAC(context.link.bssid);
    context.now = clock_.now();
    for (const platform::ScanResult& network : networks) {
        const QString bssid = scan::ScannerUtils::normalizeMAC(network.bssid);
        context.channelTexts.insert(bssid, channelInfo_.channelTextFor(bssid, network.channelNumber));
    }
    context.securityTexts = channelInfo_.bssidSecurityTypeMapping();
    context.knownNetworks = bssidToCWNetworkMapping_;
    return context;
}

ScanProcessor::Prepared ScanProcessor::prepare(const Context& context, const QList<platform::ScanResult>& networks) const
{
    try {
        return store(context, networks);
    } catch (const std::exception& error) {
        logFailure(error);
        return {};
    }
}

ScanProcessor::Prepared ScanProcessor::store(const Context& context, const QList<platform::ScanResult>& networks) const
{
    Prepared prepared;
    const double secondsSince1970 = static_cast<double>(context.now.toMSecsSinceEpoch()) / 1000.0;
    QList<ObservationRow> rows;
    rows.reserve(networks.size());
    for (const platform::ScanResult& network : networks) {
        const QString bssid = scan::ScannerUtils::normalizeMAC(network.bssid);
        prepared.networks.insert(bssid, std::make_shared<const platform::ScanResult>(network));
        prepared.scanReportedActive =
            prepared.scanReportedActive || (!context.activeBSSID.isEmpty() && bssid == context.activeBSSID);
        rows.append(ObservationRow::fromScanResult(network, context.channelTexts.value(bssid), secondsSince1970,
                                                   interface_->generation()));
    }
    if (!database_.storeScan(rows, context.merge)) {
        prepared.result = Result::DatabaseFailed;
        return prepared;
    }
    database_.updateNetworkCountsForSummaryWindow(settings_);
    // Without it the summary window would put every network on 5 GHz.
    database_.update24MhzNetworkCountsForSummaryWindow(settings_);
    prepared.totalRecords = settings_.value(QStringLiteral("TOTAL_NETWORKS")).toInt();

    const auto stored = database_.readForDisplay(context.filter, context.activeBSSID, context.merge);
    if (context.merge)
        prepared.matchCount = database_.matchCount(context.filter, context.activeBSSID);
    if (stored)
        prepared.records = recordsFromRows(*stored, context, prepared);
    prepared.result = Result::Processed;
    return prepared;
}

ScanProcessor::Result ScanProcessor::apply(const Context& context, Prepared prepared)
{
    if (prepared.result != Result::Processed)
        return prepared.result;
    try {
        applyProcessed(context, prepared);
        return Result::Processed;
    } catch (const std::exception& error) {
        logFailure(error);
        return Result::Failed;
    }
}

void ScanProcessor::applyProcessed(const Context& context, const Prepared& prepared)
{
    WiFiScanTest& test = *context.test;
    test.activeBSSID = context.activeBSSID;
    for (auto it = prepared.networks.cbegin(); it != prepared.networks.cend(); ++it)
        bssidToCWNetworkMapping_.insert(it.key(), it.value());
    totalRecords_ = prepared.totalRecords;
    // A read that failed leaves the previous rows standing rather than emptying the table.
    if (prepared.records) {
        const QList<scan::ScanedResultInfo>& records = *prepared.records;
        for (const scan::ScanedResultInfo& record : records) {
            rememberAccessPointName(record);
            filter_.addSSID(record.ssid);
            filter_.addChannel(QString::number(record.originalChannel));
            test.addSample(record, context.refreshIntervalSeconds, context.now);
        }
        test.scanedData1 = records;

        const QString& activeBSSID = context.activeBSSID;
        const bool activeShown = std::any_of(records.cbegin(), records.cend(), [&](const scan::ScanedResultInfo& record) {
            return record.bssid == activeBSSID;
        });
        if (!activeBSSID.isEmpty() && !activeShown) {
            const scan::ScanedResultInfo connected = connectedNetworkRecord(context.link, test, context.now);
            test.scanedData1.append(connected);
            test.addSample(connected, context.refreshIntervalSeconds, context.now);
            if (!prepared.scanReportedActive)
                ++totalRecords_;
        }
    }
    updateCountLabel(static_cast<int>(test.scanedData1.size()), context.merge, prepared.matchCount);
}

QList<scan::ScanedResultInfo> ScanProcessor::recordsFromRows(const QList<scan::StoredObservation>& rows,
                                                             const Context& context, const Prepared& prepared) const
{
    QList<scan::ScanedResultInfo> records;
    records.reserve(rows.size());
    for (const scan::StoredObservation& row : rows) {
        std::shared_ptr<const platform::ScanResult> network =
            prepared.networks.value(row.bssid, context.knownNetworks.value(row.bssid));
        records.append(scan::buildRecord(row, network, interface_->generation(), settings_, &context.securityTexts));
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
