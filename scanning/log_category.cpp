#include "scanning/log_category.h"

Q_LOGGING_CATEGORY(lcScanning, "skyvane.scanning", QtWarningMsg)
