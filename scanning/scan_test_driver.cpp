#include "scanning/scan_test_driver.h"

#include <algorithm>
#include <chrono>

namespace scanning {

namespace {

const QString startTitle = QStringLiteral("Start Scan");
const QString pauseTitle = QStringLiteral("Pause Scan");
const QString resumeTitle = QStringLiteral("Resume Scan");

constexpr auto launchScanDelay = std::chrono::milliseconds(1500);
constexpr auto launchSpinnerDelay = std::chrono::milliseconds(1000);
constexpr auto channelRefreshInterval = std::chrono::seconds(60);

} // namespace

ScanTestDriver::ScanTestDriver(std::shared_ptr<platform::WirelessInterface> currentInterface, ScanDatabase& database,
                               core::UserSettings& settings, TimerSource& timers, platform::CommandRunner& commands,
                               QString toolPath, QStringList toolArguments, QObject* parent)
    : QObject(parent), database_(database), timers_(timers), airportInterfaceName_(currentInterface->interfaceName()),
      channels_(commands, std::move(toolPath), std::move(toolArguments)),
      processor_(currentInterface, database, settings, timers, channels_, filter_), loop_(currentInterface, timers)
{
    loop_.setScanHandler([this](const QList<platform::ScanResult>& networks) { updateViewOfScanData(networks); });
    connect(&loop_, &ScanLoop::spinnerChanged, this, &ScanTestDriver::spinnerChanged);
    connect(&loop_, &ScanLoop::messageLabelChanged, this, &ScanTestDriver::messageLabelChanged);
    connect(&loop_, &ScanLoop::scanErrorReported, this, &ScanTestDriver::scanErrorReported);
    connect(&tests_, &ScanTestList::testListChanged, this, &ScanTestDriver::testListChanged);
    connect(&tests_, &ScanTestList::alertRequested, this, &ScanTestDriver::alertRequested);
    connect(&channels_, &ChannelInfoRefresher::channelInfoChanged, this, &ScanTestDriver::channelInfoChanged);
}

// The members end their own background work as they go, the scan loop first.
ScanTestDriver::~ScanTestDriver() = default;

void ScanTestDriver::waitForBackgroundWork()
{
    launchWork_.waitForDone();
    channels_.waitForBackgroundWork();
    loop_.waitForBackgroundWork();
}

void ScanTestDriver::setRunButton(int tag, const QString& title)
{
    runButtonTag_ = tag;
    runButtonTitle_ = title;
    emit runButtonChanged(tag, title);
}

void ScanTestDriver::setIntervalSelectorEnabled(bool enabled)
{
    intervalSelectorEnabled_ = enabled;
    emit intervalSelectorEnabledChanged(enabled);
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
    if (!loop_.isRunning())
        return;
    loop_.stop();
    setRunButton(Idle, startTitle);
    tests_.stopNewest();
    setIntervalSelectorEnabled(true);
    stopRefreshAnimation();
    if (ScanResultsListener* listener = tests_.resultsListener())
        listener->scanDidStoppedByUser();
}

void ScanTestDriver::startNewScanTest()
{
    // Rows left from an earlier test must never be shown as this test's: without an empty
    // table there is no test.
    if (!database_.deleteAll()) {
        setRunButton(Idle, startTitle);
        reportDatabaseFailure();
        return;
    }
    totalSeconds_ = 0;
    const auto test = tests_.startTest(refreshIntervalSeconds_);
    // A zero interval would spin; the selector offers whole seconds from one up.
    loop_.start(std::chrono::seconds(std::max(1, refreshIntervalSeconds_)));
    setIntervalSelectorEnabled(false);
    if (ScanResultsListener* listener = tests_.resultsListener())
        listener->scanDidStartedByUser(test);
}

void ScanTestDriver::goToForeGround()
{
    launchWork_.runOnOwnerThread([this] { applicationDidFinishLaunching(); }, false);
}

void ScanTestDriver::applicationDidFinishLaunching()
{
    launchScanTimer_ = timers_.scheduledTimer(launchScanDelay, false, [this] { scanButtonPressed(); });
    launchSpinnerTimer_ = timers_.scheduledTimer(launchSpinnerDelay, false, [this] { startRefreshAnimation(); });
    channelRefreshTimer_ = timers_.scheduledTimer(channelRefreshInterval, true, [this] { refreshChannelInfo(); });
    refreshChannelInfo();
}

void ScanTestDriver::updateViewOfScanData(const QList<platform::ScanResult>& networks)
{
    std::optional<ScanProcessor::Context> context;
    loop_.runOnOwnerThread([&] {
        if (const std::shared_ptr<WiFiScanTest> test = tests_.newest())
            context = processor_.captureContext(test, networks, refreshIntervalSeconds_);
        if (!context)
            loop_.finishScan();
    }, true);
    if (!context)
        return;
    ScanProcessor::Prepared prepared = processor_.prepare(*context, networks);
    loop_.runOnOwnerThread([&] { finishUpdate(*context, std::move(prepared)); }, true);
}

void ScanTestDriver::finishUpdate(const ScanProcessor::Context& context, ScanProcessor::Prepared prepared)
{
    // A test stopped and replaced while its scan was being stored keeps the new test's rows clean.
    const std::shared_ptr<WiFiScanTest> test = context.test;
    if (test != tests_.newest()) {
        loop_.finishScan();
        return;
    }
    const ScanProcessor::Result result = processor_.apply(context, std::move(prepared));
    if (result == ScanProcessor::Result::Processed) {
        emit countLabelChanged(processor_.countLabel());
        if (ScanResultsListener* listener = tests_.resultsListener())
            listener->updateView(test);
    }
    loop_.finishScan();
    if (result == ScanProcessor::Result::DatabaseFailed) {
        // Every later scan would fail the same way; one stop and one message say it once.
        cancelButtonPressed();
        reportDatabaseFailure();
        return;
    }
    emit scanProcessed(test);
}

void ScanTestDriver::reportDatabaseFailure()
{
    const QString reason = database_.isOpen() ? database_.lastError() : database_.openError();
    emit databaseFailed(QStringLiteral("the scan database %1 cannot be used: %2").arg(database_.path(), reason));
}

} // namespace scanning
