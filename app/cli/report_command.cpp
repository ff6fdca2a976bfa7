#include "app/cli/report_command.h"

#include "app/cli/cli_arguments.h"
#include "interface/connected_report.h"
#include "interface/interface_info_controller.h"
#include "interface/view/interface_graph_scene.h"
#include "platform/api/clock.h"
#include "platform/api/command_runner.h"
#include "plot/renderer.h"
#include "scanning/channel_info_refresher.h"
#include "scanning/timer_source.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QImage>
#include <QTimer>

namespace app::cli {
namespace {

constexpr int maxDurationSeconds = 24 * 60 * 60;
const QSize graphImageSize(1000, 400);

} // namespace

QString reportUsage()
{
    return QStringLiteral("  [BACKEND] report FILE [--duration SECONDS]\n"
                          "                        watch the current connection (10 s unless told) and write the\n"
                          "                        connected-network report beside FILE\n");
}

std::optional<ReportRequest> parseReportArguments(const QStringList& arguments, QString* error)
{
    ReportRequest request;
    bool command = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const BackendOptionResult backend = takeBackendOption(arguments, i, request.backend, error);
        if (backend == BackendOptionResult::Invalid)
            return std::nullopt;
        if (backend == BackendOptionResult::Taken)
            continue;
        if (matchesOption(argument, QStringLiteral("--duration"))) {
            const auto value = optionValue(arguments, i, QStringLiteral("--duration"), error);
            if (!value)
                return std::nullopt;
            const auto seconds = positiveNumber(*value, QStringLiteral("--duration"), error);
            if (!seconds)
                return std::nullopt;
            if (*seconds > maxDurationSeconds) {
                *error = QStringLiteral("--duration is at most %1 seconds").arg(maxDurationSeconds);
                return std::nullopt;
            }
            request.durationSeconds = static_cast<int>(*seconds);
        } else if (!command && argument == u"report") {
            command = true;
        } else if (command && request.path.isEmpty() && !argument.startsWith(QLatin1Char('-'))) {
            request.path = argument;
        } else {
            *error = QStringLiteral("report does not take \"%1\"").arg(argument);
            return std::nullopt;
        }
    }
    if (request.path.isEmpty()) {
        *error = QStringLiteral("report needs the file to write");
        return std::nullopt;
    }
    if (!backendOptionsFit(request.backend, error))
        return std::nullopt;
    return request;
}

int runReport(const ReportRequest& request, std::FILE* out, std::FILE* err)
{
    const std::optional<app::Backend> backend = openBackend(request.backend, err);
    if (!backend)
        return 1;
    platform::SystemClock clock;
    scanning::QtTimerSource timers(clock);
    platform::ShellCommandRunner commands;
    // The MCS index comes from this same program's link report on the same radio.
    const QString toolCommand =
        scanning::toolCommandLine(QCoreApplication::applicationFilePath(), backendArguments(request.backend)) +
        QStringLiteral(" -I");
    connection::InterfaceInfoController controller(backend->interface, timers, commands, toolCommand, {});
    controller.setTabShown(true);
    controller.startInterfaceTabGraphRefresh();
    QEventLoop loop;
    QTimer::singleShot(request.durationSeconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    controller.stopInterfaceTabGraphRefresh();
    controller.setTabShown(false);
    controller.waitForBackgroundWork();

    connection::ConnectedReportValues values;
    values.fields = controller.fields();
    values.record = controller.currentNetworkDetails();
    values.signalToNoise = controller.signalToNoise();
    const platform::InterfaceSnapshot link = backend->interface->snapshot();
    if (link.wlanChannel)
        values.interfaceChannel = link.wlanChannel->channelNumber;
    const QDateTime now = QDateTime::currentDateTime();
    const QString html = connection::connectedReportHtml(connection::loadConnectedReportTemplate(), values, now);
    const plot::Graph graph = connection::view::interfaceGraphScene(
        connection::interfaceGraphData(controller.graphDataPoints()), true);
    const connection::ConnectedReportOutcome outcome =
        connection::writeConnectedReport(request.path, html, now, [&graph](const QString& folder) {
            return plot::renderImage(graph, graphImageSize)
                .save(folder + QLatin1Char('/') + connection::connectedGraphFileName);
        });
    if (outcome.htmlPath.isEmpty()) {
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(outcome.failure));
        return 1;
    }
    writeText(out, outcome.htmlPath + QLatin1Char('\n'));
    if (!outcome.failure.isEmpty()) {
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(outcome.failure));
        return 1;
    }
    return 0;
}

} // namespace app::cli
