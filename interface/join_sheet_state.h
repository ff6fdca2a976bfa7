#pragma once

#include "core/interface_generation.h"
#include "platform/api/wireless_types.h"
#include "scan/scaned_result_info.h"

#include <QString>
#include <QStringList>

#include <optional>

// What the join sheet shows and lets the user change, and what a press of Join does with it.
// The sheet itself only mirrors this state.
namespace connection {

// The security popup's titles, in order; they match the security texts of the scanner.
const QStringList& joinSecurityTitles();

struct JoinSheetState {
    QString networkName;
    bool nameEnabled = false;
    int securityIndex = 0;
    bool securityEnabled = false;
    QString username;
    bool usernameEnabled = false;
    QString passphrase;
    bool passphraseEnabled = false;
    bool passphraseEditable = true;
    QStringList profileItems;  // "Default" and the user's 802.1X profile names, or empty
    int profileIndex = -1;
    bool profileEnabled = false;
    // 802.1X: the inner method and the CA certificate (empty: the system's store); they go
    // with the user name field.
    platform::EapOptions eap;
};

// What the user's stored configuration holds for one network, looked up once when the sheet opens.
struct StoredCredentials {
    std::optional<platform::EapCredentials> eapCredentials;
    std::optional<QString> password;
    std::optional<QString> eapIdentity;
    QList<platform::NetworkProfile> networkProfiles;
    QList<platform::EapProfile> eapProfiles;
};

// The enabling table of the security popup: credentials for the titles that need them.
void changeSecurityMode(JoinSheetState& state, const QList<platform::EapProfile>& eapProfiles);

// The sheet opened for a network on later releases, with the log lines the lookup produced.
JoinSheetState resetJoinWindow107(const scan::ScanedResultInfo& network, const StoredCredentials& stored,
                                  QStringList* log);
// The same on the oldest release.
JoinSheetState resetJoinWindow(const scan::ScanedResultInfo& network, const StoredCredentials& stored);
JoinSheetState openJoinSheet(const scan::ScanedResultInfo& network, const StoredCredentials& stored,
                             core::InterfaceGeneration generation, QStringList* log);

struct JoinDecision {
    enum Kind { Refuse, Associate, AssociateEnterprise };
    Kind kind = Refuse;
    QString message;  // Refuse: the alert's text
    QString password;
    QString identity;
    QString username;
    platform::EapOptions eap;
};

JoinDecision decideJoin(const JoinSheetState& state, const scan::ScanedResultInfo& network,
                        const StoredCredentials& stored, core::InterfaceGeneration generation);

// The ad-hoc sheet: a name, the fixed channel and a passphrase that is always required.
constexpr int adHocChannel = 11;
platform::MaybeError validateAdHoc(const QString& passphrase);
// The security the named network is stored with, else WPA Personal.
int adHocSecurity(const QString& name, const QList<platform::NetworkProfile>& profiles);

} // namespace connection
