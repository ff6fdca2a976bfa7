#include "core/csv_cell.h"

namespace core {

namespace {

bool startsLikeFormula(const QString& text)
{
    return !text.isEmpty() && QStringView(u"=+-@\t\r").contains(text.front());
}

bool breaksCell(const QString& text)
{
    for (const QChar c : text) {
        if (c == u',' || c == u'"' || c == u'\n' || c == u'\r')
            return true;
    }
    return false;
}

} // namespace

QString csvCell(const QString& text, CsvQuoting quoting)
{
    const bool formula = startsLikeFormula(text);
    if (quoting == CsvQuoting::WhenNeeded && !formula && !breaksCell(text))
        return text;
    QString quoted = formula ? u'\'' + text : text;
    quoted.replace(u'"', QLatin1String("\"\""));
    return u'"' + quoted + u'"';
}

} // namespace core
