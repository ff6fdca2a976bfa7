#pragma once

#include "platform/linux/nl80211_parsers.h"

// Tells which nl80211 event ends a scan this process is waiting for. The kernel runs one scan
// per wiphy and announces its start and its end to every listener, so a completion that was
// already on its way when the wait began belongs to an earlier scan and must not end the wait.
namespace platform::nl80211 {

class ScanCompletion {
public:
    // waitForStart: true after triggering a scan ourselves; false when joining a scan that
    // was already running, whose start went by before anyone listened.
    ScanCompletion(int ifindex, bool waitForStart);

    // True once the scan has ended, with results or aborted.
    bool observe(const Event& event);
    bool aborted() const { return aborted_; }

private:
    int ifindex_;
    bool started_;
    bool aborted_ = false;
};

} // namespace platform::nl80211
