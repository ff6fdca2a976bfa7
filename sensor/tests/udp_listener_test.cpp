#include "listener_test_support.h"

#include "sensor/sensor_listener_controller.h"

#include <QSignalSpy>
#include <QEventLoop>
#include <QTimer>
#include <QUdpSocket>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using sensor::SensorListenerController;

class UdpListenerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ensureApplication();
        controller.setSelectedListenerType(SensorListenerController::UDPListenerType);
        QObject::connect(&controller, &SensorListenerController::logLineAppended,
                         [this](const QString& row) { rows << row; });
    }

    // Starts on a free port and answers it.
    quint16 listen()
    {
        controller.setPort(0);
        controller.startListenerButtonClicked();
        EXPECT_NE(controller.boundPort(), 0);
        return controller.boundPort();
    }

    void send(quint16 port, const QByteArray& datagram)
    {
        ASSERT_EQ(sender.writeDatagram(datagram, QHostAddress::LocalHost, port), datagram.size());
    }

    SensorListenerController controller{nullptr};
    QUdpSocket sender;
    QStringList rows;
};

TEST_F(UdpListenerTest, DatagramsArriveInOrderAcrossBatches)
{
    QSignalSpy started(&controller, &SensorListenerController::listenerStarted);
    const quint16 port = listen();
    EXPECT_EQ(controller.listenerStatus(), QStringLiteral("UDP listener started and bounded to port %1").arg(port));
    EXPECT_EQ(controller.startListenerButtonTitle(), QStringLiteral("Stop Listener"));
    EXPECT_FALSE(controller.listenerSettingsEnabled());
    EXPECT_EQ(started.size(), 1);

    // More than one read batch, with junk among the readings.
    constexpr int count = 600;
    for (int i = 0; i < count; ++i) {
        send(port, QByteArray("0,9,") + QByteArray::number(i));
        if (i % 100 == 0)
            send(port, QByteArray("\xff\xfe,9,junk"));
    }
    ASSERT_TRUE(waitUntil([&] { return rows.size() >= count; }));
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(rows.at(i), QStringLiteral("[01-01-1970 12:00:00.0000] Unknown : %1").arg(i));
    EXPECT_EQ(rows.size(), count);
}

TEST_F(UdpListenerTest, SteadyStreamKeepsBeingRead)
{
    const quint16 port = listen();
    // Paced from another thread while the event loop runs, the way a phone sends: reading
    // must never stall between datagrams.
    constexpr int count = 10000;
    std::thread phone([port] {
        QUdpSocket socket;
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i) {
            std::this_thread::sleep_until(start + std::chrono::microseconds(20 * i));
            socket.writeDatagram(QByteArray("0,9,") + QByteArray::number(i), QHostAddress::LocalHost, port);
        }
    });
    // A running event loop, as in the application, not polling: the stall showed only there.
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (rows.size() >= count)
            loop.quit();
    });
    check.start(50);
    QTimer::singleShot(5000, &loop, &QEventLoop::quit);
    loop.exec();
    const bool all = rows.size() >= count;
    phone.join();
    EXPECT_TRUE(all) << rows.size() << " of " << count;
}

TEST_F(UdpListenerTest, OnlyASelectedTypeStartsAndStopGivesAFreshSocketOnTheSamePort)
{
    controller.setSelectedListenerType(SensorListenerController::NoListenerType);
    controller.startListenerButtonClicked();
    EXPECT_TRUE(controller.listenerStatus().isEmpty());
    controller.setSelectedListenerType(SensorListenerController::UDPListenerType);
    QSignalSpy stopping(&controller, &SensorListenerController::listenerStopping);
    const quint16 port = listen();
    controller.toggleUDPListener();
    EXPECT_EQ(controller.listenerStatus(), QStringLiteral("Listener stopped and unbounded."));
    EXPECT_EQ(controller.startListenerButtonTag(), 0);
    EXPECT_EQ(controller.startListenerButtonTitle(), QStringLiteral("Start Listener"));
    EXPECT_EQ(stopping.size(), 1);

    controller.setPort(port);
    controller.toggleUDPListener();
    ASSERT_EQ(controller.boundPort(), port);
    send(port, "0,9,again");
    EXPECT_TRUE(waitUntil([&] { return rows.size() == 1; }));
}

TEST_F(UdpListenerTest, BindFailureKeepsTheButtons)
{
    QUdpSocket holder;
    ASSERT_TRUE(holder.bind(QHostAddress::AnyIPv4, 0, QAbstractSocket::DontShareAddress));
    QSignalSpy diagnostics(&controller, &SensorListenerController::diagnostic);
    // Only the low 16 bits of the field reach the socket.
    controller.setPort(0x10000 | holder.localPort());
    controller.toggleUDPListener();
    EXPECT_EQ(controller.listenerStatus(), QStringLiteral("Failed binding to port!"));
    EXPECT_EQ(controller.startListenerButtonTag(), 0);
    ASSERT_EQ(diagnostics.size(), 1);
    EXPECT_TRUE(diagnostics.at(0).at(0).toString().startsWith(QStringLiteral("failed to bound to port! ")));
}

} // namespace
