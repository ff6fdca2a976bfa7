#include "app/desktop/desktop_application.h"

#include "app/cli/cli_arguments.h"
#include "app/desktop/connected_ssid_tab.h"
#include "app/desktop/general_preferences.h"
#include "app/desktop/interface_state_reactions.h"
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
#include "scanning/view/export_menu.h"
#include "scanning/view/scanner_tab.h"

#include <QCoreApplication>
#include <QDir>
#include <QMessageBox>
#include <QThread>

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
    graphTabs_ = new graphs::view::GraphTabWidget(*graphs_, tab);
    tab->setGraphPane(graphTabs_);
    reportImages_ = std::make_unique<graphs::view::ReportGraphImages>(*graphs_);
    tab->exporter()->setReportGraphs(reportImages_->reportGraphs());
    mainWindow_ = std::make_unique<ScanMainWindow>(tab, parts_->settings, parts_->backend.statusText);
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

    mainWindow_->show();

    // Observers of the launch notification must not assume the GUI thread.
    launchAnnouncer_.reset(QThread::create([events = &parts_->events] { emit events->appFinishLaunching(); }));
    launchAnnouncer_->start();
    return true;
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
    driver_->cancelButtonPressed();
    driver_->waitForBackgroundWork();
    mainWindow_->saveWindowState();
    connectedSsid_.reset();
    mainWindow_->hide();
    database_->close();
    emit terminated();
}

} // namespace app::desktop
