// Sensor listener under load: a phone stand-in sends GPS lines at a fixed rate over real
// loopback sockets while the listener logs them and the log is saved to its file every second.
// Reports, per transport, lines sent, lines that reached the log and the file (in order), and
// over UDP what the kernel dropped before the listener read it. A fixed-load run, not a
// Google Benchmark: the question is "is anything lost at this rate", not "how fast is one call".
//
//   bench_sensor_throughput [--rate LINES_PER_SECOND] [--seconds N]   (defaults 20000, 10)

#include "app/backend/backend_chooser.h"
#include "bench/sensor_load.h"
#include "core/memory_settings.h"
#include "sensor/sensor_listener_controller.h"
#include "sensor/sensor_log.h"
#include "sensor/sensor_log_file.h"
#include "sensor/sensor_log_saver.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <optional>
#include <thread>

namespace {

using bench::Load;

// The kernel's drop counter of the UDP socket bound to port, from /proc/net/udp.
std::optional<qint64> udpSocketDrops(quint16 port)
{
    QFile table(QStringLiteral("/proc/net/udp"));
    if (!table.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray portHex = QByteArray::number(port, 16).toUpper().rightJustified(4, '0');
    for (const QByteArray& row : table.readAll().split('\n')) {
        const QList<QByteArray> fields = row.simplified().split(' ');
        if (fields.size() >= 13 && fields[1].endsWith(':' + portHex))
            return fields.last().toLongLong();
    }
    return std::nullopt;
}

void run(bool tcp, const Load& load, const app::Backend& backend)
{
    QTemporaryDir folder;
    sensor::SensorLog log;
    sensor::SensorLogFile file(log, sensor::SensorLogFile::logFileNameForLaunch(QDateTime::currentDateTime()));
    core::MemorySettings settings({{QLatin1String(sensor::SensorLogFile::folderSettingKey), folder.path()}});
    sensor::SensorLogSaver saver(file, settings);
    sensor::SensorListenerController listener(backend.interface);
    listener.setSelectedListenerType(tcp ? sensor::SensorListenerController::TCPListenerType
                                         : sensor::SensorListenerController::UDPListenerType);
    qint64 logged = 0;
    QObject::connect(&listener, &sensor::SensorListenerController::logLineAppended, &log, [&](const QString& row) {
        log.writeLog(row);
        ++logged;
    });
    QObject::connect(&listener, &sensor::SensorListenerController::listenerStopping, &saver, &sensor::SensorLogSaver::stop);
    QString dropStatus;
    QObject::connect(&listener, &sensor::SensorListenerController::statusChanged, &log, [&](const QString& status) {
        if (status.contains(u"datagrams lost"))
            dropStatus = status;
    });

    QEventLoop loop;
    QObject::connect(&listener, &sensor::SensorListenerController::buttonsChanged, &loop, &QEventLoop::quit);
    listener.startListenerButtonClicked();
    if (listener.startListenerButtonTag() == 0)
        loop.exec();
    const quint16 port = listener.boundPort();
    if (port == 0) {
        std::printf("%s: the listener did not start: %s\n", tcp ? "TCP" : "UDP", qPrintable(listener.listenerStatus()));
        return;
    }
    saver.start(std::chrono::seconds(1));
    const std::optional<qint64> dropsBefore = tcp ? std::nullopt : udpSocketDrops(port);

    QElapsedTimer elapsed;
    elapsed.start();
    std::atomic<qint64> sent = -1;
    std::thread sender([&] { sent = bench::sendLoad(tcp, port, load); });
    // Once the sender is done, wait until no more lines arrive.
    qint64 lastLogged = -1;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (sent < 0)
            return;
        if (logged == lastLogged || logged >= sent)
            loop.quit();
        lastLogged = logged;
    });
    poll.start(250);
    loop.exec();
    sender.join();
    const double seconds = static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
    const std::optional<qint64> dropsAfter = tcp ? std::nullopt : udpSocketDrops(port);

    listener.startListenerButtonClicked();
    saver.appendToLogFile();
    const QStringList files = QDir(folder.path()).entryList({QStringLiteral("skyvane_*.csv")}, QDir::Files);
    const bench::FileCheck check = files.isEmpty() ? bench::FileCheck{} : bench::checkFile(folder.filePath(files[0]), sent);

    std::printf("%s  sent %lld lines in %.2f s (%.0f lines/s)\n", tcp ? "TCP" : "UDP", static_cast<long long>(sent.load()),
                seconds, static_cast<double>(logged) / seconds);
    std::printf("     logged %lld, in the file %lld, out of order %lld, lost %lld (%.3f%%)\n",
                static_cast<long long>(logged), static_cast<long long>(check.rows),
                static_cast<long long>(check.outOfOrder), static_cast<long long>(sent - check.rows),
                sent > 0 ? 100.0 * static_cast<double>(sent - check.rows) / static_cast<double>(sent) : 0.0);
    if (check.firstMissing >= 0)
        std::printf("     first line missing: number %lld\n", static_cast<long long>(check.firstMissing));
    if (!tcp) {
        const qint64 drops = dropsBefore && dropsAfter ? *dropsAfter - *dropsBefore : -1;
        std::printf("     dropped by the kernel before the listener read them: %lld (socket drop counter)\n",
                    static_cast<long long>(drops));
        std::printf("     listener's status: %s\n",
                    dropStatus.isEmpty() ? "no datagrams lost" : qPrintable(dropStatus));
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    Load load;
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (qsizetype i = 0; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == u"--rate")
            load.linesPerSecond = std::max(1.0, arguments[i + 1].toDouble());
        else if (arguments[i] == u"--seconds")
            load.seconds = std::max(0.1, arguments[i + 1].toDouble());
    }
    QString error;
    app::BackendOptions options;
    options.simulate = true;
    const std::optional<app::Backend> backend = app::chooseBackend(options, &error);
    if (!backend) {
        std::fprintf(stderr, "bench_sensor_throughput: %s\n", qPrintable(error));
        return 1;
    }
    std::printf("sensor listener at %.0f lines/s for %.1f s per transport, simulated link\n", load.linesPerSecond,
                load.seconds);
    run(true, load, *backend);
    run(false, load, *backend);
    return 0;
}
