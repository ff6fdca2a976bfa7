#pragma once

#include "scanning/graph_image_provider.h"
#include "scanning/wifi_scan_test.h"

#include "core/user_settings.h"
#include "platform/api/clock.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace scanning {

// Writes the latest results of one scan test or of all tests as a CSV file or an HTML report.
// Exporting marks every visited record with its export type, as the rows render by it.
class ScanExporter {
public:
    // The integer tags of the export actions.
    enum Kind {
        SelectedTestCsv = 0,
        AllTestsCsv = 1,
        SelectedTestHtml = 2,
        SelectedTestHtmlWithGraphs = 3,
        AllTestsHtml = 4,
    };

    struct Result {
        QString writtenPath;  // the file written; empty when nothing was
        QString statusText;   // for the tab's status line; empty when there is nothing to say
        QString alertText;    // non-empty: also shown as an alert with an empty informative text
        QString failureReason;  // a failed write: the file and the system's words, e.g. "No space left on device"
    };

    static constexpr const char* templateResource = ":/Export.html";

    // templatePath lets a caller (or a test) point at another page template.
    // settings: which columns an HTML report shows.
    ScanExporter(const platform::Clock& clock, const core::UserSettings& settings,
                 QString templatePath = QLatin1String(templateResource));

    static QString suggestedFileName(Kind kind, const QDateTime& now);
    // The file path of a chosen location: its URL text, a file:/// URL or a plain path.
    static QString destinationPath(const QString& locationUrlText);

    // allTests in list order; selected may be null (then kinds 0, 2 and 3 write nothing).
    Result startExporting(Kind kind, const QString& fileSavePath, const QList<WiFiScanTest*>& allTests,
                          WiFiScanTest* selected, const ReportGraphs& graphs = {}) const;

    QString csvText(const QList<WiFiScanTest*>& tests) const;
    QString htmlBody(const QList<WiFiScanTest*>& tests) const;
    QString htmlPage(const QString& body, const QDateTime& now) const;

private:
    Result writeGraphReport(const QString& fileSavePath, const QString& page, const QDateTime& now,
                            const ReportGraphs& graphs) const;

    const platform::Clock& clock_;
    const core::UserSettings& settings_;
    QString templatePath_;
};

} // namespace scanning
