#pragma once

#include "core/user_settings.h"
#include "sensor/sensor_log_file.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace sensor {

// Saves the sensor log to its file periodically on a thread of its own, so a slow disk never
// holds up the listener. Texts for the status line and the console come back as signals,
// emitted on the save thread (queued to receivers on other threads).
class SensorLogSaver : public QObject {
    Q_OBJECT
public:
    // settings gives udp_log_file_path at every save and the period at every start; it must
    // outlive the saver and be readable from the save thread.
    SensorLogSaver(SensorLogFile& file, core::UserSettings& settings, QObject* parent = nullptr);
    ~SensorLogSaver() override;

    // Starts saving at the period the settings give; a running save thread is replaced, so
    // one run never has two.
    void startSaveLogFileThread();
    void start(std::chrono::milliseconds period);
    // Ends the save thread without a last save.
    void stop();
    bool isRunning() const { return worker_.joinable(); }

    // One save now, on the caller's thread (a last save before quitting).
    void appendToLogFile();

signals:
    void statusChanged(const QString& text);
    void consoleMessage(const QString& message);

private:
    void run(std::chrono::milliseconds period);

    SensorLogFile& file_;
    core::UserSettings& settings_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread worker_;
};

} // namespace sensor
