#include "sensor/sensor_listener_session.h"

#include "platform/api/wireless_interface.h"

namespace sensor {

SensorListenerSession::SensorListenerSession(std::shared_ptr<platform::WirelessInterface> currentInterface,
                                             core::UserSettings& settings, const QDateTime& launchTime,
                                             core::InterfaceGeneration generationWithoutInterface, QObject* parent)
    : QObject(parent),
      settings_(settings),
      file_(log_, SensorLogFile::logFileNameForLaunch(launchTime)),
      saver_(file_, settings),
      controller_(std::move(currentInterface), generationWithoutInterface)
{
    if (const auto port = SensorListenerController::portForSetting(
            settings.value(QLatin1String(SensorListenerController::portSettingKey))))
        controller_.setPort(*port);
    connect(&controller_, &SensorListenerController::logLineAppended, &log_, &SensorLog::writeLog);
    connect(&controller_, &SensorListenerController::listenerStarted, &saver_, &SensorLogSaver::startSaveLogFileThread);
    connect(&controller_, &SensorListenerController::listenerStopping, &saver_, &SensorLogSaver::stop);
    connect(&controller_, &SensorListenerController::diagnostic, this, &SensorListenerSession::consoleMessage);
    // The saver speaks from its own thread; its texts are handed to this one.
    connect(&saver_, &SensorLogSaver::statusChanged, &controller_, &SensorListenerController::updateListenerStatus);
    connect(&saver_, &SensorLogSaver::consoleMessage, this, &SensorListenerSession::consoleMessage);
}

SensorListenerSession::~SensorListenerSession()
{
    // The save thread talks to the controller, which is destroyed first.
    saver_.stop();
}

void SensorListenerSession::finish()
{
    if (controller_.startListenerButtonTag() != 0)
        controller_.startListenerButtonClicked();
    saver_.stop();
    if (file_.unsavedBytes() > 0)
        saver_.appendToLogFile();
}

} // namespace sensor
