#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <QString>

#include <optional>

// An IPv4 UDP socket that hands each datagram over as one ASCII line on its owner's thread and
// counts the datagrams the kernel dropped because its receive buffer was full. Floods are read
// in bounded batches so the owner's event loop keeps turning.
namespace sensor {

class UdpLineSocket : public QObject {
    Q_OBJECT
public:
    // Datagrams read per event-loop turn before yielding to other events.
    static constexpr int batchSize = 256;
    // The rate the listener is built for, and what the kernel charges for one small datagram
    // (the line plus its buffer bookkeeping, about a kilobyte on Linux).
    static constexpr int linesPerSecond = 20000;
    static constexpr int bytesPerQueuedDatagram = 1024;
    // A full second of lines at that rate may wait in the socket while the event loop is busy.
    static constexpr int receiveBufferBytes = linesPerSecond * bytesPerQueuedDatagram;

    explicit UdpLineSocket(QObject* parent = nullptr);
    ~UdpLineSocket() override;

    // Nullopt on success, else the system's reason.
    std::optional<QString> bindToPort(quint16 port);
    void close();
    quint16 localPort() const;
    // What the kernel granted for the receive buffer, in bytes; 0 before binding.
    int receiveBufferSize() const;
    // Datagrams the kernel dropped since the socket was bound because its queue was full.
    quint64 droppedDatagrams();

signals:
    void lineReceived(const QString& line);
    // The dropped count grew; total is the count since binding.
    void datagramsDropped(quint64 total);

private:
    void readBatch();
    void refreshDrops();

    int fd_ = -1;
    QPointer<QSocketNotifier> notifier_;  // a child, so a pending deletion dies with the socket
    QByteArray buffer_;
    quint32 lastKernelCount_ = 0;
    quint64 dropped_ = 0;
};

} // namespace sensor
