#include "graphs/signal_annotation.h"

#include "scan/date_format.h"
#include "scan/scaned_result_info.h"

namespace graphs {

namespace {

const QString noData = QStringLiteral("No Data");

} // namespace

QString SignalAnnotation::text(const scan::ScanedResultInfo* record) const
{
    QString text;
    if (showRSSI)
        text += QStringLiteral(" RSSI: %1 \n").arg(record ? QStringLiteral("%1 dBm").arg(record->rssi) : noData);
    if (showNoise)
        text += QStringLiteral("Noise: %1 \n").arg(record ? QStringLiteral("%1 dBm").arg(record->noise) : noData);
    if (showSNR)
        text += QStringLiteral("  SNR: %1 \n").arg(record ? QStringLiteral("%1 dB").arg(record->singnalToNoise) : noData);
    text += QStringLiteral(" Time: %1").arg(record ? scan::DateFormat::format(QStringLiteral("hh:mm:ss"), record->lastSeen) : QString());
    return text;
}

} // namespace graphs
