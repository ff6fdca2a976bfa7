#include "scan/log_category.h"

Q_LOGGING_CATEGORY(lcScan, "skyvane.scan", QtWarningMsg)
