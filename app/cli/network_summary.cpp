#include "app/cli/network_summary.h"

#include "scan/element_ids.h"
#include "scan/element_iterator.h"
#include "scan/suite_reader.h"

#include <QStringList>

#include <cstdint>
#include <optional>

namespace app::cli {
namespace {

namespace element = scan::element;
using scan::ByteReader;

// The body of the first complete element that matches; a cut-off element ends the search.
template <typename Matches>
std::optional<ByteReader> findElement(const QByteArray& elements, Matches matches)
{
    for (const scan::Element& e : scan::Elements(elements)) {
        if (!e.complete())
            break;
        if (matches(e))
            return e.body;
    }
    return std::nullopt;
}

std::optional<ByteReader> findElement(const QByteArray& elements, std::uint8_t id)
{
    return findElement(elements, [id](const scan::Element& e) { return e.id == id; });
}

bool isWpaElement(const scan::Element& e)
{
    return e.id == element::VendorSpecific && e.body.startsWith(0, element::MicrosoftOui)
        && e.body.at(3) == element::WpaVendorType;
}

// The body of the last complete HT Operation element: the one whose offset the parser keeps.
std::optional<ByteReader> lastHtOperation(const QByteArray& elements)
{
    std::optional<ByteReader> last;
    for (const scan::Element& e : scan::Elements(elements)) {
        if (!e.complete())
            break;
        if (e.id == element::HtOperation)
            last = e.body;
    }
    return last;
}

QString cipherName(std::uint8_t type)
{
    switch (type) {
    case 0: return QStringLiteral("GROUP");
    case 1: return QStringLiteral("WEP40");
    case 2: return QStringLiteral("TKIP");
    case 4: return QStringLiteral("AES");
    case 5: return QStringLiteral("WEP104");
    case 8: return QStringLiteral("GCMP");
    case 9: return QStringLiteral("GCMP256");
    case 10: return QStringLiteral("CCMP256");
    default: return QStringLiteral("UNKNOWN");
    }
}

QString akmName(std::uint8_t type)
{
    switch (type) {
    case 1: return QStringLiteral("802.1x");
    case 2: return QStringLiteral("PSK");
    case 3: return QStringLiteral("FT-802.1x");
    case 4: return QStringLiteral("FT-PSK");
    case 5: return QStringLiteral("802.1x-SHA256");
    case 6: return QStringLiteral("PSK-SHA256");
    case 8: return QStringLiteral("SAE");
    case 9: return QStringLiteral("FT-SAE");
    case 11: return QStringLiteral("SuiteB");
    case 12: return QStringLiteral("SuiteB-192");
    case 18: return QStringLiteral("OWE");
    case 24: return QStringLiteral("SAE-EXT");
    default: return QStringLiteral("UNKNOWN");
    }
}

// Authentications only the third generation of protected access allows.
bool isWpa3Akm(std::uint8_t type)
{
    return type == 8 || type == 9 || type == 12 || type == 18 || type == 24;
}

QString joinNames(const QList<std::uint8_t>& types, QString (*name)(std::uint8_t))
{
    QStringList names;
    for (std::uint8_t type : types)
        names.append(name(type));
    return names.join(QLatin1Char(','));
}

QList<std::uint8_t> suiteTypes(scan::SuiteReader& reader)
{
    QList<std::uint8_t> types;
    reader.list([&types](const scan::Suite& suite) { types.append(suite.type); });
    return types;
}

// Fields the element leaves out take their defaults: CCMP for RSN, TKIP for WPA, 802.1X for both.
QString describeSuites(QString label, const ByteReader& body, std::size_t firstSuite, std::uint8_t defaultCipher)
{
    scan::SuiteReader reader(body, firstSuite);
    const auto groupSuite = reader.suite();
    const std::uint8_t group = groupSuite ? groupSuite->type : defaultCipher;
    QList<std::uint8_t> pairwise = suiteTypes(reader);
    if (pairwise.isEmpty())
        pairwise = {defaultCipher};
    QList<std::uint8_t> akms = suiteTypes(reader);
    if (akms.isEmpty())
        akms = {1};
    if (label == u"WPA2") {
        qsizetype wpa3Count = 0;
        for (std::uint8_t akm : akms)
            wpa3Count += isWpa3Akm(akm) ? 1 : 0;
        if (wpa3Count == akms.size())
            label = QStringLiteral("WPA3");
        else if (wpa3Count > 0)
            label = QStringLiteral("WPA2/WPA3");
    }
    return QStringLiteral("%1(%2/%3/%4)")
        .arg(label, joinNames(akms, akmName), joinNames(pairwise, cipherName), cipherName(group));
}

} // namespace

QString securitySummary(const platform::ScanResult& network)
{
    const QByteArray& elements = network.informationElementData;
    QStringList parts;
    // The WPA element body starts with its 4-byte vendor prefix and a 2-byte version; RSN has the version only.
    if (const auto wpa = findElement(elements, isWpaElement))
        parts.append(describeSuites(QStringLiteral("WPA"), *wpa, 6, 2));
    if (const auto rsn = findElement(elements, element::Rsn))
        parts.append(describeSuites(QStringLiteral("WPA2"), *rsn, 2, 4));
    if (!parts.isEmpty())
        return parts.join(QLatin1Char(' '));
    return network.secured ? QStringLiteral("WEP") : QStringLiteral("NONE");
}

QString channelSummary(const platform::ScanResult& network)
{
    QString text = QString::number(network.channelNumber);
    if (network.channelWidth != platform::ChannelWidthCode::Width40MHz)
        return text;
    const auto operation = lastHtOperation(network.informationElementData);
    if (!operation || !operation->has(1))
        return text;
    switch ((*operation)[1] & 0x03) {
    case 1: return text + QStringLiteral(",+1");
    case 3: return text + QStringLiteral(",-1");
    default: return text;
    }
}

bool hasHtCapabilities(const QByteArray& elements)
{
    return findElement(elements, element::HtCapabilities).has_value();
}

} // namespace app::cli
