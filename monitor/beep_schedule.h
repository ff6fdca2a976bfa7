#pragma once

#include "scanning/timer_source.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

// Audio tracking: while switched on, a beep repeats at a rate that follows the signal, so a
// person can walk towards an access point without looking at the screen. The rate is fixed
// when the timer starts and changes only when a new sample restarts it.
namespace monitor {

class BeepSchedule {
public:
    // An access point at 0 dBm or above would otherwise ask for a beep every 0 s or less.
    static constexpr std::chrono::milliseconds minimumInterval{50};

    // (0 - rssi) / 100 seconds: -45 dBm beeps every 0.45 s, -90 dBm every 0.9 s.
    static std::chrono::milliseconds beepInterval(int rssi);

    BeepSchedule(scanning::TimerSource& timers, std::function<void()> beep);

    // On with a signal starts beeping at its rate; on without one (no sample yet) waits for
    // the first sample; off stops.
    void switchBeeper(bool on, std::optional<int> rssi);
    // A new sample while switched on restarts the timer at the new rate.
    void distanceChanged(int rssi);
    // Close and a stop of scanning: the timer stops and the switch goes off.
    void switchOff();

    bool isOn() const { return on_; }
    bool isBeeping() const { return timer_ != nullptr; }
    // The running timer's interval; nullopt when none runs.
    std::optional<std::chrono::milliseconds> interval() const;

private:
    void startBeepTimer(int rssi);
    void stopBeepTimer();

    scanning::TimerSource& timers_;
    std::function<void()> beep_;
    bool on_ = false;
    std::chrono::milliseconds interval_{0};
    std::unique_ptr<scanning::Timer> timer_;
};

} // namespace monitor
