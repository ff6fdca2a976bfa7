#pragma once

#include "plot/style.h"

#include <QList>
#include <QPointF>
#include <QString>
#include <QSizeF>

#include <optional>

// What a graph draws inside its plot area, in data coordinates.
namespace plot {

// A text tied to one point, aligned inside a box of the given size that stands centred on the
// point (shifted by offset pixels) with its lower edge at the point, so the text sits above it.
struct PointLabel {
    int index = 0;
    QString text;
    TextStyle style;
    Qt::Alignment alignment = Qt::AlignLeft;
    QSizeF box{300.0, 25.0};
    QPointF offset;
};

// Straight segments through the points; optional area fill down to a base value, symbols and
// labels. Opacity multiplies everything the plot draws.
struct ScatterPlot {
    QString identifier;
    QList<QPointF> points;
    LineStyle line;
    double opacity = 1.0;
    std::optional<Gradient> areaFill;
    double areaBase = 0.0;
    std::optional<Symbol> symbol;
    QList<PointLabel> labels;
};

struct Bar {
    double location = 0.0;
    double tip = 0.0;
    QColor fill;
};

// Vertical bars from the base value up (or down) to each tip. Width and offset are in x data
// units; a bar is centred on location + offset.
struct BarPlot {
    QString identifier;
    QList<Bar> bars;
    double base = 0.0;
    double barWidth = 0.8;
    double barOffset = 0.0;
    LineStyle outline{0.0, Qt::transparent, {}};
};

// A text box pinned to a data point; it keeps inside the plot area.
struct TextAnnotation {
    QString text;
    QPointF anchor;
    TextStyle style;
    QColor background;
    QColor border;
};

// A text placed by the frame rather than the data: at a fraction of the plot area (0,0 top
// left, 1,1 bottom right) moved by offset pixels. The box hangs down from that point; its left
// edge, centre or right edge stands there as the alignment is left, centred or right.
struct FrameText {
    QString text;
    TextStyle style;
    QPointF relative;
    QPointF offset;
    QSizeF box{200.0, 30.0};
    Qt::Alignment alignment = Qt::AlignCenter;
};

} // namespace plot
