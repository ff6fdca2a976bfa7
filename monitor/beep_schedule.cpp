#include "monitor/beep_schedule.h"

#include <algorithm>

namespace monitor {

std::chrono::milliseconds BeepSchedule::beepInterval(int rssi)
{
    // Widened first: a record's signal is untrusted and may be any int.
    const long long milliseconds = (0LL - rssi) * 10LL;
    return std::max(std::chrono::milliseconds(milliseconds), minimumInterval);
}

BeepSchedule::BeepSchedule(scanning::TimerSource& timers, std::function<void()> beep)
    : timers_(timers), beep_(std::move(beep))
{
}

void BeepSchedule::switchBeeper(bool on, std::optional<int> rssi)
{
    on_ = on;
    stopBeepTimer();
    if (on_ && rssi)
        startBeepTimer(*rssi);
}

void BeepSchedule::distanceChanged(int rssi)
{
    if (!on_)
        return;
    stopBeepTimer();
    startBeepTimer(rssi);
}

void BeepSchedule::switchOff()
{
    switchBeeper(false, std::nullopt);
}

std::optional<std::chrono::milliseconds> BeepSchedule::interval() const
{
    if (!timer_)
        return std::nullopt;
    return interval_;
}

void BeepSchedule::startBeepTimer(int rssi)
{
    interval_ = beepInterval(rssi);
    timer_ = timers_.scheduledTimer(interval_, true, beep_);
}

void BeepSchedule::stopBeepTimer()
{
    if (timer_)
        timer_->invalidate();
    timer_.reset();
}

} // namespace monitor
