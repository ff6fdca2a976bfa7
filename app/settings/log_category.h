#pragma once

#include <QLoggingCategory>

// The settings store's console texts: a corrupt or unwritable store is always said.
Q_DECLARE_LOGGING_CATEGORY(lcSettings)
