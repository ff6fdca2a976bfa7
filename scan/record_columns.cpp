#include "scan/record_columns.h"

#include "scan/scanner_utils.h"
#include "scan/value_transformers.h"

#include <QStringView>

#include <limits>

namespace scan {

namespace record_columns {
namespace {

using R = ScanedResultInfo;
using Cell = ExportCell;

QString lastSeenText(const R& r) { return ScannerUtils::formatDate(QStringLiteral("yyyy-MM-dd HH:mm:ss"), r.lastSeen); }

QString channelText(const R& r)
{
    if (r.channelOffset == 0)
        return QString::number(r.originalChannel);
    if (r.channelOffset == 1)
        return QString::number(r.originalChannel) + QLatin1String(",+1");
    return QString::number(r.originalChannel) + QLatin1Char(',') + QString::number(r.channelOffset);
}

QString bandText(double band)
{
    if (band > 3.0)
        return QString::asprintf("%d GHz", static_cast<int>(band));
    return QString::asprintf("%0.1f GHz", band);
}

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

// Rates sort by their whole megabits, so 5.5 and 5 share a place as the table always had them.
long long leadingInteger(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))) {
        negative = text.at(i) == QLatin1Char('-');
        ++i;
    }
    long long value = 0;
    for (; i < text.size() && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'); ++i) {
        if (value < 1'000'000'000'000LL)
            value = value * 10 + (text.at(i).unicode() - u'0');
    }
    return negative ? -value : value;
}

QString orNotAvailable(const QString& text) { return text.isEmpty() ? QStringLiteral("N/A") : text; }

const SignalToStringTransformer signalText;
const ChannelToStringTransformer widthText;
const ChannelBandTransformer bandTransformer;
const SNRToStringTransformer snrText;
const NumberTransformer numberText;
const NSBoolToStringTransformer yesNoText;
const SpeedToStringTransformer speedText;
const ChannelUtilizationTransformer utilizationText;

ExportField field(const char* html, const char* csv, std::function<Cell(const R&)> cell)
{
    return {QLatin1String(html), QLatin1String(csv), std::move(cell)};
}

// A column only the table shows: it neither exports nor sorts.
RecordColumn tableOnly(const char* identifier, const char* visibilityKey, const char* title)
{
    RecordColumn column;
    column.identifier = QLatin1String(identifier);
    column.visibilityKey = QLatin1String(visibilityKey);
    column.title = QLatin1String(title);
    column.displayText = [](const R&) { return QString(); };
    return column;
}

RecordColumn column(const char* identifier, bool optional, const char* title, QList<ExportField> fields,
                    std::function<QString(const R&)> display, const char* sortKey, SortKind kind,
                    std::function<QVariant(const R&)> sortValue)
{
    RecordColumn c;
    c.identifier = QLatin1String(identifier);
    if (optional)
        c.visibilityKey = c.identifier + QLatin1String("ColumnVisible");
    c.title = QLatin1String(title);
    c.exportFields = std::move(fields);
    c.displayText = std::move(display);
    c.sortKey = QLatin1String(sortKey);
    c.sortKind = kind;
    c.sortValue = std::move(sortValue);
    return c;
}

QList<RecordColumn> makeColumns()
{
    constexpr bool always = false;
    constexpr bool optional = true;
    using K = SortKind;
    using F = CsvForm;
    // Names are what people read, so case must not split them; other texts keep their literal order.
    return {
        tableOnly("checkbox", "", ""),
        column("ssid", always, "SSID", {field("SSID", "\"SSID\"", [](const R& r) { return Cell{r.ssid, F::QuotedText}; })},
               [](const R& r) { return r.ssid; }, "ssid", K::TextIgnoringCase, [](const R& r) { return r.ssid; }),
        column("bssid", always, "BSSID", {field("BSSID", "BSSID", [](const R& r) { return Cell{r.bssid, F::Text}; })},
               [](const R& r) { return r.bssid; }, "bssid", K::Text, [](const R& r) { return r.bssid; }),
        tableOnly("join", "joinColumnVisible", "Join"),
        column("bssidTag", optional, "Tag", {field("Tag", "Tag", [](const R& r) { return Cell{r.bssidTag, F::Text}; })},
               [](const R& r) { return r.bssidTag; }, "bssidTag", K::Text, [](const R& r) { return r.bssidTag; }),
        column("vendorName", optional, "Vendor OUI",
               {field("Vendor OUI", "\"Vendor OUI\"", [](const R& r) { return Cell{r.vendorName, F::QuotedText}; })},
               [](const R& r) { return r.vendorName; }, "vendorName", K::TextIgnoringCase,
               [](const R& r) { return r.vendorName; }),
        column("channel", optional, "Channel",
               {field("Channel", "Channel",
                      [](const R& r) { return Cell{channelText(r), r.channelOffset == 0 ? F::Formatted : F::QuotedFormatted}; })},
               [](const R& r) { return r.channel.isEmpty() ? QString::number(r.originalChannel) : r.channel; },
               "originalChannel", K::Number, [](const R& r) { return r.originalChannel; }),
        column("channelWidth", optional, "Channel Width",
               {field("Channel Width", "Channel Width",
                      [](const R& r) { return Cell{QString::asprintf("%d MHz", r.channelWidth), F::Formatted}; })},
               [](const R& r) { return widthText.transformedValue(r.channelWidth); }, "channelWidth", K::Number,
               [](const R& r) { return r.channelWidth; }),
        column("channelBond", optional, "Channel Band",
               {field("Channel Band", "Channel Band", [](const R& r) { return Cell{bandText(r.channelBond), F::Formatted}; })},
               [](const R& r) { return bandTransformer.transformedValue(r.channelBond); }, "channelBond", K::Number,
               [](const R& r) { return r.channelBond; }),
        column("rssi", optional, "Signal",
               {field("Signal", "Signal (dBm)", [](const R& r) { return Cell{QString::asprintf("%d dBm", r.rssi), F::Formatted}; })},
               [](const R& r) { return signalText.transformedValue(r.rssi); }, "rssi", K::Number, [](const R& r) { return r.rssi; }),
        column("noise", optional, "Noise",
               {field("Noise", "Noise (dBm)", [](const R& r) { return Cell{QString::asprintf("%d dBm", r.noise), F::Formatted}; })},
               [](const R& r) { return signalText.transformedValue(r.noise); }, "noise", K::Number, [](const R& r) { return r.noise; }),
        column("sn", optional, "SNR",
               {field("SNR", "\"SNR\"",
                      [](const R& r) { return Cell{QString::asprintf("%d dB", r.singnalToNoise), F::Formatted}; })},
               [](const R& r) { return snrText.transformedValue(r.singnalToNoise); }, "singnalToNoise", K::Number,
               [](const R& r) { return r.singnalToNoise; }),
        column("phyMode", optional, "PHY Modes",
               {field("PHY Modes", "\"PHY Modes\"", [](const R& r) { return Cell{r.supportedPHYModes, F::Text}; })},
               [](const R& r) { return r.supportedPHYModes; }, "supportedPHYModes", K::Text,
               [](const R& r) { return r.supportedPHYModes; }),
        column("numberOfStreams", optional, "Streams",
               {field("Streams", "\"Streams\"",
                      [](const R& r) {
                          return Cell{r.numberOfStreams == 0 ? QString() : QString::number(r.numberOfStreams), F::Formatted};
                      })},
               [](const R& r) { return numberText.transformedValue(QVariant::fromValue<qint64>(r.numberOfStreams)); },
               "numberOfStreams", K::Number, [](const R& r) { return QVariant::fromValue<qint64>(r.numberOfStreams); }),
        // The export reads the rate toString settled just before; the table shows the field as it is.
        column("maxDataRate", optional, "Max Rate",
               {field("Max Rate", "\"Max Rate\"",
                      [](const R& r) {
                          const double rate = leadingNumber(r.maxDataRate);
                          return Cell{rate == 0.0 ? QString() : QString::asprintf("%0.1f Mbps", rate), F::Formatted};
                      })},
               [](const R& r) { return speedText.transformedValue(r.maxDataRate.isEmpty() ? QVariant() : QVariant(r.maxDataRate)); },
               "maxDataRate", K::Number, [](const R& r) { return leadingInteger(r.maxDataRate); }),
        column("security", optional, "Security",
               {field("Security", "\"Security\"", [](const R& r) { return Cell{r.securityModeString, F::QuotedText}; }),
                field("GDCE", "\"GCDE\"", [](const R& r) { return Cell{r.groupDataChiperEncryption, F::Text}; }),
                field("PCE", "\"PCE\"", [](const R& r) { return Cell{r.pairWiseChiperEncryption, F::Text}; })},
               [](const R& r) { return r.securityModeString; }, "securityModeString", K::Text,
               [](const R& r) { return r.securityModeString; }),
        column("wps", optional, "WPS",
               {field("WPS", "\"WPS\"",
                      [](const R& r) {
                          return Cell{r.isWPS == -1 ? QString() : (r.isWPS != 0 ? QStringLiteral("Yes") : QStringLiteral("No")),
                                      F::Formatted};
                      })},
               [](const R& r) { return yesNoText.transformedValue(static_cast<int>(r.isWPS)); }, "isWPS", K::Number,
               [](const R& r) { return static_cast<int>(r.isWPS); }),
        column("apname", optional, "AP Name",
               {field("AP Name", "\"AP Name\"",
                      [](const R& r) { return Cell{ScannerUtils::hasValue(r.apname) ? r.apname : QString(), F::Text}; })},
               [](const R& r) { return r.apname; }, "apname", K::TextIgnoringCase, [](const R& r) { return r.apname; }),
        // A count of 0 reads as "not reported" here, while 0 % utilisation is a real measurement.
        column("connectedClients", optional, "# Clients",
               {field("# Clients", "\"# Clients\"",
                      [](const R& r) {
                          return Cell{r.connectedClientCount > 0 ? QString::number(r.connectedClientCount) : QStringLiteral("N/A"),
                                      F::Formatted};
                      })},
               [](const R& r) { return numberText.transformedValue(QVariant::fromValue<qint64>(r.connectedClientCount)); },
               "connectedClientCount", K::Number, [](const R& r) { return QVariant::fromValue<qint64>(r.connectedClientCount); }),
        column("channelUtilization", optional, "Channel Utilization",
               {field("Channel Utilization", "\"Channel Utilization\"",
                      [](const R& r) {
                          return Cell{r.channelUtilization >= 0 ? QString::number(r.channelUtilization) + QLatin1Char('%')
                                                                : QStringLiteral("N/A"),
                                      F::Formatted};
                      })},
               [](const R& r) { return utilizationText.transformedValue(QVariant::fromValue<qint64>(r.channelUtilization)); },
               "channelUtilization", K::Number, [](const R& r) { return QVariant::fromValue<qint64>(r.channelUtilization); }),
        column("protectionMode", optional, "Protection Mode",
               {field("Protection Mode", "\"Protection Mode\"",
                      [](const R& r) { return Cell{orNotAvailable(r.protectionMode), F::Text}; })},
               [](const R& r) { return r.protectionMode; }, "protectionMode", K::Text, [](const R& r) { return r.protectionMode; }),
        column("mobilityDomain", optional, "802.11r",
               {field("802.11r", "802.11r", [](const R& r) { return Cell{orNotAvailable(r.mobilityDomain), F::Text}; })},
               [](const R& r) { return r.mobilityDomain; }, "mobilityDomain", K::Text, [](const R& r) { return r.mobilityDomain; }),
        column("ibss", optional, "Ad-Hoc",
               {field("Ad-Hoc", "Ad-Hoc",
                      [](const R& r) { return Cell{r.ibss != 0 ? QStringLiteral("Yes") : QStringLiteral("No"), F::Formatted}; })},
               [](const R& r) { return yesNoText.transformedValue(static_cast<int>(r.ibss)); }, "ibss", K::Number,
               [](const R& r) { return static_cast<int>(r.ibss); }),
        column("cc", optional, "Country Code", {field("Country Code", "Country Code", [](const R& r) { return Cell{r.cc, F::Text}; })},
               [](const R& r) { return r.cc; }, "cc", K::Text, [](const R& r) { return r.cc; }),
        column("lastseen", optional, "Last Seen",
               {field("Last Seen", "\"Last Seen\"", [](const R& r) { return Cell{lastSeenText(r), F::Formatted}; })},
               lastSeenText, "lastSeen", K::Number,
               // A record never seen sorts before every seen one.
               [](const R& r) {
                   return r.lastSeen.isValid() ? r.lastSeen.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
               }),
    };
}

} // namespace

int RecordColumn::compare(const ScanedResultInfo& a, const ScanedResultInfo& b) const
{
    const QVariant left = sortValue ? sortValue(a) : QVariant();
    const QVariant right = sortValue ? sortValue(b) : QVariant();
    switch (sortKind) {
    case SortKind::None: return 0;
    case SortKind::Text: return QString::compare(left.toString(), right.toString(), Qt::CaseSensitive);
    case SortKind::TextIgnoringCase: return QString::compare(left.toString(), right.toString(), Qt::CaseInsensitive);
    case SortKind::Number: {
        // Every sort number (counts, dBm, channels, milliseconds since 1970) is exact in a double.
        const double l = left.toDouble();
        const double r = right.toDouble();
        return l < r ? -1 : (r < l ? 1 : 0);
    }
    }
    return 0;
}

const QList<RecordColumn>& all()
{
    static const QList<RecordColumn> columns = makeColumns();
    return columns;
}

const RecordColumn* find(const QString& identifier)
{
    for (const RecordColumn& column : all()) {
        if (column.identifier == identifier)
            return &column;
    }
    return nullptr;
}

bool isShown(const RecordColumn& column, const core::UserSettings& settings)
{
    return column.visibilityKey.isEmpty() || core::settingIsOn(settings.value(column.visibilityKey));
}

QStringList headerMenuColumns()
{
    QStringList identifiers;
    for (const RecordColumn& column : all()) {
        // The join button is hidden only from the preferences, never from the header.
        if (!column.visibilityKey.isEmpty() && column.identifier != QLatin1String("join"))
            identifiers.append(column.identifier);
    }
    return identifiers;
}

QString csvHeading()
{
    QString heading = QStringLiteral("\"Test Name\",");
    for (const RecordColumn& column : all()) {
        for (const ExportField& field : column.exportFields)
            heading += field.csvHeading + QLatin1Char(',');
    }
    return heading + QLatin1Char('\n');
}

} // namespace record_columns

} // namespace scan
