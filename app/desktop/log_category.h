#pragma once

#include <QLoggingCategory>

// The desktop program's log texts.
Q_DECLARE_LOGGING_CATEGORY(lcDesktop)
