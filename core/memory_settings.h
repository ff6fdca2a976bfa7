#pragma once

#include "core/user_settings.h"

#include <QVariantMap>

#include <mutex>

// Settings held in memory only: registered defaults under values set in this run.
namespace core {

class MemorySettings : public UserSettings {
public:
    explicit MemorySettings(QVariantMap defaults = {});

    QVariant value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;

private:
    mutable std::mutex mutex_;
    QVariantMap defaults_;
    QVariantMap values_;
};

} // namespace core
