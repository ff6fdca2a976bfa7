#include "sensor/sensor_log_saver.h"

namespace sensor {

SensorLogSaver::SensorLogSaver(SensorLogFile& file, core::UserSettings& settings, QObject* parent)
    : QObject(parent), file_(file), settings_(settings)
{
}

SensorLogSaver::~SensorLogSaver()
{
    stop();
}

void SensorLogSaver::startSaveLogFileThread()
{
    start(SensorLogFile::savePeriodForSetting(settings_.value(QLatin1String(SensorLogFile::savePeriodSettingKey))));
}

void SensorLogSaver::start(std::chrono::milliseconds period)
{
    stop();
    stopping_ = false;
    worker_ = std::thread([this, period] { run(period); });
}

void SensorLogSaver::stop()
{
    if (!worker_.joinable())
        return;
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    worker_.join();
}

void SensorLogSaver::appendToLogFile()
{
    const SensorLogFile::SaveReport report =
        file_.appendToLogFile(settings_.value(QLatin1String(SensorLogFile::folderSettingKey)));
    for (const QString& message : report.console)
        emit consoleMessage(message);
    if (!report.status.isEmpty())
        emit statusChanged(report.status);
}

void SensorLogSaver::run(std::chrono::milliseconds period)
{
    // Ticks keep to a fixed schedule, as a repeating timer does, however long a save takes.
    auto next = std::chrono::steady_clock::now() + period;
    std::unique_lock lock(mutex_);
    while (!wake_.wait_until(lock, next, [this] { return stopping_; })) {
        lock.unlock();
        appendToLogFile();
        lock.lock();
        next += period;
        const auto now = std::chrono::steady_clock::now();
        if (next < now)
            next = now;
    }
}

} // namespace sensor
