#include "sensor/host_address.h"

#include <QHostAddress>
#include <QNetworkInterface>

namespace sensor {

QString hostAddress()
{
    QStringList texts;
    const QList<QHostAddress> addresses = QNetworkInterface::allAddresses();
    texts.reserve(addresses.size());
    for (const QHostAddress& address : addresses)
        texts.append(address.toString());
    return hostAddress(texts);
}

QString hostAddress(const QStringList& addresses)
{
    if (addresses.isEmpty())
        return QString(QLatin1String(""));
    for (const QString& address : addresses) {
        // An IPv4-mapped IPv6 text also has four dot-separated parts; the colon gives it away.
        if (address.startsWith(QLatin1String("127")) || address.contains(QLatin1Char(':')))
            continue;
        if (address.count(QLatin1Char('.')) == 3)
            return address;
    }
    return QStringLiteral("IP address not available");
}

} // namespace sensor
