#include "app/desktop/log_category.h"

Q_LOGGING_CATEGORY(lcDesktop, "skyvane.desktop", QtWarningMsg)
