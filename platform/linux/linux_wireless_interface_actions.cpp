// The half of the Linux interface that acts or reads stored configuration, all of it through
// NetworkManager so the desktop user's own authorisation suffices.
#include "platform/linux/linux_wireless_interface.h"

#include "scan/scan_result_derivation.h"

namespace platform {

MaybeError LinuxWirelessInterface::setPower(bool on)
{
    // NetworkManager first: it persists the choice and would undo a bare rfkill change when
    // it restarts. The kernel switch serves where NetworkManager is absent or refuses.
    MaybeError managerError;
    if (networkManagerAvailable()) {
        managerError = networkManager_->setWirelessEnabled(on);
        if (!managerError)
            return std::nullopt;
    }
    const MaybeError switchError = platform::rfkill::RfkillMonitor::setWlanSoftBlock(!on);
    if (!switchError)
        return std::nullopt;
    return managerError ? managerError : switchError;
}

void LinuxWirelessInterface::disassociate()
{
    const auto device = devicePath();
    if (device.ok())
        networkManager_->disconnectDevice(device.value);
}

MaybeError LinuxWirelessInterface::associateToNetwork(const ScanResult& network, const QString& password)
{
    const auto device = devicePath();
    if (!device.ok())
        return device.error;
    NmConnectRequest request;
    request.devicePath = device.value;
    request.ssid = network.ssidData;
    request.bssid = network.bssid;
    const scan::AuthenticationSuites suites = scan::authenticationSuites(network.informationElementData);
    request.security = nmSecurityKindForNetwork(network.securityMode, suites.psk, suites.sae, suites.owe);
    request.passphrase = password;
    return networkManager_->connectToNetwork(request);
}

MaybeError LinuxWirelessInterface::associateToEnterpriseNetwork(const ScanResult& network, const QString& identity,
                                                                const QString& username, const QString& password,
                                                                const EapOptions& eap)
{
    const auto device = devicePath();
    if (!device.ok())
        return device.error;
    NmConnectRequest request;
    request.devicePath = device.value;
    request.ssid = network.ssidData;
    request.bssid = network.bssid;
    request.security = network.securityMode == SecurityDynamicWEP ? NmSecurityKind::DynamicWep
                                                                  : NmSecurityKind::Enterprise;
    request.identity = identity;
    request.username = username;
    request.eapMethod = eap.method == EapOptions::Method::TtlsPap ? QStringLiteral("ttls") : QStringLiteral("peap");
    request.phase2Auth = eap.method == EapOptions::Method::TtlsPap ? QStringLiteral("pap") : QStringLiteral("mschapv2");
    request.caCertificatePath = eap.caCertificatePath;
    request.passphrase = password;
    return networkManager_->connectToNetwork(request);
}

MaybeError LinuxWirelessInterface::startIBSSModeWithSSID(const QByteArray& ssid, int security, int channel,
                                                         const QString& password)
{
    const auto device = devicePath();
    if (!device.ok())
        return device.error;
    // Ad-hoc networks only run open, with WEP, or with WPA2-PSK; a passphrase with any other
    // security asks for the strongest of those.
    NmSecurityKind kind = NmSecurityKind::WpaPersonal;
    if (password.isEmpty())
        kind = NmSecurityKind::Open;
    else if (security == SecurityWEP)
        kind = NmSecurityKind::Wep;
    return networkManager_->startAdHoc(device.value, ssid, channel, kind, password);
}

QList<NetworkProfile> LinuxWirelessInterface::networkProfiles() const
{
    if (!networkManagerAvailable())
        return {};
    QList<NetworkProfile> profiles;
    for (const auto& stored : networkManager_->savedWifiProfiles().value)
        profiles.append({stored.ssid, scan::ssidText(stored.ssid), stored.security});
    return profiles;
}

QList<EapProfile> LinuxWirelessInterface::allUser8021XProfiles() const
{
    if (!networkManagerAvailable())
        return {};
    QList<EapProfile> profiles;
    for (const auto& stored : networkManager_->savedWifiProfiles().value) {
        if (stored.eapIdentity.isEmpty())
            continue;
        // Passwords stay with NetworkManager until one is asked for by SSID.
        profiles.append({stored.id, scan::ssidText(stored.ssid), stored.eapIdentity, QString()});
    }
    return profiles;
}

std::optional<QString> LinuxWirelessInterface::copyPassword(const QByteArray& ssid) const
{
    if (!networkManagerAvailable())
        return std::nullopt;
    const auto secrets = storedSecrets(ssid);
    return secrets ? secrets->passphrase : std::nullopt;
}

std::optional<EapCredentials> LinuxWirelessInterface::copyEAPUsernameAndPassword(const QByteArray& ssid) const
{
    if (!networkManagerAvailable())
        return std::nullopt;
    const auto secrets = storedSecrets(ssid);
    if (!secrets || (!secrets->eapUsername && !secrets->eapPassword))
        return std::nullopt;
    return EapCredentials{secrets->eapUsername.value_or(QString()), secrets->eapPassword.value_or(QString())};
}

std::optional<QString> LinuxWirelessInterface::copyEAPIdentity(const QByteArray& ssid) const
{
    if (!networkManagerAvailable())
        return std::nullopt;
    const auto secrets = storedSecrets(ssid);
    return secrets ? secrets->eapIdentity : std::nullopt;
}

std::optional<NmSecrets> LinuxWirelessInterface::storedSecrets(const QByteArray& ssid) const
{
    // Long enough for one opening of the join sheet, short enough that a changed profile shows.
    constexpr qint64 reuseMs = 10000;
    const std::lock_guard lock(secretsMutex_);
    if (secretsAge_.isValid() && secretsSsid_ == ssid && !secretsAge_.hasExpired(reuseMs))
        return secrets_;
    secrets_ = networkManager_->secretsForSsid(ssid);
    secretsSsid_ = ssid;
    secretsAge_.start();
    return secrets_;
}

} // namespace platform
