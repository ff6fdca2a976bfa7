#pragma once

#include "core/user_settings.h"

#include <QObject>
#include <QString>

// The General preferences as settings: reads each value for its control and writes a change
// at once, refusing a listener port or auto-save interval the listener could not use.
namespace app::desktop {

class GeneralPreferences : public QObject {
    Q_OBJECT
public:
    static constexpr const char* gridLinesKey = "showGridLinesOnGraph";
    static constexpr const char* rssiValuesKey = "showRSSIValueOnGraph";
    static constexpr const char* summaryWindowKey = "SHOW_SUMMARY_WINDOW";
    static constexpr const char* mergeResultsKey = "mergeScanResults";
    static constexpr const char* fontSizeKey = "fontSize";
    static constexpr const char* listenerPortKey = "udp_listener_port";
    static constexpr const char* logFolderKey = "udp_log_file_path";
    static constexpr const char* autoSaveIntervalKey = "udp_auto_save_log_time_interval";
    static constexpr int minimumFontSize = 6;
    static constexpr int maximumFontSize = 72;
    static constexpr int defaultFontSize = 12;

    explicit GeneralPreferences(core::UserSettings& settings, QObject* parent = nullptr);

    bool isOn(const QString& key) const;
    // The summary switch is a boolean; the graph and merge switches are read as 0 or 1.
    void setOn(const QString& key, bool on);

    int fontSize() const;
    void setFontSize(int size);

    QString listenerPort() const;
    // Empty when written; otherwise why the text was refused, and nothing was written.
    QString setListenerPort(const QString& text);

    QString logFolder() const;
    void setLogFolder(const QString& folder);

    QString autoSaveInterval() const;
    // Empty when written; otherwise why the text was refused, and nothing was written.
    QString setAutoSaveInterval(const QString& text);

signals:
    void settingChanged(const QString& key);

private:
    void write(const QString& key, const QVariant& value);

    core::UserSettings& settings_;
};

} // namespace app::desktop
