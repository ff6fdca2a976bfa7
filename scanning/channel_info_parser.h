#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace scanning {

// Reads the channel text and security text of every network from the command-line tool's plain
// "-s" listing; the wireless service itself reports neither the secondary-channel suffix nor
// the security text the table shows.
struct ChannelInfo {
    QHash<QString, QString> channelByBssid;   // normalised BSSID -> e.g. "44,+1"
    QHash<QString, QString> securityByBssid;  // normalised BSSID -> e.g. "WPA2(PSK/AES/AES)", "Open"
};

ChannelInfo parseChannelInfo(const QByteArray& scanListing);

// Reads the "-s -x" listing: a property list holding an array with one dictionary a network.
// Each dictionary's plain values (string, integer, real, true, false, data) are kept under their
// keys; nested arrays and dictionaries as lists and maps. nullopt with *error on malformed XML or
// another shape.
std::optional<QList<QVariantMap>> parseNetworkPropertyList(const QByteArray& xml, QString* error);

} // namespace scanning
