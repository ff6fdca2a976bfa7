#include "sensor/sensor_listener_controller.h"

#include "core/csv_cell.h"
#include "platform/api/wireless_interface.h"
#include "sensor/gcd_sensor_logger_tcp_server.h"
#include "sensor/gps_row.h"
#include "sensor/host_address.h"
#include "sensor/sensor_line.h"
#include "sensor/udp_line_socket.h"

namespace sensor {

SensorListenerController::SensorListenerController(std::shared_ptr<platform::WirelessInterface> currentInterface,
                                                   core::InterfaceGeneration generationWithoutInterface,
                                                   QObject* parent)
    : QObject(parent),
      currentInterface_(std::move(currentInterface)),
      generationWithoutInterface_(generationWithoutInterface),
      serverIP_(hostAddress())
{
    initializeSocket();
}

SensorListenerController::~SensorListenerController()
{
    delete gcdSensorLoggerTCPServer_.data();
}

void SensorListenerController::setCurrentInterface(std::shared_ptr<platform::WirelessInterface> currentInterface)
{
    currentInterface_ = std::move(currentInterface);
}

std::optional<int> SensorListenerController::portForSetting(const QVariant& setting)
{
    bool ok = false;
    const int port = setting.toString().trimmed().toInt(&ok);
    if (!ok || port < 0 || port > 65535)
        return std::nullopt;
    return port;
}

QString SensorListenerController::startListenerButtonTitle() const
{
    return buttonTag_ != 0 ? QStringLiteral("Stop Listener") : QStringLiteral("Start Listener");
}

void SensorListenerController::updateServerIPAddress()
{
    serverIPLabel_ = QStringLiteral("/%1").arg(serverIP_);
    emit serverIPLabelChanged();
}

quint16 SensorListenerController::boundPort() const
{
    if (buttonTag_ == 0)
        return 0;
    if (gcdSensorLoggerTCPServer_)
        return gcdSensorLoggerTCPServer_->listeningPort();
    return socket_->localPort();
}

void SensorListenerController::initializeSocket()
{
    socket_ = std::make_unique<UdpLineSocket>();
    connect(socket_.get(), &UdpLineSocket::lineReceived, this, &SensorListenerController::appendSensorData);
    connect(socket_.get(), &UdpLineSocket::datagramsDropped, this, [this] { reportDroppedDatagrams(false); });
    reportedDrops_ = 0;
}

void SensorListenerController::reportDroppedDatagrams(bool evenIfRecent)
{
    const quint64 dropped = socket_->droppedDatagrams();
    if (dropped == reportedDrops_)
        return;
    if (!evenIfRecent && sinceDropReport_.isValid() && sinceDropReport_.elapsed() < 1000)
        return;
    reportedDrops_ = dropped;
    sinceDropReport_.start();
    updateListenerStatus(QStringLiteral("%1 datagrams lost: readings arrived faster than they were read and the "
                                        "system's receive buffer (%2 bytes) overflowed")
                             .arg(dropped)
                             .arg(socket_->receiveBufferSize()));
}

void SensorListenerController::startListenerButtonClicked()
{
    if (selectedListenerType_ == NoListenerType)
        return;
    if (selectedListenerType_ == TCPListenerType)
        toggleTCPListener();
    else
        toggleUDPListener();
}

void SensorListenerController::toggleButtons(bool listening)
{
    buttonTag_ = listening ? 1 : 0;
    emit buttonsChanged();
}

void SensorListenerController::updateListenerStatus(const QString& text)
{
    status_ = text;
    emit statusChanged(text);
}

void SensorListenerController::toggleUDPListener()
{
    if (buttonTag_ != 0) {
        emit listenerStopping();
        reportDroppedDatagrams(true);
        socket_->close();
        initializeSocket();
        updateListenerStatus(QStringLiteral("Listener stopped and unbounded."));
        toggleButtons(false);
        return;
    }
    if (const auto error = socket_->bindToPort(static_cast<quint16>(port_ & 0xFFFF))) {
        updateListenerStatus(QStringLiteral("Failed binding to port!"));
        emit diagnostic(QStringLiteral("failed to bound to port! %1").arg(*error));
        return;
    }
    updateListenerStatus(QStringLiteral("UDP listener started and bounded to port %1").arg(socket_->localPort()));
    emit listenerStarted();
    toggleButtons(true);
}

void SensorListenerController::toggleTCPListener()
{
    if (buttonTag_ != 0) {
        emit listenerStopping();
        serverIPLabelVisible_ = false;
        emit serverIPLabelChanged();
        if (gcdSensorLoggerTCPServer_) {
            gcdSensorLoggerTCPServer_->stop();
            gcdSensorLoggerTCPServer_->deleteLater();
            gcdSensorLoggerTCPServer_.clear();
        } else {
            tcpServerDidStop();
        }
        return;
    }
    startTCPServer();
    serverIPLabelVisible_ = true;
    updateServerIPAddress();
}

void SensorListenerController::startTCPServer()
{
    delete gcdSensorLoggerTCPServer_.data();
    auto* server = new GCDSensorLoggerTCPServer(port_);
    gcdSensorLoggerTCPServer_ = server;
    // Queued: the server reports from inside its own calls, and the controls change only once
    // those calls have returned, as a hop to the main queue would do.
    connect(server, &GCDSensorLoggerTCPServer::sensorLoggerGCDTCPServerDidStartedOnPort, this,
            &SensorListenerController::tcpServerDidStart, Qt::QueuedConnection);
    connect(server, &GCDSensorLoggerTCPServer::sensorLoggerGCDTCPServerDidFailedToStart, this,
            &SensorListenerController::tcpServerDidFailToStart, Qt::QueuedConnection);
    connect(server, &GCDSensorLoggerTCPServer::sensorLoggerGCDTCPServerDidReceiveData, this,
            &SensorListenerController::tcpServerDidReceiveData);
    connect(server, &GCDSensorLoggerTCPServer::sensorLoggerGCDTCPServerDidStopped, this,
            &SensorListenerController::tcpServerDidStop, Qt::QueuedConnection);
    connect(server, &GCDSensorLoggerTCPServer::diagnostic, this, &SensorListenerController::diagnostic);
    server->startListeningOnPort();
}

void SensorListenerController::tcpServerDidStart(int port)
{
    toggleButtons(true);
    updateListenerStatus(QStringLiteral("TCP listener started and bounded to port %1").arg(port));
    emit listenerStarted();
}

void SensorListenerController::tcpServerDidFailToStart(const QString& error)
{
    // The controls show the running state so that "Stop Listener" leads back to idle.
    toggleButtons(true);
    updateListenerStatus(QStringLiteral("Unable to start TCP listener (%1).").arg(error));
}

void SensorListenerController::tcpServerDidReceiveData(const QString& line)
{
    if (line.size() >= 2)
        appendSensorData(line);
}

void SensorListenerController::tcpServerDidStop()
{
    toggleButtons(false);
    updateListenerStatus(QStringLiteral("TCP listener stopped and unbounded."));
}

QString SensorListenerController::getSensorName(int sensorId)
{
    switch (sensorId) {
    case 1:
        return QStringLiteral("GPS");
    case 2:
        return QStringLiteral("Compass");
    case 3:
        return QStringLiteral("Accelerometer");
    default:
        return QStringLiteral("Unknown");
    }
}

void SensorListenerController::appendSensorData(const QString& line)
{
    const std::optional<SensorLine> reading = parseSensorLine(line);
    if (!reading)
        return;
    const QStringList& values = reading->values;
    const auto value = [&values](qsizetype index) { return leadingDouble(values.at(index)); };
    switch (reading->sensorId) {
    case 1:
        // Four values pass the check, yet five are read: such a line fails quietly, as a
        // malformed line does.
        if (values.size() < 5)
            return;
        handleGPS(value(0), value(1), value(2), value(3), value(4), reading->date);
        return;
    case 2:
        if (values.size() >= 2)
            handleCompass(static_cast<float>(value(0)), static_cast<float>(value(1)), reading->date);
        return;
    case 3:
        if (values.size() >= 3)
            handleAcceleration(value(0), value(1), value(2), reading->date);
        return;
    case 4:
        if (values.size() >= 3)
            handleGyroscope(value(0), value(1), value(2), reading->date);
        return;
    default: {
        // The values land as CSV cells of the saved log; every one after the first starts a
        // cell, where a spreadsheet would run a formula.
        QStringList cells = values;
        for (qsizetype i = 1; i < cells.size(); ++i)
            cells[i] = core::csvCell(cells[i]);
        writeLog(QStringLiteral("[%1] %2 : %3").arg(reading->timeText, getSensorName(reading->sensorId), cells.join(u',')));
    }
    }
}

void SensorListenerController::handleGPS(double latitude, double longitude, double altitude, double horizAccuracy,
                                         double vertAccuracy, const QDateTime& date)
{
    // The accuracies travel with the fix but the row has no column for them.
    static_cast<void>(horizAccuracy);
    static_cast<void>(vertAccuracy);
    std::optional<platform::InterfaceSnapshot> link;
    core::InterfaceGeneration generation = generationWithoutInterface_;
    if (currentInterface_) {
        link = currentInterface_->snapshot();
        generation = currentInterface_->generation();
    }
    writeLog(gpsRow(GpsFix{latitude, longitude, altitude, date}, link, generation));
}

// The phone sends these readings too; no row records them.
void SensorListenerController::handleCompass(float, float, const QDateTime&) {}
void SensorListenerController::handleAcceleration(double, double, double, const QDateTime&) {}
void SensorListenerController::handleGyroscope(double, double, double, const QDateTime&) {}

void SensorListenerController::writeLog(const QString& row) { emit logLineAppended(row); }

} // namespace sensor
