#include "monitor/monitor_texts.h"

#include "scan/scanner_utils.h"

namespace monitor {

QString signalText(int rssi, int noise)
{
    // Widened: a record's numbers are untrusted and their difference must not overflow.
    return QStringLiteral("%1, %2 (%3)").arg(rssi).arg(noise).arg(static_cast<long long>(rssi) - noise);
}

QString channelText(int channel, int widthMhz)
{
    return QStringLiteral("%1/%2MHz").arg(channel).arg(widthMhz);
}

QString ibssText(bool ibss)
{
    return ibss ? QStringLiteral("YES") : QStringLiteral("NO");
}

MonitorTexts initialTexts(const scan::ScanedResultInfo& record)
{
    MonitorTexts texts;
    texts.name = record.ssid;
    texts.security = record.securityModeString;
    texts.channel = record.channel.isEmpty() ? QString::number(record.originalChannel) : record.channel;
    texts.signal = signalText(record.rssi, record.noise);
    texts.bssid = scan::ScannerUtils::normalizeMAC(record.bssid);
    texts.phy = record.supportedPHYModes;
    texts.ibss = ibssText(record.ibss != 0);
    texts.vendor = record.vendorName.isEmpty() ? scan::ScannerUtils::vendorNameForMAC(record.bssid) : record.vendorName;
    return texts;
}

} // namespace monitor
