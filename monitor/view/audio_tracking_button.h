#pragma once

#include "monitor/beep_schedule.h"

#include <QPushButton>

#include <functional>
#include <optional>

// The on/off switch of audio tracking, bound to a beep schedule: switching it on beeps at the
// rate of the signal its owner reports at that moment.
namespace monitor::view {

class AudioTrackingButton : public QPushButton {
    Q_OBJECT
public:
    AudioTrackingButton(BeepSchedule& schedule, std::function<std::optional<int>()> currentRssi,
                        QWidget* parent = nullptr);

    // Stops the beeping and shows the switch off.
    void switchOff();

private:
    BeepSchedule& schedule_;
    std::function<std::optional<int>()> currentRssi_;
};

} // namespace monitor::view
