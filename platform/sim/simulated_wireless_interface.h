#pragma once

#include "platform/api/clock.h"
#include "platform/api/wireless_interface.h"
#include "platform/sim/radio_environment.h"

#include <QHash>

#include <memory>
#include <mutex>
#include <optional>

// A Wi-Fi interface in the simulated radio environment. It starts powered on and associated
// with "Skyvane Home", whose passphrase is stored.
//
// Secrets, so demos can join anything: every secured network accepts the passphrase
// "skyvane-" followed by its SSID (e.g. "skyvane-Skyvane Home"); an enterprise network accepts
// any non-empty user name with that same text as the password. Open networks need nothing.
namespace platform::sim {

enum SimulationErrorCode : int {
    SimulationErrorPoweredOff = 1,
    SimulationErrorNetworkNotFound = 2,
    SimulationErrorWrongPassphrase = 3,
    SimulationErrorCredentialsRequired = 4,
    SimulationErrorWrongCredentials = 5,
    SimulationErrorInvalidParameter = 6,
};

inline constexpr char simulationErrorDomain[] = "skyvane.simulation";

class SimulatedWirelessInterface : public WirelessInterface {
    Q_OBJECT
public:
    SimulatedWirelessInterface(QString name, std::unique_ptr<RadioEnvironment> environment,
                               std::shared_ptr<const Clock> clock,
                               core::InterfaceGeneration generation = core::InterfaceGeneration::Later,
                               QObject* parent = nullptr);

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

    // Starts or stops sharing the connection as an access point, as the system's internet
    // sharing would, so the program's reaction to that mode can be seen without hardware.
    // Refused while the radio is off; stopping rejoins the network last joined.
    MaybeError setHostingAccessPoint(bool on);

private:
    struct IbssCell {
        QByteArray ssid;
        QString bssid;
        int channel = 0;
        int security = SecurityNone;
    };
    struct Credentials {
        QString identity;
        QString username;
        QString password;
    };

    using Lock = std::unique_lock<std::mutex>;
    MaybeError join(const ScanResult& network, const std::optional<Credentials>& enterprise,
                    const QString& password);
    MaybeError poweredOffError() const;
    void remember(const QByteArray& ssid, int security);
    // Mode changes are announced after the lock is released, so a slot may call back in.
    void announce(Lock& lock, bool powerChanged, bool modeChanged);
    int modeLocked() const;
    void fillLink(InterfaceSnapshot& s, const QDateTime& now) const;
    // Leaves ad-hoc and access-point mode; true when the interface was in either.
    bool leaveSpecialModesLocked();

    const QString name_;
    const std::shared_ptr<const Clock> clock_;
    mutable std::mutex mutex_;
    std::unique_ptr<RadioEnvironment> environment_;
    bool powerOn_ = true;
    std::optional<std::size_t> station_;
    // The network rejoined when the radio comes back on, as a known network would be.
    std::optional<std::size_t> autoJoin_;
    std::optional<IbssCell> ibss_;
    bool hostingAccessPoint_ = false;
    QList<ScanResult> cached_;
    QList<NetworkProfile> profiles_;
    QHash<QByteArray, QString> passwords_;
    QHash<QByteArray, Credentials> enterpriseSecrets_;
    QList<EapProfile> eapProfiles_;
};

} // namespace platform::sim
