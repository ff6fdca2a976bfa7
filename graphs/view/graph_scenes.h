#pragma once

#include "graphs/graph_style.h"
#include "graphs/signal_history_model.h"
#include "plot/graph.h"

namespace graphs {
class ChannelGraphModel;
class NetworkDetailsModel;
class SignalRankModel;
}

// Each graph model drawn as one plotting-kit picture: what the views show and the reports save.
// They copy the models' values; every rule stays in the model.
namespace graphs::view {

plot::Graph channelScene(const ChannelGraphModel& model, const GraphTheme& theme);
plot::Graph rankScene(const SignalRankModel& model, const GraphTheme& theme);
plot::Graph historyScene(const SignalHistoryModel& model, const GraphTheme& theme);
plot::Graph detailsScene(const NetworkDetailsModel& model, const GraphTheme& theme);

// The hover layer of the signal graphs: the dashed line through a sample and its text box.
plot::ScatterPlot selectionLinePlot(const SelectionLine& line);
plot::TextAnnotation annotationAt(const QString& text, const QPointF& anchor, const GraphTheme& theme);

} // namespace graphs::view
