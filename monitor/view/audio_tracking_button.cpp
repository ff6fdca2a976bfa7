#include "monitor/view/audio_tracking_button.h"

#include <QSignalBlocker>

namespace monitor::view {

AudioTrackingButton::AudioTrackingButton(BeepSchedule& schedule, std::function<std::optional<int>()> currentRssi,
                                         QWidget* parent)
    : QPushButton(QStringLiteral("Audio Tracking"), parent), schedule_(schedule), currentRssi_(std::move(currentRssi))
{
    setObjectName(QStringLiteral("audioTrackingButton"));
    setAccessibleName(QStringLiteral("Audio tracking"));
    setAccessibleDescription(QStringLiteral("Beeps faster as the signal grows stronger"));
    setCheckable(true);
    connect(this, &QPushButton::toggled, this,
            [this](bool on) { schedule_.switchBeeper(on, on ? currentRssi_() : std::nullopt); });
}

void AudioTrackingButton::switchOff()
{
    schedule_.switchOff();
    const QSignalBlocker blocker(this);
    setChecked(false);
}

} // namespace monitor::view
