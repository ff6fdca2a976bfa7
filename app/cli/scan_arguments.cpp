#include "app/cli/scan_command.h"

#include "app/cli/cli_arguments.h"

namespace app::cli {
namespace {

std::optional<int> wholeNumber(const std::optional<QString>& text, const QString& name, int minimum, int maximum,
                               QString* error)
{
    if (!text)
        return std::nullopt;
    bool ok = false;
    const int value = text->toInt(&ok);
    if (!ok || value < minimum || value > maximum) {
        *error = QStringLiteral("%1 needs a whole number from %2 to %3, not \"%4\"").arg(name).arg(minimum).arg(maximum).arg(*text);
        return std::nullopt;
    }
    return value;
}

std::optional<int> andOrItem(const std::optional<QString>& word, const QString& name, QString* error)
{
    if (!word)
        return std::nullopt;
    if (*word == u"and")
        return 0;
    if (*word == u"or")
        return 1;
    *error = QStringLiteral("%1 takes \"and\" or \"or\", not \"%2\"").arg(name, *word);
    return std::nullopt;
}

std::optional<scanning::ScanExporter::Kind> exportKind(const QString& word)
{
    if (word == u"csv")
        return scanning::ScanExporter::SelectedTestCsv;
    if (word == u"csv-all")
        return scanning::ScanExporter::AllTestsCsv;
    if (word == u"html")
        return scanning::ScanExporter::SelectedTestHtml;
    if (word == u"html-graphs")
        return scanning::ScanExporter::SelectedTestHtmlWithGraphs;
    if (word == u"html-all")
        return scanning::ScanExporter::AllTestsHtml;
    return std::nullopt;
}

} // namespace

std::optional<ScanRequest> parseScanArguments(const QStringList& arguments, QString* error)
{
    ScanRequest request;
    scanning::FilterCriteria& filter = request.filter;
    bool command = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const QString name = argument.section(QLatin1Char('='), 0, 0);
        const auto value = [&] { return optionValue(arguments, i, name, error); };
        const BackendOptionResult backend = takeBackendOption(arguments, i, request.backend, error);
        if (backend == BackendOptionResult::Invalid)
            return std::nullopt;
        if (backend == BackendOptionResult::Taken)
            continue;
        if (argument == u"scan" && !command) {
            command = true;
        } else if (name == u"--ssid" || name == u"--db") {
            const auto text = value();
            if (!text)
                return std::nullopt;
            if (name == u"--db" && text->isEmpty()) {
                *error = QStringLiteral("--db needs a file, not an empty text");
                return std::nullopt;
            }
            (name == u"--ssid" ? filter.ssidForFilterValue : request.databasePath) = *text;
        } else if (name == u"--interval" || name == u"--count" || name == u"--duration") {
            const auto number = wholeNumber(value(), name, 1, 86400 * 365, error);
            if (!number)
                return std::nullopt;
            if (name == u"--interval")
                request.intervalSeconds = *number;
            else if (name == u"--count")
                request.count = *number;
            else
                request.durationSeconds = *number;
        } else if (name == u"--channel" || name == u"--rssi") {
            const auto number = wholeNumber(value(), name, -1000, 1000, error);
            if (!number)
                return std::nullopt;
            (name == u"--channel" ? filter.channelForFilterValue : filter.rssiValueForFilter) = QString::number(*number);
        } else if (name == u"--band") {
            const auto band = value();
            if (!band)
                return std::nullopt;
            if (*band != u"2.4" && *band != u"5") {
                *error = QStringLiteral("--band takes 2.4 or 5, not \"%1\"").arg(*band);
                return std::nullopt;
            }
            filter.channelBandItem = *band == u"2.4" ? 1 : 2;
        } else if (argument == u"--stronger" || argument == u"--weaker") {
            filter.rssiWeakOrStrongItem = argument == u"--stronger" ? 0 : 1;
        } else if (name == u"--and-or1" || name == u"--and-or2" || name == u"--and-or3") {
            const auto item = andOrItem(value(), name, error);
            if (!item)
                return std::nullopt;
            (name.back() == u'1' ? filter.firstAndOrItem : name.back() == u'2' ? filter.secondAndOrItem
                                                                                 : filter.thirdAndOrItem) = *item;
        } else if (argument == u"--merge") {
            request.merge = true;
        } else if (argument == u"--json") {
            request.json = true;
        } else if (argument == u"--export") {
            if (i + 2 >= arguments.size()) {
                *error = QStringLiteral("--export needs a kind and a file");
                return std::nullopt;
            }
            request.exportKind = exportKind(arguments[i + 1]);
            if (!request.exportKind) {
                *error = QStringLiteral("--export takes csv, csv-all, html, html-all or html-graphs, not \"%1\"")
                             .arg(arguments[i + 1]);
                return std::nullopt;
            }
            request.exportFile = arguments[i + 2];
            i += 2;
        } else {
            *error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return std::nullopt;
        }
    }
    if (!command) {
        *error = QStringLiteral("the scan command is missing");
        return std::nullopt;
    }
    if (request.count && request.durationSeconds) {
        *error = QStringLiteral("choose either --count or --duration");
        return std::nullopt;
    }
    if (!backendOptionsFit(request.backend, error))
        return std::nullopt;
    filter.userDidClickedApplyFilterButton();
    if (!filter.inputError.isEmpty()) {
        *error = filter.inputError;
        return std::nullopt;
    }
    return request;
}

QString scanUsage()
{
    return QStringLiteral(
        "  scan                  scan tests as the scanner tab runs them, the rows after every scan:\n"
        "    --interval SECONDS    time between scans (5)\n"
        "    --count N | --duration SECONDS   when to stop (default: Ctrl-C)\n"
        "    --merge               one row per network name\n"
        "    --ssid TEXT --channel N --band 2.4|5 --rssi DBM [--stronger|--weaker]\n"
        "    --and-or1|--and-or2|--and-or3 and|or   the words joining the filter fields\n"
        "    --db PATH             the scan database (default: the desktop's)\n"
        "    --json                JSON lines instead of a table\n"
        "    --export csv|csv-all|html|html-all|html-graphs FILE   write the test at the end\n");
}

} // namespace app::cli
