#include "monitor/view/samples_window.h"

#include "testsupport/fake_timer_source.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

// Fontconfig keeps a cache for the life of the process that the leak checker cannot see freed.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

using namespace std::chrono_literals;

namespace {

scan::ScanedResultInfo sample(int rssi, int noise, int secondsAfterNoon)
{
    scan::ScanedResultInfo record;
    record.rssi = rssi;
    record.noise = noise;
    record.singnalToNoise = rssi - noise;
    record.channel = QStringLiteral("36");
    record.maxDataRate = QStringLiteral("54(B)");
    record.lastSeen = QDateTime(QDate(2024, 5, 1), QTime(12, 0, secondsAfterNoon));
    return record;
}

struct SamplesWindowTest : ::testing::Test {
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "samples";
        static char* argv[] = {name};
        if (QApplication::instance() == nullptr)
            new QApplication(argc, argv);
    }

    testsupport::ManualClock clock{QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC)};
    testsupport::FakeTimerSource timers{clock};
    int beeps = 0;
    monitor::view::WiFiShowSamplesWindow window{timers, [this] { ++beeps; }};
    QPushButton* button() { return window.findChild<QPushButton*>(QStringLiteral("audioTrackingButton")); }
};

TEST_F(SamplesWindowTest, ShowsTheSamplesNewestFirstUnderAPlainTextHeader)
{
    window.showSamples({sample(-45, -92, 20), sample(-50, -91, 10)}, QStringLiteral("<b>cafe</b>\nnet"));
    const auto* header = window.findChild<QLabel*>(QStringLiteral("headerField"));
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->text(), QStringLiteral("SSID: <b>cafe</b>\nnet"));
    EXPECT_EQ(header->textFormat(), Qt::PlainText);

    const auto* table = window.findChild<QTableView*>(QStringLiteral("samplesTable"));
    ASSERT_NE(table, nullptr);
    const QAbstractItemModel& model = *table->model();
    ASSERT_EQ(model.rowCount(), 2);
    const QStringList first{QStringLiteral("12:00:20"), QStringLiteral("-45 dBm"), QStringLiteral("-92 dBm"),
                            QStringLiteral("47 dB"), QStringLiteral("36"), QStringLiteral("54(B) Mbps")};
    for (int column = 0; column < first.size(); ++column)
        EXPECT_EQ(model.index(0, column).data().toString(), first[column]) << column;
    EXPECT_EQ(model.index(1, 1).data().toString(), QStringLiteral("-50 dBm"));
    for (QWidget* control : std::initializer_list<QWidget*>{button(), window.findChild<QTableView*>()})
        EXPECT_FALSE(control->accessibleName().isEmpty());
}

TEST_F(SamplesWindowTest, AudioTrackingFollowsTheNewestSampleAndStopsWhenEscapeCloses)
{
    window.showSamples({sample(-45, -92, 20)}, QStringLiteral("cafe"));
    button()->click();
    timers.advance(900ms);
    EXPECT_EQ(beeps, 2);

    window.updateSamples({sample(-90, -92, 30), sample(-45, -92, 20)});
    EXPECT_EQ(window.beepSchedule().interval(), 900ms);
    timers.advance(900ms);
    EXPECT_EQ(beeps, 3);

    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(button()->isChecked());
    EXPECT_EQ(timers.activeTimerCount(), 0);
    timers.advance(5s);
    EXPECT_EQ(beeps, 3);
}

TEST_F(SamplesWindowTest, StopOfScanningSwitchesItOffAndNoSamplesMeansNoBeep)
{
    window.showSamples({}, QStringLiteral("cafe"));
    button()->click();
    timers.advance(5s);
    EXPECT_EQ(beeps, 0);
    window.updateSamples({sample(-60, -92, 0)});
    timers.advance(600ms);
    EXPECT_EQ(beeps, 1);

    window.scanDidStoppedByUser();
    EXPECT_FALSE(button()->isChecked());
    EXPECT_FALSE(window.beepSchedule().isOn());
    timers.advance(5s);
    EXPECT_EQ(beeps, 1);
}

} // namespace
