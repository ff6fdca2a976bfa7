#pragma once

#include "interface/join_sheet_state.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace connection {
class JoinController;
}

namespace connection::view {

// The join sheet (JoinWindow): mirrors the controller's state, lets the user fill the enabled
// fields, and stays open with an alert when a join fails.
class JoinSheet : public QDialog {
    Q_OBJECT
public:
    JoinSheet(JoinController& controller, QWidget* parent = nullptr);

    // Current contents, as a join would use them.
    JoinSheetState state() const;

private:
    void apply(const JoinSheetState& state);
    void securityChosen(int index);
    void joinOKButtonPressed();
    void joinFinished(const platform::MaybeError& error);
    void setBusy(bool busy);
    void chooseCaCertificate();

    JoinController& controller_;
    JoinSheetState shown_;
    QLineEdit* joinNetworkNameField_;
    QComboBox* joinSecurityPopupButton_;
    QComboBox* joinUser8021XProfilePopupButton_;
    QLineEdit* joinUsernameField_;
    QLineEdit* joinPassphraseField_;
    QComboBox* eapMethodPopup_;
    QLineEdit* caCertificateField_;
    QPushButton* caCertificateButton_;
    QProgressBar* joinSpinner_;
    QPushButton* joinOKButton_;
    QPushButton* joinCancelButton_;
};

} // namespace connection::view
