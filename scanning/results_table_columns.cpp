#include "scanning/results_table_columns.h"

#include <QHash>

namespace results_columns {
namespace {

ResultsColumn shown(const char* identifier) { return {QLatin1String(identifier), QString()}; }

ResultsColumn optional(const char* identifier)
{
    return {QLatin1String(identifier), QLatin1String(identifier) + QStringLiteral("ColumnVisible")};
}

template <typename T>
int threeWay(const T& a, const T& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

template <typename Field>
RecordComparator byField(Field field)
{
    return [field](const ScanedResultInfo& a, const ScanedResultInfo& b) { return threeWay(a.*field, b.*field); };
}

RecordComparator byText(QString ScanedResultInfo::*field, Qt::CaseSensitivity sensitivity)
{
    return [field, sensitivity](const ScanedResultInfo& a, const ScanedResultInfo& b) {
        return QString::compare(a.*field, b.*field, sensitivity);
    };
}

// The integer a rate text such as "54(B)" or " 5.5" starts with; 0 when it starts with none.
long long leadingInteger(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace()) {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))) {
        negative = text.at(i) == QLatin1Char('-');
        ++i;
    }
    long long value = 0;
    for (; i < text.size() && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'); ++i) {
        if (value < 1'000'000'000'000LL) {
            value = value * 10 + (text.at(i).unicode() - u'0');
        }
    }
    return negative ? -value : value;
}

const QHash<QString, QString>& renamedKeys()
{
    static const QHash<QString, QString> keys{
        {QStringLiteral("sn"), QStringLiteral("singnalToNoise")},
        {QStringLiteral("channel"), QStringLiteral("originalChannel")},
        {QStringLiteral("security"), QStringLiteral("securityModeString")},
        {QStringLiteral("lastseen"), QStringLiteral("lastSeen")},
        {QStringLiteral("phyMode"), QStringLiteral("supportedPHYModes")},
        {QStringLiteral("wps"), QStringLiteral("isWPS")},
        {QStringLiteral("connectedClients"), QStringLiteral("connectedClientCount")},
    };
    return keys;
}

const QHash<QString, RecordComparator>& comparators()
{
    using R = ScanedResultInfo;
    // Names are what people read, so case must not split them; other texts keep their literal order.
    static const QHash<QString, RecordComparator> table{
        {QStringLiteral("ssid"), byText(&R::ssid, Qt::CaseInsensitive)},
        {QStringLiteral("vendorName"), byText(&R::vendorName, Qt::CaseInsensitive)},
        {QStringLiteral("apname"), byText(&R::apname, Qt::CaseInsensitive)},
        {QStringLiteral("bssid"), byText(&R::bssid, Qt::CaseSensitive)},
        {QStringLiteral("supportedPHYModes"), byText(&R::supportedPHYModes, Qt::CaseSensitive)},
        {QStringLiteral("securityModeString"), byText(&R::securityModeString, Qt::CaseSensitive)},
        {QStringLiteral("cc"), byText(&R::cc, Qt::CaseSensitive)},
        {QStringLiteral("bssidTag"), byText(&R::bssidTag, Qt::CaseSensitive)},
        {QStringLiteral("protectionMode"), byText(&R::protectionMode, Qt::CaseSensitive)},
        {QStringLiteral("mobilityDomain"), byText(&R::mobilityDomain, Qt::CaseSensitive)},
        {QStringLiteral("originalChannel"), byField(&R::originalChannel)},
        {QStringLiteral("channelBond"), byField(&R::channelBond)},
        {QStringLiteral("channelWidth"), byField(&R::channelWidth)},
        {QStringLiteral("ibss"), byField(&R::ibss)},
        {QStringLiteral("lastSeen"), byField(&R::lastSeen)},
        {QStringLiteral("noise"), byField(&R::noise)},
        {QStringLiteral("rssi"), byField(&R::rssi)},
        {QStringLiteral("singnalToNoise"), byField(&R::singnalToNoise)},
        {QStringLiteral("numberOfStreams"), byField(&R::numberOfStreams)},
        {QStringLiteral("isWPS"), byField(&R::isWPS)},
        {QStringLiteral("connectedClientCount"), byField(&R::connectedClientCount)},
        {QStringLiteral("channelUtilization"), byField(&R::channelUtilization)},
        {QStringLiteral("maxDataRate"),
         [](const R& a, const R& b) { return threeWay(leadingInteger(a.maxDataRate), leadingInteger(b.maxDataRate)); }},
    };
    return table;
}

}  // namespace

const QList<ResultsColumn>& all()
{
    static const QList<ResultsColumn> columns{
        shown("checkbox"),          shown("ssid"),
        shown("bssid"),             optional("join"),
        optional("channel"),        optional("channelBond"),
        optional("channelWidth"),   optional("ibss"),
        optional("lastseen"),       optional("maxDataRate"),
        optional("noise"),          optional("phyMode"),
        optional("rssi"),           optional("sn"),
        optional("numberOfStreams"), optional("wps"),
        optional("security"),       optional("cc"),
        optional("vendorName"),     optional("apname"),
        optional("connectedClients"), optional("bssidTag"),
        optional("channelUtilization"), optional("protectionMode"),
        optional("mobilityDomain"),
    };
    return columns;
}

QStringList headerMenuColumns()
{
    QStringList identifiers;
    for (const ResultsColumn& column : all()) {
        // The join button is hidden only from the preferences, never from the header.
        if (!column.visibilityKey.isEmpty() && column.identifier != QLatin1String("join")) {
            identifiers.append(column.identifier);
        }
    }
    return identifiers;
}

QString visibilityKey(const QString& identifier)
{
    for (const ResultsColumn& column : all()) {
        if (column.identifier == identifier) {
            return column.visibilityKey;
        }
    }
    return {};
}

QString sortKey(const QString& identifier)
{
    if (identifier == QLatin1String("checkbox") || identifier == QLatin1String("join")) {
        return {};
    }
    const QString key = renamedKeys().value(identifier, identifier);
    return comparators().contains(key) ? key : QString();
}

std::optional<RecordComparator> comparatorForKey(const QString& key)
{
    const auto found = comparators().constFind(key);
    if (found == comparators().constEnd()) {
        return std::nullopt;
    }
    return *found;
}

}  // namespace results_columns
