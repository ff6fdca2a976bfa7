#pragma once

#include <QLoggingCategory>

// The scan-result layer's console texts: failures show by default, the rest with
// QT_LOGGING_RULES="skyvane.scan.info=true" or skyvane-cli --verbose.
Q_DECLARE_LOGGING_CATEGORY(lcScan)
