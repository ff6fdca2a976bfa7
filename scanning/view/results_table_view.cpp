#include "scanning/view/results_table_view.h"

#include "scanning/results_table_item_model.h"
#include "scanning/results_table_model.h"
#include "scanning/view/bssid_tag_dialog.h"
#include "scanning/view/checkbox_header_view.h"
#include "scanning/view/results_cell_delegate.h"

#include "core/user_settings.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace scanning::view {

ResultsTableView::ResultsTableView(scanning::ResultsTableModel& results, core::UserSettings& settings, QWidget* parent)
    : QTableView(parent),
      results_(results),
      settings_(settings),
      header_(new CheckboxHeaderView(this)),
      items_(new scanning::ResultsTableItemModel(results, this)),
      cells_(new ResultsCellDelegate(results, this)),
      copy_(new QAction(tr("Copy"), this))
{
    setObjectName(QStringLiteral("scanResultsTableView"));
    setAccessibleName(tr("Scan results"));
    setHorizontalHeader(header_);
    setModel(items_);
    setItemDelegate(cells_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Tab should leave the table for the next control, not walk its cells.
    setTabKeyNavigation(false);
    setWordWrap(false);
    verticalHeader()->hide();
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setSectionsMovable(true);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    horizontalHeader()->setHighlightSections(false);

    copy_->setObjectName(QStringLiteral("copyAction"));
    copy_->setShortcut(QKeySequence::Copy);
    connect(copy_, &QAction::triggered, this, &ResultsTableView::copySelectedRows);

    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &ResultsTableView::headerClicked);
    connect(horizontalHeader(), &QWidget::customContextMenuRequested, this, &ResultsTableView::showHeaderMenu);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &ResultsTableView::selectionFollowsView);
    connect(&results_, &scanning::ResultsTableModel::tableReloaded, this, &ResultsTableView::selectionFollowsModel);
    connect(&results_, &scanning::ResultsTableModel::rowsSelected, this, &ResultsTableView::selectionFollowsModel);
    connect(&results_, &scanning::ResultsTableModel::tableReloaded, this, &ResultsTableView::showSortIndicator);
    connect(&results_, &scanning::ResultsTableModel::tableReloaded, this, &ResultsTableView::fitColumnsOnce);
    connect(this, &QAbstractItemView::doubleClicked, this, &ResultsTableView::cellDoubleClicked);
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
        const scan::record_columns::RecordColumn* column = items_->columnAt(index.column());
        if (column != nullptr && column->identifier == QLatin1String("join"))
            results_.joinButtonPressed(index.row());
    });
    connect(&results_, &scanning::ResultsTableModel::bssidTagWindowRequested, this, &ResultsTableView::openTagWindow);
    connect(&results_, &scanning::ResultsTableModel::samplesWindowRequested, this,
            &ResultsTableView::samplesWindowRequested);
    applyFontSize();
    showSortIndicator();
}

void ResultsTableView::setSwatchColour(ResultsCellDelegate::SwatchColour swatch)
{
    cells_->setSwatchColour(std::move(swatch));
    viewport()->update();
}

void ResultsTableView::fitColumnsOnce()
{
    // Sized to the first rows only: measuring every cell again on each scan would cost the GUI
    // thread time in proportion to the table, and would undo the user's own column widths.
    if (columnsFitted_ || items_->rowCount() == 0)
        return;
    columnsFitted_ = true;
    resizeColumnsToContents();
    // A long vendor name should not push every other column out of sight.
    const int widest = fontMetrics().horizontalAdvance(QLatin1Char('M')) * 18;
    for (int column = 0; column < items_->columnCount(); ++column)
        setColumnWidth(column, std::min(columnWidth(column), widest));
}

void ResultsTableView::applyFontSize()
{
    bool ok = false;
    const double size = settings_.value(QStringLiteral("fontSize")).toDouble(&ok);
    if (!ok || size <= 0)
        return;
    QFont tableFont = font();
    tableFont.setPointSizeF(size);
    setFont(tableFont);
    verticalHeader()->setDefaultSectionSize(QFontMetrics(tableFont).height() + 6);
}

void ResultsTableView::headerClicked(int section)
{
    const scan::record_columns::RecordColumn* column = items_->columnAt(section);
    if (column == nullptr)
        return;
    if (column->identifier == QLatin1String("checkbox")) {
        results_.tableViewDidClickTableColumn(column->identifier);
    } else if (column->sorts()) {
        // The same column again reverses; another one starts from A to Z.
        const bool ascending = column->identifier == results_.lastIdentifier() ? !results_.sortAscending() : true;
        items_->sort(section, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
    showSortIndicator();
}

void ResultsTableView::showSortIndicator()
{
    const int section = items_->columnOf(results_.lastIdentifier());
    horizontalHeader()->setSortIndicator(section, results_.sortAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

QMenu* ResultsTableView::headerMenu()
{
    delete headerMenu_;
    headerMenu_ = new QMenu(this);
    headerMenu_->setObjectName(QStringLiteral("columnMenu"));
    headerMenu_->setAccessibleName(tr("Columns"));
    QFont titleFont(QStringLiteral("Oswald"));
    for (const QString& identifier : scan::record_columns::headerMenuColumns()) {
        const scan::record_columns::RecordColumn* column = scan::record_columns::find(identifier);
        QAction* action = headerMenu_->addAction(column->title);
        action->setObjectName(identifier);
        action->setFont(titleFont);
        action->setCheckable(true);
        action->setChecked(!results_.isColumnHidden(identifier));
        connect(action, &QAction::triggered, this, [this, identifier] { results_.toggleColumn(identifier); });
    }
    return headerMenu_;
}

void ResultsTableView::showHeaderMenu(const QPoint& position)
{
    headerMenu()->popup(horizontalHeader()->viewport()->mapToGlobal(position));
}

void ResultsTableView::selectionFollowsView()
{
    if (followingModel_)
        return;
    QList<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    results_.setSelectedRows(rows);
}

void ResultsTableView::selectionFollowsModel()
{
    // A reload resets the item model, which drops the view's selection without a word.
    QItemSelection selection;
    for (int row : results_.selectedRows())
        selection.select(items_->index(row, 0), items_->index(row, items_->columnCount() - 1));
    followingModel_ = true;
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    followingModel_ = false;
}

void ResultsTableView::cellDoubleClicked(const QModelIndex& index)
{
    const scan::record_columns::RecordColumn* column = items_->columnAt(index.column());
    if (column != nullptr)
        results_.monitorSelected(column->identifier, index.row());
}

// Return does on the current cell what a click on the join button or a double click does, so
// joining and the samples and tag windows are in reach without a mouse.
void ResultsTableView::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex current = currentIndex();
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const scan::record_columns::RecordColumn* column = items_->columnAt(current.column());
    if (!enter || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier || column == nullptr) {
        QTableView::keyPressEvent(event);
        return;
    }
    if (column->identifier == QLatin1String("join"))
        results_.joinButtonPressed(current.row());
    else
        cellDoubleClicked(current);
    event->accept();
}

void ResultsTableView::copySelectedRows()
{
    const QString text = results_.copyRow();
    if (!text.isEmpty())
        QApplication::clipboard()->setText(text);
}

void ResultsTableView::openTagWindow(const QString& bssid, const QString& currentTag)
{
    auto* dialog = new BssidTagDialog(results_, bssid, currentTag, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

} // namespace scanning::view
