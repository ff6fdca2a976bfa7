#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <cstdlib>
#include <ctime>
#include <functional>

// Event-loop helpers shared by the listener tests.
inline void ensureApplication()
{
    static int argc = 1;
    static char name[] = "sensor_listener_tests";
    static char* argv[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr) {
        // Reading times are local; UTC keeps the expected texts machine-independent.
        qputenv("TZ", "UTC");
        tzset();
        new QCoreApplication(argc, argv);
    }
}

// Turns the event loop until the condition holds or the time is up; answers the condition.
inline bool waitUntil(const std::function<bool()>& condition, int milliseconds = 5000)
{
    for (QDeadlineTimer deadline(milliseconds); !condition();) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}
