#include "platform/linux/network_manager_settings.h"

#include "core/units.h"
#include "platform/api/scan_result.h"

#include <QDBusError>
#include <QStringList>

namespace platform {

NmSecurityKind nmSecurityKindForCode(int securityCode)
{
    switch (securityCode) {
    case SecurityNone:
        return NmSecurityKind::Open;
    case SecurityWEP:
        return NmSecurityKind::Wep;
    case SecurityDynamicWEP:
        return NmSecurityKind::DynamicWep;
    case SecurityWPAEnterprise:
    case SecurityWPAEnterpriseMixed:
    case SecurityWPA2Enterprise:
    case SecurityEnterprise:
        return NmSecurityKind::Enterprise;
    default:
        // "wpa-psk" lets the supplicant pick WPA, WPA2 or SAE as the access point offers, so
        // it also serves networks in WPA3 transition mode.
        return NmSecurityKind::WpaPersonal;
    }
}

NmSecurityKind nmSecurityKindForNetwork(int securityCode, bool offersPsk, bool offersSae, bool offersOwe)
{
    const NmSecurityKind kind = nmSecurityKindForCode(securityCode);
    if (kind != NmSecurityKind::WpaPersonal)
        return kind;
    if (offersSae && !offersPsk)
        return NmSecurityKind::Wpa3Personal;
    if (offersOwe && !offersPsk && !offersSae)
        return NmSecurityKind::Owe;
    return kind;
}

namespace nm_settings {
namespace {

const QString connectionKey = QStringLiteral("connection");
const QString wirelessKey = QStringLiteral("802-11-wireless");
const QString securityKey = QStringLiteral("802-11-wireless-security");
const QString eapKey = QStringLiteral("802-1x");

// Secrets passed with flags 0 are kept by NetworkManager itself, so no secret agent is needed.
constexpr uint secretKeptBySystem = 0;
constexpr uint wepKeyIsKey = 1;
constexpr uint wepKeyIsPassphrase = 2;

bool isHex(const QString& text)
{
    for (QChar c : text) {
        if (!c.isDigit() && (c.toLower() < QLatin1Char('a') || c.toLower() > QLatin1Char('f')))
            return false;
    }
    return true;
}

// NetworkManager rejects a key of the wrong kind outright, so a text that cannot be a literal
// 40/104-bit key is sent as a passphrase to hash.
uint wepKeyType(const QString& key)
{
    const auto length = key.size();
    if (length == 5 || length == 13 || ((length == 10 || length == 26) && isHex(key)))
        return wepKeyIsKey;
    return wepKeyIsPassphrase;
}

QByteArray macBytes(const QString& bssid)
{
    const QStringList parts = bssid.split(QLatin1Char(':'));
    if (parts.size() != 6)
        return {};
    QByteArray bytes;
    for (const QString& part : parts) {
        bool ok = false;
        const uint value = part.toUInt(&ok, 16);
        if (!ok || part.size() > 2 || value > 0xff)
            return {};
        bytes.append(static_cast<char>(value));
    }
    return bytes;
}

QVariantMap connectionSetting(const QByteArray& ssid, const QString& userName, const QString& uuid, bool autoconnect)
{
    // A profile listing exactly one user needs only settings.modify.own, which polkit grants an
    // active session without an administrator password.
    return {
        {QStringLiteral("type"), wirelessKey},
        {QStringLiteral("id"), QString::fromUtf8(ssid)},
        {QStringLiteral("uuid"), uuid},
        {QStringLiteral("autoconnect"), autoconnect},
        {QStringLiteral("permissions"), QStringList{QStringLiteral("user:%1:").arg(userName)}},
    };
}

QVariantMap automaticAddressing(const QString& method)
{
    return {{QStringLiteral("method"), method}};
}

QVariantMap wepSecurity(const QString& key)
{
    return {
        {QStringLiteral("key-mgmt"), QStringLiteral("none")},
        {QStringLiteral("auth-alg"), QStringLiteral("open")},
        {QStringLiteral("wep-key0"), key},
        {QStringLiteral("wep-key-type"), wepKeyType(key)},
        {QStringLiteral("wep-tx-keyidx"), 0u},
        {QStringLiteral("wep-key-flags"), secretKeptBySystem},
    };
}

QVariantMap pskSecurity(const QString& keyManagement, const QString& passphrase)
{
    return {
        {QStringLiteral("key-mgmt"), keyManagement},
        {QStringLiteral("psk"), passphrase},
        {QStringLiteral("psk-flags"), secretKeptBySystem},
    };
}

QVariantMap eapSetting(const NmConnectRequest& request)
{
    const QString userName = request.username.isEmpty() ? request.identity : request.username;
    QVariantMap eap{
        {QStringLiteral("eap"), QStringList{request.eapMethod}},
        {QStringLiteral("identity"), userName},
        {QStringLiteral("password"), request.passphrase},
        {QStringLiteral("password-flags"), secretKeptBySystem},
        {QStringLiteral("phase2-auth"), request.phase2Auth},
    };
    // NetworkManager takes a certificate file as a "file://" URI in bytes, ending in a NUL;
    // without one it uses the system's CA store.
    if (request.caCertificatePath.isEmpty())
        eap.insert(QStringLiteral("system-ca-certs"), true);
    else
        eap.insert(QStringLiteral("ca-cert"), QByteArray("file://") + request.caCertificatePath.toUtf8() + QByteArray(1, '\0'));
    if (!request.identity.isEmpty() && request.identity != userName)
        eap.insert(QStringLiteral("anonymous-identity"), request.identity);
    return eap;
}

int personalOrEnterpriseCode(const QStringList& protocols, int wpaOnly, int mixed, int wpa2)
{
    const bool wpa = protocols.contains(QStringLiteral("wpa"));
    const bool rsn = protocols.contains(QStringLiteral("rsn"));
    if (wpa && !rsn)
        return wpaOnly;
    return wpa && rsn ? mixed : wpa2;
}

int securityCode(const NmConnectionSettings& settings)
{
    if (!settings.contains(securityKey))
        return SecurityNone;
    const QVariantMap security = settings.value(securityKey);
    const QString keyManagement = security.value(QStringLiteral("key-mgmt")).toString();
    const QStringList protocols = security.value(QStringLiteral("proto")).toStringList();
    if (keyManagement == QLatin1String("none"))
        return SecurityWEP;
    if (keyManagement == QLatin1String("ieee8021x"))
        return SecurityDynamicWEP;
    if (keyManagement == QLatin1String("owe"))
        return SecurityNone;
    if (keyManagement == QLatin1String("wpa-psk"))
        return personalOrEnterpriseCode(protocols, SecurityWPAPersonal, SecurityWPAPersonalMixed, SecurityWPA2Personal);
    if (keyManagement == QLatin1String("wpa-eap"))
        return personalOrEnterpriseCode(protocols, SecurityWPAEnterprise, SecurityWPAEnterpriseMixed,
                                        SecurityWPA2Enterprise);
    if (keyManagement == QLatin1String("wpa-eap-suite-b-192"))
        return SecurityEnterprise;
    return SecurityPersonal;
}

std::optional<QString> nonEmpty(const QVariant& value)
{
    const QString text = value.toString();
    if (text.isEmpty())
        return std::nullopt;
    return text;
}

} // namespace

NmConnectionSettings infrastructure(const NmConnectRequest& request, const QString& userName, const QString& uuid)
{
    QVariantMap wireless{
        {QStringLiteral("ssid"), request.ssid},
        {QStringLiteral("mode"), QStringLiteral("infrastructure")},
    };
    const QByteArray bssid = macBytes(request.bssid);
    if (!bssid.isEmpty())
        wireless.insert(QStringLiteral("bssid"), bssid);

    NmConnectionSettings settings{
        {connectionKey, connectionSetting(request.ssid, userName, uuid, true)},
        {wirelessKey, wireless},
        {QStringLiteral("ipv4"), automaticAddressing(QStringLiteral("auto"))},
        {QStringLiteral("ipv6"), automaticAddressing(QStringLiteral("auto"))},
    };
    switch (request.security) {
    case NmSecurityKind::Open:
        break;
    case NmSecurityKind::Wep:
        settings.insert(securityKey, wepSecurity(request.passphrase));
        break;
    case NmSecurityKind::WpaPersonal:
        settings.insert(securityKey, pskSecurity(QStringLiteral("wpa-psk"), request.passphrase));
        break;
    case NmSecurityKind::Wpa3Personal:
        settings.insert(securityKey, pskSecurity(QStringLiteral("sae"), request.passphrase));
        break;
    case NmSecurityKind::Owe:
        settings.insert(securityKey, QVariantMap{{QStringLiteral("key-mgmt"), QStringLiteral("owe")}});
        break;
    case NmSecurityKind::DynamicWep:
        settings.insert(securityKey, QVariantMap{{QStringLiteral("key-mgmt"), QStringLiteral("ieee8021x")}});
        settings.insert(eapKey, eapSetting(request));
        break;
    case NmSecurityKind::Enterprise:
        settings.insert(securityKey, QVariantMap{{QStringLiteral("key-mgmt"), QStringLiteral("wpa-eap")}});
        settings.insert(eapKey, eapSetting(request));
        break;
    }
    return settings;
}

NmResult<NmConnectionSettings> adHoc(const QByteArray& ssid, int channel, NmSecurityKind security,
                                     const QString& passphrase, const QString& userName, const QString& uuid)
{
    const auto refuse = [](const QString& why) {
        return NmResult<NmConnectionSettings>{
            {}, PlatformError{QString::fromLatin1(NetworkManagerClient::defaultService),
                              static_cast<int>(QDBusError::InvalidArgs), why, {}, {}}};
    };
    QString band;
    if (core::bandForChannel(channel) == core::ChannelBand::Band2GHz)
        band = QStringLiteral("bg");
    else if (channel >= 32 && channel <= 177)
        band = QStringLiteral("a");
    else
        return refuse(QStringLiteral("Channel %1 is not a 2.4 or 5 GHz channel.").arg(channel));

    // Ad-hoc networks have no DHCP server unless NetworkManager runs one, so peers pick
    // link-local addresses.
    NmConnectionSettings settings{
        {connectionKey, connectionSetting(ssid, userName, uuid, false)},
        {wirelessKey,
         QVariantMap{
             {QStringLiteral("ssid"), ssid},
             {QStringLiteral("mode"), QStringLiteral("adhoc")},
             {QStringLiteral("band"), band},
             {QStringLiteral("channel"), static_cast<uint>(channel)},
         }},
        {QStringLiteral("ipv4"), automaticAddressing(QStringLiteral("link-local"))},
        {QStringLiteral("ipv6"), automaticAddressing(QStringLiteral("link-local"))},
    };
    switch (security) {
    case NmSecurityKind::Open:
        break;
    case NmSecurityKind::Wep:
        settings.insert(securityKey, wepSecurity(passphrase));
        break;
    case NmSecurityKind::WpaPersonal: {
        // The supplicant can only run RSN with CCMP in an IBSS; anything looser is refused.
        QVariantMap psk = pskSecurity(QStringLiteral("wpa-psk"), passphrase);
        psk.insert(QStringLiteral("proto"), QStringList{QStringLiteral("rsn")});
        psk.insert(QStringLiteral("pairwise"), QStringList{QStringLiteral("ccmp")});
        psk.insert(QStringLiteral("group"), QStringList{QStringLiteral("ccmp")});
        psk.insert(QStringLiteral("auth-alg"), QStringLiteral("open"));
        settings.insert(securityKey, psk);
        break;
    }
    default:
        return refuse(QStringLiteral("An ad-hoc network can be open or secured with WEP or WPA2 only."));
    }
    return {settings, std::nullopt};
}

std::optional<NmWifiProfile> wifiProfile(const QString& connectionPath, const NmConnectionSettings& settings)
{
    const QVariantMap connection = settings.value(connectionKey);
    if (connection.value(QStringLiteral("type")).toString() != wirelessKey)
        return std::nullopt;
    const QVariantMap eap = settings.value(eapKey);
    NmWifiProfile profile;
    profile.connectionPath = connectionPath;
    profile.id = connection.value(QStringLiteral("id")).toString();
    profile.ssid = settings.value(wirelessKey).value(QStringLiteral("ssid")).toByteArray();
    profile.security = securityCode(settings);
    profile.eapIdentity = eap.value(QStringLiteral("identity")).toString();
    profile.eapAnonymousIdentity = eap.value(QStringLiteral("anonymous-identity")).toString();
    profile.timestamp = connection.value(QStringLiteral("timestamp")).toULongLong();
    return profile;
}

NmSecrets secrets(const NmConnectionSettings& profile, const NmConnectionSettings& wirelessSecurity,
                  const NmConnectionSettings& eap)
{
    const QVariantMap security = wirelessSecurity.value(securityKey);
    NmSecrets found;
    found.passphrase = nonEmpty(security.value(QStringLiteral("psk")));
    if (!found.passphrase)
        found.passphrase = nonEmpty(security.value(QStringLiteral("wep-key0")));
    found.eapPassword = nonEmpty(eap.value(eapKey).value(QStringLiteral("password")));
    found.eapUsername = nonEmpty(profile.value(eapKey).value(QStringLiteral("identity")));
    found.eapIdentity = nonEmpty(profile.value(eapKey).value(QStringLiteral("anonymous-identity")));
    return found;
}

} // namespace nm_settings
} // namespace platform
