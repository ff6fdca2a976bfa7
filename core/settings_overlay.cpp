#include "core/settings_overlay.h"

namespace core {

SettingsOverlay::SettingsOverlay(UserSettings& base, QVariantMap overrides)
    : base_(base), overrides_(std::move(overrides))
{
}

QVariant SettingsOverlay::value(const QString& key) const
{
    {
        const std::lock_guard lock(mutex_);
        if (const auto it = overrides_.constFind(key); it != overrides_.cend())
            return *it;
    }
    return base_.value(key);
}

void SettingsOverlay::setValue(const QString& key, const QVariant& value)
{
    {
        const std::lock_guard lock(mutex_);
        if (const auto it = overrides_.find(key); it != overrides_.end()) {
            if (value.isValid())
                *it = value;
            return;
        }
    }
    base_.setValue(key, value);
}

} // namespace core
