#pragma once

#include "interface/join_sheet_state.h"
#include "platform/api/wireless_interface.h"
#include "scanning/background_work.h"

#include <QObject>

#include <memory>

// Drives the join and ad-hoc sheets: looks up stored credentials, joins and creates networks
// on a background thread (NetworkManager may wait for an authorisation dialog or for the link
// to come up) and reports the outcome back on the thread that owns it.
namespace connection {

class JoinController : public QObject {
    Q_OBJECT
public:
    explicit JoinController(std::shared_ptr<platform::WirelessInterface> interface, QObject* parent = nullptr);
    ~JoinController() override;

    void setInterface(std::shared_ptr<platform::WirelessInterface> interface) { interface_ = std::move(interface); }

    // Looks up what is stored for the network, then announces the sheet's state.
    void openFor(const scan::ScanedResultInfo& network);
    bool isJoinDialogContext() const { return joinDialogContext_; }
    void sheetClosed() { joinDialogContext_ = false; }
    const scan::ScanedResultInfo& selectedNetwork() const { return selectedNetwork_; }

    // Joins with what the sheet holds now; refused at once when the rules say so.
    void join(const JoinSheetState& state);
    // Creates the ad-hoc network; the passphrase is required.
    void createAdHoc(const QString& name, const QString& passphrase);
    bool isBusy() const { return busy_; }
    void waitForBackgroundWork() { work_.waitForDone(); }

signals:
    void sheetReady(const connection::JoinSheetState& state);
    void joinRefused(const QString& message);
    void joinFinished(const platform::MaybeError& error);
    void adHocFinished(const platform::MaybeError& error);

private:
    std::shared_ptr<platform::WirelessInterface> interface_;
    scan::ScanedResultInfo selectedNetwork_;
    StoredCredentials stored_;
    bool joinDialogContext_ = false;
    bool busy_ = false;
    scanning::BackgroundWork work_;
};

} // namespace connection
