#include "interface/interface_info_controller.h"

#include "testsupport/fake_timer_source.h"
#include "testsupport/manual_clock.h"
#include "testsupport/stub_wireless_interface.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <atomic>

using namespace connection;
using namespace std::chrono_literals;

namespace {

class ScriptedTool : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString& commandLine) override
    {
        lastCommand = commandLine;
        ++runs;
        return {output, {}, 0, true};
    }
    QByteArray output = "  agrCtlRSSI: -50\n         MCS: 5\n";
    QString lastCommand;
    std::atomic<int> runs{0};
};

class InterfaceInfoControllerTest : public testing::Test {
protected:
    InterfaceInfoControllerTest()
    {
        link_.interfaceName = "wlan0";
        link_.powerOn = true;
        link_.interfaceState = platform::InterfaceStateRunning;
        link_.bssid = "02:00:00:00:00:01";
        link_.rssiValue = -60;
        link_.noiseMeasurement = -95;
        link_.transmitRate = 65;
        interface_ = std::make_shared<testsupport::StubWirelessInterface>(link_);
        controller_ = std::make_unique<InterfaceInfoController>(interface_, timers_, tool_, "skyvane-cli --simulate -I",
                                                                [] { return std::nullopt; });
    }
    static QCoreApplication& app()
    {
        static int argc = 1;
        static char name[] = "interface_tests";
        static char* argv[] = {name, nullptr};
        static QCoreApplication instance(argc, argv);
        return instance;
    }

    QCoreApplication& app_ = app();
    platform::InterfaceSnapshot link_;
    testsupport::ManualClock clock_{QDateTime(QDate(2026, 1, 2), QTime(10, 0), Qt::UTC)};
    testsupport::FakeTimerSource timers_{clock_};
    ScriptedTool tool_;
    std::shared_ptr<testsupport::StubWirelessInterface> interface_;
    std::unique_ptr<InterfaceInfoController> controller_;
};

TEST_F(InterfaceInfoControllerTest, SamplesAccumulateOnEveryTabNewestFirstAndCappedAt300)
{
    controller_->startInterfaceTabGraphRefresh();
    timers_.advance(299s);
    interface_->link.transmitRate = 0;
    timers_.advance(2s);
    const auto& samples = controller_->graphDataPoints();
    ASSERT_EQ(samples.size(), 300);
    EXPECT_EQ(samples.first().rssi, -100);
    EXPECT_EQ(samples.first().noise, -100);
    EXPECT_EQ(samples.first().bssid, "00:00:00:AA:BB:CC");
    EXPECT_EQ(samples.at(2).rssi, -60);
    EXPECT_EQ(samples.at(2).singnalToNoise, 35);
    EXPECT_GT(samples.first().lastSeen, samples.last().lastSeen);
    EXPECT_EQ(tool_.runs, 0);  // the tool runs only for a shown tab
    EXPECT_TRUE(controller_->fields().rssi.isEmpty());
}

TEST_F(InterfaceInfoControllerTest, ToolRunsOffThisThreadAndReArmsOnlyWhileTheTabIsShown)
{
    controller_->setTabShown(true);
    controller_->waitForBackgroundWork();
    EXPECT_EQ(tool_.runs, 1);
    EXPECT_EQ(tool_.lastCommand, "skyvane-cli --simulate -I");
    EXPECT_EQ(controller_->mcsInx(), "5");
    EXPECT_TRUE(controller_->isToolTimerPending());
    controller_->updateInterfaceInfoTab();
    EXPECT_EQ(controller_->fields().mcsIndex, "5");
    EXPECT_EQ(controller_->fields().rssi, "-60 dBm");

    timers_.advance(30s);
    controller_->waitForBackgroundWork();
    EXPECT_EQ(tool_.runs, 2);
    controller_->setTabShown(false);
    timers_.advance(30s);
    controller_->waitForBackgroundWork();
    EXPECT_EQ(tool_.runs, 3);  // the armed run still happens, but arms no further one
    EXPECT_FALSE(controller_->isToolTimerPending());
    timers_.advance(60s);
    EXPECT_EQ(tool_.runs, 3);
}

TEST_F(InterfaceInfoControllerTest, SwitchingInterfacesPausesAndResumesTheRefresh)
{
    controller_->startInterfaceTabGraphRefresh();
    timers_.advance(1s);
    ASSERT_EQ(controller_->graphDataPoints().size(), 1);
    controller_->pauseTimer();
    EXPECT_TRUE(controller_->isRefreshPaused());
    timers_.advance(5s);
    EXPECT_EQ(controller_->graphDataPoints().size(), 1);
    controller_->resumeTimer();
    timers_.advance(1s);
    EXPECT_EQ(controller_->graphDataPoints().size(), 2);

    auto other = std::make_shared<testsupport::StubWirelessInterface>(link_);
    other->link.rssiValue = -40;
    controller_->interfaceSelected(other);
    EXPECT_FALSE(controller_->isRefreshPaused());
    timers_.advance(1s);
    EXPECT_EQ(controller_->graphDataPoints().first().rssi, -40);
}

} // namespace

#include "interface/interface_graph_data.h"

namespace {

TEST(InterfaceGraph, XIsSecondsBeforeTheNewestSampleAndHoverNamesTheNearest)
{
    const QDateTime newest(QDate(2026, 1, 2), QTime(10, 0, 30), Qt::LocalTime);
    InterfaceSamples samples;
    samples.add({-70, -95, "a", 25, newest.addSecs(-60)});
    samples.add({-60, -92, "a", 32, newest.addSecs(-1)});
    samples.add({-55, -90, "a", 35, newest});
    const InterfaceGraphData data = interfaceGraphData(samples.samples());
    ASSERT_EQ(data.signal.size(), 3);
    EXPECT_EQ(data.signal.at(0), QPointF(0, -55));
    EXPECT_EQ(data.noise.at(1), QPointF(-1, -92));
    EXPECT_EQ(data.signal.at(2).x(), -60);
    EXPECT_EQ(sampleNearest(data, -58, 5), 2);
    EXPECT_EQ(sampleNearest(data, -30, 5), std::nullopt);
    EXPECT_EQ(hoverText(data, 2), "Signal: -70 dBm\nNoise: -95 dBm\n09:59:30");
}

} // namespace
