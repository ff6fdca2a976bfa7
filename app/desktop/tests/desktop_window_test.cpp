#include "app/desktop/connected_ssid_tab.h"
#include "app/desktop/desktop_application.h"
#include "app/desktop/interface_state_reactions.h"
#include "app/desktop/monitor_windows.h"
#include "app/desktop/scan_main_window.h"
#include "app/desktop/wifi_turned_off_window.h"
#include "app/settings/settings_store.h"
#include "monitor/view/monitor_window_panel.h"
#include "monitor/view/samples_window.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_test_driver.h"

#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QTabWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QSaveFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using app::desktop::DesktopApplication;
using app::desktop::DesktopArguments;

class DesktopWindow : public testing::Test {
protected:
    std::unique_ptr<DesktopApplication> make(const QStringList& arguments)
    {
        DesktopArguments parsed = app::desktop::parseDesktopArguments(arguments);
        EXPECT_EQ(parsed.action, DesktopArguments::Action::Run) << parsed.message.toStdString();
        return std::make_unique<DesktopApplication>(parsed, [this](const QString& reason) { reasons << reason; });
    }
    QStringList simulated() const { return {QStringLiteral("--simulate=20"), QStringLiteral("--db"), database()}; }
    QString database() const { return folder.filePath(QStringLiteral("Database.sqlite")); }
    void setSummary(bool on) { SettingsStore().setValue(QStringLiteral("SHOW_SUMMARY_WINDOW"), on); }

    QTemporaryDir folder;
    QStringList reasons;
};

TEST_F(DesktopWindow, OpensOnTheSimulatedRadioScansAndQuitsCleanly)
{
    setSummary(false);
    auto desktop = make(simulated());
    ASSERT_TRUE(desktop->launch()) << reasons.join(QLatin1Char('\n')).toStdString();
    app::desktop::ScanMainWindow* window = desktop->mainWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    EXPECT_EQ(window->windowTitle(), "Skyvane");
    const auto* backend = window->findChild<QLabel*>(QStringLiteral("backendStatusLabel"));
    ASSERT_NE(backend, nullptr);
    EXPECT_FALSE(backend->text().isEmpty());
    EXPECT_EQ(backend->text(), desktop->backendStatus());
    QStringList menus;
    for (QAction* menu : window->menuBar()->actions())
        menus << menu->text();
    EXPECT_EQ(menus, (QStringList{"&File", "&Edit", "&Scan"}));
    // The listener's port field is filled from the registered default at launch.
    const auto* port = window->findChild<QSpinBox*>(QStringLiteral("udpListenerPortTextField"));
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->value(), 5555);

    // The launch notification starts the first test without a click.
    EXPECT_TRUE(QTest::qWaitFor([&] { return desktop->results()->rowCount() > 0; }, 15000));
    // The scan reaches the graphs under the table, which say what they show.
    const auto* channels = window->findChild<QWidget*>(QStringLiteral("channelGraph24GHz"));
    ASSERT_NE(channels, nullptr);
    EXPECT_EQ(channels->accessibleName(), QStringLiteral("2.4 GHz channel graph"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !channels->accessibleDescription().endsWith(QLatin1String(", 0 networks")); },
                                5000))
        << channels->accessibleDescription().toStdString();

    QSignalSpy terminated(desktop.get(), &DesktopApplication::terminated);
    window->close();
    EXPECT_EQ(terminated.count(), 1);
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(reasons.isEmpty()) << reasons.join(QLatin1Char('\n')).toStdString();
    // The database was closed and its lock released: another scanner may open it now.
    auto next = make(simulated());
    EXPECT_TRUE(next->launch()) << reasons.join(QLatin1Char('\n')).toStdString();
    next->terminate();
}

TEST_F(DesktopWindow, ConnectedSsidTabFillsItsFieldsOpensTheJoinSheetAndWritesItsReport)
{
    setSummary(false);
    auto desktop = make(simulated());
    ASSERT_TRUE(desktop->launch()) << reasons.join(QLatin1Char('\n')).toStdString();
    app::desktop::ScanMainWindow* window = desktop->mainWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    auto* tabs = window->findChild<QTabWidget*>(QStringLiteral("tabView"));
    auto* connected = window->findChild<QWidget*>(QStringLiteral("INTERFACE_INFO"));
    ASSERT_NE(tabs, nullptr);
    ASSERT_NE(connected, nullptr);
    EXPECT_EQ(tabs->tabText(tabs->indexOf(connected)), "Connected SSID");
    auto* report = window->findChild<QAction*>(QStringLiteral("connectedSSIDReportItem"));
    ASSERT_NE(report, nullptr);
    EXPECT_FALSE(report->isVisible());
    EXPECT_NE(window->findChild<QAction*>(QStringLiteral("exportAction5")), nullptr);

    tabs->setCurrentWidget(connected);
    EXPECT_TRUE(report->isVisible());
    auto* ssid = connected->findChild<QLabel*>(QStringLiteral("ssidField"));
    ASSERT_NE(ssid, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ssid->text() == "Skyvane Home"; }, 5000));

    ASSERT_TRUE(QTest::qWaitFor([&] { return desktop->results()->rowCount() > 1; }, 15000));
    desktop->results()->joinButtonPressed(1);
    auto* sheet = window->findChild<QDialog*>(QStringLiteral("joinWindow"));
    ASSERT_NE(sheet, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet->isVisible(); }, 5000));
    EXPECT_TRUE(desktop->driver()->isPaused()) << "the scans wait while the sheet holds the radio";
    sheet->reject();
    EXPECT_FALSE(desktop->driver()->isPaused());

    desktop->connectedSsidTab()->generateConnectedSSIDReport(folder.filePath(QStringLiteral("connected.html")));
    QString page;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            const QStringList found = QDir(folder.path()).entryList({"skyvane-connected-ssid-report-*"}, QDir::Dirs);
            page = found.isEmpty() ? QString() : folder.filePath(found.first() + "/connected.html");
            return !page.isEmpty() && QFile::exists(page) &&
                   QFile::exists(QFileInfo(page).path() + "/skv-images/connectedSSIDgraph.png");
        },
        10000));
    desktop->terminate();
}

TEST_F(DesktopWindow, SummaryAtTheFirstCloseAndQuitAtTheSecond)
{
    setSummary(true);
    auto desktop = make(simulated());
    ASSERT_TRUE(desktop->launch());
    QSignalSpy terminated(desktop.get(), &DesktopApplication::terminated);
    desktop->mainWindow()->close();
    ASSERT_NE(desktop->reviewWindow(), nullptr);
    EXPECT_TRUE(desktop->reviewWindow()->isVisible());
    EXPECT_EQ(terminated.count(), 0);

    // "Continue scanning" forgets the summary; the next close shows it again.
    desktop->reviewWindow()->findChild<QPushButton*>(QStringLiteral("continueScanningButton"))->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return desktop->reviewWindow() == nullptr; }));
    desktop->mainWindow()->close();
    ASSERT_NE(desktop->reviewWindow(), nullptr);
    desktop->mainWindow()->close();
    EXPECT_EQ(terminated.count(), 1);
}

TEST_F(DesktopWindow, RadioSwitchedOffShowsTheSheetThatTurnsItBackOn)
{
    setSummary(false);
    auto desktop = make(simulated());
    ASSERT_TRUE(desktop->launch());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(desktop->mainWindow()));
    ASSERT_FALSE(desktop->currentInterface()->setPower(false).has_value());
    app::desktop::WiFiTurnedOffWindow* sheet = desktop->wifiTurnedOffWindow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet->isVisible(); }));
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);

    sheet->findChild<QPushButton*>(QStringLiteral("turnWiFiOnButton"))->click();
    EXPECT_TRUE(desktop->currentInterface()->snapshot().powerOn);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet->isVisible(); }));
    desktop->terminate();
}

// Driven from outside through the simulator's control file, as a person would.
class DesktopOnControlledRadio : public DesktopWindow {
protected:
    DesktopOnControlledRadio() { qputenv("SKYVANE_SIM_CONTROL", control().toLocal8Bit()); }
    ~DesktopOnControlledRadio() override { qunsetenv("SKYVANE_SIM_CONTROL"); }

    QString control() const { return folder.filePath(QStringLiteral("radio")); }
    // Waits until the simulated radio has taken the state, so the reactions have run.
    void command(const QByteArray& line, const std::function<bool(const platform::InterfaceSnapshot&)>& reached)
    {
        QSaveFile file(control());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(line + '\n');
        ASSERT_TRUE(file.commit());
        ASSERT_TRUE(QTest::qWaitFor([&] { return reached(desktop->currentInterface()->snapshot()); }))
            << line.constData();
    }
    void mode(const QByteArray& name, int interfaceMode)
    {
        command("mode " + name, [=](const platform::InterfaceSnapshot& s) { return s.interfaceMode == interfaceMode; });
    }
    QList<QMessageBox*> modeAlerts() const
    {
        QList<QMessageBox*> shown;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == QLatin1String("modeChangeAlert") && widget->isVisible())
                shown << qobject_cast<QMessageBox*>(widget);
        return shown;
    }

    std::unique_ptr<DesktopApplication> desktop;
};

TEST_F(DesktopOnControlledRadio, RadioOffShowsTheSheetAndAccessPointModeAlertsOncePerDismissal)
{
    setSummary(false);
    desktop = make(simulated());
    ASSERT_TRUE(desktop->launch());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(desktop->mainWindow()));

    command("power off", [](const platform::InterfaceSnapshot& s) { return !s.powerOn; });
    app::desktop::WiFiTurnedOffWindow* sheet = desktop->wifiTurnedOffWindow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet->isVisible(); }));
    sheet->findChild<QPushButton*>(QStringLiteral("turnWiFiOnButton"))->click();
    EXPECT_TRUE(desktop->currentInterface()->snapshot().powerOn);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet->isVisible(); }));
    EXPECT_TRUE(modeAlerts().isEmpty());

    mode("hostap", platform::InterfaceModeHostAP);
    ASSERT_TRUE(QTest::qWaitFor([&] { return modeAlerts().size() == 1; }));
    QMessageBox* alert = modeAlerts().value(0);
    EXPECT_EQ(alert->text(), "WiFi Scannig is not allowed when internet sharing is enabled.");

    // Leaving and re-entering the mode while the alert is up does not stack a second one.
    mode("station", platform::InterfaceModeStation);
    mode("hostap", platform::InterfaceModeHostAP);
    QTest::qWait(100);
    EXPECT_EQ(modeAlerts(), QList<QMessageBox*>{alert});

    alert->button(QMessageBox::Ok)->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return modeAlerts().isEmpty(); }));
    mode("station", platform::InterfaceModeStation);
    EXPECT_TRUE(modeAlerts().isEmpty());
    mode("hostap", platform::InterfaceModeHostAP);
    EXPECT_TRUE(QTest::qWaitFor([&] { return modeAlerts().size() == 1; }));
    desktop->terminate();
}

TEST_F(DesktopWindow, RefusesABackendOrDatabaseThatCannotBeUsed)
{
    auto capture = make({QStringLiteral("--capture"), folder.filePath(QStringLiteral("missing.pcap"))});
    EXPECT_FALSE(capture->launch());
    ASSERT_EQ(reasons.size(), 1);
    EXPECT_TRUE(reasons[0].contains(QStringLiteral("missing.pcap"))) << reasons[0].toStdString();

    // A database another scanner holds is refused with the reason, not shared.
    auto first = make(simulated());
    ASSERT_TRUE(first->launch());
    auto second = make(simulated());
    EXPECT_FALSE(second->launch());
    ASSERT_EQ(reasons.size(), 2);
    EXPECT_TRUE(reasons[1].contains(database())) << reasons[1].toStdString();
    first->terminate();
}

TEST_F(DesktopWindow, TheProgramSaysWhyAndExitsOneWithoutBlockingOnADialog)
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("HOME"), folder.path());
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane"),
                  {QStringLiteral("--capture"), folder.filePath(QStringLiteral("unreadable.pcap")),
                   QStringLiteral("--db"), database()});
    ASSERT_TRUE(program.waitForFinished(30000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_TRUE(program.readAllStandardError().contains("unreadable.pcap"));
}

} // namespace

// The selected network's monitor opens from the Scan menu, once per network; the samples window
// opens from a row; both close with the program.
TEST_F(DesktopWindow, MonitorAndSamplesWindowsOpenForTheSelectedNetworkAndCloseWithTheProgram)
{
    setSummary(false);
    auto desktop = make(simulated());
    ASSERT_TRUE(desktop->launch());
    ASSERT_TRUE(QTest::qWaitFor([&] { return desktop->results()->rowCount() > 0; }, 15000));
    QAction* monitor = desktop->mainWindow()->findChild<QAction*>(QStringLiteral("monitorNetworkAction"));
    ASSERT_NE(monitor, nullptr);
    monitor->trigger();
    EXPECT_EQ(desktop->monitorWindows()->openMonitorCount(), 0);

    desktop->results()->setSelectedRows({0});
    const QString bssid = desktop->results()->recordAt(0)->bssid;
    monitor->trigger();
    monitor->trigger();
    EXPECT_EQ(desktop->monitorWindows()->openMonitorCount(), 1);
    const auto panels = desktop->mainWindow()->findChildren<monitor::view::MonitorWindowPanel*>();
    ASSERT_EQ(panels.size(), 1);
    EXPECT_EQ(panels.first()->windowTitle(), QStringLiteral("Monitoring - %1").arg(bssid));

    desktop->monitorWindows()->showSamples(desktop->driver()->wifiScanTestArray().first()->scanedResults.first());
    EXPECT_TRUE(desktop->monitorWindows()->samplesWindow()->isVisible());

    desktop->terminate();
    EXPECT_EQ(desktop->monitorWindows()->openMonitorCount(), 0);
    EXPECT_FALSE(desktop->monitorWindows()->samplesWindow()->isVisible());
}
