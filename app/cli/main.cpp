#include "app/cli/cli_arguments.h"
#include "app/cli/decode_command.h"
#include "app/cli/listen_command.h"
#include "app/cli/monitor_command.h"
#include "app/cli/report_command.h"
#include "app/cli/scan_command.h"
#include "app/cli/sensor_send_command.h"
#include "app/cli/tool_command.h"
#include "app/settings/settings_store.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QStringList>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace {

void printUsage(std::FILE* stream)
{
    std::fputs("usage: skyvane-cli [--verbose] COMMAND ...   (--verbose: show the log texts)\n"
               "       skyvane-cli --help | --version\n"
               "       skyvane-cli decode FILE\n"
               "       skyvane-cli [BACKEND] -s | -s -x | -I | watch [--interval SECONDS] [--count N]\n"
               "       skyvane-cli [BACKEND] scan [OPTIONS]\n"
               "       skyvane-cli [BACKEND] monitor BSSID [--interval SECONDS] [--count N] [--beep]\n"
               "       skyvane-cli [BACKEND] report FILE [--duration SECONDS]\n\n"
               "commands:\n"
               "  decode FILE           every beacon and probe response of a pcap or pcapng file as JSON lines\n",
               stream);
    std::fputs(app::cli::scanUsage().toUtf8().constData(), stream);
    std::fputs(app::cli::toolUsage().toUtf8().constData(), stream);
    std::fputs("\nmonitor command:\n", stream);
    std::fputs(app::cli::monitorUsage().toUtf8().constData(), stream);
    std::fputs(app::cli::reportUsage().toUtf8().constData(), stream);
    std::fputs("\nsensor commands:\n", stream);
    std::fputs(app::cli::listenUsage().toUtf8().constData(), stream);
    std::fputs(app::cli::sensorSendUsage().toUtf8().constData(), stream);
}

// A report with graphs paints pictures, which needs fonts and so a GUI application; it runs on
// the offscreen platform so that it works without a display (over SSH, on a headless board).
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char* argv[], std::vector<char*>& withPlatform)
{
    bool paints = false;
    for (int i = 1; i < argc; ++i)
        paints = paints || std::strcmp(argv[i], "html-graphs") == 0 || std::strcmp(argv[i], "report") == 0;
    if (!paints)
        return std::make_unique<QCoreApplication>(argc, argv);
    static char platformOption[] = "-platform";
    static char offscreen[] = "offscreen";
    withPlatform.assign(argv, argv + argc);
    withPlatform.insert(withPlatform.begin() + 1, {platformOption, offscreen});
    withPlatform.push_back(nullptr);
    argc += 2;
    return std::make_unique<QGuiApplication>(argc, withPlatform.data());
}

} // namespace

int main(int argc, char* argv[])
{
    std::vector<char*> platformArguments;
    const std::unique_ptr<QCoreApplication> app = makeApplication(argc, argv, platformArguments);
    QCoreApplication::setApplicationName(QStringLiteral("skyvane-cli"));

    QStringList arguments = QCoreApplication::arguments().mid(1);
    // The system's log texts stay quiet on a terminal unless asked for.
    if (arguments.removeAll(QStringLiteral("--verbose")) > 0)
        QLoggingCategory::setFilterRules(QStringLiteral("skyvane.*=true"));
    if (arguments.size() == 1 && (arguments[0] == u"-h" || arguments[0] == u"--help")) {
        printUsage(stdout);
        return 0;
    }
    if (arguments.size() == 1 && arguments[0] == u"--version") {
        std::printf("skyvane-cli %s\n", SKYVANE_VERSION);
        return 0;
    }
    const QString command = app::cli::commandWord(arguments);
    // decode and sensor-send take no backend options, so only a leading word names them.
    const bool leading = !arguments.isEmpty() && arguments[0] == command;
    if (leading && command == u"decode") {
        if (arguments.size() == 2)
            return app::cli::decodeCapture(arguments[1], stdout, stderr);
        printUsage(stderr);
        return 2;
    }

    QString error;
    if (leading && command == u"sensor-send") {
        const auto send = app::cli::parseSensorSendArguments(arguments.mid(1), &error);
        if (!send) {
            std::fprintf(stderr, "skyvane-cli: %s\n", error.toUtf8().constData());
            return 2;
        }
        return app::cli::runSensorSend(*send, stdout, stderr);
    }
    if (command == u"listen") {
        const auto listen = app::cli::parseListenArguments(arguments, &error);
        if (!listen) {
            std::fprintf(stderr, "skyvane-cli: %s\n", error.toUtf8().constData());
            return 2;
        }
        SettingsStore settings;
        settings.setupDefaults();
        return app::cli::runListen(*listen, settings, stdout, stderr);
    }
    if (command == u"monitor") {
        const auto monitor = app::cli::parseMonitorArguments(arguments, &error);
        if (!monitor) {
            std::fprintf(stderr, "skyvane-cli: %s\n", error.toUtf8().constData());
            return 2;
        }
        return app::cli::runMonitor(*monitor, stdout, stderr);
    }
    if (command == u"scan") {
        const auto scan = app::cli::parseScanArguments(arguments, &error);
        if (!scan) {
            printUsage(stderr);
            std::fprintf(stderr, "\nskyvane-cli: %s\n", error.toUtf8().constData());
            return 2;
        }
        SettingsStore settings;
        settings.setupDefaults();
        return app::cli::runScan(*scan, settings, stdout, stderr);
    }
    if (command == u"report") {
        const auto report = app::cli::parseReportArguments(arguments, &error);
        if (!report) {
            std::fprintf(stderr, "skyvane-cli: %s\n", error.toUtf8().constData());
            return 2;
        }
        return app::cli::runReport(*report, stdout, stderr);
    }
    const auto request = app::cli::parseToolArguments(arguments, &error);
    if (!request) {
        printUsage(stderr);
        if (!arguments.isEmpty())
            std::fprintf(stderr, "\nskyvane-cli: %s\n", error.toUtf8().constData());
        return 2;
    }
    return app::cli::runToolRequest(*request, stdout, stderr);
}
