#pragma once

#include <QString>
#include <QVariant>

// The user's key-value settings as every layer sees them. The executables choose the
// implementation (a file over registered defaults, an in-memory map, an overlay) and pass it
// down; nothing below app/ knows where the values live. Implementations are thread-safe.
namespace core {

class UserSettings {
public:
    virtual ~UserSettings() = default;
    // The stored value, else the registered default, else a null QVariant.
    virtual QVariant value(const QString& key) const = 0;
    // Does nothing for an empty key or a null value.
    virtual void setValue(const QString& key, const QVariant& value) = 0;
};

// A switch read back from any store: a value written as a boolean comes back from a settings
// file as the text "true", so true, "true", 1 and "1" are all on, and everything else is off.
bool settingIsOn(const QVariant& value);

} // namespace core
