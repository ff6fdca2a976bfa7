#include "app/desktop/connected_ssid_tab.h"

#include "app/desktop/scan_main_window.h"
#include "app/events/application_events.h"
#include "graphs/graph_style.h"
#include "interface/connected_report.h"
#include "interface/view/interface_graph_view.h"
#include "interface/interface_info_controller.h"
#include "interface/join_controller.h"
#include "interface/view/ad_hoc_sheet.h"
#include "interface/view/alert.h"
#include "interface/view/interface_tab.h"
#include "interface/view/join_sheet.h"
#include "platform/api/wireless_client.h"
#include "plot/renderer.h"
#include "scan/scanner_utils.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_test_driver.h"
#include "scanning/wifi_scan_test.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QImage>
#include <QMenu>
#include <QStatusBar>
#include <QThread>
#include <QThreadPool>

namespace app::desktop {
namespace {

// Wide enough for five minutes of samples at the report's image width.
const QSize graphImageSize(1000, 400);

} // namespace

ConnectedSsidTab::ConnectedSsidTab(Services services, ScanMainWindow& window, QObject* parent)
    : QObject(parent), services_(std::move(services)), window_(window)
{
    scanning::ScanTestDriver& driver = services_.driver;
    controller_ = std::make_unique<connection::InterfaceInfoController>(
        services_.interface, services_.timers, services_.commands, services_.toolCommand,
        [&driver] { return driver.getConnectedNetworkDetails(); });
    joins_ = std::make_unique<connection::JoinController>(services_.interface);

    const QStringList names = services_.client ? services_.client->interfaceNames() : QStringList();
    tab_ = new connection::view::InterfaceTab(*controller_, names);
    joinSheet_ = new connection::view::JoinSheet(*joins_, &window_);
    adHocSheet_ = new connection::view::AdHocSheet(*joins_, &window_);
    tab_->setExplainSources(services_.explainSources);
    window_.addTab(tab_, tr("Connected SSID"));
    window_.addAction(tab_->reportAction());

    connect(tab_, &connection::view::InterfaceTab::interfaceChosen, this, [this](const QString& name) {
        if (!services_.client)
            return;
        std::shared_ptr<platform::WirelessInterface> chosen = services_.client->interfaceWithName(name);
        if (!chosen)
            return;
        controller_->interfaceSelected(chosen);
        joins_->setInterface(chosen);
    });
    connect(&services_.results, &scanning::ResultsTableModel::joinWindowRequested, joins_.get(),
            &connection::JoinController::openFor);
    connect(tab_->createNetworkAction(), &QAction::triggered, adHocSheet_,
            &connection::view::AdHocSheet::createIBSSButtonPressed);
    // Joining and creating a network need the radio to themselves: the scans wait meanwhile.
    for (QDialog* sheet : {static_cast<QDialog*>(joinSheet_), static_cast<QDialog*>(adHocSheet_)})
        connect(sheet, &QDialog::finished, this, &ConnectedSsidTab::releaseScans);
    connect(joins_.get(), &connection::JoinController::sheetReady, this, &ConnectedSsidTab::holdScans);
    connect(tab_->createNetworkAction(), &QAction::triggered, this, &ConnectedSsidTab::holdScans);
    connect(tab_->reportAction(), &QAction::triggered, this, &ConnectedSsidTab::chooseReportPath);
    if (services_.exportMenu) {
        QAction* exportItem = services_.exportMenu->addAction(tr("Connected SSID Report…"));
        exportItem->setObjectName(QStringLiteral("exportAction5"));
        exportItem->setData(5);
        connect(exportItem, &QAction::triggered, this, &ConnectedSsidTab::chooseReportPath);
    }
    connect(&services_.events, &app::ApplicationEvents::generateInterfaceTabGraphImage, this,
            [this](const QString& path, bool generateReport) {
                if (generateReport)
                    generateConnectedSSIDReport(path);
            });
    connect(&window_, &ScanMainWindow::settingChanged, this, [this](const QString& key) {
        if (key == QLatin1String(graphs::gridLinesSettingKey))
            applyGridLinesSetting();
    });
    applyGridLinesSetting();
    controller_->startInterfaceTabGraphRefresh();
}

void ConnectedSsidTab::holdScans()
{
    // A scan the user paused stays paused after the sheet closes.
    if (scansHeld_ || services_.driver.isPaused())
        return;
    scansHeld_ = true;
    emit services_.events.pauseScanTimer();
}

void ConnectedSsidTab::releaseScans()
{
    if (!scansHeld_)
        return;
    scansHeld_ = false;
    emit services_.events.resumeScanTimer();
}

void ConnectedSsidTab::applyGridLinesSetting()
{
    tab_->graphView()->setShowGridLines(services_.settings.value(QLatin1String(graphs::gridLinesSettingKey)).toInt() != 0);
}

ConnectedSsidTab::~ConnectedSsidTab()
{
    while (reportsRunning_ > 0) {
        QThread::msleep(5);
        QCoreApplication::sendPostedEvents(this);
    }
    // The window owns the widgets, but they refer to the controllers this object owns.
    delete tab_;
    delete joinSheet_;
    delete adHocSheet_;
}

void ConnectedSsidTab::chooseReportPath()
{
    const QString suggested = QStringLiteral("skyvane-connected-ssid-report-%1.html")
                                  .arg(scan::ScannerUtils::formatDate(QStringLiteral("yyyyMMdd-HH-mm-ss"),
                                                                      QDateTime::currentDateTime()));
    QFileDialog dialog(&window_, tr("Export"), QDir::homePath() + QLatin1Char('/') + suggested,
                       tr("HTML (*.html)"));
    dialog.setObjectName(QStringLiteral("connectedReportSaveDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setLabelText(QFileDialog::Accept, tr("Export"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    emit services_.events.generateInterfaceTabGraphImage(dialog.selectedFiles().constFirst(), true);
}

void ConnectedSsidTab::generateConnectedSSIDReport(const QString& path)
{
    connection::ConnectedReportValues values;
    const auto& tests = services_.driver.wifiScanTestArray();
    if (!tests.isEmpty())
        values.scanName = tests.constFirst()->testLabel;
    values.fields = controller_->fields();
    values.record = controller_->currentNetworkDetails();
    values.signalToNoise = controller_->signalToNoise();
    const auto interface = controller_->currentInterface();
    if (interface && interface->snapshot().wlanChannel)
        values.interfaceChannel = interface->snapshot().wlanChannel->channelNumber;
    const plot::Graph graph = tab_->graphScene();
    const QDateTime now = QDateTime::currentDateTime();
    ++reportsRunning_;
    QThreadPool::globalInstance()->start([this, values, graph, path, now] {
        const QString html = connection::connectedReportHtml(connection::loadConnectedReportTemplate(), values, now);
        const connection::ConnectedReportOutcome outcome =
            connection::writeConnectedReport(path, html, now, [&graph](const QString& folder) {
                const QImage image = plot::renderImage(graph, graphImageSize);
                return image.save(folder + QLatin1Char('/') + connection::connectedGraphFileName);
            });
        QMetaObject::invokeMethod(this, [this, outcome] {
            --reportsRunning_;
            if (!outcome.htmlPath.isEmpty())
                window_.statusBar()->showMessage(tr("Connected SSID report written to %1").arg(outcome.htmlPath));
            if (!outcome.failure.isEmpty())
                connection::view::showAlert(&window_, QStringLiteral("connectedReportAlert"), outcome.failure, {});
        });
    });
}

} // namespace app::desktop
