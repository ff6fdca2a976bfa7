#include "app/cli/scan_command.h"

#include "app/cli/cli_arguments.h"

#include "app/cli/json_writer.h"
#include "app/cli/scan_output.h"
#include "core/settings_overlay.h"
#include "graphs/color_codes_manager.h"
#include "graphs/graph_view_tab_set.h"
#include "graphs/view/report_graph_images.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_database.h"
#include "scanning/scan_test_driver.h"
#include "scanning/timer_source.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <memory>
#include <unistd.h>

namespace app::cli {
namespace {

int stopPipe[2] = {-1, -1};

extern "C" void requestStop(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(stopPipe[1], &byte, 1);
}

// Ctrl-C and SIGTERM end the run like --count does, so the export still happens. The handler
// only writes to a pipe; the event loop does the rest.
class StopSignals {
public:
    template <typename Stop>
    explicit StopSignals(Stop stop)
    {
        if (::pipe(stopPipe) != 0)
            return;
        notifier_ = std::make_unique<QSocketNotifier>(stopPipe[0], QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [stop] {
            char byte = 0;
            [[maybe_unused]] const ssize_t got = ::read(stopPipe[0], &byte, 1);
            stop();
        });
        std::signal(SIGINT, requestStop);
        std::signal(SIGTERM, requestStop);
    }
    ~StopSignals()
    {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        notifier_.reset();
        for (int& fd : stopPipe) {
            if (fd >= 0)
                ::close(fd);
            fd = -1;
        }
    }
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

int exportTest(const ScanRequest& request, const scanning::ScanTestDriver& driver, const core::UserSettings& settings,
               const scanning::ReportGraphs& graphs, std::FILE* err)
{
    QList<scanning::WiFiScanTest*> tests;
    for (const auto& test : driver.wifiScanTestArray())
        tests << test.get();
    platform::SystemClock clock;
    const scanning::ScanExporter::Result result = scanning::ScanExporter(clock, settings).startExporting(
        *request.exportKind, scanning::ScanExporter::destinationPath(request.exportFile), tests,
        tests.isEmpty() ? nullptr : tests.first(), graphs);
    if (!result.statusText.isEmpty())
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(result.statusText));
    if (!result.failureReason.isEmpty())
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(result.failureReason));
    if (result.writtenPath.isEmpty()) {
        if (tests.isEmpty())
            writeText(err, QStringLiteral("skyvane-cli: no scan test to export\n"));
        return 1;
    }
    writeText(err, QStringLiteral("Exported to %1\n").arg(result.writtenPath));
    return 0;
}

} // namespace

int runScan(const ScanRequest& request, core::UserSettings& userSettings, std::FILE* out, std::FILE* err)
{
    const std::optional<app::Backend> backend = openBackend(request.backend, err);
    if (!backend)
        return 1;

    // --merge is this run's choice: it stays in memory and leaves the desktop's setting alone.
    core::SettingsOverlay settings(userSettings, {{QStringLiteral("mergeScanResults"), request.merge ? 1 : 0}});
    scanning::ScanDatabase database(request.databasePath);
    if (!database.isOpen()) {
        writeText(err, QStringLiteral("skyvane-cli: the scan database %1 cannot be used: %2\n")
                           .arg(database.path(), database.openError()));
        return 1;
    }
    database.updateDatabase();
    platform::SystemClock clock;
    scanning::QtTimerSource timers(clock);
    platform::ShellCommandRunner commands;
    scanning::ScanTestDriver driver(backend->interface, database, settings, timers, commands, QCoreApplication::applicationFilePath(),
                          app::cli::backendArguments(request.backend));
    driver.setRefreshIntervalSeconds(request.intervalSeconds);
    driver.filter() = request.filter;
    // The results view's model keeps the rows in its order (by name, A to Z, unless told otherwise).
    scanning::ResultsTableModel table(settings);
    driver.setResultsListener(&table);
    // A report with graphs draws them as the desktop does, from the same calls of the table.
    std::unique_ptr<graphs::GraphViewTabSet> graphTabs;
    std::unique_ptr<graphs::view::ReportGraphImages> graphImages;
    if (request.exportKind == scanning::ScanExporter::SelectedTestHtmlWithGraphs) {
        graphTabs = std::make_unique<graphs::GraphViewTabSet>(graphs::ColorCodesManager::sharedColorManager(), settings);
        graphImages = std::make_unique<graphs::view::ReportGraphImages>(*graphTabs);
        table.setGraphSink(graphTabs.get());
    }

    QEventLoop loop;
    bool stopping = false;
    bool failed = false;
    int scans = 0;
    const auto stop = [&] {
        if (stopping)
            return;
        stopping = true;
        driver.cancelButtonPressed();
        loop.quit();
    };
    JsonWriter json(out, 1u << 16);
    QObject::connect(&driver, &scanning::ScanTestDriver::scanProcessed, &loop, [&](const std::shared_ptr<scanning::WiFiScanTest>& test) {
        if (stopping)
            return;
        ++scans;
        if (request.json) {
            writeScanJson(json, scans, driver.countLabel(), *test);
            json.flush();
        } else {
            writeText(out, (scans > 1 ? QStringLiteral("\n") : QString()) + scanTable(driver.countLabel(), table));
        }
        if (request.count && scans >= *request.count)
            stop();
    });
    QObject::connect(&driver, &scanning::ScanTestDriver::messageLabelChanged, &loop, [err](const QString& text) {
        if (!text.isEmpty())
            writeText(err, text + QLatin1Char('\n'));
    });
    // A scan the backend could not run (a capture that cannot be read further) fails the run,
    // even when the networks heard before stay on show; each reason is said once.
    QStringList scanErrors;
    QObject::connect(&driver, &scanning::ScanTestDriver::scanErrorReported, &loop, [&](const QString& description) {
        failed = true;
        if (scanErrors.contains(description))
            return;
        scanErrors.append(description);
        writeText(err, QStringLiteral("skyvane-cli: scan failed: %1\n").arg(description));
    });
    QObject::connect(&driver, &scanning::ScanTestDriver::databaseFailed, &loop, [&](const QString& message) {
        failed = true;
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(message));
        stop();
    });
    const StopSignals stopSignals(stop);
    QTimer deadline;
    if (request.durationSeconds) {
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, stop);
        deadline.start(std::chrono::seconds(*request.durationSeconds));
    }
    // The tool's channel text (secondary-channel suffix) and security words refresh as in the tab.
    QTimer channelRefresh;
    QObject::connect(&channelRefresh, &QTimer::timeout, &driver, &scanning::ScanTestDriver::refreshChannelInfo);
    channelRefresh.start(std::chrono::seconds(60));
    // The first scan waits for the tool's answer, as the tab's launch delay lets it, so even the
    // first rows carry the tool's security words; a tool that never answers delays it no longer.
    QTimer launch;
    launch.setSingleShot(true);
    bool started = false;
    const auto start = [&] {
        if (started || stopping)
            return;
        started = true;
        launch.stop();
        driver.scanButtonPressed();
    };
    QObject::connect(&driver, &scanning::ScanTestDriver::channelInfoChanged, &loop, start);
    QObject::connect(&launch, &QTimer::timeout, &loop, start);
    launch.start(std::chrono::milliseconds(1500));
    driver.refreshChannelInfo();
    loop.exec();
    driver.waitForBackgroundWork();

    scanning::ReportGraphs graphs;
    if (graphImages) {
        graphImages->refresh();
        graphs = graphImages->reportGraphs();
    }
    const int exported = request.exportKind ? exportTest(request, driver, settings, graphs, err) : 0;
    return failed ? 1 : exported;
}

} // namespace app::cli
