#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>

#include <deque>

// The lines the sensor log view shows: at most a fixed number, the oldest dropped as new ones
// come, each line a row of display text.
namespace sensor::view {

class SensorLogLines : public QAbstractListModel {
    Q_OBJECT
public:
    explicit SensorLogLines(int capacity, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    void append(const QStringList& lines);
    void clear();
    const QString& line(int row) const { return lines_[static_cast<std::size_t>(row)]; }

private:
    int capacity_;
    std::deque<QString> lines_;
};

} // namespace sensor::view
