#include "app/desktop/desktop_arguments.h"

#include "app/cli/cli_arguments.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace app::desktop {
namespace {

// Registered for the help text and for telling unknown options apart; the values themselves
// are read by skyvane-cli's rules, which also know "--simulate=N" and refuse empty values.
void describeOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral("Skyvane: a Wi-Fi scanner and signal analyser."));
    parser.addOptions({
        {QStringLiteral("interface"), QStringLiteral("Scan with the Wi-Fi interface NAME."), QStringLiteral("NAME")},
        {QStringLiteral("simulate"),
         QStringLiteral("Scan a simulated radio environment, --simulate=N with N access points.")},
        {QStringLiteral("seed"), QStringLiteral("Seed S of the simulated environment (with --simulate)."),
         QStringLiteral("S")},
        {QStringLiteral("capture"), QStringLiteral("Replay the beacons of a pcap or pcapng FILE."),
         QStringLiteral("FILE")},
        {QStringLiteral("db"), QStringLiteral("Keep the scans in the database at PATH."), QStringLiteral("PATH")},
        {QStringLiteral("explain"), QStringLiteral("Show where each value of the Connected SSID tab came from.")},
    });
    parser.addHelpOption();
    parser.addVersionOption();
}

DesktopArguments failure(const QString& reason)
{
    DesktopArguments result;
    result.action = DesktopArguments::Action::Fail;
    result.message = reason;
    return result;
}

} // namespace

QString desktopHelpText()
{
    QCommandLineParser parser;
    describeOptions(parser);
    return parser.helpText();
}

DesktopArguments parseDesktopArguments(const QStringList& arguments)
{
    DesktopArguments result;
    QStringList rest;
    QString error;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        switch (app::cli::takeBackendOption(arguments, i, result.backend, &error)) {
        case app::cli::BackendOptionResult::Taken:
            continue;
        case app::cli::BackendOptionResult::Invalid:
            return failure(error);
        case app::cli::BackendOptionResult::NotABackendOption:
            break;
        }
        if (app::cli::matchesOption(arguments[i], QStringLiteral("--db"))) {
            const auto path = app::cli::optionValue(arguments, i, QStringLiteral("--db"), &error);
            if (!path)
                return failure(error);
            if (path->isEmpty())
                return failure(QStringLiteral("--db needs a file, not an empty text"));
            result.databasePath = *path;
            continue;
        }
        rest << arguments[i];
    }

    QCommandLineParser parser;
    describeOptions(parser);
    if (!parser.parse(QStringList{QStringLiteral("skyvane")} + rest))
        return failure(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        result.action = DesktopArguments::Action::ShowHelp;
        result.message = parser.helpText();
        return result;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        result.action = DesktopArguments::Action::ShowVersion;
        result.message = QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                                       QCoreApplication::applicationVersion());
        return result;
    }
    result.explain = parser.isSet(QStringLiteral("explain"));
    if (!parser.positionalArguments().isEmpty())
        return failure(QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().constFirst()));
    if (const auto conflict = app::cli::backendOptionsConflict(result.backend))
        return failure(*conflict);
    return result;
}

} // namespace app::desktop
