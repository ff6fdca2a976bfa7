#pragma once

#include "core/user_settings.h"

#include <QVariantMap>

#include <mutex>

// A run's own choices over the user's settings: the keys given here read and write in memory
// and never reach the underlying store; every other key passes through. Lets a command change
// a setting for itself without copying or touching the user's file.
namespace core {

class SettingsOverlay : public UserSettings {
public:
    SettingsOverlay(UserSettings& base, QVariantMap overrides);

    QVariant value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;

private:
    UserSettings& base_;
    mutable std::mutex mutex_;
    QVariantMap overrides_;
};

} // namespace core
