#include "graphs/view/signal_history_tab.h"

#include "graphs/signal_history_model.h"
#include "graphs/view/graph_scenes.h"

#include <QVBoxLayout>

#include <cmath>

namespace graphs::view {

SignalHistoryTab::SignalHistoryTab(SignalHistoryModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      view_(new GraphView(
          QStringLiteral("signalHistoryGraph"), tr("Signal history graph"),
          [&model](const GraphTheme& theme) { return historyScene(model, theme); },
          [&model] { return tr("Signal history graph, %n networks", nullptr, static_cast<int>(model.plotIdentifiers().size())); },
          this))
{
    setObjectName(QStringLiteral("signalHistoryTab"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    connect(&model_, &SignalHistoryModel::changed, this, [this] {
        view_->refreshSoon();
        // The samples under the annotation moved with the scan; a new highlight starts without.
        if (model_.highlightedGraphID().isEmpty())
            showAnnotation(-1);
        else
            showAnnotation(annotated_);
    });
    connect(&model_, &SignalHistoryModel::annotationMoved, this, &SignalHistoryTab::showAnnotation);
    connect(view_, &plot::widget::PlotView::mouseMovedTo, this, &SignalHistoryTab::followMouse);
    connect(view_, &plot::widget::PlotView::stepRequested, this, &SignalHistoryTab::step);
    connect(view_, &plot::widget::PlotView::dismissRequested, this, [this] { showAnnotation(-1); });
}

int SignalHistoryTab::nearestSample(double x) const
{
    const std::optional<HistoryLine> line = model_.line(model_.highlightedGraphID());
    if (!line)
        return -1;
    int nearest = -1;
    double best = 0.0;
    for (int i = 0; i < line->points.size(); ++i) {
        const double distance = std::abs(line->points[i].x() - x);
        if (nearest < 0 || distance < best) {
            nearest = i;
            best = distance;
        }
    }
    return nearest;
}

void SignalHistoryTab::followMouse(const QPointF& spot)
{
    if (model_.highlightedGraphID().isEmpty())
        return;
    const int index = nearestSample(spot.x());
    if (index != annotated_)
        showAnnotation(index);
}

void SignalHistoryTab::step(plot::widget::PlotView::Step step)
{
    const std::optional<HistoryLine> line = model_.line(model_.highlightedGraphID());
    if (!line)
        return;
    const int index = view_->steppedAlong(line->points, annotated_, step);
    if (index != annotated_)
        showAnnotation(index);
}

void SignalHistoryTab::showAnnotation(int index)
{
    const std::optional<SelectionLine> line = model_.selectionLine(index);
    if (!line) {
        annotated_ = -1;
        view_->clearOverlay();
        view_->setPointedAt({});
        return;
    }
    annotated_ = index;
    const std::optional<HistoryLine> history = model_.line(model_.highlightedGraphID());
    const QPointF anchor = history ? history->points.value(index) : line->to;
    const QString text = model_.annotationText(index);
    view_->setOverlay({selectionLinePlot(*line)}, annotationAt(text, anchor, view_->theme()));
    view_->setPointedAt(text);
}

} // namespace graphs::view
