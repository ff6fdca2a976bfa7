#include "scanning/view/results_cell_delegate.h"

#include "scanning/results_table_item_model.h"
#include "scanning/results_table_model.h"

namespace scanning::view {

ResultsCellDelegate::ResultsCellDelegate(scanning::ResultsTableModel& results, QObject* parent)
    : QStyledItemDelegate(parent), results_(results)
{
}

QIcon ResultsCellDelegate::icon(const QString& name) const
{
    auto found = icons_.constFind(name);
    if (found != icons_.constEnd())
        return *found;
    QIcon loaded;
    loaded.addFile(QStringLiteral(":/cells/%1.png").arg(name));
    loaded.addFile(QStringLiteral(":/cells/%1@2x.png").arg(name));
    return *icons_.insert(name, loaded);
}

void ResultsCellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const scan::ScanedResultInfo* record = results_.recordAt(index.row());
    const auto& test = results_.currentTest();
    if (record != nullptr && test != nullptr && !test->activeBSSID.isEmpty() && record->bssid == test->activeBSSID)
        option->font.setBold(true);

    const QString image = index.data(scanning::ResultsTableItemModel::ImageRole).toString();
    if (!image.isEmpty()) {
        option->icon = icon(image);
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = QSize(16, 16);
    }
    if (swatch_ && record != nullptr && option->features.testFlag(QStyleOptionViewItem::HasCheckIndicator))
        option->backgroundBrush = swatch_(*record);
}

} // namespace scanning::view
