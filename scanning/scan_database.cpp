#include "scanning/scan_database.h"

#include "scan/scanner_utils.h"
#include "scanning/scan_database_impl.h"
#include "scanning/sqlite_statement.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cmath>

namespace {

const QString shippedDatabase = QStringLiteral(":/Database.sqlite");

const QString displayColumns = QStringLiteral(
    "SELECT bssid,ssid,originalChannel,channel,phyMode,rssi,noise,singnalToNoise,securityMode,ibss,lastSeen,channelBond ");
// A merged row is its group's strongest observation. The inner ascending order alone chose it on
// the SQLite builds this query was written for, which took a group's bare columns from the last
// row visited; current builds take them from the first. With max() in the list SQLite takes the
// bare columns from the row holding the maximum, on every build.
const QString mergedColumns = QStringLiteral(
    "SELECT bssid,ssid,originalChannel,channel,phyMode,rssi,noise,singnalToNoise,securityMode,ibss,lastSeen,channelBond,max(rssi) ");

// The lookups by BSSID and by name run once per network on every scan; without these indexes
// each of them scans the whole table.
void createIndexes(sqlite3* db)
{
    scandb::runOnce(db, QStringLiteral("CREATE INDEX IF NOT EXISTS wifi_scan_data_bssid ON wifi_scan_data (bssid)"));
    scandb::runOnce(db, QStringLiteral(
        "CREATE INDEX IF NOT EXISTS wifi_scan_data_normalized_ssid ON wifi_scan_data (normalized_ssid)"));
}

bool readsDoubleQuotedTextAsLiteral(sqlite3* db)
{
    return scandb::Statement(db, QStringLiteral("SELECT \"skyvane\"")).isPrepared();
}

// Resources copied out of the application keep their read-only mode.
bool copyShippedDatabase(const QString& target)
{
    if (!QFile::copy(shippedDatabase, target))
        return false;
    return QFile::setPermissions(target, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                             QFileDevice::ReadGroup | QFileDevice::ReadOther);
}

std::optional<int> lastCountStepped(sqlite3* db, const QString& text, const char* failureText)
{
    scandb::Statement statement(db, text);
    if (!statement.isPrepared()) {
        qWarning().noquote() << QString::fromLatin1(failureText).arg(statement.prepareError());
        return std::nullopt;
    }
    int count = 0;
    while (statement.step() == SQLITE_ROW)
        count = sqlite3_column_int(statement.get(), 0);
    return count;
}

StoredObservation readRow(const scandb::Statement& statement)
{
    sqlite3_stmt* s = statement.get();
    StoredObservation row;
    row.bssid = statement.columnText(0);
    row.ssid = statement.columnText(1);
    row.originalChannel = sqlite3_column_int(s, 2);
    row.channel = statement.columnText(3);
    row.phyModes = statement.columnText(4);
    row.rssi = sqlite3_column_int(s, 5);
    row.noise = sqlite3_column_int(s, 6);
    row.securityMode = sqlite3_column_int(s, 8);
    row.ibss = sqlite3_column_int(s, 9);
    row.lastSeen = QDateTime::fromMSecsSinceEpoch(std::llround(sqlite3_column_double(s, 10) * 1000.0));
    row.channelBond = sqlite3_column_double(s, 11);
    return row;
}

} // namespace

ScanDatabase::ScanDatabase(const QString& path) : impl_(std::make_unique<Impl>())
{
    impl_->path = path.isEmpty() ? defaultPath() : path;
    QDir().mkpath(QFileInfo(impl_->path).absolutePath());
    if (!QFileInfo::exists(impl_->path))
        copyShippedDatabase(impl_->path);
    if (sqlite3_open(impl_->path.toUtf8().constData(), &impl_->db) != SQLITE_OK) {
        sqlite3_close(impl_->db);
        impl_->db = nullptr;
        return;
    }
    impl_->doubleQuotedTextIsLiteral = readsDoubleQuotedTextAsLiteral(impl_->db);
    createIndexes(impl_->db);
}

ScanDatabase::~ScanDatabase() { close(); }

QString ScanDatabase::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Skyvane/Database.sqlite");
}

QString ScanDatabase::path() const { return impl_->path; }

bool ScanDatabase::isOpen() const { return impl_->db != nullptr; }

void ScanDatabase::close()
{
    sqlite3_close(impl_->db);
    impl_->db = nullptr;
}

sqlite3* ScanDatabase::handle() const { return impl_->db; }

void ScanDatabase::updateDatabase()
{
    scandb::Statement alter(impl_->db, QStringLiteral("alter table wifi_scan_data add COLUMN normalized_ssid"));
    if (alter.isPrepared()) {
        alter.step();
        qInfo().noquote() << QStringLiteral("column normalized_ssid added");
    }
    createIndexes(impl_->db);
}

void ScanDatabase::reindex()
{
    scandb::runOnce(impl_->db, QStringLiteral("REINDEX"));
    // sqlite3_prepare_v2 compiles only the first statement of a text; walking the tail runs all
    // three, so the connection is not left inside the transaction the text opens.
    const QByteArray text = QByteArrayLiteral("BEGIN TRANSACTION; VACUUM; COMMIT;");
    const char* next = text.constData();
    while (next && *next) {
        sqlite3_stmt* statement = nullptr;
        const char* tail = nullptr;
        if (sqlite3_prepare_v2(impl_->db, next, -1, &statement, &tail) != SQLITE_OK || tail == next)
            break;
        sqlite3_step(statement);
        sqlite3_finalize(statement);
        next = tail;
    }
}

void ScanDatabase::deleteAll()
{
    scandb::Statement statement(impl_->db, QStringLiteral("delete from wifi_scan_data"));
    if (!statement.isPrepared()) {
        qWarning().noquote() << QStringLiteral("Error while deleting old scanned data '%1'").arg(statement.prepareError());
        return;
    }
    statement.step();
}

std::optional<QList<StoredObservation>> ScanDatabase::readForDisplay(const QString& filterCriteria,
                                                                     const QString& activeBssid, bool merge)
{
    const bool filtered = !filterCriteria.isEmpty();
    QString text;
    if (merge && filtered)
        text = mergedColumns + QStringLiteral("FROM (select * from wifi_scan_data where (%1) or bssid='%2' order by rssi asc) group by ssid,channelBond")
                                    .arg(filterCriteria, activeBssid);
    else if (merge)
        text = mergedColumns + QStringLiteral("FROM (select * from wifi_scan_data order by rssi asc) group by ssid,channelBond");
    else if (filtered)
        text = displayColumns + QStringLiteral("FROM wifi_scan_data where (%1) or bssid='%2'").arg(filterCriteria, activeBssid);
    else
        text = displayColumns + QStringLiteral("FROM wifi_scan_data");

    scandb::Statement statement(impl_->db, text);
    if (!statement.isPrepared()) {
        qWarning().noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(statement.prepareError());
        return std::nullopt;
    }
    QList<StoredObservation> rows;
    int status = SQLITE_ROW;
    while ((status = statement.step()) == SQLITE_ROW)
        rows.append(readRow(statement));
    // A half-read table would drop rows from the view; keeping the previous rows is better.
    if (status != SQLITE_DONE) {
        qWarning().noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(scandb::errorMessage(impl_->db));
        return std::nullopt;
    }
    return rows;
}

std::optional<int> ScanDatabase::matchCount(const QString& filterCriteria, const QString& activeBssid)
{
    const QString text = filterCriteria.isEmpty()
        ? QStringLiteral("select count(*) from wifi_scan_data order by rssi asc")
        : QStringLiteral("select count(*) from wifi_scan_data where (%1) or bssid='%2' order by rssi asc").arg(filterCriteria, activeBssid);
    return lastCountStepped(impl_->db, text, "Error while fetching count of scan results '%1'");
}

void ScanDatabase::updateNetworkCountsForSummaryWindow(core::UserSettings& settings)
{
    const auto count = lastCountStepped(impl_->db, QStringLiteral("select count(*) from wifi_scan_data"),
                                        "Error while fetching count of scan results '%1'");
    if (count)
        settings.setValue(QStringLiteral("TOTAL_NETWORKS"), QString::asprintf("%d", *count));
}

void ScanDatabase::update24MhzNetworkCountsForSummaryWindow(core::UserSettings& settings)
{
    const auto count = lastCountStepped(impl_->db, QStringLiteral("select count(*) from wifi_scan_data where originalChannel <= 14"),
                                        "Error while fetching count 24mhz networks from scan results '%1'");
    if (count)
        settings.setValue(QStringLiteral("TOTAL_24MHZ_NETWORKS"), QString::asprintf("%d", *count));
}
