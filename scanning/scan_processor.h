#pragma once

#include "core/user_settings.h"
#include "platform/api/wireless_interface.h"
#include "scanning/channel_info_refresher.h"
#include "scanning/filter_criteria.h"
#include "scanning/scan_database.h"
#include "scanning/timer_source.h"
#include "scanning/wifi_scan_test.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>

namespace scanning {

// One scan's networks into the newest test: stored as observations, read back through the
// filter, turned into records with their histories, and the count label. The database work and
// the record building run on the scan's own thread, so a crowded scan or a slow disk never
// holds up the window; what they need of the owner thread is captured there first, and what
// they produce is applied there after.
class ScanProcessor {
public:
    ScanProcessor(std::shared_ptr<platform::WirelessInterface> interface, ScanDatabase& database,
                  core::UserSettings& settings, const TimerSource& clock, ChannelInfoRefresher& channelInfo,
                  FilterCriteria& filter);

    enum class Result { Processed, DatabaseFailed, Failed };

    // What a scan reads of the owner thread's state, taken there when the radio has answered.
    struct Context {
        std::shared_ptr<WiFiScanTest> test;
        int refreshIntervalSeconds = 0;
        bool merge = false;
        SqlCondition filter;
        platform::InterfaceSnapshot link;
        QString activeBSSID;
        QDateTime now;
        QHash<QString, QString> channelTexts;   // normalised BSSID -> the channel as shown
        QHash<QString, QString> securityTexts;  // normalised BSSID -> the tool's security text
        // Every network heard so far; a merged or older row may stand for one this scan missed.
        QHash<QString, std::shared_ptr<const platform::ScanResult>> knownNetworks;
    };
    // The stored and read-back scan, ready for the owner thread.
    struct Prepared {
        Result result = Result::Failed;
        QHash<QString, std::shared_ptr<const platform::ScanResult>> networks;
        bool scanReportedActive = false;
        int totalRecords = 0;
        // None when the read failed: the previous rows stay rather than an empty table.
        std::optional<QList<scan::ScanedResultInfo>> records;
        std::optional<int> matchCount;
    };

    // Owner thread; none after logging why the state could not be read.
    std::optional<Context> captureContext(std::shared_ptr<WiFiScanTest> test, const QList<platform::ScanResult>& networks,
                           int refreshIntervalSeconds);
    // Any thread, one scan at a time: the database and the records, nothing of the owner's state.
    Prepared prepare(const Context& context, const QList<platform::ScanResult>& networks) const;
    // Owner thread. The test's rows and histories follow the scan only when it returns Processed.
    // After DatabaseFailed the scan was not stored and nothing was read back, so no earlier rows
    // are shown as this scan's.
    Result apply(const Context& context, Prepared prepared);

    QString countLabel() const { return countLabel_; }
    int totalRecords() const { return totalRecords_; }
    const QHash<QString, std::shared_ptr<const platform::ScanResult>>& bssidToCWNetworkMapping() const
    {
        return bssidToCWNetworkMapping_;
    }

private:
    Context capture(std::shared_ptr<WiFiScanTest> test, const QList<platform::ScanResult>& networks,
                    int refreshIntervalSeconds);
    void applyProcessed(const Context& context, const Prepared& prepared);
    Prepared store(const Context& context, const QList<platform::ScanResult>& networks) const;
    QList<scan::ScanedResultInfo> recordsFromRows(const QList<scan::StoredObservation>& rows, const Context& context,
                                                  const Prepared& prepared) const;
    // Keeps a beacon's AP name as the "<BSSID>-apname" setting; written once per BSSID and name.
    void rememberAccessPointName(const scan::ScanedResultInfo& record);
    scan::ScanedResultInfo connectedNetworkRecord(const platform::InterfaceSnapshot& link, const WiFiScanTest& test,
                                            const QDateTime& now) const;
    void updateCountLabel(int shown, bool merge, std::optional<int> matchCount);

    std::shared_ptr<platform::WirelessInterface> interface_;
    ScanDatabase& database_;
    core::UserSettings& settings_;
    const TimerSource& clock_;
    ChannelInfoRefresher& channelInfo_;
    FilterCriteria& filter_;
    QHash<QString, std::shared_ptr<const platform::ScanResult>> bssidToCWNetworkMapping_;
    QHash<QString, QString> savedAccessPointNames_;
    int totalRecords_ = 0;
    QString countLabel_;
};

} // namespace scanning
