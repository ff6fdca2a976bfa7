#pragma once

#include "scan/scaned_result_info.h"
#include "scanning/view/results_cell_delegate.h"

#include <QList>
#include <QTableView>

class QAction;
class QHeaderView;
class QMenu;

namespace core {
class UserSettings;
}

namespace scanning {
class ResultsTableModel;
class ResultsTableItemModel;
}

namespace scanning::view {

// The results table: a view over the results item model that hands header clicks, row
// selection, ticks, copying and double clicks (or Return on a cell) to the results table logic.
class ResultsTableView : public QTableView {
    Q_OBJECT
public:
    ResultsTableView(scanning::ResultsTableModel& results, core::UserSettings& settings, QWidget* parent = nullptr);

    scanning::ResultsTableItemModel& itemModel() const { return *items_; }
    QAction* copyAction() const { return copy_; }
    // The menu of column titles the header opens; built afresh each time it is asked for.
    QMenu* headerMenu();
    // Paints each network's graph colour behind its plot tick.
    void setSwatchColour(ResultsCellDelegate::SwatchColour swatch);
    // The widths were set by the user (or restored): the first scan must not fit them again.
    void keepColumnWidths() { columnsFitted_ = true; }
    // Reads the "fontSize" setting again, as it may change while the program runs.
    void applyFontSize();

signals:
    void samplesWindowRequested(const QString& header, const QList<scan::ScanedResultInfo>& history);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void headerClicked(int section);
    void showHeaderMenu(const QPoint& position);
    void selectionFollowsView();
    void selectionFollowsModel();
    void showSortIndicator();
    void cellDoubleClicked(const QModelIndex& index);
    void copySelectedRows();
    void openTagWindow(const QString& bssid, const QString& currentTag);
    void fitColumnsOnce();

    scanning::ResultsTableModel& results_;
    core::UserSettings& settings_;
    // Made before the model: children go in the order they were made, and the header's
    // persistent indexes must be released while the model still exists.
    QHeaderView* header_;
    scanning::ResultsTableItemModel* items_;
    ResultsCellDelegate* cells_;
    QAction* copy_;
    QMenu* headerMenu_ = nullptr;
    bool followingModel_ = false;
    bool columnsFitted_ = false;
};

} // namespace scanning::view
