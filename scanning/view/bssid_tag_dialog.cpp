#include "scanning/view/bssid_tag_dialog.h"

#include "scanning/results_table_model.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace scanning::view {

BssidTagDialog::BssidTagDialog(scanning::ResultsTableModel& results, const QString& bssid, const QString& currentTag,
                               QWidget* parent)
    : QDialog(parent), results_(results), bssid_(bssid), tag_(new QLineEdit(currentTag, this))
{
    setObjectName(QStringLiteral("bssidTagWindow"));
    setWindowTitle(tr("BSSID Tag"));
    setAccessibleName(tr("BSSID Tag"));
    auto* label = new QLabel(bssid, this);
    label->setObjectName(QStringLiteral("bssidTagLabel"));
    label->setAccessibleName(tr("BSSID"));
    label->setTextFormat(Qt::PlainText);
    tag_->setObjectName(QStringLiteral("bssidTagField"));
    tag_->setAccessibleName(tr("Tag"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("bssidTagButtons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &BssidTagDialog::save);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QFormLayout(this);
    layout->addRow(tr("BSSID:"), label);
    layout->addRow(tr("Tag:"), tag_);
    layout->addRow(buttons);
}

void BssidTagDialog::save()
{
    results_.saveBSSIDTag(bssid_, tag_->text());
    results_.didSavedBSSIDTagInfo();
    accept();
}

} // namespace scanning::view
