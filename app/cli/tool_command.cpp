#include "app/cli/tool_command.h"

#include "app/cli/tool_output.h"

#include <algorithm>
#include <cmath>
#include <thread>

namespace cli {
namespace {

void write(std::FILE* stream, const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

void write(std::FILE* stream, const QString& text)
{
    write(stream, text.toUtf8());
}

// "--name VALUE" or "--name=VALUE"; advances i past what it used.
std::optional<QString> optionValue(const QStringList& arguments, qsizetype& i, const QString& name, QString* error)
{
    const QString& argument = arguments[i];
    if (argument.startsWith(name + QLatin1Char('=')))
        return argument.mid(name.size() + 1);
    if (i + 1 >= arguments.size()) {
        *error = QStringLiteral("%1 needs a value").arg(name);
        return std::nullopt;
    }
    return arguments[++i];
}

bool matches(const QString& argument, const QString& name)
{
    return argument == name || argument.startsWith(name + QLatin1Char('='));
}

std::optional<long long> positiveNumber(const QString& text, const QString& name, QString* error)
{
    bool ok = false;
    const long long value = text.toLongLong(&ok);
    if (!ok || value <= 0) {
        *error = QStringLiteral("%1 needs a positive whole number, not \"%2\"").arg(name, text);
        return std::nullopt;
    }
    return value;
}

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
    write(err, QStringLiteral("skyvane-cli: scan failed: %1\n").arg(heard.error->description));
    return heard.networks.isEmpty();
}

int runWatch(const ToolRequest& request, const app::Backend& backend, std::FILE* out, std::FILE* err)
{
    const QString status = backend.statusText.isEmpty()
                               ? QStringLiteral("Wi-Fi interface %1").arg(backend.interface->interfaceName())
                               : backend.statusText;
    write(out, status + QLatin1Char('\n'));
    for (int round = 1;; ++round) {
        const Heard heard = scanOnce(*backend.interface);
        reportScanError(heard, err);
        write(out, QLatin1Char('\n') + scanListing(heard.networks));
        if (request.watchCount && round >= *request.watchCount)
            return 0;
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
        if (argument == u"-s") {
            scan = true;
        } else if (argument == u"-x") {
            xml = true;
        } else if (argument == u"-I") {
            link = true;
        } else if (argument == u"watch") {
            watch = true;
        } else if (argument == u"--simulate") {
            request.backend.simulate = true;
        } else if (argument.startsWith(u"--simulate=")) {
            request.backend.simulate = true;
            const auto count = positiveNumber(argument.mid(11), QStringLiteral("--simulate"), error);
            if (!count)
                return std::nullopt;
            request.backend.simulatedAccessPoints = static_cast<int>(std::min(*count, 1'000'000LL));
        } else if (matches(argument, QStringLiteral("--seed"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--seed"), error);
            bool ok = false;
            const std::uint64_t seed = text ? text->toULongLong(&ok) : 0;
            if (!ok) {
                if (text)
                    *error = QStringLiteral("--seed needs a whole number, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            request.backend.simulationSeed = seed;
        } else if (matches(argument, QStringLiteral("--interface"))) {
            const auto name = optionValue(arguments, i, QStringLiteral("--interface"), error);
            if (!name)
                return std::nullopt;
            request.backend.interfaceName = *name;
        } else if (matches(argument, QStringLiteral("--capture"))) {
            const auto file = optionValue(arguments, i, QStringLiteral("--capture"), error);
            if (!file)
                return std::nullopt;
            request.backend.captureFile = *file;
        } else if (matches(argument, QStringLiteral("--interval"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--interval"), error);
            bool ok = false;
            const double seconds = text ? text->toDouble(&ok) : 0.0;
            if (!ok || !std::isfinite(seconds) || seconds <= 0.0 || seconds > 86400.0) {
                if (text)
                    *error = QStringLiteral("--interval needs a number of seconds, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            interval = std::chrono::milliseconds(std::llround(seconds * 1000.0));
        } else if (matches(argument, QStringLiteral("--count"))) {
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
    if (xml && !scan) {
        *error = QStringLiteral("-x goes with -s");
        return std::nullopt;
    }
    if (!watch && (interval || request.watchCount)) {
        *error = QStringLiteral("--interval and --count go with watch");
        return std::nullopt;
    }
    if (request.backend.simulate && !request.backend.captureFile.isEmpty()) {
        *error = QStringLiteral("choose either --simulate or --capture");
        return std::nullopt;
    }
    if (!request.backend.simulate && (request.backend.simulationSeed || request.backend.simulatedAccessPoints)) {
        *error = QStringLiteral("--seed goes with --simulate");
        return std::nullopt;
    }
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
        "  -I                    the current link, one \"key: value\" line each\n"
        "  watch                 -s again every --interval SECONDS (5), --count N times or until Ctrl-C\n"
        "\nBACKEND (default: the first Wi-Fi interface, else the simulated environment):\n"
        "  --interface NAME      this Wi-Fi interface\n"
        "  --simulate[=N]        the simulated radio environment, N access points\n"
        "  --seed N              the simulated environment's seed\n"
        "  --capture FILE        a pcap or pcapng capture replayed as an interface\n");
}

int runToolRequest(const ToolRequest& request, std::FILE* out, std::FILE* err)
{
    QString error;
    const std::optional<app::Backend> backend = app::chooseBackend(request.backend, &error);
    if (!backend) {
        write(err, QStringLiteral("skyvane-cli: %1\n").arg(error));
        return 1;
    }
    // Status goes to standard error here so the scanner, which reads standard output line by
    // line, never mistakes it for a network.
    if (request.action != ToolAction::Watch && !backend->statusText.isEmpty())
        write(err, backend->statusText + QLatin1Char('\n'));

    switch (request.action) {
    case ToolAction::LinkReport:
        write(out, linkReport(backend->interface->snapshot()));
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
        write(out, scanPropertyList(heard.networks));
    else
        write(out, scanListing(heard.networks));
    return 0;
}

} // namespace cli
