#include "monitor/view/monitor_window_panel.h"

#include "plot/widget/plot_view.h"
#include "testsupport/fake_timer_source.h"
#include "testsupport/stub_wireless_interface.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

// Hears the monitored access point at a fixed signal on every directed scan.
class SteadyInterface : public testsupport::StubWirelessInterface {
public:
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray&) override
    {
        platform::ScanResult network;
        network.ssid = QStringLiteral("<i>cafe</i>");
        network.bssid = QStringLiteral("00:11:22:33:44:55");
        network.channelNumber = 6;
        network.channelWidth = core::ChannelWidthCode::Width20MHz;
        network.rssiValue = -45;
        network.noiseMeasurement = -92;
        network.phyModes = platform::PhyB | platform::PhyG | platform::PhyN;
        return {{network}, {}};
    }
};

TEST(MonitorWindowPanel, RescansFillTheFieldsAndGraphAndEscapeStopsThem)
{
    static int argc = 1;
    static char name[] = "monitor";
    static char* argv[] = {name};
    if (QApplication::instance() == nullptr)
        new QApplication(argc, argv);

    testsupport::ManualClock clock(QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC));
    testsupport::FakeTimerSource timers(clock);
    scan::ScanedResultInfo record;
    record.ssid = QStringLiteral("<i>cafe</i>");
    record.bssid = QStringLiteral("00:11:22:33:44:55");
    record.rssi = -70;
    record.noise = -90;
    int beeps = 0;
    monitor::view::MonitorWindowPanel window(record, std::make_shared<SteadyInterface>(), 5, timers, [&] { ++beeps; });
    window.initWindowToShow();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Monitoring - 00:11:22:33:44:55"));

    for (int round = 0; round < 3; ++round) {
        QSignalSpy rescanned(&window.networkMonitor(), &monitor::NetworkMonitor::rescanned);
        timers.advance(5s);
        ASSERT_TRUE(rescanned.wait(5000));
    }
    const auto field = [&](const char* objectName) {
        return window.findChild<QLabel*>(QString::fromLatin1(objectName))->text();
    };
    EXPECT_EQ(field("monitorNetworkSignal"), QStringLiteral("-45, -92 (47)"));
    EXPECT_EQ(field("monitorNetworkChannel"), QStringLiteral("6/20MHz"));
    EXPECT_EQ(field("monitorNetworkName"), QStringLiteral("<i>cafe</i>"));
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("monitorNetworkName"))->textFormat(), Qt::PlainText);
    EXPECT_EQ(field("monitorLegend"), QStringLiteral("Yellow Line = Signal, White Line = Noise"));

    auto* graph = window.findChild<plot::widget::PlotView*>(QStringLiteral("monitorGraph"));
    ASSERT_NE(graph, nullptr);
    const auto* signal = std::get_if<plot::ScatterPlot>(graph->graph().plot(QStringLiteral("rssiSignalMonitorGraph")));
    ASSERT_NE(signal, nullptr);
    EXPECT_EQ(signal->points, (QList<QPointF>{{0, -45}, {5, -45}, {10, -45}}));
    EXPECT_EQ(graph->graph().x.location, 60.0);
    EXPECT_EQ(graph->graph().x.length, -60.0);

    // The switch beeps at the rescanned signal until Escape closes the window.
    window.findChild<QPushButton*>(QStringLiteral("beeperSwitch"))->click();
    timers.advance(900ms);
    EXPECT_EQ(beeps, 2);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(window.networkMonitor().isOpen());
    EXPECT_FALSE(window.findChild<QPushButton*>(QStringLiteral("beeperSwitch"))->isChecked());
    EXPECT_EQ(timers.activeTimerCount(), 0);
}

} // namespace
