#include "platform/linux/network_manager_client.h"

#include "platform/linux/network_manager_settings.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <QUuid>

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace platform {
namespace {

const QString managerPath = QStringLiteral("/org/freedesktop/NetworkManager");
const QString settingsPath = QStringLiteral("/org/freedesktop/NetworkManager/Settings");
const QString managerInterface = QStringLiteral("org.freedesktop.NetworkManager");
const QString settingsInterface = QStringLiteral("org.freedesktop.NetworkManager.Settings");
const QString connectionInterface = QStringLiteral("org.freedesktop.NetworkManager.Settings.Connection");
const QString deviceInterface = QStringLiteral("org.freedesktop.NetworkManager.Device");
const QString activeInterface = QStringLiteral("org.freedesktop.NetworkManager.Connection.Active");
const QString wirelessInterface = QStringLiteral("org.freedesktop.NetworkManager.Device.Wireless");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString propertiesChanged = QStringLiteral("PropertiesChanged");
const char* const propertiesChangedSlot = "onPropertiesChanged(QString,QVariantMap,QStringList)";

constexpr uint deviceTypeWifi = 2;
constexpr int scanPollMs = 200;
constexpr int activationPollMs = 200;
// NMActiveConnectionState
constexpr uint activeStateActivated = 2;
constexpr uint activeStateDeactivated = 4;

void registerDBusTypes()
{
    static std::once_flag once;
    std::call_once(once, [] {
        qDBusRegisterMetaType<QList<QByteArray>>();
        qDBusRegisterMetaType<QMap<QString, QString>>();
        qDBusRegisterMetaType<NmConnectionSettings>();
    });
}

PlatformError errorWithDescription(const QString& name, int code, const QString& description)
{
    PlatformError error{QString::fromLatin1(NetworkManagerClient::defaultService), code, description, name, {}};
    if (name.contains(QLatin1String("PermissionDenied")) || name.contains(QLatin1String("NotAuthorized")))
        error.recoverySuggestion = QStringLiteral(
            "Use the computer's own active session, or ask an administrator to allow this NetworkManager action.");
    return error;
}

PlatformError errorFrom(const QDBusError& dbusError)
{
    QString description = dbusError.message();
    switch (dbusError.type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        description = QStringLiteral("NetworkManager did not answer in time.");
        break;
    case QDBusError::ServiceUnknown:
        description = QStringLiteral("NetworkManager is not running.");
        break;
    case QDBusError::Disconnected:
        description = QStringLiteral("The system message bus cannot be reached.");
        break;
    default:
        if (description.isEmpty())
            description = QStringLiteral("NetworkManager refused the request (%1).").arg(dbusError.name());
    }
    return errorWithDescription(dbusError.name(), static_cast<int>(dbusError.type()), description);
}

PlatformError invalidArgument(const QString& description)
{
    return errorWithDescription(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"),
                                static_cast<int>(QDBusError::InvalidArgs), description);
}

// QDBusObjectPath warns and empties itself on a malformed path; checking first keeps a bad
// caller's value an ordinary error.
bool isObjectPath(const QString& path)
{
    if (path == QLatin1String("/"))
        return true;
    if (!path.startsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('/')) || path.contains(QLatin1String("//")))
        return false;
    return std::all_of(path.begin(), path.end(), [](QChar c) {
        return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
               (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('_') || c == QLatin1Char('/');
    });
}

QVariant unwrapVariant(const QVariant& value)
{
    if (value.canConvert<QDBusVariant>())
        return value.value<QDBusVariant>().variant();
    return value;
}

QVariant firstArgument(const QDBusMessage& reply)
{
    const QVariantList arguments = reply.arguments();
    return arguments.isEmpty() ? QVariant() : arguments.first();
}

// Wakes a waiting event loop as soon as the device reports a new LastScan.
class ScanCompletionWatcher : public QObject {
    Q_OBJECT
public:
    explicit ScanCompletionWatcher(QEventLoop& loop) : loop_(loop) {}

public slots:
    void onPropertiesChanged(const QString& interfaceName, const QVariantMap& changed, const QStringList& invalidated)
    {
        if (interfaceName == wirelessInterface &&
            (changed.contains(QStringLiteral("LastScan")) || invalidated.contains(QStringLiteral("LastScan"))))
            loop_.quit();
    }

private:
    QEventLoop& loop_;
};

// The (state, reason) pair of a device's StateReason property; reason 0 when it cannot be read.
uint reasonOf(const QVariant& stateReason)
{
    if (!stateReason.canConvert<QDBusArgument>())
        return 0;
    const QDBusArgument argument = stateReason.value<QDBusArgument>();
    uint state = 0;
    uint reason = 0;
    argument.beginStructure();
    argument >> state >> reason;
    argument.endStructure();
    return reason;
}

} // namespace

QString nmDeviceStateReasonText(uint reason)
{
    switch (reason) {
    case 7: return QStringLiteral("no secrets");
    case 8: return QStringLiteral("wrong password");
    case 9: return QStringLiteral("the Wi-Fi settings were refused");
    case 10: return QStringLiteral("authentication failed");
    case 11: return QStringLiteral("authentication timed out");
    case 5: case 15: case 16: case 17: return QStringLiteral("no IP address was obtained");
    case 36: return QStringLiteral("a newer connection took over the device");
    case 39: return QStringLiteral("the user disconnected");
    case 53: return QStringLiteral("network not found");
    default: return QStringLiteral("NetworkManager gave reason %1").arg(reason);
    }
}

NetworkManagerClient::NetworkManagerClient(QDBusConnection bus, QString service, NmTimeouts timeouts, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), service_(std::move(service)), timeouts_(timeouts)
{
    registerDBusTypes();
    bus_.connect(service_, managerPath, propertiesInterface, propertiesChanged, this,
                 SLOT(onManagerPropertiesChanged(QString,QVariantMap,QStringList)));
}

NetworkManagerClient::~NetworkManagerClient()
{
    bus_.disconnect(service_, managerPath, propertiesInterface, propertiesChanged, this,
                    SLOT(onManagerPropertiesChanged(QString,QVariantMap,QStringList)));
}

bool NetworkManagerClient::isAvailable() const
{
    if (!bus_.isConnected())
        return false;
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    message.setArguments({service_});
    const QDBusMessage reply = bus_.call(message, QDBus::Block, timeouts_.queryMs);
    return reply.type() == QDBusMessage::ReplyMessage && firstArgument(reply).toBool();
}

NmResult<QMap<QString, QString>> NetworkManagerClient::permissions() const
{
    const auto reply = call(managerPath, managerInterface, QStringLiteral("GetPermissions"), {}, timeouts_.queryMs);
    if (!reply.ok())
        return {{}, reply.error};
    return {qdbus_cast<QMap<QString, QString>>(firstArgument(reply.value)), std::nullopt};
}

NmResult<QString> NetworkManagerClient::devicePathForInterface(const QString& interfaceName) const
{
    const auto reply =
        call(managerPath, managerInterface, QStringLiteral("GetDeviceByIpIface"), {interfaceName}, timeouts_.queryMs);
    if (!reply.ok())
        return {{}, reply.error};
    const QString path = qdbus_cast<QDBusObjectPath>(firstArgument(reply.value)).path();
    const auto device = allProperties(path, deviceInterface);
    if (!device.ok())
        return {{}, device.error};
    if (device.value.value(QStringLiteral("DeviceType")).toUInt() != deviceTypeWifi)
        return {{}, invalidArgument(QStringLiteral("%1 is not a Wi-Fi device.").arg(interfaceName))};
    return {path, std::nullopt};
}

MaybeError NetworkManagerClient::requestScan(const QString& devicePath, const QList<QByteArray>& ssids)
{
    QVariantMap options;
    if (!ssids.isEmpty())
        options.insert(QStringLiteral("ssids"), QVariant::fromValue(ssids));
    return call(devicePath, wirelessInterface, QStringLiteral("RequestScan"), {options},
                timeouts_.authorisedActionMs)
        .error;
}

NmResult<qint64> NetworkManagerClient::lastScanMs(const QString& devicePath) const
{
    const auto reply = call(devicePath, propertiesInterface, QStringLiteral("Get"),
                            {wirelessInterface, QStringLiteral("LastScan")}, timeouts_.queryMs);
    if (!reply.ok())
        return {{}, reply.error};
    return {unwrapVariant(firstArgument(reply.value)).toLongLong(), std::nullopt};
}

bool NetworkManagerClient::waitForScanCompletion(const QString& devicePath, qint64 previousLastScanMs,
                                                 int timeoutMs) const
{
    QEventLoop loop;
    ScanCompletionWatcher watcher(loop);
    // A handle of the same connection: subscribing changes no state of this client.
    QDBusConnection bus = bus_;
    bus.connect(service_, devicePath, propertiesInterface, propertiesChanged, &watcher, propertiesChangedSlot);
    QElapsedTimer elapsed;
    elapsed.start();
    bool completed = false;
    for (;;) {
        // Polled as well as watched: the change may land between subscribing and waiting.
        const auto current = lastScanMs(devicePath);
        if (current.ok() && current.value != previousLastScanMs) {
            completed = true;
            break;
        }
        const qint64 remaining = timeoutMs - elapsed.elapsed();
        if (remaining <= 0)
            break;
        QTimer::singleShot(static_cast<int>(std::min<qint64>(remaining, scanPollMs)), &loop, &QEventLoop::quit);
        loop.exec();
    }
    bus.disconnect(service_, devicePath, propertiesInterface, propertiesChanged, &watcher, propertiesChangedSlot);
    return completed;
}

NmResult<bool> NetworkManagerClient::wirelessEnabled() const
{
    const auto properties = allProperties(managerPath, managerInterface);
    if (!properties.ok())
        return {false, properties.error};
    return {properties.value.value(QStringLiteral("WirelessEnabled")).toBool(), std::nullopt};
}

MaybeError NetworkManagerClient::setWirelessEnabled(bool on)
{
    return call(managerPath, propertiesInterface, QStringLiteral("Set"),
                {managerInterface, QStringLiteral("WirelessEnabled"), QVariant::fromValue(QDBusVariant(on))},
                timeouts_.authorisedActionMs)
        .error;
}

MaybeError NetworkManagerClient::disconnectDevice(const QString& devicePath)
{
    return call(devicePath, deviceInterface, QStringLiteral("Disconnect"), {}, timeouts_.authorisedActionMs).error;
}

MaybeError NetworkManagerClient::connectToNetwork(const NmConnectRequest& request)
{
    if (request.ssid.isEmpty())
        return invalidArgument(QStringLiteral("A network name is needed to join a network."));
    const QString uuid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const auto settings = nm_settings::infrastructure(request, currentUserName(), uuid);
    return addAndActivate(settings, request.devicePath,
                          request.accessPointPath.isEmpty() ? QStringLiteral("/") : request.accessPointPath);
}

MaybeError NetworkManagerClient::startAdHoc(const QString& devicePath, const QByteArray& ssid, int channel,
                                            NmSecurityKind security, const QString& passphrase)
{
    if (ssid.isEmpty())
        return invalidArgument(QStringLiteral("An ad-hoc network needs a name."));
    const QString uuid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const auto settings = nm_settings::adHoc(ssid, channel, security, passphrase, currentUserName(), uuid);
    if (!settings.ok())
        return settings.error;
    return addAndActivate(settings.value, devicePath, QStringLiteral("/"));
}

NmResult<QList<NmWifiProfile>> NetworkManagerClient::savedWifiProfiles() const
{
    const auto reply =
        call(settingsPath, settingsInterface, QStringLiteral("ListConnections"), {}, timeouts_.queryMs);
    if (!reply.ok())
        return {{}, reply.error};
    QList<NmWifiProfile> profiles;
    for (const QDBusObjectPath& path : qdbus_cast<QList<QDBusObjectPath>>(firstArgument(reply.value))) {
        // Profiles of other users answer PermissionDenied; they are simply not ours to list.
        const auto settings = connectionSettings(path.path());
        if (!settings.ok())
            continue;
        if (auto profile = nm_settings::wifiProfile(path.path(), settings.value))
            profiles.append(*profile);
    }
    return {profiles, std::nullopt};
}

std::optional<NmSecrets> NetworkManagerClient::secretsForSsid(const QByteArray& ssid) const
{
    const auto profiles = savedWifiProfiles();
    if (!profiles.ok())
        return std::nullopt;
    const NmWifiProfile* newest = nullptr;
    for (const NmWifiProfile& profile : profiles.value) {
        if (profile.ssid == ssid && (!newest || profile.timestamp > newest->timestamp))
            newest = &profile;
    }
    if (!newest)
        return std::nullopt;
    const auto settings = connectionSettings(newest->connectionPath);
    if (!settings.ok())
        return std::nullopt;
    // A profile without a setting has no secrets for it, and asking would only earn an error.
    NmConnectionSettings wirelessSecurity;
    NmConnectionSettings eap;
    if (settings.value.contains(QStringLiteral("802-11-wireless-security")))
        wirelessSecurity = connectionSecrets(newest->connectionPath, QStringLiteral("802-11-wireless-security")).value;
    if (settings.value.contains(QStringLiteral("802-1x")))
        eap = connectionSecrets(newest->connectionPath, QStringLiteral("802-1x")).value;
    return nm_settings::secrets(settings.value, wirelessSecurity, eap);
}

QString NetworkManagerClient::currentUserName()
{
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_name)
        return QString::fromLocal8Bit(found->pw_name);
    return qEnvironmentVariable("USER");
}

void NetworkManagerClient::onManagerPropertiesChanged(const QString& interfaceName, const QVariantMap& changed,
                                                      const QStringList&)
{
    const auto enabled = changed.constFind(QStringLiteral("WirelessEnabled"));
    if (interfaceName == managerInterface && enabled != changed.constEnd())
        emit wirelessEnabledChanged(enabled->toBool());
}

NmResult<QVariantMap> NetworkManagerClient::allProperties(const QString& path, const QString& interfaceName) const
{
    const auto reply = call(path, propertiesInterface, QStringLiteral("GetAll"), {interfaceName}, timeouts_.queryMs);
    if (!reply.ok())
        return {{}, reply.error};
    return {qdbus_cast<QVariantMap>(firstArgument(reply.value)), std::nullopt};
}

NmResult<QDBusMessage> NetworkManagerClient::call(const QString& path, const QString& interfaceName,
                                                  const QString& method, const QVariantList& arguments,
                                                  int timeoutMs) const
{
    if (!isObjectPath(path))
        return {{}, invalidArgument(QStringLiteral("\"%1\" is not a NetworkManager object.").arg(path))};
    QDBusMessage message = QDBusMessage::createMethodCall(service_, path, interfaceName, method);
    message.setArguments(arguments);
    QDBusMessage reply = bus_.call(message, QDBus::Block, timeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return {{}, errorFrom(QDBusError(reply))};
    return {reply, std::nullopt};
}

MaybeError NetworkManagerClient::addAndActivate(const NmConnectionSettings& settings, const QString& devicePath,
                                                const QString& specificObject)
{
    if (!isObjectPath(devicePath) || !isObjectPath(specificObject))
        return invalidArgument(QStringLiteral("The Wi-Fi device or network is not a NetworkManager object."));
    const auto reply = call(managerPath, managerInterface, QStringLiteral("AddAndActivateConnection"),
                            {QVariant::fromValue(settings), QVariant::fromValue(QDBusObjectPath(devicePath)),
                             QVariant::fromValue(QDBusObjectPath(specificObject))},
                            timeouts_.authorisedActionMs);
    if (!reply.ok())
        return reply.error;
    const QVariantList paths = reply.value.arguments();
    const QString connectionPath = qdbus_cast<QDBusObjectPath>(paths.value(0)).path();
    const QString activePath = qdbus_cast<QDBusObjectPath>(paths.value(1)).path();
    const QString ssidText =
        QString::fromUtf8(settings.value(QStringLiteral("802-11-wireless")).value(QStringLiteral("ssid")).toByteArray());
    const MaybeError failed = waitForActivation(activePath, devicePath, ssidText);
    if (failed && isObjectPath(connectionPath) && connectionPath != QLatin1String("/")) {
        // Only the profile this call made: it never worked, and keeping it would make
        // NetworkManager retry it on its own.
        call(managerPath, managerInterface, QStringLiteral("DeactivateConnection"),
             {QVariant::fromValue(QDBusObjectPath(activePath))}, timeouts_.queryMs);
        call(connectionPath, connectionInterface, QStringLiteral("Delete"), {}, timeouts_.authorisedActionMs);
    }
    return failed;
}

MaybeError NetworkManagerClient::waitForActivation(const QString& activePath, const QString& devicePath,
                                                   const QString& ssidText)
{
    const auto failure = [&](uint reason, const QString& words) {
        return PlatformError{QString::fromLatin1(defaultService), static_cast<int>(reason),
                             QStringLiteral("Could not join \u201C%1\u201D: %2.").arg(ssidText, words), words,
                             reason == 8 || reason == 7
                                 ? QStringLiteral("Check the password and try again.")
                                 : QString()};
    };
    const auto deviceReason = [&] {
        const auto reason = call(devicePath, propertiesInterface, QStringLiteral("Get"),
                                 {deviceInterface, QStringLiteral("StateReason")}, timeouts_.queryMs);
        return reason.ok() ? reasonOf(unwrapVariant(firstArgument(reason.value))) : 0u;
    };
    if (!isObjectPath(activePath) || activePath == QLatin1String("/"))
        return failure(0, QStringLiteral("NetworkManager did not start the connection"));
    QElapsedTimer elapsed;
    elapsed.start();
    for (;;) {
        const auto state = call(activePath, propertiesInterface, QStringLiteral("Get"),
                                {activeInterface, QStringLiteral("State")}, timeouts_.queryMs);
        // A failed activation removes its object, so "gone" is a failure like "deactivated".
        const uint value = state.ok() ? unwrapVariant(firstArgument(state.value)).toUInt() : activeStateDeactivated;
        if (value == activeStateActivated)
            return std::nullopt;
        if (value >= activeStateDeactivated) {
            const uint reason = deviceReason();
            return failure(reason, nmDeviceStateReasonText(reason));
        }
        if (elapsed.elapsed() >= timeouts_.activationMs)
            return failure(0, QStringLiteral("NetworkManager did not finish connecting in time"));
        QThread::msleep(activationPollMs);
    }
}

NmResult<NmConnectionSettings> NetworkManagerClient::connectionSettings(const QString& connectionPath) const
{
    const auto reply =
        call(connectionPath, connectionInterface, QStringLiteral("GetSettings"), {}, timeouts_.queryMs);
    if (!reply.ok())
        return {{}, reply.error};
    return {qdbus_cast<NmConnectionSettings>(firstArgument(reply.value)), std::nullopt};
}

NmResult<NmConnectionSettings> NetworkManagerClient::connectionSecrets(const QString& connectionPath,
                                                                       const QString& setting) const
{
    const auto reply =
        call(connectionPath, connectionInterface, QStringLiteral("GetSecrets"), {setting}, timeouts_.authorisedActionMs);
    if (!reply.ok())
        return {{}, reply.error};
    return {qdbus_cast<NmConnectionSettings>(firstArgument(reply.value)), std::nullopt};
}

} // namespace platform

#include "network_manager_client.moc"
