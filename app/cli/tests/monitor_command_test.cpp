#include "cli_run.h"

#include <QRegularExpression>

namespace {

// The BSSID of a named network as a full scan of the simulated environment prints it.
QString bssidOfNamedNetwork()
{
    const CliRun scan = runCli({QStringLiteral("--simulate"), QStringLiteral("--seed"), QStringLiteral("7"),
                                QStringLiteral("scan"), QStringLiteral("--count"), QStringLiteral("1")});
    static const QRegularExpression named(QStringLiteral("^  Skyvane Home +(([0-9A-F]{2}:){5}[0-9A-F]{2}) "));
    for (const QByteArray& line : scan.lines) {
        const auto match = named.match(QString::fromUtf8(line));
        if (match.hasMatch())
            return match.captured(1);
    }
    return {};
}

TEST(CliMonitor, PrintsOneLinePerRescanWithSignalNoiseAndSnr)
{
    const QString bssid = bssidOfNamedNetwork();
    ASSERT_FALSE(bssid.isEmpty());
    // Lower case is the same access point.
    const CliRun run = runCli({QStringLiteral("--simulate"), QStringLiteral("--seed"), QStringLiteral("7"),
                               QStringLiteral("monitor"), bssid.toLower(), QStringLiteral("--interval"),
                               QStringLiteral("1"), QStringLiteral("--count"), QStringLiteral("2")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(run.lines.size(), 3);
    EXPECT_TRUE(run.lines[0].startsWith("Monitoring - " + bssid.toUtf8() + "  \"Skyvane Home\"  -"))
        << run.lines[0].toStdString();
    static const QRegularExpression rescan(
        QStringLiteral("^\\d\\d:\\d\\d:\\d\\d  (-\\d+), (-\\d+) \\((-?\\d+)\\)  \\d+/(20|40|80|160)MHz  [a-z/]+$"));
    for (int i = 1; i < 3; ++i) {
        const auto match = rescan.match(QString::fromUtf8(run.lines[i]));
        ASSERT_TRUE(match.hasMatch()) << run.lines[i].toStdString();
        EXPECT_EQ(match.captured(1).toInt() - match.captured(2).toInt(), match.captured(3).toInt());
    }
}

TEST(CliMonitor, BeepWithoutASoundServerSaysSoAndKeepsMonitoring)
{
    const QString bssid = bssidOfNamedNetwork();
    qputenv("PULSE_SERVER", "unix:/nonexistent/skyvane-test");
    const CliRun run = runCli({QStringLiteral("--simulate"), QStringLiteral("--seed"), QStringLiteral("7"),
                               QStringLiteral("monitor"), bssid, QStringLiteral("--interval"), QStringLiteral("1"),
                               QStringLiteral("--count"), QStringLiteral("2"), QStringLiteral("--beep")});
    qunsetenv("PULSE_SERVER");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.lines.size(), 3);
    EXPECT_EQ(run.err.count("skyvane-cli: cannot beep:"), 1) << run.err.toStdString();
}

TEST(CliMonitor, UnknownOrMalformedBssidIsRefusedInWords)
{
    const struct {
        QStringList arguments;
        int exitCode;
        const char* said;
    } cases[] = {
        {{QStringLiteral("--simulate"), QStringLiteral("monitor"), QStringLiteral("02:00:00:00:00:01"),
          QStringLiteral("--count"), QStringLiteral("1")},
         1, "no access point with BSSID 02:00:00:00:00:01 is in range"},
        {{QStringLiteral("--simulate"), QStringLiteral("monitor"), QStringLiteral("<script>")}, 2, "needs a BSSID"},
        {{QStringLiteral("--simulate"), QStringLiteral("monitor")}, 2, "needs the BSSID"},
        {{QStringLiteral("--simulate"), QStringLiteral("monitor"), QStringLiteral("02:00:00:00:00:01"),
          QStringLiteral("--interval"), QStringLiteral("0")},
         2, "--interval"},
    };
    for (const auto& c : cases) {
        const CliRun run = runCli(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.said;
        EXPECT_TRUE(run.err.contains(c.said)) << run.err.toStdString();
        EXPECT_TRUE(run.lines.isEmpty());
    }
}

} // namespace
