#include "platform/capture/capture_replay_interface.h"

#include "scan/scanner_utils.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <utility>
#include <vector>

namespace platform::capture {
namespace {

const QString kErrorDomain = QStringLiteral("org.skyvane.CaptureReplay");

enum ReplayErrorCode { NotPossibleOnCapture = 1, CaptureReadFailed = 2 };

platform::PlatformError notPossible(const QString& what)
{
    return {kErrorDomain, NotPossibleOnCapture, QStringLiteral("%1 is not possible on a replayed capture.").arg(what),
            QStringLiteral("The interface plays back a capture file; it has no radio."),
            QStringLiteral("Choose a Wi-Fi interface or the simulated environment instead of --capture.")};
}

platform::PlatformError readFailure(const QString& path, const QString& reason)
{
    return {kErrorDomain, CaptureReadFailed, QStringLiteral("Could not read %1: %2").arg(path, reason), {}, {}};
}

} // namespace

std::shared_ptr<CaptureReplayInterface> CaptureReplayInterface::open(const QString& path, QString* error,
                                                                     std::chrono::milliseconds sliceLength)
{
    // Opening a FIFO or a device blocks until someone writes to it, and no signal handler is in
    // place yet to end that wait; a capture to replay is a file.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        *error = info.isDir() ? QStringLiteral("it is a folder, not a capture file")
                              : QStringLiteral("it is not a regular file (a FIFO, socket or device cannot be replayed)");
        return nullptr;
    }
    auto reader = CaptureReader::open(path, error);
    if (!reader)
        return nullptr;
    // The constructor is private so that no replay exists without an open file.
    return std::shared_ptr<CaptureReplayInterface>(new CaptureReplayInterface(std::move(reader), path, sliceLength));
}

CaptureReplayInterface::CaptureReplayInterface(std::unique_ptr<CaptureReader> reader, QString path,
                                               std::chrono::milliseconds sliceLength)
    : reader_(std::move(reader)), path_(std::move(path)),
      sliceLengthUs_(std::max<std::int64_t>(1, std::chrono::microseconds(sliceLength).count()))
{
}

QString CaptureReplayInterface::interfaceName() const
{
    return QStringLiteral("capture0");
}

platform::InterfaceSnapshot CaptureReplayInterface::snapshot() const
{
    platform::InterfaceSnapshot snapshot;
    snapshot.interfaceName = interfaceName();
    snapshot.powerOn = true;
    snapshot.interfaceMode = platform::InterfaceModeStation;
    snapshot.interfaceState = platform::InterfaceStateInactive;
    snapshot.sources.insert(QStringLiteral("*"), QStringLiteral("a replayed capture, which has no live link"));
    return snapshot;
}

platform::MaybeError CaptureReplayInterface::advance()
{
    started_ = true;
    // One entry per BSSID in order of first appearance; a later frame of the same BSSID replaces
    // the earlier one, as a live scan reports the newest beacon.
    std::vector<scan::RawBssFacts> heard;
    QHash<QString, std::size_t> indexOfBssid;
    std::optional<std::int64_t> sliceEndUs;
    platform::MaybeError error;
    while (!played_) {
        BeaconFrame frame;
        if (lookahead_) {
            frame = std::move(*lookahead_);
            lookahead_.reset();
        } else if (const ReadStatus status = reader_->next(frame); status != ReadStatus::Frame) {
            played_ = true;
            if (status == ReadStatus::Error)
                error = readFailure(path_, reader_->errorString());
            break;
        }
        // Out-of-order timestamps (merged captures) stay in the slice being read.
        if (!sliceEndUs) {
            sliceEndUs = frame.timestampUs + sliceLengthUs_;
        } else if (frame.timestampUs >= *sliceEndUs) {
            lookahead_ = std::move(frame);
            break;
        }
        const QString key = scan::ScannerUtils::normalizeMAC(frame.facts.bssid);
        if (const auto found = indexOfBssid.constFind(key); found != indexOfBssid.cend()) {
            heard[*found] = std::move(frame.facts);
        } else {
            indexOfBssid.insert(key, heard.size());
            heard.push_back(std::move(frame.facts));
        }
    }
    // Nothing more to play: the last slice stays what the interface hears.
    if (!sliceEndUs)
        return error;

    slice_.clear();
    slice_.reserve(static_cast<qsizetype>(heard.size()));
    for (const scan::RawBssFacts& facts : heard)
        slice_.append(scan::deriveScanResult(facts));
    return error;
}

const QList<platform::ScanResult>& CaptureReplayInterface::currentSlice(platform::MaybeError& error)
{
    if (!started_) {
        error = advance();
        untakenByFullScan_ = true;
    }
    return slice_;
}

platform::ScanOutcome CaptureReplayInterface::scanForNetworksWithSSID(const QByteArray& ssid)
{
    std::lock_guard lock(mutex_);
    platform::ScanOutcome outcome;
    if (!ssid.isEmpty()) {
        for (const platform::ScanResult& network : currentSlice(outcome.error)) {
            if (network.ssidData == ssid)
                outcome.networks.append(network);
        }
        return outcome;
    }
    if (untakenByFullScan_)
        untakenByFullScan_ = false;
    else
        outcome.error = advance();
    outcome.networks = slice_;
    return outcome;
}

platform::ScanOutcome CaptureReplayInterface::scanForNetworksWithBSSID(const QString& bssid)
{
    std::lock_guard lock(mutex_);
    platform::ScanOutcome outcome;
    const QString wanted = scan::ScannerUtils::normalizeMAC(bssid);
    for (const platform::ScanResult& network : currentSlice(outcome.error)) {
        if (scan::ScannerUtils::normalizeMAC(network.bssid) == wanted)
            outcome.networks.append(network);
    }
    return outcome;
}

QList<platform::ScanResult> CaptureReplayInterface::cachedScanResults() const
{
    std::lock_guard lock(mutex_);
    return slice_;
}

platform::MaybeError CaptureReplayInterface::setPower(bool on)
{
    if (on)
        return std::nullopt;
    return notPossible(QStringLiteral("Turning the power off"));
}

platform::MaybeError CaptureReplayInterface::associateToNetwork(const platform::ScanResult&, const QString&)
{
    return notPossible(QStringLiteral("Joining a network"));
}

platform::MaybeError CaptureReplayInterface::associateToEnterpriseNetwork(const platform::ScanResult&, const QString&,
                                                                     const QString&, const QString&,
                                                                     const platform::EapOptions&)
{
    return notPossible(QStringLiteral("Joining a network"));
}

platform::MaybeError CaptureReplayInterface::startIBSSModeWithSSID(const QByteArray&, int, int, const QString&)
{
    return notPossible(QStringLiteral("Creating an ad-hoc network"));
}

} // namespace platform::capture
