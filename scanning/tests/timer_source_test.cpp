#include "testsupport/fake_timer_source.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

#include <vector>

using namespace std::chrono_literals;

namespace {

const QDateTime start(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);

TEST(FakeTimerSource, KeepsTheRhythmAndNeverFiresDroppedTimers)
{
    testsupport::ManualClock clock(start);
    testsupport::FakeTimerSource timers(clock);
    std::vector<qint64> repeatingFires;
    int oneShotFires = 0;
    int droppedFires = 0;
    auto repeating = timers.scheduledTimer(2s, true, [&] { repeatingFires.push_back(start.msecsTo(clock.now())); });
    auto oneShot = timers.scheduledTimer(1500ms, false, [&] { ++oneShotFires; });
    auto invalidated = timers.scheduledTimer(1s, true, [&] { ++droppedFires; });
    invalidated->invalidate();
    timers.scheduledTimer(1s, true, [&] { ++droppedFires; }).reset();
    // A timer may drop another one from its action, as the stop button drops the scan timer.
    std::unique_ptr<scanning::Timer> victim = timers.scheduledTimer(2s, true, [&] { ++droppedFires; });
    auto killer = timers.scheduledTimer(1s, false, [&] { victim.reset(); });

    timers.advance(7s);

    EXPECT_EQ(repeatingFires, (std::vector<qint64>{2000, 4000, 6000}));
    EXPECT_EQ(oneShotFires, 1);
    EXPECT_EQ(droppedFires, 0);
    EXPECT_FALSE(oneShot->isValid());
    EXPECT_EQ(repeating->fireDate(), start.addSecs(8));
    EXPECT_EQ(clock.now(), start.addSecs(7));
}

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
