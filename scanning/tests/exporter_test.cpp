#include "core/memory_settings.h"
#include "scanning/exporter.h"

#include "scan/scanner_utils.h"
#include "testsupport/manual_clock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QDateTime exportTime(QDate(2024, 3, 9), QTime(14, 5, 7));

// RFC 4180: quoted cells may hold commas, doubled quotes and line breaks; anything else fails the test.
QList<QStringList> parseCsv(const QString& text)
{
    static const QRegularExpression cell(QStringLiteral("(?:\"((?:[^\"]|\"\")*)\"|([^,\"\n]*))([,\n])"));
    QList<QStringList> rows{{}};
    for (qsizetype at = 0; at < text.size();) {
        const auto m = cell.match(text, at, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
        if (!m.hasMatch()) {
            ADD_FAILURE() << "malformed CSV at offset " << at;
            return rows;
        }
        rows.last() << (m.capturedStart(1) >= 0 ? m.captured(1).replace(QLatin1String("\"\""), QLatin1String("\"")) : m.captured(2));
        if (m.captured(3) == QLatin1String("\n"))
            rows << QStringList();
        at = m.capturedEnd();
    }
    EXPECT_TRUE(rows.takeLast().isEmpty()) << "text after the last line break";
    return rows;
}

QString readUtf8(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

scan::ScanedResultInfo record(const QString& ssid, const QString& bssid, const QString& apname = QStringLiteral("ap"))
{
    scan::ScanedResultInfo r;
    r.ssid = ssid;
    r.bssid = bssid;
    r.apname = apname;
    r.vendorName = QStringLiteral("Vendor, Inc.");
    r.originalChannel = 6;
    r.rssi = -50;
    r.lastSeen = exportTime;
    return r;
}

class FakeGraph : public scanning::GraphImageProvider {
public:
    explicit FakeGraph(QString fileName) : fileName_(std::move(fileName)) {}
    bool saveGraphAsImageAtPath(const QString& folderPath) override
    {
        folder = folderPath;
        QFile file(folderPath + QLatin1Char('/') + fileName_);
        return file.open(QIODevice::WriteOnly) && file.write("png") == 3;
    }
    QString folder;

private:
    QString fileName_;
};

class ExporterTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir_.isValid());
        empty_.testLabel = QStringLiteral("Empty");
        office_.testLabel = QStringLiteral("Office");
        office_.activeBSSID = QStringLiteral("00:11:22:33:44:02");
        office_.scanedData1 = {record(QStringLiteral("Guest"), QStringLiteral("00:11:22:33:44:01")),
                               record(QStringLiteral("Home"), QStringLiteral("00:11:22:33:44:02"))};
        lab_.testLabel = QStringLiteral("Lab");
        lab_.activeBSSID = QStringLiteral("00:11:22:33:44:03");
        lab_.scanedData1 = {record(QStringLiteral("LabNet"), QStringLiteral("00:11:22:33:44:03"))};
    }

    QString path(const QString& name) const { return dir_.filePath(name); }
    QList<scanning::WiFiScanTest*> all() { return {&empty_, &office_, &lab_}; }

    QTemporaryDir dir_;
    testsupport::ManualClock clock_{exportTime};
    core::MemorySettings settings_;
    scanning::WiFiScanTest empty_, office_, lab_;
};

TEST_F(ExporterTest, NamesAndDestinationPaths)
{
    const std::pair<scanning::ScanExporter::Kind, const char*> names[] = {
        {scanning::ScanExporter::SelectedTestCsv, "skyvane-single-scan-export-20240309-14-05-07.csv"},
        {scanning::ScanExporter::AllTestsCsv, "skyvane-all-scan-export-20240309-14-05-07.csv"},
        {scanning::ScanExporter::SelectedTestHtml, "skyvane-single-scan-report-20240309-14-05-07.html"},
        {scanning::ScanExporter::SelectedTestHtmlWithGraphs, "skyvane-single-scan-report-20240309-14-05-07.html"},
        {scanning::ScanExporter::AllTestsHtml, "skyvane-all-scan-report-20240309-14-05-07.html"},
    };
    for (const auto& [kind, name] : names)
        EXPECT_EQ(scanning::ScanExporter::suggestedFileName(kind, exportTime), QLatin1String(name));

    const std::pair<const char*, const char*> paths[] = {
        {"file://localhost/home/a/r.csv", "//home/a/r.csv"},
        {"file:///home/a/my%20r.csv", "/home/a/my r.csv"},
        {"/home/a/r.csv", "/home/a/r.csv"},
    };
    for (const auto& [url, expected] : paths)
        EXPECT_EQ(scanning::ScanExporter::destinationPath(QLatin1String(url)), QLatin1String(expected)) << url;
}

TEST_F(ExporterTest, CsvOfAllTestsHasOneHeadingEvenAfterAnEmptyTest)
{
    const scanning::ScanExporter exporter(clock_, settings_);
    const auto result = exporter.startExporting(scanning::ScanExporter::AllTestsCsv, path("all.csv"), all(), nullptr);
    ASSERT_EQ(result.writtenPath, path("all.csv"));
    const QString text = readUtf8(path("all.csv"));
    EXPECT_TRUE(text.startsWith(QLatin1String("\"Test Name\",")));
    EXPECT_EQ(text.count(QLatin1String("\"Test Name\"")), 1);
    const auto rows = parseCsv(text);
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[1].mid(0, 2), (QStringList{QStringLiteral("Office"), QStringLiteral("Guest")}));
    EXPECT_EQ(rows[3].mid(0, 2), (QStringList{QStringLiteral("Lab"), QStringLiteral("LabNet")}));
    EXPECT_EQ(office_.scanedData1[0].exportType, QLatin1String("csv"));
}

TEST_F(ExporterTest, HtmlBodyMarksConnectedRowAndClosesEmptyTests)
{
    EXPECT_EQ(scanning::ScanExporter(clock_, settings_).htmlBody({&empty_}), QLatin1String("</table><br><br>"));

    const QString body = scanning::ScanExporter(clock_, settings_).htmlBody(all());
    EXPECT_TRUE(body.startsWith(QLatin1String("</table><br><br><center style='font-size:18px; color:#f37736;'>"
                                              "<strong> Office</strong></center><br><table><thead>")));
    EXPECT_EQ(body.count(QLatin1String("<tr class=connected><td>Home</td>")), 1);
    EXPECT_EQ(body.count(QLatin1String("<tr class=connected><td>LabNet</td>")), 1);
    EXPECT_EQ(body.count(QLatin1String("<tr><td>Guest</td>")), 1);

    const scanning::ScanExporter exporter(clock_, settings_);
    for (const auto kind : {scanning::ScanExporter::SelectedTestHtml, scanning::ScanExporter::SelectedTestHtmlWithGraphs,
                            scanning::ScanExporter::AllTestsHtml}) {
        const auto result = exporter.startExporting(kind, path(QStringLiteral("r%1.html").arg(kind)), all(), &office_);
        EXPECT_TRUE(readUtf8(result.writtenPath).contains(QLatin1String("<tr class=connected><td>Home</td>"))) << kind;
    }
}

TEST_F(ExporterTest, PageComesFromTheResourceOrTheFallbackTemplate)
{
    const QString page = scanning::ScanExporter(clock_, settings_).htmlPage(QStringLiteral("<p>{DATE}</p>"), exportTime);
    EXPECT_TRUE(page.contains(QLatin1String("tr.connected")));
    EXPECT_TRUE(page.contains(QLatin1String("2024-03-09 14:05:07")));
    EXPECT_TRUE(page.contains(QLatin1String("<p>{DATE}</p>")));

    const scanning::ScanExporter fallback(clock_, settings_, path(QStringLiteral("missing.html")));
    EXPECT_EQ(fallback.htmlPage(QStringLiteral("BODY"), exportTime),
              QLatin1String("<html><body><center><h1>Skyvane Export </h1></center></body><html><center><strong>"
                            "Export Date: </strong>2024-03-09 14:05:07</center><br>BODY"));
}

TEST_F(ExporterTest, NothingWrittenWithoutSelectionOrWhenTheWriteFails)
{
    const scanning::ScanExporter exporter(clock_, settings_);
    for (const auto kind : {scanning::ScanExporter::SelectedTestCsv, scanning::ScanExporter::SelectedTestHtml,
                            scanning::ScanExporter::SelectedTestHtmlWithGraphs}) {
        const auto result = exporter.startExporting(kind, path(QStringLiteral("x")), all(), nullptr);
        EXPECT_TRUE(result.writtenPath.isEmpty());
        EXPECT_EQ(result.statusText, QLatin1String("Please select a test to generate the report."));
        EXPECT_EQ(result.alertText, result.statusText);
    }
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("x"))));

    QFile blocker(path(QStringLiteral("file")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    const QString unwritable = path(QStringLiteral("file/sub/r"));
    const std::pair<scanning::ScanExporter::Kind, const char*> failures[] = {
        {scanning::ScanExporter::AllTestsCsv, "Unable to export CSV file. Please try agian."},
        {scanning::ScanExporter::AllTestsHtml, "Unable to export HTML file. Please try agian."},
        {scanning::ScanExporter::SelectedTestHtmlWithGraphs, "Unable to export HTML file. Please try agian."},
    };
    for (const auto& [kind, message] : failures) {
        const auto result = exporter.startExporting(kind, unwritable, all(), &lab_);
        EXPECT_TRUE(result.writtenPath.isEmpty()) << kind;
        EXPECT_EQ(result.statusText, QLatin1String(message));
        EXPECT_TRUE(result.alertText.isEmpty());
    }
}

// A failed write names the system's reason, and neither a half-written file nor a report
// folder made for the failed export stays behind.
TEST_F(ExporterTest, FailedWritesSayWhyAndLeaveNothingBehind)
{
    const scanning::ScanExporter exporter(clock_, settings_);
    const QString tooLong = path(QString(300, QLatin1Char('r')) + QLatin1String(".html"));
    const struct {
        scanning::ScanExporter::Kind kind;
        QString target;
        const char* reason;
    } cases[] = {
        {scanning::ScanExporter::AllTestsCsv, QStringLiteral("/dev/full"), "/dev/full: No space left on device"},
        {scanning::ScanExporter::AllTestsHtml, QStringLiteral("/dev/full"), "/dev/full: No space left on device"},
        {scanning::ScanExporter::SelectedTestCsv, QStringLiteral("/dev/full/x.csv"), "/dev/full/x.csv: "},
        {scanning::ScanExporter::SelectedTestHtmlWithGraphs, tooLong, "File name too long"},
        {scanning::ScanExporter::AllTestsCsv, tooLong, "File name too long"},
    };
    for (const auto& c : cases) {
        const auto result = exporter.startExporting(c.kind, c.target, all(), &lab_);
        EXPECT_TRUE(result.writtenPath.isEmpty()) << c.kind;
        EXPECT_TRUE(result.failureReason.contains(QLatin1String(c.reason))) << result.failureReason.toStdString();
        EXPECT_FALSE(result.statusText.isEmpty());
    }
    // The device is written in place, never replaced by a renamed file.
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/full")).isFile());
    EXPECT_EQ(QDir(dir_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList());
}

TEST_F(ExporterTest, GraphReportGetsItsOwnFolderImagesAndBlocks)
{
    const scanning::ScanExporter exporter(clock_, settings_);
    const QString folder = path(QStringLiteral("skyvane-single-scan-report-20240309-14-05"));

    const auto bare = exporter.startExporting(scanning::ScanExporter::SelectedTestHtmlWithGraphs, path("g.html"), all(), &lab_);
    EXPECT_EQ(bare.writtenPath, folder + QLatin1String("/g.html"));
    EXPECT_FALSE(QFileInfo::exists(path("g.html")));
    EXPECT_TRUE(QFileInfo(folder + QLatin1String("/skv-images")).isDir());
    EXPECT_TRUE(bare.statusText.contains(QLatin1String("2-4ghzGRAPH.png, 5ghzGRAPH.png, SSIDrankGRAPH.png")));
    const QString page = readUtf8(bare.writtenPath);
    EXPECT_TRUE(page.endsWith(QLatin1String(
        "<center style='font-size:18px; color:#f37736;'> <strong>2.4 GHz</strong></center> <p><img "
        "src='skv-images/2-4ghzGRAPH.png' /> </p> <br>"
        "<center style='font-size:18px; color:#f37736;'> <strong>5 GHz</strong></center><p><img "
        "src='skv-images/5ghzGRAPH.png' /> </p><br>"
        "<center style='font-size:18px; color:#f37736;'> <strong>Signal Rank</strong></center><p><img "
        "src='skv-images/SSIDrankGRAPH.png' /></p><br>")));

    FakeGraph g24(QStringLiteral("2-4ghzGRAPH.png")), g5(QStringLiteral("5ghzGRAPH.png"));
    FakeGraph rank(QStringLiteral("SSIDrankGRAPH.png"));
    const auto full = exporter.startExporting(scanning::ScanExporter::SelectedTestHtmlWithGraphs, path("g.html"), all(), &lab_,
                                              {&g24, &g5, &rank});
    EXPECT_TRUE(full.statusText.isEmpty());
    EXPECT_EQ(rank.folder, folder + QLatin1String("/skv-images"));
    EXPECT_TRUE(QFileInfo::exists(folder + QLatin1String("/skv-images/5ghzGRAPH.png")));
}

TEST_F(ExporterTest, HostileNamesStayTextInBothFormats)
{
    const QStringList hostile = {
        QStringLiteral("<script>alert('x')</script>"), QStringLiteral("say \"hi\", all"),
        QStringLiteral("two\nlines"), QStringLiteral("=HYPERLINK(\"http://x\")"), QStringLiteral("a&b</td></tr>"),
    };
    scanning::WiFiScanTest evil;
    evil.testLabel = QStringLiteral("=cmd|' /C calc'!A0, \"<b>\"\nx");
    for (qsizetype i = 0; i < hostile.size(); ++i)
        evil.scanedData1 << record(hostile[i], QStringLiteral("aa:00:00:00:00:0%1").arg(i), hostile[i]);

    const scanning::ScanExporter exporter(clock_, settings_);
    exporter.startExporting(scanning::ScanExporter::SelectedTestHtml, path("evil.html"), {&evil}, &evil);
    const QString html = readUtf8(path("evil.html"));
    const QSet<QString> allowedTags = {"center", "strong", "br", "table", "thead", "tr", "th", "td"};
    const QString body = scanning::ScanExporter(clock_, settings_).htmlBody({&evil});
    static const QRegularExpression tag(QStringLiteral("</?([a-zA-Z0-9]+)[^>]*>"));
    for (auto it = tag.globalMatch(body); it.hasNext();) {
        const QString name = it.next().captured(1);
        EXPECT_TRUE(allowedTags.contains(name)) << name.toStdString();
    }
    EXPECT_EQ(body.count(QLatin1String("<tr")), body.count(QLatin1String("</tr>")));
    EXPECT_TRUE(html.contains(evil.testLabel.toHtmlEscaped()));

    exporter.startExporting(scanning::ScanExporter::SelectedTestCsv, path("evil.csv"), {&evil}, &evil);
    const auto rows = parseCsv(readUtf8(path("evil.csv")));
    ASSERT_EQ(rows.size(), hostile.size() + 1);
    for (qsizetype i = 1; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].size(), rows[0].size()) << i;
        EXPECT_EQ(rows[i][0], QLatin1Char('\'') + evil.testLabel);
        const QString& ssid = hostile[i - 1];
        EXPECT_EQ(rows[i][1], ssid.startsWith(QLatin1Char('=')) ? QLatin1Char('\'') + ssid : ssid);
    }
}

} // namespace
