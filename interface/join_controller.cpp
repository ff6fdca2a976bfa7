#include "interface/join_controller.h"

#include "interface/log_category.h"

namespace connection {
namespace {

StoredCredentials lookUp(const platform::WirelessInterface& interface, const QByteArray& ssid)
{
    StoredCredentials stored;
    stored.eapCredentials = interface.copyEAPUsernameAndPassword(ssid);
    stored.password = interface.copyPassword(ssid);
    stored.eapIdentity = interface.copyEAPIdentity(ssid);
    stored.networkProfiles = interface.networkProfiles();
    stored.eapProfiles = interface.allUser8021XProfiles();
    return stored;
}

QByteArray ssidBytes(const scan::ScanedResultInfo& network)
{
    return network.network ? network.network->ssidData : network.ssid.toUtf8();
}

void logFailure(const platform::PlatformError& error)
{
    qCWarning(lcConnection).noquote()
        << QStringLiteral("here we got localizedDescription=%1\n code=%2\n localizedFailureReason=%3\n"
                          "localizedRecoverySuggestion=%4")
               .arg(error.description, QString::number(error.code), error.failureReason, error.recoverySuggestion);
}

} // namespace

JoinController::JoinController(std::shared_ptr<platform::WirelessInterface> interface, QObject* parent)
    : QObject(parent), interface_(std::move(interface))
{
}

JoinController::~JoinController()
{
    work_.shutDown();
    work_.waitForDone();
}

void JoinController::openFor(const scan::ScanedResultInfo& network)
{
    if (joinDialogContext_ || !interface_)
        return;
    joinDialogContext_ = true;
    selectedNetwork_ = network;
    work_.start([this, interface = interface_, ssid = ssidBytes(network)] {
        StoredCredentials stored = lookUp(*interface, ssid);
        work_.runOnOwnerThread(
            [this, stored = std::move(stored), generation = interface->generation()] {
                stored_ = stored;
                QStringList log;
                const JoinSheetState state = openJoinSheet(selectedNetwork_, stored_, generation, &log);
                for (const QString& line : std::as_const(log))
                    qCInfo(lcConnection).noquote() << line;
                emit sheetReady(state);
            },
            false);
    });
}

void JoinController::join(const JoinSheetState& state)
{
    if (busy_ || !interface_)
        return;
    const JoinDecision decision = decideJoin(state, selectedNetwork_, stored_, interface_->generation());
    if (decision.kind == JoinDecision::Refuse) {
        emit joinRefused(decision.message);
        return;
    }
    if (!selectedNetwork_.network) {
        emit joinFinished(platform::PlatformError{QStringLiteral("skyvane"), 0,
                                                  QStringLiteral("The network is no longer in the scan results."),
                                                  {}, {}});
        return;
    }
    busy_ = true;
    work_.start([this, interface = interface_, decision, network = *selectedNetwork_.network] {
        const platform::MaybeError error =
            decision.kind == JoinDecision::AssociateEnterprise
                ? interface->associateToEnterpriseNetwork(network, decision.identity, decision.username,
                                                          decision.password, decision.eap)
                : interface->associateToNetwork(network, decision.password);
        work_.runOnOwnerThread(
            [this, error] {
                busy_ = false;
                if (error)
                    logFailure(*error);
                emit joinFinished(error);
            },
            false);
    });
}

void JoinController::createAdHoc(const QString& name, const QString& passphrase)
{
    if (busy_)
        return;
    if (const platform::MaybeError refused = validateAdHoc(passphrase)) {
        emit adHocFinished(refused);
        return;
    }
    if (!interface_) {
        emit adHocFinished(platform::PlatformError{QStringLiteral("skyvane"), 0,
                                                   QStringLiteral("There is no Wi-Fi interface."), {}, {}});
        return;
    }
    busy_ = true;
    work_.start([this, interface = interface_, name, passphrase] {
        const int security = adHocSecurity(name, interface->networkProfiles());
        const platform::MaybeError error =
            interface->startIBSSModeWithSSID(name.toUtf8(), security, adHocChannel, passphrase);
        work_.runOnOwnerThread(
            [this, error] {
                busy_ = false;
                emit adHocFinished(error);
            },
            false);
    });
}

} // namespace connection
