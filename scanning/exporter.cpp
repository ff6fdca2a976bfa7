#include "scanning/exporter.h"

#include "core/csv_cell.h"
#include "scan/scanner_utils.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>
#include <QUrl>

#include <utility>

namespace scanning {

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

// Why a write failed, in the system's words, with the file it concerns.
QString failure(const QString& path, const QFileDevice& file) { return path + QLatin1String(": ") + file.errorString(); }

// Writes the whole text or nothing: a regular file is replaced only once every byte is on disk.
// A device or pipe (/dev/stdout, a FIFO) cannot be replaced by renaming and is written in place.
// Returns the failure, empty on success.
QString writeUtf8(const QString& path, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const QFileInfo target(path);
    if (target.exists() && !target.isFile() && !target.isDir()) {
        QFile device(path);
        if (!device.open(QIODevice::WriteOnly))
            return failure(path, device);
        if (device.write(bytes) != bytes.size() || !device.flush())
            return failure(path, device);
        return {};
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return failure(path, file);
    if (file.write(bytes) != bytes.size()) {
        const QString reason = failure(path, file);
        file.cancelWriting();
        return reason;
    }
    if (!file.commit())
        return failure(path, file);
    return {};
}

// The outermost folder that making `path` would create; empty when it already exists.
QString firstMissingFolder(const QString& path)
{
    QString missing;
    for (QFileInfo folder(path); !folder.exists(); folder = QFileInfo(folder.absolutePath())) {
        missing = folder.absoluteFilePath();
        if (folder.isRoot())
            break;
    }
    return missing;
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
    return QLatin1String("skyvane-") + name.arg(scan::ScannerUtils::formatDate(QStringLiteral("yyyyMMdd-HH-mm-ss"), now));
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
        // The test name is the user's text: it may hold separators or start like a formula.
        const QString name = core::csvCell(test->testLabel);
        for (scan::ScanedResultInfo& record : test->scanedData1) {
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
        for (scan::ScanedResultInfo& record : test->scanedData1) {
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
    page.replace(QLatin1String("{DATE}"), scan::ScannerUtils::formatDate(QStringLiteral("yyyy-MM-dd HH:mm:ss"), now));
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
        return {QString(), selectTestMessage, selectTestMessage, QString()};

    const QList<WiFiScanTest*> visited = needsSelection(kind) ? QList<WiFiScanTest*>{selected} : allTests;
    const QDateTime now = clock_.now();
    if (isCsv(kind)) {
        const QString reason = writeUtf8(fileSavePath, csvText(visited));
        if (!reason.isEmpty())
            return {QString(), csvFailedMessage, QString(), reason};
        return {fileSavePath, QString(), QString(), QString()};
    }
    const QString page = htmlPage(htmlBody(visited), now);
    if (kind == SelectedTestHtmlWithGraphs)
        return writeGraphReport(fileSavePath, page, now, graphs);
    const QString reason = writeUtf8(fileSavePath, page);
    if (!reason.isEmpty())
        return {QString(), htmlFailedMessage, QString(), reason};
    return {fileSavePath, QString(), QString(), QString()};
}

ScanExporter::Result ScanExporter::writeGraphReport(const QString& fileSavePath, const QString& page,
                                                    const QDateTime& now, const ReportGraphs& graphs) const
{
    const QFileInfo chosen(fileSavePath);
    const QString folder = chosen.absolutePath() + QLatin1String("/skyvane-single-scan-report-")
                           + scan::ScannerUtils::formatDate(QStringLiteral("yyyyMMdd-HH-mm"), now);
    // A folder that cannot be made shows up as the failed page write below, which then takes
    // away whatever folders this export made, so a failed report leaves nothing behind.
    const QString created = firstMissingFolder(folder);
    QDir().mkpath(folder);
    const QString pagePath = folder + QLatin1Char('/') + chosen.fileName();
    const QString reason = writeUtf8(pagePath, page + graphBlocks);
    if (!reason.isEmpty()) {
        if (!created.isEmpty())
            QDir(created).removeRecursively();
        return {QString(), htmlFailedMessage, QString(), reason};
    }

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
        return {pagePath, QString(), QString(), QString()};
    return {pagePath, QStringLiteral("Report written without graph images: %1 missing.").arg(missing.join(QLatin1String(", "))),
            QString(), QString()};
}

} // namespace scanning
