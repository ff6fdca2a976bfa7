#include "interface/view/ad_hoc_sheet.h"

#include "interface/join_controller.h"
#include "interface/view/alert.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSysInfo>
#include <QVBoxLayout>

namespace connection::view {

AdHocSheet::AdHocSheet(JoinController& controller, QWidget* parent)
    : QDialog(parent), controller_(controller), ibssNetworkNameField_(new QLineEdit),
      ibssChannelPopupButton_(new QComboBox), ibssPassphraseField_(new QLineEdit), ibssSpinner_(new QProgressBar),
      ibssOKButton_(new QPushButton(tr("Create"))), ibssCancelButton_(new QPushButton(tr("Cancel")))
{
    setObjectName(QStringLiteral("ibssDialogWindow"));
    setAccessibleName(tr("Create an ad-hoc network"));
    setWindowTitle(tr("Create Network"));
    setWindowModality(Qt::WindowModal);
    ibssNetworkNameField_->setObjectName(QStringLiteral("ibssNetworkNameField"));
    ibssNetworkNameField_->setAccessibleName(tr("Network name"));
    ibssChannelPopupButton_->setObjectName(QStringLiteral("ibssChannelPopupButton"));
    ibssChannelPopupButton_->setAccessibleName(tr("Channel"));
    ibssPassphraseField_->setObjectName(QStringLiteral("ibssPassphraseField"));
    ibssPassphraseField_->setAccessibleName(tr("Passphrase"));
    ibssPassphraseField_->setEchoMode(QLineEdit::Password);
    ibssSpinner_->setObjectName(QStringLiteral("ibssSpinner"));
    ibssSpinner_->setAccessibleName(tr("Creating"));
    ibssSpinner_->setRange(0, 0);
    ibssSpinner_->setTextVisible(false);
    ibssSpinner_->setVisible(false);
    ibssOKButton_->setObjectName(QStringLiteral("ibssOKButton"));
    ibssOKButton_->setAccessibleName(tr("Create"));
    ibssOKButton_->setDefault(true);
    ibssCancelButton_->setObjectName(QStringLiteral("ibssCancelButton"));
    ibssCancelButton_->setAccessibleName(tr("Cancel"));

    auto* form = new QFormLayout;
    form->addRow(tr("Network &name:"), ibssNetworkNameField_);
    form->addRow(tr("&Channel:"), ibssChannelPopupButton_);
    form->addRow(tr("&Passphrase:"), ibssPassphraseField_);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(ibssOKButton_, QDialogButtonBox::AcceptRole);
    buttons->addButton(ibssCancelButton_, QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(this);
    // The spinner comes and goes; the sheet keeps to the size of what it shows.
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(form);
    layout->addWidget(ibssSpinner_);
    layout->addWidget(buttons);

    connect(ibssOKButton_, &QPushButton::clicked, this, &AdHocSheet::ibssOKButtonPressed);
    connect(ibssCancelButton_, &QPushButton::clicked, this, &QDialog::reject);
    connect(&controller_, &JoinController::adHocFinished, this, &AdHocSheet::ibssFinished);
}

void AdHocSheet::createIBSSButtonPressed()
{
    const QString machineName = QSysInfo::machineHostName();
    if (!machineName.isEmpty())
        ibssNetworkNameField_->setText(machineName);
    ibssChannelPopupButton_->clear();
    ibssChannelPopupButton_->addItem(QString::number(adHocChannel));
    ibssChannelPopupButton_->setCurrentIndex(0);
    ibssChannelPopupButton_->setEnabled(false);
    ibssPassphraseField_->clear();
    setBusy(false);
    open();
    ibssNetworkNameField_->setFocus();
}

void AdHocSheet::ibssOKButtonPressed()
{
    if (!isVisible())
        return;
    setBusy(true);
    controller_.createAdHoc(ibssNetworkNameField_->text(), ibssPassphraseField_->text());
}

void AdHocSheet::ibssFinished(const platform::MaybeError& error)
{
    if (!isVisible())
        return;
    setBusy(false);
    if (!error) {
        accept();
        return;
    }
    showAlert(this, QStringLiteral("ibssFailedAlert"), error->description,
              QStringList{error->failureReason, error->recoverySuggestion}.join(QLatin1Char('\n')).trimmed());
}

void AdHocSheet::setBusy(bool busy)
{
    ibssSpinner_->setVisible(busy);
    ibssOKButton_->setEnabled(!busy);
}

} // namespace connection::view
