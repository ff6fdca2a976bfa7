#include "scanning/timer_source.h"

#include <QTimer>

#include <algorithm>
#include <limits>

namespace {

// Fire dates move forward by whole intervals, so a repeating timer keeps its rhythm after a
// late fire instead of drifting, and fires it missed are not made up.
QDateTime nextFireAfter(QDateTime fireDate, std::chrono::milliseconds interval, const QDateTime& now)
{
    const qint64 step = std::max<qint64>(interval.count(), 1);
    fireDate = fireDate.addMSecs(step);
    if (fireDate <= now) {
        const qint64 behind = fireDate.msecsTo(now);
        fireDate = fireDate.addMSecs((behind / step + 1) * step);
    }
    return fireDate;
}

class QtTimer : public Timer {
public:
    QtTimer(const platform::Clock& clock, std::chrono::milliseconds interval, bool repeats,
            std::function<void()> action)
        : clock_(clock), interval_(interval), repeats_(repeats), action_(std::move(action)),
          fireDate_(clock.now().addMSecs(interval.count()))
    {
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, [this] { fire(); });
        arm();
    }

    QDateTime fireDate() const override { return fireDate_; }
    void setFireDate(const QDateTime& date) override
    {
        fireDate_ = date;
        arm();
    }
    void invalidate() override
    {
        valid_ = false;
        timer_.stop();
    }
    bool isValid() const override { return valid_; }

private:
    void arm()
    {
        if (!valid_ || fireDate_ >= TimerSource::distantFuture()) {
            timer_.stop();
            return;
        }
        // QTimer takes an int; a longer wait is re-armed when the shorter one ends.
        const qint64 wait = std::clamp<qint64>(clock_.now().msecsTo(fireDate_), 0, std::numeric_limits<int>::max());
        timer_.start(static_cast<int>(wait));
    }

    void fire()
    {
        const QDateTime now = clock_.now();
        if (now < fireDate_) {
            arm();
            return;
        }
        if (repeats_) {
            fireDate_ = nextFireAfter(fireDate_, interval_, now);
            arm();
        } else {
            valid_ = false;
        }
        // The action may destroy this timer, so nothing of it is touched afterwards.
        const std::function<void()> action = action_;
        action();
    }

    const platform::Clock& clock_;
    std::chrono::milliseconds interval_;
    bool repeats_;
    std::function<void()> action_;
    QDateTime fireDate_;
    bool valid_ = true;
    QTimer timer_;
};

} // namespace

QDateTime TimerSource::distantFuture()
{
    return QDateTime(QDate(4001, 1, 1), QTime(0, 0), Qt::UTC);
}

QtTimerSource::QtTimerSource(const platform::Clock& clock) : clock_(clock) {}

QDateTime QtTimerSource::now() const
{
    return clock_.now();
}

std::unique_ptr<Timer> QtTimerSource::scheduledTimer(std::chrono::milliseconds interval, bool repeats,
                                                     std::function<void()> action)
{
    return std::make_unique<QtTimer>(clock_, interval, repeats, std::move(action));
}

struct FakeTimerSource::TimerState {
    QDateTime fireDate;
    std::chrono::milliseconds interval{0};
    bool repeats = false;
    bool valid = true;
    std::function<void()> action;
};

namespace {

class FakeTimer : public Timer {
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

FakeTimerSource::FakeTimerSource(platform::ManualClock& clock) : clock_(clock) {}

QDateTime FakeTimerSource::now() const
{
    return clock_.now();
}

std::unique_ptr<Timer> FakeTimerSource::scheduledTimer(std::chrono::milliseconds interval, bool repeats,
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
            due->fireDate = nextFireAfter(due->fireDate, due->interval, clock_.now());
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
