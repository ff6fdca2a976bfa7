#pragma once

#include "platform/api/command_runner.h"
#include "platform/api/wireless_interface.h"
#include "scanning/channel_info_parser.h"
#include "scanning/scan_database.h"
#include "scanning/scan_results_listener.h"
#include "scanning/timer_source.h"
#include "scanning/wifi_scan_test.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

// The scanner tab without its widgets: the list of scan tests, the run button's states, the
// scan timer, one scan at a time on a background thread, storing and reading back each scan,
// the per-network histories and the label texts. Views and the command line bind to its state
// and signals. Lives on one thread (the owner's), which also runs every database statement.
class ScanTestDriver : public QObject {
    Q_OBJECT
public:
    enum RunButtonTag : int { Idle = 0, Running = 1, Paused = 2 };

    // What a confirmation asks; the answer is true for the default button.
    struct Question {
        QString messageText;
        QString defaultButton;
        QString alternateButton;
    };
    using Confirmation = std::function<bool(const Question&)>;

    // toolPath is the installed command-line tool, toolArguments the options that select the
    // same backend on it.
    ScanTestDriver(std::shared_ptr<platform::WirelessInterface> currentInterface, ScanDatabase& database,
                   core::UserSettings& settings, TimerSource& timers, platform::CommandRunner& commands,
                   QString toolPath, QStringList toolArguments, QObject* parent = nullptr);
    ~ScanTestDriver() override;

    // Shared by every scan path of the process: at most one scan in flight, and the run of
    // failed scans that decides when the failure is shown.
    static inline std::atomic<bool> scanInProgress{false};
    static inline std::atomic<int> consecutiveScanFailures{0};

    void setResultsListener(ScanResultsListener* listener);
    // The view's answer to "Are you sure you want to delete?"; without one nothing is deleted.
    void setConfirmation(Confirmation confirmation);

    // The interval selector: read when a test starts and by the history rule on every scan.
    int refreshIntervalSeconds() const { return refreshIntervalSeconds_; }
    void setRefreshIntervalSeconds(int seconds) { refreshIntervalSeconds_ = seconds; }
    bool intervalSelectorEnabled() const { return intervalSelectorEnabled_; }
    // The SQL condition of the filter bar; empty means no filter.
    QString filterCriteria() const { return filterCriteria_; }
    void setFilterCriteria(const QString& criteria) { filterCriteria_ = criteria; }

    int runButtonTag() const { return runButtonTag_; }
    QString runButtonTitle() const { return runButtonTitle_; }
    QString countLabel() const { return countLabel_; }
    QString messageLabel() const { return messageLabel_; }
    bool spinnerVisible() const { return spinnerVisible_; }
    int totalRecords() const { return totalRecords_; }
    int totalSeconds() const { return totalSeconds_; }
    const QList<std::shared_ptr<WiFiScanTest>>& wifiScanTestArray() const { return wifiScanTestArray_; }
    QString airportInterfaceName() const { return airportInterfaceName_; }
    const QHash<QString, QString>& bssidToChannelMapping() const { return bssidToChannelMapping_; }
    const QHash<QString, std::shared_ptr<const platform::ScanResult>>& bssidToCWNetworkMapping() const
    {
        return bssidToCWNetworkMapping_;
    }
    const QHash<QString, QString>& bssidSecurityTypeMapping() const { return bssidSecurityTypeMapping_; }
    const QStringList& allSSIDs() const { return allSSIDs_; }
    const QStringList& allChannels() const { return allChannels_; }
    bool isPaused() const { return pauseStart_.isValid(); }
    // The command line refreshChannelInfo runs.
    QString channelInfoCommand() const;

    // The newest record of the connected network in the newest test, if any.
    std::optional<ScanedResultInfo> getConnectedNetworkDetails() const;

    // Runs the owner thread's part of every background scan and channel refresh in flight
    // until none is left; for shutdown, and for callers that need a scan to have landed.
    void waitForBackgroundWork();

public slots:
    void scanButtonPressed();
    void cancelButtonPressed();
    void startNewScanTest();
    void performScanForeground();
    void pauseTimer();
    void resumeTimer();
    void pauseTimerNotification() { pauseTimer(); }
    void resumeTimerNotification() { resumeTimer(); }
    void goToForeGround();
    void applicationDidFinishLaunching();
    void scanCacheDidUpdateNotification() { performScanForeground(); }
    // The selector's value is read where it matters (test start, history rule), not on change.
    void refreshIntervalDidChange() {}
    void startRefreshAnimation();
    void stopRefreshAnimation();
    void refreshChannelInfo();

    // The test list.
    void tableViewSelectionDidChange(int row);
    void renameTest(int row, const QString& label);
    void removeTest(int row);

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

private:
    void performScanningInBackground();
    void startBackgroundScan();
    void updateViewOfScanData(const QList<platform::ScanResult>& networks);
    void applyChannelInfo(const ChannelInfo& info);
    QString channelTextFor(const QString& bssid, int channelNumber);
    QList<ScanedResultInfo> recordsFromRows(const QList<StoredObservation>& rows);
    // Keeps a beacon's AP name as the "<BSSID>-apname" setting; written once per BSSID and name.
    void rememberAccessPointName(const ScanedResultInfo& record);
    ScanedResultInfo connectedNetworkRecord(const platform::InterfaceSnapshot& link, const WiFiScanTest& test,
                                            const QDateTime& now) const;
    void updateCountLabel(int shown, bool merge, std::optional<int> matchCount);
    void setRunButton(int tag, const QString& title);
    void setMessageLabel(const QString& text);
    void setIntervalSelectorEnabled(bool enabled);
    // Runs f on the owner thread; from the owner thread itself it runs at once.
    void runOnOwnerThread(std::function<void()> f, bool wait);

    std::shared_ptr<platform::WirelessInterface> currentInterface_;
    ScanDatabase& database_;
    core::UserSettings& settings_;
    TimerSource& timers_;
    platform::CommandRunner& commands_;
    QString toolPath_;
    QStringList toolArguments_;
    ScanResultsListener* listener_ = nullptr;
    Confirmation confirmation_;

    QList<std::shared_ptr<WiFiScanTest>> wifiScanTestArray_;
    std::shared_ptr<WiFiScanTest> shownTest_;
    QString airportInterfaceName_;
    QHash<QString, QString> bssidToChannelMapping_;
    QHash<QString, std::shared_ptr<const platform::ScanResult>> bssidToCWNetworkMapping_;
    QHash<QString, QString> bssidSecurityTypeMapping_;
    QHash<QString, QString> savedAccessPointNames_;
    std::unique_ptr<Timer> scanTimer_;
    std::unique_ptr<Timer> channelRefreshTimer_;
    std::unique_ptr<Timer> launchScanTimer_;
    std::unique_ptr<Timer> launchSpinnerTimer_;
    QDateTime pauseStart_;
    QDateTime previousFireDate_;
    int totalSeconds_ = 0;
    int totalRecords_ = 0;
    int refreshIntervalSeconds_ = 5;
    QString filterCriteria_;
    QStringList allSSIDs_;
    QStringList allChannels_;

    int runButtonTag_ = Idle;
    QString runButtonTitle_ = QStringLiteral("Start Scan");
    QString countLabel_;
    QString messageLabel_;
    bool spinnerVisible_ = false;
    bool intervalSelectorEnabled_ = true;

    std::atomic<bool> shuttingDown_{false};
    // Declared last: destroyed first, after every task that reaches the members above ended.
    QThreadPool pool_;
};
