#pragma once

#include "platform/api/wireless_interface.h"
#include "platform/capture/capture_reader.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

// A capture file played back as a Wi-Fi interface, so a capture taken elsewhere is analysed
// exactly like a live scan: each full scan hears the next stretch of capture time.
namespace platform::capture {

class CaptureReplayInterface final : public platform::WirelessInterface {
    Q_OBJECT
public:
    // Five seconds of capture per scan matches the scanner's default interval, so a replay runs
    // at about the speed the capture was taken.
    static constexpr std::chrono::milliseconds kDefaultSliceLength{5000};

    // nullptr with *error set when the file cannot be replayed (not a capture, unsupported
    // link type, unreadable).
    static std::shared_ptr<CaptureReplayInterface> open(const QString& path, QString* error,
                                                        std::chrono::milliseconds sliceLength = kDefaultSliceLength);

    QString capturePath() const { return path_; }

    QString interfaceName() const override;
    platform::InterfaceSnapshot snapshot() const override;

    // A full scan (empty ssid) moves on to the next slice. Slices start at the first frame not
    // yet played, so silent stretches of a capture never show up as empty scans. Once the file
    // is played out, scans keep returning the last slice: those networks were the last ones in
    // range. A read error part-way is reported with the networks of that slice and ends the replay.
    // Directed scans (by SSID or BSSID) look at the current slice without moving on, so windows
    // that watch one network do not hurry the capture along; the first full scan still gets the
    // first slice.
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray& ssid) override;
    platform::ScanOutcome scanForNetworksWithBSSID(const QString& bssid) override;
    QList<platform::ScanResult> cachedScanResults() const override;

    platform::MaybeError setPower(bool on) override;
    void disassociate() override {}
    platform::MaybeError associateToNetwork(const platform::ScanResult& network, const QString& password) override;
    platform::MaybeError associateToEnterpriseNetwork(const platform::ScanResult& network, const QString& identity,
                                                      const QString& username, const QString& password,
                                                      const platform::EapOptions& eap) override;
    platform::MaybeError startIBSSModeWithSSID(const QByteArray& ssid, int security, int channel,
                                               const QString& password) override;

    QList<platform::NetworkProfile> networkProfiles() const override { return {}; }
    QList<platform::EapProfile> allUser8021XProfiles() const override { return {}; }
    std::optional<QString> copyPassword(const QByteArray&) const override { return std::nullopt; }
    std::optional<platform::EapCredentials> copyEAPUsernameAndPassword(const QByteArray&) const override
    {
        return std::nullopt;
    }
    std::optional<QString> copyEAPIdentity(const QByteArray&) const override { return std::nullopt; }

private:
    CaptureReplayInterface(std::unique_ptr<CaptureReader> reader, QString path, std::chrono::milliseconds sliceLength);

    // Callers hold mutex_.
    platform::MaybeError advance();
    const QList<platform::ScanResult>& currentSlice(platform::MaybeError& error);

    mutable std::mutex mutex_;
    std::unique_ptr<CaptureReader> reader_;
    QString path_;
    std::int64_t sliceLengthUs_;
    std::optional<BeaconFrame> lookahead_;  // first frame of the next slice, already read
    bool played_ = false;                   // the file has nothing more to give
    bool started_ = false;                  // at least one slice has been taken
    bool untakenByFullScan_ = false;        // a directed scan took the first slice before any full scan
    QList<platform::ScanResult> slice_;
};

} // namespace platform::capture
