#include "sensor/gcd_sensor_logger_tcp_server.h"

#include <QStringDecoder>
#include <QSysInfo>

namespace sensor {

GCDSensorLoggerTCPServer::GCDSensorLoggerTCPServer(int port, TcpLineTimeouts timeouts, QObject* parent)
    : QObject(parent), listenSocket_(new TcpLineServer(timeouts)), serverPort_(static_cast<quint16>(port))
{
    socketQueue_.setObjectName(QStringLiteral("socketQueue"));
    listenSocket_->moveToThread(&socketQueue_);
    connect(listenSocket_, &TcpLineServer::started, this, &GCDSensorLoggerTCPServer::listenSocketStarted);
    connect(listenSocket_, &TcpLineServer::failedToStart, this, &GCDSensorLoggerTCPServer::listenSocketFailed);
    connect(listenSocket_, &TcpLineServer::lineRead, this, &GCDSensorLoggerTCPServer::lineRead);
    connect(listenSocket_, &TcpLineServer::diagnostic, this, &GCDSensorLoggerTCPServer::diagnostic);
    connect(&netService_, &DnsSdAnnouncer::announcementFailed, this, &GCDSensorLoggerTCPServer::diagnostic);
    connect(&netService_, &DnsSdAnnouncer::announced, this, [this](const QString& name) {
        emit diagnostic(QStringLiteral("Announced %1 as %2 by DNS-SD").arg(name, serviceType));
    });
    nextBatch_.setSingleShot(true);
    nextBatch_.setInterval(0);
    connect(&nextBatch_, &QTimer::timeout, this, [this] { reportLines(batchSize); });
    socketQueue_.start();
}

GCDSensorLoggerTCPServer::~GCDSensorLoggerTCPServer()
{
    netService_.stop();
    // The sockets belong to the socket thread and must be destroyed there.
    TcpLineServer* server = listenSocket_;
    QMetaObject::invokeMethod(server, [server] { delete server; }, Qt::BlockingQueuedConnection);
    socketQueue_.quit();
    socketQueue_.wait();
}

void GCDSensorLoggerTCPServer::startListeningOnPort()
{
    if (isRunning_ || starting_)
        return;
    starting_ = true;
    TcpLineServer* server = listenSocket_;
    const quint16 port = serverPort_;
    QMetaObject::invokeMethod(server, [server, port] { server->startListening(port); }, Qt::QueuedConnection);
}

void GCDSensorLoggerTCPServer::stop()
{
    starting_ = false;
    TcpLineServer* server = listenSocket_;
    QMetaObject::invokeMethod(server, [server] { server->stopListening(); }, Qt::BlockingQueuedConnection);
    // Lines read before the stop are reported before it.
    reportLines(static_cast<qsizetype>(receivedLines_.size()));
    netService_.stop();
    emit sensorLoggerGCDTCPServerDidStopped();
    isRunning_ = false;
    listeningPort_ = 0;
}

void GCDSensorLoggerTCPServer::listenSocketStarted(quint16 port)
{
    // A stop that overtook the start has already closed the port again.
    if (!starting_)
        return;
    starting_ = false;
    listeningPort_ = port;
    const QString name = QStringLiteral("%1,%2").arg(QSysInfo::machineHostName()).arg(port);
    if (const auto unavailable = netService_.publish(name, serviceType, port))
        emit diagnostic(*unavailable);
    emit sensorLoggerGCDTCPServerDidStartedOnPort(port);
    isRunning_ = true;
}

void GCDSensorLoggerTCPServer::listenSocketFailed(const QString& error)
{
    starting_ = false;
    emit sensorLoggerGCDTCPServerDidFailedToStart(error);
}

void GCDSensorLoggerTCPServer::lineRead(const QByteArray& line)
{
    receivedLines_.push_back(line);
    // Lines that were on their way when the server stopped are reported at once.
    if (!isRunning_)
        reportLines(static_cast<qsizetype>(receivedLines_.size()));
    else if (!nextBatch_.isActive())
        nextBatch_.start();
}

void GCDSensorLoggerTCPServer::reportLines(qsizetype count)
{
    for (; count > 0 && !receivedLines_.empty(); --count) {
        const QByteArray line = std::move(receivedLines_.front());
        receivedLines_.pop_front();
        QStringDecoder toUtf16(QStringDecoder::Utf8);
        const QString text = toUtf16(line.chopped(2));
        if (toUtf16.hasError())
            emit diagnostic(QStringLiteral("Error converting received data into UTF-8 String"));
        else
            emit sensorLoggerGCDTCPServerDidReceiveData(text);
    }
    if (!receivedLines_.empty() && !nextBatch_.isActive())
        nextBatch_.start();
}

} // namespace sensor
