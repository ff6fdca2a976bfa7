#pragma once

#include "sensor/dns_sd_announcer.h"
#include "sensor/tcp_line_server.h"

#include <QObject>
#include <QString>
#include <QThread>
#include <QTimer>

#include <deque>

// The TCP side of the sensor listener: serves phones on one port from its own socket thread,
// announces itself by DNS-SD, and reports start, failure, received lines and stop to its owner's
// thread, in the order the lines arrived.
namespace sensor {

class GCDSensorLoggerTCPServer : public QObject {
    Q_OBJECT
public:
    static inline const QString serviceType = QStringLiteral("_TelemetraServer._tcp.");
    // Lines reported per turn of the owner's event loop: a flood that piled up while the owner
    // was busy is worked off in slices, so its timers and painting keep their turns.
    static constexpr int batchSize = 256;

    explicit GCDSensorLoggerTCPServer(int port, TcpLineTimeouts timeouts = {}, QObject* parent = nullptr);
    ~GCDSensorLoggerTCPServer() override;

    // Does nothing while running; the outcome arrives as DidStartedOnPort or DidFailedToStart.
    void startListeningOnPort();
    // Closes the port, withdraws the announcement, disconnects every client and reports it.
    void stop();

    bool isRunning() const { return isRunning_; }
    quint16 serverPort() const { return serverPort_; }
    // The port really listened on (serverPort may be 0); 0 before a start and after a stop.
    quint16 listeningPort() const { return listeningPort_; }
    int connectionCount() const { return listenSocket_->connectionCount(); }

signals:
    void sensorLoggerGCDTCPServerDidStartedOnPort(int port);
    void sensorLoggerGCDTCPServerDidFailedToStart(const QString& error);
    void sensorLoggerGCDTCPServerDidReceiveData(const QString& text);
    void sensorLoggerGCDTCPServerDidStopped();
    // Messages for the program's console log.
    void diagnostic(const QString& message);

private:
    void listenSocketStarted(quint16 port);
    void listenSocketFailed(const QString& error);
    void lineRead(const QByteArray& line);
    void reportLines(qsizetype count);

    QThread socketQueue_;
    TcpLineServer* listenSocket_;  // lives on socketQueue_, deleted there
    DnsSdAnnouncer netService_;
    quint16 serverPort_;
    quint16 listeningPort_ = 0;
    bool isRunning_ = false;
    bool starting_ = false;
    std::deque<QByteArray> receivedLines_;
    QTimer nextBatch_;
};

} // namespace sensor
