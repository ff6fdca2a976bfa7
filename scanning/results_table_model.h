#pragma once

#include "core/user_settings.h"
#include "scan/scaned_result_info.h"
#include "scanning/scan_results_listener.h"
#include "scanning/unique_string_list.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace scanning {

class GraphSink;

// The results table of the shown scan test without its widgets: rows and their order, column
// visibility, the networks chosen for plotting, copying rows and the per-BSSID tags. A table
// view sees it through ResultsTableItemModel; the scan driver feeds it; it drives the graph
// through a GraphSink.
class ResultsTableModel : public QObject, public ScanResultsListener {
    Q_OBJECT
public:
    // settings: column visibility and the per-BSSID tags live there.
    explicit ResultsTableModel(core::UserSettings& settings, GraphSink* graph = nullptr, QObject* parent = nullptr);

    void setGraphSink(GraphSink* graph);

    // Called by the scan driver.
    void setCurrentTest(const std::shared_ptr<WiFiScanTest>& test) override;
    const std::shared_ptr<WiFiScanTest>& currentTest() const { return currentTest_; }
    // Forgets the selection and the plots before another test is shown.
    void reset() override;
    // After each scan: sorts the rows again, updates the plots and reloads.
    void updateView(const std::shared_ptr<WiFiScanTest>& test) override;
    void scanDidStartedByUser(const std::shared_ptr<WiFiScanTest>& test) override;
    void scanDidStoppedByUser() override;
    // The shown test was deleted.
    void clearView() override;

    QStringList selectedBssids() const override { return selectedBssids_.items(); }
    void setSelectedBssids(const QStringList& bssids) override;
    bool shouldPlotAll() const override { return shouldPlotAll_; }

    int rowCount() const;
    // nullptr outside the rows.
    const scan::ScanedResultInfo* recordAt(int row) const;
    bool isRowChecked(int row) const;

    // Row selection in the table (not the plot ticks); selecting a row emphasises its curve.
    void setSelectedRows(QList<int> rows);
    const QList<int>& selectedRows() const { return selectedRows_; }
    // The row selected last, or -1.
    int selectedRow() const;

    // Columns.
    void updateTableColumnsView();
    bool isColumnHidden(const QString& identifier) const;
    void toggleColumn(const QString& identifier);

    // Sorting.
    // A header click: the same column again reverses, another sorts ascending.
    void tableViewDidClickTableColumn(const QString& identifier);
    // Sorts by a column in the given direction and remembers both for the scans to come; the
    // selected network stays selected.
    void sortByColumn(const QString& identifier, bool ascending);
    // Sorts the shown test's rows in place; false (logged, order unchanged) when the column
    // does not sort.
    bool sortTableView(const QString& identifier, bool ascending);
    void reverse();
    const QString& lastIdentifier() const { return lastIdentifier_; }
    bool sortAscending() const { return sortAscending_; }

    // Plot selection.
    void checkboxClicked(int row);
    void selectAllButtonClicked();

    // The CSV lines of the selected rows for the clipboard; empty when there is nothing to copy.
    QString copyRow();

    // Per-BSSID tags, kept in the user settings under the BSSID itself.
    QString bssidTagForBSSID(const QString& bssid) const;
    void saveBSSIDTag(const QString& bssid, const QString& tag);
    void didSavedBSSIDTagInfo();

    QString toolTip(const QString& identifier, int row) const;

    // Double click on a cell: the tag window for the tag column, the samples window elsewhere.
    void monitorSelected(const QString& identifier, int row);
    // joinButtonPressed: a click in the join column asks for the join sheet for that row.
    void joinButtonPressed(int row);

signals:
    void tableReloaded();
    void rowsSelected(const QList<int>& rows);
    void headerCheckboxChanged(bool on);
    void columnVisibilityChanged(const QString& identifier, bool hidden);
    void bssidTagWindowRequested(const QString& bssid, const QString& currentTag);
    void samplesWindowRequested(const QString& header, const QList<scan::ScanedResultInfo>& history);
    void joinWindowRequested(const scan::ScanedResultInfo& network);

private:
    QList<scan::ScanedResultInfo> historyOf(const QString& bssid) const;
    void addSelectedBssids(const QStringList& bssids);
    void removeAllPlotsFromGraph();
    void reloadTable();

    core::UserSettings& settings_;
    GraphSink* graph_ = nullptr;
    std::shared_ptr<WiFiScanTest> currentTest_;
    UniqueStringList selectedBssids_;
    bool shouldPlotAll_ = true;
    QString lastIdentifier_ = QStringLiteral("ssid");
    bool sortAscending_ = true;
    QString selectedBSSIDBeforeSort_;
    int selectedBSSIDBeforeSortIndex_ = -1;
    QList<int> selectedRows_;
    QString lastSelectedBSSID_;
    QHash<QString, bool> hiddenColumns_;
};

} // namespace scanning
