#include "scanning/scan_database.h"

#include "scanning/log_category.h"
#include "scanning/scan_database_impl.h"
#include "scanning/sqlite_statement.h"

#include <QSet>

#include <memory>

namespace scanning {

namespace {

const QString insertText = QStringLiteral(
    "INSERT INTO wifi_scan_data (originalChannel,channel,phyMode,rssi,noise,ssid,bssid,singnalToNoise,securityMode,ibss,lastSeen,channelBond,normalized_ssid) "
    "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)");

void logDeleteFailure(const QString& message)
{
    qCInfo(lcScanning).noquote() << QStringLiteral("Error while deleting old scanned data '%1'").arg(message);
}

void logSaveFailure(const QString& message)
{
    qCInfo(lcScanning).noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(message);
}

// Deletes each stored row's predecessors before it is inserted.
//
// The statements that define this delete carry the value inside their text:
//     delete from wifi_scan_data where normalized_ssid="<name>"
//     delete from wifi_scan_data where bssid='<bssid>'
// Compiling one of those per network is most of the cost of a large scan, so a statement with
// a bound value is compiled once per scan instead - but only where it means exactly the same.
// A single-quoted value is a plain string unless it holds a quote. A double-quoted word is a
// column reference first and a string only when no column has that name (a network called
// "SSID" therefore deletes every row whose normalised name equals its name), and a quote ends
// it early. Such values, and everything on an SQLite build that never reads a double-quoted
// word as a string, still go through the literal text, so the rows deleted and the failures
// logged are those of the literal statements.
class PredecessorDeletion {
public:
    PredecessorDeletion(sqlite3* db, bool merge, bool doubleQuotedTextIsLiteral)
        : db_(db), merge_(merge), doubleQuotedTextIsLiteral_(doubleQuotedTextIsLiteral)
    {
        bound_ = std::make_unique<scandb::Statement>(db, merge
            ? QStringLiteral("delete from wifi_scan_data where normalized_ssid=?")
            : QStringLiteral("delete from wifi_scan_data where bssid=?"));
        if (merge)
            readColumnNames();
    }

    void deleteFor(const ObservationRow& row)
    {
        if (!merge_) {
            if (bound_->isPrepared() && isPlainInSingleQuotes(row.bssid))
                runBound(row.bssid);
            else
                runLiteral(QStringLiteral("delete from wifi_scan_data where bssid='%1'").arg(row.bssid));
            return;
        }
        if (deletedNames_.contains(row.normalizedSsid))
            return;
        deletedNames_.insert(row.normalizedSsid);
        if (bound_->isPrepared() && isPlainInDoubleQuotes(row.normalizedSsid))
            runBound(row.normalizedSsid);
        else
            runLiteral(QStringLiteral("delete from wifi_scan_data where normalized_ssid=\"%1\"").arg(row.normalizedSsid));
    }

private:
    void readColumnNames()
    {
        columnNames_ = {QStringLiteral("rowid"), QStringLiteral("oid"), QStringLiteral("_rowid_")};
        scandb::Statement columns(db_, QStringLiteral("PRAGMA table_info(wifi_scan_data)"));
        while (columns.isPrepared() && columns.step() == SQLITE_ROW)
            columnNames_.insert(columns.columnText(1).toLower());
    }

    static bool isPlainInSingleQuotes(const QString& value)
    {
        return !value.contains(QLatin1Char('\'')) && !value.contains(QChar(0));
    }

    bool isPlainInDoubleQuotes(const QString& value) const
    {
        return doubleQuotedTextIsLiteral_ && !value.contains(QLatin1Char('"')) && !value.contains(QChar(0)) &&
               !columnNames_.contains(value.toLower());
    }

    void runBound(const QString& value)
    {
        bound_->bindText(1, value);
        bound_->step();
        bound_->reset();
    }

    void runLiteral(const QString& text)
    {
        scandb::Statement statement(db_, text);
        if (!statement.isPrepared()) {
            logDeleteFailure(statement.prepareError());
            return;
        }
        statement.step();
    }

    sqlite3* db_;
    bool merge_;
    bool doubleQuotedTextIsLiteral_;
    std::unique_ptr<scandb::Statement> bound_;
    QSet<QString> columnNames_;
    QSet<QString> deletedNames_;
};

} // namespace

// The oldest interface generation stores channel and noise as text, the current one as integers.
void scandb::bindObservation(Statement& insert, const ObservationRow& row)
{
    const bool oldest = core::isOSSnowLeopard(row.generation);
    sqlite3_stmt* s = insert.get();
    sqlite3_bind_int(s, 1, row.originalChannel);
    if (oldest)
        insert.bindText(2, row.channel);
    else
        sqlite3_bind_int(s, 2, row.channel.toInt());
    insert.bindText(3, row.phyMode);
    sqlite3_bind_int(s, 4, row.rssi);
    if (oldest)
        insert.bindText(5, row.noise);
    else
        sqlite3_bind_int(s, 5, row.noise.toInt());
    insert.bindText(6, row.ssid);
    insert.bindText(7, row.bssid);
    sqlite3_bind_int(s, 8, row.singnalToNoise);
    insert.bindText(9, row.securityMode);
    insert.bindText(10, row.ibss);
    sqlite3_bind_double(s, 11, row.lastSeen);
    sqlite3_bind_double(s, 12, row.channelBond);
    insert.bindText(13, row.normalizedSsid);
}

namespace {

// Returns SQLite's message for the first row that was not stored; empty when all were.
QString storeRows(sqlite3* db, const QList<ObservationRow>& rows, bool merge, bool doubleQuotedTextIsLiteral)
{
    QString failure;
    scandb::Statement insert(db, insertText);
    PredecessorDeletion deletion(db, merge, doubleQuotedTextIsLiteral);
    for (const ObservationRow& row : rows) {
        // Compiled once for the scan, but a failure is still reported for every row it stops.
        if (!insert.isPrepared()) {
            logSaveFailure(insert.prepareError());
            if (failure.isEmpty())
                failure = insert.prepareError();
        }
        deletion.deleteFor(row);
        if (row.hidden)
            qCInfo(lcScanning).noquote() << QStringLiteral("Here i got a hidden ssid with bssid as %1").arg(row.bssid);
        if (!insert.isPrepared())
            continue;
        scandb::bindObservation(insert, row);
        if (insert.step() != SQLITE_DONE) {
            logSaveFailure(scandb::errorMessage(db));
            if (failure.isEmpty())
                failure = scandb::errorMessage(db);
        }
        insert.reset();
    }
    return failure;
}

} // namespace

bool ScanDatabase::storeScan(const QList<ObservationRow>& rows, bool merge)
{
    const std::lock_guard guard(impl_->mutex);
    sqlite3* db = impl_->db;
    // One transaction per scan: one journal sync instead of two per network, and a kill in the
    // middle of a scan leaves the previous scan's rows rather than half of this one.
    const bool ownTransaction = sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK;
    QString failure = storeRows(db, rows, merge, impl_->doubleQuotedTextIsLiteral);
    if (ownTransaction && sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        failure = scandb::errorMessage(db);
        logSaveFailure(failure);
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    if (!failure.isEmpty())
        impl_->lastError = failure;
    return failure.isEmpty();
}

} // namespace scanning
