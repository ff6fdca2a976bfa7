#pragma once

#include "scan/record_columns.h"
#include "scanning/results_table_model.h"

#include <QAbstractTableModel>
#include <QList>

namespace scanning {

// The results table as a Qt item model built from the record column list, so a table view only
// has to be given it. Rows, plot ticks, sorting state and column visibility stay in the
// ResultsTableModel it binds to; this model follows that one and shows only its visible columns.
class ResultsTableItemModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Role {
        IdentifierRole = Qt::UserRole,  // the column's identifier, on cells and headers
        SortValueRole,                  // the raw value the column sorts by
        ImageRole,                      // the name of the cell's image ("wifi-signal", "lock", ...)
    };

    explicit ResultsTableItemModel(ResultsTableModel& table, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    // The shown column at a position, nullptr outside them; the position of a shown column, or -1.
    const scan::record_columns::RecordColumn* columnAt(int column) const;
    int columnOf(const QString& identifier) const;

private:
    QList<const scan::record_columns::RecordColumn*> visibleColumns() const;
    void followVisibility();
    void followRows();

    ResultsTableModel& table_;
    QList<const scan::record_columns::RecordColumn*> columns_;
    bool sorting_ = false;
};

} // namespace scanning
