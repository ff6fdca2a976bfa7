#pragma once

#include <QDateTime>

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

} // namespace platform
