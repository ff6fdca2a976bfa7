#include "monitor/samples_table_model.h"

namespace monitor {

SamplesTableModel::SamplesTableModel(QObject* parent) : QAbstractTableModel(parent) {}

void SamplesTableModel::setSamples(const QList<scan::ScanedResultInfo>& samples)
{
    beginResetModel();
    samples_ = samples;
    endResetModel();
}

int SamplesTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(samples_.size());
}

int SamplesTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString SamplesTableModel::cellText(const scan::ScanedResultInfo& sample, Column column)
{
    switch (column) {
    case Time:
        return sample.lastSeen.isValid() ? sample.lastSeen.toLocalTime().toString(QStringLiteral("HH:mm:ss"))
                                         : QStringLiteral("N/A");
    case Signal:
        return QStringLiteral("%1 dBm").arg(sample.rssi);
    case Noise:
        return QStringLiteral("%1 dBm").arg(sample.noise);
    case SignalToNoise:
        return QStringLiteral("%1 dB").arg(sample.singnalToNoise);
    case Channel:
        return sample.channel.isEmpty() ? QString::number(sample.originalChannel) : sample.channel;
    case Rate:
        return sample.maxDataRate.isEmpty() ? QStringLiteral("N/A") : sample.maxDataRate + QStringLiteral(" Mbps");
    case ColumnCount:
        break;
    }
    return {};
}

QVariant SamplesTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= samples_.size() || index.column() >= ColumnCount)
        return {};
    if (role == Qt::DisplayRole)
        return cellText(samples_[index.row()], static_cast<Column>(index.column()));
    if (role == Qt::TextAlignmentRole && index.column() != Time)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant SamplesTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Time:
        return QStringLiteral("Time");
    case Signal:
        return QStringLiteral("Signal");
    case Noise:
        return QStringLiteral("Noise");
    case SignalToNoise:
        return QStringLiteral("SNR");
    case Channel:
        return QStringLiteral("Channel");
    case Rate:
        return QStringLiteral("Max Rate");
    default:
        return {};
    }
}

} // namespace monitor
