#include "graphs/view/network_details_tab.h"

#include "graphs/network_details_model.h"
#include "graphs/signal_annotation.h"
#include "graphs/view/graph_scenes.h"
#include "graphs/view/scene_style.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <cmath>

namespace graphs::view {

namespace {

QLabel* valueLabel(const QString& objectName, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    return label;
}

} // namespace

NetworkDetailsTab::NetworkDetailsTab(NetworkDetailsModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      view_(new GraphView(
          QStringLiteral("networkDetailsGraph"), tr("Network details graph"),
          [&model](const GraphTheme& theme) { return detailsScene(model, theme); },
          [&model] {
              return model.visibleBSSID().isEmpty()
                         ? tr("Network details graph, no network examined")
                         : tr("Network details graph, signal and noise of %1, %n samples", nullptr,
                              static_cast<int>(model.sampledData().size()))
                               .arg(model.visibleBSSID());
          },
          this)),
      channel_(valueLabel(QStringLiteral("channelValue"), this)),
      rates_(valueLabel(QStringLiteral("supportedDataRateValue"), this)),
      snr_(valueLabel(QStringLiteral("snrValue"), this)),
      streams_(valueLabel(QStringLiteral("streamsValue"), this)),
      showSamples_(new QPushButton(tr("Show Samples"), this))
{
    setObjectName(QStringLiteral("networkDetailsTab"));
    channel_->setAccessibleName(tr("Channel"));
    rates_->setAccessibleName(tr("Data rates"));
    snr_->setAccessibleName(tr("Signal to noise ratio"));
    streams_->setAccessibleName(tr("Streams"));
    showSamples_->setObjectName(QStringLiteral("showSamplesButton"));
    showSamples_->setAccessibleName(tr("Show samples"));
    connect(showSamples_, &QPushButton::clicked, this, [this] {
        if (!model_.visibleBSSID().isEmpty())
            emit samplesWindowRequested(model_.samplesHeader(), model_.sampledData());
    });

    auto* fields = new QFormLayout;
    fields->addRow(tr("Channel:"), channel_);
    fields->addRow(tr("Data Rates:"), rates_);
    fields->addRow(tr("SNR:"), snr_);
    fields->addRow(tr("Streams:"), streams_);
    fields->addRow(showSamples_);
    auto* side = new QWidget(this);
    side->setLayout(fields);
    side->setMaximumWidth(260);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(view_, 1);
    row->addWidget(side);

    connect(&model_, &NetworkDetailsModel::changed, this, [this] {
        view_->refreshSoon();
        updateView();
        showAnnotation(annotated_);
    });
    connect(&model_, &NetworkDetailsModel::annotationMoved, this, &NetworkDetailsTab::showAnnotation);
    connect(view_, &plot::widget::PlotView::mouseMovedTo, this, &NetworkDetailsTab::followMouse);
    connect(view_, &plot::widget::PlotView::stepRequested, this, &NetworkDetailsTab::step);
    connect(view_, &plot::widget::PlotView::dismissRequested, this, [this] { showAnnotation(-1); });
    updateView();
}

void NetworkDetailsTab::updateView()
{
    const DetailsTexts texts = model_.texts();
    channel_->setText(texts.channel);
    rates_->setText(texts.dataRates);
    snr_->setText(texts.snr);
    streams_->setText(texts.streams);
    showSamples_->setEnabled(!model_.visibleBSSID().isEmpty());
}

void NetworkDetailsTab::followMouse(const QPointF& spot)
{
    const QList<DetailsLine> lines = model_.lines();
    if (lines.isEmpty() || lines.first().points.isEmpty())
        return;
    int nearest = 0;
    const QList<QPointF>& points = lines.first().points;
    for (int i = 1; i < points.size(); ++i) {
        if (std::abs(points[i].x() - spot.x()) < std::abs(points[nearest].x() - spot.x()))
            nearest = i;
    }
    if (nearest != annotated_)
        showAnnotation(nearest);
}

void NetworkDetailsTab::step(plot::widget::PlotView::Step step)
{
    const QList<DetailsLine> lines = model_.lines();
    if (lines.isEmpty())
        return;
    const int index = view_->steppedAlong(lines.first().points, annotated_, step);
    if (index != annotated_)
        showAnnotation(index);
}

void NetworkDetailsTab::showAnnotation(int index)
{
    const QList<scan::ScanedResultInfo>& samples = model_.sampledData();
    const QList<DetailsLine> lines = model_.lines();
    if (index < 0 || index >= samples.size() || lines.isEmpty() || index >= lines.first().points.size()) {
        annotated_ = -1;
        view_->clearOverlay();
        view_->setPointedAt({});
        return;
    }
    annotated_ = index;
    SignalAnnotation annotation;
    annotation.showNoise = true;
    annotation.showSNR = true;
    const QPointF at = lines.first().points.at(index);
    // The line through a sample of "Signal" keeps that plot's own colour.
    SelectionLine line{{at.x(), signalFloorDbm}, {at.x(), 0.0}, lines.first().lineColour};
    const QString text = annotation.text(&samples.at(index));
    view_->setOverlay({selectionLinePlot(line)}, annotationAt(text, at, view_->theme()));
    view_->setPointedAt(text);
}

} // namespace graphs::view
