#include "platform/sim/simulated_wireless_client.h"
#include "platform/sim/simulated_wireless_interface.h"
#include "testsupport/manual_clock.h"

#include <QSet>

#include <gtest/gtest.h>

#include <chrono>
#include <tuple>

namespace {

using namespace platform;
using namespace platform::sim;
using namespace std::chrono_literals;

class SimulatedInterface : public ::testing::Test {
protected:
    SimulatedInterface()
        : clock_(std::make_shared<testsupport::ManualClock>(QDateTime::fromSecsSinceEpoch(1'750'000'000))),
          client_(SimulationReason::ChosenOnCommandLine, {}, clock_),
          wifi_(client_.interfaceWithName(QStringLiteral("sim0")))
    {
        QObject::connect(wifi_.get(), &WirelessInterface::powerDidChange, [this] { ++powerChanges_; });
        QObject::connect(wifi_.get(), &WirelessInterface::modeDidChange, [this] { ++modeChanges_; });
    }

    ScanResult network(const QByteArray& ssid)
    {
        const ScanOutcome outcome = wifi_->scanForNetworksWithSSID(ssid);
        EXPECT_FALSE(outcome.networks.isEmpty()) << ssid.constData();
        return outcome.networks.value(0);
    }

    std::shared_ptr<testsupport::ManualClock> clock_;
    SimulatedWirelessClient client_;
    std::shared_ptr<WirelessInterface> wifi_;
    int powerChanges_ = 0;
    int modeChanges_ = 0;
};

TEST_F(SimulatedInterface, StartsAssociatedWithVaryingLinkStatistics)
{
    const InterfaceSnapshot first = wifi_->snapshot();
    EXPECT_TRUE(first.powerOn && !first.bssid.isEmpty());
    EXPECT_EQ(std::tie(first.interfaceMode, first.interfaceState),
              std::tuple(InterfaceModeStation, InterfaceStateRunning));
    // The channel and the width in MHz describe the same link.
    EXPECT_EQ(first.wlanChannel, (WlanChannel{36, ChannelBand::Band5GHz, ChannelWidthCode::Width80MHz}));
    EXPECT_EQ(first.channelWidthMhz, 80);
    EXPECT_TRUE(first.mcsIndex && first.spatialStreams && first.shortGuardInterval);
    EXPECT_LT(first.noiseMeasurement, first.rssiValue);

    QSet<double> rates;
    QSet<int> powers, noises;
    for (int i = 0; i < 60; ++i) {
        clock_->advance(5s);
        const InterfaceSnapshot s = wifi_->snapshot();
        rates.insert(s.transmitRate);
        powers.insert(s.transmitPower);
        noises.insert(s.noiseMeasurement);
    }
    EXPECT_GE(rates.size(), 3);
    EXPECT_GE(powers.size(), 3);
    EXPECT_GE(noises.size(), 3);
}

TEST_F(SimulatedInterface, AssociationSucceedsOrFailsLikeARealInterface)
{
    ScanResult unknown = network("Skyvane Lab");
    unknown.bssid = QStringLiteral("00:00:5e:00:53:01");
    const ScanResult hiddenBeacon = wifi_->scanForNetworksWithBSSID(network("Hidden Lab").bssid).networks.value(0);
    // A code of 0 means joined.
    const struct { const char* name; ScanResult network; bool enterprise; QString username; QString password; int code;
                   QString description; } cases[] = {
        {"wrong passphrase", network("Skyvane Lab"), false, {}, QStringLiteral("guess"),
         SimulationErrorWrongPassphrase, QStringLiteral("The passphrase for \u201CSkyvane Lab\u201D is incorrect.")},
        {"missing passphrase", network("Skyvane Lab"), false, {}, {}, SimulationErrorCredentialsRequired, {}},
        {"network gone", unknown, false, {}, QStringLiteral("skyvane-Skyvane Lab"), SimulationErrorNetworkNotFound,
         QStringLiteral("The network \u201CSkyvane Lab\u201D could not be found.")},
        {"hidden network without its name", hiddenBeacon, false, {}, QStringLiteral("skyvane-Hidden Lab"),
         SimulationErrorNetworkNotFound, {}},
        {"enterprise without user name", network("Skyvane Corp"), false, {}, QStringLiteral("skyvane-Skyvane Corp"),
         SimulationErrorCredentialsRequired, {}},
        {"enterprise wrong password", network("Skyvane Corp"), true, QStringLiteral("ada"), QStringLiteral("nope"),
         SimulationErrorWrongCredentials, {}},
        {"SAE network", network("Skyvane Lab"), false, {}, QStringLiteral("skyvane-Skyvane Lab"), 0, {}},
        {"open network needs nothing", network("Cafe Guest"), false, {}, {}, 0, {}},
        {"hidden network by name", network("Hidden Lab"), false, {}, QStringLiteral("skyvane-Hidden Lab"), 0, {}},
        {"enterprise", network("Skyvane Corp"), true, QStringLiteral("ada"), QStringLiteral("skyvane-Skyvane Corp"), 0,
         {}},
    };
    for (const auto& c : cases) {
        const MaybeError error = c.enterprise
                                     ? wifi_->associateToEnterpriseNetwork(c.network, QStringLiteral("ada@corp"),
                                                                           c.username, c.password, {})
                                     : wifi_->associateToNetwork(c.network, c.password);
        if (c.code == 0) {
            EXPECT_FALSE(error) << c.name << ": " << error->description.toStdString();
            EXPECT_EQ(wifi_->snapshot().bssid, c.network.bssid) << c.name;
            continue;
        }
        ASSERT_TRUE(error) << c.name;
        EXPECT_EQ(error->domain, QStringLiteral("skyvane.simulation")) << c.name;
        EXPECT_EQ(error->code, c.code) << c.name;
        EXPECT_FALSE(error->description.isEmpty()) << c.name;
        if (!c.description.isEmpty()) {
            EXPECT_EQ(error->description, c.description) << c.name;
        }
    }

    QStringList profileNames;
    for (const NetworkProfile& p : wifi_->networkProfiles())
        profileNames << p.ssid;
    EXPECT_EQ(profileNames, (QStringList{"Skyvane Home", "Skyvane Lab", "Cafe Guest", "Hidden Lab", "Skyvane Corp"}));
    EXPECT_EQ(wifi_->copyPassword("Skyvane Lab"), QStringLiteral("skyvane-Skyvane Lab"));
    EXPECT_EQ(wifi_->copyPassword("Cafe Guest"), std::nullopt);
    EXPECT_EQ(wifi_->copyEAPIdentity("Skyvane Corp"), QStringLiteral("ada@corp"));
    const std::optional<EapCredentials> eap = wifi_->copyEAPUsernameAndPassword("Skyvane Corp");
    ASSERT_TRUE(eap);
    EXPECT_EQ(eap->username, QStringLiteral("ada"));
    ASSERT_EQ(wifi_->allUser8021XProfiles().size(), 1);
    EXPECT_EQ(wifi_->allUser8021XProfiles()[0].ssid, QStringLiteral("Skyvane Corp"));
    EXPECT_EQ(modeChanges_, 0);
}

TEST_F(SimulatedInterface, PowerOffStopsScansAndPowerOnRejoins)
{
    ASSERT_FALSE(wifi_->scanForNetworksWithSSID({}).networks.isEmpty());
    EXPECT_FALSE(wifi_->setPower(false));
    EXPECT_FALSE(wifi_->setPower(false));
    EXPECT_EQ(powerChanges_, 1);

    const InterfaceSnapshot off = wifi_->snapshot();
    EXPECT_FALSE(off.powerOn);
    EXPECT_TRUE(off.bssid.isEmpty());
    EXPECT_EQ(off.interfaceState, InterfaceStateInactive);
    const ScanOutcome scan = wifi_->scanForNetworksWithSSID({});
    ASSERT_TRUE(scan.error);
    EXPECT_EQ(scan.error->domain, QStringLiteral("skyvane.simulation"));
    EXPECT_EQ(scan.error->description, QStringLiteral("The Wi-Fi interface \u201Csim0\u201D is turned off."));
    EXPECT_TRUE(wifi_->cachedScanResults().isEmpty());
    EXPECT_TRUE(wifi_->startIBSSModeWithSSID("cell", SecurityWPA2Personal, 11, QStringLiteral("12345678")));

    EXPECT_FALSE(wifi_->setPower(true));
    EXPECT_EQ(powerChanges_, 2);
    EXPECT_EQ(wifi_->snapshot().ssid, QStringLiteral("Skyvane Home"));
    EXPECT_EQ(modeChanges_, 0);
}

TEST_F(SimulatedInterface, HostingAnAccessPointIsAModeThatPowerAndJoiningLeave)
{
    auto* sim = static_cast<SimulatedWirelessInterface*>(wifi_.get());
    EXPECT_FALSE(sim->setHostingAccessPoint(true));
    EXPECT_FALSE(sim->setHostingAccessPoint(true));
    EXPECT_EQ(modeChanges_, 1);
    const InterfaceSnapshot hosting = wifi_->snapshot();
    EXPECT_EQ(hosting.interfaceMode, InterfaceModeHostAP);
    EXPECT_EQ(hosting.opMode(), OpModeHostAP);
    EXPECT_TRUE(hosting.bssid.isEmpty());

    EXPECT_FALSE(sim->setHostingAccessPoint(false));
    EXPECT_EQ(modeChanges_, 2);
    EXPECT_EQ(wifi_->snapshot().interfaceMode, InterfaceModeStation);
    EXPECT_EQ(wifi_->snapshot().ssid, QStringLiteral("Skyvane Home"));

    // Switching the radio off ends the sharing, and says so as a mode change too.
    EXPECT_FALSE(sim->setHostingAccessPoint(true));
    EXPECT_FALSE(wifi_->setPower(false));
    EXPECT_EQ(std::tuple(powerChanges_, modeChanges_), std::tuple(1, 4));
    ASSERT_TRUE(sim->setHostingAccessPoint(true));
    EXPECT_EQ(sim->setHostingAccessPoint(true)->code, SimulationErrorPoweredOff);
    EXPECT_FALSE(wifi_->setPower(true));
    EXPECT_EQ(wifi_->snapshot().interfaceMode, InterfaceModeStation);
    EXPECT_EQ(modeChanges_, 4);

    // Joining a network or starting a cell leaves access-point mode.
    EXPECT_FALSE(sim->setHostingAccessPoint(true));
    EXPECT_FALSE(wifi_->associateToNetwork(network("Skyvane Home"), QStringLiteral("skyvane-Skyvane Home")));
    EXPECT_EQ(wifi_->snapshot().interfaceMode, InterfaceModeStation);
    EXPECT_FALSE(sim->setHostingAccessPoint(true));
    EXPECT_FALSE(wifi_->startIBSSModeWithSSID("cell", SecurityWPA2Personal, 11, QStringLiteral("12345678")));
    EXPECT_EQ(wifi_->snapshot().interfaceMode, InterfaceModeIBSS);
    EXPECT_EQ(modeChanges_, 8);
}

TEST_F(SimulatedInterface, AdHocNetworksNeedNamePassphraseAndChannel)
{
    const struct { QByteArray ssid; int channel; QString password; } invalid[] = {
        {"", 11, QStringLiteral("12345678")},
        {QByteArray(33, 'x'), 11, QStringLiteral("12345678")},
        {"cell", 11, QStringLiteral("1234567")},
        {"cell", 14, QStringLiteral("12345678")},
        {"cell", 36, QStringLiteral("12345678")},
    };
    for (const auto& c : invalid) {
        const MaybeError error = wifi_->startIBSSModeWithSSID(c.ssid, SecurityWPA2Personal, c.channel, c.password);
        ASSERT_TRUE(error) << c.ssid.constData() << " " << c.channel;
        EXPECT_EQ(error->code, SimulationErrorInvalidParameter);
    }
    EXPECT_EQ(modeChanges_, 0);

    EXPECT_FALSE(wifi_->startIBSSModeWithSSID("cell", SecurityWPA2Personal, 11, QStringLiteral("12345678")));
    EXPECT_EQ(modeChanges_, 1);
    const InterfaceSnapshot cell = wifi_->snapshot();
    EXPECT_EQ(cell.interfaceMode, InterfaceModeIBSS);
    EXPECT_EQ(cell.ssid, QStringLiteral("cell"));
    EXPECT_EQ(cell.wlanChannel->channelNumber, 11);
    EXPECT_TRUE(cell.bssid.startsWith(QStringLiteral("02:")));

    wifi_->disassociate();
    EXPECT_EQ(modeChanges_, 2);
    const InterfaceSnapshot after = wifi_->snapshot();
    EXPECT_EQ(after.interfaceMode, InterfaceModeStation);
    EXPECT_TRUE(after.bssid.isEmpty());
    EXPECT_FALSE(after.wlanChannel);
}

TEST(SimulatedWirelessClient, TellsTheUserWhyAndHowTheToolSelectsIt)
{
    const SimulatedWirelessClient fallback(SimulationReason::NoInterfaceFound);
    EXPECT_EQ(fallback.statusText(), QStringLiteral("Simulated environment: no Wi-Fi interface found"));
    EXPECT_EQ(fallback.toolBackendArguments(), QStringList{QStringLiteral("--simulate=40")});
    SimulatedWirelessClient chosen(SimulationReason::ChosenOnCommandLine, {500, 9, {}});
    EXPECT_EQ(chosen.statusText(), QStringLiteral("Simulated environment (chosen with --simulate)"));
    EXPECT_EQ(chosen.toolBackendArguments(), (QStringList{"--simulate=500", "--seed=9"}));
    EXPECT_EQ(chosen.interfaceNames(), QStringList{QStringLiteral("sim0")});
    EXPECT_EQ(chosen.interfaceWithName(QStringLiteral("wlan0")), nullptr);
}

} // namespace
