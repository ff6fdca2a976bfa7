#include "interface/log_category.h"

Q_LOGGING_CATEGORY(lcConnection, "skyvane.connection", QtWarningMsg)
