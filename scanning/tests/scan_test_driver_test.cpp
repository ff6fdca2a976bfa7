#include "testsupport/scanned_network.h"
#include "testsupport/stub_wireless_interface.h"
#include "core/memory_settings.h"
#include "scanning/scan_test_driver.h"

#include "scan/scanner_utils.h"
#include "testsupport/fake_timer_source.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <tuple>

using namespace std::chrono_literals;

void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

QStringList logged;

void captureLog(QtMsgType, const QMessageLogContext&, const QString& text)
{
    logged.append(text);
}

using testsupport::scannedNetwork;

platform::ScanOutcome failure(int code)
{
    return {{}, platform::PlatformError{QStringLiteral("test"), code, QStringLiteral("radio busy"), {}, {}}};
}

// Scripted scans; a closed gate holds a scan inside the platform call, as a slow radio would.
class FakeInterface : public testsupport::StubWirelessInterface {
public:
    QString interfaceName() const override { return QStringLiteral("wlan9"); }
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray&) override
    {
        std::unique_lock lock(mutex_);
        gateChanged_.wait(lock, [this] { return gateOpen_; });
        ++scans;
        if (outcomes.size() > 1) {
            platform::ScanOutcome next = outcomes.front();
            outcomes.pop_front();
            return next;
        }
        return outcomes.empty() ? platform::ScanOutcome{} : outcomes.front();
    }
    QList<platform::ScanResult> cachedScanResults() const override { return cached; }

    void setGateOpen(bool open)
    {
        {
            std::lock_guard lock(mutex_);
            gateOpen_ = open;
        }
        gateChanged_.notify_all();
    }

    // Changed only while no scan is in flight.
    std::deque<platform::ScanOutcome> outcomes;
    QList<platform::ScanResult> cached;
    int scans = 0;

private:
    mutable std::mutex mutex_;
    std::condition_variable gateChanged_;
    bool gateOpen_ = true;
};

class CannedRunner : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString& commandLine) override
    {
        std::lock_guard lock(mutex);
        commands.append(commandLine);
        return output;
    }
    std::mutex mutex;
    QStringList commands;
    platform::CommandOutput output{{}, {}, 0, true};
};

class RecordingListener : public scanning::ScanResultsListener {
public:
    void setCurrentTest(const std::shared_ptr<scanning::WiFiScanTest>& test) override { current = test; }
    void reset() override { selection.clear(); }
    void clearView() override { current.reset(); }
    void updateView(const std::shared_ptr<scanning::WiFiScanTest>&) override {}
    void scanDidStartedByUser(const std::shared_ptr<scanning::WiFiScanTest>&) override { running = true; }
    void scanDidStoppedByUser() override { running = false; }
    QStringList selectedBssids() const override { return selection; }
    void setSelectedBssids(const QStringList& bssids) override { selection = bssids; }
    bool shouldPlotAll() const override { return false; }

    std::shared_ptr<scanning::WiFiScanTest> current;
    QStringList selection;
    bool running = false;
};

const QDateTime launch(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);

class ScanTestDriverTest : public testing::Test {
protected:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "scan_driver_tests";
        static char* argv[] = {name, nullptr};
        if (!QCoreApplication::instance())
            new QCoreApplication(argc, argv);
        QLoggingCategory::setFilterRules(QStringLiteral("skyvane.*=true"));
        interface->outcomes = {{{scannedNetwork("00:0b:86:ab:34:80", "Lab", 44, -60), scannedNetwork("3c:a6:2f:38:f3:e0", "Home", 6, -44)}, {}}};
        logged.clear();
        qInstallMessageHandler(captureLog);
        database.updateDatabase();
        driver.setResultsListener(&listener);
        driver.setRefreshIntervalSeconds(5);
    }
    void TearDown() override { qInstallMessageHandler(nullptr); }

    void settle() { driver.waitForBackgroundWork(); }
    void tick(std::chrono::milliseconds by = 5s)
    {
        timers.advance(by);
        settle();
    }
    void start()
    {
        driver.scanButtonPressed();
        settle();
    }
    std::shared_ptr<scanning::WiFiScanTest> newest() const { return driver.wifiScanTestArray().first(); }

    QTemporaryDir folder;
    testsupport::ManualClock clock{launch};
    testsupport::FakeTimerSource timers{clock};
    std::shared_ptr<FakeInterface> interface = std::make_shared<FakeInterface>();
    CannedRunner runner;
    scanning::ScanDatabase database{folder.filePath(QStringLiteral("Database.sqlite"))};
    RecordingListener listener;
    core::MemorySettings settings{{{QStringLiteral("mergeScanResults"), 0}}};
    scanning::ScanTestDriver driver{interface, database, settings, timers, runner, QStringLiteral("/opt/skyvane/skyvane-cli"),
                          {QStringLiteral("--simulate")}};
};

TEST_F(ScanTestDriverTest, RunButtonCyclesAndStopRelabelsOnlyAnUntouchedLabel)
{
    driver.cancelButtonPressed();  // without a timer: nothing
    EXPECT_EQ(driver.runButtonTitle(), "Start Scan");
    const std::vector<std::pair<int, QString>> cycle{{1, "Pause Scan"}, {2, "Resume Scan"}, {1, "Pause Scan"}};
    for (const auto& [tag, title] : cycle) {
        driver.scanButtonPressed();
        settle();
        EXPECT_EQ(driver.runButtonTag(), tag);
        EXPECT_EQ(driver.runButtonTitle(), title);
    }
    EXPECT_FALSE(driver.intervalSelectorEnabled());
    EXPECT_TRUE(listener.running);
    driver.cancelButtonPressed();
    EXPECT_EQ(driver.runButtonTag(), 0);
    EXPECT_EQ(newest()->testLabel, "Scanned");
    EXPECT_FALSE(newest()->isTestRunning);
    EXPECT_TRUE(driver.intervalSelectorEnabled());
    EXPECT_FALSE(listener.running);

    start();
    driver.renameTest(0, QStringLiteral("Office"));
    driver.cancelButtonPressed();
    ASSERT_EQ(driver.wifiScanTestArray().size(), 2);
    EXPECT_EQ(newest()->testLabel, "Office");
    EXPECT_EQ(driver.wifiScanTestArray().at(1)->testLabel, "Scanned");
}

TEST_F(ScanTestDriverTest, TickDuringAScanIsDroppedNotQueued)
{
    interface->setGateOpen(false);
    driver.scanButtonPressed();
    timers.advance(5s);
    timers.advance(5s);
    interface->setGateOpen(true);
    settle();
    EXPECT_EQ(interface->scans, 1);
    tick();
    EXPECT_EQ(interface->scans, 2);
}

TEST_F(ScanTestDriverTest, FailureShowsOnlyOnEveryThirdInARow)
{
    interface->outcomes = {failure(1), failure(2), failure(3), failure(4), failure(5), failure(6)};
    start();
    QStringList labels{driver.messageLabel()};
    for (int i = 0; i < 5; ++i) {
        tick();
        labels.append(driver.messageLabel());
    }
    const QString third = QStringLiteral("Unable to perform wireless scanning. Reason (radio busy, code:3 ).");
    const QString sixth = QStringLiteral("Unable to perform wireless scanning. Reason (radio busy, code:6 ).");
    EXPECT_EQ(labels, (QStringList{"", "", third, "", "", sixth}));
    EXPECT_FALSE(driver.spinnerVisible());
}

TEST_F(ScanTestDriverTest, EmptyOrFailedScanFallsBackToCachedResults)
{
    interface->cached = {scannedNetwork("fc:ec:da:56:ec:80", "Cafe", 11, -71)};
    interface->outcomes = {{}, failure(7)};
    start();
    ASSERT_EQ(newest()->scanedData1.size(), 1);
    EXPECT_EQ(newest()->scanedData1.first().bssid, "FC:EC:DA:56:EC:80");
    for (int i = 0; i < 3; ++i)
        tick();
    EXPECT_TRUE(logged.contains("localizedDescription --- radio busy"));
    EXPECT_EQ(driver.messageLabel(), "");
    EXPECT_EQ(driver.scanLoop().consecutiveScanFailures(), 0);
}

TEST_F(ScanTestDriverTest, PauseKeepsTheWaitThatWasLeft)
{
    driver.setRefreshIntervalSeconds(10);
    start();
    tick(7s);
    driver.scanButtonPressed();
    tick(10s);
    EXPECT_TRUE(driver.isPaused());
    EXPECT_EQ(interface->scans, 1);
    driver.scanButtonPressed();
    tick(2999ms);
    EXPECT_EQ(interface->scans, 1);
    tick(1ms);
    EXPECT_EQ(interface->scans, 2);
}

TEST_F(ScanTestDriverTest, LaunchStartsScanningAndRefreshesChannelsEveryMinute)
{
    driver.goToForeGround();
    settle();
    EXPECT_EQ(runner.commands, QStringList{"/opt/skyvane/skyvane-cli --simulate -s"});
    tick(999ms);
    EXPECT_FALSE(driver.spinnerVisible());
    tick(1ms);
    EXPECT_TRUE(driver.spinnerVisible());
    tick(499ms);
    EXPECT_EQ(driver.runButtonTag(), 0);
    tick(1ms);
    EXPECT_EQ(driver.runButtonTag(), 1);
    tick(118500ms);
    EXPECT_EQ(runner.commands.size(), 3);

    driver.pauseTimerNotification();
    EXPECT_TRUE(driver.isPaused());
    driver.resumeTimerNotification();
    EXPECT_FALSE(driver.isPaused());
}

TEST_F(ScanTestDriverTest, HistoryIsBoundedAndStaleRowsAddNoSample)
{
    interface->outcomes = {{{scannedNetwork("00:0b:86:ab:34:80", "Lab", 44, -60), scannedNetwork("3c:a6:2f:38:f3:e0", "Home", 6, -44)}, {}},
                           {{scannedNetwork("3c:a6:2f:38:f3:e0", "Home", 6, -44)}, {}}};
    start();
    for (int i = 0; i < 15; ++i)
        tick();
    const auto& histories = newest()->scanedResults;
    EXPECT_EQ(histories.value("3C:A6:2F:38:F3:E0").size(), scanning::WiFiScanTest::maxHistory);
    // One interval old still counts, two do not: the gone network stays listed with 2 samples.
    EXPECT_EQ(histories.value("00:0B:86:AB:34:80").size(), 2);
    EXPECT_EQ(newest()->scanedData1.size(), 2);

    // The rule reads the selector as it is now, not the interval the test started with.
    driver.setRefreshIntervalSeconds(600);
    tick();
    EXPECT_EQ(histories.value("00:0B:86:AB:34:80").size(), 3);
}

TEST_F(ScanTestDriverTest, ConnectedNetworkIsShownAndCountedWhenTheScanMissedIt)
{
    EXPECT_FALSE(driver.getConnectedNetworkDetails());
    interface->link.bssid = QStringLiteral("a4:2b:b0:11:22:33");
    interface->link.ssid = QStringLiteral("Upstairs");
    interface->link.rssiValue = -50;
    interface->link.wlanChannel = platform::WlanChannel{36, platform::ChannelBand::Band5GHz,
                                                       platform::ChannelWidthCode::Width80MHz};
    start();
    EXPECT_EQ(driver.countLabel(), "3 of 3 shown");
    const auto connected = driver.getConnectedNetworkDetails();
    ASSERT_TRUE(connected);
    EXPECT_EQ(std::tuple(connected->bssid, connected->ssid, connected->originalChannel, connected->channelBond,
                         connected->channelWidth),
              std::tuple(QString("A4:2B:B0:11:22:33"), QString("Upstairs"), 36, 5.0, 80));

    interface->link.bssid = QStringLiteral("3c:a6:2f:38:f3:e0");
    tick();
    EXPECT_EQ(driver.countLabel(), "2 of 2 shown");
    EXPECT_EQ(driver.getConnectedNetworkDetails()->ssid, "Home");
}

TEST_F(ScanTestDriverTest, CountLabelWithAndWithoutMerging)
{
    interface->outcomes = {{{scannedNetwork("00:0b:86:ab:34:80", "Lab", 44, -60), scannedNetwork("00:0b:86:ab:34:90", "Lab", 48, -70),
                             scannedNetwork("3c:a6:2f:38:f3:e0", "Home", 6, -44)}, {}}};
    const std::vector<std::pair<int, QString>> cases{{0, "3 of 3 shown"}, {1, "2 of 3 shown (merged 1)"}};
    start();
    for (const auto& [merge, label] : cases) {
        settings.setValue(QStringLiteral("mergeScanResults"), merge);
        tick();
        EXPECT_EQ(driver.countLabel(), label);
    }
    // The summary window at quit reads both counts; the band split must follow each scan.
    EXPECT_EQ(settings.value(QStringLiteral("TOTAL_NETWORKS")).toInt(), 3);
    EXPECT_EQ(settings.value(QStringLiteral("TOTAL_24MHZ_NETWORKS")).toInt(), 1);
}

TEST(ChannelInfoParser, ReadsChannelAndSecurityFieldsOfTheToolListing)
{
    const QByteArray listing =
        "                            SSID BSSID             RSSI CHANNEL HT CC SECURITY (auth/unicast/group)\n"
        "                    Skyvane Home 3c:a6:2f:38:f3:e0  -44 6       Y  DE WPA2(PSK/AES/AES)\n"
        "                     Skyvane Lab 00:0B:86:AB:34:80  -63 44,+1   Y  DE WPA(PSK/TKIP/TKIP) WPA2(PSK/AES/AES)\n"
        "                      Cafe Guest FC:EC:DA:56:EC:80  -71\t11,-1   Y  -- NONE\r\n"
        "too short\n";
    const scanning::ChannelInfo info = scanning::parseChannelInfo(listing);
    EXPECT_EQ(info.channelByBssid, (QHash<QString, QString>{{"3C:A6:2F:38:F3:E0", "6"},
                                                            {"00:0B:86:AB:34:80", "44,+1"},
                                                            {"FC:EC:DA:56:EC:80", "11,-1"}}));
    EXPECT_EQ(info.securityByBssid, (QHash<QString, QString>{{"3C:A6:2F:38:F3:E0", "WPA2(PSK/AES/AES)"},
                                                             {"00:0B:86:AB:34:80", "WPA(PSK/TKIP/TKIP), WPA2(PSK/AES/AES)"},
                                                             {"FC:EC:DA:56:EC:80", "Open"}}));
}

TEST_F(ScanTestDriverTest, ChannelTextIsKeptOnlyWhileItMatchesTheScannedChannel)
{
    runner.output.standardOutput =
        "                     Skyvane Lab 00:0B:86:AB:34:80  -63 44,+1   Y  DE WPA2(PSK/AES/AES)\n"
        "                    Skyvane Home 3C:A6:2F:38:F3:E0  -44 11,+1   Y  DE NONE\n";
    driver.refreshChannelInfo();
    settle();
    start();
    EXPECT_EQ(driver.bssidToChannelMapping(), (QHash<QString, QString>{{"00:0B:86:AB:34:80", "44,+1"}}));
    const auto& rows = newest()->scanedData1;
    const auto home = std::find_if(rows.begin(), rows.end(), [](const scan::ScanedResultInfo& r) { return r.ssid == "Home"; });
    ASSERT_NE(home, rows.end());
    EXPECT_EQ(home->securityModeString, "Open");

    runner.output = {{}, "no radio", 1, true};
    driver.refreshChannelInfo();
    settle();
    EXPECT_TRUE(logged.contains("Got error while determining channel info: no radio"));
}

TEST_F(ScanTestDriverTest, RemovalRefusesTheRunningTestAndAsksBeforeDeleting)
{
    QStringList alerts;
    QObject::connect(&driver, &scanning::ScanTestDriver::alertRequested, [&](const QString& text) { alerts.append(text); });
    std::vector<scanning::ScanTestDriver::Question> asked;
    bool answer = false;
    driver.setConfirmation([&](const scanning::ScanTestDriver::Question& q) {
        asked.push_back(q);
        return answer;
    });
    start();
    driver.cancelButtonPressed();
    start();

    driver.removeTest(0);
    EXPECT_EQ(alerts, QStringList{"You cannot delete currently running test."});
    driver.removeTest(1);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].messageText, "Are you sure you want to delete?");
    EXPECT_EQ(asked[0].defaultButton, "Yes");
    EXPECT_EQ(asked[0].alternateButton, "Cancel");
    EXPECT_TRUE(logged.contains("User selected not to delete"));
    EXPECT_EQ(driver.wifiScanTestArray().size(), 2);

    answer = true;
    driver.tableViewSelectionDidChange(1);
    const auto older = driver.wifiScanTestArray().at(1);
    EXPECT_EQ(listener.current, older);
    driver.removeTest(1);
    EXPECT_EQ(driver.wifiScanTestArray().size(), 1);
    EXPECT_EQ(listener.current, nullptr);
}

TEST_F(ScanTestDriverTest, CompletionOffersTheNamesAndChannelsTheScansShowed)
{
    EXPECT_TRUE(driver.filter().completions(QStringLiteral("ssidFilterField"), QString()).isEmpty());
    start();
    EXPECT_EQ(driver.filter().completions(QStringLiteral("ssidFilterField"), QStringLiteral("h")), QStringList{"Home"});
    EXPECT_EQ(driver.filter().completions(QStringLiteral("channelFilterField"), QStringLiteral("4")), QStringList{"44"});
    EXPECT_EQ(driver.allSSIDs(), driver.filter().allSSIDs());
}

TEST_F(ScanTestDriverTest, AQuotedNameFiltersTheShownRows)
{
    interface->outcomes = {{{scannedNetwork("00:0b:86:ab:34:80", "Joe's", 44, -60), scannedNetwork("3c:a6:2f:38:f3:e0", "Home", 6, -44)}, {}}};
    driver.filter().ssidForFilterValue = QStringLiteral("joe's");
    ASSERT_TRUE(driver.filter().userDidClickedApplyFilterButton());
    start();
    ASSERT_EQ(newest()->scanedData1.size(), 1);
    EXPECT_EQ(newest()->scanedData1.first().ssid, "Joe's");
    EXPECT_EQ(driver.countLabel(), "1 of 2 shown");
}

// Each driver has its own gate: a scan held in one does not drop the ticks of another.
TEST_F(ScanTestDriverTest, TheInFlightGateBelongsToOneLoop)
{
    auto other = std::make_shared<FakeInterface>();
    other->outcomes = interface->outcomes;
    QTemporaryDir otherFolder;
    scanning::ScanDatabase otherDatabase(otherFolder.filePath(QStringLiteral("Database.sqlite")));
    otherDatabase.updateDatabase();
    scanning::ScanTestDriver second{other, otherDatabase, settings, timers, runner, QStringLiteral("skyvane-cli"), {}};
    interface->setGateOpen(false);
    driver.scanButtonPressed();
    second.scanButtonPressed();
    second.waitForBackgroundWork();
    timers.advance(5s);
    second.waitForBackgroundWork();
    EXPECT_EQ(other->scans, 2);
    EXPECT_TRUE(driver.scanLoop().scanInProgress());
    EXPECT_FALSE(second.scanLoop().scanInProgress());
    interface->setGateOpen(true);
    settle();
}

TEST_F(ScanTestDriverTest, PropertyListOfTheToolIsReadAndCounted)
{
    runner.output.standardOutput =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n"
        "<dict><key>BSSID</key><string>3c:a6:2f:38:f3:e0</string><key>CHANNEL</key><integer>6</integer>"
        "<key>SSID_STR</key><string>Home</string><key>RSN_IE</key><dict><key>IE_KEY_RSN_VERSION</key><integer>1</integer></dict></dict>\n"
        "<dict><key>BSSID</key><string>00:0b:86:ab:34:80</string><key>CHANNEL</key><integer>44</integer></dict>\n"
        "</array>\n</plist>\n";
    const auto networks = driver.executeAirportCommandForXML();
    EXPECT_EQ(runner.commands.last(), "/opt/skyvane/skyvane-cli --simulate -s -x");
    ASSERT_TRUE(networks);
    ASSERT_EQ(networks->size(), 2);
    EXPECT_EQ(networks->first().value("CHANNEL"), QVariant(6LL));
    EXPECT_EQ(networks->first().value("RSN_IE").toMap().value("IE_KEY_RSN_VERSION"), QVariant(1LL));
    EXPECT_TRUE(logged.contains(QStringLiteral("xml is=\n %1 ").arg(QString::fromUtf8(runner.output.standardOutput))));
    EXPECT_TRUE(logged.contains("number of network found are= 2 "));

    const std::vector<std::pair<platform::CommandOutput, QString>> failures{
        {{"<plist><array><string>x</string></array></plist>", {}, 0, true},
         "Got error while determining channel info: a network entry is not a dictionary"},
        {{"<plist><array><dict>", {}, 0, true}, "Got error while determining channel info: Premature end of document."},
        {{{}, "airport: no such interface", 1, true}, "Got error while determining channel info: airport: no such interface"},
    };
    for (const auto& [output, text] : failures) {
        runner.output = output;
        logged.clear();
        EXPECT_FALSE(driver.executeAirportCommandForXML());
        EXPECT_TRUE(logged.contains(text)) << logged.join('|').toStdString();
    }
}

// Settings that fail while a scan is processed, as a broken store would.
class FailingSettings : public core::MemorySettings {
public:
    QVariant value(const QString& key) const override
    {
        if (failing && key == QLatin1String("mergeScanResults"))
            throw std::runtime_error("settings store gone");
        return MemorySettings::value(key);
    }
    bool failing = false;
};

TEST_F(ScanTestDriverTest, AFailedScanUpdateLogsTheReasonAndTheCallStackAndTheLoopGoesOn)
{
    FailingSettings failing;
    scanning::ScanTestDriver failingDriver{interface, database, failing, timers, runner, QStringLiteral("skyvane-cli"), {}};
    failing.failing = true;
    failingDriver.scanButtonPressed();
    failingDriver.waitForBackgroundWork();
    EXPECT_TRUE(logged.contains("Unable perform scan. settings store gone"));
    const auto trace = std::find_if(logged.begin(), logged.end(),
                                    [](const QString& line) { return line.startsWith("Uncaught exception OS: Backtrace:\n"); });
    EXPECT_NE(trace, logged.end());
    EXPECT_FALSE(failingDriver.scanLoop().scanInProgress());
    failing.failing = false;
    timers.advance(5s);
    failingDriver.waitForBackgroundWork();
    EXPECT_EQ(failingDriver.wifiScanTestArray().first()->scanedData1.size(), 2);
}

TEST_F(ScanTestDriverTest, ADatabaseThatCannotBeEmptiedStartsNoTest)
{
    QStringList failures;
    QObject::connect(&driver, &scanning::ScanTestDriver::databaseFailed, [&](const QString& text) { failures.append(text); });
    sqlite3_exec(database.handle(), "DROP TABLE wifi_scan_data", nullptr, nullptr, nullptr);
    start();
    EXPECT_TRUE(driver.wifiScanTestArray().isEmpty());
    EXPECT_EQ(driver.runButtonTag(), 0);
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures.first().endsWith("cannot be used: no such table: wifi_scan_data")) << failures.first().toStdString();
    EXPECT_EQ(interface->scans, 0);
}

} // namespace
