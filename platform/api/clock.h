#pragma once

#include <QDateTime>

#include <chrono>
#include <mutex>

// Where the logic and the simulated radio get the time, so every timing rule can run on fake time.
namespace platform {

class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

class SystemClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

// Time that moves only when told to; thread-safe.
class ManualClock : public Clock {
public:
    explicit ManualClock(QDateTime start) : now_(std::move(start)) {}
    QDateTime now() const override
    {
        std::lock_guard lock(mutex_);
        return now_;
    }
    void advance(std::chrono::milliseconds by)
    {
        std::lock_guard lock(mutex_);
        now_ = now_.addMSecs(by.count());
    }

private:
    mutable std::mutex mutex_;
    QDateTime now_;
};

} // namespace platform
