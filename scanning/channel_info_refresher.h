#pragma once

#include "platform/api/command_runner.h"
#include "scanning/background_work.h"
#include "scanning/channel_info_parser.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace scanning {

// The shell command line that runs the tool with the given arguments, each quoted as needed.
QString toolCommandLine(const QString& toolPath, const QStringList& arguments);

// The channel and security texts of the command-line tool, which the wireless service does not
// report: re-read in the background on request, kept per BSSID for the scan processing.
class ChannelInfoRefresher : public QObject {
    Q_OBJECT
public:
    // toolPath is the installed command-line tool, toolArguments the options that select the
    // same backend on it.
    ChannelInfoRefresher(platform::CommandRunner& commands, QString toolPath, QStringList toolArguments,
                         QObject* parent = nullptr);
    ~ChannelInfoRefresher() override;

    // The command lines of the plain listing and of the property-list listing.
    QString channelInfoCommand() const;
    QString channelInfoXmlCommand() const;
    // Runs the plain listing on a background thread and takes its texts on this one.
    void refreshChannelInfo();
    // Runs the property-list listing and waits for it: one map a network, or nothing on failure.
    std::optional<QList<QVariantMap>> executeAirportCommandForXML();

    // The display channel of a scanned network: the tool's text while it still names the
    // scanned channel, else the number (and the stale text is forgotten).
    QString channelTextFor(const QString& bssid, int channelNumber);
    const QHash<QString, QString>& bssidToChannelMapping() const { return bssidToChannelMapping_; }
    const QHash<QString, QString>& bssidSecurityTypeMapping() const { return bssidSecurityTypeMapping_; }
    void waitForBackgroundWork() { work_.waitForDone(); }

signals:
    void channelInfoChanged();

private:
    // The output of a command that ran and succeeded, else nothing after logging why.
    std::optional<QByteArray> runTool(const QString& command);
    void applyChannelInfo(const ChannelInfo& info);

    platform::CommandRunner& commands_;
    QString toolPath_;
    QStringList toolArguments_;
    QHash<QString, QString> bssidToChannelMapping_;
    QHash<QString, QString> bssidSecurityTypeMapping_;
    // Declared last: destroyed first, after every task that reaches the members above ended.
    BackgroundWork work_;
};

} // namespace scanning
