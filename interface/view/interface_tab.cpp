#include "interface/view/interface_tab.h"

#include "interface/interface_info_controller.h"
#include "interface/view/alert.h"
#include "interface/view/interface_graph_view.h"

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShowEvent>
#include <QToolButton>

namespace connection::view {
namespace {

QPushButton* segment(const QString& text, const QString& objectName, const QString& accessibleName)
{
    auto* button = new QPushButton(text);
    button->setCheckable(true);
    button->setObjectName(objectName);
    button->setAccessibleName(accessibleName);
    return button;
}

} // namespace

InterfaceTab::InterfaceTab(InterfaceInfoController& controller, const QStringList& interfaceNames, QWidget* parent)
    : QWidget(parent), controller_(controller), interfacePopup_(new QComboBox), powerGroup_(new QButtonGroup(this)),
      disconnectButton_(new QPushButton(tr("Disconnect"))),
      reportAction_(new QAction(tr("Export Connected SSID Report…"), this)),
      createNetworkAction_(new QAction(tr("Create Network…"), this)), graph_(new InterfaceGraphView)
{
    setObjectName(QLatin1String(identifier));
    setAccessibleName(tr("Connected SSID"));

    interfacePopup_->setObjectName(QStringLiteral("supportedInterfacesPopup"));
    interfacePopup_->setAccessibleName(tr("Wi-Fi interface"));
    interfacePopup_->addItems(interfaceNames);
    connect(interfacePopup_, &QComboBox::currentTextChanged, this, &InterfaceTab::interfaceChosen);

    QPushButton* on = segment(tr("On"), QStringLiteral("powerOnSegment"), tr("Wi-Fi power on"));
    QPushButton* off = segment(tr("Off"), QStringLiteral("powerOffSegment"), tr("Wi-Fi power off"));
    powerGroup_->addButton(on, 0);
    powerGroup_->addButton(off, 1);
    powerGroup_->setExclusive(true);
    connect(powerGroup_, &QButtonGroup::idClicked, this, [this](int id) { controller_.changePower(id == 0); });

    disconnectButton_->setObjectName(QStringLiteral("disconnectButton"));
    disconnectButton_->setAccessibleName(tr("Disconnect from the network"));
    connect(disconnectButton_, &QPushButton::clicked, this, [this] { controller_.disconnect(); });

    reportAction_->setObjectName(QStringLiteral("connectedSSIDReportItem"));
    reportAction_->setVisible(false);
    createNetworkAction_->setObjectName(QStringLiteral("createIBSSAction"));
    auto* reportButton = new QToolButton;
    reportButton->setDefaultAction(reportAction_);
    reportButton->setObjectName(QStringLiteral("connectedSSIDReportButton"));
    reportButton->setAccessibleName(tr("Export connected SSID report"));
    auto* createButton = new QToolButton;
    createButton->setDefaultAction(createNetworkAction_);
    createButton->setObjectName(QStringLiteral("createIBSSButton"));
    createButton->setAccessibleName(tr("Create an ad-hoc network"));

    auto* bar = new QHBoxLayout;
    auto* interfaceLabel = new QLabel(tr("Interface:"));
    interfaceLabel->setBuddy(interfacePopup_);
    bar->addWidget(interfaceLabel);
    bar->addWidget(interfacePopup_);
    bar->addSpacing(12);
    bar->addWidget(new QLabel(tr("Power:")));
    bar->addWidget(on);
    bar->addWidget(off);
    bar->addWidget(disconnectButton_);
    bar->addStretch();
    bar->addWidget(createButton);
    bar->addWidget(reportButton);

    auto* linkBox = new QGroupBox(tr("Current network"));
    auto* linkForm = new QFormLayout(linkBox);
    auto* radioBox = new QGroupBox(tr("Link and capabilities"));
    auto* radioForm = new QFormLayout(radioBox);
    const InterfaceFields& f = controller_.fields();
    const auto bind = [&](QFormLayout* form, const char* name, const QString& title, const QString InterfaceFields::*member) {
        fields_.append({addField(form, QLatin1String(name), title), [&f, member] { return f.*member; }});
    };
    bind(linkForm, "ssidField", tr("SSID:"), &InterfaceFields::ssid);
    bind(linkForm, "bssidField", tr("BSSID:"), &InterfaceFields::bssid);
    bind(linkForm, "securityModeField", tr("Security:"), &InterfaceFields::securityMode);
    bind(linkForm, "opModeField", tr("Mode:"), &InterfaceFields::opMode);
    bind(linkForm, "countryCodeField", tr("Country:"), &InterfaceFields::countryCode);
    bind(linkForm, "rssiField", tr("RSSI:"), &InterfaceFields::rssi);
    bind(linkForm, "noiseField", tr("Noise:"), &InterfaceFields::noise);
    bind(linkForm, "channelField", tr("Channel:"), &InterfaceFields::channel);
    bind(radioForm, "phyModeField", tr("PHY mode:"), &InterfaceFields::phyMode);
    bind(radioForm, "txRateField", tr("Transmit rate:"), &InterfaceFields::txRate);
    bind(radioForm, "txPowerField", tr("Transmit power:"), &InterfaceFields::txPower);
    bind(radioForm, "mcsIndex", tr("MCS index:"), &InterfaceFields::mcsIndex);
    bind(radioForm, "streamValue", tr("Streams:"), &InterfaceFields::streams);
    bind(radioForm, "supportedPHYModesField", tr("Supported PHY modes:"), &InterfaceFields::supportedPHYModes);
    bind(radioForm, "supportedDataRates", tr("Supported data rates:"), &InterfaceFields::supportedDataRates);
    bind(radioForm, "supportedChannelsField", tr("Supported channels:"), &InterfaceFields::supportedChannels);

    auto* boxes = new QHBoxLayout;
    boxes->addWidget(linkBox, 1);
    boxes->addWidget(radioBox, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addLayout(boxes);
    graph_->setMinimumHeight(220);
    layout->addWidget(graph_, 1);

    connect(&controller_, &InterfaceInfoController::fieldsChanged, this, &InterfaceTab::showFields);
    // Samples accumulate on every tab; the graph is redrawn only while it can be seen.
    connect(&controller_, &InterfaceInfoController::samplesChanged, this, [this] {
        if (controller_.isTabShown())
            graph_->setSamples(controller_.graphDataPoints());
    });
    connect(&controller_, &InterfaceInfoController::reportItemVisibleChanged, reportAction_, &QAction::setVisible);
    connect(&controller_, &InterfaceInfoController::actionFailed, this, [this](const platform::PlatformError& error) {
        showAlert(this, QStringLiteral("interfaceActionAlert"), error.description,
                  QStringList{error.failureReason, error.recoverySuggestion}.join(QLatin1Char('\n')).trimmed());
    });
    showFields();
}

QLabel* InterfaceTab::addField(QFormLayout* form, const QString& objectName, const QString& title)
{
    auto* value = new QLabel;
    value->setObjectName(objectName);
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    value->setWordWrap(true);
    value->setAccessibleName(QString(title).remove(QLatin1Char(':')));
    form->addRow(title, value);
    return value;
}

const plot::Graph& InterfaceTab::graphScene() const
{
    return graph_->scene();
}

void InterfaceTab::setExplainSources(bool explain)
{
    explain_ = explain;
    showFields();
}

QString InterfaceTab::fieldText(const QString& objectName) const
{
    for (const auto& [label, text] : fields_) {
        if (label->objectName() == objectName)
            return label->text();
    }
    return {};
}

void InterfaceTab::showFields()
{
    for (const auto& [label, text] : fields_) {
        if (!explain_) {
            label->setText(text());
            continue;
        }
        const QString source = controller_.fieldSources().value(label->objectName());
        label->setText(QStringLiteral("%1   [%2]").arg(text(), source));
        label->setToolTip(source);
        label->setAccessibleDescription(source);
    }
    const InterfaceFields& f = controller_.fields();
    if (QAbstractButton* segment = powerGroup_->button(f.powerSegment))
        segment->setChecked(true);
    disconnectButton_->setEnabled(f.disconnectEnabled);
    if (controller_.currentInterface()) {
        const QString name = controller_.currentInterface()->interfaceName();
        if (interfacePopup_->currentText() != name) {
            const QSignalBlocker quiet(interfacePopup_);
            interfacePopup_->setCurrentText(name);
        }
    }
}

// A tab widget shows only the selected tab, so showing and hiding follow the selection; a
// minimised window's hide is not a change of tab.
void InterfaceTab::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous() && !controller_.isTabShown())
        controller_.setTabShown(true);
}

void InterfaceTab::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous() && controller_.isTabShown())
        controller_.setTabShown(false);
}

} // namespace connection::view
