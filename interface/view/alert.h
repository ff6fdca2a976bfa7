#pragma once

#include <QString>

class QWidget;

namespace connection::view {

// A sheet-like warning over parent with the platform's words; both texts stay literal, since
// they may carry network names.
void showAlert(QWidget* parent, const QString& objectName, const QString& messageText, const QString& informativeText);

} // namespace connection::view
