#include "graphs/view/graph_scenes.h"

#include "graphs/channel_graph_model.h"
#include "graphs/network_details_model.h"
#include "graphs/signal_annotation.h"
#include "graphs/signal_rank_model.h"
#include "graphs/view/scene_style.h"

namespace graphs::view {

namespace {

plot::ScatterPlot scatterFrom(const PlotLine& line)
{
    plot::ScatterPlot plot;
    plot.identifier = line.identifier;
    plot.points = line.points;
    plot.line = plot::LineStyle{line.lineWidth, toColor(line.lineColour), {}};
    if (line.areaFill)
        plot.areaFill = toGradient(*line.areaFill);
    plot.areaBase = line.areaBase;
    return plot;
}

plot::Symbol symbolFrom(const PointSymbol& symbol)
{
    return plot::Symbol{symbol.width, symbol.height, toColor(symbol.fill), toColor(symbol.outline)};
}

} // namespace

plot::Graph channelScene(const ChannelGraphModel& model, const GraphTheme& theme)
{
    plot::Graph graph = frameFrom(model.layout(), theme, ValueAxisEdge::Top, 0);
    for (const QString& id : model.plotIdentifiers()) {
        const std::optional<ChannelCurve> curve = model.curve(id);
        if (!curve || curve->points.isEmpty())
            continue;
        plot::ScatterPlot plot = scatterFrom(*curve);
        if (curve->label) {
            const CurveLabel& label = *curve->label;
            plot.labels.append(plot::PointLabel{ChannelGraphModel::labelledPoint, label.text,
                                                textStyle(label.font, toColor(label.colour)),
                                                toAlignment(label.alignment), QSizeF(label.width, label.height), {}});
        }
        graph.plots.append(std::move(plot));
    }
    return graph;
}

plot::Graph rankScene(const SignalRankModel& model, const GraphTheme& theme)
{
    plot::Graph graph = frameFrom(model.layout(), theme, ValueAxisEdge::Bottom, 0);
    // The axis' numbers stand right under the line and its title under them.
    graph.axes[0].titleOffset = 14.0;
    const RankFrame frame = SignalRankModel::frame();
    plot::BarPlot bars;
    bars.identifier = QStringLiteral("SINGLE_RANK_GRAPH_ID");
    bars.base = frame.barBase;
    bars.barOffset = frame.barOffset;
    bars.outline = plot::LineStyle{frame.barOutlineWidth, QColor(0, 0, 0, 90), {}};
    for (const RankBar& bar : model.bars())
        bars.bars.append(plot::Bar{bar.location, bar.tip, toColor(bar.fill)});
    graph.plots.append(bars);
    return graph;
}

plot::Graph historyScene(const SignalHistoryModel& model, const GraphTheme& theme)
{
    plot::Graph graph = frameFrom(model.layout(), theme, ValueAxisEdge::Bottom, 1);
    // White value labels are the dark graph's; a light plot area takes the title colour.
    const bool darkArea = toColor(theme.background).lightness() < 128;
    for (const QString& id : model.plotIdentifiers()) {
        const std::optional<HistoryLine> line = model.line(id);
        if (!line || line->points.isEmpty())
            continue;
        plot::ScatterPlot plot = scatterFrom(*line);
        if (line->symbol)
            plot.symbol = symbolFrom(*line->symbol);
        for (int i = 0; i < line->points.size(); ++i) {
            const std::optional<ValueLabel> label = model.dataLabel(id, i);
            if (!label)
                continue;
            const QColor colour = darkArea ? toColor(label->colour) : toColor(theme.title);
            plot.labels.append(plot::PointLabel{i, label->text, textStyle(model.layout().axisFont, colour),
                                                toAlignment(label->alignment), QSizeF(label->width, label->height),
                                                QPointF(label->xShift, 0.0)});
        }
        graph.plots.append(std::move(plot));
    }
    return graph;
}

plot::Graph detailsScene(const NetworkDetailsModel& model, const GraphTheme& theme)
{
    plot::Graph graph = frameFrom(model.layout(), theme, ValueAxisEdge::Bottom, 1);
    for (const DetailsLine& line : model.lines()) {
        plot::ScatterPlot plot;
        plot.identifier = line.identifier;
        plot.points = line.points;
        plot.line = plot::LineStyle{line.lineWidth, toColor(line.lineColour), {}};
        plot.symbol = symbolFrom(line.symbol);
        plot.areaFill = toGradient(line.areaFill);
        plot.areaBase = line.areaBase;
        graph.plots.append(std::move(plot));
    }
    return graph;
}

plot::ScatterPlot selectionLinePlot(const SelectionLine& line)
{
    plot::ScatterPlot plot;
    plot.identifier = QLatin1String(selectionLinePlotId);
    plot.points = {line.from, line.to};
    plot.line = plot::LineStyle{line.width, toColor(line.colour), {line.dash, line.gap}};
    return plot;
}

plot::TextAnnotation annotationAt(const QString& text, const QPointF& anchor, const GraphTheme& theme)
{
    plot::TextAnnotation annotation;
    annotation.text = text;
    annotation.anchor = anchor;
    const QColor area = toColor(theme.background);
    const bool dark = area.lightness() < 128;
    annotation.style = textStyle(SignalAnnotation::font(), dark ? QColor(Qt::white) : QColor(Qt::black));
    annotation.background = dark ? QColor(0, 0, 0, 200) : QColor(255, 255, 255, 220);
    annotation.border = toColor(theme.line);
    return annotation;
}

} // namespace graphs::view
