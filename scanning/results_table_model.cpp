#include "scanning/results_table_model.h"

#include "scan/record_columns.h"
#include "scanning/graph_sink.h"
#include "scanning/wifi_scan_test.h"

#include <QtDebug>

#include <algorithm>

namespace scanning {

ResultsTableModel::ResultsTableModel(core::UserSettings& settings, GraphSink* graph, QObject* parent)
    : QObject(parent), settings_(settings), graph_(graph)
{
    updateTableColumnsView();
}

void ResultsTableModel::setGraphSink(GraphSink* graph) { graph_ = graph; }

void ResultsTableModel::setCurrentTest(const std::shared_ptr<WiFiScanTest>& test) { currentTest_ = test; }

void ResultsTableModel::reset()
{
    removeAllPlotsFromGraph();
    selectedRows_.clear();
    lastSelectedBSSID_.clear();
    selectedBSSIDBeforeSort_.clear();
    selectedBSSIDBeforeSortIndex_ = -1;
    reloadTable();
}

void ResultsTableModel::updateView(const std::shared_ptr<WiFiScanTest>& test)
{
    // Scans of the newest test go on while the user looks at an older one; the shown test
    // must not change under them.
    if (test == nullptr || (currentTest_ != nullptr && test != currentTest_)) {
        return;
    }
    currentTest_ = test;
    sortTableView(lastIdentifier_, sortAscending_);
    if (shouldPlotAll_) {
        addSelectedBssids(test->scanedResults.keys());
    }
    if (graph_ != nullptr) {
        for (const QString& bssid : selectedBssids_.items()) {
            const QList<scan::ScanedResultInfo> history = historyOf(bssid);
            if (history.isEmpty()) {
                graph_->removePlotFromGraph(bssid);
            } else {
                graph_->updateGraphDataPoints(history, bssid);
            }
        }
        graph_->updateSSIDDetailsTab(lastSelectedBSSID_, *test);
        graph_->reloadGraph(*test);
    }
    reloadTable();
}

void ResultsTableModel::scanDidStartedByUser(const std::shared_ptr<WiFiScanTest>& test)
{
    if (graph_ != nullptr && test != nullptr) {
        graph_->scanDidStartedByUser(*test);
    }
}

void ResultsTableModel::scanDidStoppedByUser()
{
    if (graph_ != nullptr) {
        graph_->scanDidStoppedByUser();
    }
}

void ResultsTableModel::clearView()
{
    removeAllPlotsFromGraph();
    currentTest_.reset();
    selectedRows_.clear();
    lastSelectedBSSID_.clear();
    reloadTable();
}

void ResultsTableModel::setSelectedBssids(const QStringList& bssids)
{
    selectedBssids_.clear();
    addSelectedBssids(bssids);
}

void ResultsTableModel::addSelectedBssids(const QStringList& bssids)
{
    for (const QString& bssid : bssids) {
        selectedBssids_.append(bssid);
    }
}

int ResultsTableModel::rowCount() const
{
    return currentTest_ == nullptr ? 0 : static_cast<int>(currentTest_->scanedData1.size());
}

const scan::ScanedResultInfo* ResultsTableModel::recordAt(int row) const
{
    if (row < 0 || row >= rowCount()) {
        return nullptr;
    }
    return &currentTest_->scanedData1.at(row);
}

bool ResultsTableModel::isRowChecked(int row) const
{
    const scan::ScanedResultInfo* record = recordAt(row);
    return record != nullptr && selectedBssids_.contains(record->bssid);
}

void ResultsTableModel::setSelectedRows(QList<int> rows)
{
    const int count = rowCount();
    rows.erase(std::remove_if(rows.begin(), rows.end(), [count](int row) { return row < 0 || row >= count; }),
               rows.end());
    selectedRows_ = rows;
    const scan::ScanedResultInfo* record = recordAt(selectedRow());
    if (record == nullptr) {
        return;
    }
    lastSelectedBSSID_ = record->bssid;
    if (graph_ != nullptr) {
        graph_->highlightGraph(record->bssid, *currentTest_);
    }
}

int ResultsTableModel::selectedRow() const { return selectedRows_.isEmpty() ? -1 : selectedRows_.last(); }

void ResultsTableModel::updateTableColumnsView()
{
    for (const scan::record_columns::RecordColumn& column : scan::record_columns::all()) {
        const bool hidden = !scan::record_columns::isShown(column, settings_);
        if (hidden != isColumnHidden(column.identifier)) {
            hiddenColumns_[column.identifier] = hidden;
            emit columnVisibilityChanged(column.identifier, hidden);
        }
    }
}

bool ResultsTableModel::isColumnHidden(const QString& identifier) const { return hiddenColumns_.value(identifier); }

void ResultsTableModel::toggleColumn(const QString& identifier)
{
    const scan::record_columns::RecordColumn* column = scan::record_columns::find(identifier);
    if (column == nullptr || column->visibilityKey.isEmpty()) {
        return;
    }
    const QString key = column->visibilityKey;
    const bool hidden = !isColumnHidden(identifier);
    hiddenColumns_[identifier] = hidden;
    settings_.setValue(key, !hidden);
    emit columnVisibilityChanged(identifier, hidden);
}

void ResultsTableModel::tableViewDidClickTableColumn(const QString& identifier)
{
    if (identifier == QLatin1String("checkbox")) {
        shouldPlotAll_ = !shouldPlotAll_;
        emit headerCheckboxChanged(shouldPlotAll_);
        selectAllButtonClicked();
        return;
    }
    const scan::record_columns::RecordColumn* column = scan::record_columns::find(identifier);
    if (column == nullptr || !column->sorts()) {
        return;
    }
    sortByColumn(identifier, identifier == lastIdentifier_ ? !sortAscending_ : true);
}

void ResultsTableModel::sortByColumn(const QString& identifier, bool ascending)
{
    const scan::record_columns::RecordColumn* column = scan::record_columns::find(identifier);
    if (column == nullptr || !column->sorts()) {
        return;
    }
    lastIdentifier_ = identifier;
    sortAscending_ = ascending;

    const scan::ScanedResultInfo* selected = recordAt(selectedRow());
    selectedBSSIDBeforeSort_ = selected != nullptr ? selected->bssid : QString();
    selectedBSSIDBeforeSortIndex_ = -1;

    sortTableView(lastIdentifier_, sortAscending_);

    if (selectedBSSIDBeforeSort_.isEmpty()) {
        return;
    }
    for (int row = 0; row < rowCount(); ++row) {
        if (currentTest_->scanedData1.at(row).bssid == selectedBSSIDBeforeSort_) {
            selectedBSSIDBeforeSortIndex_ = row;
            break;
        }
    }
    if (selectedBSSIDBeforeSortIndex_ >= 0) {
        setSelectedRows({selectedBSSIDBeforeSortIndex_});
        emit rowsSelected(selectedRows_);
    }
}

bool ResultsTableModel::sortTableView(const QString& identifier, bool ascending)
{
    const scan::record_columns::RecordColumn* column = scan::record_columns::find(identifier);
    if (column == nullptr || !column->sorts()) {
        qWarning().noquote() << QStringLiteral("unable to sort the table %1")
                                    .arg(QStringLiteral("'%1' is not a sortable column").arg(identifier));
        return false;
    }
    if (currentTest_ != nullptr) {
        auto& rows = currentTest_->scanedData1;
        // Stable, so rows that compare equal keep the database's order between scans.
        std::stable_sort(rows.begin(), rows.end(), [&](const scan::ScanedResultInfo& a, const scan::ScanedResultInfo& b) {
            const int order = column->compare(a, b);
            return ascending ? order < 0 : order > 0;
        });
    }
    reloadTable();
    return true;
}

void ResultsTableModel::reverse()
{
    if (currentTest_ == nullptr) {
        return;
    }
    auto& rows = currentTest_->scanedData1;
    for (qsizetype front = 0, back = rows.size() - 1; front < back; ++front, --back) {
        rows.swapItemsAt(front, back);
    }
    reloadTable();
}

void ResultsTableModel::checkboxClicked(int row)
{
    const scan::ScanedResultInfo* record = recordAt(row);
    if (record == nullptr) {
        return;
    }
    const QString bssid = record->bssid;
    if (selectedBssids_.contains(bssid)) {
        if (shouldPlotAll_) {
            shouldPlotAll_ = false;
            emit headerCheckboxChanged(false);
        }
        selectedBssids_.remove(bssid);
        if (graph_ != nullptr) {
            graph_->removePlotFromGraph(bssid);
        }
        reloadTable();
        return;
    }
    selectedBssids_.append(bssid);
    if (graph_ != nullptr) {
        graph_->addPlotToGraph(bssid, historyOf(bssid));
    }
    if (!shouldPlotAll_ && selectedBssids_.size() == rowCount()) {
        shouldPlotAll_ = true;
        emit headerCheckboxChanged(true);
        reloadTable();
    }
}

void ResultsTableModel::selectAllButtonClicked()
{
    removeAllPlotsFromGraph();
    if (shouldPlotAll_) {
        for (int row = 0; row < rowCount(); ++row) {
            const QString bssid = currentTest_->scanedData1.at(row).bssid;
            selectedBssids_.append(bssid);
            if (graph_ != nullptr) {
                graph_->addPlotToGraph(bssid, historyOf(bssid));
            }
        }
    }
    reloadTable();
    const scan::ScanedResultInfo* selected = recordAt(selectedRow());
    if (shouldPlotAll_ && selected != nullptr && graph_ != nullptr) {
        graph_->highlightGraph(selected->bssid, *currentTest_);
    }
}

QString ResultsTableModel::copyRow()
{
    if (currentTest_ == nullptr) {
        return {};
    }
    QList<int> rows = selectedRows_;
    std::sort(rows.begin(), rows.end());
    QString text;
    for (int row : rows) {
        if (row >= rowCount()) {
            continue;
        }
        scan::ScanedResultInfo& record = currentTest_->scanedData1[row];
        record.exportType = QStringLiteral("csv");
        text += record.toString(settings_) + QLatin1Char('\n');
    }
    return text;
}

QString ResultsTableModel::bssidTagForBSSID(const QString& bssid) const
{
    return settings_.value(bssid).toString();
}

void ResultsTableModel::saveBSSIDTag(const QString& bssid, const QString& tag)
{
    // Stored even when empty: an empty tag must override the one saved before.
    settings_.setValue(bssid, tag.isEmpty() ? QStringLiteral("") : tag);
    if (currentTest_ != nullptr) {
        for (scan::ScanedResultInfo& record : currentTest_->scanedData1) {
            if (record.bssid == bssid) {
                record.bssidTag = tag;
            }
        }
    }
    didSavedBSSIDTagInfo();
}

void ResultsTableModel::didSavedBSSIDTagInfo() { reloadTable(); }

QString ResultsTableModel::toolTip(const QString& identifier, int row) const
{
    const scan::ScanedResultInfo* record = recordAt(row);
    if (record == nullptr || identifier != QLatin1String("join")) {
        return {};
    }
    if (!currentTest_->activeBSSID.isEmpty() && record->bssid == currentTest_->activeBSSID) {
        return QStringLiteral("Connected network");
    }
    return QStringLiteral("Click to join this network");
}

void ResultsTableModel::monitorSelected(const QString& identifier, int row)
{
    const scan::ScanedResultInfo* record = recordAt(row);
    if (record == nullptr) {
        return;
    }
    if (identifier == QLatin1String("bssidTag")) {
        emit bssidTagWindowRequested(record->bssid, bssidTagForBSSID(record->bssid));
        return;
    }
    emit samplesWindowRequested(QStringLiteral("SSID: %1").arg(record->ssid), historyOf(record->bssid));
}

void ResultsTableModel::joinButtonPressed(int row)
{
    if (const scan::ScanedResultInfo* record = recordAt(row)) {
        emit joinWindowRequested(*record);
    }
}

QList<scan::ScanedResultInfo> ResultsTableModel::historyOf(const QString& bssid) const
{
    return currentTest_ == nullptr ? QList<scan::ScanedResultInfo>() : currentTest_->scanedResults.value(bssid);
}

void ResultsTableModel::removeAllPlotsFromGraph()
{
    // The selection may still name networks of the test shown before, whose plots must go too.
    UniqueStringList plotted = std::move(selectedBssids_);
    selectedBssids_.clear();
    if (graph_ == nullptr) {
        return;
    }
    if (currentTest_ != nullptr) {
        for (auto it = currentTest_->scanedResults.cbegin(); it != currentTest_->scanedResults.cend(); ++it) {
            plotted.append(it.key());
        }
    }
    for (const QString& bssid : plotted.items()) {
        graph_->removePlotFromGraph(bssid);
    }
    graph_->didRemoveAllPlots();
}

void ResultsTableModel::reloadTable()
{
    const int count = rowCount();
    selectedRows_.erase(std::remove_if(selectedRows_.begin(), selectedRows_.end(),
                                       [count](int row) { return row >= count; }),
                        selectedRows_.end());
    emit tableReloaded();
}

} // namespace scanning
