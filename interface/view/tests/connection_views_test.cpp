#include "interface/interface_info_controller.h"
#include "interface/join_controller.h"
#include "interface/view/interface_tab.h"
#include "interface/view/join_sheet.h"

#include "testsupport/fake_timer_source.h"
#include "testsupport/manual_clock.h"
#include "testsupport/stub_wireless_interface.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace connection;

namespace {

void application()
{
    static int argc = 1;
    static char name[] = "connection_views_tests";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance() == nullptr)
        new QApplication(argc, argv);
}

class RefusingInterface : public testsupport::StubWirelessInterface {
public:
    using StubWirelessInterface::StubWirelessInterface;
    platform::MaybeError setPower(bool) override
    {
        return platform::PlatformError{"org.freedesktop.NetworkManager", 1, "Not authorized to control networking.",
                                       "org.freedesktop.NetworkManager.PermissionDenied", ""};
    }
};

class NullTool : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString&) override { return {}; }
};

QMessageBox* waitForAlert()
{
    for (int i = 0; i < 50 && !qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); ++i)
        QTest::qWait(20);
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
}

TEST(InterfaceTabView, ShowsFieldsAsPlainTextAndAlertsWhenPowerIsRefused)
{
    application();
    platform::InterfaceSnapshot link;
    link.interfaceName = "wlan0";
    link.powerOn = true;
    link.interfaceState = platform::InterfaceStateRunning;
    link.bssid = "02:00:00:00:00:01";
    link.ssid = "<b>bold</b>";
    link.rssiValue = -48;
    link.transmitRate = 300;
    auto wifi = std::make_shared<RefusingInterface>(link);
    testsupport::ManualClock clock(QDateTime(QDate(2026, 1, 1), QTime(9, 0), Qt::UTC));
    testsupport::FakeTimerSource timers(clock);
    NullTool tool;
    InterfaceInfoController controller(wifi, timers, tool, "true", {});
    view::InterfaceTab tab(controller, {"wlan0"});
    tab.show();
    ASSERT_TRUE(controller.isTabShown());
    EXPECT_TRUE(tab.reportAction()->isVisible());

    auto* ssid = tab.findChild<QLabel*>("ssidField");
    ASSERT_NE(ssid, nullptr);
    EXPECT_EQ(ssid->text(), "<b>bold</b>");
    EXPECT_EQ(ssid->textFormat(), Qt::PlainText);
    EXPECT_EQ(tab.fieldText("rssiField"), "-48 dBm");
    for (QWidget* control : tab.findChildren<QWidget*>()) {
        if (qobject_cast<QAbstractButton*>(control) || qobject_cast<QComboBox*>(control)) {
            EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
        }
    }

    tab.findChild<QPushButton*>("powerOffSegment")->click();
    QMessageBox* alert = waitForAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->text(), "Not authorized to control networking.");
    EXPECT_EQ(alert->textFormat(), Qt::PlainText);
    alert->close();
    controller.waitForBackgroundWork();
}

TEST(JoinSheetView, RefusesAnEmptyPasswordForASecuredNetwork)
{
    application();
    auto wifi = std::make_shared<testsupport::StubWirelessInterface>();
    JoinController joins(wifi);
    view::JoinSheet sheet(joins);
    scan::ScanedResultInfo network;
    network.ssid = "Cafe";
    network.securityMode = platform::SecurityWPA2Personal;
    network.network = std::make_shared<platform::ScanResult>();
    joins.openFor(network);
    joins.waitForBackgroundWork();
    ASSERT_TRUE(sheet.isVisible());
    EXPECT_EQ(sheet.findChild<QComboBox*>("joinSecurityPopupButton")->currentText(), "Secured");
    EXPECT_FALSE(sheet.findChild<QLineEdit*>("joinNetworkNameField")->isEnabled());
    EXPECT_TRUE(sheet.findChild<QLineEdit*>("joinPassphraseField")->isEnabled());

    sheet.findChild<QPushButton*>("joinOKButton")->click();
    QMessageBox* alert = waitForAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->text(), "Password cannot be empty for secured network.");
    alert->close();
    EXPECT_TRUE(sheet.isVisible());
}

} // namespace
