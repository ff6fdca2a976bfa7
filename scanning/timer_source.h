#pragma once

#include "platform/api/clock.h"

#include <QDateTime>

#include <chrono>
#include <functional>
#include <memory>

// Timers whose next fire date can be read and moved, so a pause can park a timer in the
// distant future and a resume can put back the wait that was left. The real source runs on
// the Qt event loop; tests use a fake one that fires only when they move their clock.

namespace scanning {

// One scheduled timer. Destroying it invalidates it.
class Timer {
public:
    virtual ~Timer() = default;
    virtual QDateTime fireDate() const = 0;
    // A date at or beyond TimerSource::distantFuture() parks the timer until it is set again.
    virtual void setFireDate(const QDateTime& date) = 0;
    virtual void invalidate() = 0;
    virtual bool isValid() const = 0;
};

class TimerSource {
public:
    virtual ~TimerSource() = default;
    virtual QDateTime now() const = 0;
    // The first fire is one interval from now; a repeating timer then keeps its rhythm from
    // its fire date, skipping fires it missed. A one-shot timer is invalid after it fired.
    virtual std::unique_ptr<Timer> scheduledTimer(std::chrono::milliseconds interval, bool repeats,
                                                  std::function<void()> action) = 0;
    // A date no timer reaches.
    static QDateTime distantFuture();
    // A repeating timer's next fire date after firing at fireDate, seen at now: whole intervals
    // later, so it keeps its rhythm after a late fire and does not make up the fires it missed.
    static QDateTime nextFireAfter(QDateTime fireDate, std::chrono::milliseconds interval, const QDateTime& now);
};

// QTimer-based; timers fire on the event loop of the thread that scheduled them.
class QtTimerSource : public TimerSource {
public:
    explicit QtTimerSource(const platform::Clock& clock);
    QDateTime now() const override;
    std::unique_ptr<Timer> scheduledTimer(std::chrono::milliseconds interval, bool repeats,
                                          std::function<void()> action) override;

private:
    const platform::Clock& clock_;
};

} // namespace scanning
