#pragma once

#include "interface/interface_fields.h"
#include "scan/scaned_result_info.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <optional>

// The connected-network report: the interface tab's values filled into an HTML template, and
// the report folder that holds the page and the tab's graph image.
namespace connection {

inline const QString connectedReportTemplateResource = QStringLiteral(":/connectedSSIDreport.html");
inline const QString connectedReportFallbackTemplate =
    QStringLiteral("<html><body><center><h1>Skyvane Export </h1></center></body><html><center><strong>Export "
                   "Date: </strong>{DATE}</center><br>{BODY}");
inline const QString connectedGraphFileName = QStringLiteral("connectedSSIDgraph.png");

struct ConnectedReportValues {
    QString scanName;  // the scanner's first test label; empty when there is no test
    InterfaceFields fields;
    scan::ScanedResultInfo record;
    std::optional<int> signalToNoise;
    int interfaceChannel = 0;
};

// The template resource's text, or the fallback when it cannot be read.
QString loadConnectedReportTemplate(const QString& path = connectedReportTemplateResource);

// Every placeholder replaced (values HTML-escaped) and the graph section appended.
QString connectedReportHtml(const QString& templateText, const ConnectedReportValues& values, const QDateTime& now);

struct ConnectedReportLayout {
    QString folder;
    QString imageFolder;
    QString htmlPath;
};
// The report folder beside the chosen file, named for the minute; the page keeps the chosen name.
ConnectedReportLayout connectedReportLayout(const QString& chosenPath, const QDateTime& now);

// Writes the page and asks saveGraph to write the image into the image folder. Returns the
// page's path, or the reason nothing could be written.
struct ConnectedReportOutcome {
    QString htmlPath;
    QString failure;  // empty on success
};
ConnectedReportOutcome writeConnectedReport(const QString& chosenPath, const QString& html, const QDateTime& now,
                                            const std::function<bool(const QString& imageFolder)>& saveGraph);

} // namespace connection
