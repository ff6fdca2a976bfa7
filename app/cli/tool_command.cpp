#include "app/cli/tool_command.h"

#include "app/cli/cli_arguments.h"
#include "app/cli/tool_output.h"

#include <algorithm>
#include <cmath>
#include <thread>

namespace app::cli {
namespace {

struct Heard {
    QList<platform::ScanResult> networks;
    platform::MaybeError error;
};

// A scan that fails or hears nothing falls back to what the interface heard recently, as the
// scanner does; only an error with nothing to show is a failure.
Heard scanOnce(platform::WirelessInterface& interface)
{
    platform::ScanOutcome outcome = interface.scanForNetworksWithSSID({});
    if (outcome.networks.isEmpty())
        outcome.networks = interface.cachedScanResults();
    return {outcome.networks, outcome.error};
}

bool reportScanError(const Heard& heard, std::FILE* err)
{
    if (!heard.error)
        return false;
    writeText(err, QStringLiteral("skyvane-cli: scan failed: %1\n").arg(heard.error->description));
    return heard.networks.isEmpty();
}

int runWatch(const ToolRequest& request, const app::Backend& backend, std::FILE* out, std::FILE* err)
{
    const QString status = backend.statusText.isEmpty()
                               ? QStringLiteral("Wi-Fi interface %1").arg(backend.interface->interfaceName())
                               : backend.statusText;
    writeText(out, status + QLatin1Char('\n'));
    // A failed scan fails the run, as it fails -s, though the listing goes on with what was heard.
    bool failed = false;
    for (int round = 1;; ++round) {
        const Heard heard = scanOnce(*backend.interface);
        reportScanError(heard, err);
        failed = failed || heard.error.has_value();
        writeText(out, QLatin1Char('\n') + scanListing(heard.networks));
        if (request.watchCount && round >= *request.watchCount)
            return failed ? 1 : 0;
        std::this_thread::sleep_for(request.watchInterval);
    }
}

} // namespace

std::optional<ToolRequest> parseToolArguments(const QStringList& arguments, QString* error)
{
    ToolRequest request;
    bool scan = false, xml = false, link = false, watch = false;
    std::optional<std::chrono::milliseconds> interval;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const BackendOptionResult backend = takeBackendOption(arguments, i, request.backend, error);
        if (backend == BackendOptionResult::Invalid)
            return std::nullopt;
        if (backend == BackendOptionResult::Taken)
            continue;
        if (argument == u"-s") {
            scan = true;
        } else if (argument == u"-x") {
            xml = true;
        } else if (argument == u"-I") {
            link = true;
        } else if (argument == u"watch") {
            watch = true;
        } else if (argument == u"--explain") {
            request.explain = true;
        } else if (matchesOption(argument, QStringLiteral("--interval"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--interval"), error);
            bool ok = false;
            const double seconds = text ? text->toDouble(&ok) : 0.0;
            if (!ok || !std::isfinite(seconds) || seconds <= 0.0 || seconds > 86400.0) {
                if (text)
                    *error = QStringLiteral("--interval needs a number of seconds, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            interval = std::chrono::milliseconds(std::llround(seconds * 1000.0));
        } else if (matchesOption(argument, QStringLiteral("--count"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--count"), error);
            const auto count = text ? positiveNumber(*text, QStringLiteral("--count"), error) : std::nullopt;
            if (!count)
                return std::nullopt;
            request.watchCount = static_cast<int>(std::min(*count, 1'000'000'000LL));
        } else {
            *error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return std::nullopt;
        }
    }

    if (static_cast<int>(scan) + static_cast<int>(link) + static_cast<int>(watch) != 1) {
        *error = QStringLiteral("give exactly one of -s, -I and watch");
        return std::nullopt;
    }
    if (request.explain && !link) {
        *error = QStringLiteral("--explain goes with -I");
        return std::nullopt;
    }
    if (xml && !scan) {
        *error = QStringLiteral("-x goes with -s");
        return std::nullopt;
    }
    if (!watch && (interval || request.watchCount)) {
        *error = QStringLiteral("--interval and --count go with watch");
        return std::nullopt;
    }
    if (!backendOptionsFit(request.backend, error))
        return std::nullopt;
    request.action = watch ? ToolAction::Watch
                     : link ? ToolAction::LinkReport
                     : xml  ? ToolAction::ScanPropertyList
                            : ToolAction::ScanListing;
    if (interval)
        request.watchInterval = *interval;
    return request;
}

QString toolUsage()
{
    return QStringLiteral(
        "  -s                    networks in range, one line each\n"
        "  -s -x                 networks in range as an XML property list\n"
        "  -I [--explain]        the current link, one \"key: value\" line each; --explain adds where each\n"
        "                        value came from\n"
        "  watch                 -s again every --interval SECONDS (5), --count N times or until Ctrl-C\n"
        "\nBACKEND (default: the first Wi-Fi interface, else the simulated environment):\n"
        "  --interface NAME      this Wi-Fi interface\n"
        "  --simulate[=N]        the simulated radio environment, N access points\n"
        "  --seed N              the simulated environment's seed\n"
        "  --capture FILE        a pcap or pcapng capture replayed as an interface\n");
}

int runToolRequest(const ToolRequest& request, std::FILE* out, std::FILE* err)
{
    // Status goes to standard error here so the scanner, which reads standard output line by
    // line, never mistakes it for a network; watch prints it at the top of its own output.
    const std::optional<app::Backend> backend = openBackend(request.backend, err, request.action != ToolAction::Watch);
    if (!backend)
        return 1;

    switch (request.action) {
    case ToolAction::LinkReport:
        writeText(out, linkReport(backend->interface->snapshot(), backend->interface->generation(), request.explain));
        return 0;
    case ToolAction::Watch:
        return runWatch(request, *backend, out, err);
    case ToolAction::ScanListing:
    case ToolAction::ScanPropertyList:
        break;
    }
    const Heard heard = scanOnce(*backend->interface);
    if (reportScanError(heard, err))
        return 1;
    if (request.action == ToolAction::ScanPropertyList)
        writeText(out, scanPropertyList(heard.networks, backend->interface->generation()));
    else
        writeText(out, scanListing(heard.networks));
    return 0;
}

} // namespace app::cli
