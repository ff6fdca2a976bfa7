#pragma once

#include "core/user_settings.h"
#include "scan/scaned_result_info.h"

#include <QString>

#include <optional>

// The texts of the summary window shown at quit: the last connected network and the counts of
// networks seen, in total, on 2.4 GHz and on 5 GHz.
namespace app::desktop {

struct ReviewSummary {
    QString ssid;
    QString rssi;
    QString noise;
    QString channel;
    QString band;
    QString security;
    QString totalNetworks;
    QString networks24Ghz;
    QString networks5Ghz;

    static ReviewSummary from(const std::optional<scan::ScanedResultInfo>& connected,
                              const core::UserSettings& settings);
};

} // namespace app::desktop
