#pragma once

#include "platform/api/platform_error.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <optional>

// NetworkManager as the Linux backend uses it over D-Bus: fresh scans, the global Wi-Fi switch,
// joining and leaving networks, and the user's stored Wi-Fi profiles and their secrets.
// Every call blocks for a bounded time and reports failures as values; none needs root.
namespace platform {

// A setting name to its keys, the shape NetworkManager exchanges profiles in (D-Bus a{sa{sv}}).
using NmConnectionSettings = QMap<QString, QVariantMap>;

// The security a profile is created with; each maps to one key management of NetworkManager.
enum class NmSecurityKind {
    Open,
    Wep,
    WpaPersonal,   // WPA/WPA2, and WPA3 where the access point offers it
    Wpa3Personal,  // SAE only
    Owe,           // Opportunistic Wireless Encryption: encrypted, no passphrase
    DynamicWep,    // 802.1X with WEP keys
    Enterprise,    // WPA/WPA2/WPA3 with 802.1X
};

// The kind to connect with for a network's security code (platform::SecurityCode).
NmSecurityKind nmSecurityKindForCode(int securityCode);
// The same, refined by the key managements the network's elements offer: SAE without PSK
// needs "sae", OWE without a passphrase kind needs "owe".
NmSecurityKind nmSecurityKindForNetwork(int securityCode, bool offersPsk, bool offersSae, bool offersOwe);

// A value or the error that prevented it.
template <typename T>
struct NmResult {
    T value{};
    MaybeError error;
    bool ok() const { return !error.has_value(); }
};

struct NmConnectRequest {
    QString devicePath;
    QString accessPointPath;  // empty: NetworkManager finds the network by SSID
    QByteArray ssid;
    QString bssid;            // "aa:bb:cc:dd:ee:ff"; empty lets any BSS of the SSID serve
    NmSecurityKind security = NmSecurityKind::Open;
    QString passphrase;       // the PSK, the WEP key, or the 802.1X password
    QString identity;         // 802.1X outer identity; also the user name when username is empty
    QString username;         // 802.1X user name
    QString eapMethod = QStringLiteral("peap");
    QString phase2Auth = QStringLiteral("mschapv2");
    QString caCertificatePath;  // empty: the system's CA store
};

struct NmWifiProfile {
    QString connectionPath;
    QString id;               // the name NetworkManager shows for the profile
    QByteArray ssid;
    int security = 0;         // platform::SecurityCode
    QString eapIdentity;      // 802-1x identity, i.e. the user name
    QString eapAnonymousIdentity;
    qulonglong timestamp = 0; // last activation, seconds since the epoch; 0 never
};

// Whatever the stored profile of an SSID lets the caller read; a field is empty when the
// profile has no such secret or NetworkManager would not hand it out.
struct NmSecrets {
    std::optional<QString> passphrase;   // PSK or first WEP key
    std::optional<QString> eapUsername;
    std::optional<QString> eapPassword;
    std::optional<QString> eapIdentity;  // the outer (anonymous) identity
};

struct NmTimeouts {
    int queryMs = 5000;
    // Calls NetworkManager may hold while a polkit agent asks the user to authenticate.
    int authorisedActionMs = 90000;
    // From accepting a profile to the link being up: association, authentication and DHCP.
    int activationMs = 45000;
};

// NetworkManager's reason for a device's last state change (NMDeviceStateReason) in words.
QString nmDeviceStateReasonText(uint reason);

class NetworkManagerClient : public QObject {
    Q_OBJECT
public:
    static constexpr const char* defaultService = "org.freedesktop.NetworkManager";

    explicit NetworkManagerClient(QDBusConnection bus = QDBusConnection::systemBus(),
                                  QString service = QString::fromLatin1(defaultService),
                                  NmTimeouts timeouts = {}, QObject* parent = nullptr);
    ~NetworkManagerClient() override;

    // Whether the service currently owns its name on the bus; quick and never blocks long.
    bool isAvailable() const;

    // Action name to "yes" / "auth" / "no", as polkit would answer for this session.
    NmResult<QMap<QString, QString>> permissions() const;
    NmResult<QString> devicePathForInterface(const QString& interfaceName) const;

    // Asks for a fresh scan, probing the given SSIDs as well; returns once NetworkManager has
    // accepted. Completion shows as a change of lastScanMs().
    MaybeError requestScan(const QString& devicePath, const QList<QByteArray>& ssids = {});
    // CLOCK_BOOTTIME milliseconds of the last completed scan; -1 when the device never scanned.
    NmResult<qint64> lastScanMs(const QString& devicePath) const;
    // Blocks the calling thread until lastScanMs() differs from previousLastScanMs or the time
    // is up; true when a scan completed. Needs an event dispatcher in the calling thread only
    // for the change notification; the value is polled as well.
    bool waitForScanCompletion(const QString& devicePath, qint64 previousLastScanMs, int timeoutMs) const;

    NmResult<bool> wirelessEnabled() const;
    MaybeError setWirelessEnabled(bool on);

    // Leaves the current network and keeps the device from rejoining on its own.
    MaybeError disconnectDevice(const QString& devicePath);
    // Creates a profile limited to the current user and activates it; success means the
    // connection reached "activated". On failure the profile made for it is deleted again, so
    // a failed join leaves nothing behind; profiles that existed before are never touched.
    MaybeError connectToNetwork(const NmConnectRequest& request);
    // An ad-hoc network on a 2.4 or 5 GHz channel; security is Open, Wep or WpaPersonal.
    MaybeError startAdHoc(const QString& devicePath, const QByteArray& ssid, int channel,
                          NmSecurityKind security, const QString& passphrase);

    // The Wi-Fi profiles this user may read; profiles NetworkManager hides are left out.
    NmResult<QList<NmWifiProfile>> savedWifiProfiles() const;
    // Secrets of the most recently used profile of the SSID; nullopt when no profile has it.
    std::optional<NmSecrets> secretsForSsid(const QByteArray& ssid) const;

    // The login name profiles are limited to.
    static QString currentUserName();

signals:
    void wirelessEnabledChanged(bool enabled);

private slots:
    void onManagerPropertiesChanged(const QString& interfaceName, const QVariantMap& changed,
                                    const QStringList& invalidated);

private:
    NmResult<QVariantMap> allProperties(const QString& path, const QString& interfaceName) const;
    NmResult<QDBusMessage> call(const QString& path, const QString& interfaceName, const QString& method,
                                const QVariantList& arguments, int timeoutMs) const;
    MaybeError addAndActivate(const NmConnectionSettings& settings, const QString& devicePath,
                              const QString& specificObject);
    // Polls the active connection until it is activated, gone or deactivated, or time is up.
    MaybeError waitForActivation(const QString& activePath, const QString& devicePath, const QString& ssidText);
    NmResult<NmConnectionSettings> connectionSettings(const QString& connectionPath) const;
    NmResult<NmConnectionSettings> connectionSecrets(const QString& connectionPath, const QString& setting) const;

    QDBusConnection bus_;
    QString service_;
    NmTimeouts timeouts_;
};

} // namespace platform
