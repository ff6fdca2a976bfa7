#include "sensor/tcp_line_server.h"

#include "sensor/tcp_sensor_connection.h"

namespace sensor {
namespace {

// Room for a burst of phones connecting at once without the kernel refusing some.
constexpr int listenBacklog = 512;

} // namespace

TcpLineServer::TcpLineServer(TcpLineTimeouts timeouts, QObject* parent)
    : QObject(parent), timeouts_(timeouts), listenSocket_(this)
{
    listenSocket_.setListenBacklogSize(listenBacklog);
    connect(&listenSocket_, &QTcpServer::newConnection, this, &TcpLineServer::acceptConnections);
}

TcpLineServer::~TcpLineServer() = default;

void TcpLineServer::startListening(quint16 port)
{
    if (!listenSocket_.listen(QHostAddress::Any, port)) {
        const QString error = listenSocket_.errorString();
        emit diagnostic(QStringLiteral("Error starting server: %1").arg(error));
        emit failedToStart(error);
        return;
    }
    emit started(listenSocket_.serverPort());
}

void TcpLineServer::stopListening()
{
    listenSocket_.close();
    std::lock_guard lock(connectedSocketsLock_);
    // Removal from the list is queued (see acceptConnections), so holding the lock here is safe.
    for (TcpSensorConnection* connection : connectedSockets_)
        connection->disconnectFromClient();
}

int TcpLineServer::connectionCount() const
{
    std::lock_guard lock(connectedSocketsLock_);
    return static_cast<int>(connectedSockets_.size());
}

void TcpLineServer::acceptConnections()
{
    while (QTcpSocket* socket = listenSocket_.nextPendingConnection()) {
        auto* connection = new TcpSensorConnection(socket, timeouts_, this);
        connect(connection, &TcpSensorConnection::lineRead, this, &TcpLineServer::lineRead);
        connect(connection, &TcpSensorConnection::diagnostic, this, &TcpLineServer::diagnostic);
        connect(
            connection, &TcpSensorConnection::disconnected, this, [this, connection] { forget(connection); },
            Qt::QueuedConnection);
        {
            std::lock_guard lock(connectedSocketsLock_);
            connectedSockets_.append(connection);
        }
        connection->start();
    }
}

void TcpLineServer::forget(TcpSensorConnection* connection)
{
    {
        std::lock_guard lock(connectedSocketsLock_);
        connectedSockets_.removeOne(connection);
    }
    connection->deleteLater();
}

} // namespace sensor
