#pragma once

#include "platform/api/wireless_interface.h"
#include "platform/linux/network_manager_client.h"
#include "platform/linux/nl80211_socket.h"
#include "platform/linux/rfkill.h"

#include <QElapsedTimer>

#include <chrono>
#include <memory>
#include <mutex>

class QSocketNotifier;

// A Wi-Fi network device of this machine: the kernel's wireless stack (nl80211) answers every
// question about its state and what it heard; NetworkManager carries out what needs privilege
// (scans, the radio switch, joining, profiles, secrets), so nothing has to run as root.
namespace platform {

class LinuxWirelessInterface final : public WirelessInterface {
    Q_OBJECT
public:
    LinuxWirelessInterface(QString name, std::shared_ptr<NetworkManagerClient> networkManager,
                           QObject* parent = nullptr);
    ~LinuxWirelessInterface() override;

    QString interfaceName() const override { return name_; }
    InterfaceSnapshot snapshot() const override;

    ScanOutcome scanForNetworksWithSSID(const QByteArray& ssid) override;
    ScanOutcome scanForNetworksWithBSSID(const QString& bssid) override;
    QList<ScanResult> cachedScanResults() const override;

    MaybeError setPower(bool on) override;
    void disassociate() override;
    MaybeError associateToNetwork(const ScanResult& network, const QString& password) override;
    MaybeError associateToEnterpriseNetwork(const ScanResult& network, const QString& identity,
                                            const QString& username, const QString& password,
                                            const EapOptions& eap) override;
    MaybeError startIBSSModeWithSSID(const QByteArray& ssid, int security, int channel,
                                     const QString& password) override;

    QList<NetworkProfile> networkProfiles() const override;
    QList<EapProfile> allUser8021XProfiles() const override;

    std::optional<QString> copyPassword(const QByteArray& ssid) const override;
    std::optional<EapCredentials> copyEAPUsernameAndPassword(const QByteArray& ssid) const override;
    std::optional<QString> copyEAPIdentity(const QByteArray& ssid) const override;

    // Long enough for a full scan with passive DFS channels and NetworkManager's rate limit.
    static constexpr std::chrono::milliseconds scanTimeout{15000};

private:
    int ifindex() const;
    bool networkManagerAvailable() const;
    NmResult<QString> devicePath() const;
    bool powerOn(const QString& wiphyName) const;
    ScanOutcome freshScan(const QList<QByteArray>& probes);
    void waitForKernelScan(int index, const QList<QByteArray>& probes) const;
    QList<ScanResult> collectResults(platform::nl80211::RequestSocket& socket, int index, MaybeError* error) const;
    void readConfigEvents();
    // The stored secrets of one SSID, asked of NetworkManager once for the three look-ups a
    // join sheet makes in a row; each ask may cost the user a polkit prompt.
    std::optional<NmSecrets> storedSecrets(const QByteArray& ssid) const;

    QString name_;
    std::shared_ptr<NetworkManagerClient> networkManager_;
    platform::rfkill::RfkillMonitor* rfkill_ = nullptr;
    std::unique_ptr<platform::nl80211::EventSocket> configEvents_;
    QSocketNotifier* configNotifier_ = nullptr;
    mutable std::mutex secretsMutex_;
    mutable QByteArray secretsSsid_;
    mutable std::optional<NmSecrets> secrets_;
    mutable QElapsedTimer secretsAge_;
};

} // namespace platform
