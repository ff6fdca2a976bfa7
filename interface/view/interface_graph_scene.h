#pragma once

#include "interface/interface_graph_data.h"
#include "plot/graph.h"

// The interface graph as a plot-kit picture, without widgets: the tab shows it and the
// connected report renders it, on any thread.
namespace connection::view {

plot::Graph interfaceGraphScene(const InterfaceGraphData& data, bool showGridLines);

} // namespace connection::view
