#include "app/desktop/desktop_application.h"

#include "app/cli/cli_arguments.h"
#include "app/desktop/connected_ssid_tab.h"
#include "app/desktop/general_preferences.h"
#include "app/desktop/interface_state_reactions.h"
#include "app/desktop/log_category.h"
#include "app/desktop/monitor_windows.h"
#include "app/desktop/reachability_monitor.h"
#include "app/desktop/review_window.h"
#include "app/desktop/scan_main_window.h"
#include "app/desktop/wifi_turned_off_window.h"
#include "app/events/application_events.h"
#include "app/events/scanner_events.h"
#include "app/settings/settings_store.h"
#include "graphs/color_codes_manager.h"
#include "graphs/graph_view_tab_set.h"
#include "graphs/view/graph_tab_widget.h"
#include "graphs/view/report_graph_images.h"
#include "platform/api/clock.h"
#include "platform/api/command_runner.h"
#include "scan/value_transformers.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_database.h"
#include "scanning/scan_test_driver.h"
#include "scanning/channel_info_refresher.h"
#include "scanning/timer_source.h"
#include "scanning/view/results_table_view.h"
#include "scanning/view/export_menu.h"
#include "scanning/view/scanner_tab.h"
#include "sensor/host_address.h"
#include "sensor/sensor_listener_session.h"
#include "sensor/view/sensor_listener_tab.h"

#include <QAction>
#include <QColor>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QMessageBox>
#include <QStatusBar>
#include <QThread>
#include <QTimer>

namespace app::desktop {
struct DesktopApplication::Parts {
    app::Backend backend;
    SettingsStore settings;
    platform::SystemClock clock;
    scanning::QtTimerSource timers{clock};
    platform::ShellCommandRunner commands;
    app::ApplicationEvents events;
};

DesktopApplication::DesktopApplication(DesktopArguments arguments, ErrorReporter reportError, QObject* parent)
    : QObject(parent), arguments_(std::move(arguments)), reportError_(std::move(reportError))
{
}

DesktopApplication::~DesktopApplication()
{
    if (launchAnnouncer_)
        launchAnnouncer_->wait();
    if (driver_)
        driver_->waitForBackgroundWork();
}

QString DesktopApplication::backendStatus() const
{
    return parts_ ? parts_->backend.statusText : QString();
}

std::shared_ptr<platform::WirelessInterface> DesktopApplication::currentInterface() const
{
    return parts_ ? parts_->backend.interface : nullptr;
}

bool DesktopApplication::launch()
{
    QString error;
    std::optional<app::Backend> backend = app::chooseBackend(arguments_.backend, &error);
    if (!backend) {
        reportError_(error);
        return false;
    }
    parts_ = std::make_unique<Parts>();
    parts_->backend = std::move(*backend);
    graphs::ColorCodesManager::sharedColorManager();
    parts_->settings.setupDefaults();
    startSensorListener();

    database_ = std::make_unique<scanning::ScanDatabase>(arguments_.databasePath);
    if (!database_->isOpen()) {
        reportError_(QStringLiteral("The scan database %1 cannot be used: %2")
                         .arg(QDir::toNativeSeparators(database_->path()), database_->openError()));
        return false;
    }
    database_->updateDatabase();

    reactions_ = new InterfaceStateReactions(parts_->backend.interface, this);
    reactions_->observe();
    scan::ValueTransformerRegistry::registerDefaultTransformers();

    // The tool is installed beside this program; it must scan the same radio.
    driver_ = std::make_unique<scanning::ScanTestDriver>(
        parts_->backend.interface, *database_, parts_->settings, parts_->timers, parts_->commands,
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("skyvane-cli")),
        app::cli::backendArguments(arguments_.backend));
    graphs_ = std::make_unique<graphs::GraphViewTabSet>(graphs::ColorCodesManager::sharedColorManager(), parts_->settings);
    results_ = std::make_unique<scanning::ResultsTableModel>(parts_->settings, graphs_.get());
    driver_->setResultsListener(results_.get());
    app::connectScanTestDriver(parts_->events, *driver_);
    // The scanner tab shows the driver's alerts and database failures itself.

    auto* tab = new scanning::view::ScannerTab(*driver_, *results_, parts_->settings);
    tab->resultsView()->setSwatchColour([](const scan::ScanedResultInfo& record) {
        const graphs::ColourCodePtr colour = graphs::ColorCodesManager::sharedColorManager().getColorCode(&record);
        return colour ? QColor::fromRgbF(float(colour->red), float(colour->green), float(colour->blue)) : QColor();
    });
    graphTabs_ = new graphs::view::GraphTabWidget(*graphs_, tab);
    tab->setGraphPane(graphTabs_);
    reportImages_ = std::make_unique<graphs::view::ReportGraphImages>(*graphs_);
    tab->exporter()->setReportGraphs(reportImages_->reportGraphs());
    mainWindow_ = std::make_unique<ScanMainWindow>(tab, parts_->settings, parts_->backend.statusText);
    addSensorListenerTab();
    addMonitorWindows(tab);
    connectedSsid_ = std::make_unique<ConnectedSsidTab>(
        ConnectedSsidTab::Services{parts_->backend.client, parts_->backend.interface, parts_->timers, parts_->commands,
                                   scanning::toolCommandLine(QDir(QCoreApplication::applicationDirPath())
                                                                 .filePath(QStringLiteral("skyvane-cli")),
                                                             app::cli::backendArguments(arguments_.backend)) +
                                       QStringLiteral(" -I"),
                                   *driver_, *results_, parts_->events, parts_->settings, arguments_.explain,
                                   tab->exportMenu()},
        *mainWindow_);
    mainWindow_->restoreWindowState();
    connect(mainWindow_.get(), &ScanMainWindow::settingChanged, tab, [this, tab](const QString& key) {
        if (key == QLatin1String(GeneralPreferences::fontSizeKey))
            tab->applyFontSize();
        if (key == QLatin1String(graphs::gridLinesSettingKey) || key == QLatin1String(graphs::rssiValuesSettingKey))
            graphs_->refreshSettings();
    });
    quit_ = std::make_unique<QuitSequence>(parts_->settings);
    connect(mainWindow_.get(), &ScanMainWindow::closeRequested, this, [this] { quitDecided(quit_->close()); });
    connect(mainWindow_.get(), &ScanMainWindow::quitRequested, this,
            [this] { quitDecided(quit_->applicationShouldTerminate()); });

    turnWiFiOnOffWindow_ = new WiFiTurnedOffWindow(mainWindow_.get());
    connect(turnWiFiOnOffWindow_, &WiFiTurnedOffWindow::powerFailed, this, [this](const QString& description) {
        reportError_(description);
    });
    connect(reactions_, &InterfaceStateReactions::wifiTurnedOff, this, [this] {
        turnWiFiOnOffWindow_->setCurrentInterface(parts_->backend.interface);
        turnWiFiOnOffWindow_->open();
    });
    connect(reactions_, &InterfaceStateReactions::wifiTurnedOn, this, [this] {
        if (turnWiFiOnOffWindow_->isVisible())
            turnWiFiOnOffWindow_->done(1);
    });
    connect(reactions_, &InterfaceStateReactions::modeAlertRequested, this, &DesktopApplication::showModeAlert);

    reachability_ = new ReachabilityMonitor([] { return sensor::hostAddress(); }, this);
    connect(reachability_, &ReachabilityMonitor::becameReachable, this, [this] {
        if (turnWiFiOnOffWindow_->isVisible())
            turnWiFiOnOffWindow_->done(1);
    });
    connect(reachability_, &ReachabilityMonitor::serverAddressChanged, this, [this](const QString& serverIP) {
        sensorListener_->controller().setServerIP(serverIP);
        sensorListener_->controller().updateServerIPAddress();
    });
    // The system's own first answer comes in late at start-up; asking at once would only report
    // the network as down.
    QTimer::singleShot(5000, reachability_, &ReachabilityMonitor::start);

    mainWindow_->show();

    // Observers of the launch notification must not assume the GUI thread.
    launchAnnouncer_.reset(QThread::create([events = &parts_->events] { emit events->appFinishLaunching(); }));
    launchAnnouncer_->start();
    return true;
}

void DesktopApplication::addMonitorWindows(scanning::view::ScannerTab* tab)
{
    monitors_ = new MonitorWindows(parts_->timers, QCoreApplication::applicationDirPath(), mainWindow_.get(), this);
    connect(monitors_, &MonitorWindows::soundUnavailable, this, [this](const QString& reason) {
        mainWindow_->statusBar()->showMessage(tr("No sound for audio tracking: %1").arg(reason));
    });
    const auto showSamples = [this](const QString&, const QList<scan::ScanedResultInfo>& history) {
        monitors_->showSamples(history);
    };
    connect(tab, &scanning::view::ScannerTab::samplesWindowRequested, monitors_, showSamples);
    connect(graphTabs_, &graphs::view::GraphTabWidget::samplesWindowRequested, monitors_, showSamples);
    connect(driver_.get(), &scanning::ScanTestDriver::scanProcessed, monitors_,
            [this](const std::shared_ptr<scanning::WiFiScanTest>& test) { monitors_->followScan(*test); });
    connect(driver_.get(), &scanning::ScanTestDriver::runButtonChanged, monitors_, [this](int tag) {
        if (tag == 0)
            monitors_->scanDidStoppedByUser();
    });

    auto* monitor = new QAction(tr("&Monitor Selected Network…"), mainWindow_.get());
    monitor->setObjectName(QStringLiteral("monitorNetworkAction"));
    monitor->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    connect(monitor, &QAction::triggered, this, [this] {
        const QList<int> rows = results_->selectedRows();
        const scan::ScanedResultInfo* record = rows.isEmpty() ? nullptr : results_->recordAt(rows.first());
        if (record == nullptr) {
            mainWindow_->statusBar()->showMessage(tr("Select a network in the table to monitor it."));
            return;
        }
        monitors_->openMonitor(*record, parts_->backend.interface, driver_->refreshIntervalSeconds());
    });
    mainWindow_->addScanAction(monitor);
}

void DesktopApplication::startSensorListener()
{
    sensorListener_ = std::make_unique<sensor::SensorListenerSession>(parts_->backend.interface, parts_->settings,
                                                                      QDateTime::currentDateTime());
    connect(sensorListener_.get(), &sensor::SensorListenerSession::consoleMessage, this,
            [](const QString& message) { qCInfo(lcDesktop).noquote() << message; });
    connect(&parts_->settings, &SettingsStore::saveFailed, &sensorListener_->controller(),
            &sensor::SensorListenerController::updateListenerStatus);
}

void DesktopApplication::addSensorListenerTab()
{
    auto* listenerTab = new sensor::view::SensorListenerTab(*sensorListener_);
    mainWindow_->addTab(listenerTab, tr("Sensor Listener"));
    connect(mainWindow_.get(), &ScanMainWindow::settingChanged, listenerTab, [listenerTab](const QString& key) {
        if (key == QLatin1String(GeneralPreferences::listenerPortKey) || key == QLatin1String(GeneralPreferences::logFolderKey))
            listenerTab->readSettings();
    });
}

void DesktopApplication::showModeAlert(const QString& messageText)
{
    auto* alert = new QMessageBox(QMessageBox::Warning, QStringLiteral("Skyvane"), messageText, QMessageBox::Ok,
                                  mainWindow_.get());
    alert->setObjectName(QStringLiteral("modeChangeAlert"));
    alert->setAccessibleName(tr("Internet sharing alert"));
    alert->setTextFormat(Qt::PlainText);
    alert->setWindowModality(Qt::WindowModal);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    connect(alert, &QMessageBox::finished, reactions_, &InterfaceStateReactions::alertDidEnd);
    alert->open();
}

void DesktopApplication::quitDecided(QuitSequence::Decision decision)
{
    if (decision == QuitSequence::Decision::ShowSummary)
        showReviewWindow();
    else
        terminate();
}

void DesktopApplication::showReviewWindow()
{
    reivewController_ = new ReviewWindow(ReviewSummary::from(driver_->getConnectedNetworkDetails(), parts_->settings),
                                         mainWindow_.get());
    reivewController_->setAttribute(Qt::WA_DeleteOnClose);
    connect(reivewController_, &ReviewWindow::userDidChooseToContinue, this,
            [this] { quit_->userDidChooseToContinue(); });
    connect(reivewController_, &ReviewWindow::userDidChooseToClose, this, &DesktopApplication::terminate);
    reivewController_->show();
    reivewController_->raise();
    reivewController_->activateWindow();
}

void DesktopApplication::terminate()
{
    if (terminated_)
        return;
    terminated_ = true;
    reachability_->stop();
    driver_->cancelButtonPressed();
    driver_->waitForBackgroundWork();
    mainWindow_->saveWindowState();
    monitors_->closeAll();
    connectedSsid_.reset();
    mainWindow_->hide();
    sensorListener_->finish();
    database_->close();
    emit terminated();
}

} // namespace app::desktop
