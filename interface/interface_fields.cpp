#include "interface/interface_fields.h"

#include "scan/scanner_utils.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

namespace connection {
namespace {

using scan::ScannerUtils;

constexpr int noiseFloor24Ghz = -92;
constexpr int noiseFloor5Ghz = -94;
constexpr double bandBoundaryGhz = 3.0;

QString numberText(double value) { return QString::number(value); }

// A width code counts 20 MHz steps up to 40; the wider codes are named outright.
int widthFromCode(platform::ChannelWidthCode code)
{
    switch (code) {
    case platform::ChannelWidthCode::Width80MHz: return 80;
    case platform::ChannelWidthCode::Width160MHz: return 160;
    default: return static_cast<int>(code) * 20;
    }
}

QString olderSupportedPhyModes(std::uint32_t bits)
{
    QString modes;
    if (bits & platform::PhyA)
        modes += QLatin1String("a/");
    if (bits & platform::PhyB)
        modes += QLatin1String("b/");
    if (bits & platform::PhyG)
        modes += QLatin1String("g/");
    if (bits & platform::PhyN)
        modes += QLatin1String("n");
    if (modes.endsWith(QLatin1Char('/')))
        modes.chop(1);
    return modes.isEmpty() ? QStringLiteral("None") : modes;
}

// Every number but one equal to the last carries a separator, so a repeated last channel is
// written without one each time.
QString olderChannelList(const QList<int>& channels)
{
    QString text;
    for (int channel : channels) {
        text += QString::number(channel);
        if (channel != channels.last())
            text += QLatin1String(", ");
    }
    return text;
}

QString laterChannelList(const QList<int>& channels)
{
    QString text;
    QSet<int> written;
    for (int channel : channels) {
        if (written.contains(channel))
            continue;
        written.insert(channel);
        text += QStringLiteral("%1, ").arg(channel);
    }
    if (text.endsWith(QLatin1String(", ")))
        text.chop(2);
    return text;
}

QString dataRatesText(const scan::ScanedResultInfo& record)
{
    if (!record.supportedDataRates || record.supportedDataRates->isEmpty())
        return {};
    return QStringLiteral("%1 Mbps").arg(record.supportedDataRates->join(QLatin1String(", ")));
}

QString mcsText(const QString& mcsInx)
{
    if (mcsInx.isEmpty())
        return QStringLiteral("N/A");
    if (mcsInx == QLatin1String("-1"))
        return {};
    return mcsInx;
}

// The offset is tested against 1 twice, so the "below" text can never show; kept that way.
QString channelWithOffset(const QString& channel, std::int64_t offset)
{
    if (offset == 1)
        return channel + QStringLiteral(", +1");
    if (offset == 1)
        return channel + QStringLiteral(", -1");
    return channel;
}

// What both release paths show whatever the power: the switch, Disconnect, the channel list,
// the rates and the streams.
InterfaceFields fieldsShownWhilePoweredOff(const platform::InterfaceSnapshot& link, const scan::ScanedResultInfo& record,
                                           const QString& supportedChannels)
{
    InterfaceFields f;
    f.powerSegment = link.powerOn ? 0 : 1;
    f.disconnectEnabled = link.interfaceState == platform::InterfaceStateRunning;
    f.supportedChannels = supportedChannels;
    f.supportedDataRates = dataRatesText(record);
    if (record.numberOfStreams != 0)
        f.streams = QString::number(record.numberOfStreams);
    return f;
}

InterfaceFields olderFields(const platform::InterfaceSnapshot& link, const scan::ScanedResultInfo& record,
                            const QList<int>& channels, const QString& mcsInx)
{
    constexpr auto generation = core::InterfaceGeneration::OldestRelease;
    InterfaceFields f = fieldsShownWhilePoweredOff(link, record, olderChannelList(channels));
    if (!link.powerOn)
        return f;
    const bool hasBssid = ScannerUtils::hasValue(link.bssid);
    const int opMode = link.opMode();
    if (opMode != 0)
        f.opMode = ScannerUtils::stringForOpMode(opMode, generation);
    if (link.security != platform::SecurityUnknown)
        f.securityMode = ScannerUtils::stringForSecurityMode(link.security, generation);
    if (link.activePHYMode != 0)
        f.phyMode = ScannerUtils::stringForPHYMode(link.activePHYMode, generation);
    f.ssid = link.ssid;
    if (hasBssid)
        f.bssid = ScannerUtils::normalizeMAC(link.bssid);
    if (link.transmitRate != 0.0)
        f.txRate = QStringLiteral("%1 Mbps").arg(numberText(link.transmitRate));
    f.rssi = QStringLiteral("%1 dBm").arg(link.rssiValue);
    f.noise = QStringLiteral("%1 dBm").arg(link.noiseMeasurement);
    f.txPower = QStringLiteral("%1 mW").arg(link.transmitPower);
    f.countryCode = link.countryCode;
    if (link.wlanChannel)
        f.channel = channelWithOffset(QString::number(link.wlanChannel->channelNumber), record.channelOffset);
    if (hasBssid) {
        f.supportedPHYModes = olderSupportedPhyModes(link.supportedPHYModes);
        f.mcsIndex = mcsText(mcsInx);
    }
    return f;
}

InterfaceFields laterFields(const platform::InterfaceSnapshot& link, const scan::ScanedResultInfo& record,
                            const QList<int>& channels, const QString& mcsInx)
{
    constexpr auto generation = core::InterfaceGeneration::Later;
    InterfaceFields f = fieldsShownWhilePoweredOff(link, record, laterChannelList(channels));
    if (!link.powerOn)
        return f;
    const bool hasBssid = ScannerUtils::hasValue(link.bssid);
    if (link.interfaceMode != 0)
        f.opMode = ScannerUtils::stringForOpMode(link.interfaceMode, generation);
    // A security whose low 32 bits are all ones is the service's "unknown".
    if ((static_cast<std::uint32_t>(link.security) & 0xFFFFFFFFu) != 0xFFFFFFFFu)
        f.securityMode = ScannerUtils::stringForSecurityMode(link.security, generation);
    if (link.activePHYMode != 0)
        f.phyMode = ScannerUtils::stringForPHYMode(link.activePHYMode, generation);
    f.ssid = link.ssid;
    if (hasBssid)
        f.bssid = ScannerUtils::normalizeMAC(link.bssid);
    const int txRate = static_cast<int>(link.transmitRate);
    if (txRate != 0)
        f.txRate = QStringLiteral("%1 Mbps").arg(txRate);
    f.rssi = QStringLiteral("%1 dBm").arg(link.rssiValue);
    if (hasBssid) {
        const int noise = displayedNoise(link.noiseMeasurement, record.channelBond);
        if (noise != 0)
            f.noise = QStringLiteral("%1 dBm").arg(noise);
        f.txPower = QStringLiteral("%1 mW").arg(link.transmitPower);
    }
    f.countryCode = link.countryCode;
    if (hasBssid) {
        if (link.wlanChannel)
            f.channel = channelWithOffset(QString::number(link.wlanChannel->channelNumber), record.channelOffset);
        f.supportedPHYModes = record.supportedPHYModes;
        f.mcsIndex = mcsText(mcsInx);
    }
    return f;
}

} // namespace

void applyLinkToRecord(const platform::InterfaceSnapshot& link, scan::ScanedResultInfo& record)
{
    const platform::WlanChannel channel = link.wlanChannel.value_or(platform::WlanChannel{});
    record.channelWidth = widthFromCode(channel.channelWidth);
    switch (channel.channelBand) {
    case platform::ChannelBand::Band2GHz: record.channelBond = 2.4; break;
    case platform::ChannelBand::Band5GHz: record.channelBond = 5.0; break;
    default: record.channelBond = 0; break;
    }
    record.channel = QString::number(channel.channelNumber);
}

QList<int> sortedSupportedChannels(const platform::InterfaceSnapshot& link)
{
    QList<int> channels;
    for (const platform::WlanChannel& channel : link.supportedWLANChannels)
        channels.append(channel.channelNumber);
    std::stable_sort(channels.begin(), channels.end());
    return channels;
}

InterfaceFields interfaceFields(const platform::InterfaceSnapshot& link, const scan::ScanedResultInfo& record,
                                const QList<int>& supportedChannels, const QString& mcsInx,
                                core::InterfaceGeneration generation)
{
    return core::isOSSnowLeopard(generation) ? olderFields(link, record, supportedChannels, mcsInx)
                                             : laterFields(link, record, supportedChannels, mcsInx);
}

QMap<QString, QString> fieldSources(const platform::InterfaceSnapshot& link)
{
    const auto source = [&link](const char* member) {
        const QString text = link.sources.value(QLatin1String(member), link.sources.value(QStringLiteral("*")));
        return text.isEmpty() ? QStringLiteral("not reported by the backend") : text;
    };
    const QString elements = QStringLiteral("information elements of the connected BSS from a directed scan");
    QMap<QString, QString> sources{
        {QStringLiteral("opModeField"), source("interfaceMode")},
        {QStringLiteral("securityModeField"), source("security")},
        {QStringLiteral("phyModeField"), source("activePHYMode")},
        {QStringLiteral("ssidField"), source("ssid")},
        {QStringLiteral("bssidField"), source("bssid")},
        {QStringLiteral("txRateField"), source("transmitRate")},
        {QStringLiteral("rssiField"), source("rssiValue")},
        {QStringLiteral("noiseField"), source("noiseMeasurement")},
        {QStringLiteral("txPowerField"), source("transmitPower")},
        {QStringLiteral("countryCodeField"), source("countryCode")},
        {QStringLiteral("supportedChannelsField"), source("supportedWLANChannels")},
        {QStringLiteral("channelField"), source("wlanChannel") + QStringLiteral("; offset from ") + elements},
        {QStringLiteral("supportedPHYModesField"), elements},
        {QStringLiteral("supportedDataRates"), elements},
        {QStringLiteral("streamValue"), elements},
        {QStringLiteral("mcsIndex"), QStringLiteral("the MCS: line of skyvane-cli -I on the same backend")},
    };
    if (link.noiseMeasurement == 0)
        sources[QStringLiteral("noiseField")] = QStringLiteral("no reading; the band's usual noise floor is shown");
    return sources;
}

int displayedNoise(int noiseMeasurement, double bandGhz)
{
    if (noiseMeasurement != 0)
        return noiseMeasurement;
    if (bandGhz < bandBoundaryGhz)
        return noiseFloor24Ghz;
    if (bandGhz > bandBoundaryGhz)
        return noiseFloor5Ghz;
    return 0;
}

std::optional<QString> mcsIndexFromToolOutput(const QString& output)
{
    const QStringList lines = output.split(QLatin1Char('\n'));
    for (qsizetype i = lines.size() - 1; i >= 1; --i) {
        const QString& line = lines.at(i);
        if (line.isEmpty() || !line.contains(QLatin1String("MCS:")))
            continue;
        return line.mid(line.indexOf(QLatin1Char(':')) + 1).trimmed();
    }
    return std::nullopt;
}

} // namespace connection
