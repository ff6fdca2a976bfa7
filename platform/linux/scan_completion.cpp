#include "platform/linux/scan_completion.h"

#include <linux/nl80211.h>

namespace platform::nl80211 {

ScanCompletion::ScanCompletion(int ifindex, bool waitForStart) : ifindex_(ifindex), started_(!waitForStart) {}

bool ScanCompletion::observe(const Event& event)
{
    if (event.ifindex != ifindex_)
        return false;
    switch (event.command) {
    case NL80211_CMD_TRIGGER_SCAN:
        started_ = true;
        return false;
    case NL80211_CMD_NEW_SCAN_RESULTS:
    case NL80211_CMD_SCAN_ABORTED:
        if (!started_)
            return false;
        aborted_ = event.command == NL80211_CMD_SCAN_ABORTED;
        return true;
    default:
        return false;
    }
}

} // namespace platform::nl80211
