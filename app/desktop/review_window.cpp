#include "app/desktop/review_window.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace app::desktop {

ReviewWindow::ReviewWindow(const ReviewSummary& summary, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("reviewWindow"));
    setAccessibleName(tr("Scan summary"));
    setWindowTitle(tr("Scan Summary"));

    auto* form = new QFormLayout;
    const auto addRow = [&](const QString& name, const QString& label, const QString& value) {
        auto* field = new QLabel(value, this);
        // SSIDs come from the air.
        field->setTextFormat(Qt::PlainText);
        field->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        field->setObjectName(name);
        field->setAccessibleName(label);
        form->addRow(label, field);
    };
    addRow(QStringLiteral("summarySsid"), tr("Last connected SSID"), summary.ssid);
    addRow(QStringLiteral("summaryRssi"), tr("RSSI"), summary.rssi);
    addRow(QStringLiteral("summaryNoise"), tr("Noise"), summary.noise);
    addRow(QStringLiteral("summaryChannel"), tr("Channel"), summary.channel);
    addRow(QStringLiteral("summaryBand"), tr("Band"), summary.band);
    addRow(QStringLiteral("summarySecurity"), tr("Security"), summary.security);
    addRow(QStringLiteral("summaryTotal"), tr("Networks seen"), summary.totalNetworks);
    addRow(QStringLiteral("summary24Ghz"), tr("On 2.4 GHz"), summary.networks24Ghz);
    addRow(QStringLiteral("summary5Ghz"), tr("On 5 GHz"), summary.networks5Ghz);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* keepScanning = buttons->addButton(tr("&Continue Scanning"), QDialogButtonBox::RejectRole);
    keepScanning->setObjectName(QStringLiteral("continueScanningButton"));
    keepScanning->setAccessibleName(tr("Continue scanning"));
    QPushButton* close = buttons->addButton(tr("C&lose"), QDialogButtonBox::AcceptRole);
    close->setObjectName(QStringLiteral("closeButton"));
    close->setAccessibleName(tr("Close Skyvane"));
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        hide();
        emit userDidChooseToClose();
    });
    // Escape and the window's own close button mean "not yet", as the continue button does.
    connect(this, &QDialog::rejected, this, &ReviewWindow::userDidChooseToContinue);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

} // namespace app::desktop
