#pragma once

#include "plot/axis.h"
#include "plot/plots.h"
#include "plot/range.h"
#include "plot/style.h"

#include <QList>
#include <QString>

#include <optional>
#include <variant>

// One whole picture as a value: frame, ranges, axes and plots in drawing order (last on top).
// Being a plain copyable value it can be handed to a render thread while the GUI goes on.
namespace plot {

using Plot = std::variant<ScatterPlot, BarPlot>;

QString identifierOf(const Plot& plot);

struct Graph {
    QColor background = Qt::transparent;
    QColor plotAreaBackground = Qt::black;
    double graphPadding = 0.0;
    Padding plotAreaPadding;
    double cornerRadius = 0.0;
    Range x;
    Range y;
    QList<Axis> axes;
    QList<Plot> plots;
    QList<FrameText> texts;
    std::optional<TextAnnotation> annotation;

    // Adds on top, or replaces a plot of the same identifier in its place.
    void setPlot(Plot plot);
    void removePlot(const QString& identifier);
    // Moves a plot to the end of the drawing order; false when there is none of that name.
    bool bringToTop(const QString& identifier);
    const Plot* plot(const QString& identifier) const;
    Plot* plot(const QString& identifier);
};

} // namespace plot
