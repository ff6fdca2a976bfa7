#include "scan/scaned_result_info.h"

#include "core/csv_cell.h"

#include "scan/scanner_utils.h"

#include <QLatin1String>
#include <QStringView>

#include <array>
#include <utility>

namespace {

// An optional export column: the results-table setting that shows it and its HTML heading.
// Heading and row both read these, so they cannot disagree about which columns are present.
struct Column {
    const char* visibleKey;
    const char* htmlHeading;
};

constexpr Column tagColumn{"bssidTagColumnVisible", "<th>Tag</th>"};
constexpr Column vendorColumn{"vendorNameColumnVisible", "<th>Vendor OUI</th>"};
constexpr Column channelColumn{"channelColumnVisible", "<th>Channel</th>"};
constexpr Column widthColumn{"channelWidthColumnVisible", "<th>Channel Width</th>"};
constexpr Column bandColumn{"channelBondColumnVisible", "<th>Channel Band</th>"};
constexpr Column signalColumn{"rssiColumnVisible", "<th>Signal</th>"};
constexpr Column noiseColumn{"noiseColumnVisible", "<th>Noise</th>"};
constexpr Column snrColumn{"snColumnVisible", "<th>SNR</th>"};
constexpr Column phyColumn{"phyModeColumnVisible", "<th>PHY Modes</th>"};
constexpr Column streamsColumn{"numberOfStreamsColumnVisible", "<th>Streams</th>"};
constexpr Column maxRateColumn{"maxDataRateColumnVisible", "<th>Max Rate</th>"};
constexpr Column securityColumns{"securityColumnVisible", "<th>Security</th><th>GDCE</th><th>PCE</th>"};
constexpr Column wpsColumn{"wpsColumnVisible", "<th>WPS</th>"};
constexpr Column apNameColumn{"apnameColumnVisible", "<th>AP Name</th>"};
constexpr Column clientsColumn{"connectedClientsColumnVisible", "<th># Clients</th>"};
constexpr Column utilizationColumn{"channelUtilizationColumnVisible", "<th>Channel Utilization</th>"};
constexpr Column protectionColumn{"protectionModeColumnVisible", "<th>Protection Mode</th>"};
constexpr Column mobilityColumn{"mobilityDomainColumnVisible", "<th>802.11r</th>"};
constexpr Column adHocColumn{"ibssColumnVisible", "<th>Ad-Hoc</th>"};
constexpr Column countryColumn{"ccColumnVisible", "<th>Country Code</th>"};
constexpr Column lastSeenColumn{"lastseenColumnVisible", "<th>Last Seen</th>"};

constexpr std::array<Column, 21> optionalColumns{
    tagColumn, vendorColumn, channelColumn, widthColumn, bandColumn, signalColumn, noiseColumn,
    snrColumn, phyColumn, streamsColumn, maxRateColumn, securityColumns, wpsColumn, apNameColumn,
    clientsColumn, utilizationColumn, protectionColumn, mobilityColumn, adHocColumn, countryColumn,
    lastSeenColumn};

constexpr const char* csvHeader =
    "\"Test Name\",\"SSID\",BSSID,Tag,\"Vendor OUI\",Channel,Channel Width,Channel Band,"
    "Signal (dBm),Noise (dBm),\"SNR\",\"PHY Modes\",\"Streams\",\"Max Rate\",\"Security\","
    "\"GCDE\",\"PCE\",\"WPS\",\"AP Name\",\"# Clients\",\"Channel Utilization\","
    "\"Protection Mode\",802.11r,Ad-Hoc,Country Code,\"Last Seen\",\n";

bool isHtml(const QString& exportType) { return exportType == QLatin1String("html"); }

bool isVisible(const core::UserSettings& settings, const Column& column)
{
    return core::settingIsOn(settings.value(QLatin1String(column.visibleKey)));
}

enum class Csv { Bare, Quoted };

// Collects one export row as HTML cells or as comma-terminated CSV cells.
class RowWriter {
public:
    RowWriter(bool html, const core::UserSettings& settings) : html_(html), settings_(settings) {}

    bool shows(const Column& column) const { return !html_ || isVisible(settings_, column); }

    // Text from the air or the user: it may carry markup, separators or spreadsheet formulas.
    void text(const QString& value, Csv form)
    {
        if (html_) {
            out_ += QLatin1String("<td>") + value.toHtmlEscaped() + QLatin1String("</td>");
            return;
        }
        out_ += core::csvCell(value, form == Csv::Quoted ? core::CsvQuoting::Always : core::CsvQuoting::WhenNeeded);
        out_ += QLatin1Char(',');
    }

    // Text this program formatted itself from numbers, written exactly as formatted.
    void formatted(const QString& value, Csv form)
    {
        if (html_) {
            out_ += QLatin1String("<td>") + value + QLatin1String("</td>");
            return;
        }
        if (form == Csv::Quoted)
            out_ += QLatin1Char('"') + value + QLatin1Char('"');
        else
            out_ += value;
        out_ += QLatin1Char(',');
    }

    QString finish()
    {
        if (!html_)
            out_ += QLatin1Char('\n');
        return std::move(out_);
    }

private:
    bool html_;
    const core::UserSettings& settings_;
    QString out_;
};

// The numeric value of a rate text such as "54(B)": the leading decimal number, 0 when none.
double leadingNumber(const QString& text)
{
    qsizetype begin = 0;
    while (begin < text.size() && text.at(begin).isSpace())
        ++begin;
    qsizetype end = begin;
    if (end < text.size() && (text.at(end) == QLatin1Char('-') || text.at(end) == QLatin1Char('+')))
        ++end;
    bool point = false;
    for (; end < text.size(); ++end) {
        const QChar c = text.at(end);
        if (c == QLatin1Char('.') && !point)
            point = true;
        else if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            break;
    }
    bool ok = false;
    const double value = QStringView(text).mid(begin, end - begin).toDouble(&ok);
    return ok ? value : 0.0;
}

QString channelText(int channel, std::int64_t offset)
{
    if (offset == 0)
        return QString::number(channel);
    if (offset == 1)
        return QString::number(channel) + QLatin1String(",+1");
    return QString::number(channel) + QLatin1Char(',') + QString::number(offset);
}

QString bandText(double band)
{
    if (band > 3.0)
        return QString::asprintf("%d GHz", static_cast<int>(band));
    return QString::asprintf("%0.1f GHz", band);
}

QString maxRateText(const QString& rate)
{
    const double value = leadingNumber(rate);
    return value == 0.0 ? QString() : QString::asprintf("%0.1f Mbps", value);
}

QString orNotAvailable(const QString& text) { return text.isEmpty() ? QStringLiteral("N/A") : text; }

} // namespace

QString ScanedResultInfo::toString(const core::UserSettings& settings)
{
    populateMaxDataRate();
    RowWriter row(isHtml(exportType), settings);
    row.text(ssid, Csv::Quoted);
    row.text(bssid, Csv::Bare);
    if (row.shows(tagColumn))
        row.text(bssidTag, Csv::Bare);
    if (row.shows(vendorColumn))
        row.text(vendorName, Csv::Quoted);
    if (row.shows(channelColumn))
        row.formatted(channelText(originalChannel, channelOffset), channelOffset == 0 ? Csv::Bare : Csv::Quoted);
    if (row.shows(widthColumn))
        row.formatted(QString::asprintf("%d MHz", channelWidth), Csv::Bare);
    if (row.shows(bandColumn))
        row.formatted(bandText(channelBond), Csv::Bare);
    if (row.shows(signalColumn))
        row.formatted(QString::asprintf("%d dBm", rssi), Csv::Bare);
    if (row.shows(noiseColumn))
        row.formatted(QString::asprintf("%d dBm", noise), Csv::Bare);
    if (row.shows(snrColumn))
        row.formatted(QString::asprintf("%d dB", singnalToNoise), Csv::Bare);
    if (row.shows(phyColumn))
        row.text(supportedPHYModes, Csv::Bare);
    if (row.shows(streamsColumn))
        row.formatted(numberOfStreams == 0 ? QString() : QString::number(numberOfStreams), Csv::Bare);
    if (row.shows(maxRateColumn))
        row.formatted(maxRateText(getMaxDataRate()), Csv::Bare);
    if (row.shows(securityColumns)) {
        row.text(securityModeString, Csv::Quoted);
        row.text(groupDataChiperEncryption, Csv::Bare);
        row.text(pairWiseChiperEncryption, Csv::Bare);
    }
    if (row.shows(wpsColumn))
        row.formatted(isWPS == -1 ? QString() : (isWPS != 0 ? QStringLiteral("Yes") : QStringLiteral("No")), Csv::Bare);
    if (row.shows(apNameColumn))
        row.text(ScannerUtils::hasValue(apname) ? apname : QString(), Csv::Bare);
    // A count of 0 reads as "not reported" here, while 0 % utilisation is a real measurement.
    if (row.shows(clientsColumn))
        row.formatted(connectedClientCount > 0 ? QString::number(connectedClientCount) : QStringLiteral("N/A"), Csv::Bare);
    if (row.shows(utilizationColumn))
        row.formatted(channelUtilization >= 0 ? QString::number(channelUtilization) + QLatin1Char('%') : QStringLiteral("N/A"),
                      Csv::Bare);
    if (row.shows(protectionColumn))
        row.text(orNotAvailable(protectionMode), Csv::Bare);
    if (row.shows(mobilityColumn))
        row.text(orNotAvailable(mobilityDomain), Csv::Bare);
    if (row.shows(adHocColumn))
        row.formatted(ibss != 0 ? QStringLiteral("Yes") : QStringLiteral("No"), Csv::Bare);
    if (row.shows(countryColumn))
        row.text(cc, Csv::Bare);
    if (row.shows(lastSeenColumn))
        row.formatted(ScannerUtils::formatDate(QStringLiteral("yyyy-MM-dd HH:mm:ss"), lastSeen), Csv::Bare);
    return row.finish();
}

QString ScanedResultInfo::getHeader(const core::UserSettings& settings) const
{
    if (!isHtml(exportType))
        return QLatin1String(csvHeader);
    QString header = QStringLiteral("<thead><tr><th>SSID</th><th>BSSID</th>");
    for (const Column& column : optionalColumns) {
        if (isVisible(settings, column))
            header += QLatin1String(column.htmlHeading);
    }
    header += QLatin1String("</tr></thead>\n");
    return header;
}
