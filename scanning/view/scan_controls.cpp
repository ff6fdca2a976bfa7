#include "scanning/view/scan_controls.h"

#include "scanning/scan_test_driver.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace scanning::view {

namespace {

QLabel* plainLabel(const QString& name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setAccessibleName(name);
    // Scan errors carry the platform's words, which nobody here wrote.
    label->setTextFormat(Qt::PlainText);
    return label;
}

QToolButton* buttonFor(QAction* action, const QString& name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setDefaultAction(action);
    button->setObjectName(name);
    button->setAccessibleName(action->text());
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

} // namespace

const QList<int>& ScanControls::intervalChoices()
{
    static const QList<int> seconds{1, 2, 3, 5, 10, 15, 30, 60};
    return seconds;
}

ScanControls::ScanControls(scanning::ScanTestDriver& driver, QWidget* parent)
    : QWidget(parent),
      driver_(driver),
      startPause_(new QAction(driver.runButtonTitle(), this)),
      stop_(new QAction(tr("Stop Scan"), this)),
      interval_(new QComboBox(this)),
      spinner_(new QProgressBar(this)),
      count_(plainLabel(QStringLiteral("countLabel"), this)),
      message_(plainLabel(QStringLiteral("messageLabel"), this))
{
    startPause_->setObjectName(QStringLiteral("startPauseAction"));
    startPause_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    stop_->setObjectName(QStringLiteral("stopAction"));
    stop_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Period));
    connect(startPause_, &QAction::triggered, &driver_, &scanning::ScanTestDriver::scanButtonPressed);
    connect(stop_, &QAction::triggered, &driver_, &scanning::ScanTestDriver::cancelButtonPressed);

    interval_->setObjectName(QStringLiteral("intervalSelector"));
    interval_->setAccessibleName(tr("Scan interval"));
    for (int seconds : intervalChoices())
        interval_->addItem(tr("%n second(s)", nullptr, seconds), seconds);
    interval_->setCurrentIndex(std::max(0, interval_->findData(driver_.refreshIntervalSeconds())));
    driver_.setRefreshIntervalSeconds(interval_->currentData().toInt());
    connect(interval_, &QComboBox::currentIndexChanged, this,
            [this] { driver_.setRefreshIntervalSeconds(interval_->currentData().toInt()); });
    interval_->setEnabled(driver_.intervalSelectorEnabled());
    connect(&driver_, &scanning::ScanTestDriver::intervalSelectorEnabledChanged, interval_, &QWidget::setEnabled);

    spinner_->setObjectName(QStringLiteral("scanSpinner"));
    spinner_->setAccessibleName(tr("Scanning"));
    spinner_->setRange(0, 0);  // an endless bar is Qt's busy indicator
    spinner_->setTextVisible(false);
    spinner_->setMaximumWidth(60);
    spinner_->setVisible(driver_.spinnerVisible());
    connect(&driver_, &scanning::ScanTestDriver::spinnerChanged, spinner_, &QWidget::setVisible);

    count_->setText(driver_.countLabel());
    connect(&driver_, &scanning::ScanTestDriver::countLabelChanged, count_, &QLabel::setText);
    message_->setText(driver_.messageLabel());
    connect(&driver_, &scanning::ScanTestDriver::messageLabelChanged, this, &ScanControls::showMessage);

    connect(&driver_, &scanning::ScanTestDriver::runButtonChanged, this, &ScanControls::showRunButton);
    showRunButton(driver_.runButtonTag(), driver_.runButtonTitle());

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(interval_);
    layout->addWidget(buttonFor(startPause_, QStringLiteral("startPauseButton"), this));
    layout->addWidget(buttonFor(stop_, QStringLiteral("stopButton"), this));
    layout->addWidget(spinner_);
    layout->addWidget(count_);
    layout->addWidget(message_, 1);
}

void ScanControls::showMessage(const QString& text) { message_->setText(text); }

void ScanControls::showRunButton(int tag, const QString& title)
{
    startPause_->setText(title);
    startPause_->setData(tag);
    stop_->setEnabled(tag != scanning::ScanTestDriver::Idle);
    for (QToolButton* button : findChildren<QToolButton*>()) {
        if (button->defaultAction() == startPause_)
            button->setAccessibleName(title);
    }
}

} // namespace scanning::view
