#pragma once

#include "sensor/sensor_log.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

namespace sensor {

// The sensor log's file, one name per run in the folder the user chose. Each save brings the
// file up to the log's content at that moment: new lines are appended, and the file is
// rewritten (temporary file and rename) only when the log was cleared or the file no longer
// holds what the last save wrote. Saves may come from any thread.
class SensorLogFile {
public:
    static constexpr const char* folderSettingKey = "udp_log_file_path";
    static constexpr const char* savePeriodSettingKey = "udp_auto_save_log_time_interval";
    static constexpr const char* selectDirectoryMessage = "Please select directory for log files";
    static constexpr const char* unableToCreateMessage = "unable to create file...";
    static constexpr std::chrono::seconds defaultSavePeriod{5};

    // "/skyvane_<MM_dd_YYYY_hh_mm_ss>.csv" for a run launched at launchTime.
    static QString logFileNameForLaunch(const QDateTime& launchTime);
    // The folder a udp_log_file_path value names: a file URL text ("file://localhost/..." or
    // "file:///...", percent escapes decoded) or a plain path; empty when none was chosen.
    static QString folderForSetting(const QVariant& setting);
    // Whole seconds; the default when the value is missing, not a number or below one second.
    static std::chrono::seconds savePeriodForSetting(const QVariant& setting);

    // What one save has to tell: a text for the status line (empty for none) and lines for
    // the console log.
    struct SaveReport {
        QString status;
        QStringList console;
    };

    SensorLogFile(const SensorLog& log, QString logFileName);

    const QString& logFileName() const { return logFileName_; }
    // One save into the folder that folderSetting names (appendToLogFile).
    SaveReport appendToLogFile(const QVariant& folderSetting);

private:
    struct Saved {
        QString path;
        std::uint64_t generation = 0;
        qsizetype bytes = 0;
    };

    SaveReport save(const QString& path);
    void remember(const QString& path, const SensorLog::Changes& changes);

    const SensorLog& log_;
    const QString logFileName_;
    std::mutex mutex_;
    std::optional<Saved> saved_;
};

} // namespace sensor
