#include "testsupport/fake_timer_source.h"

#include <algorithm>

namespace testsupport {

struct FakeTimerSource::TimerState {
    QDateTime fireDate;
    std::chrono::milliseconds interval{0};
    bool repeats = false;
    bool valid = true;
    std::function<void()> action;
};

namespace {

class FakeTimer : public scanning::Timer {
public:
    explicit FakeTimer(std::shared_ptr<FakeTimerSource::TimerState> state) : state_(std::move(state)) {}
    ~FakeTimer() override { state_->valid = false; }
    FakeTimer(const FakeTimer&) = delete;
    FakeTimer& operator=(const FakeTimer&) = delete;

    QDateTime fireDate() const override { return state_->fireDate; }
    void setFireDate(const QDateTime& date) override { state_->fireDate = date; }
    void invalidate() override { state_->valid = false; }
    bool isValid() const override { return state_->valid; }

private:
    std::shared_ptr<FakeTimerSource::TimerState> state_;
};

} // namespace

FakeTimerSource::FakeTimerSource(testsupport::ManualClock& clock) : clock_(clock) {}

QDateTime FakeTimerSource::now() const
{
    return clock_.now();
}

std::unique_ptr<scanning::Timer> FakeTimerSource::scheduledTimer(std::chrono::milliseconds interval, bool repeats,
                                                       std::function<void()> action)
{
    auto state = std::make_shared<TimerState>();
    state->fireDate = clock_.now().addMSecs(interval.count());
    state->interval = interval;
    state->repeats = repeats;
    state->action = std::move(action);
    timers_.push_back(state);
    return std::make_unique<FakeTimer>(std::move(state));
}

void FakeTimerSource::advance(std::chrono::milliseconds by)
{
    const QDateTime target = clock_.now().addMSecs(by.count());
    for (;;) {
        std::erase_if(timers_, [](const std::weak_ptr<TimerState>& weak) {
            const auto state = weak.lock();
            return !state || !state->valid;
        });
        std::shared_ptr<TimerState> due;
        for (const auto& weak : timers_) {
            const auto state = weak.lock();
            if (state->fireDate <= target && (!due || state->fireDate < due->fireDate))
                due = state;
        }
        if (!due)
            break;
        if (clock_.now() < due->fireDate)
            clock_.advance(std::chrono::milliseconds(clock_.now().msecsTo(due->fireDate)));
        if (due->repeats)
            due->fireDate = scanning::TimerSource::nextFireAfter(due->fireDate, due->interval, clock_.now());
        else
            due->valid = false;
        const std::function<void()> action = due->action;
        action();
    }
    if (clock_.now() < target)
        clock_.advance(std::chrono::milliseconds(clock_.now().msecsTo(target)));
}

int FakeTimerSource::activeTimerCount() const
{
    return static_cast<int>(std::count_if(timers_.begin(), timers_.end(), [](const std::weak_ptr<TimerState>& weak) {
        const auto state = weak.lock();
        return state && state->valid && state->fireDate < distantFuture();
    }));
}

} // namespace testsupport
