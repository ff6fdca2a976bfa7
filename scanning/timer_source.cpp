#include "scanning/timer_source.h"

#include <QTimer>

#include <algorithm>
#include <limits>

namespace scanning {

namespace {

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
            fireDate_ = TimerSource::nextFireAfter(fireDate_, interval_, now);
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

QDateTime TimerSource::nextFireAfter(QDateTime fireDate, std::chrono::milliseconds interval, const QDateTime& now)
{
    const qint64 step = std::max<qint64>(interval.count(), 1);
    fireDate = fireDate.addMSecs(step);
    if (fireDate <= now) {
        const qint64 behind = fireDate.msecsTo(now);
        fireDate = fireDate.addMSecs((behind / step + 1) * step);
    }
    return fireDate;
}

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

} // namespace scanning
