#pragma once

#include "core/interface_generation.h"
#include "core/user_settings.h"
#include "scan/record_builder.h"
#include "scanning/sql_condition.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

struct sqlite3;

namespace scanning {

// One observation as it is written to wifi_scan_data: the thirteen columns in table order.
// Text columns hold what the current or the oldest interface generation stores (see
// ObservationRow::fromScanResult).
struct ObservationRow {
    int originalChannel = 0;
    QString channel;          // stored as an integer on the current generation, text on the oldest
    QString phyMode;
    int rssi = 0;
    QString noise;            // integer on the current generation, text on the oldest
    QString ssid;             // "[Hidden]" for a network without a name
    QString bssid;            // normalised
    int singnalToNoise = 0;
    QString securityMode;
    QString ibss;
    double lastSeen = 0.0;    // seconds since 1970
    double channelBond = 0.0;
    QString normalizedSsid;   // "[Hidden]" for a network without a name
    bool hidden = false;      // the network had no name (logged when stored)
    core::InterfaceGeneration generation = core::InterfaceGeneration::Later;  // decides the stored forms

    // The row the scan driver stores for a scanned network. channelText is the display
    // channel the driver chose (number, or the tool's text with a secondary-channel suffix).
    static ObservationRow fromScanResult(const platform::ScanResult& network, const QString& channelText,
                                         double secondsSince1970, core::InterfaceGeneration generation);
};

// The scan database: one SQLite file holding the observations of the running test. A file this
// program cannot use as its own (unwritable, not a database, empty, another program's table, in
// use by another scanner) is refused at opening with the reason; later statement failures are
// logged with their fixed texts and reported by the writing operations. Nothing throws.
// Used from one thread (the owner's).
class ScanDatabase {
public:
    // Opens (creating the folder and copying the shipped empty database when the file is
    // missing) and holds the file's scanner lock until closed. An empty path means
    // "<XDG data>/Skyvane/Database.sqlite".
    explicit ScanDatabase(const QString& path = QString());
    ~ScanDatabase();
    ScanDatabase(const ScanDatabase&) = delete;
    ScanDatabase& operator=(const ScanDatabase&) = delete;

    static QString defaultPath();
    QString path() const;
    bool isOpen() const;
    // Why the database was refused at opening; empty when it is open.
    QString openError() const;
    // SQLite's message for the last failed write (deleteAll, storeScan).
    QString lastError() const;
    void close();

    void updateDatabase();
    void reindex();
    // "delete from wifi_scan_data" at the start of a test; false when the old rows are still there.
    bool deleteAll();
    // Stores one scan (rows in scan order) in one transaction, deleting each row's
    // predecessors by name (merge) or by BSSID first; false when the scan was not stored.
    bool storeScan(const QList<ObservationRow>& rows, bool merge);
    // Rows to show, in query order; std::nullopt when the statement failed (the caller keeps
    // its previous rows). The filter's values are bound; so is the associated BSSID.
    std::optional<QList<scan::StoredObservation>> readForDisplay(const SqlCondition& filter, const QString& activeBssid,
                                                           bool merge);
    // The merged count query's value; std::nullopt when it failed.
    std::optional<int> matchCount(const SqlCondition& filter, const QString& activeBssid);
    // The summary window's counts are kept as settings.
    void updateNetworkCountsForSummaryWindow(core::UserSettings& settings);
    void update24MhzNetworkCountsForSummaryWindow(core::UserSettings& settings);

    sqlite3* handle() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace scanning
