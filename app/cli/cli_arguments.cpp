#include "app/cli/cli_arguments.h"

#include <algorithm>

namespace app::cli {

bool matchesOption(const QString& argument, const QString& name)
{
    return argument == name || argument.startsWith(name + QLatin1Char('='));
}

std::optional<QString> optionValue(const QStringList& arguments, qsizetype& i, const QString& name, QString* error)
{
    const QString& argument = arguments[i];
    if (argument.startsWith(name + QLatin1Char('=')))
        return argument.mid(name.size() + 1);
    if (i + 1 >= arguments.size()) {
        *error = QStringLiteral("%1 needs a value").arg(name);
        return std::nullopt;
    }
    return arguments[++i];
}

std::optional<long long> positiveNumber(const QString& text, const QString& name, QString* error)
{
    bool ok = false;
    const long long value = text.toLongLong(&ok);
    if (!ok || value <= 0) {
        *error = QStringLiteral("%1 needs a positive whole number, not \"%2\"").arg(name, text);
        return std::nullopt;
    }
    return value;
}

BackendOptionResult takeBackendOption(const QStringList& arguments, qsizetype& i, app::BackendOptions& options,
                                      QString* error)
{
    const QString& argument = arguments[i];
    if (argument == u"--simulate") {
        options.simulate = true;
        return BackendOptionResult::Taken;
    }
    if (argument.startsWith(u"--simulate=")) {
        const auto count = positiveNumber(argument.mid(11), QStringLiteral("--simulate"), error);
        if (!count)
            return BackendOptionResult::Invalid;
        options.simulate = true;
        options.simulatedAccessPoints = static_cast<int>(std::min(*count, 1'000'000LL));
        return BackendOptionResult::Taken;
    }
    const QString names[] = {QStringLiteral("--seed"), QStringLiteral("--interface"), QStringLiteral("--capture")};
    const auto name = std::find_if(std::begin(names), std::end(names),
                                   [&](const QString& candidate) { return matchesOption(argument, candidate); });
    if (name == std::end(names))
        return BackendOptionResult::NotABackendOption;
    const auto value = optionValue(arguments, i, *name, error);
    if (!value)
        return BackendOptionResult::Invalid;
    // An empty value would silently mean "the default backend", which is not what was asked for.
    if (value->isEmpty()) {
        *error = QStringLiteral("%1 needs a value, not an empty text").arg(*name);
        return BackendOptionResult::Invalid;
    }
    if (*name == u"--seed") {
        bool ok = false;
        const std::uint64_t seed = value->toULongLong(&ok);
        if (!ok) {
            *error = QStringLiteral("--seed needs a whole number, not \"%1\"").arg(*value);
            return BackendOptionResult::Invalid;
        }
        options.simulationSeed = seed;
    } else if (*name == u"--interface") {
        options.interfaceName = *value;
    } else {
        options.captureFile = *value;
    }
    return BackendOptionResult::Taken;
}

std::optional<QString> backendOptionsConflict(const app::BackendOptions& options)
{
    if (options.simulate && !options.captureFile.isEmpty())
        return QStringLiteral("choose either --simulate or --capture");
    if (!options.simulate && (options.simulationSeed || options.simulatedAccessPoints))
        return QStringLiteral("--seed goes with --simulate");
    return std::nullopt;
}

bool backendOptionsFit(const app::BackendOptions& options, QString* error)
{
    const std::optional<QString> conflict = backendOptionsConflict(options);
    if (conflict)
        *error = *conflict;
    return !conflict;
}

QStringList backendArguments(const app::BackendOptions& backend)
{
    QStringList arguments;
    if (!backend.interfaceName.isEmpty())
        arguments << QStringLiteral("--interface") << backend.interfaceName;
    if (backend.simulate) {
        arguments << (backend.simulatedAccessPoints
                          ? QStringLiteral("--simulate=%1").arg(*backend.simulatedAccessPoints)
                          : QStringLiteral("--simulate"));
    }
    if (backend.simulationSeed)
        arguments << QStringLiteral("--seed") << QString::number(*backend.simulationSeed);
    if (!backend.captureFile.isEmpty())
        arguments << QStringLiteral("--capture") << backend.captureFile;
    return arguments;
}

QString commandWord(const QStringList& arguments)
{
    app::BackendOptions ignored;
    QString ignoredError;
    // A malformed backend option still says how many arguments it spans; its command reports it.
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (takeBackendOption(arguments, i, ignored, &ignoredError) == BackendOptionResult::NotABackendOption)
            return arguments[i];
    }
    return {};
}

void writeBytes(std::FILE* stream, const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

void writeText(std::FILE* stream, const QString& text)
{
    writeBytes(stream, text.toUtf8());
}

std::optional<app::Backend> openBackend(const app::BackendOptions& options, std::FILE* err, bool reportStatus)
{
    QString error;
    std::optional<app::Backend> backend = app::chooseBackend(options, &error);
    if (!backend) {
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(error));
        return std::nullopt;
    }
    if (reportStatus && !backend->statusText.isEmpty())
        writeText(err, backend->statusText + QLatin1Char('\n'));
    return backend;
}

} // namespace app::cli
