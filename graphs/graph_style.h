#pragma once

#include "graphs/colour_code.h"

#include <QList>
#include <QString>

#include <optional>

// The plain values a graph painter needs besides the data: ranges, axes, paddings, fonts,
// fills and the theme. Models fill them; widgets only copy them into the plotting kit.
namespace graphs {

// Every graph plots signal from this floor upward, and its area fills reach down to it.
inline constexpr double signalFloorDbm = -100.0;
// The user's switches the graphs follow.
inline constexpr const char* gridLinesSettingKey = "showGridLinesOnGraph";
inline constexpr const char* rssiValuesSettingKey = "showRSSIValueOnGraph";
// The dashed line drawn under the mouse is a plot of its own that opacity changes leave alone.
inline constexpr const char* selectionLinePlotId = "SELECTION_LINE_PLOT";

// A negative length draws the axis reversed (from location down to location + length).
struct ValueRange {
    double location = 0.0;
    double length = 0.0;
    bool operator==(const ValueRange&) const = default;
};

struct Padding {
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    double left = 0.0;
    bool operator==(const Padding&) const = default;
};

struct FontSpec {
    QString family;
    double size = 0.0;
};

struct AxisLabel {
    QString text;
    double position = 0.0;
};

struct AxisSpec {
    QString title;
    double titleOffset = 0.0;
    double labelOffset = 0.0;
    // None: the kit chooses the labels itself.
    std::optional<double> majorInterval;
    // When not empty these are the axis' only labels.
    QList<AxisLabel> customLabels;
};

struct Gradient {
    ColourCode from;
    ColourCode to;
    double angleDegrees = -90.0;
};

enum class SymbolShape { Ellipse };

struct PointSymbol {
    SymbolShape shape = SymbolShape::Ellipse;
    double width = 4.0;
    double height = 4.0;
    ColourCode fill;
    ColourCode outline;
};

enum class TextAlignment { Left, Centre, Right };

// The colours shared by every graph of the window.
struct GraphTheme {
    ColourCode background{29.0 / 255.0, 29.0 / 255.0, 29.0 / 255.0, 1.0};
    ColourCode line{128.0 / 255.0, 128.0 / 255.0, 128.0 / 255.0, 1.0};
    ColourCode title{128.0 / 255.0, 128.0 / 255.0, 128.0 / 255.0, 1.0};
};

// Line widths of the frame; grid lines are drawn only while the user wants them.
struct LineWidths {
    double majorGrid = 0.5;
    double minorGrid = 0.25;
    double axis = 1.5;
};

// Everything about a graph's frame that does not depend on the plotted networks.
struct GraphLayout {
    ValueRange xRange;
    ValueRange yRange{signalFloorDbm, -signalFloorDbm};
    double graphPadding = 0.0;
    Padding plotAreaPadding;
    double cornerRadius = 2.0;
    AxisSpec xAxis;
    AxisSpec yAxis;
    // A second horizontal axis under the first one, for graphs that name their channels.
    std::optional<AxisSpec> channelAxis;
    FontSpec axisFont{QStringLiteral("Oswald"), 12.0};
    LineWidths lineWidths;
    GraphTheme theme;
    bool gridLines = true;
};

// A colour code with an alpha of the graph's own. An access point without a colour code draws
// black, as the components of a missing colour read as zero.
inline ColourCode withAlpha(const ColourCodePtr& colour, double alpha)
{
    return colour ? ColourCode(colour->red, colour->green, colour->blue, alpha) : ColourCode(0.0, 0.0, 0.0, alpha);
}

} // namespace graphs
