#include "monitor/view/monitor_window_panel.h"

#include "monitor/view/audio_tracking_button.h"
#include "monitor/view/monitor_graph.h"
#include "plot/widget/plot_view.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace monitor::view {

MonitorWindowPanel::MonitorWindowPanel(scan::ScanedResultInfo selectedNetwork,
                                       std::shared_ptr<platform::WirelessInterface> interface, int refreshInterval,
                                       scanning::TimerSource& timers, std::function<void()> beep,
                                       const QString& location, QWidget* parent)
    : QWidget(parent, Qt::Window),
      monitor_(std::move(selectedNetwork), std::move(interface), refreshInterval, timers, std::move(beep))
{
    setObjectName(QStringLiteral("monitorWindow"));
    auto* form = new QFormLayout;
    monitorNetworkName_ = addField(form, QStringLiteral("Network Name:"), "monitorNetworkName");
    monitorNetworkBSSID_ = addField(form, QStringLiteral("BSSID:"), "monitorNetworkBSSID");
    monitorNetworkSecurity_ = addField(form, QStringLiteral("Security:"), "monitorNetworkSecurity");
    monitorNetworkChannel_ = addField(form, QStringLiteral("Channel:"), "monitorNetworkChannel");
    monitorNetworkSignal_ = addField(form, QStringLiteral("Signal, Noise (SNR):"), "monitorNetworkSignal");
    monitorNetworkPHY_ = addField(form, QStringLiteral("PHY Mode:"), "monitorNetworkPHY");
    monitorNetworkIBSS_ = addField(form, QStringLiteral("IBSS:"), "monitorNetworkIBSS");
    monitorVendorName_ = addField(form, QStringLiteral("Vendor:"), "monitorVendorName");
    monitorLocation_ = addField(form, QStringLiteral("Location:"), "monitorLocation");
    monitorLocation_->setText(location);

    monitorSpinner_ = new QProgressBar(this);
    monitorSpinner_->setObjectName(QStringLiteral("monitorSpinner"));
    monitorSpinner_->setAccessibleName(QStringLiteral("Rescanning"));
    monitorSpinner_->setRange(0, 0);
    monitorSpinner_->setMaximumWidth(80);
    monitorSpinner_->setTextVisible(false);
    monitorSpinner_->hide();

    graphHost_ = new plot::widget::PlotView(this);
    graphHost_->setObjectName(QStringLiteral("monitorGraph"));
    graphHost_->setAccessibleName(QStringLiteral("Signal and noise graph"));

    auto* legend = new QLabel(QStringLiteral("Yellow Line = Signal, White Line = Noise"), this);
    legend->setObjectName(QStringLiteral("monitorLegend"));
    legend->setTextFormat(Qt::PlainText);
    legend->setAlignment(Qt::AlignCenter);

    beeperSwitch_ = new AudioTrackingButton(monitor_.beeper(), [this] { return monitor_.selectedNetwork().rssi; }, this);
    beeperSwitch_->setObjectName(QStringLiteral("beeperSwitch"));
    auto* closeButton = new QPushButton(QStringLiteral("Close"), this);
    closeButton->setObjectName(QStringLiteral("monitorCloseButton"));
    closeButton->setAccessibleName(QStringLiteral("Close monitor"));
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    // A window of its own rather than a dialog, so Escape is not wired up by Qt.
    new QShortcut(QKeySequence::Cancel, this, this, &QWidget::close);

    auto* controls = new QHBoxLayout;
    controls->addWidget(beeperSwitch_);
    controls->addWidget(monitorSpinner_);
    controls->addStretch(1);
    controls->addWidget(closeButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(graphHost_, 1);
    layout->addWidget(legend);
    layout->addLayout(controls);

    connect(&monitor_, &NetworkMonitor::rescanStarted, monitorSpinner_, &QWidget::show);
    connect(&monitor_, &NetworkMonitor::rescanned, this, [this] {
        monitorSpinner_->hide();
        showTexts();
        showGraph();
    });
    showTexts();
    resize(640, 620);
}

MonitorWindowPanel::~MonitorWindowPanel() = default;

QLabel* MonitorWindowPanel::addField(QFormLayout* form, const QString& caption, const char* objectName)
{
    auto* field = new QLabel(this);
    field->setObjectName(QString::fromLatin1(objectName));
    field->setAccessibleName(QString(caption).remove(QLatin1Char(':')));
    // SSIDs and vendor names come from the air: shown as they are, never as markup.
    field->setTextFormat(Qt::PlainText);
    field->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    form->addRow(caption, field);
    return field;
}

void MonitorWindowPanel::initWindowToShow()
{
    monitor_.initWindowToShow();
    setWindowTitle(monitor_.windowTitle());
    showGraph();
    show();
    raise();
    // Opened from the keyboard (Ctrl+M), it should take the keys next, Escape included.
    activateWindow();
}

void MonitorWindowPanel::closeEvent(QCloseEvent* event)
{
    monitor_.close();
    beeperSwitch_->switchOff();
    QWidget::closeEvent(event);
}

void MonitorWindowPanel::showTexts()
{
    const MonitorTexts& texts = monitor_.texts();
    monitorNetworkName_->setText(texts.name);
    monitorNetworkSecurity_->setText(texts.security);
    monitorNetworkChannel_->setText(texts.channel);
    monitorNetworkSignal_->setText(texts.signal);
    monitorNetworkBSSID_->setText(texts.bssid);
    monitorNetworkPHY_->setText(texts.phy);
    monitorNetworkIBSS_->setText(texts.ibss);
    monitorVendorName_->setText(texts.vendor);
}

void MonitorWindowPanel::showGraph()
{
    graphHost_->setGraph(monitorGraph(monitor_.graphPointsForMonitor()));
    const auto& signal = monitor_.graphPointsForMonitor().dataPoints();
    graphHost_->setAccessibleDescription(
        signal.isEmpty() ? QStringLiteral("No samples yet")
                         : QStringLiteral("%1 samples, newest %2 dBm").arg(signal.size()).arg(signal.first()));
}

} // namespace monitor::view
