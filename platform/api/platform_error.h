#pragma once

#include <QString>

#include <optional>

// A failed platform call, as an alert shows it: where it came from, a number, and readable text.
namespace platform {

struct PlatformError {
    QString domain;
    int code = 0;
    QString description;
    QString failureReason;
    QString recoverySuggestion;
};

// Empty on success.
using MaybeError = std::optional<PlatformError>;

} // namespace platform
