#include "scanning/exporter.h"

#include "scan/scanner_utils.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>
#include <QStringView>
#include <QUrl>

#include <utility>

namespace {

const QString selectTestMessage = QStringLiteral("Please select a test to generate the report.");
const QString csvFailedMessage = QStringLiteral("Unable to export CSV file. Please try agian.");
const QString htmlFailedMessage = QStringLiteral("Unable to export HTML file. Please try agian.");

const QString fallbackTemplate = QStringLiteral(
    "<html><body><center><h1>Skyvane Export </h1></center></body><html><center><strong>Export Date: "
    "</strong>{DATE}</center><br>{BODY}");

const QString graphBlocks = QStringLiteral(
    "<center style='font-size:18px; color:#f37736;'> <strong>2.4 GHz</strong></center> <p><img "
    "src='skv-images/2-4ghzGRAPH.png' /> </p> <br>"
    "<center style='font-size:18px; color:#f37736;'> <strong>5 GHz</strong></center><p><img "
    "src='skv-images/5ghzGRAPH.png' /> </p><br>"
    "<center style='font-size:18px; color:#f37736;'> <strong>Signal Rank</strong></center><p><img "
    "src='skv-images/SSIDrankGRAPH.png' /></p><br>");

// A test name is the user's text: a separator would shift every column after it, and a leading
// formula character would make spreadsheets run it. A plain name stays as it always was.
QString csvTestName(const QString& name)
{
    const bool formula = !name.isEmpty() && QStringView(u"=+-@\t\r").contains(name.front());
    bool breaks = false;
    for (const QChar c : name)
        breaks = breaks || c == QLatin1Char(',') || c == QLatin1Char('"') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
    if (!formula && !breaks)
        return name;
    QString cell = formula ? QLatin1Char('\'') + name : name;
    cell.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + cell + QLatin1Char('"');
}

bool writeUtf8(const QString& path, const QString& text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = text.toUtf8();
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

bool isCsv(ScanExporter::Kind kind)
{
    return kind == ScanExporter::SelectedTestCsv || kind == ScanExporter::AllTestsCsv;
}

bool needsSelection(ScanExporter::Kind kind)
{
    return kind != ScanExporter::AllTestsCsv && kind != ScanExporter::AllTestsHtml;
}

} // namespace

ScanExporter::ScanExporter(const platform::Clock& clock, const core::UserSettings& settings, QString templatePath)
    : clock_(clock), settings_(settings), templatePath_(std::move(templatePath))
{
}

bool ScanExporter::isKind(int tag)
{
    return tag >= SelectedTestCsv && tag <= AllTestsHtml;
}

QString ScanExporter::suggestedFileName(Kind kind, const QDateTime& now)
{
    QString name;
    switch (kind) {
    case SelectedTestCsv:
        name = QStringLiteral("single-scan-export-%1.csv");
        break;
    case AllTestsCsv:
        name = QStringLiteral("all-scan-export-%1.csv");
        break;
    case SelectedTestHtml:
    case SelectedTestHtmlWithGraphs:
        name = QStringLiteral("single-scan-report-%1.html");
        break;
    case AllTestsHtml:
        name = QStringLiteral("all-scan-report-%1.html");
        break;
    }
    return QLatin1String("skyvane-") + name.arg(ScannerUtils::formatDate(QStringLiteral("yyyyMMdd-HH-mm-ss"), now));
}

QString ScanExporter::destinationPath(const QString& locationUrlText)
{
    if (locationUrlText.contains(QLatin1String("file://localhost"))) {
        QString path = locationUrlText;
        return path.replace(QLatin1String("file://localhost"), QLatin1String("/"));
    }
    if (locationUrlText.startsWith(QLatin1String("file:")))
        return QUrl(locationUrlText).toLocalFile();
    return locationUrlText;
}

QString ScanExporter::csvText(const QList<WiFiScanTest*>& tests) const
{
    QString text;
    bool headingWritten = false;
    for (WiFiScanTest* test : tests) {
        const QString name = csvTestName(test->testLabel);
        for (ScanedResultInfo& record : test->scanedData1) {
            record.exportType = QStringLiteral("csv");
            if (!headingWritten) {
                text += record.getHeader(settings_);
                headingWritten = true;
            }
            text += name + QLatin1Char(',') + record.toString(settings_);
        }
    }
    return text;
}

QString ScanExporter::htmlBody(const QList<WiFiScanTest*>& tests) const
{
    QString body;
    for (WiFiScanTest* test : tests) {
        bool first = true;
        for (ScanedResultInfo& record : test->scanedData1) {
            record.exportType = QStringLiteral("html");
            if (first) {
                body += QLatin1String("<center style='font-size:18px; color:#f37736;'><strong> ")
                        + test->testLabel.toHtmlEscaped() + QLatin1String("</strong></center><br>")
                        + QLatin1String("<table>") + record.getHeader(settings_);
                first = false;
            }
            const bool connected = record.bssid == test->activeBSSID;
            body += (connected ? QLatin1String("<tr class=connected>") : QLatin1String("<tr>")) + record.toString(settings_)
                    + QLatin1String("</tr>\n");
        }
        body += QLatin1String("</table><br><br>");
    }
    return body;
}

QString ScanExporter::htmlPage(const QString& body, const QDateTime& now) const
{
    QString page = fallbackTemplate;
    QFile file(templatePath_);
    if (file.open(QIODevice::ReadOnly))
        page = QString::fromUtf8(file.readAll());
    // The date goes in first so that text in the body can never be taken for a placeholder.
    page.replace(QLatin1String("{DATE}"), ScannerUtils::formatDate(QStringLiteral("yyyy-MM-dd HH:mm:ss"), now));
    page.replace(QLatin1String("{BODY}"), body);
    return page;
}

ScanExporter::Result ScanExporter::startExporting(Kind kind, const QString& fileSavePath,
                                                  const QList<WiFiScanTest*>& allTests, WiFiScanTest* selected,
                                                  const ReportGraphs& graphs) const
{
    if (allTests.isEmpty())
        return {};
    if (needsSelection(kind) && selected == nullptr)
        return {QString(), selectTestMessage, selectTestMessage};

    const QList<WiFiScanTest*> visited = needsSelection(kind) ? QList<WiFiScanTest*>{selected} : allTests;
    const QDateTime now = clock_.now();
    if (isCsv(kind)) {
        if (!writeUtf8(fileSavePath, csvText(visited)))
            return {QString(), csvFailedMessage, QString()};
        return {fileSavePath, QString(), QString()};
    }
    const QString page = htmlPage(htmlBody(visited), now);
    if (kind == SelectedTestHtmlWithGraphs)
        return writeGraphReport(fileSavePath, page, now, graphs);
    if (!writeUtf8(fileSavePath, page))
        return {QString(), htmlFailedMessage, QString()};
    return {fileSavePath, QString(), QString()};
}

ScanExporter::Result ScanExporter::writeGraphReport(const QString& fileSavePath, const QString& page,
                                                    const QDateTime& now, const ReportGraphs& graphs) const
{
    const QFileInfo chosen(fileSavePath);
    const QString folder = chosen.absolutePath() + QLatin1String("/skyvane-single-scan-report-")
                           + ScannerUtils::formatDate(QStringLiteral("yyyyMMdd-HH-mm"), now);
    // A folder that cannot be made shows up as the failed page write below.
    QDir().mkpath(folder);
    const QString pagePath = folder + QLatin1Char('/') + chosen.fileName();
    if (!writeUtf8(pagePath, page + graphBlocks))
        return {QString(), htmlFailedMessage, QString()};

    const QString images = folder + QLatin1String("/skv-images");
    QDir().mkpath(images);
    const std::pair<GraphImageProvider*, const char*> wanted[] = {
        {graphs.channels24GHz, ReportGraphs::channels24GHzFileName},
        {graphs.channels5GHz, ReportGraphs::channels5GHzFileName},
        {graphs.signalRank, ReportGraphs::signalRankFileName},
    };
    QStringList missing;
    for (const auto& [graph, fileName] : wanted) {
        if (graph == nullptr || !graph->saveGraphAsImageAtPath(images))
            missing << QLatin1String(fileName);
    }
    if (missing.isEmpty())
        return {pagePath, QString(), QString()};
    return {pagePath, QStringLiteral("Report written without graph images: %1 missing.").arg(missing.join(QLatin1String(", "))),
            QString()};
}
