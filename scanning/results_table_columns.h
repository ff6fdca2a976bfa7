#pragma once

#include "scan/scaned_result_info.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// The columns of the results table: their identifiers, the user default that shows or hides
// each, and the record property each sorts by.
struct ResultsColumn {
    QString identifier;
    QString visibilityKey;  // empty: the column is always shown
};

namespace results_columns {

// Every column, in table order.
const QList<ResultsColumn>& all();
// The columns the header's context menu can show or hide, in table order.
QStringList headerMenuColumns();
// "<identifier>ColumnVisible", or empty for a column that is always shown.
QString visibilityKey(const QString& identifier);
// The record property a column sorts by; empty when the column does not sort.
QString sortKey(const QString& identifier);

// Three-way comparison of two records in ascending order: negative, zero or positive.
using RecordComparator = std::function<int(const ScanedResultInfo&, const ScanedResultInfo&)>;
// The ordering of a record property; std::nullopt for a property that does not sort.
std::optional<RecordComparator> comparatorForKey(const QString& key);

}  // namespace results_columns
