#include "app/cli/listen_command.h"

#include "app/cli/cli_arguments.h"
#include "core/settings_overlay.h"
#include "core/user_settings.h"
#include "sensor/sensor_listener_controller.h"
#include "sensor/sensor_log.h"
#include "sensor/sensor_log_file.h"
#include "sensor/sensor_log_saver.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QVariantMap>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <fcntl.h>
#include <unistd.h>

namespace app::cli {
namespace {

// Turns SIGHUP, SIGINT and SIGTERM into a signal on the event loop, where stopping and saving
// are safe. SIGPIPE is ignored meanwhile, so a closed standard output shows as a failed write
// that the listener can end on, with its final save, instead of killing it.
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
        for (const int signal : stopSignals)
            ::sigaction(signal, &action, nullptr);
        std::signal(SIGPIPE, SIG_IGN);
    }
    ~StopSignals() override
    {
        for (const int signal : stopSignals)
            std::signal(signal, SIG_DFL);
        std::signal(SIGPIPE, SIG_DFL);
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
    static constexpr int stopSignals[] = {SIGHUP, SIGINT, SIGTERM};

    static void onSignal(int)
    {
        const char byte = 1;
        // Only async-signal-safe calls here; a full pipe already holds a pending stop.
        [[maybe_unused]] const ssize_t written = ::write(pipe_[1], &byte, 1);
    }

    static inline int pipe_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

// The errno text of a failed write, or nullopt when all of it reached the stream.
std::optional<QString> writeChecked(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    errno = 0;
    const std::size_t written = std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    if (written == static_cast<std::size_t>(bytes.size()) && std::fflush(stream) == 0)
        return std::nullopt;
    const int error = errno != 0 ? errno : EIO;
    std::clearerr(stream);
    return qt_error_string(error);
}

// Creates the folder the user named when it is missing; the system's reason when that fails.
std::optional<QString> makeFolder(const QString& folder)
{
    if (QFileInfo::exists(folder))
        return std::nullopt;
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(folder).toStdString(), error);
    if (error)
        return QString::fromLocal8Bit(error.message());
    return std::nullopt;
}

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
            if (!text)
                return std::nullopt;
            const bool digitsOnly = !text->isEmpty() && std::all_of(text->begin(), text->end(), [](QChar c) {
                return c >= u'0' && c <= u'9';
            });
            bool ok = false;
            const qlonglong seconds = text->toLongLong(&ok);
            const qlonglong longest = sensor::SensorLogFile::longestSavePeriod.count();
            if (digitsOnly && (!ok || seconds > longest)) {
                *error = QStringLiteral("--save-interval can be at most %1 seconds (365 days), not \"%2\"")
                             .arg(longest)
                             .arg(*text);
                return std::nullopt;
            }
            if (!ok || seconds <= 0) {
                *error = QStringLiteral("--save-interval needs a positive whole number of seconds, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            request.saveIntervalSeconds = static_cast<int>(seconds);
        } else {
            *error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return std::nullopt;
        }
    }
    if (!listen || !portGiven) {
        *error = listen ? QStringLiteral("listen needs --udp PORT or --tcp PORT") : QStringLiteral("no command");
        return std::nullopt;
    }
    if (!backendOptionsFit(request.backend, error))
        return std::nullopt;
    return request;
}

QString listenUsage()
{
    return QStringLiteral(
        "  listen --udp PORT | --tcp PORT [--log-dir DIR] [--save-interval SECONDS]\n"
        "                        receive phone readings until Ctrl-C, SIGHUP, SIGTERM or a closed\n"
        "                        standard output; log lines on standard output, status on standard\n"
        "                        error, the log saved into DIR (created if missing; default: the\n"
        "                        udp_log_file_path setting) every SECONDS (at most 31536000; default:\n"
        "                        the setting, else 5) and once more at the end; exits 1 when lines\n"
        "                        of the log were never saved or standard output failed\n");
}

int runListen(const ListenRequest& request, core::UserSettings& userSettings, std::FILE* out, std::FILE* err)
{
    const std::optional<app::Backend> backend = openBackend(request.backend, err);
    if (!backend)
        return 1;
    if (!request.logDir.isEmpty()) {
        if (const auto reason = makeFolder(request.logDir)) {
            writeText(err, QStringLiteral("skyvane-cli: cannot create the log folder %1: %2\n").arg(request.logDir, *reason));
            return 1;
        }
    }

    // The command line overrides the settings for this run without changing them.
    QVariantMap overrides;
    if (!request.logDir.isEmpty())
        overrides.insert(QLatin1String(sensor::SensorLogFile::folderSettingKey), request.logDir);
    if (request.saveIntervalSeconds)
        overrides.insert(QLatin1String(sensor::SensorLogFile::savePeriodSettingKey), *request.saveIntervalSeconds);
    core::SettingsOverlay settings(userSettings, overrides);

    sensor::SensorLog log;
    sensor::SensorLogFile file(log, sensor::SensorLogFile::logFileNameForLaunch(QDateTime::currentDateTime()));
    sensor::SensorLogSaver saver(file, settings);
    sensor::SensorListenerController controller(backend->interface);
    controller.setPort(request.port);
    controller.setSelectedListenerType(request.tcp ? sensor::SensorListenerController::TCPListenerType
                                                   : sensor::SensorListenerController::UDPListenerType);

    bool stopping = false;
    std::optional<QString> outputFailure;
    QString lastStatus;
    const auto stopAndSave = [&](int exitCode) {
        if (stopping)
            return;
        stopping = true;
        // Lines already handed to this thread belong in the log before it is saved.
        QCoreApplication::processEvents();
        if (controller.startListenerButtonTag() != 0)
            controller.startListenerButtonClicked();
        QCoreApplication::processEvents();
        saver.appendToLogFile();
        if (const qsizetype unsaved = file.unsavedBytes(); unsaved > 0) {
            writeText(err, QStringLiteral("skyvane-cli: %1 bytes of the sensor log were never saved (%2)\n")
                               .arg(unsaved)
                               .arg(lastStatus));
            exitCode = 1;
        }
        QCoreApplication::exit(exitCode);
    };

    const auto toErr = [err](const QString& text) { writeText(err, text + QLatin1Char('\n')); };
    QObject::connect(&log, &sensor::SensorLog::logAppended, &controller, [&](const QString& text) {
        if (outputFailure)
            return;
        outputFailure = writeChecked(out, text);
        if (!outputFailure)
            return;
        writeText(err, QStringLiteral("skyvane-cli: standard output failed (%1); stopping\n").arg(*outputFailure));
        // Not from inside the line's own delivery: the listener is stopped once that returns.
        QMetaObject::invokeMethod(&controller, [&] { stopAndSave(1); }, Qt::QueuedConnection);
    });
    QObject::connect(&controller, &sensor::SensorListenerController::logLineAppended, &log, &sensor::SensorLog::writeLog);
    QObject::connect(&controller, &sensor::SensorListenerController::statusChanged, &controller,
                     [&](const QString& status) {
                         lastStatus = status;
                         toErr(status);
                     });
    QObject::connect(&controller, &sensor::SensorListenerController::diagnostic, &controller, toErr);
    QObject::connect(&controller, &sensor::SensorListenerController::listenerStarted, &saver,
                     &sensor::SensorLogSaver::startSaveLogFileThread);
    QObject::connect(&controller, &sensor::SensorListenerController::listenerStopping, &saver,
                     &sensor::SensorLogSaver::stop);
    // The save thread's texts are handed to this thread, as the desktop's main queue would get them.
    QObject::connect(&saver, &sensor::SensorLogSaver::statusChanged, &controller,
                     &sensor::SensorListenerController::updateListenerStatus);
    QObject::connect(&saver, &sensor::SensorLogSaver::consoleMessage, &controller, toErr);

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

} // namespace app::cli

#include "listen_command.moc"
