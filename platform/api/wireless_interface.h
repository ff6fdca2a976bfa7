#pragma once

#include "platform/api/wireless_types.h"

#include <QObject>

// One Wi-Fi interface as the logic sees it, whichever backend stands behind it (the Linux
// wireless stack, the simulated radio environment, or a replayed capture). Calls may come from
// any thread; scans block the calling thread until results are in, so callers run them off the
// user-interface thread. Notifications are delivered as Qt signals.
namespace platform {

class WirelessInterface : public QObject {
    Q_OBJECT
public:
    explicit WirelessInterface(core::InterfaceGeneration generation = core::InterfaceGeneration::Later,
                               QObject* parent = nullptr)
        : QObject(parent), generation_(generation)
    {
    }
    ~WirelessInterface() override = default;

    // Which numbering of modes, security and PHY standards this interface's values use.
    core::InterfaceGeneration generation() const { return generation_; }

    virtual QString interfaceName() const = 0;
    virtual InterfaceSnapshot snapshot() const = 0;

    // A fresh scan of all networks (empty ssid) or of one network name.
    virtual ScanOutcome scanForNetworksWithSSID(const QByteArray& ssid) = 0;
    ScanOutcome scanForNetworksWithName(const QString& name) { return scanForNetworksWithSSID(name.toUtf8()); }
    // The oldest generation's directed scan by BSSID: only that network comes back.
    virtual ScanOutcome scanForNetworksWithBSSID(const QString& bssid) = 0;
    // What the service heard recently, without scanning.
    virtual QList<ScanResult> cachedScanResults() const = 0;

    virtual MaybeError setPower(bool on) = 0;
    virtual void disassociate() = 0;
    virtual MaybeError associateToNetwork(const ScanResult& network, const QString& password) = 0;
    virtual MaybeError associateToEnterpriseNetwork(const ScanResult& network, const QString& identity,
                                                    const QString& username, const QString& password,
                                                    const EapOptions& eap) = 0;
    virtual MaybeError startIBSSModeWithSSID(const QByteArray& ssid, int security, int channel,
                                             const QString& password) = 0;

    // Stored network profiles of the interface's configuration, and the user's 802.1X profiles.
    virtual QList<NetworkProfile> networkProfiles() const = 0;
    virtual QList<EapProfile> allUser8021XProfiles() const = 0;

    // Stored secrets by SSID; nullopt when nothing is stored (the "not found" answer).
    virtual std::optional<QString> copyPassword(const QByteArray& ssid) const = 0;
    virtual std::optional<EapCredentials> copyEAPUsernameAndPassword(const QByteArray& ssid) const = 0;
    virtual std::optional<QString> copyEAPIdentity(const QByteArray& ssid) const = 0;

signals:
    void powerDidChange();
    void modeDidChange();

private:
    const core::InterfaceGeneration generation_;
};

} // namespace platform
