#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <mutex>
#include <optional>

namespace sensor {

// The sensor listener's log: every line written since launch or the last clearing, the column
// header first. Written on the main thread and read by the save thread, so it is thread-safe.
class SensorLog : public QObject {
    Q_OBJECT
public:
    static constexpr const char* header = "TIME,BSSID,SSID,RSSI,NOISE,CHANNEL,LATITUDE,LONGITUDE,ALTITUDE\n";

    explicit SensorLog(QObject* parent = nullptr);

    // One line; the header goes first whenever the log is empty. An empty line adds nothing.
    // Line breaks and NUL bytes inside it are written as the escapes \n, \r and \0.
    void writeLog(const QString& line);
    void clearListenerLogFiles();

    QString text() const;
    // At most count lines from the end, oldest first, without their "\n".
    QStringList newestLines(qsizetype count) const;
    bool isEmpty() const;
    bool shouldAddHeaderToLogFile() const;

    // What a save must write to bring a file holding savedBytes of the log of savedGeneration
    // up to date. A clearing starts a new generation; then, or when the saved state is
    // unknown, the whole log is returned for a rewrite.
    struct Changes {
        std::uint64_t generation = 0;
        bool rewrite = false;
        QByteArray bytes;        // UTF-8, whole lines
        qsizetype endBytes = 0;  // the log's size once these bytes are written
    };
    Changes changesSince(std::optional<std::uint64_t> savedGeneration, qsizetype savedBytes) const;

signals:
    // The text just added (with the header when it came first), for a view that keeps only
    // the newest lines.
    void logAppended(const QString& text);
    void logCleared();

private:
    mutable std::mutex mutex_;
    QByteArray content_;
    std::uint64_t generation_ = 0;
    bool shouldAddHeaderToLogFile_ = true;
};

} // namespace sensor
