#pragma once

#include "monitor/graph_plot_data_source.h"
#include "plot/graph.h"

// The monitor window's graph: the yellow signal and white noise lines over the last twelve
// intervals, newest at the right, on a -100 to 0 dBm scale.
namespace monitor::view {

plot::Graph monitorGraph(const GraphPlotDataSource& points);

} // namespace monitor::view
