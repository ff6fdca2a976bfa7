#include "scanning/scan_loop.h"

#include "scanning/log_category.h"

#include <exception>

namespace scanning {

ScanLoop::ScanLoop(std::shared_ptr<platform::WirelessInterface> interface, TimerSource& timers, QObject* parent)
    : QObject(parent), interface_(std::move(interface)), timers_(timers)
{
}

ScanLoop::~ScanLoop()
{
    work_.shutDown();
    work_.waitForDone();
}

void ScanLoop::start(std::chrono::seconds interval)
{
    // The first scan counts as in flight too, so a tick that comes before it lands is dropped.
    scanInProgress_ = true;
    work_.start([this] { performScanningInBackground(); });
    scanTimer_ = timers_.scheduledTimer(interval, true, [this] { performScanForeground(); });
    pauseStart_ = QDateTime();
    previousFireDate_ = QDateTime();
}

void ScanLoop::stop()
{
    scanTimer_.reset();
    pauseStart_ = QDateTime();
    previousFireDate_ = QDateTime();
}

void ScanLoop::performScanForeground()
{
    if (scanInProgress_.exchange(true))
        return;
    work_.start([this] { performScanningInBackground(); });
}

void ScanLoop::pauseTimer()
{
    // A second pause must not take the parked date for the real one.
    if (scanTimer_ && !isPaused()) {
        pauseStart_ = timers_.now();
        previousFireDate_ = scanTimer_->fireDate();
        scanTimer_->setFireDate(TimerSource::distantFuture());
    }
    stopRefreshAnimation();
}

void ScanLoop::resumeTimer()
{
    if (!scanTimer_ || !isPaused())
        return;
    const qint64 pausedMs = pauseStart_.msecsTo(timers_.now());
    scanTimer_->setFireDate(previousFireDate_.addMSecs(pausedMs));
    pauseStart_ = QDateTime();
    previousFireDate_ = QDateTime();
    scanInProgress_ = false;
    startRefreshAnimation();
}

void ScanLoop::finishScan()
{
    scanInProgress_ = false;
    stopRefreshAnimation();
}

void ScanLoop::startRefreshAnimation()
{
    spinnerVisible_ = true;
    emit spinnerChanged(true);
}

void ScanLoop::stopRefreshAnimation()
{
    spinnerVisible_ = false;
    emit spinnerChanged(false);
}

void ScanLoop::setMessageLabel(const QString& text)
{
    messageLabel_ = text;
    emit messageLabelChanged(text);
}

void ScanLoop::performScanningInBackground()
{
    try {
        work_.runOnOwnerThread([this] { startRefreshAnimation(); }, true);
        if (interface_->snapshot().interfaceState == platform::InterfaceStateScanning) {
            scanInProgress_ = false;
            return;
        }
        work_.runOnOwnerThread([this] { setMessageLabel(QString()); }, false);

        platform::ScanOutcome outcome = interface_->scanForNetworksWithSSID(QByteArray());
        QList<platform::ScanResult> networks = outcome.networks;
        if (outcome.error) {
            const QString description = outcome.error->description;
            work_.runOnOwnerThread([this, description] { emit scanErrorReported(description); }, false);
        }
        if (!core::isOSSnowLeopard(interface_->generation())) {
            // The service often answers a scan it could not run, or an empty one, from what it
            // heard recently; that beats showing nothing.
            if (outcome.error) {
                qCInfo(lcScanning).noquote() << QStringLiteral("localizedDescription --- %1").arg(outcome.error->description);
                networks = interface_->cachedScanResults();
            } else if (networks.isEmpty()) {
                networks = interface_->cachedScanResults();
            }
        }

        if (outcome.error && networks.isEmpty()) {
            // Scans fail now and then for no lasting reason; only a run of three is worth a word.
            if (consecutiveScanFailures_ != 2) {
                ++consecutiveScanFailures_;
            } else {
                consecutiveScanFailures_ = 0;
                const QString message = QStringLiteral("Unable to perform wireless scanning. Reason (%1, code:%2 ).")
                                            .arg(outcome.error->description)
                                            .arg(outcome.error->code);
                work_.runOnOwnerThread([this, message] { setMessageLabel(message); }, false);
            }
            work_.runOnOwnerThread([this] { stopRefreshAnimation(); }, true);
            scanInProgress_ = false;
            return;
        }

        consecutiveScanFailures_ = 0;
        if (handler_)
            handler_(networks);
        else
            work_.runOnOwnerThread([this] { finishScan(); }, true);
        if (work_.isShuttingDown())
            scanInProgress_ = false;
    } catch (const std::exception& error) {
        qCInfo(lcScanning).noquote() << QStringLiteral("performScanningInBackground : %1").arg(QString::fromUtf8(error.what()));
        scanInProgress_ = false;
    }
}

} // namespace scanning
