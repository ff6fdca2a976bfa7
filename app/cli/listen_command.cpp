#include "app/cli/listen_command.h"

#include "app/cli/cli_arguments.h"
#include "scan/scanner_utils.h"
#include "sensor/sensor_listener_controller.h"
#include "sensor/sensor_log.h"
#include "sensor/sensor_log_file.h"
#include "sensor/sensor_log_saver.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace cli {
namespace {

// Turns SIGINT and SIGTERM into a signal on the event loop, where stopping and saving are safe.
class StopSignals : public QObject {
    Q_OBJECT
public:
    StopSignals()
    {
        if (::pipe2(pipe_, O_CLOEXEC | O_NONBLOCK) != 0)
            return;
        notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
        connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
            char drained[16];
            while (::read(pipe_[0], drained, sizeof drained) > 0) {
            }
            emit stopRequested();
        });
        struct sigaction action {};
        action.sa_handler = &StopSignals::onSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        ::sigaction(SIGINT, &action, nullptr);
        ::sigaction(SIGTERM, &action, nullptr);
    }
    ~StopSignals() override
    {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        notifier_.reset();
        for (int& fd : pipe_) {
            if (fd >= 0)
                ::close(fd);
            fd = -1;
        }
    }

signals:
    void stopRequested();

private:
    static void onSignal(int)
    {
        const char byte = 1;
        // Only async-signal-safe calls here; a full pipe already holds a pending stop.
        [[maybe_unused]] const ssize_t written = ::write(pipe_[1], &byte, 1);
    }

    static inline int pipe_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

std::optional<int> portNumber(const QString& text, const QString& name, QString* error)
{
    bool ok = false;
    const uint port = text.toUInt(&ok);
    if (!ok || port > 65535) {
        *error = QStringLiteral("%1 needs a port number from 0 to 65535, not \"%2\"").arg(name, text);
        return std::nullopt;
    }
    return static_cast<int>(port);
}

} // namespace

std::optional<ListenRequest> parseListenArguments(const QStringList& arguments, QString* error)
{
    ListenRequest request;
    bool listen = false;
    bool portGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const BackendOptionResult backend = takeBackendOption(arguments, i, request.backend, error);
        if (backend == BackendOptionResult::Invalid)
            return std::nullopt;
        if (backend == BackendOptionResult::Taken)
            continue;
        if (argument == u"listen") {
            listen = true;
        } else if (matchesOption(argument, QStringLiteral("--udp")) || matchesOption(argument, QStringLiteral("--tcp"))) {
            const QString name = argument.left(5);
            const auto text = optionValue(arguments, i, name, error);
            const auto port = text ? portNumber(*text, name, error) : std::nullopt;
            if (!port)
                return std::nullopt;
            if (portGiven) {
                *error = QStringLiteral("give one of --udp and --tcp");
                return std::nullopt;
            }
            request.tcp = name == u"--tcp";
            request.port = *port;
            portGiven = true;
        } else if (matchesOption(argument, QStringLiteral("--log-dir"))) {
            const auto folder = optionValue(arguments, i, QStringLiteral("--log-dir"), error);
            if (!folder)
                return std::nullopt;
            request.logDir = *folder;
        } else if (matchesOption(argument, QStringLiteral("--save-interval"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--save-interval"), error);
            bool ok = false;
            const int seconds = text ? text->toInt(&ok) : 0;
            if (!ok || seconds <= 0) {
                if (text)
                    *error = QStringLiteral("--save-interval needs a positive whole number of seconds, not \"%1\"")
                                 .arg(*text);
                return std::nullopt;
            }
            request.saveIntervalSeconds = seconds;
        } else {
            *error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return std::nullopt;
        }
    }
    if (!listen || !portGiven) {
        *error = listen ? QStringLiteral("listen needs --udp PORT or --tcp PORT") : QStringLiteral("no command");
        return std::nullopt;
    }
    if (const auto conflict = backendOptionsConflict(request.backend)) {
        *error = *conflict;
        return std::nullopt;
    }
    return request;
}

QString listenUsage()
{
    return QStringLiteral(
        "  listen --udp PORT | --tcp PORT [--log-dir DIR] [--save-interval SECONDS]\n"
        "                        receive phone readings until Ctrl-C; log lines on standard output,\n"
        "                        status on standard error, the log saved into DIR (default: the\n"
        "                        udp_log_file_path setting) every SECONDS (default: the setting, else 5)\n");
}

int runListen(const ListenRequest& request, const core::UserSettings& settings, std::FILE* out, std::FILE* err)
{
    const std::optional<app::Backend> backend = openBackend(request.backend, err);
    if (!backend)
        return 1;

    sensor::SensorLog log;
    sensor::SensorLogFile file(log, sensor::SensorLogFile::logFileNameForLaunch(QDateTime::currentDateTime()));
    // The command line overrides the settings for this run without changing them.
    sensor::SensorLogSaver saver(file, [request, &settings](const QString& key) -> QVariant {
        if (key == QLatin1String(sensor::SensorLogFile::folderSettingKey) && !request.logDir.isEmpty())
            return request.logDir;
        if (key == QLatin1String(sensor::SensorLogFile::savePeriodSettingKey) && request.saveIntervalSeconds)
            return *request.saveIntervalSeconds;
        return settings.value(key);
    });
    sensor::SensorListenerController controller(backend->interface);
    controller.setPort(request.port);
    controller.setSelectedListenerType(request.tcp ? sensor::SensorListenerController::TCPListenerType
                                                   : sensor::SensorListenerController::UDPListenerType);

    const auto toErr = [err](const QString& text) { writeText(err, text + QLatin1Char('\n')); };
    QObject::connect(&log, &sensor::SensorLog::logAppended, &controller, [out](const QString& text) { writeText(out, text); });
    QObject::connect(&controller, &sensor::SensorListenerController::logLineAppended, &log, &sensor::SensorLog::writeLog);
    QObject::connect(&controller, &sensor::SensorListenerController::statusChanged, &controller, toErr);
    QObject::connect(&controller, &sensor::SensorListenerController::diagnostic, &controller, toErr);
    QObject::connect(&controller, &sensor::SensorListenerController::listenerStarted, &saver,
                     &sensor::SensorLogSaver::startSaveLogFileThread);
    QObject::connect(&controller, &sensor::SensorListenerController::listenerStopping, &saver,
                     &sensor::SensorLogSaver::stop);
    // The save thread's texts are handed to this thread, as the desktop's main queue would get them.
    QObject::connect(&saver, &sensor::SensorLogSaver::statusChanged, &controller,
                     &sensor::SensorListenerController::updateListenerStatus);
    QObject::connect(&saver, &sensor::SensorLogSaver::consoleMessage, &controller, toErr);

    const auto stopAndSave = [&](int exitCode) {
        // Lines already handed to this thread belong in the log before it is saved.
        QCoreApplication::processEvents();
        if (controller.startListenerButtonTag() != 0)
            controller.startListenerButtonClicked();
        QCoreApplication::processEvents();
        saver.appendToLogFile();
        QCoreApplication::exit(exitCode);
    };
    StopSignals stopSignals;
    QObject::connect(&stopSignals, &StopSignals::stopRequested, &controller, [&] { stopAndSave(0); });
    QObject::connect(&controller, &sensor::SensorListenerController::statusChanged, &controller,
                     [&](const QString& status) {
                         if (status.startsWith(u"Unable to start TCP listener"))
                             stopAndSave(1);
                     },
                     Qt::QueuedConnection);

    controller.startListenerButtonClicked();
    if (!request.tcp && controller.startListenerButtonTag() == 0)
        return 1;
    return QCoreApplication::exec();
}

} // namespace cli

#include "listen_command.moc"
