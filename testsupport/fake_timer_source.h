#pragma once

#include "scanning/timer_source.h"
#include "testsupport/manual_clock.h"

#include <memory>
#include <vector>

namespace testsupport {

// Fires its timers, in date order, only inside advance(), moving the clock to each fire date.
class FakeTimerSource : public scanning::TimerSource {
public:
    explicit FakeTimerSource(testsupport::ManualClock& clock);
    QDateTime now() const override;
    std::unique_ptr<scanning::Timer> scheduledTimer(std::chrono::milliseconds interval, bool repeats,
                                          std::function<void()> action) override;
    void advance(std::chrono::milliseconds by);
    int activeTimerCount() const;

    struct TimerState;

private:
    testsupport::ManualClock& clock_;
    std::vector<std::weak_ptr<TimerState>> timers_;
};

} // namespace testsupport
