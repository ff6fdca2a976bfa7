#include "app/settings/log_category.h"

Q_LOGGING_CATEGORY(lcSettings, "skyvane.settings", QtWarningMsg)
