#include "interface/join_controller.h"

#include "platform/sim/simulated_wireless_client.h"
#include "testsupport/manual_clock.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

using namespace connection;

namespace {

scan::ScanedResultInfo networkNamed(const QString& ssid, int securityMode)
{
    scan::ScanedResultInfo record;
    record.ssid = ssid;
    record.securityMode = securityMode;
    return record;
}

int titleIndex(const char* title) { return static_cast<int>(joinSecurityTitles().indexOf(QLatin1String(title))); }

TEST(JoinSheet, SecurityTitlesEnableTheCredentialControlsTheyNeed)
{
    const QList<platform::EapProfile> profiles{{"Work", "Corp", "ada", ""}, {"Lab", "LabNet", "bob", ""}};
    for (int index = 0; index < joinSecurityTitles().size(); ++index) {
        const QString title = joinSecurityTitles().at(index);
        SCOPED_TRACE(title.toStdString());
        JoinSheetState state;
        state.securityIndex = index;
        changeSecurityMode(state, profiles);
        const bool enterprise = QStringList{"WPA Enterprise", "WPA2 Enterprise", "802.1X WEP"}.contains(title);
        const bool personal = QStringList{"WPA Personal", "WPA2 Personal", "WEP"}.contains(title);
        EXPECT_EQ(state.usernameEnabled, enterprise);
        EXPECT_EQ(state.profileEnabled, enterprise);
        EXPECT_EQ(state.passphraseEnabled, enterprise || personal);
        EXPECT_EQ(state.profileItems, enterprise ? QStringList({"Default", "Work", "Lab"}) : QStringList());
    }
}

TEST(JoinSheet, OpeningFillsFromStoredCredentialsAndLogsWhatIsMissing)
{
    QStringList log;
    StoredCredentials nothing;
    JoinSheetState state = resetJoinWindow107(networkNamed("Cafe", platform::SecurityWPA2Personal), nothing, &log);
    EXPECT_EQ(joinSecurityTitles().at(state.securityIndex), "Secured");
    EXPECT_FALSE(state.securityEnabled || state.profileEnabled || state.usernameEnabled);
    EXPECT_TRUE(state.passphraseEnabled);
    EXPECT_EQ(state.passphrase, "");
    EXPECT_EQ(log, (QStringList{"could not locate username and password so asking password to user",
                                "could not even retirve password so keep passphrase field empty"}));

    StoredCredentials stored;
    stored.password = "hunter22";
    stored.networkProfiles = {{"Cafe", "Cafe", platform::SecurityWPA2Personal}};
    log.clear();
    state = resetJoinWindow107(networkNamed("Cafe", platform::SecurityWPA2Personal), stored, &log);
    EXPECT_EQ(state.securityIndex, titleIndex("WPA2 Personal"));
    EXPECT_EQ(state.passphrase, "hunter22");
    EXPECT_EQ(log.size(), 1);

    state = resetJoinWindow107(networkNamed("Guest", platform::SecurityNone), stored, &log);
    EXPECT_EQ(state.securityIndex, titleIndex("Open"));
    EXPECT_FALSE(state.passphraseEnabled);
    EXPECT_TRUE(state.passphrase.isEmpty());

    scan::ScanedResultInfo corp = networkNamed("Corp", -1);
    platform::ScanResult scanned;
    scanned.securityMode = platform::SecurityWPA2Enterprise;
    corp.network = std::make_shared<platform::ScanResult>(scanned);
    EXPECT_TRUE(resetJoinWindow107(corp, StoredCredentials{}, &log).usernameEnabled);
    EXPECT_FALSE(resetJoinWindow107(networkNamed("Cafe", -1), StoredCredentials{}, &log).usernameEnabled);

    stored.eapCredentials = platform::EapCredentials{"ada", "secret"};
    state = resetJoinWindow107(networkNamed("Corp", platform::SecurityWPA2Enterprise), stored, &log);
    EXPECT_EQ(state.username, "ada");
    EXPECT_EQ(state.passphrase, "secret");
}

TEST(JoinSheet, JoinDecisionRefusesAnEmptySecuredPassphraseAndPicksTheCall)
{
    const auto later = core::InterfaceGeneration::Later;
    JoinSheetState state;
    const StoredCredentials none;
    auto decision = decideJoin(state, networkNamed("Cafe", platform::SecurityWPA2Personal), none, later);
    EXPECT_EQ(decision.kind, JoinDecision::Refuse);
    EXPECT_EQ(decision.message, "Password cannot be empty for secured network.");
    EXPECT_EQ(decideJoin(state, networkNamed("Guest", platform::SecurityNone), none, later).kind,
              JoinDecision::Associate);

    state.passphrase = "pw";
    state.username = "ada";
    EXPECT_EQ(decideJoin(state, networkNamed("Cafe", platform::SecurityWPA2Personal), none, later).kind,
              JoinDecision::Associate);
    state.eap = {platform::EapOptions::Method::TtlsPap, "/etc/ssl/corp-ca.pem"};
    decision = decideJoin(state, networkNamed("Corp", platform::SecurityWPA2Enterprise), none, later);
    EXPECT_EQ(decision.kind, JoinDecision::AssociateEnterprise);
    EXPECT_EQ(decision.username, "ada");
    EXPECT_EQ(decision.eap.method, platform::EapOptions::Method::TtlsPap);
    EXPECT_EQ(decision.eap.caCertificatePath, "/etc/ssl/corp-ca.pem");

    // The oldest release: the second profile item is the user's first stored profile.
    StoredCredentials stored;
    stored.eapProfiles = {{"Work", "Corp", "bob", "pw-bob"}};
    state.profileEnabled = true;
    state.profileIndex = 1;
    decision = decideJoin(state, networkNamed("Corp", 6), stored, core::InterfaceGeneration::OldestRelease);
    EXPECT_EQ(decision.kind, JoinDecision::AssociateEnterprise);
    EXPECT_EQ(decision.username, "bob");
    EXPECT_EQ(decision.password, "pw-bob");
}

TEST(AdHoc, PassphraseIsRequiredAndSecurityFollowsAStoredProfile)
{
    const auto error = validateAdHoc("");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, "skyvane");
    EXPECT_EQ(error->code, 200);
    EXPECT_EQ(error->description, "Passphrase required.");
    EXPECT_FALSE(validateAdHoc("x"));
    EXPECT_EQ(adHocSecurity("Mesh", {}), platform::SecurityWPAPersonal);
    EXPECT_EQ(adHocSecurity("Mesh", {{"Mesh", "Mesh", platform::SecurityWEP}}), platform::SecurityWEP);
}

TEST(JoinOnSimulation, RightPassphraseJoinsWrongOneFailsWithTheReason)
{
    static int argc = 1;
    static char name[] = "interface_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);
    auto clock = std::make_shared<testsupport::ManualClock>(QDateTime::fromSecsSinceEpoch(1'750'000'000));
    platform::sim::SimulatedWirelessClient client(platform::sim::SimulationReason::ChosenOnCommandLine, {}, clock);
    auto wifi = client.interfaceWithName("sim0");
    const platform::ScanResult lab = wifi->scanForNetworksWithSSID("Skyvane Lab").networks.value(0);
    scan::ScanedResultInfo record = networkNamed("Skyvane Lab", lab.securityMode);
    record.network = std::make_shared<platform::ScanResult>(lab);

    JoinController joins(wifi);
    std::optional<JoinSheetState> sheet;
    std::optional<platform::MaybeError> outcome;
    QObject::connect(&joins, &JoinController::sheetReady, [&](const JoinSheetState& s) { sheet = s; });
    QObject::connect(&joins, &JoinController::joinFinished, [&](const platform::MaybeError& e) { outcome = e; });
    joins.openFor(record);
    joins.waitForBackgroundWork();
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->passphrase, "");  // nothing stored before the first join

    sheet->passphrase = "guess";
    joins.join(*sheet);
    joins.waitForBackgroundWork();
    ASSERT_TRUE(outcome && *outcome);
    EXPECT_EQ((*outcome)->description, "The passphrase for \u201CSkyvane Lab\u201D is incorrect.");
    EXPECT_TRUE(joins.isJoinDialogContext());

    sheet->passphrase = "skyvane-Skyvane Lab";
    joins.join(*sheet);
    joins.waitForBackgroundWork();
    ASSERT_TRUE(outcome);
    EXPECT_FALSE(*outcome);
    EXPECT_EQ(wifi->snapshot().ssid, "Skyvane Lab");

    std::optional<platform::MaybeError> adHoc;
    QObject::connect(&joins, &JoinController::adHocFinished, [&](const platform::MaybeError& e) { adHoc = e; });
    joins.createAdHoc("Skyvane Mesh", "");
    ASSERT_TRUE(adHoc && *adHoc);
    EXPECT_EQ((*adHoc)->description, "Passphrase required.");
    joins.createAdHoc("Skyvane Mesh", "mesh-passphrase");
    joins.waitForBackgroundWork();
    ASSERT_TRUE(adHoc);
    EXPECT_FALSE(*adHoc);
    EXPECT_EQ(wifi->snapshot().interfaceMode, platform::InterfaceModeIBSS);
    EXPECT_EQ(wifi->snapshot().wlanChannel->channelNumber, 11);
}

} // namespace
