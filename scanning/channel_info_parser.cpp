#include "scanning/channel_info_parser.h"

#include "scan/scanner_utils.h"

#include <QList>
#include <QRegularExpression>

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

} // namespace

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
        const QString bssid = ScannerUtils::normalizeMAC(fields.at(bssidField).toUpper());
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
