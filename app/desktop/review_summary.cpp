#include "app/desktop/review_summary.h"

#include "scan/value_transformers.h"

namespace app::desktop {
namespace {

QString orUnknown(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("N/A") : text;
}

std::optional<long long> count(const core::UserSettings& settings, const char* key)
{
    bool ok = false;
    const long long value = settings.value(QString::fromLatin1(key)).toLongLong(&ok);
    return ok && value >= 0 ? std::optional(value) : std::nullopt;
}

} // namespace

ReviewSummary ReviewSummary::from(const std::optional<scan::ScanedResultInfo>& connected,
                                  const core::UserSettings& settings)
{
    ReviewSummary summary;
    const scan::SignalToStringTransformer signal;
    const scan::ChannelBandTransformer band;
    summary.ssid = orUnknown(connected ? connected->ssid : QString());
    summary.rssi = orUnknown(connected ? signal.transformedValue(connected->rssi) : QString());
    summary.noise = orUnknown(connected ? signal.transformedValue(connected->noise) : QString());
    summary.channel = orUnknown(connected ? connected->channel : QString());
    summary.band = orUnknown(connected ? band.transformedValue(connected->channelBond) : QString());
    summary.security = orUnknown(connected ? connected->securityModeString : QString());

    const auto total = count(settings, "TOTAL_NETWORKS");
    const auto band24 = count(settings, "TOTAL_24MHZ_NETWORKS");
    summary.totalNetworks = total ? QString::number(*total) : QStringLiteral("N/A");
    summary.networks24Ghz = band24 ? QString::number(*band24) : QStringLiteral("N/A");
    // The database keeps only these two counts; every other network is on 5 GHz.
    summary.networks5Ghz = total && band24 && *total >= *band24 ? QString::number(*total - *band24)
                                                                 : QStringLiteral("N/A");
    return summary;
}

} // namespace app::desktop
