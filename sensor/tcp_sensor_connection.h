#pragma once

#include "sensor/tcp_line_server.h"

#include <QByteArray>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <deque>

// One accepted client of the TCP sensor server: a single pending CR LF read at a time, the next
// read only once the echo of the previous line has left, so a fast client is slowed by TCP flow
// control instead of growing our buffers.
namespace sensor {

class TcpSensorConnection : public QObject {
    Q_OBJECT
public:
    TcpSensorConnection(QTcpSocket* socket, TcpLineTimeouts timeouts, QObject* parent = nullptr);

    // Greets the client and opens the first read; call once the signals are connected.
    void start();
    void disconnectFromClient();

signals:
    void lineRead(const QByteArray& line);
    void disconnected();
    void diagnostic(const QString& message);

private:
    enum WriteTag { WelcomeTag = 0, EchoTag = 1, ReminderTag = 2 };
    struct PendingWrite {
        WriteTag tag;
        qint64 bytesLeft;
    };

    void write(const QByteArray& bytes, WriteTag tag);
    void bytesWritten(qint64 count);
    void readLine();
    void takeAvailableBytes();
    void readTimedOut();
    void notifyDisconnected();
    void takeLinesLeftBehind();

    QTcpSocket* socket_;
    TcpLineTimeouts timeouts_;
    QTimer readTimer_;
    QByteArray received_;
    std::deque<PendingWrite> pendingWrites_;
    bool readPending_ = false;
    bool gone_ = false;
    std::chrono::milliseconds readElapsed_{0};
};

} // namespace sensor
