#pragma once

#include "core/user_settings.h"

#include <QObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <memory>
#include <mutex>

class QSettings;

// The user's settings: a per-user store under the XDG config location, layered over the
// registered defaults that ship as a property-list resource. Failures never stop the program;
// reads fall back to nothing and writes report through saveFailed().
class SettingsStore : public QObject, public core::UserSettings {
    Q_OBJECT
public:
    static constexpr const char* applicationId = "org.skyvane.Skyvane";
    static constexpr const char* unableToSaveMessage =
        "Unable to save settings. Check console log files for details.";

    // configFile: the per-user store; empty means "<XDG config>/skyvane/skyvane.conf".
    explicit SettingsStore(const QString& configFile = QString(), QObject* parent = nullptr);
    ~SettingsStore() override;

    // Loads "<applicationId>-default-values.plist" from the resources, or the given file, and
    // registers it as the defaults layer. A missing or unreadable file keeps the built-in
    // fallbacks and logs why. Returns whether the file was read.
    bool setupDefaults(const QString& plistPath = QString());
    void registerDefaults(const QVariantMap& defaults);
    QVariantMap registeredDefaults() const;

    // The stored value, else the registered default, else a null QVariant.
    QVariant value(const QString& key) const override;
    // Stores and writes through to disk at once; does nothing for an empty key or a null value.
    void setValue(const QString& key, const QVariant& value) override;
    void removeUserSetting(const QString& key);

    bool isAvailable() const;
    QString fileName() const;

    static QString defaultsResourcePath();
    // Built-in values for when the defaults file cannot be read.
    static QVariantMap builtInDefaults();

signals:
    void saveFailed(const QString& message);

private:
    // QSettings is reentrant, not thread-safe: one instance is shared by every reader.
    mutable std::mutex mutex_;
    std::unique_ptr<QSettings> store_;
    QVariantMap defaults_;
};
