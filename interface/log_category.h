#pragma once

#include <QLoggingCategory>

// The console texts of the connection subsystem; quiet unless asked for
// (QT_LOGGING_RULES="skyvane.*=true").
Q_DECLARE_LOGGING_CATEGORY(lcConnection)
