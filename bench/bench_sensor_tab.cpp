// The sensor listener tab under load: a phone stand-in sends GPS lines at a fixed rate while the
// tab is on screen, and a 1 ms timer on the GUI thread measures how long the event loop ever
// stood still. Reports lines sent, shown and saved (none may be lost) and the longest stall.
// A fixed-load run like bench_sensor_throughput, with the view added.
//
//   bench_sensor_tab [--rate LINES_PER_SECOND] [--seconds N] [--udp] [--hidden]
//   (defaults 20000 lines/s, 10 s, TCP; --hidden keeps the tab off screen, which leaves the
//   listener's own cost on the GUI thread)

#include "app/backend/backend_chooser.h"
#include "bench/sensor_load.h"
#include "core/memory_settings.h"
#include "sensor/sensor_listener_session.h"
#include "sensor/view/sensor_listener_tab.h"
#include "sensor/view/sensor_log_view.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

// CPU time the calling thread has used, in milliseconds.
double threadCpuMs()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Gaps between ticks of a 1 ms timer: how long the GUI thread's event loop stood still. Each gap
// is also told as the CPU time the thread spent in it, which separates work done on the GUI
// thread from time the system gave to other processes (this machine is shared).
class StallWatchdog {
public:
    struct Gap {
        double wallMs;
        double cpuMs;
    };

    StallWatchdog()
    {
        tick_.setTimerType(Qt::PreciseTimer);
        tick_.setInterval(1);
        QObject::connect(&tick_, &QTimer::timeout, [this] {
            const double cpu = threadCpuMs();
            gaps_.push_back({static_cast<double>(clock_.nsecsElapsed()) / 1e6, cpu - lastCpuMs_});
            clock_.restart();
            lastCpuMs_ = cpu;
        });
    }
    void start()
    {
        clock_.start();
        lastCpuMs_ = threadCpuMs();
        tick_.start();
    }
    void stop() { tick_.stop(); }
    double longest(double Gap::*measure) const
    {
        double longest = 0.0;
        for (const Gap& gap : gaps_)
            longest = std::max(longest, gap.*measure);
        return longest;
    }
    double percentileWallMs(double fraction) const
    {
        if (gaps_.empty())
            return 0.0;
        std::vector<double> sorted;
        for (const Gap& gap : gaps_)
            sorted.push_back(gap.wallMs);
        std::sort(sorted.begin(), sorted.end());
        return sorted[static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1))];
    }
    qsizetype countOver(double Gap::*measure, double ms) const
    {
        return std::count_if(gaps_.begin(), gaps_.end(), [measure, ms](const Gap& gap) { return gap.*measure > ms; });
    }

private:
    QTimer tick_;
    QElapsedTimer clock_;
    double lastCpuMs_ = 0.0;
    std::vector<Gap> gaps_;
};

// Clicks the tab's start/stop button and waits for the listener's answer.
void clickStartStop(sensor::view::SensorListenerTab& tab, sensor::SensorListenerController& controller)
{
    QEventLoop loop;
    QObject::connect(&controller, &sensor::SensorListenerController::buttonsChanged, &loop, &QEventLoop::quit);
    QTimer::singleShot(5000, &loop, &QEventLoop::quit);
    const int before = controller.startListenerButtonTag();
    tab.findChild<QPushButton*>(QStringLiteral("startListenerButton"))->click();
    if (controller.startListenerButtonTag() == before)
        loop.exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    bench::Load load;
    bool tcp = true;
    bool shown = true;
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == u"--udp")
            tcp = false;
        else if (arguments[i] == u"--hidden")
            shown = false;
        else if (arguments[i] == u"--rate" && i + 1 < arguments.size())
            load.linesPerSecond = std::max(1.0, arguments[++i].toDouble());
        else if (arguments[i] == u"--seconds" && i + 1 < arguments.size())
            load.seconds = std::max(0.1, arguments[++i].toDouble());
    }
    QString error;
    app::BackendOptions options;
    options.simulate = true;
    const std::optional<app::Backend> backend = app::chooseBackend(options, &error);
    if (!backend) {
        std::fprintf(stderr, "bench_sensor_tab: %s\n", qPrintable(error));
        return 1;
    }

    QTemporaryDir folder;
    core::MemorySettings settings({{QStringLiteral("udp_log_file_path"), folder.path()},
                                   {QStringLiteral("udp_auto_save_log_time_interval"), 5}});
    sensor::SensorListenerSession session(backend->interface, settings, QDateTime::currentDateTime());
    sensor::view::SensorListenerTab tab(session);
    tab.resize(1200, 700);
    tab.setVisible(shown);
    QCoreApplication::processEvents();
    tab.findChild<QSpinBox*>(QStringLiteral("udpListenerPortTextField"))->setValue(0);
    tab.findChild<QRadioButton*>(tcp ? QStringLiteral("tcpListenerType") : QStringLiteral("udpListenerType"))->click();
    sensor::SensorListenerController& controller = session.controller();
    clickStartStop(tab, controller);
    const quint16 port = controller.boundPort();
    if (port == 0) {
        std::fprintf(stderr, "bench_sensor_tab: the listener did not start: %s\n", qPrintable(controller.listenerStatus()));
        return 1;
    }

    qint64 logged = 0;
    QObject::connect(&controller, &sensor::SensorListenerController::logLineAppended, [&logged] { ++logged; });
    StallWatchdog watchdog;
    watchdog.start();
    QElapsedTimer elapsed;
    elapsed.start();
    std::atomic<qint64> sent = -1;
    std::thread sender([&] { sent = bench::sendLoad(tcp, port, load); });
    // Once the sender is done, wait until no more lines arrive.
    QEventLoop loop;
    qint64 lastLogged = -1;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (sent >= 0 && (logged == lastLogged || logged >= sent))
            loop.quit();
        lastLogged = logged;
    });
    poll.start(250);
    loop.exec();
    sender.join();
    const double seconds = static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
    tab.logView()->flush();
    QCoreApplication::processEvents();
    watchdog.stop();

    clickStartStop(tab, controller);
    session.finish();
    const bench::FileCheck check =
        bench::checkFile(folder.filePath(session.file().logFileName().mid(1)), sent.load());

    std::printf("sensor listener tab%s, %s at %.0f lines/s for %.1f s, simulated link, view keeps %d lines\n",
                shown ? "" : " (hidden)", tcp ? "TCP" : "UDP", load.linesPerSecond, load.seconds, sensor::view::SensorLogView::keptLines);
    std::printf("  sent %lld in %.2f s, logged %lld, in the file %lld, out of order %lld, lost %lld\n",
                static_cast<long long>(sent.load()), seconds, static_cast<long long>(logged),
                static_cast<long long>(check.rows), static_cast<long long>(check.outOfOrder),
                static_cast<long long>(sent.load() - check.rows));
    if (check.firstMissing >= 0)
        std::printf("  first line missing: number %lld\n", static_cast<long long>(check.firstMissing));
    using Gap = StallWatchdog::Gap;
    std::printf("  GUI thread: longest stall %.1f ms, 99th percentile %.2f ms, stalls over 50 ms: %lld, over 16 ms: %lld\n",
                watchdog.longest(&Gap::wallMs), watchdog.percentileWallMs(0.99),
                static_cast<long long>(watchdog.countOver(&Gap::wallMs, 50.0)),
                static_cast<long long>(watchdog.countOver(&Gap::wallMs, 16.0)));
    std::printf("  GUI thread's own work in one stall: at most %.1f ms of CPU; stalls with over 50 ms of it: %lld\n",
                watchdog.longest(&Gap::cpuMs), static_cast<long long>(watchdog.countOver(&Gap::cpuMs, 50.0)));
    std::printf("  the view shows %d lines, the last: %s\n", tab.logView()->lineCount(),
                qPrintable(tab.logView()->text().section(u'\n', -1)));
    return check.rows == sent.load() && watchdog.longest(&Gap::wallMs) <= 50.0 ? 0 : 2;
}
