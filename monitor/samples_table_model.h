#pragma once

#include "scan/scaned_result_info.h"

#include <QAbstractTableModel>
#include <QList>

// The samples window's table: every sample of the examined access point, newest first, one row
// each with its time, signal, noise, signal-to-noise ratio, channel and best data rate.
namespace monitor {

class SamplesTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Signal, Noise, SignalToNoise, Channel, Rate, ColumnCount };

    explicit SamplesTableModel(QObject* parent = nullptr);

    void setSamples(const QList<scan::ScanedResultInfo>& samples);
    const QList<scan::ScanedResultInfo>& samples() const { return samples_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    static QString cellText(const scan::ScanedResultInfo& sample, Column column);

private:
    QList<scan::ScanedResultInfo> samples_;
};

} // namespace monitor
