#include "platform/linux/network_manager_client.h"

#include "platform/api/scan_result.h"
#include "scan/scan_result_derivation.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <sys/prctl.h>

#include <csignal>

#include <memory>
#include <mutex>

using namespace platform;

namespace {

const QString nmService = QStringLiteral("org.freedesktop.NetworkManager");
const QString managerPath = QStringLiteral("/org/freedesktop/NetworkManager");
const QString wifiDevice = QStringLiteral("/org/freedesktop/NetworkManager/Devices/3");
const QString wiredDevice = QStringLiteral("/org/freedesktop/NetworkManager/Devices/1");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString wirelessInterface = QStringLiteral("org.freedesktop.NetworkManager.Device.Wireless");

// A private message bus for the whole run, so nothing here touches the machine's real buses.
class PrivateBus : public testing::Environment {
public:
    static QString address;

    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "network_manager_tests";
        static char* argv[] = {name, nullptr};
        app_ = std::make_unique<QCoreApplication>(argc, argv);
        // A crashed test must not leave its bus daemon running.
        daemon_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        daemon_.start(QStringLiteral("dbus-daemon"), {"--session", "--nofork", "--print-address"});
        if (daemon_.waitForStarted(5000) && daemon_.waitForReadyRead(5000))
            address = QString::fromUtf8(daemon_.readLine()).trimmed();
    }
    void TearDown() override
    {
        daemon_.terminate();
        daemon_.waitForFinished(5000);
        app_.reset();
    }

private:
    std::unique_ptr<QCoreApplication> app_;
    QProcess daemon_;
};
QString PrivateBus::address;
[[maybe_unused]] auto* const privateBus = testing::AddGlobalTestEnvironment(new PrivateBus);

struct StoredConnection {
    NmConnectionSettings settings;
    QMap<QString, NmConnectionSettings> secrets;  // setting name to GetSecrets answer
    bool forbidden = false;
};

// Stands in for NetworkManager: answers just the calls the client makes and records what it got.
class FakeNetworkManager : public QDBusVirtualObject {
public:
    std::mutex mutex;
    bool wirelessEnabled = true;
    qlonglong lastScan = 1000;
    bool scansComplete = true;
    QString failActionsWith;  // a D-Bus error name; empty lets actions succeed
    QMap<QString, StoredConnection> connections;
    NmConnectionSettings activated;
    QString activatedDevice;
    QString activatedSpecificObject;
    QDBusArgument scanSsids;
    uint activationState = 2;  // activated
    uint deviceReason = 0;
    QStringList deleted;
    QStringList deactivated;

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& m, const QDBusConnection& bus) override
    {
        std::lock_guard lock(mutex);
        const QVariantList args = m.arguments();
        const QString member = m.member();
        const auto reply = [&](const QVariantList& out) { return bus.send(m.createReply(out)); };
        const auto fail = [&](const QString& name, const QString& text) {
            return bus.send(m.createErrorReply(name, text));
        };
        if (m.interface() == propertiesInterface)
            return properties(m, bus);
        const bool action = member == "AddAndActivateConnection" || member == "Disconnect" || member == "RequestScan";
        if (action && !failActionsWith.isEmpty())
            return fail(failActionsWith, "Not authorized to control networking.");
        if (member == "GetDeviceByIpIface") {
            const QString name = args.value(0).toString();
            if (name != "wlan0" && name != "eth0")
                return fail("org.freedesktop.NetworkManager.UnknownDevice", "No device found for the requested iface.");
            return reply({QVariant::fromValue(QDBusObjectPath(name == "wlan0" ? wifiDevice : wiredDevice))});
        }
        if (member == "RequestScan") {
            scanSsids = qdbus_cast<QVariantMap>(args.value(0)).value("ssids").value<QDBusArgument>();
            if (scansComplete)
                QTimer::singleShot(100, this, [this, bus, path = m.path()] { finishScan(bus, path); });
            return reply({});
        }
        if (member == "Disconnect")
            return reply({});
        if (member == "DeactivateConnection") {
            deactivated.append(qdbus_cast<QDBusObjectPath>(args.value(0)).path());
            return reply({});
        }
        if (member == "Delete") {
            deleted.append(m.path());
            return reply({});
        }
        if (member == "AddAndActivateConnection") {
            activated = qdbus_cast<NmConnectionSettings>(args.value(0));
            activatedDevice = qdbus_cast<QDBusObjectPath>(args.value(1)).path();
            activatedSpecificObject = qdbus_cast<QDBusObjectPath>(args.value(2)).path();
            return reply({QVariant::fromValue(QDBusObjectPath(managerPath + "/Settings/9")),
                          QVariant::fromValue(QDBusObjectPath(managerPath + "/ActiveConnection/1"))});
        }
        if (member == "ListConnections") {
            QList<QDBusObjectPath> paths;
            for (const QString& path : connections.keys())
                paths.append(QDBusObjectPath(path));
            return reply({QVariant::fromValue(paths)});
        }
        const StoredConnection stored = connections.value(m.path());
        if (stored.forbidden)
            return fail("org.freedesktop.NetworkManager.Settings.PermissionDenied", "Insufficient privileges.");
        if (member == "GetSettings")
            return reply({QVariant::fromValue(stored.settings)});
        if (member == "GetSecrets" && stored.secrets.contains(args.value(0).toString()))
            return reply({QVariant::fromValue(stored.secrets.value(args.value(0).toString()))});
        return fail("org.freedesktop.NetworkManager.AgentManager.NoSecrets", "No agents were available.");
    }

private:
    bool properties(const QDBusMessage& m, const QDBusConnection& bus)
    {
        const QString interfaceName = m.arguments().value(0).toString();
        QVariantMap values;
        if (m.path() == managerPath)
            values = {{"WirelessEnabled", wirelessEnabled}};
        else if (interfaceName == "org.freedesktop.NetworkManager.Connection.Active")
            values = {{"State", activationState}};
        else if (m.member() == "Get" && m.arguments().value(1).toString() == "StateReason") {
            QDBusArgument reason;
            reason.beginStructure();
            reason << 120u << deviceReason;
            reason.endStructure();
            values = {{"StateReason", QVariant::fromValue(reason)}};
        } else if (interfaceName == wirelessInterface)
            values = {{"LastScan", lastScan}};
        else
            values = {{"DeviceType", m.path() == wifiDevice ? 2u : 1u}};
        if (m.member() == "GetAll")
            return bus.send(m.createReply(QVariantList{values}));
        if (m.member() == "Get")
            return bus.send(m.createReply(QVariantList{QVariant::fromValue(QDBusVariant(values.value(m.arguments().value(1).toString())))}));
        wirelessEnabled = m.arguments().value(2).value<QDBusVariant>().variant().toBool();
        emitChange(bus, managerPath, "org.freedesktop.NetworkManager", {{"WirelessEnabled", wirelessEnabled}});
        return bus.send(m.createReply());
    }

    void finishScan(const QDBusConnection& bus, const QString& path)
    {
        std::lock_guard lock(mutex);
        lastScan += 5000;
        emitChange(bus, path, wirelessInterface, {{"LastScan", lastScan}});
    }

    static void emitChange(const QDBusConnection& bus, const QString& path, const QString& interfaceName,
                           const QVariantMap& changed)
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, propertiesInterface, "PropertiesChanged");
        signal << interfaceName << changed << QStringList{};
        bus.send(signal);
    }
};

NmConnectionSettings wifiSettings(const QByteArray& ssid, const QString& keyManagement, qulonglong timestamp,
                                  const QString& eapIdentity = {})
{
    NmConnectionSettings settings{
        {"connection", {{"type", "802-11-wireless"}, {"id", QString::fromUtf8(ssid)}, {"timestamp", timestamp}}},
        {"802-11-wireless", {{"ssid", ssid}}}};
    if (!keyManagement.isEmpty())
        settings.insert("802-11-wireless-security", {{"key-mgmt", keyManagement}});
    if (!eapIdentity.isEmpty())
        settings.insert("802-1x", {{"identity", eapIdentity}, {"eap", QStringList{"peap"}}});
    return settings;
}

class NetworkManagerClientTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (PrivateBus::address.isEmpty())
            GTEST_SKIP() << "dbus-daemon is not available";
        qDBusRegisterMetaType<NmConnectionSettings>();
        QDBusConnection serviceBus = QDBusConnection::connectToBus(PrivateBus::address, "fake-nm");
        // Registered before the move: registration parents a helper to the object, and the
        // helper has to travel with it to the service thread.
        serviceBus.registerVirtualObject(managerPath, &fake_, QDBusConnection::SubPath);
        fake_.moveToThread(&thread_);
        thread_.start();
        ASSERT_TRUE(serviceBus.registerService(nmService));
        client_ = std::make_unique<NetworkManagerClient>(QDBusConnection::connectToBus(PrivateBus::address, "client"),
                                                         nmService, NmTimeouts{2000, 2000, 800});
    }
    void TearDown() override
    {
        client_.reset();
        QDBusConnection::disconnectFromBus("client");
        QDBusConnection::disconnectFromBus("fake-nm");
        thread_.quit();
        thread_.wait();
    }

    NmConnectRequest request(NmSecurityKind security) const
    {
        return {wifiDevice, managerPath + "/AccessPoint/7", QByteArray("caf\xc3\xa9\x00\xff", 6), "02:11:22:aa:bb:cc",
                security, "correct horse", "anonymous", "alice", "peap", "mschapv2", {}};
    }

    QThread thread_;
    FakeNetworkManager fake_;
    std::unique_ptr<NetworkManagerClient> client_;
};

TEST_F(NetworkManagerClientTest, ProfilesItCreatesCarryExactTypesAndStayPrivateToTheUser)
{
    struct Case {
        NmSecurityKind security;
        QString keyManagement;  // empty: no security setting at all
        bool carriesPsk;
        bool carries8021X;
    };
    const QList<Case> cases{{NmSecurityKind::Open, "", false, false},
                            {NmSecurityKind::WpaPersonal, "wpa-psk", true, false},
                            {NmSecurityKind::Wpa3Personal, "sae", true, false},
                            {NmSecurityKind::Owe, "owe", false, false},
                            {NmSecurityKind::Enterprise, "wpa-eap", false, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keyManagement.toStdString());
        ASSERT_EQ(client_->connectToNetwork(request(c.security)), std::nullopt);
        std::lock_guard lock(fake_.mutex);
        const NmConnectionSettings& s = fake_.activated;
        EXPECT_EQ(fake_.activatedDevice, wifiDevice);
        EXPECT_EQ(fake_.activatedSpecificObject, managerPath + "/AccessPoint/7");
        EXPECT_EQ(s["connection"]["permissions"].toStringList(),
                  QStringList{"user:" + NetworkManagerClient::currentUserName() + ":"});
        EXPECT_EQ(s["802-11-wireless"]["ssid"].typeId(), QMetaType::QByteArray);
        EXPECT_EQ(s["802-11-wireless"]["ssid"].toByteArray(), QByteArray("caf\xc3\xa9\x00\xff", 6));
        EXPECT_EQ(s["802-11-wireless"]["bssid"].toByteArray(), QByteArray("\x02\x11\x22\xaa\xbb\xcc", 6));
        EXPECT_EQ(s.contains("802-11-wireless-security"), !c.keyManagement.isEmpty());
        EXPECT_EQ(s.value("802-11-wireless-security")["key-mgmt"].toString(), c.keyManagement);
        EXPECT_EQ(s.value("802-11-wireless-security").value("psk").toString(), c.carriesPsk ? "correct horse" : "");
        EXPECT_EQ(s.contains("802-1x"), c.carries8021X);
        if (c.carries8021X) {
            EXPECT_EQ(s["802-1x"]["eap"].toStringList(), QStringList{"peap"});
            EXPECT_EQ(s["802-1x"]["phase2-auth"].toString(), "mschapv2");
            EXPECT_TRUE(s["802-1x"]["system-ca-certs"].toBool());
            EXPECT_EQ(s["802-1x"]["identity"].toString(), "alice");
            EXPECT_EQ(s["802-1x"]["anonymous-identity"].toString(), "anonymous");
            EXPECT_EQ(s["802-1x"]["password"].toString(), "correct horse");
        }
    }
}

QByteArray rsnElement(std::initializer_list<std::uint8_t> akmTypes)
{
    QByteArray body("\x01\x00\x00\x0f\xac\x04\x01\x00\x00\x0f\xac\x04", 12);
    body.append(static_cast<char>(akmTypes.size()));
    body.append('\0');
    for (std::uint8_t type : akmTypes)
        body.append(QByteArray("\x00\x0f\xac", 3)).append(static_cast<char>(type));
    body.append(QByteArray(2, '\0'));
    return QByteArray(1, '\x30') + QByteArray(1, static_cast<char>(body.size())) + body;
}

TEST(NetworkManagerSecurity, KeyManagementFollowsWhatTheNetworkOffers)
{
    struct Case {
        QByteArray elements;
        NmSecurityKind kind;
    };
    const QList<Case> cases{{rsnElement({2}), NmSecurityKind::WpaPersonal},
                            {rsnElement({8}), NmSecurityKind::Wpa3Personal},
                            {rsnElement({2, 8}), NmSecurityKind::WpaPersonal},
                            {rsnElement({18}), NmSecurityKind::Owe},
                            {rsnElement({1}), NmSecurityKind::Enterprise}};
    for (const Case& c : cases) {
        const platform::ScanResult network = scan::deriveScanResult({"02:00:00:00:00:01", 2412, -50, 0, 0x0411, 100, c.elements});
        const scan::AuthenticationSuites suites = scan::authenticationSuites(c.elements);
        EXPECT_EQ(nmSecurityKindForNetwork(network.securityMode, suites.psk, suites.sae, suites.owe), c.kind)
            << c.elements.toHex().constData();
    }
}

TEST_F(NetworkManagerClientTest, JoinWaitsForActivationAndRemovesTheProfileOfAFailedJoin)
{
    struct Case {
        uint state;
        uint reason;
        QString words;  // empty: joined
    };
    const QList<Case> cases{{2, 0, ""},
                            {4, 8, "wrong password"},
                            {4, 7, "no secrets"},
                            {4, 53, "network not found"},
                            {1, 0, "NetworkManager did not finish connecting in time"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.words.toStdString());
        {
            std::lock_guard lock(fake_.mutex);
            fake_.activationState = c.state;
            fake_.deviceReason = c.reason;
            fake_.deleted.clear();
        }
        const MaybeError error = client_->connectToNetwork(request(NmSecurityKind::WpaPersonal));
        std::lock_guard lock(fake_.mutex);
        if (c.words.isEmpty()) {
            EXPECT_EQ(error, std::nullopt);
            EXPECT_TRUE(fake_.deleted.isEmpty());
            continue;
        }
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->failureReason, c.words);
        EXPECT_TRUE(error->description.endsWith(": " + c.words + ".")) << error->description.toStdString();
        EXPECT_EQ(fake_.deleted, QStringList{managerPath + "/Settings/9"});
        EXPECT_EQ(fake_.deactivated.last(), managerPath + "/ActiveConnection/1");
    }
}

TEST_F(NetworkManagerClientTest, TtlsWithACertificateFileCarriesItsMethodAndFile)
{
    NmConnectRequest ttls = request(NmSecurityKind::Enterprise);
    ttls.eapMethod = "ttls";
    ttls.phase2Auth = "pap";
    ttls.caCertificatePath = "/etc/ssl/corp-ca.pem";
    ASSERT_EQ(client_->connectToNetwork(ttls), std::nullopt);
    std::lock_guard lock(fake_.mutex);
    const QVariantMap eap = fake_.activated["802-1x"];
    EXPECT_EQ(eap["eap"].toStringList(), QStringList{"ttls"});
    EXPECT_EQ(eap["phase2-auth"].toString(), "pap");
    EXPECT_EQ(eap["ca-cert"].toByteArray(), QByteArray("file:///etc/ssl/corp-ca.pem\0", 28));
    EXPECT_FALSE(eap.contains("system-ca-certs"));
}

TEST_F(NetworkManagerClientTest, AdHocNetworksPickTheBandOfTheirChannel)
{
    ASSERT_EQ(client_->startAdHoc(wifiDevice, "meshy", 6, NmSecurityKind::WpaPersonal, "passphrase"), std::nullopt);
    {
        std::lock_guard lock(fake_.mutex);
        const QVariantMap wireless = fake_.activated["802-11-wireless"];
        EXPECT_EQ(wireless["mode"].toString(), "adhoc");
        EXPECT_EQ(wireless["band"].toString(), "bg");
        EXPECT_EQ(wireless["channel"].typeId(), QMetaType::UInt);
        EXPECT_EQ(wireless["channel"].toUInt(), 6u);
        EXPECT_EQ(fake_.activated["802-11-wireless-security"]["proto"].toStringList(), QStringList{"rsn"});
        EXPECT_EQ(fake_.activatedSpecificObject, "/");
    }
    ASSERT_EQ(client_->startAdHoc(wifiDevice, "meshy", 36, NmSecurityKind::Wep, "abcde"), std::nullopt);
    {
        std::lock_guard lock(fake_.mutex);
        EXPECT_EQ(fake_.activated["802-11-wireless"]["band"].toString(), "a");
        EXPECT_EQ(fake_.activated["802-11-wireless-security"]["wep-key-type"].toUInt(), 1u);
    }
    EXPECT_TRUE(client_->startAdHoc(wifiDevice, "meshy", 0, NmSecurityKind::Open, {}).has_value());
    EXPECT_TRUE(client_->startAdHoc(wifiDevice, "meshy", 1, NmSecurityKind::Enterprise, "x").has_value());
}

TEST_F(NetworkManagerClientTest, RefusalsBecomeReadableErrors)
{
    {
        std::lock_guard lock(fake_.mutex);
        fake_.failActionsWith = "org.freedesktop.NetworkManager.PermissionDenied";
    }
    for (const MaybeError& error : {client_->connectToNetwork(request(NmSecurityKind::WpaPersonal)),
                                    client_->disconnectDevice(wifiDevice), client_->requestScan(wifiDevice)}) {
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->domain, nmService);
        EXPECT_EQ(error->description, "Not authorized to control networking.");
        EXPECT_EQ(error->failureReason, "org.freedesktop.NetworkManager.PermissionDenied");
        EXPECT_FALSE(error->recoverySuggestion.isEmpty());
    }
    EXPECT_EQ(client_->devicePathForInterface("wlp9").error->description, "No device found for the requested iface.");
    EXPECT_TRUE(client_->devicePathForInterface("eth0").error.has_value());
    EXPECT_EQ(client_->devicePathForInterface("wlan0").value, wifiDevice);
    EXPECT_TRUE(client_->disconnectDevice("not a path").has_value());
}

TEST_F(NetworkManagerClientTest, ScanCompletesWhenLastScanMovesAndTimesOutWhenItDoesNot)
{
    const auto before = client_->lastScanMs(wifiDevice);
    ASSERT_TRUE(before.ok());
    ASSERT_EQ(client_->requestScan(wifiDevice, {"Cafe", QByteArray("\x00\xff", 2)}), std::nullopt);
    EXPECT_TRUE(client_->waitForScanCompletion(wifiDevice, before.value, 3000));
    EXPECT_EQ(client_->lastScanMs(wifiDevice).value, before.value + 5000);
    {
        std::lock_guard lock(fake_.mutex);
        EXPECT_EQ(fake_.scanSsids.currentSignature(), "aay");
        EXPECT_EQ(qdbus_cast<QList<QByteArray>>(fake_.scanSsids),
                  (QList<QByteArray>{"Cafe", QByteArray("\x00\xff", 2)}));
        fake_.scansComplete = false;
    }
    const qint64 now = client_->lastScanMs(wifiDevice).value;
    ASSERT_EQ(client_->requestScan(wifiDevice), std::nullopt);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(client_->waitForScanCompletion(wifiDevice, now, 300));
    EXPECT_GE(timer.elapsed(), 300);
    EXPECT_LT(timer.elapsed(), 2000);
}

TEST_F(NetworkManagerClientTest, WirelessSwitchIsReadWrittenAndAnnounced)
{
    EXPECT_TRUE(client_->wirelessEnabled().value);
    QEventLoop loop;
    std::optional<bool> announced;
    QObject::connect(client_.get(), &NetworkManagerClient::wirelessEnabledChanged, &loop, [&](bool on) {
        announced = on;
        loop.quit();
    });
    ASSERT_EQ(client_->setWirelessEnabled(false), std::nullopt);
    QTimer::singleShot(2000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(announced, false);
    EXPECT_FALSE(client_->wirelessEnabled().value);
}

TEST_F(NetworkManagerClientTest, StoredProfilesAndSecretsAreFoundBySsid)
{
    {
        std::lock_guard lock(fake_.mutex);
        const QString base = managerPath + "/Settings/";
        fake_.connections[base + "1"] = {wifiSettings("Home", "wpa-psk", 10),
                                         {{"802-11-wireless-security", {{"802-11-wireless-security", {{"psk", "old"}}}}}}};
        fake_.connections[base + "2"] = {wifiSettings("Home", "wpa-psk", 20),
                                         {{"802-11-wireless-security", {{"802-11-wireless-security", {{"psk", "new"}}}}}}};
        fake_.connections[base + "3"] = {wifiSettings("Corp", "wpa-eap", 5, "bob"),
                                         {{"802-1x", {{"802-1x", {{"password", "hunter2"}}}}}}};
        fake_.connections[base + "4"] = {wifiSettings("Locked", "wpa-psk", 5), {}};
        fake_.connections[base + "5"] = {{{"connection", {{"type", "802-3-ethernet"}}}}, {}};
        fake_.connections[base + "6"] = {wifiSettings("Neighbour", "", 5), {}, true};
        fake_.connections[base + "7"] = {wifiSettings("Old", "none", 5), {}};
    }
    const auto profiles = client_->savedWifiProfiles();
    ASSERT_TRUE(profiles.ok());
    QMap<QString, int> securityBySsid;
    for (const NmWifiProfile& profile : profiles.value)
        securityBySsid[QString::fromUtf8(profile.ssid)] = profile.security;
    EXPECT_EQ(securityBySsid, (QMap<QString, int>{{"Home", SecurityWPA2Personal}, {"Corp", SecurityWPA2Enterprise},
                                                  {"Locked", SecurityWPA2Personal}, {"Old", SecurityWEP}}));

    EXPECT_EQ(client_->secretsForSsid("Home")->passphrase, "new");
    const auto corp = client_->secretsForSsid("Corp");
    ASSERT_TRUE(corp.has_value());
    EXPECT_EQ(corp->eapUsername, "bob");
    EXPECT_EQ(corp->eapPassword, "hunter2");
    EXPECT_EQ(corp->passphrase, std::nullopt);
    EXPECT_EQ(client_->secretsForSsid("Locked")->passphrase, std::nullopt);
    EXPECT_EQ(client_->secretsForSsid("Nowhere"), std::nullopt);
    EXPECT_EQ(client_->secretsForSsid("Neighbour"), std::nullopt);
}

TEST_F(NetworkManagerClientTest, AbsentServiceOrBusIsReportedQuickly)
{
    QElapsedTimer timer;
    timer.start();
    NetworkManagerClient absent(QDBusConnection::connectToBus(PrivateBus::address, "client"), "org.example.Absent");
    EXPECT_FALSE(absent.isAvailable());
    EXPECT_EQ(absent.wirelessEnabled().error->description, "NetworkManager is not running.");
    NetworkManagerClient noBus(QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"), "nobus"));
    EXPECT_FALSE(noBus.isAvailable());
    EXPECT_TRUE(noBus.savedWifiProfiles().error.has_value());
    EXPECT_EQ(noBus.secretsForSsid("Home"), std::nullopt);
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_TRUE(client_->isAvailable());
    QDBusConnection::disconnectFromBus("nobus");
}

} // namespace
