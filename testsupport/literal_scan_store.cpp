#include "testsupport/literal_scan_store.h"

#include "scanning/log_category.h"
#include "scanning/scan_database_impl.h"
#include "scanning/sqlite_statement.h"

#include <QSet>
#include <QStringList>

namespace testsupport {

namespace literal_scan_store {
namespace {

void deletePredecessor(sqlite3* db, const QString& text)
{
    scanning::scandb::Statement statement(db, text);
    if (!statement.isPrepared()) {
        qCInfo(lcScanning).noquote() << QStringLiteral("Error while deleting old scanned data '%1'").arg(statement.prepareError());
        return;
    }
    statement.step();
}

} // namespace

void storeScan(scanning::ScanDatabase& database, const QList<scanning::ObservationRow>& rows, bool merge)
{
    sqlite3* db = database.handle();
    QSet<QString> deletedNames;
    for (const scanning::ObservationRow& row : rows) {
        scanning::scandb::Statement insert(db, QStringLiteral(
            "INSERT INTO wifi_scan_data (originalChannel,channel,phyMode,rssi,noise,ssid,bssid,singnalToNoise,securityMode,ibss,lastSeen,channelBond,normalized_ssid) "
            "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)"));
        if (!insert.isPrepared())
            qCInfo(lcScanning).noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(insert.prepareError());
        if (!merge) {
            deletePredecessor(db, QStringLiteral("delete from wifi_scan_data where bssid='%1'").arg(row.bssid));
        } else if (!deletedNames.contains(row.normalizedSsid)) {
            deletePredecessor(db, QStringLiteral("delete from wifi_scan_data where normalized_ssid=\"%1\"").arg(row.normalizedSsid));
            deletedNames.insert(row.normalizedSsid);
        }
        if (row.hidden)
            qCInfo(lcScanning).noquote() << QStringLiteral("Here i got a hidden ssid with bssid as %1").arg(row.bssid);
        if (!insert.isPrepared())
            continue;
        scanning::scandb::bindObservation(insert, row);
        if (insert.step() != SQLITE_DONE)
            qCInfo(lcScanning).noquote() << QStringLiteral("Error while saving scan result info. '%1'").arg(scanning::scandb::errorMessage(db));
    }
}

void dropIndexes(scanning::ScanDatabase& database)
{
    sqlite3* db = database.handle();
    QStringList names;
    {
        scanning::scandb::Statement indexes(db, QStringLiteral(
            "SELECT name FROM sqlite_master WHERE type='index' AND tbl_name='wifi_scan_data' AND sql IS NOT NULL"));
        while (indexes.isPrepared() && indexes.step() == SQLITE_ROW)
            names.append(indexes.columnText(0));
    }
    for (const QString& name : names)
        scanning::scandb::runOnce(db, QStringLiteral("DROP INDEX \"%1\"").arg(name));
}

} // namespace literal_scan_store

} // namespace testsupport
