#pragma once

#include "plot/graph.h"

#include <QImage>
#include <QList>
#include <QSizeF>

#include <optional>

class QPainter;

// Paints a graph with QPainter. It only reads the graph, so any thread may render its own copy.
namespace plot {

void render(const Graph& graph, QPainter& painter, const QSizeF& size);

// Paints plots and an annotation over a picture of the graph already drawn, with the graph's
// frame and ranges: the cheap layer for hover and selection.
void renderOverlay(const Graph& graph, const QList<Plot>& plots, const std::optional<TextAnnotation>& annotation,
                   QPainter& painter, const QSizeF& size);

// The graph as an image of size (logical pixels) times the device pixel ratio.
QImage renderImage(const Graph& graph, const QSize& size, double devicePixelRatio = 1.0);

} // namespace plot
