#include "scanning/channel_info_parser.h"

#include "scan/scanner_utils.h"

#include <QList>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace scanning {

namespace {

// The network name fills the first 32 characters, right-aligned; fields follow after it.
constexpr int nameColumns = 32;

constexpr int bssidField = 0;
constexpr int channelField = 2;
constexpr int firstSecurityField = 5;  // after RSSI, CHANNEL, HT and CC

bool looksLikeAddress(const QString& text)
{
    static const QRegularExpression address(QStringLiteral("^[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}$"));
    return address.match(text).hasMatch();
}

// Reads the value whose start element the reader is on, up to and including its end element.
QVariant readPlistValue(QXmlStreamReader& reader)
{
    const QString kind = reader.name().toString();
    if (kind == u"true" || kind == u"false") {
        reader.skipCurrentElement();
        return kind == u"true";
    }
    if (kind == u"array") {
        QVariantList items;
        while (reader.readNextStartElement())
            items.append(readPlistValue(reader));
        return items;
    }
    if (kind == u"dict") {
        QVariantMap entries;
        QString key;
        while (reader.readNextStartElement()) {
            if (reader.name() == u"key")
                key = reader.readElementText();
            else
                entries.insert(key, readPlistValue(reader));
        }
        return entries;
    }
    const QString text = reader.readElementText();
    if (kind == u"integer")
        return text.toLongLong();
    if (kind == u"real")
        return text.toDouble();
    if (kind == u"data")
        return QByteArray::fromBase64(text.simplified().toLatin1());
    return text;
}

} // namespace

std::optional<QList<QVariantMap>> parseNetworkPropertyList(const QByteArray& xml, QString* error)
{
    QXmlStreamReader reader(xml);
    QList<QVariantMap> networks;
    bool sawArray = false;
    if (reader.readNextStartElement() && reader.name() == u"plist" && reader.readNextStartElement() &&
        reader.name() == u"array") {
        sawArray = true;
        while (reader.readNextStartElement()) {
            const QVariant network = readPlistValue(reader);
            if (network.typeId() != QMetaType::QVariantMap) {
                *error = QStringLiteral("a network entry is not a dictionary");
                return std::nullopt;
            }
            networks.append(network.toMap());
        }
    }
    if (reader.hasError()) {
        *error = reader.errorString();
        return std::nullopt;
    }
    if (!sawArray) {
        *error = QStringLiteral("the listing is not a property list holding an array");
        return std::nullopt;
    }
    return networks;
}

ChannelInfo parseChannelInfo(const QByteArray& scanListing)
{
    static const QRegularExpression blanks(QStringLiteral("[ \t]+"));
    ChannelInfo info;
    const QStringList lines = QString::fromUtf8(scanListing).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.size() <= nameColumns)
            continue;
        QString rest = line.mid(nameColumns);
        rest.replace(blanks, QStringLiteral(" "));
        const QStringList fields = rest.trimmed().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        // The heading line carries words where the address belongs.
        if (fields.size() <= channelField || !looksLikeAddress(fields.at(bssidField)))
            continue;
        const QString bssid = scan::ScannerUtils::normalizeMAC(fields.at(bssidField).toUpper());
        info.channelByBssid.insert(bssid, fields.at(channelField));
        if (fields.size() <= firstSecurityField)
            continue;
        QString security = fields.at(firstSecurityField);
        for (qsizetype i = firstSecurityField + 1; i < fields.size(); ++i)
            security += QStringLiteral(", %1").arg(fields.at(i));
        info.securityByBssid.insert(bssid, security == QLatin1String("NONE") ? QStringLiteral("Open") : security);
    }
    return info;
}

} // namespace scanning
