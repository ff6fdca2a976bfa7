#pragma once

#include "platform/api/clock.h"

#include <chrono>
#include <mutex>

namespace testsupport {

// Time that moves only when told to; thread-safe.
class ManualClock : public platform::Clock {
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

} // namespace testsupport
