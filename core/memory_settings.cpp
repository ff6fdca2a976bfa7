#include "core/memory_settings.h"

namespace core {

MemorySettings::MemorySettings(QVariantMap defaults) : defaults_(std::move(defaults)) {}

QVariant MemorySettings::value(const QString& key) const
{
    const std::lock_guard lock(mutex_);
    if (const auto it = values_.constFind(key); it != values_.cend())
        return *it;
    return defaults_.value(key);
}

void MemorySettings::setValue(const QString& key, const QVariant& value)
{
    if (key.isEmpty() || !value.isValid())
        return;
    const std::lock_guard lock(mutex_);
    values_.insert(key, value);
}

} // namespace core
