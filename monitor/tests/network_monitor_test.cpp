#include "monitor/network_monitor.h"

#include "testsupport/fake_timer_source.h"
#include "testsupport/stub_wireless_interface.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>

using namespace std::chrono_literals;

namespace {

platform::ScanResult heard(const char* bssid, int rssi, int noise)
{
    platform::ScanResult network;
    network.ssid = QStringLiteral("cafe");
    network.ssidData = "cafe";
    network.bssid = QString::fromLatin1(bssid);
    network.channelNumber = 36;
    network.channelWidth = core::ChannelWidthCode::Width80MHz;
    network.rssiValue = rssi;
    network.noiseMeasurement = noise;
    network.phyModes = platform::PhyA | platform::PhyN;
    return network;
}

// Answers each directed scan with the next scripted outcome, and notes where it ran.
class ScriptedInterface : public testsupport::StubWirelessInterface {
public:
    using StubWirelessInterface::StubWirelessInterface;
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray& ssid) override { return next(ssid); }
    platform::ScanOutcome scanForNetworksWithBSSID(const QString& bssid) override { return next(bssid.toUtf8()); }

    std::mutex mutex;
    QList<platform::ScanOutcome> outcomes;
    QList<QByteArray> asked;
    std::atomic<bool> ranOnGuiThread = false;

private:
    platform::ScanOutcome next(const QByteArray& key)
    {
        std::lock_guard lock(mutex);
        ranOnGuiThread = ranOnGuiThread || QThread::currentThread() == QCoreApplication::instance()->thread();
        asked.append(key);
        return outcomes.isEmpty() ? platform::ScanOutcome{} : outcomes.takeFirst();
    }
};

struct NetworkMonitorTest : ::testing::Test {
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "monitor";
        static char* argv[] = {name};
        if (QCoreApplication::instance() == nullptr)
            new QCoreApplication(argc, argv);
    }

    static scan::ScanedResultInfo record()
    {
        scan::ScanedResultInfo r;
        r.ssid = QStringLiteral("cafe");
        r.bssid = QStringLiteral("0:11:22:aa:bb:cc");
        r.rssi = -70;
        r.noise = -90;
        r.channel = QStringLiteral("36");
        r.phyMode = platform::PhyMode11n;
        return r;
    }

    // Lets the interval pass and waits for the directed scan's result to be handed back.
    bool rescan(monitor::NetworkMonitor& m)
    {
        QSignalSpy spy(&m, &monitor::NetworkMonitor::rescanned);
        timers.advance(std::chrono::seconds(m.refreshInterval()));
        return spy.wait(5000) && spy.first().first().toBool();
    }

    testsupport::ManualClock clock{QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC)};
    testsupport::FakeTimerSource timers{clock};
    std::shared_ptr<ScriptedInterface> interface = std::make_shared<ScriptedInterface>();
    int beeps = 0;
};

TEST_F(NetworkMonitorTest, RescanOffTheGuiThreadUpdatesOnlyWhenTheBssidIsFound)
{
    monitor::NetworkMonitor m(record(), interface, 5, timers, [this] { ++beeps; });
    m.initWindowToShow();
    EXPECT_EQ(m.windowTitle(), QStringLiteral("Monitoring - 0:11:22:aa:bb:cc"));
    interface->outcomes = {{{heard("aa:bb:cc:dd:ee:ff", -30, -95), heard("00:11:22:AA:BB:CC", -45, -92)}, {}},
                           {{heard("aa:bb:cc:dd:ee:ff", -30, -95)}, {}},
                           {{}, platform::PlatformError{QStringLiteral("nl80211"), 16, QStringLiteral("Device or resource busy"), {}, {}}}};

    ASSERT_TRUE(rescan(m));
    EXPECT_EQ(interface->asked, QList<QByteArray>{"cafe"});
    EXPECT_FALSE(interface->ranOnGuiThread);
    EXPECT_EQ(m.texts().signal, QStringLiteral("-45, -92 (47)"));
    EXPECT_EQ(m.texts().channel, QStringLiteral("36/80MHz"));
    EXPECT_EQ(m.texts().bssid, QStringLiteral("00:11:22:AA:BB:CC"));
    EXPECT_EQ(m.texts().ibss, QStringLiteral("NO"));
    EXPECT_FALSE(m.texts().phy.isEmpty());
    EXPECT_EQ(m.selectedNetwork().rssi, -45);
    EXPECT_EQ(m.graphPointsForMonitor().dataPoints(), QList<double>{-45});

    // Not heard, then a failed scan: the texts and the graph keep what they had.
    EXPECT_FALSE(rescan(m));
    QSignalSpy failed(&m, &monitor::NetworkMonitor::rescanFailed);
    EXPECT_FALSE(rescan(m));
    ASSERT_EQ(failed.count(), 1);
    EXPECT_EQ(failed.first().first().toString(), QStringLiteral("Device or resource busy"));
    EXPECT_EQ(m.texts().signal, QStringLiteral("-45, -92 (47)"));
    EXPECT_EQ(m.graphPointsForMonitor().noiseDataPoints(), QList<int>{-92});

    // An unmeasured noise gets the band's floor, as the results table shows it.
    interface->outcomes = {{{heard("00:11:22:AA:BB:CC", -50, 0)}, {}}};
    ASSERT_TRUE(rescan(m));
    EXPECT_EQ(m.texts().signal, QStringLiteral("-50, -94 (44)"));
}

TEST_F(NetworkMonitorTest, BeepFollowsEachRescanAndCloseStopsEverything)
{
    monitor::NetworkMonitor m(record(), interface, 2, timers, [this] { ++beeps; });
    m.initWindowToShow();
    m.beeper().switchBeeper(true, m.selectedNetwork().rssi);
    EXPECT_EQ(m.beeper().interval(), 700ms);
    interface->outcomes = {{{heard("00:11:22:aa:bb:cc", -30, -92)}, {}}};
    ASSERT_TRUE(rescan(m));
    EXPECT_EQ(m.beeper().interval(), 300ms);

    m.close();
    EXPECT_FALSE(m.isOpen());
    EXPECT_FALSE(m.beeper().isOn());
    EXPECT_TRUE(m.graphPointsForMonitor().dataPoints().isEmpty());
    const int before = beeps;
    timers.advance(10s);
    EXPECT_EQ(beeps, before);
    EXPECT_EQ(interface->asked.size(), 1);
}

TEST_F(NetworkMonitorTest, OldestGenerationAsksByBssidAndTakesExactlyOneAnswer)
{
    auto oldest = std::make_shared<ScriptedInterface>(platform::InterfaceSnapshot{}, core::InterfaceGeneration::OldestRelease);
    monitor::NetworkMonitor m(record(), oldest, 5, timers, [] {});
    m.initWindowToShow();
    oldest->outcomes = {{{heard("aa:aa:aa:aa:aa:aa", -30, -95), heard("00:11:22:aa:bb:cc", -45, -92)}, {}},
                        {{heard("00:11:22:aa:bb:cc", -45, -92)}, {}}};
    EXPECT_FALSE(rescan(m));
    ASSERT_TRUE(rescan(m));
    EXPECT_EQ(oldest->asked.first(), QByteArray("00:11:22:AA:BB:CC"));
    // This generation fills the fields from the record as the opener gave it.
    EXPECT_EQ(m.texts().signal, QStringLiteral("-70, -90 (20)"));
    EXPECT_EQ(m.texts().channel, QStringLiteral("36"));
}

} // namespace
