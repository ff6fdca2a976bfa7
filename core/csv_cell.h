#pragma once

#include <QString>

// One CSV cell for text that came from the air, the network or the user. A cell holding a
// separator, a quote or a line break is quoted with its quotes doubled; one that a spreadsheet
// would run as a formula (leading =, +, -, @, tab or carriage return) gets a leading ' and
// quotes, so a hostile network name stays text.
namespace core {

enum class CsvQuoting { WhenNeeded, Always };

QString csvCell(const QString& text, CsvQuoting quoting = CsvQuoting::WhenNeeded);

} // namespace core
