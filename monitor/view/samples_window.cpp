#include "monitor/view/samples_window.h"

#include "monitor/view/audio_tracking_button.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

namespace monitor::view {

WiFiShowSamplesWindow::WiFiShowSamplesWindow(scanning::TimerSource& timers, std::function<void()> beep,
                                             QWidget* parent)
    : QWidget(parent, Qt::Window), schedule_(timers, std::move(beep)), headerField_(new QLabel(this)),
      samplesTable_(new QTableView(this)),
      audioTrackingButton_(new AudioTrackingButton(schedule_, [this] { return newestRssi(); }, this))
{
    setObjectName(QStringLiteral("samplesWindow"));
    setWindowTitle(QStringLiteral("Samples"));
    setAccessibleName(QStringLiteral("Samples"));

    headerField_->setObjectName(QStringLiteral("headerField"));
    headerField_->setAccessibleName(QStringLiteral("Network name"));
    // The SSID is whatever the access point broadcast: never markup.
    headerField_->setTextFormat(Qt::PlainText);
    headerField_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    samplesTable_->setObjectName(QStringLiteral("samplesTable"));
    samplesTable_->setAccessibleName(QStringLiteral("Samples"));
    samplesTable_->setModel(&model_);
    samplesTable_->setSelectionBehavior(QAbstractItemView::SelectRows);
    samplesTable_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    samplesTable_->setTabKeyNavigation(false);
    samplesTable_->verticalHeader()->hide();
    samplesTable_->horizontalHeader()->setStretchLastSection(true);

    auto* top = new QHBoxLayout;
    top->addWidget(headerField_, 1);
    top->addWidget(audioTrackingButton_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(samplesTable_, 1);
    // A window of its own rather than a dialog, so Escape is not wired up by Qt.
    new QShortcut(QKeySequence::Cancel, this, this, &QWidget::close);
    resize(560, 420);
}

WiFiShowSamplesWindow::~WiFiShowSamplesWindow() = default;

void WiFiShowSamplesWindow::showSamples(const QList<scan::ScanedResultInfo>& samples, const QString& ssid)
{
    setSSID(ssid);
    model_.setSamples(samples);
    show();
    raise();
    activateWindow();
}

void WiFiShowSamplesWindow::updateSamples(const QList<scan::ScanedResultInfo>& samples)
{
    model_.setSamples(samples);
    if (const auto rssi = newestRssi())
        schedule_.distanceChanged(*rssi);
}

void WiFiShowSamplesWindow::setSSID(const QString& ssid)
{
    headerField_->setText(QStringLiteral("SSID: %1").arg(ssid));
}

void WiFiShowSamplesWindow::scanDidStoppedByUser()
{
    audioTrackingButton_->switchOff();
}

void WiFiShowSamplesWindow::closeEvent(QCloseEvent* event)
{
    audioTrackingButton_->switchOff();
    QWidget::closeEvent(event);
}

std::optional<int> WiFiShowSamplesWindow::newestRssi() const
{
    if (model_.samples().isEmpty())
        return std::nullopt;
    return model_.samples().first().rssi;
}

} // namespace monitor::view
