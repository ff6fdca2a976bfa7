#pragma once

#include "sensor/sensor_log.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

namespace sensor {

// The sensor log's file, one name per run in the folder the user chose. The file is created
// exclusively: when the name is taken (another run in the same second, or another listener in
// the folder) a counter is added, so a file this run did not create is never written. Each save
// brings the file up to the log's content at that moment: new lines are appended, and the file
// is rewritten (temporary file and rename) only when the log was cleared or the file no longer
// holds what the last save wrote. Saves may come from any thread.
class SensorLogFile {
public:
    static constexpr const char* folderSettingKey = "udp_log_file_path";
    static constexpr const char* savePeriodSettingKey = "udp_auto_save_log_time_interval";
    static constexpr const char* selectDirectoryMessage = "Please select directory for log files";
    static constexpr const char* unableToCreateMessage = "unable to create file...";
    static constexpr std::chrono::seconds defaultSavePeriod{5};
    // The longest period the save timer is trusted with.
    static constexpr std::chrono::seconds longestSavePeriod{86400LL * 365};
    // Names tried before a save gives up on a folder that is full of this second's files.
    static constexpr int namesToTry = 1000;

    // "/skyvane_<MM_dd_YYYY_hh_mm_ss>.csv" for a run launched at launchTime.
    static QString logFileNameForLaunch(const QDateTime& launchTime);
    // The name with a counter for the attempt-th try: the name itself for 1, else
    // "/skyvane_<...>-<attempt>.csv".
    static QString numberedFileName(const QString& logFileName, int attempt);
    // The folder a udp_log_file_path value names: a file URL text ("file://localhost/..." or
    // "file:///...", percent escapes decoded) or a plain path; empty when none was chosen.
    static QString folderForSetting(const QVariant& setting);
    // Whole seconds; the default when the value is missing, not a number, below one second or
    // above the longest period.
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
    // The path of the last successful save; empty before one.
    QString savedPath();
    // Bytes of the log that no file holds yet (0 for an empty log).
    qsizetype unsavedBytes();

private:
    struct Saved {
        QString path;
        std::uint64_t generation = 0;
        qsizetype bytes = 0;
    };

    SaveReport create(const QString& folder);
    SaveReport update(const QString& path);
    void remember(const QString& path, const SensorLog::Changes& changes);

    const SensorLog& log_;
    const QString logFileName_;
    std::mutex mutex_;
    std::optional<Saved> saved_;
    // Folder to the file this run created in it: the only file there it may write.
    std::map<QString, QString> created_;
};

} // namespace sensor
