#pragma once

#include "scanning/exporter.h"
#include "scanning/graph_image_provider.h"

#include "platform/api/clock.h"

#include <QMenu>
#include <QThreadPool>

#include <functional>

namespace scanning {
class ScanTestDriver;
}

namespace scanning::view {

// The Export menu of the scanner tab: asks where to save, then writes the file on a thread of
// its own so the window stays responsive, and reports the outcome as a status text or alert.
class ExportMenu : public QMenu {
    Q_OBJECT
public:
    // Returns the chosen path, or an empty text when the user cancelled.
    using SavePathChooser = std::function<QString(const QString& suggestedFileName)>;
    // The row of the test chosen in the test list, or -1.
    using SelectedTest = std::function<int()>;

    ExportMenu(scanning::ScanTestDriver& driver, const core::UserSettings& settings, SelectedTest selectedTest,
               QWidget* parent = nullptr);
    ~ExportMenu() override;

    void setSavePathChooser(SavePathChooser chooser) { chooser_ = std::move(chooser); }
    // The graphs a report with graphs embeds; they are asked for their images on the export thread.
    void setReportGraphs(const scanning::ReportGraphs& graphs) { graphs_ = graphs; }
    QAction* actionFor(scanning::ScanExporter::Kind kind) const;
    void exportScanResults(scanning::ScanExporter::Kind kind);
    // Blocks until every export started so far has been reported; for shutdown and tests.
    void waitForExports();

signals:
    void statusMessage(const QString& text);
    void alertRequested(const QString& messageText, const QString& informativeText);
    void exportFinished(const scanning::ScanExporter::Result& result);

private:
    void report(const scanning::ScanExporter::Result& result);

    scanning::ScanTestDriver& driver_;
    const core::UserSettings& settings_;
    SelectedTest selectedTest_;
    SavePathChooser chooser_;
    scanning::ReportGraphs graphs_;
    platform::SystemClock clock_;
    QList<QAction*> actions_;
    int running_ = 0;
    // Last, so it is destroyed first: no export outlives the members it reads.
    QThreadPool pool_;
};

} // namespace scanning::view
