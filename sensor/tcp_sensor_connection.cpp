#include "sensor/tcp_sensor_connection.h"

namespace sensor {

TcpSensorConnection::TcpSensorConnection(QTcpSocket* socket, TcpLineTimeouts timeouts, QObject* parent)
    : QObject(parent), socket_(socket), timeouts_(timeouts)
{
    socket_->setParent(this);
    // Bytes that wait for the next read stay in the kernel once this fills: TCP flow control
    // slows the client, and our memory stays bounded.
    socket_->setReadBufferSize(TcpLineServer::maxLineBytes);
    readTimer_.setSingleShot(true);
    connect(&readTimer_, &QTimer::timeout, this, &TcpSensorConnection::readTimedOut);
    connect(socket_, &QTcpSocket::readyRead, this, &TcpSensorConnection::takeAvailableBytes);
    connect(socket_, &QTcpSocket::bytesWritten, this, &TcpSensorConnection::bytesWritten);
    connect(socket_, &QTcpSocket::disconnected, this, &TcpSensorConnection::notifyDisconnected);
}

void TcpSensorConnection::start()
{
    write(QByteArrayLiteral("Welcome to the AsyncSocket Echo Server\r\n"), WelcomeTag);
    readLine();
}

void TcpSensorConnection::disconnectFromClient()
{
    readTimer_.stop();
    readPending_ = false;
    // What was cut off is not a line; nothing of it may reach the log.
    received_.clear();
    socket_->abort();
    notifyDisconnected();
}

void TcpSensorConnection::notifyDisconnected()
{
    if (gone_)
        return;
    takeLinesLeftBehind();
    gone_ = true;
    readTimer_.stop();
    emit disconnected();
}

void TcpSensorConnection::write(const QByteArray& bytes, WriteTag tag)
{
    if (gone_ || bytes.isEmpty())
        return;
    pendingWrites_.push_back({tag, bytes.size()});
    socket_->write(bytes);
}

void TcpSensorConnection::bytesWritten(qint64 count)
{
    bool echoDone = false;
    while (count > 0 && !pendingWrites_.empty()) {
        PendingWrite& front = pendingWrites_.front();
        const qint64 taken = std::min(count, front.bytesLeft);
        front.bytesLeft -= taken;
        count -= taken;
        if (front.bytesLeft == 0) {
            echoDone = echoDone || front.tag == EchoTag;
            pendingWrites_.pop_front();
        }
    }
    // Only a finished echo opens the next read; the greeting and the reminder do not.
    if (echoDone && !readPending_)
        readLine();
}

void TcpSensorConnection::readLine()
{
    if (gone_)
        return;
    readPending_ = true;
    readElapsed_ = std::chrono::milliseconds(0);
    readTimer_.start(timeouts_.read);
    takeAvailableBytes();
}

void TcpSensorConnection::takeAvailableBytes()
{
    if (!readPending_ || gone_)
        return;
    received_.append(socket_->readAll());
    const qsizetype end = received_.indexOf("\r\n");
    const qsizetype lineLength = end >= 0 ? end : received_.size() - (received_.endsWith('\r') ? 1 : 0);
    if (lineLength > TcpLineServer::maxLineBytes) {
        emit diagnostic(QStringLiteral("Disconnected %1 port %2: more than %3 bytes without CR LF")
                            .arg(socket_->peerAddress().toString())
                            .arg(socket_->peerPort())
                            .arg(TcpLineServer::maxLineBytes));
        disconnectFromClient();
        return;
    }
    if (end < 0)
        return;
    const QByteArray line = received_.left(end + 2);
    received_.remove(0, end + 2);
    readPending_ = false;
    readTimer_.stop();
    emit lineRead(line);
    write(line, EchoTag);
}

void TcpSensorConnection::takeLinesLeftBehind()
{
    // A client often closes right after its last lines, while they still wait behind the echo
    // of an earlier one; they were received, so they belong in the log. There is no one left
    // to echo them to.
    received_.append(socket_->readAll());
    for (qsizetype end = received_.indexOf("\r\n"); end >= 0; end = received_.indexOf("\r\n")) {
        emit lineRead(received_.left(end + 2));
        received_.remove(0, end + 2);
    }
}

void TcpSensorConnection::readTimedOut()
{
    readElapsed_ += readElapsed_.count() == 0 ? timeouts_.read : timeouts_.extension;
    // One reminder per silence; after that the read is extended for ever, never dropped.
    if (readElapsed_ <= timeouts_.read)
        write(QByteArrayLiteral("Are you still there?\r\n"), ReminderTag);
    readTimer_.start(timeouts_.extension);
}

} // namespace sensor
