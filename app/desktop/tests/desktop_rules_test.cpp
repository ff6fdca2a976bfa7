#include "app/desktop/desktop_arguments.h"
#include "app/desktop/interface_state_reactions.h"
#include "app/desktop/quit_sequence.h"
#include "app/desktop/reachability_monitor.h"
#include "app/desktop/review_summary.h"
#include "testsupport/stub_wireless_interface.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

using app::desktop::DesktopArguments;
using app::desktop::InterfaceStateReactions;
using app::desktop::QuitSequence;
using app::desktop::parseDesktopArguments;

QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

TEST(DesktopArguments, RefusesWhatSkyvaneCliRefusesAndWhatTheWindowDoesNotKnow)
{
    const struct {
        const char* arguments;
        const char* reason;
    } cases[] = {
        {"--seed 3", "--seed goes with --simulate"},
        {"--interface=", "--interface needs a value, not an empty text"},
        {"--capture", "--capture needs a value"},
        {"--db=", "--db needs a file, not an empty text"},
        {"--db", "--db needs a value"},
        {"--simulate=0", "--simulate needs a positive whole number"},
        {"--simulate --capture a.pcap", "choose either --simulate or --capture"},
        {"--bogus", "Unknown option 'bogus'"},
        {"stray", "unexpected argument \"stray\""},
    };
    for (const auto& c : cases) {
        const DesktopArguments parsed = parseDesktopArguments(words(c.arguments));
        EXPECT_EQ(parsed.action, DesktopArguments::Action::Fail) << c.arguments;
        EXPECT_TRUE(parsed.message.contains(QString::fromUtf8(c.reason))) << c.arguments << ": " << parsed.message.toStdString();
    }
}

TEST(DesktopArguments, ReadsBackendAndDatabaseInAnyOrder)
{
    const DesktopArguments parsed = parseDesktopArguments(words("--db /tmp/x.sqlite --simulate=20 --seed=7"));
    ASSERT_EQ(parsed.action, DesktopArguments::Action::Run) << parsed.message.toStdString();
    EXPECT_EQ(parsed.databasePath, "/tmp/x.sqlite");
    EXPECT_TRUE(parsed.backend.simulate);
    EXPECT_EQ(parsed.backend.simulatedAccessPoints, 20);
    EXPECT_EQ(parsed.backend.simulationSeed, 7u);

    const DesktopArguments capture = parseDesktopArguments(words("--capture=a.pcapng --interface wlan1"));
    ASSERT_EQ(capture.action, DesktopArguments::Action::Run) << capture.message.toStdString();
    EXPECT_EQ(capture.backend.captureFile, "a.pcapng");
    EXPECT_EQ(capture.backend.interfaceName, "wlan1");
}

TEST(DesktopArguments, HelpNamesEveryOptionAndVersionNamesTheProgram)
{
    const DesktopArguments help = parseDesktopArguments(words("--help"));
    ASSERT_EQ(help.action, DesktopArguments::Action::ShowHelp);
    for (const char* option : {"--interface", "--simulate", "--seed", "--capture", "--db", "--version"})
        EXPECT_TRUE(help.message.contains(QString::fromLatin1(option))) << option;
    // --help wins over a backend option that would otherwise be refused.
    EXPECT_EQ(parseDesktopArguments(words("--seed 3 -h")).action, DesktopArguments::Action::ShowHelp);

    const DesktopArguments version = parseDesktopArguments(words("--version"));
    ASSERT_EQ(version.action, DesktopArguments::Action::ShowVersion);
    EXPECT_EQ(version.message, "Skyvane 9.8.7\n");
}

platform::InterfaceSnapshot link(bool powerOn, int mode)
{
    platform::InterfaceSnapshot snapshot;
    snapshot.interfaceName = QStringLiteral("wlan0");
    snapshot.powerOn = powerOn;
    snapshot.interfaceMode = mode;
    return snapshot;
}

TEST(InterfaceStateReactions, PowerOffAndOnAreReportedEveryTime)
{
    auto interface = std::make_shared<testsupport::StubWirelessInterface>(link(false, platform::InterfaceModeStation));
    InterfaceStateReactions reactions(interface);
    QSignalSpy off(&reactions, &InterfaceStateReactions::wifiTurnedOff);
    QSignalSpy on(&reactions, &InterfaceStateReactions::wifiTurnedOn);
    reactions.observe();

    emit interface->powerDidChange();
    emit interface->powerDidChange();
    EXPECT_EQ(off.count(), 2);
    interface->link.powerOn = true;
    emit interface->powerDidChange();
    EXPECT_EQ(on.count(), 1);
    EXPECT_EQ(off.count(), 2);
}

TEST(InterfaceStateReactions, AccessPointModeAlertsOnceUntilTheUserClosesIt)
{
    for (const auto generation : {core::InterfaceGeneration::Later, core::InterfaceGeneration::OldestRelease}) {
        auto interface = std::make_shared<testsupport::StubWirelessInterface>(
            link(true, platform::InterfaceModeStation), generation);
        InterfaceStateReactions reactions(interface);
        QSignalSpy alerts(&reactions, &InterfaceStateReactions::modeAlertRequested);
        reactions.observe();

        emit interface->modeDidChange();
        EXPECT_EQ(alerts.count(), 0);
        EXPECT_FALSE(reactions.modeChangeGuard());

        interface->link.interfaceMode = platform::InterfaceModeHostAP;
        emit interface->modeDidChange();
        ASSERT_EQ(alerts.count(), 1);
        EXPECT_EQ(alerts.at(0).at(0).toString(), "WiFi Scannig is not allowed when internet sharing is enabled.");
        EXPECT_TRUE(reactions.modeChangeGuard());

        // Neither a further notification nor one already on its way brings a second alert,
        // and a change back to station mode does not take the alert down.
        emit interface->modeDidChange();
        reactions.didReceiveModeDidChangeNotification();
        interface->link.interfaceMode = platform::InterfaceModeStation;
        emit interface->modeDidChange();
        EXPECT_EQ(alerts.count(), 1);
        EXPECT_TRUE(reactions.isModeAlertVisible());

        reactions.alertDidEnd();
        EXPECT_FALSE(reactions.modeChangeGuard());
        interface->link.interfaceMode = platform::InterfaceModeHostAP;
        emit interface->modeDidChange();
        EXPECT_EQ(alerts.count(), 2);
    }
}

TEST(InterfaceStateReactions, WithoutAnInterfaceNothingHappens)
{
    InterfaceStateReactions reactions(nullptr);
    QSignalSpy alerts(&reactions, &InterfaceStateReactions::modeAlertRequested);
    reactions.observe();
    reactions.didReceiveModeDidChangeNotification();
    reactions.didReceivePowerDidChangeNotification();
    EXPECT_EQ(alerts.count(), 0);
    EXPECT_FALSE(reactions.modeChangeGuard());
}

class MapSettings : public core::UserSettings {
public:
    QVariant value(const QString& key) const override { return values.value(key); }
    void setValue(const QString& key, const QVariant& value) override { values.insert(key, value); }
    QVariantMap values;
};

// Down clears the listener's address; any other answer shows it; only "online" ends the
// Wi-Fi-off sheet and refreshes the interface tab.
TEST(ReachabilityMonitor, AddressFollowsTheNetworkAndOnlineIsAnnounced)
{
    QString address = QStringLiteral("192.168.1.20");
    app::desktop::ReachabilityMonitor monitor([&address] { return address; });
    QSignalSpy addresses(&monitor, &app::desktop::ReachabilityMonitor::serverAddressChanged);
    QSignalSpy online(&monitor, &app::desktop::ReachabilityMonitor::becameReachable);
    using Status = app::desktop::ReachabilityMonitor::Status;

    monitor.statusChanged(Status::Unknown);
    monitor.statusChanged(Status::NotReachable);
    address = QStringLiteral("10.0.0.7");
    monitor.statusChanged(Status::Reachable);
    monitor.statusChanged(Status::Reachable);
    ASSERT_EQ(addresses.size(), 3);
    EXPECT_EQ(addresses.at(0).at(0).toString(), QStringLiteral("192.168.1.20"));
    EXPECT_EQ(addresses.at(1).at(0).toString(), QString());
    EXPECT_EQ(monitor.serverAddress(), QStringLiteral("10.0.0.7"));
    EXPECT_EQ(online.size(), 2);
}

TEST(QuitSequence, SummaryFirstThenTheSecondCloseQuits)
{
    MapSettings settings;
    using D = QuitSequence::Decision;

    settings.values[QStringLiteral("SHOW_SUMMARY_WINDOW")] = QStringLiteral("false");
    QuitSequence off(settings);
    EXPECT_EQ(off.close(), D::Terminate);

    settings.values[QStringLiteral("SHOW_SUMMARY_WINDOW")] = QStringLiteral("true");
    QuitSequence on(settings);
    EXPECT_EQ(on.close(), D::ShowSummary);
    EXPECT_TRUE(on.isReviewWindowVisible());
    EXPECT_EQ(on.close(), D::Terminate);

    QuitSequence continued(settings);
    EXPECT_EQ(continued.close(), D::ShowSummary);
    continued.userDidChooseToContinue();
    EXPECT_EQ(continued.exitAttempt(), 0);
    EXPECT_EQ(continued.close(), D::ShowSummary);

    // The Quit command does not count as a close: the summary once, then quit.
    QuitSequence command(settings);
    EXPECT_EQ(command.applicationShouldTerminate(), D::ShowSummary);
    EXPECT_EQ(command.applicationShouldTerminate(), D::Terminate);
    EXPECT_EQ(command.exitAttempt(), 0);
}

TEST(ReviewSummary, CountsAndConnectedNetwork)
{
    MapSettings settings;
    settings.values[QStringLiteral("TOTAL_NETWORKS")] = QStringLiteral("12");
    settings.values[QStringLiteral("TOTAL_24MHZ_NETWORKS")] = 5;
    scan::ScanedResultInfo connected;
    connected.ssid = QStringLiteral("<b>Cafe</b>");
    connected.rssi = -52;
    connected.noise = 0;
    connected.channel = QStringLiteral("36");
    connected.channelBond = 5.0;
    connected.securityModeString = QStringLiteral("WPA2 Personal");

    const auto summary = app::desktop::ReviewSummary::from(connected, settings);
    EXPECT_EQ(summary.ssid, "<b>Cafe</b>");
    EXPECT_EQ(summary.rssi, "-52 dBm");
    EXPECT_EQ(summary.noise, "N/A");
    EXPECT_EQ(summary.channel, "36");
    EXPECT_EQ(summary.band, "5 GHz");
    EXPECT_EQ(summary.security, "WPA2 Personal");
    EXPECT_EQ(summary.totalNetworks, "12");
    EXPECT_EQ(summary.networks24Ghz, "5");
    EXPECT_EQ(summary.networks5Ghz, "7");

    settings.values.remove(QStringLiteral("TOTAL_24MHZ_NETWORKS"));
    const auto empty = app::desktop::ReviewSummary::from(std::nullopt, settings);
    EXPECT_EQ(empty.ssid, "N/A");
    EXPECT_EQ(empty.networks24Ghz, "N/A");
    EXPECT_EQ(empty.networks5Ghz, "N/A");
}

} // namespace
