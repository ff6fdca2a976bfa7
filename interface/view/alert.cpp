#include "interface/view/alert.h"

#include <QMessageBox>
#include <QTextDocument>

namespace connection::view {

void showAlert(QWidget* parent, const QString& objectName, const QString& messageText, const QString& informativeText)
{
    auto* alert = new QMessageBox(QMessageBox::Warning, QStringLiteral("Skyvane"), messageText, QMessageBox::Ok, parent);
    alert->setObjectName(objectName);
    alert->setAccessibleName(messageText);
    alert->setTextFormat(Qt::PlainText);
    // The informative text has no format switch of its own; as rich text from plain it stays literal.
    if (!informativeText.isEmpty())
        alert->setInformativeText(Qt::convertFromPlainText(informativeText));
    alert->setWindowModality(Qt::WindowModal);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->open();
}

} // namespace connection::view
