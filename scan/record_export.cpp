#include "scan/scaned_result_info.h"

#include "core/csv_cell.h"
#include "scan/record_columns.h"

#include <QLatin1String>

namespace scan {

namespace {

bool isHtml(const QString& exportType) { return exportType == QLatin1String("html"); }

QString csvText(const record_columns::ExportCell& cell)
{
    using record_columns::CsvForm;
    switch (cell.form) {
    case CsvForm::Text: return core::csvCell(cell.text, core::CsvQuoting::WhenNeeded);
    case CsvForm::QuotedText: return core::csvCell(cell.text, core::CsvQuoting::Always);
    case CsvForm::Formatted: return cell.text;
    case CsvForm::QuotedFormatted: return QLatin1Char('"') + cell.text + QLatin1Char('"');
    }
    return cell.text;
}

} // namespace

QString ScanedResultInfo::toString(const core::UserSettings& settings)
{
    populateMaxDataRate();
    // The rate cell reads the field this settles.
    getMaxDataRate();
    const bool html = isHtml(exportType);
    QString row;
    for (const record_columns::RecordColumn& column : record_columns::all()) {
        // CSV carries every column so that files from different settings line up.
        if (html && !record_columns::isShown(column, settings))
            continue;
        for (const record_columns::ExportField& field : column.exportFields) {
            const record_columns::ExportCell cell = field.cell(*this);
            if (html)
                row += QLatin1String("<td>") + cell.text.toHtmlEscaped() + QLatin1String("</td>");
            else
                row += csvText(cell) + QLatin1Char(',');
        }
    }
    if (!html)
        row += QLatin1Char('\n');
    return row;
}

QString ScanedResultInfo::getHeader(const core::UserSettings& settings) const
{
    if (!isHtml(exportType))
        return record_columns::csvHeading();
    QString header = QStringLiteral("<thead><tr>");
    for (const record_columns::RecordColumn& column : record_columns::all()) {
        if (!record_columns::isShown(column, settings))
            continue;
        for (const record_columns::ExportField& field : column.exportFields)
            header += QLatin1String("<th>") + field.htmlHeading + QLatin1String("</th>");
    }
    header += QLatin1String("</tr></thead>\n");
    return header;
}

} // namespace scan
