#include "core/memory_settings.h"
#include "sensor/sensor_listener_session.h"
#include "sensor/view/sensor_listener_tab.h"
#include "sensor/view/sensor_log_view.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QUdpSocket>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

using sensor::SensorListenerController;

const QString folderKey = QStringLiteral("udp_log_file_path");
// An unknown sensor's values are logged as they came, so markup shows up as written.
const QByteArray markupLine = "1700000000000,7,<b>bold</b>,<a href='x'>link</a>";

class SensorListenerTabTest : public ::testing::Test {
protected:
    template <typename Widget>
    Widget* child(const char* name)
    {
        auto* widget = tab.findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    QString status() { return child<QLabel>("listenerLabelTextField")->text(); }
    QPushButton* startButton() { return child<QPushButton>("startListenerButton"); }

    // Clicks start and waits for the listener's answer; the bound port, 0 when it failed.
    quint16 start(const char* type)
    {
        child<QRadioButton>(type)->click();
        child<QSpinBox>("udpListenerPortTextField")->setValue(0);
        QSignalSpy buttons(&session.controller(), &SensorListenerController::buttonsChanged);
        startButton()->click();
        if (buttons.isEmpty())
            buttons.wait(5000);
        return session.controller().boundPort();
    }

    QString waitForLog(const QString& expected)
    {
        static_cast<void>(QTest::qWaitFor([&] { return tab.logView()->text().contains(expected); }, 5000));
        return tab.logView()->text();
    }

    core::MemorySettings settings{{{QStringLiteral("udp_listener_port"), QStringLiteral("5555")}}};
    sensor::SensorListenerSession session{nullptr, settings, QDateTime::currentDateTime()};
    sensor::view::SensorListenerTab tab{session};
};

TEST_F(SensorListenerTabTest, UdpLineReceivedShowsAsWrittenAndStopResetsTheControls)
{
    EXPECT_EQ(child<QSpinBox>("udpListenerPortTextField")->value(), 5555);
    const quint16 port = start("udpListenerType");
    ASSERT_NE(port, 0) << status().toStdString();
    EXPECT_EQ(status(), QStringLiteral("UDP listener started and bounded to port %1").arg(port));
    EXPECT_EQ(startButton()->text(), QStringLiteral("Stop Listener"));
    EXPECT_TRUE(startButton()->isDefault()) << "highlighted while listening";
    EXPECT_FALSE(child<QSpinBox>("udpListenerPortTextField")->isEnabled());
    EXPECT_FALSE(child<QLabel>("serverIPLabel")->isVisibleTo(&tab));

    QUdpSocket phone;
    ASSERT_EQ(phone.writeDatagram(markupLine, QHostAddress::LocalHost, port), markupLine.size());
    const QString shown = waitForLog(QStringLiteral("Unknown"));
    EXPECT_TRUE(shown.startsWith(QLatin1String("TIME,BSSID,SSID,RSSI,NOISE,CHANNEL,LATITUDE,LONGITUDE,ALTITUDE\n")))
        << shown.toStdString();
    EXPECT_TRUE(shown.endsWith(QLatin1String(" Unknown : <b>bold</b>,<a href='x'>link</a>"))) << shown.toStdString();
    tab.logView()->copyAction()->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), shown);

    startButton()->click();
    EXPECT_EQ(status(), QStringLiteral("Listener stopped and unbounded."));
    EXPECT_EQ(startButton()->text(), QStringLiteral("Start Listener"));
    EXPECT_FALSE(startButton()->isDefault());
    EXPECT_TRUE(child<QSpinBox>("udpListenerPortTextField")->isEnabled());

    child<QPushButton>("clearListenerLogButton")->click();
    EXPECT_TRUE(tab.logView()->text().isEmpty());
}

TEST_F(SensorListenerTabTest, BindFailureIsToldAndLeavesTheListenerIdle)
{
    QUdpSocket holder;
    ASSERT_TRUE(holder.bind(QHostAddress::AnyIPv4, 0));
    child<QRadioButton>("udpListenerType")->click();
    child<QSpinBox>("udpListenerPortTextField")->setValue(holder.localPort());
    startButton()->click();
    EXPECT_EQ(status(), QStringLiteral("Failed binding to port!"));
    EXPECT_TRUE(child<QLabel>("listenerConsoleLabel")->text().startsWith(QLatin1String("failed to bound to port! ")));
    EXPECT_EQ(startButton()->text(), QStringLiteral("Start Listener"));
    EXPECT_FALSE(startButton()->isDefault());

    holder.close();
    startButton()->click();
    EXPECT_EQ(status(), QStringLiteral("UDP listener started and bounded to port %1").arg(session.controller().boundPort()));
    EXPECT_TRUE(child<QLabel>("listenerConsoleLabel")->text().isEmpty()) << "the failure's reason is not left behind";
}

TEST_F(SensorListenerTabTest, TcpLineShowsAndTheServerAddressFollowsTheListener)
{
    const quint16 port = start("tcpListenerType");
    ASSERT_NE(port, 0) << status().toStdString();
    EXPECT_EQ(status(), QStringLiteral("TCP listener started and bounded to port %1").arg(port));
    auto* address = child<QLabel>("serverIPLabel");
    EXPECT_TRUE(address->isVisibleTo(&tab));
    EXPECT_EQ(address->text(), u'/' + session.controller().serverIP());

    QTcpSocket phone;
    phone.connectToHost(QHostAddress::LocalHost, port);
    ASSERT_TRUE(phone.waitForConnected(5000));
    phone.write(markupLine + "\r\n");
    EXPECT_TRUE(waitForLog(QStringLiteral("<b>bold</b>")).endsWith(QLatin1String("<a href='x'>link</a>")));

    QSignalSpy buttons(&session.controller(), &SensorListenerController::buttonsChanged);
    startButton()->click();
    EXPECT_FALSE(address->isVisibleTo(&tab));
    ASSERT_TRUE(buttons.wait(5000));
    EXPECT_EQ(status(), QStringLiteral("TCP listener stopped and unbounded."));
    EXPECT_EQ(startButton()->text(), QStringLiteral("Start Listener"));
}

TEST_F(SensorListenerTabTest, ChosenFolderIsStoredAndReceivesTheLogAtTheEnd)
{
    QTemporaryDir folder;
    QString offered;
    tab.setFolderChooser([&offered](QWidget*, const QString&) { return offered; });
    child<QPushButton>("openFileDialogButton")->click();
    EXPECT_FALSE(settings.value(folderKey).isValid()) << "cancelling stores nothing";

    offered = folder.path();
    child<QPushButton>("openFileDialogButton")->click();
    EXPECT_EQ(settings.value(folderKey).toString(), QUrl::fromLocalFile(folder.path()).toString());
    EXPECT_EQ(child<QLineEdit>("logFilePathTextField")->text(), QDir::toNativeSeparators(folder.path()));
    // The preferences write the same settings; the fields follow when told.
    settings.setValue(QStringLiteral("udp_listener_port"), QStringLiteral("6001"));
    tab.readSettings();
    EXPECT_EQ(child<QSpinBox>("udpListenerPortTextField")->value(), 6001);

    const quint16 port = start("udpListenerType");
    QUdpSocket phone;
    phone.writeDatagram(markupLine, QHostAddress::LocalHost, port);
    waitForLog(QStringLiteral("Unknown"));
    session.finish();
    QFile file(folder.filePath(session.file().logFileName().mid(1)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    EXPECT_TRUE(file.readAll().endsWith(" Unknown : <b>bold</b>,<a href='x'>link</a>\n"));
}

} // namespace
