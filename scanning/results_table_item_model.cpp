#include "scanning/results_table_item_model.h"

namespace scanning {

namespace {

bool isCheckbox(const scan::record_columns::RecordColumn* column)
{
    return column != nullptr && column->identifier == QLatin1String("checkbox");
}

// The images the results table shows beside a cell's text; open networks get the open lock.
QString imageName(const QString& identifier, const scan::ScanedResultInfo& record)
{
    if (identifier == QLatin1String("rssi"))
        return QStringLiteral("wifi-signal");
    if (identifier == QLatin1String("security"))
        return record.securityMode == 0 ? QStringLiteral("unlock") : QStringLiteral("lock");
    if (identifier == QLatin1String("join"))
        return QStringLiteral("join");
    return {};
}

} // namespace

ResultsTableItemModel::ResultsTableItemModel(ResultsTableModel& table, QObject* parent)
    : QAbstractTableModel(parent), table_(table), columns_(visibleColumns())
{
    connect(&table_, &ResultsTableModel::tableReloaded, this, &ResultsTableItemModel::followRows);
    connect(&table_, &ResultsTableModel::columnVisibilityChanged, this, &ResultsTableItemModel::followVisibility);
    connect(&table_, &ResultsTableModel::headerCheckboxChanged, this, [this] {
        const int column = columnOf(QStringLiteral("checkbox"));
        if (column >= 0)
            emit headerDataChanged(Qt::Horizontal, column, column);
    });
}

int ResultsTableItemModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : table_.rowCount(); }

int ResultsTableItemModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

const scan::record_columns::RecordColumn* ResultsTableItemModel::columnAt(int column) const
{
    return column >= 0 && column < columns_.size() ? columns_.at(column) : nullptr;
}

int ResultsTableItemModel::columnOf(const QString& identifier) const
{
    for (int i = 0; i < columns_.size(); ++i) {
        if (columns_.at(i)->identifier == identifier)
            return i;
    }
    return -1;
}

QVariant ResultsTableItemModel::data(const QModelIndex& index, int role) const
{
    const scan::record_columns::RecordColumn* column = columnAt(index.column());
    const scan::ScanedResultInfo* record = table_.recordAt(index.row());
    if (column == nullptr || record == nullptr || index.parent().isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return isCheckbox(column) ? QVariant() : QVariant(column->displayText(*record));
    case Qt::CheckStateRole:
        if (!isCheckbox(column))
            return {};
        return table_.isRowChecked(index.row()) ? Qt::Checked : Qt::Unchecked;
    case Qt::ToolTipRole: {
        const QString tip = table_.toolTip(column->identifier, index.row());
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    case Qt::AccessibleTextRole:
        // A tick and a button have no text of their own; a screen reader still needs one.
        if (isCheckbox(column))
            return table_.isRowChecked(index.row()) ? tr("Plotted") : tr("Not plotted");
        if (column->identifier == QLatin1String("join"))
            return table_.toolTip(column->identifier, index.row());
        return {};
    case ImageRole: {
        const QString name = imageName(column->identifier, *record);
        return name.isEmpty() ? QVariant() : QVariant(name);
    }
    case IdentifierRole:
        return column->identifier;
    case SortValueRole:
        return column->sorts() ? column->sortValue(*record) : QVariant();
    default:
        return {};
    }
}

bool ResultsTableItemModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || !isCheckbox(columnAt(index.column())) || table_.recordAt(index.row()) == nullptr)
        return false;
    const bool checked = static_cast<Qt::CheckState>(value.toInt()) == Qt::Checked;
    if (checked != table_.isRowChecked(index.row()))
        table_.checkboxClicked(index.row());
    // Ticking one more network does not reload the table, so the tick is announced here.
    emit dataChanged(index, index, {Qt::CheckStateRole});
    return true;
}

QVariant ResultsTableItemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const scan::record_columns::RecordColumn* column = columnAt(section);
    if (orientation != Qt::Horizontal || column == nullptr)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (role) {
    case Qt::DisplayRole:
        return column->title;
    case Qt::CheckStateRole:
        return isCheckbox(column) ? QVariant(table_.shouldPlotAll() ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::AccessibleTextRole:
        return isCheckbox(column) ? QVariant(tr("Plot all networks")) : QVariant();
    case IdentifierRole:
        return column->identifier;
    default:
        return {};
    }
}

Qt::ItemFlags ResultsTableItemModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (isCheckbox(columnAt(index.column())))
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

void ResultsTableItemModel::sort(int column, Qt::SortOrder order)
{
    const scan::record_columns::RecordColumn* sorted = columnAt(column);
    if (sorted == nullptr || !sorted->sorts())
        return;
    // Rows move, they are not replaced: views keep their selection and scroll position when
    // every persistent index follows its network.
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QStringList bssids;
    for (const QModelIndex& index : before) {
        const scan::ScanedResultInfo* record = table_.recordAt(index.row());
        bssids << (record != nullptr ? record->bssid : QString());
    }
    sorting_ = true;
    table_.sortByColumn(sorted->identifier, order == Qt::AscendingOrder);
    sorting_ = false;
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i) {
        QModelIndex moved;
        for (int row = 0; row < table_.rowCount() && !bssids.at(i).isEmpty(); ++row) {
            if (table_.recordAt(row)->bssid == bssids.at(i)) {
                moved = index(row, before.at(i).column());
                break;
            }
        }
        after << moved;
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

QList<const scan::record_columns::RecordColumn*> ResultsTableItemModel::visibleColumns() const
{
    QList<const scan::record_columns::RecordColumn*> shown;
    for (const scan::record_columns::RecordColumn& column : scan::record_columns::all()) {
        if (!table_.isColumnHidden(column.identifier))
            shown << &column;
    }
    return shown;
}

void ResultsTableItemModel::followVisibility()
{
    const QList<const scan::record_columns::RecordColumn*> next = visibleColumns();
    if (next == columns_)
        return;
    // A single toggle moves one column in or out; anything else (settings read again) resets.
    qsizetype at = 0;
    while (at < columns_.size() && at < next.size() && columns_.at(at) == next.at(at))
        ++at;
    const int position = static_cast<int>(at);
    if (next.size() == columns_.size() + 1 && next.mid(at + 1) == columns_.mid(at)) {
        beginInsertColumns({}, position, position);
        columns_ = next;
        endInsertColumns();
    } else if (next.size() + 1 == columns_.size() && columns_.mid(at + 1) == next.mid(at)) {
        beginRemoveColumns({}, position, position);
        columns_ = next;
        endRemoveColumns();
    } else {
        beginResetModel();
        columns_ = next;
        endResetModel();
    }
}

void ResultsTableItemModel::followRows()
{
    if (sorting_)
        return;
    // The scan driver replaces the rows before the table hears of it, so the reset can only be
    // announced after the fact; nothing reads the model in between.
    beginResetModel();
    endResetModel();
}

} // namespace scanning
