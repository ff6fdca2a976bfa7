#include "interface/join_sheet_state.h"

#include "scan/scanner_utils.h"

namespace connection {
namespace {

const QString defaultProfile = QStringLiteral("Default");

bool isEnterprise(int securityMode)
{
    return securityMode == platform::SecurityDynamicWEP || securityMode == platform::SecurityWPAEnterprise ||
           securityMode == platform::SecurityWPAEnterpriseMixed || securityMode == platform::SecurityWPA2Enterprise ||
           securityMode == platform::SecurityEnterprise;
}

// The stored record keeps only "secured" (-1) on later releases; the scan result behind it
// still says which kind.
bool isEnterpriseNetwork(const scan::ScanedResultInfo& network)
{
    return isEnterprise(network.network ? network.network->securityMode : network.securityMode);
}

} // namespace

const QStringList& joinSecurityTitles()
{
    static const QStringList titles{"Open",           "WEP",           "WPA Personal",         "WPA2 Personal",
                                    "WPA Enterprise", "WPA2 Enterprise", "WPA2 Personal Mixed", "Enterprise",
                                    "Personal",       "802.1X WEP",    "WiFi Protected Setup", "Secured"};
    return titles;
}

void changeSecurityMode(JoinSheetState& state, const QList<platform::EapProfile>& eapProfiles)
{
    const QString title = joinSecurityTitles().value(state.securityIndex);
    const bool enterprise = title == QLatin1String("WPA Enterprise") || title == QLatin1String("WPA2 Enterprise") ||
                            title == QLatin1String("802.1X WEP");
    const bool personal = title == QLatin1String("WPA Personal") || title == QLatin1String("WPA2 Personal") ||
                          title == QLatin1String("WEP");
    state.usernameEnabled = enterprise;
    state.passphraseEnabled = enterprise || personal;
    state.profileEnabled = enterprise;
    state.profileItems.clear();
    state.profileIndex = -1;
    if (enterprise) {
        state.profileItems.append(defaultProfile);
        for (const platform::EapProfile& profile : eapProfiles)
            state.profileItems.append(profile.userDefinedName);
        state.profileIndex = 0;
    }
}

JoinSheetState resetJoinWindow107(const scan::ScanedResultInfo& network, const StoredCredentials& stored,
                                  QStringList* log)
{
    JoinSheetState state;
    state.networkName = network.ssid;
    const bool secured = network.securityMode != platform::SecurityNone;
    if (stored.eapCredentials) {
        state.username = stored.eapCredentials->username;
        state.passphrase = stored.eapCredentials->password;
        state.usernameEnabled = true;
    } else {
        log->append(QStringLiteral("could not locate username and password so asking password to user"));
        // An enterprise network needs a user name even when none is stored, or it could never
        // be joined from here.
        state.usernameEnabled = isEnterpriseNetwork(network);
        if (secured) {
            if (stored.password)
                state.passphrase = *stored.password;
            else
                log->append(QStringLiteral("could not even retirve password so keep passphrase field empty"));
        }
    }
    if (secured) {
        state.passphraseEnabled = true;
        state.securityIndex = joinSecurityTitles().size() - 1;
        for (const platform::NetworkProfile& profile : stored.networkProfiles) {
            if (profile.ssid != network.ssid)
                continue;
            const int index = joinSecurityTitles().indexOf(
                scan::ScannerUtils::stringForSecurityMode(profile.security, core::InterfaceGeneration::Later));
            if (index >= 0)
                state.securityIndex = index;
            break;
        }
    } else {
        state.securityIndex = 0;
        state.passphraseEnabled = false;
        state.passphrase.clear();
    }
    state.securityEnabled = false;
    state.profileEnabled = false;
    state.passphraseEditable = true;
    return state;
}

JoinSheetState resetJoinWindow(const scan::ScanedResultInfo& network, const StoredCredentials& stored)
{
    JoinSheetState state;
    state.nameEnabled = true;
    state.usernameEnabled = true;
    state.passphraseEnabled = true;
    state.securityEnabled = true;
    changeSecurityMode(state, stored.eapProfiles);
    state.networkName = network.ssid;
    const int index = joinSecurityTitles().indexOf(
        scan::ScannerUtils::stringForSecurityMode(network.securityMode, core::InterfaceGeneration::OldestRelease));
    state.securityIndex = index >= 0 ? index : 0;
    state.securityEnabled = false;
    changeSecurityMode(state, stored.eapProfiles);
    // The oldest release numbers its enterprise modes 5 and 6 and its personal ones 1 to 3.
    if (network.securityMode == 5 || network.securityMode == 6) {
        for (qsizetype i = 0; i < stored.eapProfiles.size(); ++i) {
            const platform::EapProfile& profile = stored.eapProfiles.at(i);
            if (profile.ssid != network.ssid)
                continue;
            state.profileIndex = static_cast<int>(i) + 1;
            state.username = profile.username;
            state.passphrase = profile.password;
            state.usernameEnabled = false;
            state.passphraseEnabled = false;
            break;
        }
    } else if (network.securityMode >= 1 && network.securityMode <= 3 && stored.password) {
        state.passphrase = *stored.password;
    }
    return state;
}

JoinSheetState openJoinSheet(const scan::ScanedResultInfo& network, const StoredCredentials& stored,
                             core::InterfaceGeneration generation, QStringList* log)
{
    return core::isOSSnowLeopard(generation) ? resetJoinWindow(network, stored)
                                             : resetJoinWindow107(network, stored, log);
}

namespace {

// The oldest release joins with an 802.1X profile whenever the profile popup is in use: a new
// one from the fields for "Default", else the user's stored profile at that place.
JoinDecision olderJoinDecision(const JoinSheetState& state, const StoredCredentials& stored)
{
    JoinDecision decision;
    decision.kind = JoinDecision::Associate;
    decision.password = state.passphrase;
    if (!state.profileEnabled)
        return decision;
    decision.kind = JoinDecision::AssociateEnterprise;
    decision.username = state.username;
    decision.eap = state.eap;
    if (state.profileIndex > 0 && state.profileIndex <= stored.eapProfiles.size()) {
        const platform::EapProfile& profile = stored.eapProfiles.at(state.profileIndex - 1);
        decision.username = profile.username;
        decision.password = profile.password;
    }
    return decision;
}

} // namespace

JoinDecision decideJoin(const JoinSheetState& state, const scan::ScanedResultInfo& network,
                        const StoredCredentials& stored, core::InterfaceGeneration generation)
{
    if (core::isOSSnowLeopard(generation))
        return olderJoinDecision(state, stored);
    JoinDecision decision;
    const bool secured = network.securityMode != platform::SecurityNone;
    if (state.passphrase.isEmpty() && secured) {
        decision.message = QStringLiteral("Password cannot be empty for secured network.");
        return decision;
    }
    decision.password = state.passphrase;
    if (!secured || state.username.isEmpty()) {
        decision.kind = JoinDecision::Associate;
        return decision;
    }
    // A stored identity, or for an enterprise network the user name alone, makes an 802.1X join.
    if (stored.eapIdentity || isEnterpriseNetwork(network)) {
        decision.kind = JoinDecision::AssociateEnterprise;
        decision.identity = stored.eapIdentity.value_or(QString());
        decision.username = state.username;
        decision.eap = state.eap;
        return decision;
    }
    decision.kind = JoinDecision::Associate;
    return decision;
}

platform::MaybeError validateAdHoc(const QString& passphrase)
{
    if (!passphrase.isEmpty())
        return std::nullopt;
    return platform::PlatformError{QStringLiteral("skyvane"), 200, QStringLiteral("Passphrase required."), {}, {}};
}

int adHocSecurity(const QString& name, const QList<platform::NetworkProfile>& profiles)
{
    for (const platform::NetworkProfile& profile : profiles) {
        if (profile.ssid == name)
            return profile.security;
    }
    return platform::SecurityWPAPersonal;
}

} // namespace connection
