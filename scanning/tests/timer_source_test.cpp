#include "scanning/timer_source.h"
#include "platform/api/clock.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

TEST(QtTimerSource, FiresOnTheEventLoopUntilParked)
{
    static int argc = 1;
    static char name[] = "timer_source_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);
    platform::SystemClock clock;
    scanning::QtTimerSource timers(clock);
    QEventLoop loop;
    int fires = 0;
    std::unique_ptr<scanning::Timer> timer;
    timer = timers.scheduledTimer(20ms, true, [&] {
        if (++fires == 2) {
            timer->setFireDate(scanning::TimerSource::distantFuture());
            loop.quit();
        }
    });
    QTimer::singleShot(5000, &loop, &QEventLoop::quit);
    loop.exec();
    ASSERT_EQ(fires, 2);
    QTimer::singleShot(100, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(fires, 2);
}

} // namespace
