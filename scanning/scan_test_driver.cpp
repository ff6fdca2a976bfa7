#include "scanning/scan_test_driver.h"


#include <QCoreApplication>
#include <QRegularExpression>
#include <QThread>
#include <QDebug>

#include <algorithm>
#include <chrono>

namespace {

const QString startTitle = QStringLiteral("Start Scan");
const QString pauseTitle = QStringLiteral("Pause Scan");
const QString resumeTitle = QStringLiteral("Resume Scan");

constexpr auto launchScanDelay = std::chrono::milliseconds(1500);
constexpr auto launchSpinnerDelay = std::chrono::milliseconds(1000);
constexpr auto channelRefreshInterval = std::chrono::seconds(60);

QString shellQuoted(const QString& text)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    if (plain.match(text).hasMatch())
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

} // namespace

ScanTestDriver::ScanTestDriver(std::shared_ptr<platform::WirelessInterface> currentInterface, ScanDatabase& database,
                               core::UserSettings& settings, TimerSource& timers, platform::CommandRunner& commands,
                               QString toolPath, QStringList toolArguments, QObject* parent)
    : QObject(parent), currentInterface_(std::move(currentInterface)), database_(database), settings_(settings),
      timers_(timers),
      commands_(commands), toolPath_(std::move(toolPath)), toolArguments_(std::move(toolArguments)),
      airportInterfaceName_(currentInterface_->interfaceName())
{
}

ScanTestDriver::~ScanTestDriver()
{
    shuttingDown_ = true;
    waitForBackgroundWork();
}

void ScanTestDriver::setResultsListener(ScanResultsListener* listener)
{
    listener_ = listener;
}

void ScanTestDriver::setConfirmation(Confirmation confirmation)
{
    confirmation_ = std::move(confirmation);
}

void ScanTestDriver::waitForBackgroundWork()
{
    // A background task may be blocked until this thread runs its hand-off, so the hand-offs
    // are delivered while waiting rather than after.
    while (!pool_.waitForDone(2))
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void ScanTestDriver::runOnOwnerThread(std::function<void()> f, bool wait)
{
    auto guarded = [this, f = std::move(f)] {
        if (!shuttingDown_)
            f();
    };
    if (QThread::currentThread() == thread())
        guarded();
    else
        QMetaObject::invokeMethod(this, std::move(guarded), wait ? Qt::BlockingQueuedConnection : Qt::QueuedConnection);
}

void ScanTestDriver::setRunButton(int tag, const QString& title)
{
    runButtonTag_ = tag;
    runButtonTitle_ = title;
    emit runButtonChanged(tag, title);
}

void ScanTestDriver::setMessageLabel(const QString& text)
{
    messageLabel_ = text;
    emit messageLabelChanged(text);
}

void ScanTestDriver::setIntervalSelectorEnabled(bool enabled)
{
    intervalSelectorEnabled_ = enabled;
    emit intervalSelectorEnabledChanged(enabled);
}

void ScanTestDriver::startRefreshAnimation()
{
    spinnerVisible_ = true;
    emit spinnerChanged(true);
}

void ScanTestDriver::stopRefreshAnimation()
{
    spinnerVisible_ = false;
    emit spinnerChanged(false);
}

void ScanTestDriver::scanButtonPressed()
{
    switch (runButtonTag_) {
    case Idle:
        setRunButton(Running, pauseTitle);
        startNewScanTest();
        break;
    case Running:
        setRunButton(Paused, resumeTitle);
        pauseTimer();
        break;
    case Paused:
        setRunButton(Running, pauseTitle);
        resumeTimer();
        break;
    default:
        break;
    }
}

void ScanTestDriver::cancelButtonPressed()
{
    if (!scanTimer_)
        return;
    scanTimer_.reset();
    pauseStart_ = QDateTime();
    previousFireDate_ = QDateTime();
    setRunButton(Idle, startTitle);
    if (!wifiScanTestArray_.isEmpty()) {
        WiFiScanTest& newest = *wifiScanTestArray_.first();
        newest.isTestRunning = false;
        if (newest.testLabel == QLatin1String("Scanning"))
            newest.testLabel = QStringLiteral("Scanned");
    }
    emit testListChanged();
    setIntervalSelectorEnabled(true);
    stopRefreshAnimation();
    if (listener_)
        listener_->scanDidStoppedByUser();
}

void ScanTestDriver::startNewScanTest()
{
    database_.deleteAll();
    totalSeconds_ = 0;

    auto test = std::make_shared<WiFiScanTest>();
    test->testLabel = QStringLiteral("Scanning");
    test->isTestRunning = true;
    test->index = 0;
    test->refreshInterval = refreshIntervalSeconds_;
    wifiScanTestArray_.prepend(test);

    shownTest_ = test;
    if (listener_) {
        listener_->setCurrentTest(test);
        listener_->reset();
    }
    emit testListChanged();

    // The first scan counts as in flight too, so a tick that comes before it lands is dropped.
    scanInProgress = true;
    startBackgroundScan();

    // A zero interval would spin; the selector offers whole seconds from one up.
    const auto interval = std::chrono::seconds(std::max(1, refreshIntervalSeconds_));
    scanTimer_ = timers_.scheduledTimer(interval, true, [this] { performScanForeground(); });
    pauseStart_ = QDateTime();
    previousFireDate_ = QDateTime();

    setIntervalSelectorEnabled(false);
    if (listener_)
        listener_->scanDidStartedByUser(test);
}

void ScanTestDriver::performScanForeground()
{
    if (scanInProgress.exchange(true))
        return;
    startBackgroundScan();
}

void ScanTestDriver::pauseTimer()
{
    // A second pause must not take the parked date for the real one.
    if (scanTimer_ && !isPaused()) {
        pauseStart_ = timers_.now();
        previousFireDate_ = scanTimer_->fireDate();
        scanTimer_->setFireDate(TimerSource::distantFuture());
    }
    stopRefreshAnimation();
}

void ScanTestDriver::resumeTimer()
{
    if (!scanTimer_ || !isPaused())
        return;
    const qint64 pausedMs = pauseStart_.msecsTo(timers_.now());
    scanTimer_->setFireDate(previousFireDate_.addMSecs(pausedMs));
    pauseStart_ = QDateTime();
    previousFireDate_ = QDateTime();
    scanInProgress = false;
    startRefreshAnimation();
}

void ScanTestDriver::goToForeGround()
{
    runOnOwnerThread([this] { applicationDidFinishLaunching(); }, false);
}

void ScanTestDriver::applicationDidFinishLaunching()
{
    launchScanTimer_ = timers_.scheduledTimer(launchScanDelay, false, [this] { scanButtonPressed(); });
    launchSpinnerTimer_ = timers_.scheduledTimer(launchSpinnerDelay, false, [this] { startRefreshAnimation(); });
    channelRefreshTimer_ = timers_.scheduledTimer(channelRefreshInterval, true, [this] { refreshChannelInfo(); });
    refreshChannelInfo();
}

QString ScanTestDriver::channelInfoCommand() const
{
    QString command = shellQuoted(toolPath_);
    for (const QString& argument : toolArguments_)
        command += QLatin1Char(' ') + shellQuoted(argument);
    return command + QStringLiteral(" -s");
}

void ScanTestDriver::refreshChannelInfo()
{
    const QString command = channelInfoCommand();
    pool_.start([this, command] {
        const platform::CommandOutput output = commands_.runShellCommand(command);
        if (!output.started || output.exitCode != 0) {
            QString reason = QString::fromUtf8(output.standardError).trimmed();
            if (reason.isEmpty())
                reason = output.started ? QStringLiteral("exit status %1").arg(output.exitCode)
                                        : QStringLiteral("%1 could not be started").arg(toolPath_);
            qWarning().noquote() << QStringLiteral("Got error while determining channel info: %1").arg(reason);
            return;
        }
        ChannelInfo info = parseChannelInfo(output.standardOutput);
        runOnOwnerThread([this, info = std::move(info)] { applyChannelInfo(info); }, false);
    });
}

void ScanTestDriver::applyChannelInfo(const ChannelInfo& info)
{
    bssidSecurityTypeMapping_ = info.securityByBssid;
    for (auto it = info.channelByBssid.cbegin(); it != info.channelByBssid.cend(); ++it)
        bssidToChannelMapping_.insert(it.key(), it.value());
    emit channelInfoChanged();
}

std::optional<ScanedResultInfo> ScanTestDriver::getConnectedNetworkDetails() const
{
    if (wifiScanTestArray_.isEmpty())
        return std::nullopt;
    const WiFiScanTest& newest = *wifiScanTestArray_.first();
    const auto history = newest.scanedResults.constFind(newest.activeBSSID);
    if (history == newest.scanedResults.cend() || history->isEmpty())
        return std::nullopt;
    return history->first();
}

void ScanTestDriver::tableViewSelectionDidChange(int row)
{
    if (row < 0 || row >= wifiScanTestArray_.size())
        return;
    const auto test = wifiScanTestArray_.at(row);
    shownTest_ = test;
    if (!listener_) {
        test->index = row;
        return;
    }
    // reset forgets the view's selection, which is what a test without "plot all" plots next.
    const QStringList previous = listener_->selectedBssids();
    listener_->setCurrentTest(test);
    test->index = row;
    listener_->reset();
    const QStringList toPlot = listener_->shouldPlotAll() ? test->scanedResults.keys() : previous;
    QStringList selection = listener_->selectedBssids();
    for (const QString& bssid : toPlot) {
        if (!selection.contains(bssid))
            selection.append(bssid);
    }
    listener_->setSelectedBssids(selection);
    listener_->updateView(test);
}

void ScanTestDriver::renameTest(int row, const QString& label)
{
    if (row < 0 || row >= wifiScanTestArray_.size() || wifiScanTestArray_.at(row)->testLabel == label)
        return;
    wifiScanTestArray_.at(row)->testLabel = label;
    emit testListChanged();
}

void ScanTestDriver::removeTest(int row)
{
    if (row < 0 || row >= wifiScanTestArray_.size())
        return;
    const auto test = wifiScanTestArray_.at(row);
    if (test->isTestRunning) {
        emit alertRequested(QStringLiteral("You cannot delete currently running test."), QString());
        return;
    }
    const Question question{QStringLiteral("Are you sure you want to delete?"), QStringLiteral("Yes"),
                            QStringLiteral("Cancel")};
    if (!confirmation_ || !confirmation_(question)) {
        qInfo() << "User selected not to delete";
        return;
    }
    if (shownTest_ == test) {
        if (listener_)
            listener_->clearView();
        shownTest_.reset();
    }
    wifiScanTestArray_.removeAt(row);
    emit testListChanged();
}
