#include "cli_run.h"

#include "app/cli/cli_arguments.h"
#include "app/cli/scan_command.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const QRegularExpression countLabel(QStringLiteral("^\\d+ of \\d+ shown( \\(merged \\d+\\))?$"));

TEST(ScanArguments, FilterFieldsBuildTheCondition)
{
    const struct {
        QStringList arguments;
        const char* condition;
    } cases[] = {
        {{"scan"}, ""},
        {{"scan", "--ssid", "Home", "--channel", "6"}, "SSID like '%Home%'  and originalChannel=6 "},
        {{"--simulate", "scan", "--band", "2.4", "--rssi=-70", "--weaker", "--and-or3", "or"},
         "channelBond=2.4  or rssi < -70 "},
        {{"scan", "--ssid=Cafe", "--band=5", "--and-or2=or"}, "SSID like '%Cafe%'  or channelBond=5 "},
    };
    for (const auto& c : cases) {
        QString error;
        const auto request = app::cli::parseScanArguments(c.arguments, &error);
        ASSERT_TRUE(request) << error.toStdString();
        EXPECT_EQ(request->filter.filterCriteria, QLatin1String(c.condition)) << c.arguments.join(' ').toStdString();
    }
}

TEST(ScanArguments, RejectsWhatFormsNoRun)
{
    const QStringList bad[] = {
        {"scan", "--count", "2", "--duration", "5"}, {"scan", "--band", "6"}, {"scan", "--interval", "0"},
        {"scan", "--export", "pdf", "x.pdf"},        {"scan", "--export", "csv"}, {"scan", "--and-or1", "xor"},
        {"scan", "--channel", "six"},                {"scan", "--simulate", "--capture", "f.pcap"},
        {"scan", "--bogus"},                         {"--ssid", "x"},
    };
    for (const QStringList& arguments : bad) {
        QString error;
        EXPECT_FALSE(app::cli::parseScanArguments(arguments, &error)) << arguments.join(' ').toStdString();
        EXPECT_FALSE(error.isEmpty());
    }
}

TEST(CommandWord, SkipsBackendOptionsAndTheirValuesOnly)
{
    const struct {
        QStringList arguments;
        const char* command;
    } cases[] = {
        {{"--simulate=4", "scan"}, "scan"},
        {{"--seed=3", "--interface", "listen", "-s"}, "-s"},
        {{"--seed", "x", "listen"}, "listen"},
        {{"watch", "--capture", "scan"}, "watch"},
        {{"--export", "csv", "scan"}, "--export"},
        {{"--simulate", "--capture"}, ""},
        // A filter value that names another command stays a scan.
        {{"--simulate", "scan", "--ssid", "listen", "--count", "1"}, "scan"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(app::cli::commandWord(c.arguments), QLatin1String(c.command)) << c.arguments.join(' ').toStdString();
}

TEST(ScanCommand, PrintsEveryScanAndExportsAtTheEnd)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString csv = dir.filePath(QStringLiteral("all.csv"));
    const CliRun json = runCli({"--simulate=5", "scan", "--count", "2", "--interval", "1", "--json", "--db",
                                dir.filePath(QStringLiteral("db.sqlite")), "--export", "csv-all", csv});
    ASSERT_EQ(json.exitCode, 0) << json.err.constData();
    QList<int> scans;
    for (const QByteArray& line : json.lines) {
        QJsonParseError error{};
        const QJsonObject object = QJsonDocument::fromJson(line, &error).object();
        ASSERT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        if (object.contains(QLatin1String("countLabel"))) {
            scans << object.value(QLatin1String("scan")).toInt();
            EXPECT_TRUE(countLabel.match(object.value(QLatin1String("countLabel")).toString()).hasMatch());
        } else {
            EXPECT_FALSE(object.value(QLatin1String("bssid")).toString().isEmpty()) << line.constData();
            EXPECT_TRUE(object.contains(QLatin1String("singnalToNoise")));
        }
    }
    EXPECT_EQ(scans, (QList<int>{1, 2}));
    QFile file(csv);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> rows = file.readAll().split('\n');
    EXPECT_TRUE(rows.first().startsWith("\"Test Name\","));
    EXPECT_GT(rows.size(), 2);
    EXPECT_TRUE(rows[1].startsWith("Scanned,"));

    const CliRun table = runCli({"--simulate=3", "scan", "--count", "1", "--db", dir.filePath(QStringLiteral("t.sqlite"))});
    ASSERT_EQ(table.exitCode, 0) << table.err.constData();
    ASSERT_GE(table.lines.size(), 3);
    EXPECT_TRUE(countLabel.match(QString::fromUtf8(table.lines[0])).hasMatch()) << table.lines[0].constData();
    EXPECT_TRUE(table.lines[1].contains("SSID") && table.lines[1].contains("BSSID"));
}

// The results view sorts by name, A to Z, after every scan; the printed table follows it rather
// than the database's signal order.
TEST(ScanCommand, TableRowsAreSortedByNameLikeTheResultsView)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const CliRun run = runCli({"--simulate=8", "scan", "--count", "2", "--interval", "1", "--db",
                               dir.filePath(QStringLiteral("db.sqlite"))});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    QStringList names;
    qsizetype ssidAt = -1, bssidAt = -1;
    for (const QByteArray& bytes : run.lines) {
        const QString line = QString::fromUtf8(bytes);
        if (line.contains(QLatin1String(" BSSID "))) {
            ssidAt = line.indexOf(QLatin1String("SSID"));
            bssidAt = line.indexOf(QLatin1String("BSSID"));
            names.clear();  // the last scan's table is checked
        } else if (bssidAt > 0 && line.size() > bssidAt && !countLabel.match(line).hasMatch()) {
            names << line.mid(ssidAt, bssidAt - ssidAt).trimmed();
        }
    }
    ASSERT_EQ(names.size(), 8) << run.lines.join('\n').constData();
    QStringList sorted = names;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    EXPECT_EQ(names, sorted);
}

// A failed export is a failed command: it says why in the system's words and leaves no file.
TEST(ScanCommand, FailedExportExitsNonZeroWithTheReason)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString tooLong = dir.filePath(QString(300, QLatin1Char('r')) + QLatin1String(".html"));
    const struct {
        const char* kind;
        QString target;
        const char* reason;
    } cases[] = {
        {"csv", QStringLiteral("/dev/full"), "/dev/full: No space left on device"},
        {"csv", QStringLiteral("/dev/full/x.csv"), "/dev/full/x.csv: "},
        {"html-graphs", tooLong, "File name too long"},
    };
    for (const auto& c : cases) {
        const CliRun run = runCli({"--simulate=3", "scan", "--count", "1", "--db", dir.filePath(QStringLiteral("db.sqlite")),
                                   "--export", c.kind, c.target});
        EXPECT_EQ(run.exitCode, 1) << c.kind;
        EXPECT_TRUE(run.err.contains("Please try agian.")) << run.err.constData();
        EXPECT_TRUE(run.err.contains(c.reason)) << run.err.constData();
    }
    // Only the database and its scanner lock: no partial report.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{QStringLiteral("db.sqlite"), QStringLiteral("db.sqlite.lock")}));
}

} // namespace
