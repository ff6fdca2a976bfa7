#pragma once

#include "graphs/graph_style.h"
#include "plot/graph.h"

#include <QColor>
#include <QPalette>

// Turns the models' plain descriptions of a graph (layout, colours, fonts) into the plotting
// kit's values; every graph scene starts from here.
namespace graphs::view {

QColor toColor(const ColourCode& colour);
plot::TextStyle textStyle(const FontSpec& font, const QColor& colour);
plot::Gradient toGradient(const Gradient& gradient);
Qt::Alignment toAlignment(TextAlignment alignment);

// The graph colours for the desktop's palette: the established dark graph on a dark desktop,
// a light plot area on a light one.
GraphTheme themeFor(const QPalette& palette);
bool isDark(const QPalette& palette);

// Where the horizontal value axis sits: the channel graphs write frequencies along the top.
enum class ValueAxisEdge { Bottom, Top };

// The frame, ranges and axes of a layout, drawn in the given theme; minor ticks per interval
// only where the graph has them (grid lines between the labelled ones).
plot::Graph frameFrom(const GraphLayout& layout, const GraphTheme& theme, ValueAxisEdge xEdge, int minorTicks);

} // namespace graphs::view
