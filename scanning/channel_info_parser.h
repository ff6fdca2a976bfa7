#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

// Reads the channel text and security text of every network from the command-line tool's plain
// "-s" listing; the wireless service itself reports neither the secondary-channel suffix nor
// the security text the table shows.
struct ChannelInfo {
    QHash<QString, QString> channelByBssid;   // normalised BSSID -> e.g. "44,+1"
    QHash<QString, QString> securityByBssid;  // normalised BSSID -> e.g. "WPA2(PSK/AES/AES)", "Open"
};

ChannelInfo parseChannelInfo(const QByteArray& scanListing);
