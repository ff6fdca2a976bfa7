#include "app/desktop/preferences_window.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace app::desktop {
namespace {

const QString frameTopLeftKey = QStringLiteral("MASPreferences Frame Top Left");
const QString selectedPaneKey = QStringLiteral("MASPreferences Selected Identifier View");
const QString generalPaneId = QStringLiteral("GeneralPreferences");

} // namespace

PreferencesWindow::PreferencesWindow(core::UserSettings& settings, QWidget* parent)
    : QWidget(parent, Qt::Window), settings_(settings), general_(settings),
      chooseFolder_([](QWidget* owner, const QString& start) {
          return QFileDialog::getExistingDirectory(owner, tr("Choose the log folder"), start);
      })
{
    setObjectName(QStringLiteral("preferencesWindow"));
    setWindowTitle(QStringLiteral("Skyvane Preferences"));
    setAccessibleName(QStringLiteral("Skyvane Preferences"));
    connect(&general_, &GeneralPreferences::settingChanged, this, &PreferencesWindow::settingChanged);

    panes_ = new QTabWidget(this);
    panes_->setObjectName(QStringLiteral("preferencesPanes"));
    panes_->setAccessibleName(tr("Preference panes"));
    generalPane_ = buildGeneralPane();
    panes_->addTab(generalPane_, tr("General"));

    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("preferencesMessage"));
    message_->setAccessibleName(tr("Message"));
    message_->setTextFormat(Qt::PlainText);
    message_->setWordWrap(true);
    message_->hide();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(panes_);
    layout->addWidget(message_);

    // The pane is remembered although General is the only one, so a later pane opens where the user left.
    const QString selected = settings_.value(selectedPaneKey).toString();
    for (int index = 0; index < panes_->count(); ++index) {
        if (panes_->widget(index)->objectName() == selected)
            panes_->setCurrentIndex(index);
    }
    connect(panes_, &QTabWidget::currentChanged, this, [this](int index) {
        settings_.setValue(selectedPaneKey, panes_->widget(index)->objectName());
    });
    settings_.setValue(selectedPaneKey, panes_->currentWidget()->objectName());
    restorePosition();
}

void PreferencesWindow::setFolderChooser(FolderChooser chooser) { chooseFolder_ = std::move(chooser); }

QWidget* PreferencesWindow::buildGeneralPane()
{
    auto* pane = new QWidget;
    pane->setObjectName(generalPaneId);
    pane->setAccessibleName(tr("General"));
    auto* form = new QFormLayout(pane);

    addSwitch(form, GeneralPreferences::gridLinesKey, QStringLiteral("showGridLinesOnGraphCheckBox"),
              tr("Show grid lines on graphs"));
    addSwitch(form, GeneralPreferences::rssiValuesKey, QStringLiteral("showRSSIValueOnGraphCheckBox"),
              tr("Show RSSI values on the signal graph"));
    addSwitch(form, GeneralPreferences::summaryWindowKey, QStringLiteral("showSummaryWindowCheckBox"),
              tr("Show the summary window when quitting"));
    addSwitch(form, GeneralPreferences::mergeResultsKey, QStringLiteral("mergeScanResultsCheckBox"),
              tr("Merge scan results of networks with the same name"));

    auto* fontSize = new QSpinBox(pane);
    fontSize->setObjectName(QStringLiteral("fontSizeSpinBox"));
    fontSize->setAccessibleName(tr("Table font size"));
    fontSize->setRange(GeneralPreferences::minimumFontSize, GeneralPreferences::maximumFontSize);
    fontSize->setValue(general_.fontSize());
    // Typing "14" must not apply 1 on the way.
    fontSize->setKeyboardTracking(false);
    connect(fontSize, &QSpinBox::valueChanged, &general_, &GeneralPreferences::setFontSize);
    form->addRow(tr("Table font size:"), fontSize);

    portField_ = new QLineEdit(general_.listenerPort(), pane);
    portField_->setObjectName(QStringLiteral("listenerPortField"));
    portField_->setAccessibleName(tr("Listener port"));
    connect(portField_, &QLineEdit::editingFinished, this, &PreferencesWindow::commitListenerPort);
    form->addRow(tr("Listener port:"), portField_);

    logFolderField_ = new QLineEdit(general_.logFolder(), pane);
    logFolderField_->setObjectName(QStringLiteral("logFolderField"));
    logFolderField_->setAccessibleName(tr("Log folder"));
    connect(logFolderField_, &QLineEdit::editingFinished, this,
            [this] { general_.setLogFolder(logFolderField_->text().trimmed()); });
    auto* choose = new QPushButton(tr("Choose…"), pane);
    choose->setObjectName(QStringLiteral("chooseLogFolderButton"));
    choose->setAccessibleName(tr("Choose the log folder"));
    connect(choose, &QPushButton::clicked, this, &PreferencesWindow::chooseLogFolder);
    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(logFolderField_, 1);
    folderRow->addWidget(choose);
    form->addRow(tr("Log folder:"), folderRow);

    intervalField_ = new QLineEdit(general_.autoSaveInterval(), pane);
    intervalField_->setObjectName(QStringLiteral("autoSaveIntervalField"));
    intervalField_->setAccessibleName(tr("Log auto-save interval in seconds"));
    connect(intervalField_, &QLineEdit::editingFinished, this, &PreferencesWindow::commitAutoSaveInterval);
    form->addRow(tr("Auto-save the log every (seconds):"), intervalField_);
    return pane;
}

QCheckBox* PreferencesWindow::addSwitch(QFormLayout* form, const char* key, const QString& objectName,
                                        const QString& text)
{
    auto* box = new QCheckBox(text, form->parentWidget());
    box->setObjectName(objectName);
    box->setAccessibleName(text);
    box->setChecked(general_.isOn(QLatin1String(key)));
    connect(box, &QCheckBox::toggled, this, [this, key](bool on) { general_.setOn(QLatin1String(key), on); });
    form->addRow(box);
    return box;
}

void PreferencesWindow::commitListenerPort() { showRefusal(general_.setListenerPort(portField_->text())); }

void PreferencesWindow::commitAutoSaveInterval()
{
    showRefusal(general_.setAutoSaveInterval(intervalField_->text()));
}

void PreferencesWindow::chooseLogFolder()
{
    const QString folder = chooseFolder_(this, logFolderField_->text());
    if (folder.isEmpty())
        return;
    logFolderField_->setText(folder);
    general_.setLogFolder(folder);
}

void PreferencesWindow::showRefusal(const QString& reason)
{
    message_->setText(reason);
    message_->setVisible(!reason.isEmpty());
}

void PreferencesWindow::restorePosition()
{
    const QRegularExpression point(QStringLiteral("^\\{\\s*(-?\\d+)\\s*,\\s*(-?\\d+)\\s*\\}$"));
    const QRegularExpressionMatch match = point.match(settings_.value(frameTopLeftKey).toString());
    if (match.hasMatch())
        move(match.captured(1).toInt(), match.captured(2).toInt());
}

void PreferencesWindow::hideEvent(QHideEvent* event)
{
    settings_.setValue(frameTopLeftKey, QStringLiteral("{%1, %2}").arg(x()).arg(y()));
    QWidget::hideEvent(event);
}

} // namespace app::desktop
