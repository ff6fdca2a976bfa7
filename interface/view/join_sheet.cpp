#include "interface/view/join_sheet.h"

#include "interface/join_controller.h"
#include "interface/view/alert.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace connection::view {
namespace {

template <typename W>
W* named(W* widget, const QString& objectName, const QString& accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    return widget;
}

} // namespace

JoinSheet::JoinSheet(JoinController& controller, QWidget* parent)
    : QDialog(parent), controller_(controller),
      joinNetworkNameField_(named(new QLineEdit, QStringLiteral("joinNetworkNameField"), tr("Network name"))),
      joinSecurityPopupButton_(named(new QComboBox, QStringLiteral("joinSecurityPopupButton"), tr("Security"))),
      joinUser8021XProfilePopupButton_(
          named(new QComboBox, QStringLiteral("joinUser8021XProfilePopupButton"), tr("802.1X profile"))),
      joinUsernameField_(named(new QLineEdit, QStringLiteral("joinUsernameField"), tr("User name"))),
      joinPassphraseField_(named(new QLineEdit, QStringLiteral("joinPassphraseField"), tr("Password"))),
      eapMethodPopup_(named(new QComboBox, QStringLiteral("joinEapMethodPopupButton"), tr("802.1X authentication"))),
      caCertificateField_(named(new QLineEdit, QStringLiteral("joinCaCertificateField"), tr("CA certificate"))),
      caCertificateButton_(
          named(new QPushButton(tr("Choose…")), QStringLiteral("joinCaCertificateButton"), tr("Choose a CA certificate"))),
      joinSpinner_(named(new QProgressBar, QStringLiteral("joinSpinner"), tr("Joining"))),
      joinOKButton_(named(new QPushButton(tr("Join")), QStringLiteral("joinOKButton"), tr("Join"))),
      joinCancelButton_(named(new QPushButton(tr("Cancel")), QStringLiteral("joinCancelButton"), tr("Cancel")))
{
    setObjectName(QStringLiteral("joinWindow"));
    setAccessibleName(tr("Join a Wi-Fi network"));
    setWindowTitle(tr("Join Network"));
    setWindowModality(Qt::WindowModal);
    joinSecurityPopupButton_->addItems(joinSecurityTitles());
    joinPassphraseField_->setEchoMode(QLineEdit::Password);
    eapMethodPopup_->addItems({tr("PEAP / MSCHAPv2"), tr("TTLS / PAP")});
    caCertificateField_->setPlaceholderText(tr("System default"));
    caCertificateField_->setClearButtonEnabled(true);
    joinSpinner_->setRange(0, 0);
    joinSpinner_->setTextVisible(false);
    joinSpinner_->setVisible(false);
    joinOKButton_->setDefault(true);

    auto* form = new QFormLayout;
    form->addRow(tr("Network &name:"), joinNetworkNameField_);
    form->addRow(tr("&Security:"), joinSecurityPopupButton_);
    form->addRow(tr("802.1X &profile:"), joinUser8021XProfilePopupButton_);
    form->addRow(tr("&User name:"), joinUsernameField_);
    form->addRow(tr("Pass&word:"), joinPassphraseField_);
    form->addRow(tr("&Authentication:"), eapMethodPopup_);
    auto* certificate = new QHBoxLayout;
    certificate->addWidget(caCertificateField_, 1);
    certificate->addWidget(caCertificateButton_);
    auto* certificateLabel = new QLabel(tr("CA &certificate:"));
    certificateLabel->setBuddy(caCertificateField_);
    form->addRow(certificateLabel, certificate);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(joinOKButton_, QDialogButtonBox::AcceptRole);
    buttons->addButton(joinCancelButton_, QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(this);
    // The spinner comes and goes; the sheet keeps to the size of what it shows.
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(form);
    layout->addWidget(joinSpinner_);
    layout->addWidget(buttons);

    connect(joinSecurityPopupButton_, &QComboBox::activated, this, &JoinSheet::securityChosen);
    connect(joinOKButton_, &QPushButton::clicked, this, &JoinSheet::joinOKButtonPressed);
    connect(caCertificateButton_, &QPushButton::clicked, this, &JoinSheet::chooseCaCertificate);
    connect(joinCancelButton_, &QPushButton::clicked, this, &QDialog::reject);
    connect(this, &QDialog::finished, &controller_, &JoinController::sheetClosed);
    connect(&controller_, &JoinController::sheetReady, this, [this](const JoinSheetState& state) {
        apply(state);
        setBusy(false);
        open();
        joinPassphraseField_->setFocus();
    });
    connect(&controller_, &JoinController::joinRefused, this,
            [this](const QString& message) {
                setBusy(false);
                showAlert(this, QStringLiteral("joinRefusedAlert"), message, {});
            });
    connect(&controller_, &JoinController::joinFinished, this, &JoinSheet::joinFinished);
}

JoinSheetState JoinSheet::state() const
{
    JoinSheetState s = shown_;
    s.networkName = joinNetworkNameField_->text();
    s.securityIndex = joinSecurityPopupButton_->currentIndex();
    s.username = joinUsernameField_->text();
    s.passphrase = joinPassphraseField_->text();
    s.profileIndex = joinUser8021XProfilePopupButton_->currentIndex();
    s.eap.method = eapMethodPopup_->currentIndex() == 1 ? platform::EapOptions::Method::TtlsPap
                                                        : platform::EapOptions::Method::PeapMschapv2;
    s.eap.caCertificatePath = caCertificateField_->text().trimmed();
    return s;
}

void JoinSheet::apply(const JoinSheetState& state)
{
    shown_ = state;
    joinNetworkNameField_->setText(state.networkName);
    joinNetworkNameField_->setEnabled(state.nameEnabled);
    joinSecurityPopupButton_->setCurrentIndex(state.securityIndex);
    joinSecurityPopupButton_->setEnabled(state.securityEnabled);
    joinUser8021XProfilePopupButton_->clear();
    joinUser8021XProfilePopupButton_->addItems(state.profileItems);
    joinUser8021XProfilePopupButton_->setCurrentIndex(state.profileIndex);
    joinUser8021XProfilePopupButton_->setEnabled(state.profileEnabled);
    joinUsernameField_->setText(state.username);
    joinUsernameField_->setEnabled(state.usernameEnabled);
    joinPassphraseField_->setText(state.passphrase);
    joinPassphraseField_->setEnabled(state.passphraseEnabled);
    joinPassphraseField_->setReadOnly(!state.passphraseEditable);
    eapMethodPopup_->setCurrentIndex(state.eap.method == platform::EapOptions::Method::TtlsPap ? 1 : 0);
    caCertificateField_->setText(state.eap.caCertificatePath);
    for (QWidget* control : {static_cast<QWidget*>(eapMethodPopup_), static_cast<QWidget*>(caCertificateField_),
                             static_cast<QWidget*>(caCertificateButton_)})
        control->setEnabled(state.usernameEnabled);
}

void JoinSheet::securityChosen(int index)
{
    JoinSheetState s = state();
    s.securityIndex = index;
    changeSecurityMode(s, {});
    apply(s);
}

void JoinSheet::joinOKButtonPressed()
{
    setBusy(true);
    controller_.join(state());
}

void JoinSheet::joinFinished(const platform::MaybeError& error)
{
    setBusy(false);
    if (!error) {
        accept();
        return;
    }
    showAlert(this, QStringLiteral("joinFailedAlert"), error->description,
              QStringList{error->failureReason, error->recoverySuggestion}.join(QLatin1Char('\n')).trimmed());
}

void JoinSheet::chooseCaCertificate()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("CA Certificate"), caCertificateField_->text(),
                                                      tr("Certificates (*.pem *.crt *.cer *.der);;All files (*)"));
    if (!path.isEmpty())
        caCertificateField_->setText(path);
}

void JoinSheet::setBusy(bool busy)
{
    joinSpinner_->setVisible(busy);
    joinOKButton_->setEnabled(!busy);
}

} // namespace connection::view
