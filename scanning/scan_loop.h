#pragma once

#include "platform/api/wireless_interface.h"
#include "scanning/background_work.h"
#include "scanning/timer_source.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

namespace scanning {

// The periodic scan: the scan timer with pause and resume, one platform scan at a time on a
// background thread (a tick while one is in flight is dropped), the fallback to cached results,
// and the run of failures that decides when a failure is shown. Lives on its owner's thread.
class ScanLoop : public QObject {
    Q_OBJECT
public:
    // Runs on the scan's background thread with its networks; it reaches the owner thread through
    // runOnOwnerThread() and ends the scan there with finishScan().
    using ScanHandler = std::function<void(const QList<platform::ScanResult>&)>;

    ScanLoop(std::shared_ptr<platform::WirelessInterface> interface, TimerSource& timers, QObject* parent = nullptr);
    ~ScanLoop() override;

    void setScanHandler(ScanHandler handler) { handler_ = std::move(handler); }
    // The first scan starts at once, then one on every tick of the interval.
    void start(std::chrono::seconds interval);
    void stop();
    bool isRunning() const { return scanTimer_ != nullptr; }
    void performScanForeground();
    void pauseTimer();
    void resumeTimer();
    bool isPaused() const { return pauseStart_.isValid(); }
    // Clears the in-flight gate and stops the spinner.
    void finishScan();

    bool scanInProgress() const { return scanInProgress_; }
    int consecutiveScanFailures() const { return consecutiveScanFailures_; }
    QString messageLabel() const { return messageLabel_; }
    bool spinnerVisible() const { return spinnerVisible_; }
    void startRefreshAnimation();
    void stopRefreshAnimation();
    void waitForBackgroundWork() { work_.waitForDone(); }
    // Dropped once the loop is being destroyed.
    void runOnOwnerThread(std::function<void()> f, bool wait) { work_.runOnOwnerThread(std::move(f), wait); }

signals:
    void spinnerChanged(bool visible);
    void messageLabelChanged(const QString& text);
    // Every error the platform reported for a scan, even one the cached results made up for.
    void scanErrorReported(const QString& description);

private:
    void performScanningInBackground();
    void setMessageLabel(const QString& text);

    std::shared_ptr<platform::WirelessInterface> interface_;
    TimerSource& timers_;
    ScanHandler handler_;
    std::unique_ptr<Timer> scanTimer_;
    QDateTime pauseStart_;
    QDateTime previousFireDate_;
    std::atomic<bool> scanInProgress_{false};
    std::atomic<int> consecutiveScanFailures_{0};
    QString messageLabel_;
    bool spinnerVisible_ = false;
    // Declared last: destroyed first, after every task that reaches the members above ended.
    BackgroundWork work_;
};

} // namespace scanning
