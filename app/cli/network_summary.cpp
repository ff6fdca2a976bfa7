#include "app/cli/network_summary.h"

#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace cli {
namespace {

constexpr std::uint8_t kIdHtCapabilities = 45;
constexpr std::uint8_t kIdRsn = 48;
constexpr std::uint8_t kIdHtOperation = 61;
constexpr std::uint8_t kIdVendorSpecific = 221;

struct Bytes {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

// The body of the first element with this id (and, for vendor elements, this 4-byte prefix).
std::optional<Bytes> findElement(const QByteArray& elements, std::uint8_t id, const char* vendorPrefix = nullptr)
{
    const auto* data = reinterpret_cast<const std::uint8_t*>(elements.constData());
    const auto total = static_cast<std::size_t>(elements.size());
    std::size_t pos = 0;
    while (pos + 2 <= total) {
        const std::size_t size = data[pos + 1];
        if (size > total - pos - 2)
            break;
        const std::uint8_t* body = data + pos + 2;
        if (data[pos] == id
            && (!vendorPrefix || (size >= 4 && std::equal(body, body + 4, reinterpret_cast<const std::uint8_t*>(vendorPrefix)))))
            return Bytes{body, size};
        pos += 2 + size;
    }
    return std::nullopt;
}

// Reads the suite lists of an RSN or WPA element; a list cut short keeps the suites read so far.
class SuiteReader {
public:
    SuiteReader(Bytes body, std::size_t start) : body_(body), pos_(start) {}

    std::optional<std::uint8_t> suite()
    {
        if (pos_ + 4 > body_.size)
            return std::nullopt;
        const std::uint8_t type = body_.data[pos_ + 3];
        pos_ += 4;
        return type;
    }

    QList<std::uint8_t> suiteList()
    {
        QList<std::uint8_t> suites;
        if (pos_ + 2 > body_.size)
            return suites;
        const unsigned count = body_.data[pos_] | (body_.data[pos_ + 1] << 8);
        pos_ += 2;
        for (unsigned i = 0; i < count; ++i) {
            const auto type = suite();
            if (!type)
                break;
            suites.append(*type);
        }
        return suites;
    }

private:
    Bytes body_;
    std::size_t pos_;
};

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

// Fields the element leaves out take their defaults: CCMP for RSN, TKIP for WPA, 802.1X for both.
QString describeSuites(QString label, Bytes body, std::size_t firstSuite, std::uint8_t defaultCipher)
{
    SuiteReader reader(body, firstSuite);
    const std::uint8_t group = reader.suite().value_or(defaultCipher);
    QList<std::uint8_t> pairwise = reader.suiteList();
    if (pairwise.isEmpty())
        pairwise = {defaultCipher};
    QList<std::uint8_t> akms = reader.suiteList();
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
    if (const auto wpa = findElement(elements, kIdVendorSpecific, "\x00\x50\xF2\x01"))
        parts.append(describeSuites(QStringLiteral("WPA"), *wpa, 6, 2));
    if (const auto rsn = findElement(elements, kIdRsn))
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
    const auto operation = findElement(network.informationElementData, kIdHtOperation);
    if (!operation || operation->size < 2)
        return text;
    switch (operation->data[1] & 0x03) {
    case 1: return text + QStringLiteral(",+1");
    case 3: return text + QStringLiteral(",-1");
    default: return text;
    }
}

bool hasHtCapabilities(const QByteArray& elements)
{
    return findElement(elements, kIdHtCapabilities).has_value();
}

} // namespace cli
