#include "app/cli/monitor_command.h"

#include "app/cli/cli_arguments.h"
#include "core/memory_settings.h"
#include "monitor/network_monitor.h"
#include "platform/sound/beep_player.h"
#include "scan/record_builder.h"
#include "scan/scanner_utils.h"
#include "scanning/timer_source.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QRegularExpression>

#include <algorithm>

namespace app::cli {
namespace {

// An SSID may carry anything; a terminal line must stay one line.
QString printable(QString text)
{
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = QLatin1Char('?');
    }
    return text;
}

bool looksLikeBSSID(const QString& text)
{
    static const QRegularExpression mac(QStringLiteral("^([0-9A-Fa-f]{1,2}:){5}[0-9A-Fa-f]{1,2}$"));
    return mac.match(text).hasMatch();
}

// The access point as a full scan hears it now, or nullopt after saying why not.
std::optional<scan::ScanedResultInfo> findAccessPoint(const MonitorRequest& request, platform::WirelessInterface& interface,
                                                      std::FILE* err)
{
    platform::ScanOutcome outcome = interface.scanForNetworksWithSSID({});
    if (outcome.networks.isEmpty())
        outcome.networks = interface.cachedScanResults();
    const QString wanted = scan::ScannerUtils::normalizeMAC(request.bssid);
    const auto match = std::find_if(outcome.networks.begin(), outcome.networks.end(), [&](const platform::ScanResult& n) {
        return scan::ScannerUtils::normalizeMAC(n.bssid) == wanted;
    });
    if (match == outcome.networks.end()) {
        if (outcome.error)
            writeText(err, QStringLiteral("skyvane-cli: scan failed: %1\n").arg(outcome.error->description));
        writeText(err, QStringLiteral("skyvane-cli: no access point with BSSID %1 is in range on %2\n")
                           .arg(wanted, interface.interfaceName()));
        return std::nullopt;
    }
    const auto network = std::make_shared<const platform::ScanResult>(*match);
    const core::MemorySettings settings;
    return scan::buildRecord(scan::observationFromScanResult(*network, QDateTime::currentDateTime(), interface.generation()),
                             network, interface.generation(), settings);
}

QString rescanLine(const monitor::NetworkMonitor& monitor, bool found)
{
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss"));
    if (!found)
        return QStringLiteral("%1  not heard\n").arg(time);
    const monitor::MonitorTexts& texts = monitor.texts();
    return QStringLiteral("%1  %2  %3  %4\n").arg(time, texts.signal, printable(texts.channel), printable(texts.phy));
}

} // namespace

std::optional<MonitorRequest> parseMonitorArguments(const QStringList& arguments, QString* error)
{
    MonitorRequest request;
    bool command = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const BackendOptionResult backend = takeBackendOption(arguments, i, request.backend, error);
        if (backend == BackendOptionResult::Invalid)
            return std::nullopt;
        if (backend == BackendOptionResult::Taken)
            continue;
        if (!command && argument == u"monitor") {
            command = true;
        } else if (matchesOption(argument, QStringLiteral("--interval"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--interval"), error);
            const auto seconds = text ? positiveNumber(*text, QStringLiteral("--interval"), error) : std::nullopt;
            if (!seconds)
                return std::nullopt;
            request.intervalSeconds = static_cast<int>(std::min(*seconds, 86400LL));
        } else if (matchesOption(argument, QStringLiteral("--count"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--count"), error);
            const auto count = text ? positiveNumber(*text, QStringLiteral("--count"), error) : std::nullopt;
            if (!count)
                return std::nullopt;
            request.count = static_cast<int>(std::min(*count, 1'000'000'000LL));
        } else if (argument == u"--beep") {
            request.beep = true;
        } else if (command && request.bssid.isEmpty() && !argument.startsWith(QLatin1Char('-'))) {
            if (!looksLikeBSSID(argument)) {
                *error = QStringLiteral("monitor needs a BSSID such as 00:11:22:AA:BB:CC, not \"%1\"").arg(argument);
                return std::nullopt;
            }
            request.bssid = argument;
        } else {
            *error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return std::nullopt;
        }
    }
    if (request.bssid.isEmpty()) {
        *error = QStringLiteral("monitor needs the BSSID of the access point to follow");
        return std::nullopt;
    }
    if (!backendOptionsFit(request.backend, error))
        return std::nullopt;
    return request;
}

QString monitorUsage()
{
    return QStringLiteral(
        "  monitor BSSID         rescan one access point every --interval SECONDS (5) and print\n"
        "                        \"signal, noise (SNR)\", channel and PHY; --beep beeps every\n"
        "                        (0 - signal)/100 s, faster as it grows stronger; --count N rescans\n"
        "                        or until Ctrl-C\n");
}

int runMonitor(const MonitorRequest& request, std::FILE* out, std::FILE* err)
{
    const std::optional<app::Backend> backend = openBackend(request.backend, err);
    if (!backend)
        return 1;
    const std::optional<scan::ScanedResultInfo> record = findAccessPoint(request, *backend->interface, err);
    if (!record)
        return 1;

    std::unique_ptr<platform::sound::BeepPlayer> player;
    if (request.beep) {
        player = std::make_unique<platform::sound::BeepPlayer>(
            platform::sound::BeepPlayer::locateBeepSound(QCoreApplication::applicationDirPath()));
        QObject::connect(player.get(), &platform::sound::BeepPlayer::unavailable, [err](const QString& reason) {
            writeText(err, QStringLiteral("skyvane-cli: cannot beep: %1; monitoring goes on without sound\n").arg(reason));
        });
    }
    const platform::SystemClock clock;
    scanning::QtTimerSource timers(clock);
    monitor::NetworkMonitor monitor(*record, backend->interface, request.intervalSeconds, timers, [&player] {
        if (player)
            player->play();
    });

    QEventLoop loop;
    int rounds = 0;
    bool failed = false;
    QObject::connect(&monitor, &monitor::NetworkMonitor::rescanFailed, [&](const QString& reason) {
        failed = true;
        writeText(err, QStringLiteral("skyvane-cli: scan failed: %1\n").arg(reason));
    });
    QObject::connect(&monitor, &monitor::NetworkMonitor::rescanned, [&](bool found) {
        writeText(out, rescanLine(monitor, found));
        if (request.count && ++rounds >= *request.count)
            loop.quit();
    });

    const monitor::MonitorTexts& first = monitor.texts();
    writeText(out, QStringLiteral("%1  \"%2\"  %3  %4\n")
                       .arg(monitor.windowTitle(), printable(first.name), first.signal, printable(first.vendor)));
    monitor.initWindowToShow();
    if (request.beep)
        monitor.beeper().switchBeeper(true, monitor.selectedNetwork().rssi);
    loop.exec();
    monitor.close();
    return failed ? 1 : 0;
}

} // namespace app::cli
