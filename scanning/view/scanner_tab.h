#pragma once

#include "scan/scaned_result_info.h"

#include <QList>
#include <QWidget>

class QAction;
class QMenu;
class QSplitter;

namespace core {
class UserSettings;
}

namespace scanning {
class ResultsTableModel;
class ScanTestDriver;
}

namespace scanning::view {

class ExportMenu;
class FilterBar;
class ResultsTableView;
class ScanControls;
class TestListView;

// The scanner tab of the main window: run controls and test list, the filter bar and the
// results table, bound to the scan driver and the results table logic.
class ScannerTab : public QWidget {
    Q_OBJECT
public:
    ScannerTab(scanning::ScanTestDriver& driver, scanning::ResultsTableModel& results, core::UserSettings& settings,
               QWidget* parent = nullptr);

    // Actions the main window puts in its menus and toolbar (with their shortcuts).
    QAction* startPauseAction() const;   // Ctrl+R
    QAction* stopAction() const;         // Ctrl+.
    QAction* applyFilterAction() const;  // Ctrl+Return
    QAction* copyAction() const;         // Ctrl+C
    QMenu* exportMenu() const;
    // Puts the graphs under the results table; the composition root owns what goes there.
    void setGraphPane(QWidget* pane);

    ScanControls* controls() const { return controls_; }
    TestListView* testList() const { return tests_; }
    FilterBar* filterBar() const { return filter_; }
    ResultsTableView* resultsView() const { return table_; }
    ExportMenu* exporter() const { return export_; }

public slots:
    // The "fontSize" setting changed.
    void applyFontSize();

signals:
    void statusMessage(const QString& text);
    // A row was opened anywhere but its tag: the samples window shows the network's history.
    void samplesWindowRequested(const QString& header, const QList<scan::ScanedResultInfo>& history);

private:
    void showAlert(const QString& messageText, const QString& informativeText);

    ScanControls* controls_;
    TestListView* tests_;
    FilterBar* filter_;
    ResultsTableView* table_;
    ExportMenu* export_;
    QSplitter* resultsSplitter_ = nullptr;
};

} // namespace scanning::view
