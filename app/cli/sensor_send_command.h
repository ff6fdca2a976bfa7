#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// skyvane-cli sensor-send: plays phone readings to a sensor listener over UDP or TCP, for
// tests and demonstrations without a phone.
namespace app::cli {

enum class SensorTransport { Udp, Tcp };

struct SensorSendRequest {
    SensorTransport transport = SensorTransport::Udp;
    QString host;
    quint16 port = 0;
    double linesPerSecond = 4.0;
    std::optional<qint64> count;  // one pass of the GPX track, or endless for the walk
    QString gpxFile;
};

// The arguments after "sensor-send"; nullopt with *error naming what is wrong.
std::optional<SensorSendRequest> parseSensorSendArguments(const QStringList& arguments, QString* error);
QString sensorSendUsage();

// Exit status 0, or 1 when the GPX file is bad or the listener cannot be reached.
int runSensorSend(const SensorSendRequest& request, std::FILE* out, std::FILE* err);

} // namespace app::cli
