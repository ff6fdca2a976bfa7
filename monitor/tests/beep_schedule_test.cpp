#include "monitor/beep_schedule.h"
#include "testsupport/fake_timer_source.h"

#include <gtest/gtest.h>

#include <climits>

using namespace std::chrono_literals;

namespace {

struct Beeper {
    testsupport::ManualClock clock{QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC)};
    testsupport::FakeTimerSource timers{clock};
    int beeps = 0;
    monitor::BeepSchedule schedule{timers, [this] { ++beeps; }};
};

TEST(BeepSchedule, IntervalFollowsTheSignalWithAPositiveFloor)
{
    const struct {
        int rssi;
        std::chrono::milliseconds interval;
    } cases[] = {{-45, 450ms}, {-90, 900ms}, {-30, 300ms}, {-100, 1000ms}, {-5, 50ms},
                 {-1, 50ms},   {0, 50ms},    {20, 50ms},   {INT_MAX, 50ms}, {INT_MIN, 21474836480ms}};
    for (const auto& c : cases)
        EXPECT_EQ(monitor::BeepSchedule::beepInterval(c.rssi), c.interval) << c.rssi;
}

TEST(BeepSchedule, BeepsAtTheRateFixedWhenTheTimerStarts)
{
    Beeper b;
    b.schedule.switchBeeper(true, -45);
    b.timers.advance(449ms);
    EXPECT_EQ(b.beeps, 0);
    b.timers.advance(1ms);
    EXPECT_EQ(b.beeps, 1);
    b.timers.advance(900ms);
    EXPECT_EQ(b.beeps, 3);
    EXPECT_EQ(b.schedule.interval(), 450ms);
}

TEST(BeepSchedule, NewSampleRestartsTheTimerAtTheNewRate)
{
    Beeper b;
    b.schedule.switchBeeper(true, -90);
    b.timers.advance(800ms);
    b.schedule.distanceChanged(-30);
    // The wait begins anew from the sample: the old timer's fire at 900 ms never comes.
    b.timers.advance(299ms);
    EXPECT_EQ(b.beeps, 0);
    b.timers.advance(1ms);
    EXPECT_EQ(b.beeps, 1);
    b.timers.advance(600ms);
    EXPECT_EQ(b.beeps, 3);
    EXPECT_EQ(b.timers.activeTimerCount(), 1);
}

TEST(BeepSchedule, ZeroDbmAndAboveBeepAtTheMinimum)
{
    for (const int rssi : {0, 7}) {
        Beeper b;
        b.schedule.switchBeeper(true, rssi);
        b.timers.advance(1000ms);
        EXPECT_EQ(b.beeps, 20) << rssi;
    }
}

TEST(BeepSchedule, OffCloseAndStopSilenceIt)
{
    Beeper b;
    b.schedule.switchBeeper(true, -50);
    b.timers.advance(500ms);
    b.schedule.switchOff();
    EXPECT_FALSE(b.schedule.isOn());
    b.timers.advance(5000ms);
    EXPECT_EQ(b.beeps, 1);
    EXPECT_EQ(b.timers.activeTimerCount(), 0);

    // A sample while off does not start it again.
    b.schedule.distanceChanged(-40);
    b.timers.advance(5000ms);
    EXPECT_EQ(b.beeps, 1);
}

TEST(BeepSchedule, SwitchedOnWithoutSamplesWaitsForTheFirst)
{
    Beeper b;
    b.schedule.switchBeeper(true, std::nullopt);
    EXPECT_TRUE(b.schedule.isOn());
    EXPECT_FALSE(b.schedule.isBeeping());
    b.timers.advance(5000ms);
    EXPECT_EQ(b.beeps, 0);
    b.schedule.distanceChanged(-60);
    b.timers.advance(600ms);
    EXPECT_EQ(b.beeps, 1);
}

} // namespace
