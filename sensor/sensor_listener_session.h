#pragma once

#include "core/interface_generation.h"
#include "core/user_settings.h"
#include "sensor/sensor_listener_controller.h"
#include "sensor/sensor_log.h"
#include "sensor/sensor_log_file.h"
#include "sensor/sensor_log_saver.h"

#include <QDateTime>
#include <QObject>

#include <memory>

namespace platform {
class WirelessInterface;
}

namespace sensor {

// The listener with its log and the log's file as one run of the desktop program uses them:
// rows go to the log, the log is saved while a listener runs, and what the saver has to say
// reaches the status line or the console. Built in launch order: the file name first, then
// the port from the settings, then the listener's socket.
class SensorListenerSession : public QObject {
    Q_OBJECT
public:
    // settings must outlive the session and be readable from the save thread.
    SensorListenerSession(std::shared_ptr<platform::WirelessInterface> currentInterface, core::UserSettings& settings,
                          const QDateTime& launchTime,
                          core::InterfaceGeneration generationWithoutInterface = core::InterfaceGeneration::Later,
                          QObject* parent = nullptr);
    ~SensorListenerSession() override;

    SensorListenerController& controller() { return controller_; }
    SensorLog& log() { return log_; }
    SensorLogFile& file() { return file_; }
    core::UserSettings& settings() { return settings_; }

    // Stops a running listener and saves what no save has written yet (when quitting).
    void finish();

signals:
    // Texts for the program's console log, from the listener and from the saver.
    void consoleMessage(const QString& message);

private:
    core::UserSettings& settings_;
    SensorLog log_;
    SensorLogFile file_;
    SensorLogSaver saver_;
    SensorListenerController controller_;
};

} // namespace sensor
