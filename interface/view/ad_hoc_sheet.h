#pragma once

#include "platform/api/platform_error.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace connection {
class JoinController;
}

namespace connection::view {

// The ad-hoc sheet: a name (the computer's, to begin with), channel 11 and a passphrase.
class AdHocSheet : public QDialog {
    Q_OBJECT
public:
    AdHocSheet(JoinController& controller, QWidget* parent = nullptr);

    // createIBSSButtonPressed: fills the sheet afresh and shows it.
    void createIBSSButtonPressed();

private:
    void ibssOKButtonPressed();
    void ibssFinished(const platform::MaybeError& error);
    void setBusy(bool busy);

    JoinController& controller_;
    QLineEdit* ibssNetworkNameField_;
    QComboBox* ibssChannelPopupButton_;
    QLineEdit* ibssPassphraseField_;
    QProgressBar* ibssSpinner_;
    QPushButton* ibssOKButton_;
    QPushButton* ibssCancelButton_;
};

} // namespace connection::view
