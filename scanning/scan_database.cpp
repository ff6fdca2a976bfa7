#include "scanning/scan_database.h"

#include "core/units.h"
#include "scan/scanner_utils.h"
#include "scanning/log_category.h"
#include "scanning/scan_database_impl.h"
#include "scanning/sqlite_statement.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cmath>

namespace scanning {

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

// The table as this program ships it, and as its one migration leaves it.
const QStringList shippedColumns = {
    QStringLiteral("originalchannel"), QStringLiteral("channel"), QStringLiteral("phymode"), QStringLiteral("rssi"),
    QStringLiteral("noise"), QStringLiteral("ssid"), QStringLiteral("bssid"), QStringLiteral("singnaltonoise"),
    QStringLiteral("securitymode"), QStringLiteral("ibss"), QStringLiteral("lastseen"), QStringLiteral("channelbond")};
const QString migratedColumn = QStringLiteral("normalized_ssid");

// Readers such as the sqlite3 shell may hold the file for a moment; a statement waits for them
// this long before it fails.
constexpr int busyTimeoutMs = 5000;

// Why the open file is not this program's observation table, or an empty text when it is.
// Another program's wifi_scan_data is refused rather than migrated: it is not ours to alter.
QString schemaProblem(sqlite3* db, const QString& path)
{
    scandb::Statement columns(db, QStringLiteral("PRAGMA table_info(wifi_scan_data)"));
    if (!columns.isPrepared())
        return columns.prepareError();
    QStringList names;
    int status = SQLITE_ROW;
    while ((status = columns.step()) == SQLITE_ROW)
        names.append(columns.columnText(1).toLower());
    if (status != SQLITE_DONE)
        return scandb::errorMessage(db);
    if (names.isEmpty()) {
        const QString reason = scandb::Statement(db, QStringLiteral("SELECT * FROM wifi_scan_data")).prepareError();
        return QFileInfo(path).size() == 0 ? QStringLiteral("the file is empty (%1)").arg(reason) : reason;
    }
    if (names == shippedColumns || names == shippedColumns + QStringList{migratedColumn})
        return {};
    return QStringLiteral("its table wifi_scan_data has other columns (%1) than this program's")
        .arg(names.join(QStringLiteral(", ")));
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

std::optional<int> lastCountStepped(sqlite3* db, const SqlCondition& query, const char* failureText)
{
    scandb::Statement statement(db, query.text);
    if (!statement.isPrepared()) {
        qCInfo(lcScanning).noquote() << QString::fromLatin1(failureText).arg(statement.prepareError());
        return std::nullopt;
    }
    statement.bindAll(query.values);
    int count = 0;
    while (statement.step() == SQLITE_ROW)
        count = sqlite3_column_int(statement.get(), 0);
    return count;
}

scan::StoredObservation readRow(const scandb::Statement& statement)
{
    sqlite3_stmt* s = statement.get();
    scan::StoredObservation row;
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
    // Why the file cannot be this scanner's database, or an empty text once it is open.
    const auto open = [this]() -> QString {
        const QString folder = QFileInfo(impl_->path).absolutePath();
        if (!QDir().mkpath(folder))
            return QStringLiteral("cannot create the folder %1").arg(folder);
        // Taken before anything is read or copied, so a second scanner changes nothing at all.
        QString lockError;
        impl_->lock = DatabaseLock::acquire(impl_->path, &lockError);
        if (!impl_->lock)
            return lockError;
        if (!QFileInfo::exists(impl_->path) && !copyShippedDatabase(impl_->path))
            return QStringLiteral("cannot create %1").arg(impl_->path);
        // Without SQLITE_OPEN_CREATE a file that vanished is an error, not a new empty database.
        if (sqlite3_open_v2(impl_->path.toUtf8().constData(), &impl_->db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
            return scandb::errorMessage(impl_->db);
        sqlite3_busy_timeout(impl_->db, busyTimeoutMs);
        // A file without write permission opens read-only without complaint; every scan would then fail.
        if (sqlite3_db_readonly(impl_->db, "main") == 1)
            return QString::fromUtf8(sqlite3_errstr(SQLITE_READONLY));
        return schemaProblem(impl_->db, impl_->path);
    };
    impl_->openError = open();
    if (!impl_->openError.isEmpty()) {
        close();
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

QString ScanDatabase::openError() const { return impl_->openError; }

QString ScanDatabase::lastError() const
{
    const std::lock_guard guard(impl_->mutex);
    return impl_->lastError;
}

void ScanDatabase::close()
{
    const std::lock_guard guard(impl_->mutex);
    sqlite3_close(impl_->db);
    impl_->db = nullptr;
    impl_->lock.reset();
}

sqlite3* ScanDatabase::handle() const { return impl_->db; }

void ScanDatabase::updateDatabase()
{
    const std::lock_guard guard(impl_->mutex);
    scandb::Statement alter(impl_->db, QStringLiteral("alter table wifi_scan_data add COLUMN normalized_ssid"));
    if (alter.isPrepared()) {
        alter.step();
        qCInfo(lcScanning).noquote() << QStringLiteral("column normalized_ssid added");
    }
    createIndexes(impl_->db);
}

void ScanDatabase::reindex()
{
    const std::lock_guard guard(impl_->mutex);
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

bool ScanDatabase::deleteAll()
{
    const std::lock_guard guard(impl_->mutex);
    if (!impl_->db) {
        impl_->lastError = impl_->openError;
        return false;
    }
    scandb::Statement statement(impl_->db, QStringLiteral("delete from wifi_scan_data"));
    if (!statement.isPrepared()) {
        impl_->lastError = statement.prepareError();
        qCInfo(lcScanning).noquote() << QStringLiteral("Error while deleting old scanned data '%1'").arg(impl_->lastError);
        return false;
    }
    if (statement.step() != SQLITE_DONE) {
        impl_->lastError = scandb::errorMessage(impl_->db);
        qCInfo(lcScanning).noquote() << QStringLiteral("Error while deleting old scanned data '%1'").arg(impl_->lastError);
        return false;
    }
    return true;
}

std::optional<QList<scan::StoredObservation>> ScanDatabase::readForDisplay(const SqlCondition& filter,
                                                                     const QString& activeBssid, bool merge)
{
    const std::lock_guard guard(impl_->mutex);
    const bool filtered = !filter.isEmpty();
    QString text;
    if (merge && filtered)
        text = mergedColumns + QStringLiteral("FROM (select * from wifi_scan_data where (%1) or bssid=? order by rssi asc) group by ssid,channelBond")
                                    .arg(filter.text);
    else if (merge)
        text = mergedColumns + QStringLiteral("FROM (select * from wifi_scan_data order by rssi asc) group by ssid,channelBond");
    else if (filtered)
        text = displayColumns + QStringLiteral("FROM wifi_scan_data where (%1) or bssid=?").arg(filter.text);
    else
        text = displayColumns + QStringLiteral("FROM wifi_scan_data");

    scandb::Statement statement(impl_->db, text);
    if (!statement.isPrepared()) {
        qCInfo(lcScanning).noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(statement.prepareError());
        return std::nullopt;
    }
    if (filtered) {
        statement.bindAll(filter.values);
        statement.bindText(static_cast<int>(filter.values.size()) + 1, activeBssid);
    }
    QList<scan::StoredObservation> rows;
    int status = SQLITE_ROW;
    while ((status = statement.step()) == SQLITE_ROW)
        rows.append(readRow(statement));
    // A half-read table would drop rows from the view; keeping the previous rows is better.
    if (status != SQLITE_DONE) {
        qCInfo(lcScanning).noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(scandb::errorMessage(impl_->db));
        return std::nullopt;
    }
    return rows;
}

std::optional<int> ScanDatabase::matchCount(const SqlCondition& filter, const QString& activeBssid)
{
    const std::lock_guard guard(impl_->mutex);
    if (filter.isEmpty())
        return lastCountStepped(impl_->db, QStringLiteral("select count(*) from wifi_scan_data order by rssi asc"),
                                "Error while fetching count of scan results '%1'");
    QVariantList values = filter.values;
    values.append(activeBssid);
    return lastCountStepped(impl_->db,
                            {QStringLiteral("select count(*) from wifi_scan_data where (%1) or bssid=? order by rssi asc").arg(filter.text), values},
                            "Error while fetching count of scan results '%1'");
}

void ScanDatabase::updateNetworkCountsForSummaryWindow(core::UserSettings& settings)
{
    const std::lock_guard guard(impl_->mutex);
    const auto count = lastCountStepped(impl_->db, QStringLiteral("select count(*) from wifi_scan_data"),
                                        "Error while fetching count of scan results '%1'");
    if (count)
        settings.setValue(QStringLiteral("TOTAL_NETWORKS"), QString::asprintf("%d", *count));
}

void ScanDatabase::update24MhzNetworkCountsForSummaryWindow(core::UserSettings& settings)
{
    const std::lock_guard guard(impl_->mutex);
    const auto count = lastCountStepped(impl_->db, QStringLiteral("select count(*) from wifi_scan_data where originalChannel <= %1").arg(core::highest24GhzChannel),
                                        "Error while fetching count 24mhz networks from scan results '%1'");
    if (count)
        settings.setValue(QStringLiteral("TOTAL_24MHZ_NETWORKS"), QString::asprintf("%d", *count));
}

} // namespace scanning
