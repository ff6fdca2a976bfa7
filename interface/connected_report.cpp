#include "interface/connected_report.h"

#include "scan/scanner_utils.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>

namespace connection {
namespace {

const QString graphSection = QStringLiteral(
    "<br><br><center style='font-size:18px; color:#f37736;'> <strong>Connected SSID Graph</strong><p><img "
    "src='skv-images/connectedSSIDgraph.png' style='max-width:800px !important;'/></p></center>");

QString enabledText(std::int8_t flag) { return flag != 0 ? QStringLiteral("Enabled") : QStringLiteral("Disabled"); }

QString channelText(const ConnectedReportValues& values)
{
    if (!values.record.channel.isEmpty())
        return values.record.channel;
    if (values.record.originalChannel != 0)
        return QString::number(values.record.originalChannel);
    return QString::number(values.interfaceChannel);
}

} // namespace

QString loadConnectedReportTemplate(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return connectedReportFallbackTemplate;
    return QString::fromUtf8(file.readAll());
}

QString connectedReportHtml(const QString& templateText, const ConnectedReportValues& values, const QDateTime& now)
{
    const InterfaceFields& f = values.fields;
    const scan::ScanedResultInfo& r = values.record;
    const QList<std::pair<const char*, QString>> placeholders{
        {"{DATE}", scan::ScannerUtils::formatDate(QStringLiteral("yyyy-MM-dd HH:mm:ss"), now)},
        {"{SCAN_NAME}", values.scanName.isEmpty() ? QStringLiteral("Connected SSID") : values.scanName},
        {"{SUPPORTED_CHANNEL}", f.supportedChannels},
        {"{SUPPORTED_DATA_RATES}", f.supportedDataRates},
        {"{SUPPORTED_PHY_MODES}", f.supportedPHYModes},
        {"{COUNTRY}", f.countryCode},
        {"{SSID}", f.ssid},
        {"{BSSID}", f.bssid},
        {"{VENDOR_OUI}", scan::ScannerUtils::vendorNameForMAC(f.bssid)},
        {"{POWER}", f.powerSegment == 0 ? QStringLiteral("On") : QStringLiteral("Off")},
        {"{RSSI}", f.rssi},
        {"{NOISE}", f.noise},
        {"{SNR}", values.signalToNoise ? QStringLiteral("%1 dB").arg(*values.signalToNoise) : QString()},
        {"{MAX_DATA_RATES}", r.maxDataRate.isEmpty() ? QString() : QStringLiteral("%1 Mbps").arg(r.maxDataRate)},
        {"{TX_POWER}", f.txPower},
        {"{TX_RATE}", f.txRate},
        {"{MCS_INDEX}", f.mcsIndex},
        {"{CHANNEL}", channelText(values)},
        {"{CHANNEL_BAND}", QStringLiteral("%1 GHz").arg(QString::number(r.channelBond))},
        {"{CHANNEL_WIDTH}", r.channelWidth != 0 ? QStringLiteral("%1 MHz").arg(r.channelWidth) : QString()},
        {"{ACTIVE_PHY_MODE}", f.phyMode},
        {"{20SGI}", enabledText(r.shortGIFor24MhzEnabled)},
        {"{40SGI}", enabledText(r.shortGIFor40MhzEnabled)},
        {"{STREAMS}", r.numberOfStreams != 0 ? QString::number(r.numberOfStreams) : QString()},
        {"{SECURITY}", f.securityMode},
        {"{OP_MODE}", f.opMode},
        {"{WPS}", r.isWPS != 0 ? QStringLiteral("Yes") : QStringLiteral("No")},
        {"{GCE}", r.groupDataChiperEncryption},
        {"{PCE}", r.pairWiseChiperEncryption},
    };
    // One pass over the template: a name from the air that reads "{RSSI}" is a name, not a placeholder
    // for a later round. Names, vendor texts and country codes from the air never become markup either.
    static const QRegularExpression token(QStringLiteral("\\{[A-Z0-9_]+\\}"));
    QString html;
    qsizetype copied = 0;
    for (const QRegularExpressionMatch& match : token.globalMatch(templateText)) {
        const auto found = std::find_if(placeholders.cbegin(), placeholders.cend(), [&match](const auto& entry) {
            return match.capturedView() == QLatin1String(entry.first);
        });
        if (found == placeholders.cend())
            continue;
        html += QStringView(templateText).sliced(copied, match.capturedStart() - copied);
        html += found->second.toHtmlEscaped();
        copied = match.capturedEnd();
    }
    html += QStringView(templateText).sliced(copied);
    return html + graphSection;
}

ConnectedReportLayout connectedReportLayout(const QString& chosenPath, const QDateTime& now)
{
    QString path = chosenPath;
    path.replace(QLatin1String("file:/localhost"), QLatin1String("/"));
    path.replace(QLatin1String("file://localhost"), QLatin1String("/"));
    const QFileInfo chosen(QDir::cleanPath(path));
    ConnectedReportLayout layout;
    layout.folder = chosen.path() + QStringLiteral("/skyvane-connected-ssid-report-%1")
                                        .arg(scan::ScannerUtils::formatDate(QStringLiteral("yyyyMMdd-HH-mm"), now));
    layout.imageFolder = layout.folder + QStringLiteral("/skv-images");
    layout.htmlPath = layout.folder + QStringLiteral("/%1").arg(chosen.fileName());
    return layout;
}

ConnectedReportOutcome writeConnectedReport(const QString& chosenPath, const QString& html, const QDateTime& now,
                                            const std::function<bool(const QString& imageFolder)>& saveGraph)
{
    const ConnectedReportLayout layout = connectedReportLayout(chosenPath, now);
    if (!QDir().mkpath(layout.imageFolder))
        return {{}, QStringLiteral("The report folder %1 could not be created.").arg(layout.folder)};
    QString failure;
    if (saveGraph && !saveGraph(layout.imageFolder))
        failure = QStringLiteral("The graph image could not be written to %1.").arg(layout.imageFolder);
    QSaveFile file(layout.htmlPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(html.toUtf8()) < 0 || !file.commit())
        return {{}, QStringLiteral("%1 could not be written: %2").arg(layout.htmlPath, file.errorString())};
    return {layout.htmlPath, failure};
}

} // namespace connection
