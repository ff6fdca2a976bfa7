#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QTcpServer>

#include <chrono>
#include <mutex>

// The socket side of the TCP sensor server: accepts connections, greets them, reads CR LF framed
// lines with the reminder-and-extend timeout, echoes every line back and reports the lines in
// arrival order. Lives on its own thread; every call except connectionCount runs on that thread.
namespace sensor {

class TcpSensorConnection;

struct TcpLineTimeouts {
    std::chrono::milliseconds read{15000};
    std::chrono::milliseconds extension{10000};
};

class TcpLineServer : public QObject {
    Q_OBJECT
public:
    // More than this without CR LF is not a reading line; the client is disconnected.
    static constexpr qsizetype maxLineBytes = 64 * 1024;

    explicit TcpLineServer(TcpLineTimeouts timeouts, QObject* parent = nullptr);
    ~TcpLineServer() override;

    // Results come back as started or failedToStart.
    void startListening(quint16 port);
    // Closes the listening socket and disconnects every client.
    void stopListening();
    // Callable from any thread.
    int connectionCount() const;

signals:
    void started(quint16 port);
    void failedToStart(const QString& error);
    // A line with its CR LF, as received.
    void lineRead(const QByteArray& line);
    void diagnostic(const QString& message);

private:
    void acceptConnections();
    void forget(TcpSensorConnection* connection);

    TcpLineTimeouts timeouts_;
    QTcpServer listenSocket_;
    mutable std::mutex connectedSocketsLock_;
    QList<TcpSensorConnection*> connectedSockets_;
};

} // namespace sensor
