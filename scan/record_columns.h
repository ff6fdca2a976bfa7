#pragma once

#include "core/user_settings.h"
#include "scan/scaned_result_info.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

namespace scan {

// The columns of a record, one list for the results table, the CSV and HTML export and sorting.
// It lives here rather than beside the table because a record renders its own export row from
// it, and this layer cannot see the one above.
namespace record_columns {

// How a value goes into a CSV line.
enum class CsvForm {
    Text,             // from the air or the user: quoted and defused only when it must be
    QuotedText,       // from the air or the user, always between quotes
    Formatted,        // formatted here from numbers: written as it stands
    QuotedFormatted,  // formatted here and holding a comma: between plain quotes
};

struct ExportCell {
    QString text;
    CsvForm form = CsvForm::Text;
};

// One cell of an export row with its two headings.
struct ExportField {
    QString htmlHeading;  // between <th> and </th>
    QString csvHeading;   // as the CSV heading spells it, quotes included
    std::function<ExportCell(const ScanedResultInfo&)> cell;
};

enum class SortKind { None, Text, TextIgnoringCase, Number };

struct RecordColumn {
    QString identifier;
    QString visibilityKey;  // empty: always shown
    QString title;          // the table's header text
    QList<ExportField> exportFields;  // none for a column only the table has
    std::function<QString(const ScanedResultInfo&)> displayText;
    QString sortKey;  // the record property the column sorts by; empty: it does not sort
    SortKind sortKind = SortKind::None;
    std::function<QVariant(const ScanedResultInfo&)> sortValue;

    bool sorts() const { return sortKind != SortKind::None; }
    // Ascending three-way comparison: negative, zero or positive.
    int compare(const ScanedResultInfo& a, const ScanedResultInfo& b) const;
};

// Every column, in table and export order.
const QList<RecordColumn>& all();
// nullptr for an identifier no column has.
const RecordColumn* find(const QString& identifier);
// The one place a visibility setting is read, whatever store wrote it.
bool isShown(const RecordColumn& column, const core::UserSettings& settings);
// The columns the header's context menu can show or hide, in table order.
QStringList headerMenuColumns();
// The CSV heading line; it starts with the test name the exporter writes before every row.
QString csvHeading();

}  // namespace record_columns

} // namespace scan
