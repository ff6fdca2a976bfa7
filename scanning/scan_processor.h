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
// filter, turned into records with their histories, and the count label. Runs on the thread
// that owns the database.
class ScanProcessor {
public:
    ScanProcessor(std::shared_ptr<platform::WirelessInterface> interface, ScanDatabase& database,
                  core::UserSettings& settings, const TimerSource& clock, ChannelInfoRefresher& channelInfo,
                  FilterCriteria& filter);

    enum class Result { Processed, DatabaseFailed, Failed };
    // The test's rows and histories follow the scan only when it returns Processed. After
    // DatabaseFailed the scan was not stored and nothing was read back, so no earlier rows are
    // shown as this scan's.
    Result updateViewOfScanData(WiFiScanTest& test, const QList<platform::ScanResult>& networks,
                                int refreshIntervalSeconds);

    QString countLabel() const { return countLabel_; }
    int totalRecords() const { return totalRecords_; }
    const QHash<QString, std::shared_ptr<const platform::ScanResult>>& bssidToCWNetworkMapping() const
    {
        return bssidToCWNetworkMapping_;
    }

private:
    Result process(WiFiScanTest& test, const QList<platform::ScanResult>& networks, int refreshIntervalSeconds);
    QList<scan::ScanedResultInfo> recordsFromRows(const QList<scan::StoredObservation>& rows);
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
