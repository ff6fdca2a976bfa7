#include "app/desktop/general_preferences.h"

#include <algorithm>
#include <cmath>

namespace app::desktop {

GeneralPreferences::GeneralPreferences(core::UserSettings& settings, QObject* parent)
    : QObject(parent), settings_(settings)
{
}

bool GeneralPreferences::isOn(const QString& key) const { return core::settingIsOn(settings_.value(key)); }

void GeneralPreferences::setOn(const QString& key, bool on)
{
    if (key == QLatin1String(summaryWindowKey))
        write(key, on);
    else
        write(key, on ? 1 : 0);
}

int GeneralPreferences::fontSize() const
{
    bool ok = false;
    const double size = settings_.value(QLatin1String(fontSizeKey)).toDouble(&ok);
    if (!ok)
        return defaultFontSize;
    return std::clamp(static_cast<int>(std::lround(size)), minimumFontSize, maximumFontSize);
}

void GeneralPreferences::setFontSize(int size)
{
    write(QLatin1String(fontSizeKey), std::clamp(size, minimumFontSize, maximumFontSize));
}

QString GeneralPreferences::listenerPort() const { return settings_.value(QLatin1String(listenerPortKey)).toString(); }

QString GeneralPreferences::setListenerPort(const QString& text)
{
    bool ok = false;
    const int port = text.trimmed().toInt(&ok);
    if (!ok || port < 1 || port > 65535)
        return tr("The listener port must be a whole number from 1 to 65535.");
    write(QLatin1String(listenerPortKey), port);
    return {};
}

QString GeneralPreferences::logFolder() const { return settings_.value(QLatin1String(logFolderKey)).toString(); }

void GeneralPreferences::setLogFolder(const QString& folder)
{
    // An empty folder is a real choice (no logs folder yet), but the store ignores null values.
    write(QLatin1String(logFolderKey), folder.isNull() ? QString(QLatin1String("")) : folder);
}

QString GeneralPreferences::autoSaveInterval() const
{
    return settings_.value(QLatin1String(autoSaveIntervalKey)).toString();
}

QString GeneralPreferences::setAutoSaveInterval(const QString& text)
{
    bool ok = false;
    const double seconds = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(seconds) || seconds <= 0)
        return tr("The auto-save interval must be a number of seconds greater than 0.");
    if (seconds == std::floor(seconds) && seconds <= 2147483647.0)
        write(QLatin1String(autoSaveIntervalKey), static_cast<int>(seconds));
    else
        write(QLatin1String(autoSaveIntervalKey), seconds);
    return {};
}

void GeneralPreferences::write(const QString& key, const QVariant& value)
{
    // Losing focus re-sends an unchanged field; listeners should hear only real changes.
    if (settings_.value(key).toString() == value.toString())
        return;
    settings_.setValue(key, value);
    emit settingChanged(key);
}

} // namespace app::desktop
