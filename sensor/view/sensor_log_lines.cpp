#include "sensor/view/sensor_log_lines.h"

namespace sensor::view {

SensorLogLines::SensorLogLines(int capacity, QObject* parent) : QAbstractListModel(parent), capacity_(capacity) {}

int SensorLogLines::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

QVariant SensorLogLines::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole))
        return {};
    return line(index.row());
}

void SensorLogLines::append(const QStringList& lines)
{
    const qsizetype fresh = std::min<qsizetype>(lines.size(), capacity_);
    const qsizetype overflow = static_cast<qsizetype>(lines_.size()) + fresh - capacity_;
    if (overflow > 0) {
        beginRemoveRows(QModelIndex(), 0, static_cast<int>(overflow - 1));
        lines_.erase(lines_.begin(), lines_.begin() + overflow);
        endRemoveRows();
    }
    if (fresh == 0)
        return;
    const int first = rowCount();
    beginInsertRows(QModelIndex(), first, first + static_cast<int>(fresh) - 1);
    lines_.insert(lines_.end(), lines.end() - fresh, lines.end());
    endInsertRows();
}

void SensorLogLines::clear()
{
    beginResetModel();
    lines_.clear();
    endResetModel();
}

} // namespace sensor::view
