#include "app/cli/tool_output.h"

#include "app/cli/network_summary.h"
#include "scan/scanner_utils.h"

#include <QMap>
#include <QStringList>
#include <QXmlStreamWriter>

namespace app::cli {
namespace {

// Control characters would end a line or a field early; the text is for reading, the bytes
// stay available in the property list.
QString printable(const QString& text)
{
    QString out = text;
    for (QChar& c : out) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = QLatin1Char('?');
    }
    return out;
}

QString ssidColumn(const QString& ssid)
{
    QString text = printable(ssid);
    if (text.size() > kSsidColumns) {
        text.truncate(kSsidColumns);
        // Cutting between the halves of a surrogate pair would leave an unreadable half character.
        if (text.back().isHighSurrogate())
            text.chop(1);
    }
    return text.rightJustified(kSsidColumns, QLatin1Char(' '));
}

QString countryColumn(const QString& code)
{
    const QString trimmed = code.trimmed();
    if (trimmed.isEmpty())
        return QStringLiteral("--");
    for (QChar c : trimmed) {
        if (c.unicode() <= 0x20 || c.unicode() >= 0x7F)
            return QStringLiteral("--");
    }
    return trimmed;
}

QString bandText(platform::ChannelBand band)
{
    switch (band) {
    case platform::ChannelBand::Band2GHz: return QStringLiteral("2.4 GHz");
    case platform::ChannelBand::Band5GHz: return QStringLiteral("5 GHz");
    default: return QString();
    }
}

QString stateText(int state)
{
    switch (state) {
    case platform::InterfaceStateScanning: return QStringLiteral("scanning");
    case platform::InterfaceStateAuthenticating: return QStringLiteral("authenticating");
    case platform::InterfaceStateAssociating: return QStringLiteral("associating");
    case platform::InterfaceStateRunning: return QStringLiteral("running");
    default: return QStringLiteral("init");
    }
}

QString modeText(int mode)
{
    switch (mode) {
    case platform::InterfaceModeStation: return QStringLiteral("station");
    case platform::InterfaceModeIBSS: return QStringLiteral("IBSS");
    case platform::InterfaceModeHostAP: return QStringLiteral("hostAP");
    default: return QStringLiteral("none");
    }
}

// XML 1.0 cannot carry most control characters even escaped.
QString xmlSafe(const QString& text)
{
    QString out = text;
    for (QChar& c : out) {
        const char16_t u = c.unicode();
        if ((u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r') || u == 0xFFFE || u == 0xFFFF)
            c = QChar::ReplacementCharacter;
    }
    return out;
}

class PlistWriter {
public:
    explicit PlistWriter(QByteArray* out) : xml_(out) {}

    QXmlStreamWriter& xml() { return xml_; }
    void key(const QString& name) { xml_.writeTextElement(QStringLiteral("key"), name); }
    void string(const QString& name, const QString& value)
    {
        key(name);
        xml_.writeTextElement(QStringLiteral("string"), xmlSafe(value));
    }
    void integer(const QString& name, long long value)
    {
        key(name);
        xml_.writeTextElement(QStringLiteral("integer"), QString::number(value));
    }
    void boolean(const QString& name, bool value)
    {
        key(name);
        xml_.writeEmptyElement(value ? QStringLiteral("true") : QStringLiteral("false"));
    }
    void data(const QString& name, const QByteArray& value)
    {
        key(name);
        xml_.writeTextElement(QStringLiteral("data"), QString::fromLatin1(value.toBase64()));
    }

private:
    QXmlStreamWriter xml_;
};

void writeNetwork(PlistWriter& plist, const platform::ScanResult& network, core::InterfaceGeneration generation)
{
    plist.xml().writeStartElement(QStringLiteral("dict"));
    plist.string(QStringLiteral("SSID_STR"), network.ssid);
    plist.data(QStringLiteral("SSID"), network.ssidData);
    plist.string(QStringLiteral("BSSID"), scan::ScannerUtils::normalizeMAC(network.bssid));
    plist.integer(QStringLiteral("RSSI"), network.rssiValue);
    plist.integer(QStringLiteral("NOISE"), network.noiseMeasurement);
    plist.integer(QStringLiteral("CHANNEL"), network.channelNumber);
    plist.string(QStringLiteral("CHANNEL_TEXT"), channelSummary(network));
    plist.string(QStringLiteral("CHANNEL_BAND"), bandText(network.channelBand));
    plist.integer(QStringLiteral("CHANNEL_WIDTH"), core::widthMhz(network.channelWidth));
    plist.boolean(QStringLiteral("HT"), hasHtCapabilities(network.informationElementData));
    plist.string(QStringLiteral("CC"), countryColumn(network.countryCode));
    plist.string(QStringLiteral("SECURITY"), securitySummary(network));
    plist.integer(QStringLiteral("SECURITY_MODE"), network.securityMode);
    plist.boolean(QStringLiteral("SECURED"), network.secured);
    plist.boolean(QStringLiteral("IBSS"), network.ibss);
    plist.integer(QStringLiteral("BEACON_INT"), network.beaconInterval);
    plist.string(QStringLiteral("PHY_MODES"), scan::ScannerUtils::getSupportedPHYModeString(network, generation));
    plist.data(QStringLiteral("IE"), network.informationElementData);
    plist.xml().writeEndElement();
}

} // namespace

QString scanListingHeading()
{
    return QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
        .arg(QStringLiteral("SSID").rightJustified(kSsidColumns, QLatin1Char(' ')),
             QStringLiteral("BSSID").leftJustified(17, QLatin1Char(' ')), QStringLiteral("RSSI"),
             QStringLiteral("CHANNEL"), QStringLiteral("HT"), QStringLiteral("CC"),
             QStringLiteral("SECURITY (auth/unicast/group)"));
}

QString scanListingLine(const platform::ScanResult& network)
{
    return QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
        .arg(ssidColumn(network.ssid), scan::ScannerUtils::normalizeMAC(network.bssid).leftJustified(17, QLatin1Char(' ')),
             QString::number(network.rssiValue).rightJustified(4, QLatin1Char(' ')),
             channelSummary(network).leftJustified(7, QLatin1Char(' ')),
             hasHtCapabilities(network.informationElementData) ? QStringLiteral("Y ") : QStringLiteral("N "),
             countryColumn(network.countryCode), securitySummary(network));
}

QString scanListing(const QList<platform::ScanResult>& networks)
{
    QString text = scanListingHeading() + QLatin1Char('\n');
    for (const platform::ScanResult& network : networks)
        text += scanListingLine(network) + QLatin1Char('\n');
    return text;
}

QByteArray scanPropertyList(const QList<platform::ScanResult>& networks, core::InterfaceGeneration generation)
{
    QByteArray out;
    PlistWriter plist(&out);
    QXmlStreamWriter& xml = plist.xml();
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(-1);
    xml.writeStartDocument();
    xml.writeDTD(QStringLiteral(R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" )"
                                R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)"));
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    xml.writeStartElement(QStringLiteral("array"));
    for (const platform::ScanResult& network : networks)
        writeNetwork(plist, network, generation);
    xml.writeEndDocument();
    return out;
}

QString linkReport(const platform::InterfaceSnapshot& snapshot, core::InterfaceGeneration generation, bool explain)
{
    QList<std::pair<QString, QString>> lines{
        {QStringLiteral("agrCtlRSSI"), QString::number(snapshot.rssiValue)},
        {QStringLiteral("agrCtlNoise"), QString::number(snapshot.noiseMeasurement)},
        {QStringLiteral("interface"), snapshot.interfaceName},
        {QStringLiteral("power"), snapshot.powerOn ? QStringLiteral("On") : QStringLiteral("Off")},
        {QStringLiteral("state"), stateText(snapshot.interfaceState)},
        {QStringLiteral("op mode"), modeText(snapshot.interfaceMode)},
        {QStringLiteral("lastTxRate"), QString::number(snapshot.transmitRate)},
        {QStringLiteral("txPower"), QString::number(snapshot.transmitPower)},
        {QStringLiteral("link auth"), scan::ScannerUtils::stringForSecurityMode(snapshot.security, generation)},
        {QStringLiteral("BSSID"), snapshot.bssid.isEmpty() ? QString() : scan::ScannerUtils::normalizeMAC(snapshot.bssid)},
        {QStringLiteral("SSID"), printable(snapshot.ssid)},
    };
    if (snapshot.mcsIndex)
        lines.append({QStringLiteral("MCS"), QString::number(*snapshot.mcsIndex)});
    if (snapshot.spatialStreams)
        lines.append({QStringLiteral("NSS"), QString::number(*snapshot.spatialStreams)});
    if (snapshot.shortGuardInterval)
        lines.append({QStringLiteral("guardInterval"), *snapshot.shortGuardInterval ? QStringLiteral("400")
                                                                                    : QStringLiteral("800")});
    if (snapshot.wlanChannel) {
        lines.append({QStringLiteral("channel"), QString::number(snapshot.wlanChannel->channelNumber)});
        lines.append({QStringLiteral("channel band"), bandText(snapshot.wlanChannel->channelBand)});
        if (const int width = core::widthMhz(snapshot.wlanChannel->channelWidth))
            lines.append({QStringLiteral("channel width"), QString::number(width)});
    }
    lines.append({QStringLiteral("country"), countryColumn(snapshot.countryCode)});

    // Which snapshot member each line shows, for --explain.
    static const QMap<QString, QString> members{
        {QStringLiteral("agrCtlRSSI"), QStringLiteral("rssiValue")},
        {QStringLiteral("agrCtlNoise"), QStringLiteral("noiseMeasurement")},
        {QStringLiteral("power"), QStringLiteral("powerOn")},
        {QStringLiteral("state"), QStringLiteral("interfaceState")},
        {QStringLiteral("op mode"), QStringLiteral("interfaceMode")},
        {QStringLiteral("lastTxRate"), QStringLiteral("transmitRate")},
        {QStringLiteral("txPower"), QStringLiteral("transmitPower")},
        {QStringLiteral("link auth"), QStringLiteral("security")},
        {QStringLiteral("BSSID"), QStringLiteral("bssid")},
        {QStringLiteral("SSID"), QStringLiteral("ssid")},
        {QStringLiteral("MCS"), QStringLiteral("mcsIndex")},
        {QStringLiteral("NSS"), QStringLiteral("spatialStreams")},
        {QStringLiteral("guardInterval"), QStringLiteral("shortGuardInterval")},
        {QStringLiteral("channel"), QStringLiteral("wlanChannel")},
        {QStringLiteral("channel band"), QStringLiteral("wlanChannel")},
        {QStringLiteral("channel width"), QStringLiteral("wlanChannel")},
        {QStringLiteral("country"), QStringLiteral("countryCode")},
    };
    QString text;
    for (const auto& [key, value] : lines) {
        text += QStringLiteral("%1: %2").arg(key.rightJustified(15, QLatin1Char(' ')), value);
        if (explain) {
            const QString source = snapshot.sources.value(members.value(key), snapshot.sources.value(QStringLiteral("*")));
            text += QStringLiteral("   [%1]").arg(source.isEmpty() ? QStringLiteral("not reported") : source);
        }
        text += QLatin1Char('\n');
    }
    return text;
}

} // namespace app::cli
