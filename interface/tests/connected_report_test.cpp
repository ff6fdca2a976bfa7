#include "interface/connected_report.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace connection;

namespace {

const QDateTime now(QDate(2026, 3, 4), QTime(13, 5, 9));

ConnectedReportValues connectedValues()
{
    ConnectedReportValues values;
    values.fields.powerSegment = 0;
    values.fields.ssid = "<script>alert(1)</script> & co";
    values.fields.bssid = "02:00:00:00:00:01";
    values.fields.rssi = "-50 dBm";
    values.record.channel = "36";
    values.record.channelBond = 5.0;
    values.record.channelWidth = 80;
    values.record.maxDataRate = "866.7";
    values.record.numberOfStreams = 2;
    values.record.isWPS = 1;
    values.record.shortGIFor24MhzEnabled = 1;
    values.signalToNoise = 42;
    return values;
}

TEST(ConnectedReport, EveryPlaceholderIsFilledAndAirTextIsEscaped)
{
    const QString page = connectedReportHtml(loadConnectedReportTemplate(), connectedValues(), now);
    EXPECT_FALSE(page.contains(QRegularExpression("\\{[A-Z0-9_]+\\}"))) << page.toStdString();
    EXPECT_TRUE(page.contains("&lt;script&gt;alert(1)&lt;/script&gt; &amp; co"));
    EXPECT_FALSE(page.contains("<script>"));
    for (const char* text : {"2026-03-04 13:05:09", "Connected SSID", "42 dB", "866.7 Mbps", "5 GHz", "80 MHz",
                             "Enabled", "Disabled", "Yes", ">36<", ">On<", "skv-images/connectedSSIDgraph.png"})
        EXPECT_TRUE(page.contains(QLatin1String(text))) << text;
}

TEST(ConnectedReport, AirTextThatReadsLikeAPlaceholderStaysText)
{
    ConnectedReportValues values = connectedValues();
    values.fields.ssid = "{RSSI}<b>{GCE}";
    values.record.groupDataChiperEncryption = "CCMP";
    const QString page = connectedReportHtml("[{SSID}|{RSSI}|{GCE}|{BODY}]", values, now);
    EXPECT_TRUE(page.startsWith("[{RSSI}&lt;b&gt;{GCE}|-50 dBm|CCMP|{BODY}]")) << page.toStdString();
}

TEST(ConnectedReport, FallbackTemplateKeepsBodyAndPowerOffEmptiesTheFields)
{
    ConnectedReportValues off;
    off.scanName = "Office walk";
    off.interfaceChannel = 6;
    const QString page = connectedReportHtml(loadConnectedReportTemplate("/nonexistent/template.html"), off, now);
    EXPECT_TRUE(page.startsWith(connectedReportFallbackTemplate.left(40)));
    EXPECT_TRUE(page.contains("{BODY}"));

    const QString tableTemplate = "[{SCAN_NAME}|{POWER}|{SSID}|{RSSI}|{SNR}|{CHANNEL}|{CHANNEL_WIDTH}|{STREAMS}]";
    EXPECT_TRUE(connectedReportHtml(tableTemplate, off, now).startsWith("[Office walk|Off||||6||]"));
}

TEST(ConnectedReport, TwoReportsInOneMinuteShareTheirFolder)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    int graphs = 0;
    const auto saveGraph = [&](const QString& folder) {
        ++graphs;
        QFile image(folder + "/" + connectedGraphFileName);
        return image.open(QIODevice::WriteOnly) && image.write("png") == 3;
    };
    const auto first = writeConnectedReport("file://localhost" + dir.path() + "/mine.html", "one", now, saveGraph);
    const auto second = writeConnectedReport(dir.path() + "/mine.html", "two", now.addSecs(40), saveGraph);
    EXPECT_TRUE(first.failure.isEmpty()) << first.failure.toStdString();
    EXPECT_EQ(first.htmlPath, second.htmlPath);
    EXPECT_EQ(first.htmlPath, dir.path() + "/skyvane-connected-ssid-report-20260304-13-05/mine.html");
    QFile page(second.htmlPath);
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_EQ(page.readAll(), "two");
    EXPECT_TRUE(QFile::exists(dir.path() + "/skyvane-connected-ssid-report-20260304-13-05/skv-images/connectedSSIDgraph.png"));
    EXPECT_EQ(graphs, 2);

    const auto refused = writeConnectedReport("/proc/nope/x.html", "x", now, saveGraph);
    EXPECT_FALSE(refused.failure.isEmpty());
}

} // namespace
