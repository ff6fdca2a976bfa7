#include "monitor/view/monitor_graph.h"

namespace monitor::view {
namespace {

constexpr double floorDbm = -100.0;

plot::ScatterPlot line(const GraphPlotDataSource& points, const char* identifier, QColor colour, plot::Gradient fill)
{
    plot::ScatterPlot plot;
    plot.identifier = QString::fromLatin1(identifier);
    plot.points = points.numbersForPlot(plot.identifier, 0, GraphPlotDataSource::maxPoints);
    plot.line = {3.0, colour, {}};
    plot.areaFill = fill;
    plot.areaBase = floorDbm;
    plot.symbol = plot::Symbol{7.0, 7.0, Qt::blue, Qt::black};
    return plot;
}

plot::Axis axis(plot::Orientation orientation, const QString& title)
{
    const QColor text = Qt::white;
    plot::Axis axis;
    axis.orientation = orientation;
    axis.edge = plot::Edge::Low;
    axis.title = title;
    axis.minorTicksPerInterval = 4;
    axis.majorTickLength = 4.0;
    axis.minorTickLength = 2.0;
    axis.line = {0.75, QColor::fromRgbF(1.0, 1.0, 1.0, 0.75), {}};
    axis.majorGrid = {0.25, QColor::fromRgbF(1.0, 1.0, 1.0, 0.1), {}};
    axis.minorGrid = {0.25, QColor::fromRgbF(1.0, 1.0, 1.0, 0.1), {}};
    axis.labelStyle = {QStringLiteral("Helvetica"), 12.0, true, text};
    axis.titleStyle = axis.labelStyle;
    return axis;
}

} // namespace

plot::Graph monitorGraph(const GraphPlotDataSource& points)
{
    const double span = 12.0 * points.refreshInterval();
    plot::Graph graph;
    graph.background = QColor(28, 28, 30);
    graph.plotAreaBackground = QColor(28, 28, 30);
    graph.plotAreaPadding = {25.0, 25.0, 55.0, 55.0};
    graph.cornerRadius = 2.0;
    graph.x = {span, -span};
    graph.y = {floorDbm, -floorDbm};

    plot::Axis x = axis(plot::Orientation::Horizontal, QStringLiteral("Seconds"));
    x.labelling = plot::Labelling::FixedInterval;
    x.majorInterval = points.refreshInterval();
    x.titleOffset = 30.0;
    plot::Axis y = axis(plot::Orientation::Vertical, QStringLiteral("RSSI (dBm)"));
    y.labelling = plot::Labelling::Automatic;
    y.majorInterval = 10.0;
    y.titleOffset = 35.0;
    y.labelOffset = 5.0;
    graph.axes = {x, y};

    graph.setPlot(line(points, GraphPlotDataSource::signalPlotId, Qt::yellow,
                       {QColor::fromRgbF(1.0, 0.3, 0.5, 1.0), Qt::transparent, -90.0}));
    graph.setPlot(line(points, GraphPlotDataSource::noisePlotId, Qt::white,
                       {QColor::fromRgbF(0.0, 1.0, 0.3, 0.8), Qt::transparent, -90.0}));
    return graph;
}

} // namespace monitor::view
