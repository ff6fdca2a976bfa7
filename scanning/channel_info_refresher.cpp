#include "scanning/channel_info_refresher.h"

#include "scanning/log_category.h"

#include <QRegularExpression>

namespace scanning {

namespace {

QString shellQuoted(const QString& text)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    if (plain.match(text).hasMatch())
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

void logFailure(const QString& reason)
{
    qCInfo(lcScanning).noquote() << QStringLiteral("Got error while determining channel info: %1").arg(reason);
}

} // namespace

QString toolCommandLine(const QString& toolPath, const QStringList& arguments)
{
    QString command = shellQuoted(toolPath);
    for (const QString& argument : arguments)
        command += QLatin1Char(' ') + shellQuoted(argument);
    return command;
}

ChannelInfoRefresher::ChannelInfoRefresher(platform::CommandRunner& commands, QString toolPath, QStringList toolArguments,
                                           QObject* parent)
    : QObject(parent), commands_(commands), toolPath_(std::move(toolPath)), toolArguments_(std::move(toolArguments))
{
}

ChannelInfoRefresher::~ChannelInfoRefresher()
{
    work_.shutDown();
    work_.waitForDone();
}

QString ChannelInfoRefresher::channelInfoCommand() const
{
    return toolCommandLine(toolPath_, toolArguments_) + QStringLiteral(" -s");
}

QString ChannelInfoRefresher::channelInfoXmlCommand() const
{
    return channelInfoCommand() + QStringLiteral(" -x");
}

std::optional<QByteArray> ChannelInfoRefresher::runTool(const QString& command)
{
    const platform::CommandOutput output = commands_.runShellCommand(command);
    if (output.started && output.exitCode == 0)
        return output.standardOutput;
    QString reason = QString::fromUtf8(output.standardError).trimmed();
    if (reason.isEmpty())
        reason = output.started ? QStringLiteral("exit status %1").arg(output.exitCode)
                                : QStringLiteral("%1 could not be started").arg(toolPath_);
    logFailure(reason);
    return std::nullopt;
}

void ChannelInfoRefresher::refreshChannelInfo()
{
    const QString command = channelInfoCommand();
    work_.start([this, command] {
        const std::optional<QByteArray> listing = runTool(command);
        if (!listing)
            return;
        ChannelInfo info = parseChannelInfo(*listing);
        work_.runOnOwnerThread([this, info = std::move(info)] { applyChannelInfo(info); }, false);
    });
}

std::optional<QList<QVariantMap>> ChannelInfoRefresher::executeAirportCommandForXML()
{
    const std::optional<QByteArray> xml = runTool(channelInfoXmlCommand());
    if (!xml)
        return std::nullopt;
    qCInfo(lcScanning).noquote() << QStringLiteral("xml is=\n %1 ").arg(QString::fromUtf8(*xml));
    QString error;
    std::optional<QList<QVariantMap>> networks = parseNetworkPropertyList(*xml, &error);
    if (!networks) {
        logFailure(error);
        return std::nullopt;
    }
    qCInfo(lcScanning).noquote() << QStringLiteral("number of network found are= %1 ").arg(networks->size());
    return networks;
}

void ChannelInfoRefresher::applyChannelInfo(const ChannelInfo& info)
{
    bssidSecurityTypeMapping_ = info.securityByBssid;
    for (auto it = info.channelByBssid.cbegin(); it != info.channelByBssid.cend(); ++it)
        bssidToChannelMapping_.insert(it.key(), it.value());
    emit channelInfoChanged();
}

QString ChannelInfoRefresher::channelTextFor(const QString& bssid, int channelNumber)
{
    const QString number = QString::number(channelNumber);
    const auto stored = bssidToChannelMapping_.constFind(bssid);
    if (stored == bssidToChannelMapping_.cend())
        return number;
    // The tool's text is kept only while it still describes the channel the service reports;
    // "1" must not keep "11,+1".
    if (*stored == number || stored->startsWith(number + QLatin1Char(',')))
        return *stored;
    bssidToChannelMapping_.erase(stored);
    return number;
}

} // namespace scanning
