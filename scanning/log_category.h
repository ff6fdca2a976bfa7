#pragma once

#include <QLoggingCategory>

// The console texts of the scanner: quiet unless asked for (QT_LOGGING_RULES="skyvane.*=true"),
// so a headless run's standard error carries only what the user must read.
Q_DECLARE_LOGGING_CATEGORY(lcScanning)
