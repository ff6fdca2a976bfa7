#include "sensor/udp_line_socket.h"

#include <QNetworkDatagram>
#include <QVariant>

namespace sensor {
namespace {

// A datagram with bytes outside ASCII is not a reading line; it is dropped, not guessed at.
std::optional<QString> asciiLine(const QByteArray& bytes)
{
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) > 0x7F)
            return std::nullopt;
    }
    return QString::fromLatin1(bytes);
}

} // namespace

UdpLineSocket::UdpLineSocket(QObject* parent) : QObject(parent)
{
    connect(&socket_, &QUdpSocket::readyRead, this, &UdpLineSocket::readBatch);
}

std::optional<QString> UdpLineSocket::bindToPort(quint16 port)
{
    // Without DontShareAddress Linux lets a second socket share a port whose owner also asked
    // for reuse, and the "port in use" failure would go unnoticed.
    if (!socket_.bind(QHostAddress::AnyIPv4, port, QAbstractSocket::DontShareAddress))
        return socket_.errorString();
    socket_.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, receiveBufferBytes);
    return std::nullopt;
}

void UdpLineSocket::close() { socket_.close(); }

int UdpLineSocket::receiveBufferSize()
{
    if (socket_.state() != QAbstractSocket::BoundState)
        return 0;
    return socket_.socketOption(QAbstractSocket::ReceiveBufferSizeSocketOption).toInt();
}

void UdpLineSocket::readBatch()
{
    // Only readyRead may read: Qt announces an unbuffered socket's data again only after a
    // readyRead handler has taken at least one datagram, so a read from anywhere else can leave
    // a later readyRead with nothing to take and the socket silent for good. What this batch
    // leaves behind keeps the read notifier active, so the next event-loop turn continues.
    for (int read = 0; read < batchSize && socket_.hasPendingDatagrams(); ++read) {
        const QNetworkDatagram datagram = socket_.receiveDatagram();
        if (const auto line = asciiLine(datagram.data()))
            emit lineReceived(*line);
        // A receiver may close the socket while handling a line.
        if (socket_.state() != QAbstractSocket::BoundState)
            return;
    }
}

} // namespace sensor
