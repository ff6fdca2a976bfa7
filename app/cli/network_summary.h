#pragma once

#include "platform/api/scan_result.h"

#include <QByteArray>
#include <QString>

// The short texts the command-line tool prints for a network's security and channel, read
// straight from the beacon's elements. Malformed elements give what could be read, never more.
namespace app::cli {

// "WPA2(PSK/AES/AES)", "WPA(PSK/TKIP/TKIP) WPA2(PSK/AES,TKIP/TKIP)", "WPA3(SAE/AES/AES)", "WEP",
// "NONE": per element its authentication, pairwise ciphers and group cipher. Never empty and
// free of line breaks, so each word stays a field of the tool's line.
QString securitySummary(const platform::ScanResult& network);

// The channel number, with ",+1" or ",-1" for a 40 MHz network whose secondary channel lies
// above or below; wider networks print the number alone, as their secondary is not one channel.
QString channelSummary(const platform::ScanResult& network);

bool hasHtCapabilities(const QByteArray& elements);

} // namespace app::cli
