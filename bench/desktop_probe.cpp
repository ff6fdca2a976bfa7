// The desktop program's budgets, measured on the simulated radio with the real composition root
// and an offscreen window, not in tests:
//   desktop_probe launch N          launch to the first filled table (start delay included)
//   desktop_probe latency N SECONDS  the GUI thread's longest stall while scanning N networks
//   desktop_probe memory N SCANS     resident memory after 100 scans and after SCANS scans
// Each run has a home folder of its own, so the user's settings and database stay untouched.
#include "app/desktop/desktop_application.h"
#include "app/desktop/desktop_arguments.h"
#include "app/desktop/memory_arenas.h"
#include "core/memory_settings.h"
#include "graphs/color_codes_manager.h"
#include "graphs/graph_view_tab_set.h"
#include "platform/api/command_runner.h"
#include "platform/sim/simulated_wireless_client.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_database.h"
#include "scanning/scan_test_driver.h"
#include "scanning/view/results_table_view.h"
#include "testsupport/fake_timer_source.h"
#include "testsupport/manual_clock.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// Seconds since this process was created, from the kernel's record of its start.
double processAgeSeconds()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    QFile uptime(QStringLiteral("/proc/uptime"));
    if (!stat.open(QIODevice::ReadOnly) || !uptime.open(QIODevice::ReadOnly))
        return 0.0;
    const QByteArray line = stat.readAll();
    // Field 22 (start time in clock ticks) counts from after the command name's closing bracket.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double started = fields.value(19).toDouble() / static_cast<double>(sysconf(_SC_CLK_TCK));
    return uptime.readAll().split(' ').value(0).toDouble() - started;
}

long residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return 0;
}

std::unique_ptr<app::desktop::DesktopApplication> launchDesktop(int accessPoints, const QTemporaryDir& home)
{
    app::desktop::DesktopArguments arguments = app::desktop::parseDesktopArguments(
        {QStringLiteral("--simulate=%1").arg(accessPoints), QStringLiteral("--db"), home.filePath(QStringLiteral("db.sqlite"))});
    auto desktop = std::make_unique<app::desktop::DesktopApplication>(
        arguments, [](const QString& reason) { std::fprintf(stderr, "desktop_probe: %s\n", qPrintable(reason)); });
    if (!desktop->launch())
        return nullptr;
    return desktop;
}

bool waitForRows(app::desktop::DesktopApplication& desktop, int timeoutMs)
{
    QElapsedTimer waited;
    waited.start();
    while (desktop.results()->rowCount() == 0 && waited.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return desktop.results()->rowCount() > 0;
}

int measureLaunch(int accessPoints, const QTemporaryDir& home)
{
    const auto desktop = launchDesktop(accessPoints, home);
    if (!desktop || !waitForRows(*desktop, 20000))
        return 1;
    std::printf("launch to first filled table: %.0f ms (%d rows, %d networks simulated)\n",
                processAgeSeconds() * 1000.0, desktop->results()->rowCount(), accessPoints);
    desktop->terminate();
    return 0;
}

int measureLatency(int accessPoints, int seconds, const QTemporaryDir& home)
{
    const auto desktop = launchDesktop(accessPoints, home);
    if (!desktop || !waitForRows(*desktop, 60000))
        return 1;
    // A 1 ms timer on the GUI thread: any gap beyond its period is time the thread was busy.
    QElapsedTimer clock;
    clock.start();
    qint64 last = clock.elapsed();
    qint64 worst = 0;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        worst = std::max(worst, now - last - 1);
        last = now;
    });
    probe.start(1);
    int scans = 0;
    QObject::connect(desktop->results(), &scanning::ResultsTableModel::tableReloaded, [&scans] { ++scans; });
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    std::printf("longest GUI-thread stall over %d s (%d table updates, %d networks, %d s interval): %lld ms\n", seconds,
                scans, accessPoints, desktop->driver()->refreshIntervalSeconds(), static_cast<long long>(worst));
    desktop->terminate();
    return 0;
}

class NoTool : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString&) override { return {}; }
};

int measureMemory(int accessPoints, int scans, const QTemporaryDir& home)
{
    // Scans as fast as the machine does them: a fake clock drives the timers, the rest is real.
    testsupport::ManualClock clock(QDateTime::fromSecsSinceEpoch(1'750'000'000));
    testsupport::FakeTimerSource timers(clock);
    auto simClock = std::make_shared<testsupport::ManualClock>(clock.now());
    platform::sim::SimulatedWirelessClient client(platform::sim::SimulationReason::ChosenOnCommandLine,
                                                  {accessPoints, platform::sim::defaultSimulationSeed, {}}, simClock);
    core::MemorySettings settings;
    scanning::ScanDatabase database(home.filePath(QStringLiteral("db.sqlite")));
    database.updateDatabase();
    NoTool tool;
    scanning::ScanTestDriver driver(client.interfaceWithName(QStringLiteral("sim0")), database, settings, timers, tool,
                                    QStringLiteral("skyvane-cli"), {});
    graphs::GraphViewTabSet graphs(graphs::ColorCodesManager::sharedColorManager(), settings);
    scanning::ResultsTableModel results(settings, &graphs);
    driver.setResultsListener(&results);
    scanning::view::ResultsTableView view(results, settings);
    view.resize(1280, 800);
    view.show();

    driver.setRefreshIntervalSeconds(5);
    driver.scanButtonPressed();
    long after100 = 0;
    for (int scan = 1; scan <= scans; ++scan) {
        simClock->advance(5s);
        timers.advance(5s);
        driver.waitForBackgroundWork();
        QCoreApplication::processEvents();
        if (scan == 100)
            after100 = residentKilobytes();
        if (scan % 100 == 0)
            std::printf("  after %d scans: %ld kB\n", scan, residentKilobytes());
    }
    const long after = residentKilobytes();
    std::printf("resident memory, %d networks: %ld kB after 100 scans, %ld kB after %d scans (%+.1f%%)\n",
                accessPoints, after100, after, scans,
                after100 > 0 ? 100.0 * static_cast<double>(after - after100) / static_cast<double>(after100) : 0.0);
    driver.cancelButtonPressed();
    driver.waitForBackgroundWork();
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    app::desktop::limitMemoryArenas();
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    const QString mode = words.value(0);
    const int accessPoints = words.value(1).toInt();
    if (mode == u"launch" && accessPoints > 0)
        return measureLaunch(accessPoints, home);
    if (mode == u"latency" && accessPoints > 0 && words.value(2).toInt() > 0)
        return measureLatency(accessPoints, words.value(2).toInt(), home);
    if (mode == u"memory" && accessPoints > 0 && words.value(2).toInt() >= 100)
        return measureMemory(accessPoints, words.value(2).toInt(), home);
    std::fputs("usage: desktop_probe launch N | latency N SECONDS | memory N SCANS (SCANS >= 100)\n", stderr);
    return 2;
}
