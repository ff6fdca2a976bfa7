#include "interface/view/interface_graph_scene.h"

namespace connection::view {
namespace {

const QColor areaColour(29, 29, 29);
const QColor lineColour(128, 128, 128);
constexpr double spanSeconds = 300.0;
constexpr double floorDbm = -100.0;

plot::ScatterPlot curve(const QString& identifier, const QList<QPointF>& points, const QColor& colour)
{
    plot::ScatterPlot plot;
    plot.identifier = identifier;
    plot.points = points;
    plot.line = plot::LineStyle{3.0, colour, {}};
    QColor from = colour;
    from.setAlphaF(0.8f);
    plot.areaFill = plot::Gradient{from, Qt::transparent, -90.0};
    plot.areaBase = floorDbm;
    return plot;
}

} // namespace

plot::Graph interfaceGraphScene(const InterfaceGraphData& data, bool showGridLines)
{
    plot::Graph graph;
    graph.background = Qt::transparent;
    graph.plotAreaBackground = areaColour;
    graph.graphPadding = 3.0;
    graph.plotAreaPadding = plot::Padding{25.0, 32.0, 45.0, 55.0};
    graph.cornerRadius = 2.0;
    graph.x = plot::Range{-spanSeconds, spanSeconds};
    graph.y = plot::Range{floorDbm, -floorDbm};
    const plot::TextStyle title{QStringLiteral("Oswald"), 12.0, false, lineColour};
    const plot::LineStyle major{showGridLines ? 0.5 : 0.0, lineColour, {}};
    const plot::LineStyle minor{showGridLines ? 0.25 : 0.0, lineColour, {}};

    plot::Axis x;
    x.orientation = plot::Orientation::Horizontal;
    x.title = QStringLiteral("Seconds");
    x.titleOffset = 25.0;
    x.labelOffset = 4.0;
    x.labelling = plot::Labelling::FixedInterval;
    x.majorInterval = 60.0;
    x.format = plot::LabelFormat::TimeOfDay;
    x.timeOrigin = (data.newest.isValid() ? data.newest : QDateTime::currentDateTime()).toLocalTime();
    x.timeFormat = QStringLiteral("hh:mm:ss");
    x.line = plot::LineStyle{1.0, lineColour, {}};
    x.majorGrid = major;
    x.minorGrid = minor;
    x.labelStyle = title;
    x.titleStyle = title;

    plot::Axis y;
    y.orientation = plot::Orientation::Vertical;
    y.title = QStringLiteral("RSSI (dBm)");
    y.titleOffset = 30.0;
    y.labelOffset = 5.0;
    y.labelling = plot::Labelling::FixedInterval;
    y.majorInterval = 15.0;
    y.labellingOrigin = floorDbm;
    y.line = plot::LineStyle{1.0, lineColour, {}};
    y.majorGrid = major;
    y.minorGrid = minor;
    y.labelStyle = title;
    y.titleStyle = title;
    graph.axes = {x, y};

    graph.plots.append(curve(QStringLiteral("Noise"), data.noise, Qt::red));
    graph.plots.append(curve(QStringLiteral("Signal"), data.signal, Qt::green));
    return graph;
}

} // namespace connection::view
