// skyvane-cli scan and watch against what a user's machine can hand them: broken or foreign
// databases, a database another scanner holds, unreadable or blocking captures, empty options.
#include "cli_run.h"

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// Runs skyvane-cli with HOME and the XDG folders inside home, so nothing of the real user's is touched.
CliRun runIn(const QTemporaryDir& home, const QStringList& arguments, QProcess* started = nullptr)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    environment.remove(QStringLiteral("QT_LOGGING_RULES"));
    QDir(home.path()).mkpath(QStringLiteral("tmp"));
    environment.insert(QStringLiteral("TMPDIR"), home.filePath(QStringLiteral("tmp")));
    QProcess local;
    QProcess& process = started ? *started : local;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli"), arguments);
    if (started)
        return {};
    EXPECT_TRUE(process.waitForFinished(60000)) << arguments.join(' ').toStdString();
    CliRun run{process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
               process.readAllStandardOutput().split('\n'), process.readAllStandardError()};
    if (!run.lines.isEmpty() && run.lines.last().isEmpty())
        run.lines.removeLast();
    return run;
}

QStringList tableSql(const QString& path)
{
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* statement = nullptr;
    QStringList rows;
    sqlite3_prepare_v2(db, "select sql from sqlite_master union all select count(*) from wifi_scan_data", -1, &statement, nullptr);
    while (statement && sqlite3_step(statement) == SQLITE_ROW)
        rows.append(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0))));
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return rows;
}

TEST(ScanHardening, AnUnusableDatabaseIsRefusedOnceWithTheReason)
{
    QTemporaryDir home;
    ASSERT_TRUE(home.isValid());
    const QString foreignPath = home.filePath(QStringLiteral("foreign.sqlite"));
    {
        sqlite3* db = nullptr;
        sqlite3_open(foreignPath.toUtf8().constData(), &db);
        sqlite3_exec(db, "create table wifi_scan_data (name text, seen integer); insert into wifi_scan_data values ('kept', 1);",
                     nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }
    const QString textPath = home.filePath(QStringLiteral("notes.sqlite"));
    QFile text(textPath);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write(QByteArray(4096, 'x'));
    text.close();
    const QString emptyPath = home.filePath(QStringLiteral("empty.sqlite"));
    QFile(emptyPath).open(QIODevice::WriteOnly);
    // A database made by a first run, then made read-only.
    const QString readOnlyPath = home.filePath(QStringLiteral("readonly.sqlite"));
    ASSERT_EQ(runIn(home, {"--simulate=3", "scan", "--count", "1", "--db", readOnlyPath}).exitCode, 0);
    ::chmod(QFile::encodeName(readOnlyPath).constData(), 0444);

    const struct {
        QString path;
        const char* reason;
    } cases[] = {
        {foreignPath, "its table wifi_scan_data has other columns (name, seen) than this program's"},
        {textPath, "file is not a database"},
        {emptyPath, "the file is empty (no such table: wifi_scan_data)"},
        {readOnlyPath, "attempt to write a readonly database"},
    };
    for (const auto& c : cases) {
        // File modes do not stop the superuser from writing.
        if (c.path == readOnlyPath && ::geteuid() == 0)
            continue;
        const QStringList before = tableSql(c.path);
        const CliRun run = runIn(home, {"--simulate=3", "scan", "--count", "1", "--db", c.path});
        EXPECT_EQ(run.exitCode, 1) << c.reason;
        EXPECT_TRUE(run.lines.isEmpty()) << c.reason << ": " << run.lines.value(0).constData();
        const QByteArray expected = QStringLiteral("skyvane-cli: the scan database %1 cannot be used: %2\n")
                                        .arg(c.path, QLatin1String(c.reason)).toUtf8();
        EXPECT_TRUE(run.err.endsWith(expected)) << run.err.constData();
        EXPECT_EQ(run.err.count("cannot be used"), 1);
        EXPECT_EQ(tableSql(c.path), before) << c.reason;
    }
    EXPECT_EQ(tableSql(foreignPath), (QStringList{"CREATE TABLE wifi_scan_data (name text, seen integer)", "1"}));
}

TEST(ScanHardening, ASecondScannerOfOneDatabaseIsRefusedAndNamesTheFirst)
{
    QTemporaryDir home;
    ASSERT_TRUE(home.isValid());
    const QString path = home.filePath(QStringLiteral("shared.sqlite"));
    QProcess first;
    runIn(home, {"--simulate=3", "scan", "--interval", "1", "--db", path}, &first);
    ASSERT_TRUE(first.waitForReadyRead(30000)) << first.readAllStandardError().constData();

    for (const char* command : {"scan", "scan"}) {
        const CliRun second = runIn(home, {"--simulate=3", command, "--count", "1", "--db", path});
        EXPECT_EQ(second.exitCode, 1);
        const QRegularExpression named(QStringLiteral("cannot be used: it is in use by skyvane-cli \\(pid %1\\)\n$")
                                           .arg(first.processId()));
        EXPECT_TRUE(named.match(QString::fromUtf8(second.err)).hasMatch()) << second.err.constData();
    }
    // A reader is served while the scanner runs: the table, its two indexes and the row count.
    EXPECT_EQ(tableSql(path).size(), 4);

    first.terminate();
    ASSERT_TRUE(first.waitForFinished(30000));
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().constData();
    EXPECT_EQ(runIn(home, {"--simulate=3", "scan", "--count", "1", "--db", path}).exitCode, 0);
}

TEST(ScanHardening, CapturesThatCannotBeReplayedFailTheRun)
{
    QTemporaryDir home;
    ASSERT_TRUE(home.isValid());
    // A pcap header (802.11 frames) and the start of a record that never ends.
    const QString truncated = home.filePath(QStringLiteral("truncated.pcap"));
    QFile file(truncated);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromHex("d4c3b2a1020004000000000000000000ffff000069000000") + QByteArray(6, '\0'));
    file.close();
    const QString fifo = home.filePath(QStringLiteral("live.pcap"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);

    const struct {
        QString capture;
        const char* reason;
    } captures[] = {
        {truncated, "scan failed: Could not read"},
        {fifo, "it is not a regular file"},
        {home.path(), "it is a folder"},
    };
    for (const auto& c : captures) {
        const QString database = home.filePath(QStringLiteral("c.sqlite"));
        for (const QStringList& command : {QStringList{"scan", "--count", "2", "--interval", "1", "--db", database},
                                           QStringList{"watch", "--count", "2", "--interval", "1"},
                                           QStringList{"-s"}}) {
            const CliRun run = runIn(home, QStringList{"--capture", c.capture} + command);
            EXPECT_EQ(run.exitCode, 1) << command.first().toStdString() << ' ' << c.reason;
            EXPECT_TRUE(run.err.contains(c.reason)) << run.err.constData();
        }
    }
}

TEST(ScanHardening, EmptyOptionValuesAreErrors)
{
    QTemporaryDir home;
    ASSERT_TRUE(home.isValid());
    const struct {
        QStringList arguments;
        const char* message;
    } cases[] = {
        {{"--capture", "", "scan", "--count", "1"}, "--capture needs a value, not an empty text"},
        {{"--interface=", "scan", "--count", "1"}, "--interface needs a value, not an empty text"},
        {{"--interface", "", "watch", "--count", "1"}, "--interface needs a value, not an empty text"},
        {{"--simulate", "scan", "--db", ""}, "--db needs a file, not an empty text"},
        {{"--simulate", "scan", "--rssi", "-70dB"}, "--rssi needs a whole number"},
    };
    for (const auto& c : cases) {
        const CliRun run = runIn(home, c.arguments);
        EXPECT_EQ(run.exitCode, 2) << c.message;
        EXPECT_TRUE(run.err.contains(c.message)) << run.err.constData();
    }
}

// --merge belongs to the run: no copy of the settings is made, nothing is left in the temporary
// folder, and the user's own choice is not written. The system's log texts wait for --verbose.
TEST(ScanHardening, MergeIsTheRunsOwnAndLogTextsWaitForVerbose)
{
    QTemporaryDir home;
    ASSERT_TRUE(home.isValid());
    const QStringList arguments = {QStringLiteral("--simulate=40"), QStringLiteral("scan"), QStringLiteral("--count"),
                                   QStringLiteral("1"), QStringLiteral("--interval"), QStringLiteral("1"),
                                   QStringLiteral("--merge")};
    const CliRun quiet = runIn(home, arguments);
    ASSERT_EQ(quiet.exitCode, 0) << quiet.err.constData();
    EXPECT_TRUE(quiet.lines.value(0).contains("(merged")) << quiet.lines.value(0).constData();
    EXPECT_FALSE(quiet.err.contains("Here i got a hidden ssid")) << quiet.err.constData();
    EXPECT_TRUE(QDir(home.filePath(QStringLiteral("tmp"))).isEmpty());
    // A run killed in the middle leaves nothing behind either.
    QStringList longRun = arguments;
    longRun[3] = QStringLiteral("100");
    QProcess killed;
    runIn(home, longRun, &killed);
    ASSERT_TRUE(killed.waitForReadyRead(30000));
    killed.kill();
    killed.waitForFinished();
    EXPECT_TRUE(QDir(home.filePath(QStringLiteral("tmp"))).isEmpty());
    QFile settings(home.filePath(QStringLiteral("config/skyvane/skyvane.conf")));
    if (settings.open(QIODevice::ReadOnly)) {
        EXPECT_FALSE(settings.readAll().contains("mergeScanResults"));
    }

    const CliRun verbose = runIn(home, QStringList{QStringLiteral("--verbose")} + arguments);
    ASSERT_EQ(verbose.exitCode, 0) << verbose.err.constData();
    EXPECT_TRUE(verbose.err.contains("Here i got a hidden ssid with bssid as ")) << verbose.err.constData();
}

} // namespace
