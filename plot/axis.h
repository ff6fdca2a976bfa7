#pragma once

#include "plot/range.h"
#include "plot/style.h"

#include <QDateTime>
#include <QList>
#include <QString>

// An axis of the plot area: its line, ticks, labels, grid lines and title. Offsets are pixels
// from the axis line towards the outside (down for a horizontal axis, left for a vertical
// one); a negative offset crosses to the other side, and a text always hangs outwards from its
// offset, so the same offset puts it just beside the line on either edge.
namespace plot {

enum class Orientation { Horizontal, Vertical };
// Which edge of the plot area the axis line sits on: Low is bottom or left, High top or right.
enum class Edge { Low, High };
enum class Labelling { None, FixedInterval, Automatic, Custom };
enum class LabelFormat { Number, TimeOfDay };

struct TickLabel {
    double position = 0.0;
    QString text;
    bool operator==(const TickLabel&) const = default;
};

struct Axis {
    Orientation orientation = Orientation::Horizontal;
    Edge edge = Edge::Low;
    QString title;
    double titleOffset = 0.0;
    double labelOffset = 2.0;
    Labelling labelling = Labelling::Automatic;
    double majorInterval = 1.0;
    // Minor ticks between two major ones; zero draws none.
    int minorTicksPerInterval = 0;
    // Fixed-interval ticks fall on origin + k * majorInterval.
    double labellingOrigin = 0.0;
    QList<TickLabel> customLabels;
    LabelFormat format = LabelFormat::Number;
    // Time-of-day labels read a value as seconds after this moment.
    QDateTime timeOrigin;
    QString timeFormat = QStringLiteral("hh:mm:ss");
    double majorTickLength = 0.0;
    double minorTickLength = 0.0;
    LineStyle line{1.0, Qt::gray, {}};
    // Grid lines across the plot area; a width of zero draws none.
    LineStyle majorGrid{0.0, Qt::gray, {}};
    LineStyle minorGrid{0.0, Qt::gray, {}};
    TextStyle labelStyle;
    TextStyle titleStyle;
};

// Major tick positions inside the range, lowest first. Custom labelling ticks at its labels.
QList<double> majorTicks(const Axis& axis, const Range& range);
QList<double> minorTicks(const Axis& axis, const Range& range);
// The labels drawn, with their texts: numbers without fractional digits, or time of day.
QList<TickLabel> tickLabels(const Axis& axis, const Range& range);
// The interval automatic labelling uses: 1, 2 or 5 times a power of ten, for about five ticks.
double automaticInterval(const Range& range);

} // namespace plot
