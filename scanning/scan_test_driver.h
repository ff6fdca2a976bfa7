#pragma once

#include "platform/api/command_runner.h"
#include "platform/api/wireless_interface.h"
#include "scanning/channel_info_refresher.h"
#include "scanning/filter_criteria.h"
#include "scanning/scan_database.h"
#include "scanning/scan_loop.h"
#include "scanning/scan_processor.h"
#include "scanning/scan_results_listener.h"
#include "scanning/scan_test_list.h"
#include "scanning/timer_source.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace scanning {

// The scanner tab without its widgets, under the names the views bind to: the run button's
// states, the interval selector and the filter bar's condition, over the scan loop, the test
// list, the scan processing and the channel-information refresher. Lives on one thread (the
// owner's), which also runs every database statement.
class ScanTestDriver : public QObject {
    Q_OBJECT
public:
    enum RunButtonTag : int { Idle = 0, Running = 1, Paused = 2 };
    using Question = ScanTestList::Question;
    using Confirmation = ScanTestList::Confirmation;

    // toolPath is the installed command-line tool, toolArguments the options that select the
    // same backend on it.
    ScanTestDriver(std::shared_ptr<platform::WirelessInterface> currentInterface, ScanDatabase& database,
                   core::UserSettings& settings, TimerSource& timers, platform::CommandRunner& commands,
                   QString toolPath, QStringList toolArguments, QObject* parent = nullptr);
    ~ScanTestDriver() override;

    void setResultsListener(ScanResultsListener* listener) { tests_.setResultsListener(listener); }
    void setConfirmation(Confirmation confirmation) { tests_.setConfirmation(std::move(confirmation)); }

    // The interval selector: read when a test starts and by the history rule on every scan, so a
    // change needs no handler of its own.
    int refreshIntervalSeconds() const { return refreshIntervalSeconds_; }
    void setRefreshIntervalSeconds(int seconds) { refreshIntervalSeconds_ = seconds; }
    bool intervalSelectorEnabled() const { return intervalSelectorEnabled_; }
    // The filter bar; the scans fill its completion lists.
    FilterCriteria& filter() { return filter_; }
    const FilterCriteria& filter() const { return filter_; }
    QString filterCriteria() const { return filter_.filterCriteria; }

    int runButtonTag() const { return runButtonTag_; }
    QString runButtonTitle() const { return runButtonTitle_; }
    QString countLabel() const { return processor_.countLabel(); }
    QString messageLabel() const { return loop_.messageLabel(); }
    bool spinnerVisible() const { return loop_.spinnerVisible(); }
    bool isPaused() const { return loop_.isPaused(); }
    int totalRecords() const { return processor_.totalRecords(); }
    int totalSeconds() const { return totalSeconds_; }
    QString airportInterfaceName() const { return airportInterfaceName_; }
    const QList<std::shared_ptr<WiFiScanTest>>& wifiScanTestArray() const { return tests_.wifiScanTestArray(); }
    const QHash<QString, QString>& bssidToChannelMapping() const { return channels_.bssidToChannelMapping(); }
    const QHash<QString, QString>& bssidSecurityTypeMapping() const { return channels_.bssidSecurityTypeMapping(); }
    const QHash<QString, std::shared_ptr<const platform::ScanResult>>& bssidToCWNetworkMapping() const
    {
        return processor_.bssidToCWNetworkMapping();
    }
    const QStringList& allSSIDs() const { return filter_.allSSIDs(); }
    const QStringList& allChannels() const { return filter_.allChannels(); }
    QString channelInfoCommand() const { return channels_.channelInfoCommand(); }
    std::optional<scan::ScanedResultInfo> getConnectedNetworkDetails() const { return tests_.getConnectedNetworkDetails(); }
    std::optional<QList<QVariantMap>> executeAirportCommandForXML() { return channels_.executeAirportCommandForXML(); }

    const ScanLoop& scanLoop() const { return loop_; }
    ScanTestList& testList() { return tests_; }

    // Runs the owner thread's part of every background scan and channel refresh in flight
    // until none is left; for shutdown, and for callers that need a scan to have landed.
    void waitForBackgroundWork();

public slots:
    void scanButtonPressed();
    void cancelButtonPressed();
    void startNewScanTest();
    void performScanForeground() { loop_.performScanForeground(); }
    void pauseTimer() { loop_.pauseTimer(); }
    void resumeTimer() { loop_.resumeTimer(); }
    void pauseTimerNotification() { pauseTimer(); }
    void resumeTimerNotification() { resumeTimer(); }
    void goToForeGround();
    void applicationDidFinishLaunching();
    void scanCacheDidUpdateNotification() { performScanForeground(); }
    void startRefreshAnimation() { loop_.startRefreshAnimation(); }
    void stopRefreshAnimation() { loop_.stopRefreshAnimation(); }
    void refreshChannelInfo() { channels_.refreshChannelInfo(); }

    void tableViewSelectionDidChange(int row) { tests_.tableViewSelectionDidChange(row); }
    void renameTest(int row, const QString& label) { tests_.renameTest(row, label); }
    void removeTest(int row) { tests_.removeTest(row); }

signals:
    void runButtonChanged(int tag, const QString& title);
    void countLabelChanged(const QString& text);
    void messageLabelChanged(const QString& text);
    void spinnerChanged(bool visible);
    void intervalSelectorEnabledChanged(bool enabled);
    void testListChanged();
    void alertRequested(const QString& messageText, const QString& informativeText);
    void channelInfoChanged();
    // After every processed scan, with the test it went into.
    void scanProcessed(const std::shared_ptr<WiFiScanTest>& test);
    void scanErrorReported(const QString& description);
    // The database refused a test's start or a scan; the test is stopped. Said once, in words.
    void databaseFailed(const QString& message);

private:
    // On the scan's thread: the owner's state is read, the scan stored and read back there,
    // and the result applied on the owner thread.
    void updateViewOfScanData(const QList<platform::ScanResult>& networks);
    void finishUpdate(const ScanProcessor::Context& context, ScanProcessor::Prepared prepared);
    void reportDatabaseFailure();
    void setRunButton(int tag, const QString& title);
    void setIntervalSelectorEnabled(bool enabled);

    ScanDatabase& database_;
    TimerSource& timers_;
    QString airportInterfaceName_;
    FilterCriteria filter_;
    ChannelInfoRefresher channels_;
    ScanTestList tests_;
    ScanProcessor processor_;
    std::unique_ptr<Timer> channelRefreshTimer_;
    std::unique_ptr<Timer> launchScanTimer_;
    std::unique_ptr<Timer> launchSpinnerTimer_;
    int totalSeconds_ = 0;
    int refreshIntervalSeconds_ = 5;
    int runButtonTag_ = Idle;
    QString runButtonTitle_ = QStringLiteral("Start Scan");
    bool intervalSelectorEnabled_ = true;
    BackgroundWork launchWork_;
    // Declared last: destroyed first, so no scan reaches the parts above once they are gone.
    ScanLoop loop_;
};

} // namespace scanning
