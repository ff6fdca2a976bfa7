#include "app/cli/scan_output.h"

#include "app/cli/json_writer.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <array>

namespace app::cli {
namespace {

// Names come from the air: a control character would break the line or move the cursor.
QString printable(QString text)
{
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            c = QLatin1Char('?');
    }
    return text;
}

QString bandText(double band)
{
    if (band <= 0.0)
        return QString();
    return band > 3.0 ? QStringLiteral("%1 GHz").arg(static_cast<int>(band)) : QStringLiteral("%1 GHz").arg(band, 0, 'f', 1);
}

constexpr int columnCount = 9;
using Cells = std::array<QString, columnCount>;
// Numbers read best aligned on their last digit.
constexpr std::array<bool, columnCount> rightAligned{false, false, false, true, false, false, false, false, false};

Cells rowCells(const scan::ScanedResultInfo& record, bool connected)
{
    return {connected ? QStringLiteral("*") : QString(),
            printable(record.ssid),
            record.bssid,
            QString::number(record.rssi),
            printable(record.channel.isEmpty() ? QString::number(record.originalChannel) : record.channel),
            bandText(record.channelBond),
            record.channelWidth > 0 ? QStringLiteral("%1 MHz").arg(record.channelWidth) : QString(),
            printable(record.securityModeString),
            printable(record.vendorName)};
}

} // namespace

QString scanTable(const QString& countLabel, const scanning::ResultsTableModel& table)
{
    const QString active = table.currentTest() != nullptr ? table.currentTest()->activeBSSID : QString();
    QList<Cells> rows{{QString(), QStringLiteral("SSID"), QStringLiteral("BSSID"), QStringLiteral("RSSI"),
                       QStringLiteral("CHANNEL"), QStringLiteral("BAND"), QStringLiteral("WIDTH"),
                       QStringLiteral("SECURITY"), QStringLiteral("VENDOR")}};
    for (int row = 0; row < table.rowCount(); ++row) {
        const scan::ScanedResultInfo& record = *table.recordAt(row);
        rows << rowCells(record, !active.isEmpty() && record.bssid == active);
    }

    std::array<qsizetype, columnCount> widths{};
    for (const Cells& row : rows) {
        for (int i = 0; i < columnCount; ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    QString text = countLabel + QLatin1Char('\n');
    for (const Cells& row : rows) {
        QString line;
        for (int i = 0; i < columnCount; ++i) {
            if (i > 0)
                line += QLatin1Char(' ');
            line += rightAligned[i] ? row[i].rightJustified(widths[i]) : row[i].leftJustified(widths[i]);
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}

void writeScanJson(JsonWriter& json, int scan, const QString& countLabel, const scanning::WiFiScanTest& test)
{
    json.beginObject();
    json.field("scan", scan);
    json.field("countLabel", countLabel);
    json.field("testLabel", test.testLabel);
    json.field("activeBSSID", test.activeBSSID);
    json.endObject();
    for (const scan::ScanedResultInfo& r : test.scanedData1) {
        json.beginObject();
        json.field("scan", scan);
        json.field("bssid", r.bssid);
        json.field("vendorName", r.vendorName);
        json.field("ssid", r.ssid);
        json.field("phyMode", r.phyMode);
        json.field("rssi", r.rssi);
        json.field("noise", r.noise);
        json.field("singnalToNoise", r.singnalToNoise);
        json.field("securityMode", r.securityMode);
        json.field("cc", r.cc);
        json.field("ibss", r.ibss);
        json.field("lastSeen", r.lastSeen.isValid() ? r.lastSeen.toString(Qt::ISODateWithMs) : QString());
        json.field("supportedPHYModes", r.supportedPHYModes);
        json.field("securityModeString", r.securityModeString);
        json.field("groupDataChiperEncryption", r.groupDataChiperEncryption);
        json.field("pairWiseChiperEncryption", r.pairWiseChiperEncryption);
        json.field("channelOffset", r.channelOffset);
        json.field("channelWidth", r.channelWidth);
        json.field("originalChannel", r.originalChannel);
        json.field("channel", r.channel);
        json.field("channelBond", r.channelBond);
        json.field("shortGIFor24MhzEnabled", r.shortGIFor24MhzEnabled);
        json.field("shortGIFor40MhzEnabled", r.shortGIFor40MhzEnabled);
        json.field("isSelected", r.isSelected);
        json.field("isWPS", r.isWPS);
        json.field("supportedDataRates", r.supportedDataRates);
        json.field("numberOfStreams", r.numberOfStreams);
        json.field("maxDataRate", r.maxDataRate);
        json.field("protectionMode", r.protectionMode);
        json.field("channelUtilization", r.channelUtilization);
        json.field("connectedClientCount", r.connectedClientCount);
        json.field("apname", r.apname);
        json.field("bssidTag", r.bssidTag);
        json.field("mobilityDomain", r.mobilityDomain);
        json.endObject();
    }
}

} // namespace app::cli
