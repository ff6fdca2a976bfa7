#pragma once

#include <QObject>
#include <QString>
#include <QUdpSocket>

#include <optional>

// An IPv4 UDP socket that hands each datagram over as one ASCII line on its owner's thread.
// Floods are read in bounded batches so the owner's event loop keeps turning.
namespace sensor {

class UdpLineSocket : public QObject {
    Q_OBJECT
public:
    // Datagrams read per event-loop turn before yielding to other events.
    static constexpr int batchSize = 256;
    // Asked of the kernel so a burst waits in the socket rather than being dropped; the kernel
    // may grant less (net.core.rmem_max).
    static constexpr int receiveBufferBytes = 8 * 1024 * 1024;

    explicit UdpLineSocket(QObject* parent = nullptr);

    // Nullopt on success, else the error's description.
    std::optional<QString> bindToPort(quint16 port);
    void close();
    quint16 localPort() const { return socket_.localPort(); }
    // What the kernel granted for the receive buffer, in bytes; 0 before binding.
    int receiveBufferSize();

signals:
    void lineReceived(const QString& line);

private:
    void readBatch();

    QUdpSocket socket_;
};

} // namespace sensor
