#include "listener_test_support.h"

#include "sensor/gcd_sensor_logger_tcp_server.h"
#include "sensor/sensor_listener_controller.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using sensor::GCDSensorLoggerTCPServer;
using sensor::SensorListenerController;

const QByteArray welcome("Welcome to the AsyncSocket Echo Server\r\n");
const QByteArray reminder("Are you still there?\r\n");

// Reads from the client until the expected bytes have come, then answers what arrived.
QByteArray receive(QTcpSocket& client, qsizetype bytes)
{
    QByteArray received;
    waitUntil([&] {
        received += client.readAll();
        return received.size() >= bytes;
    });
    return received;
}

class TcpServerTest : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }

    // A started server with short timeouts; its received texts collect in lines.
    void startServer()
    {
        server = std::make_unique<GCDSensorLoggerTCPServer>(0, sensor::TcpLineTimeouts{std::chrono::milliseconds(300),
                                                                                      std::chrono::milliseconds(100)});
        QObject::connect(server.get(), &GCDSensorLoggerTCPServer::sensorLoggerGCDTCPServerDidReceiveData,
                         [this](const QString& text) { lines << text; });
        QObject::connect(server.get(), &GCDSensorLoggerTCPServer::diagnostic,
                         [this](const QString& text) { diagnostics << text; });
        server->startListeningOnPort();
        EXPECT_TRUE(waitUntil([&] { return server->isRunning(); }));
    }

    void connectClient(quint16 port)
    {
        client.connectToHost(QHostAddress::LocalHost, port);
        ASSERT_TRUE(client.waitForConnected(3000));
    }

    void startServerAndConnect()
    {
        startServer();
        connectClient(server->listeningPort());
    }

    QStringList lines;
    QStringList diagnostics;
    std::unique_ptr<GCDSensorLoggerTCPServer> server;
    QTcpSocket client;
};

TEST_F(TcpServerTest, SilentClientGetsOneReminderAndStaysConnected)
{
    startServerAndConnect();
    // The 300 ms read, then several 100 ms extensions.
    QByteArray received = receive(client, welcome.size() + reminder.size());
    waitUntil([] { return false; }, 700);
    received += client.readAll();
    EXPECT_EQ(received, welcome + reminder);
    EXPECT_EQ(client.state(), QAbstractSocket::ConnectedState);
    EXPECT_EQ(server->connectionCount(), 1);

    // A line ends the silence: echoed unchanged, and the next read reminds once again.
    client.write("0,9,late\r\n");
    EXPECT_EQ(receive(client, 10 + reminder.size()), QByteArray("0,9,late\r\n") + reminder);
    EXPECT_EQ(lines, QStringList{QStringLiteral("0,9,late")});
}

TEST_F(TcpServerTest, LinesAreFramedEchoedAndDecoded)
{
    startServerAndConnect();
    const QByteArray sent = QByteArray("0,9,a\r\n0,9,b\r") + QByteArray("\n\xff\xfe\r\n0,9,\xc3\xa9\r\n");
    client.write(sent);
    EXPECT_EQ(receive(client, welcome.size() + sent.size()), welcome + sent);
    EXPECT_EQ(lines, (QStringList{QStringLiteral("0,9,a"), QStringLiteral("0,9,b"), QStringLiteral("0,9,\u00e9")}));
    EXPECT_TRUE(diagnostics.contains(QStringLiteral("Error converting received data into UTF-8 String")));
}

TEST_F(TcpServerTest, LinesSentJustBeforeClosingStillArrive)
{
    startServerAndConnect();
    QByteArray burst;
    for (int i = 0; i < 50; ++i)
        burst += "0,9," + QByteArray::number(i) + "\r\n";
    client.write(burst);
    client.disconnectFromHost();
    ASSERT_TRUE(waitUntil([&] { return lines.size() >= 50; }));
    EXPECT_EQ(lines.last(), QStringLiteral("0,9,49"));
}

TEST_F(TcpServerTest, LongLineWithoutCrLfDisconnects)
{
    startServerAndConnect();
    client.write(QByteArray(70 * 1024, 'a'));
    EXPECT_TRUE(waitUntil([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(waitUntil([&] { return server->connectionCount() == 0; }));
    ASSERT_FALSE(diagnostics.isEmpty());
    EXPECT_TRUE(diagnostics.last().contains(QStringLiteral("without CR LF")));
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(TcpServerTest, ServesManyClientsAtOnce)
{
    startServer();
    constexpr int clientCount = 200;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int i = 0; i < clientCount; ++i) {
        clients.push_back(std::make_unique<QTcpSocket>());
        clients.back()->connectToHost(QHostAddress::LocalHost, server->listeningPort());
    }
    ASSERT_TRUE(waitUntil([&] { return server->connectionCount() == clientCount; }, 10000));
    for (int i = 0; i < clientCount; ++i)
        clients[static_cast<std::size_t>(i)]->write(QByteArray("0,9,") + QByteArray::number(i) + "\r\n");
    ASSERT_TRUE(waitUntil([&] { return lines.size() == clientCount; }, 10000));
    lines.sort();
    EXPECT_EQ(lines.removeDuplicates(), 0);

    server->stop();
    EXPECT_TRUE(waitUntil([&] { return server->connectionCount() == 0; }));
    EXPECT_FALSE(server->isRunning());
}

TEST_F(TcpServerTest, ControllerStartsStopsAndDropsOneCharacterLines)
{
    SensorListenerController controller(nullptr);
    QStringList rows;
    QObject::connect(&controller, &SensorListenerController::logLineAppended, [&](const QString& row) { rows << row; });
    QSignalSpy consoleMessages(&controller, &SensorListenerController::diagnostic);
    controller.setSelectedListenerType(SensorListenerController::TCPListenerType);
    controller.setPort(0);
    controller.setServerIP(QStringLiteral("192.0.2.7"));
    controller.startListenerButtonClicked();
    EXPECT_TRUE(controller.serverIPLabelVisible());
    EXPECT_EQ(controller.serverIPLabel(), QStringLiteral("/192.0.2.7"));
    ASSERT_TRUE(waitUntil([&] { return controller.startListenerButtonTag() == 1; }));
    const quint16 port = controller.boundPort();
    EXPECT_EQ(controller.listenerStatus(), QStringLiteral("TCP listener started and bounded to port %1").arg(port));

    // Without an Avahi daemon the announcement is reported as unavailable.
    if (!QFileInfo::exists(QStringLiteral("/run/avahi-daemon/socket"))) {
        bool reported = false;
        for (const auto& message : consoleMessages)
            reported = reported || message.at(0).toString().contains(QStringLiteral("DNS-SD announcement unavailable"));
        EXPECT_TRUE(reported);
    }

    connectClient(port);
    client.write("x\r\n1700000000123,7,a\r\n");
    ASSERT_TRUE(waitUntil([&] { return !rows.isEmpty(); }));
    EXPECT_EQ(rows, QStringList{QStringLiteral("[11-14-2023 10:13:20.1230] Unknown : a")});

    controller.startListenerButtonClicked();
    EXPECT_FALSE(controller.serverIPLabelVisible());
    // The controls follow the server's stop report, not the click.
    EXPECT_EQ(controller.startListenerButtonTag(), 1);
    ASSERT_TRUE(waitUntil([&] { return controller.startListenerButtonTag() == 0; }));
    EXPECT_EQ(controller.listenerStatus(), QStringLiteral("TCP listener stopped and unbounded."));
    EXPECT_TRUE(waitUntil([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
}

TEST_F(TcpServerTest, FailedStartShowsRunningUntilStopped)
{
    QTcpServer holder;
    ASSERT_TRUE(holder.listen(QHostAddress::Any, 0));
    SensorListenerController controller(nullptr);
    controller.setPort(holder.serverPort());
    controller.toggleTCPListener();
    ASSERT_TRUE(waitUntil([&] { return controller.startListenerButtonTag() == 1; }));
    EXPECT_TRUE(controller.listenerStatus().startsWith(QStringLiteral("Unable to start TCP listener (")));
    EXPECT_TRUE(controller.listenerStatus().endsWith(QStringLiteral(").")));
    controller.toggleTCPListener();
    EXPECT_TRUE(waitUntil([&] { return controller.startListenerButtonTag() == 0; }));
}

} // namespace

namespace {

TEST_F(TcpServerTest, AFloodIsReportedInOrderInSlicesThatLetTheEventLoopTurn)
{
    startServerAndConnect();
    // A zero timer fires once per event-loop turn; the lines reported between two of its ticks
    // are what one turn handled.
    qsizetype largestTurn = 0;
    qsizetype atLastTick = 0;
    QTimer turn;
    turn.setInterval(0);
    QObject::connect(&turn, &QTimer::timeout, [&] {
        largestTurn = std::max(largestTurn, lines.size() - atLastTick);
        atLastTick = lines.size();
    });
    turn.start();
    constexpr int count = 5000;
    QByteArray flood;
    for (int i = 0; i < count; ++i)
        flood += "0,9," + QByteArray::number(i) + "\r\n";
    client.write(flood);
    client.flush();
    ASSERT_TRUE(waitUntil([&] { return lines.size() >= count; }, 10000));
    ASSERT_EQ(lines.size(), count);
    for (int i = 0; i < count; i += 997)
        EXPECT_EQ(lines[i], QStringLiteral("0,9,%1").arg(i));
    EXPECT_LE(largestTurn, GCDSensorLoggerTCPServer::batchSize);
}

} // namespace
