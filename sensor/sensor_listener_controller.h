#pragma once

#include "core/interface_generation.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace platform {
class WirelessInterface;
}

namespace sensor {

class GCDSensorLoggerTCPServer;
class UdpLineSocket;

// The sensor listener tab as logic: receives phone readings over UDP or TCP, keeps the state
// its controls show, and turns GPS fixes into log rows joined with the current Wi-Fi link.
// Lives on the thread whose event loop drives it (the user-interface thread in the desktop).
class SensorListenerController : public QObject {
    Q_OBJECT
public:
    // Columns of the TCP/UDP selector; NoListenerType when nothing is selected.
    static constexpr int NoListenerType = -1;
    static constexpr int TCPListenerType = 0;
    static constexpr int UDPListenerType = 1;
    static constexpr const char* portSettingKey = "udp_listener_port";

    // The port a udp_listener_port value names (a number or its text); nullopt when it names
    // none from 0 to 65535.
    static std::optional<int> portForSetting(const QVariant& setting);

    // A null interface gives GPS rows without link values, in the format of
    // generationWithoutInterface; with an interface its own generation decides.
    explicit SensorListenerController(
        std::shared_ptr<platform::WirelessInterface> currentInterface,
        core::InterfaceGeneration generationWithoutInterface = core::InterfaceGeneration::Later,
        QObject* parent = nullptr);
    ~SensorListenerController() override;

    std::shared_ptr<platform::WirelessInterface> currentInterface() const { return currentInterface_; }
    void setCurrentInterface(std::shared_ptr<platform::WirelessInterface> currentInterface);

    // The port field, read when a listener starts; only the low 16 bits reach the socket.
    int port() const { return port_; }
    void setPort(int port) { port_ = port; }
    int selectedListenerType() const { return selectedListenerType_; }
    void setSelectedListenerType(int column) { selectedListenerType_ = column; }

    // State of the controls: tag 1 and "Stop Listener" while a listener runs; the port field
    // and the selector are disabled then.
    int startListenerButtonTag() const { return buttonTag_; }
    QString startListenerButtonTitle() const;
    bool startListenerButtonHighlighted() const { return buttonTag_ != 0; }
    bool listenerSettingsEnabled() const { return buttonTag_ == 0; }
    QString listenerStatus() const { return status_; }
    bool serverIPLabelVisible() const { return serverIPLabelVisible_; }
    QString serverIPLabel() const { return serverIPLabel_; }

    // The machine's address (hostAddress() at construction), kept current by the reachability handlers.
    QString serverIP() const { return serverIP_; }
    void setServerIP(const QString& address) { serverIP_ = address; }
    void updateServerIPAddress();

    // The port the running listener really holds (differs from port() when that is 0); 0 when idle.
    quint16 boundPort() const;

    void startListenerButtonClicked();
    void toggleUDPListener();
    void toggleTCPListener();
    void updateListenerStatus(const QString& text);

    // One reading line, as received.
    void appendSensorData(const QString& line);
    static QString getSensorName(int sensorId);

    void handleGPS(double latitude, double longitude, double altitude, double horizAccuracy,
                   double vertAccuracy, const QDateTime& date);
    void handleCompass(float magneticHeading, float trueHeading, const QDateTime& date);
    void handleAcceleration(double x, double y, double z, const QDateTime& date);
    void handleGyroscope(double x, double y, double z, const QDateTime& date);

    // Hands one row to the on-screen log (logLineAppended); empty rows are the log's to ignore.
    void writeLog(const QString& row);

signals:
    void statusChanged(const QString& text);
    void logLineAppended(const QString& row);
    // Messages for the program's console log, not for the on-screen log.
    void diagnostic(const QString& message);
    // Tag, title, highlight or enabled state of the controls changed.
    void buttonsChanged();
    void serverIPLabelChanged();
    // A listener has started: the log begins its periodic saving.
    void listenerStarted();
    // A listener is being stopped: the log ends its periodic saving.
    void listenerStopping();

private:
    void initializeSocket();
    void toggleButtons(bool listening);
    void startTCPServer();
    void tcpServerDidStart(int port);
    void tcpServerDidFailToStart(const QString& error);
    void tcpServerDidReceiveData(const QString& line);
    void tcpServerDidStop();
    void reportDroppedDatagrams(bool evenIfRecent);

    std::shared_ptr<platform::WirelessInterface> currentInterface_;
    core::InterfaceGeneration generationWithoutInterface_;
    std::unique_ptr<UdpLineSocket> socket_;
    QPointer<GCDSensorLoggerTCPServer> gcdSensorLoggerTCPServer_;
    int port_ = 0;
    int selectedListenerType_ = UDPListenerType;
    int buttonTag_ = 0;
    QString status_;
    bool serverIPLabelVisible_ = false;
    QString serverIPLabel_;
    QString serverIP_;
    // Dropped datagrams already told in the status line, and when, so a flood is told about
    // once a second rather than once per batch.
    quint64 reportedDrops_ = 0;
    QElapsedTimer sinceDropReport_;
};

} // namespace sensor
