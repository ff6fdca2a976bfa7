#include "core/memory_settings.h"
#include "scanning/filter_criteria.h"
#include "scanning/scan_database.h"

#include "testsupport/literal_scan_store.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QStringList logged;

void captureMessage(QtMsgType, const QMessageLogContext&, const QString& text) { logged.append(text); }

platform::ScanResult network(const QString& ssid, const QString& bssid, int rssi, int channel = 6)
{
    platform::ScanResult n;
    n.ssid = ssid;
    n.bssid = bssid;
    n.rssiValue = rssi;
    n.noiseMeasurement = -90;
    n.channelNumber = channel;
    n.channelBand = channel > 14 ? platform::ChannelBand::Band5GHz : platform::ChannelBand::Band2GHz;
    n.phyModes = platform::PhyB | platform::PhyG | platform::PhyN;
    n.securityMode = platform::SecurityWPA2Personal;
    return n;
}

scanning::ObservationRow row(const QString& ssid, const QString& bssid, int rssi, double seen, int channel = 6)
{
    return scanning::ObservationRow::fromScanResult(network(ssid, bssid, rssi, channel), QString::number(channel), seen,
                                          core::InterfaceGeneration::Later);
}

// Each result row as one line of "value:type" cells, so a value stored with the wrong type shows.
QStringList query(sqlite3* db, const char* sql = "select * from wifi_scan_data order by rowid")
{
    QStringList lines;
    sqlite3_stmt* s = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &s, nullptr);
    while (s && sqlite3_step(s) == SQLITE_ROW) {
        QStringList cells;
        for (int c = 0; c < sqlite3_column_count(s); ++c)
            cells.append(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(s, c))) + QLatin1Char(':') +
                         QString::number(sqlite3_column_type(s, c)));
        lines.append(cells.join(QLatin1Char('|')));
    }
    sqlite3_finalize(s);
    return lines;
}

class ScanDatabaseTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        logged.clear();
        QLoggingCategory::setFilterRules(QStringLiteral("skyvane.*=true"));
        previousHandler = qInstallMessageHandler(captureMessage);
    }
    void TearDown() override { qInstallMessageHandler(previousHandler); }

    QString databasePath(const QString& name = QStringLiteral("Database.sqlite")) const
    {
        return dir.filePath(QStringLiteral("data/Skyvane/") + name);
    }

    QTemporaryDir dir;
    QtMessageHandler previousHandler = nullptr;
};

TEST_F(ScanDatabaseTest, ShippedCopyIsMigratedOnceAndIndexed)
{
    scanning::ScanDatabase database(databasePath());
    ASSERT_TRUE(database.isOpen());
    database.updateDatabase();
    database.updateDatabase();
    EXPECT_EQ(logged, QStringList{QStringLiteral("column normalized_ssid added")});

    database.storeScan({row(QStringLiteral("Cafe"), QStringLiteral("a:b:c:d:e:f"), -50, 1.5)}, true);
    EXPECT_EQ(query(database.handle()),
              QStringList{QStringLiteral("6:1|6:1|b/g/n:3|-50:1|-90:1|Cafe:3|0A:0B:0C:0D:0E:0F:3|40:1|-1:3|0:3|1.5:2|2.4:2|Cafe:3")});
    EXPECT_EQ(query(database.handle(), "select count(*) from sqlite_master where type='index'"), QStringList{"2:1"});
}

struct StoreCase {
    const char* name;
    bool merge;
    QList<QList<scanning::ObservationRow>> scans;
    // Rows shown after the last scan as "bssid rssi lastSeen", in query order.
    QStringList shown;
};

TEST_F(ScanDatabaseTest, StoredScansShowTheLatestObservations)
{
    const QString a = "00:00:00:00:00:0A", b = "00:00:00:00:00:0B", c = "00:00:00:00:00:0C";
    const QList<StoreCase> cases = {
        {"one name, one band: the stronger", true, {{row("Home", a, -70, 1), row("Home", b, -40, 1)}}, {b + " -40 1"}},
        {"the strongest whatever the insert order", true,
         {{row("Home", b, -60, 1), row("Home", a, -30, 1), row("Home", c, -90, 1)}}, {a + " -30 1"}},
        {"one name, two bands: one row each", true, {{row("Home", a, -70, 1, 36), row("Home", b, -40, 1)}},
         {b + " -40 1", a + " -70 1"}},
        {"hidden networks of a band group together", true, {{row(QString(), a, -80, 1), row(QString(), b, -60, 1)}},
         {b + " -60 1"}},
        {"merge replaces every row of a name seen again, keeps names not seen", true,
         {{row("Home", a, -70, 1), row("Home", b, -40, 1), row("Shop", c, -50, 1)}, {row("Home", a, -65, 2)}},
         {a + " -65 2", c + " -50 1"}},
        {"without merging only the BSSIDs seen are replaced", false,
         {{row("Home", a, -70, 1), row("Home", b, -40, 1)}, {row("Home", a, -65, 2)}}, {b + " -40 1", a + " -65 2"}},
    };
    for (const StoreCase& test : cases) {
        scanning::ScanDatabase database(databasePath(QString::fromLatin1(test.name)));
        database.updateDatabase();
        for (const auto& scan : test.scans)
            database.storeScan(scan, test.merge);
        const auto shown = database.readForDisplay(QString(), QString(), test.merge);
        ASSERT_TRUE(shown) << test.name;
        QStringList texts;
        for (const scan::StoredObservation& o : *shown)
            texts.append(QStringLiteral("%1 %2 %3").arg(o.bssid).arg(o.rssi).arg(o.lastSeen.toSecsSinceEpoch()));
        EXPECT_EQ(texts, test.shown) << test.name;
    }
    EXPECT_EQ(logged.count(QStringLiteral("Here i got a hidden ssid with bssid as ") + a), 1);
}

TEST_F(ScanDatabaseTest, FilterKeepsTheAssociatedNetworkAndAFailingFilterIsSkipped)
{
    scanning::ScanDatabase database(databasePath());
    database.updateDatabase();
    database.storeScan({row("Home", "00:00:00:00:00:01", -50, 1), row("Shop", "00:00:00:00:00:02", -60, 1)}, true);
    for (bool merge : {true, false}) {
        const auto shown = database.readForDisplay(QStringLiteral("SSID like '%Nothing%' "), QStringLiteral("00:00:00:00:00:02"), merge);
        ASSERT_TRUE(shown);
        ASSERT_EQ(shown->size(), 1);
        EXPECT_EQ(shown->first().ssid, QStringLiteral("Shop"));
    }
    EXPECT_EQ(database.matchCount(QStringLiteral("rssi > -55"), QString()), 1);

    logged.clear();
    EXPECT_FALSE(database.readForDisplay(QStringLiteral("SSID like '%Bob's%' "), QString(), true));
    EXPECT_FALSE(database.matchCount(QStringLiteral("SSID like '%Bob's%' "), QString()));
    ASSERT_EQ(logged.size(), 2);
    EXPECT_EQ(logged[0], QStringLiteral("Error while saving scan result info. 'near \"s\": syntax error'"));
}

// Whatever is typed into the filter is a value: quotes match themselves, LIKE's wildcards are
// plain characters, and SQL text selects nothing it names.
TEST_F(ScanDatabaseTest, FilterValuesAreBoundNotSpliced)
{
    scanning::ScanDatabase database(databasePath());
    database.updateDatabase();
    logged.clear();
    database.storeScan({row("O'Brien", "00:00:00:00:00:01", -50, 1), row("Joe's", "00:00:00:00:00:02", -60, 1),
                        row("100% fun", "00:00:00:00:00:03", -70, 1), row("a_b", "00:00:00:00:00:04", -70, 1),
                        row("Home", "00:00:00:00:00:05", -40, 1)},
                       false);
    const struct {
        const char* typed;
        QStringList shown;
    } cases[] = {
        {"O'Brien", {"O'Brien"}}, {"joe's", {"Joe's"}},  {"%", {"100% fun"}},
        {"_", {"a_b"}},           {"' or 1=1 --", {}},   {"\\", {}},
    };
    for (const auto& c : cases) {
        scanning::FilterCriteria filter;
        filter.ssidForFilterValue = QString::fromUtf8(c.typed);
        filter.userDidClickedApplyFilterButton();
        for (bool merge : {false, true}) {
            const auto shown = database.readForDisplay(filter.condition, QString(), merge);
            ASSERT_TRUE(shown) << c.typed;
            QStringList names;
            for (const scan::StoredObservation& observation : *shown)
                names.append(observation.ssid);
            EXPECT_EQ(names, c.shown) << c.typed << merge;
            EXPECT_EQ(database.matchCount(filter.condition, QString()), c.shown.size()) << c.typed;
        }
    }
    EXPECT_TRUE(logged.isEmpty()) << logged.join('|').toStdString();
}

// Names that a literal delete statement reads in surprising ways must delete, keep and log
// exactly what the literal statements do, in both merge modes and before the migration.
TEST_F(ScanDatabaseTest, BatchedStoreMatchesTheLiteralStatements)
{
    const QList<QList<scanning::ObservationRow>> scans = {
        {row("SSID", "0:0:0:0:0:1", -50, 1), row("Cafe", "0:0:0:0:0:2", -60, 1), row("Bob's \"Net\"", "0:0:0:0:0:3", -70, 1),
         row(QString(), "0:0:0:0:0:4", -80, 1), row("!!!", "0:0:0:0:0:5", -75, 1), row("Cafe", "0:0:0:0:0:6", -65, 1)},
        {row("Cafe", "0:0:0:0:0:2", -55, 2), row("rowid", "0:0:0:0:0:7", -40, 2), row("ssid", "0:0:0:0:0:8", -45, 2),
         row("Bobs Net", "0:0:0:0:0:9", -71, 2), row("???", "0:0:0:0:0:a", -52, 2), row("x", "it's", -50, 2)},
    };
    for (bool migrated : {true, false}) {
        for (bool merge : {true, false}) {
            scanning::ScanDatabase batched(databasePath(QStringLiteral("batched%1%2").arg(migrated).arg(merge)));
            scanning::ScanDatabase literal(databasePath(QStringLiteral("literal%1%2").arg(migrated).arg(merge)));
            if (migrated) {
                batched.updateDatabase();
                literal.updateDatabase();
            }
            for (const auto& scan : scans) {
                logged.clear();
                batched.storeScan(scan, merge);
                const QStringList batchedLogs = logged;
                logged.clear();
                testsupport::literal_scan_store::storeScan(literal, scan, merge);
                EXPECT_EQ(batchedLogs, logged) << migrated << merge;
                EXPECT_EQ(query(batched.handle()), query(literal.handle())) << migrated << merge;
            }
            EXPECT_EQ(query(batched.handle()).isEmpty(), !migrated);
        }
    }
}

TEST_F(ScanDatabaseTest, CountsAreLeftInTheSettings)
{
    core::MemorySettings settings;
    scanning::ScanDatabase database(databasePath());
    database.updateDatabase();
    database.storeScan({row("A", "0:0:0:0:0:1", -50, 1, 1), row("B", "0:0:0:0:0:2", -50, 1, 14), row("C", "0:0:0:0:0:3", -50, 1, 36)},
                       true);
    database.updateNetworkCountsForSummaryWindow(settings);
    database.update24MhzNetworkCountsForSummaryWindow(settings);
    EXPECT_EQ(settings.value(QStringLiteral("TOTAL_NETWORKS")), QVariant(QStringLiteral("3")));
    EXPECT_EQ(settings.value(QStringLiteral("TOTAL_24MHZ_NETWORKS")), QVariant(QStringLiteral("2")));
}

TEST(ObservationRowTest, BothInterfaceGenerations)
{
    platform::ScanResult open = network(QStringLiteral("Caf\u00e9 & Co"), QStringLiteral("a:b:c:d:e:f"), -95, 40);
    open.securityMode = platform::SecurityNone;
    open.ibss = true;
    open.phyModes = platform::PhyA | platform::PhyN;
    platform::ScanResult secured = network(QString(), QStringLiteral("1:2:3:4:5:6"), -60, 11);
    secured.securityMode = platform::SecurityWPAPersonalMixed;

    struct Case { bool oldest; const platform::ScanResult* n; QStringList expected; };
    const QList<Case> cases = {
        {false, &open, {"40", "a/n", "-90", "Caf\u00e9 & Co", "0A:0B:0C:0D:0E:0F", "0", "0", "1", "5", "CafCo", "0"}},
        {false, &secured, {"11", "b/g/n", "-90", "[Hidden]", "01:02:03:04:05:06", "30", "-1", "0", "2.4", "[Hidden]", "1"}},
        {true, &open, {"40,+1", "n", "-90", "Caf\u00e9 & Co", "0A:0B:0C:0D:0E:0F", "0", "0", "1", "5", "CafCo", "0"}},
        {true, &secured, {"40,+1", "n", "-90", "[Hidden]", "01:02:03:04:05:06", "30", "3", "0", "2.4", "[Hidden]", "1"}},
    };
    for (const Case& c : cases) {
        const auto generation = c.oldest ? core::InterfaceGeneration::OldestRelease : core::InterfaceGeneration::Later;
        const scanning::ObservationRow r = scanning::ObservationRow::fromScanResult(*c.n, QStringLiteral("40,+1"), 7.0, generation);
        const QStringList actual = {r.channel, r.phyMode, r.noise, r.ssid, r.bssid, QString::number(r.singnalToNoise), r.securityMode,
                                    r.ibss, QString::number(r.channelBond), r.normalizedSsid, QString::number(r.hidden)};
        EXPECT_EQ(actual, c.expected) << c.oldest;
    }
}

// A scan killed half-way must leave the previous scan's rows: no torn table, no corrupt file.
TEST_F(ScanDatabaseTest, KillDuringAScanLeavesAConsistentTable)
{
    constexpr int networks = 400;
    int interrupted = 0;
    for (int attempt = 0; attempt < 8; ++attempt) {
        const QString path = databasePath(QStringLiteral("killed%1").arg(attempt));
        {
            scanning::ScanDatabase setup(path);
            setup.updateDatabase();
        }
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            scanning::ScanDatabase database(path);
            for (int scan = 1;; ++scan) {
                QList<scanning::ObservationRow> rows;
                for (int i = 0; i < networks; ++i)
                    rows.append(row(QStringLiteral("N%1").arg(i), QStringLiteral("02:00:00:00:%1:%2").arg(i / 256).arg(i % 256), -50, scan));
                database.storeScan(rows, false);
                if (scan == 1 && write(ready[1], "r", 1) != 1)
                    _exit(1);
            }
        }
        char byte = 0;
        ASSERT_EQ(read(ready[0], &byte, 1), 1);
        usleep(static_cast<useconds_t>(3000 + attempt * 7000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(ready[0]);
        close(ready[1]);
        if (QFile(path + QStringLiteral("-journal")).size() > 0)
            ++interrupted;

        scanning::ScanDatabase reopened(path);
        EXPECT_EQ(query(reopened.handle(), "pragma integrity_check"), QStringList{"ok:3"});
        EXPECT_EQ(query(reopened.handle(), "select count(*), count(distinct lastSeen) from wifi_scan_data"),
                  QStringList{QStringLiteral("%1:1|1:1").arg(networks)});
    }
    EXPECT_GT(interrupted, 0) << "no kill landed inside a scan's transaction";
}

} // namespace
