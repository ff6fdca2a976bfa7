#include "sensor/view/sensor_listener_tab.h"

#include "sensor/sensor_listener_session.h"
#include "sensor/view/sensor_log_view.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QUrl>
#include <QVBoxLayout>

namespace sensor::view {
namespace {

template <typename Widget>
Widget* named(Widget* widget, const char* objectName, const QString& accessibleName)
{
    widget->setObjectName(QLatin1String(objectName));
    widget->setAccessibleName(accessibleName);
    return widget;
}

// A label whose text is the information: screen readers read its text as its name, so what it
// is goes into the description.
QLabel* plainLabel(const char* objectName, const QString& description, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(objectName));
    label->setAccessibleDescription(description);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

SensorListenerTab::SensorListenerTab(sensor::SensorListenerSession& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      chooseFolder_([](QWidget* dialogParent, const QString& start) {
          return QFileDialog::getExistingDirectory(dialogParent, tr("Folder for sensor log files"), start);
      }),
      udpListenerPortTextField_(named(new QSpinBox(this), "udpListenerPortTextField", tr("Port"))),
      listenerTypeSelector_(new QButtonGroup(this)),
      startListenerButton_(named(new QPushButton(this), "startListenerButton", QString())),
      serverIPLabel_(plainLabel("serverIPLabel", tr("Server address"), this)),
      logFilePathTextField_(named(new QLineEdit(this), "logFilePathTextField", tr("Log folder"))),
      listenerLabelTextField_(plainLabel("listenerLabelTextField", tr("Listener status"), this)),
      consoleLabel_(plainLabel("listenerConsoleLabel", tr("Listener details"), this)),
      logView_(new SensorLogView(this))
{
    setObjectName(QStringLiteral("sensorListenerTab"));
    setAccessibleName(tr("Sensor listener"));
    SensorListenerController& controller = session_.controller();

    udpListenerPortTextField_->setRange(0, 65535);
    udpListenerPortTextField_->setValue(controller.port());
    udpListenerPortTextField_->setButtonSymbols(QAbstractSpinBox::NoButtons);
    connect(udpListenerPortTextField_, &QSpinBox::valueChanged, &controller, &SensorListenerController::setPort);
    auto* portLabel = named(new QLabel(tr("&Port:"), this), "portLabel", tr("Port"));
    portLabel->setBuddy(udpListenerPortTextField_);

    auto* tcp = named(new QRadioButton(tr("&TCP"), this), "tcpListenerType", tr("TCP"));
    auto* udp = named(new QRadioButton(tr("&UDP"), this), "udpListenerType", tr("UDP"));
    listenerTypeSelector_->addButton(tcp, SensorListenerController::TCPListenerType);
    listenerTypeSelector_->addButton(udp, SensorListenerController::UDPListenerType);
    if (QAbstractButton* selected = listenerTypeSelector_->button(controller.selectedListenerType()))
        selected->setChecked(true);
    connect(listenerTypeSelector_, &QButtonGroup::idToggled, &controller, [&controller](int id, bool checked) {
        if (checked)
            controller.setSelectedListenerType(id);
    });

    // Not checkable: assistive tools toggle a checkable button without clicking it.
    connect(startListenerButton_, &QPushButton::clicked, this, [this] {
        // Details of an earlier start or stop would read as this one's.
        consoleLabel_->clear();
        session_.controller().startListenerButtonClicked();
    });
    connect(&controller, &SensorListenerController::buttonsChanged, this, &SensorListenerTab::showButtons);

    connect(&controller, &SensorListenerController::serverIPLabelChanged, this, &SensorListenerTab::showServerIPLabel);

    logFilePathTextField_->setReadOnly(true);
    logFilePathTextField_->setPlaceholderText(tr("No folder chosen"));
    readSettings();
    auto* folderLabel = named(new QLabel(tr("Log &folder:"), this), "logFolderLabel", tr("Log folder"));
    folderLabel->setBuddy(logFilePathTextField_);
    auto* chooseButton = named(new QPushButton(tr("&Choose…"), this), "openFileDialogButton", tr("Choose log folder"));
    connect(chooseButton, &QPushButton::clicked, this, &SensorListenerTab::openFileDialogButtonClicked);
    auto* clearButton = named(new QPushButton(tr("C&lear Log"), this), "clearListenerLogButton", tr("Clear log"));
    connect(clearButton, &QPushButton::clicked, &session_.log(), &SensorLog::clearListenerLogFiles);

    listenerLabelTextField_->setWordWrap(true);
    listenerLabelTextField_->setText(controller.listenerStatus());
    connect(&controller, &SensorListenerController::statusChanged, listenerLabelTextField_, &QLabel::setText);
    consoleLabel_->setWordWrap(true);
    consoleLabel_->setForegroundRole(QPalette::PlaceholderText);
    connect(&session_, &SensorListenerSession::consoleMessage, consoleLabel_, &QLabel::setText);

    connect(&session_.log(), &SensorLog::logAppended, logView_, &SensorLogView::appendText);
    connect(&session_.log(), &SensorLog::logCleared, logView_, &SensorLogView::clearLog);
    if (!session_.log().isEmpty())
        logView_->appendText(session_.log().newestLines(SensorLogView::keptLines).join(u'\n') + u'\n');

    auto* controls = new QGridLayout;
    controls->addWidget(portLabel, 0, 0);
    auto* listenerRow = new QHBoxLayout;
    listenerRow->addWidget(udpListenerPortTextField_);
    listenerRow->addWidget(tcp);
    listenerRow->addWidget(udp);
    listenerRow->addWidget(startListenerButton_);
    listenerRow->addWidget(serverIPLabel_);
    listenerRow->addStretch();
    controls->addLayout(listenerRow, 0, 1);
    controls->addWidget(folderLabel, 1, 0);
    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(logFilePathTextField_, 1);
    folderRow->addWidget(chooseButton);
    folderRow->addWidget(clearButton);
    controls->addLayout(folderRow, 1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls);
    layout->addWidget(listenerLabelTextField_);
    layout->addWidget(consoleLabel_);
    layout->addWidget(logView_, 1);

    setTabOrder(udpListenerPortTextField_, tcp);
    setTabOrder(tcp, startListenerButton_);
    setTabOrder(startListenerButton_, logFilePathTextField_);
    setTabOrder(logFilePathTextField_, chooseButton);
    setTabOrder(chooseButton, clearButton);
    setTabOrder(clearButton, logView_);

    showButtons();
    showServerIPLabel();
}

void SensorListenerTab::readSettings()
{
    logFilePathTextField_->setText(QDir::toNativeSeparators(SensorLogFile::folderForSetting(
        session_.settings().value(QLatin1String(SensorLogFile::folderSettingKey)))));
    // A running listener keeps its port; the field follows once it stops.
    const std::optional<int> port = sensor::SensorListenerController::portForSetting(
        session_.settings().value(QLatin1String(sensor::SensorListenerController::portSettingKey)));
    if (port && udpListenerPortTextField_->isEnabled())
        udpListenerPortTextField_->setValue(*port);
}

void SensorListenerTab::setLogFolder(const QString& folder)
{
    session_.settings().setValue(QLatin1String(SensorLogFile::folderSettingKey),
                                 QUrl::fromLocalFile(folder).toString());
    logFilePathTextField_->setText(QDir::toNativeSeparators(folder));
}

void SensorListenerTab::openFileDialogButtonClicked()
{
    const QString shown = logFilePathTextField_->text();
    const QString folder = chooseFolder_(this, shown.isEmpty() ? QDir::homePath() : shown);
    if (!folder.isEmpty())
        setLogFolder(folder);
}

void SensorListenerTab::showButtons()
{
    const SensorListenerController& controller = session_.controller();
    startListenerButton_->setText(controller.startListenerButtonTitle());
    // Read out as what a press does.
    startListenerButton_->setAccessibleName(controller.startListenerButtonTitle());
    startListenerButton_->setDefault(controller.startListenerButtonHighlighted());
    udpListenerPortTextField_->setEnabled(controller.listenerSettingsEnabled());
    for (QAbstractButton* type : listenerTypeSelector_->buttons())
        type->setEnabled(controller.listenerSettingsEnabled());
}

void SensorListenerTab::showServerIPLabel()
{
    const SensorListenerController& controller = session_.controller();
    serverIPLabel_->setText(controller.serverIPLabel());
    serverIPLabel_->setVisible(controller.serverIPLabelVisible());
}

} // namespace sensor::view
