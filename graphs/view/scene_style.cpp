#include "graphs/view/scene_style.h"

#include <algorithm>

namespace graphs::view {

QColor toColor(const ColourCode& colour)
{
    const auto unit = [](double v) { return std::clamp(v, 0.0, 1.0); };
    return QColor::fromRgbF(static_cast<float>(unit(colour.red)), static_cast<float>(unit(colour.green)),
                            static_cast<float>(unit(colour.blue)), static_cast<float>(unit(colour.alpha)));
}

plot::TextStyle textStyle(const FontSpec& font, const QColor& colour)
{
    plot::TextStyle style;
    style.family = font.family;
    // A face named with its weight ("Lucida Grande Bold") is asked for by family and weight.
    const QString bold = QStringLiteral(" Bold");
    if (style.family.endsWith(bold)) {
        style.family.chop(bold.size());
        style.bold = true;
    }
    style.pixelSize = font.size;
    style.colour = colour;
    return style;
}

plot::Gradient toGradient(const Gradient& gradient)
{
    return plot::Gradient{toColor(gradient.from), toColor(gradient.to), gradient.angleDegrees};
}

Qt::Alignment toAlignment(TextAlignment alignment)
{
    switch (alignment) {
    case TextAlignment::Left:
        return Qt::AlignLeft;
    case TextAlignment::Centre:
        return Qt::AlignHCenter;
    case TextAlignment::Right:
        return Qt::AlignRight;
    }
    return Qt::AlignLeft;
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

GraphTheme themeFor(const QPalette& palette)
{
    if (isDark(palette))
        return GraphTheme{};
    GraphTheme light;
    light.background = ColourCode(248.0 / 255.0, 248.0 / 255.0, 248.0 / 255.0, 1.0);
    light.title = ColourCode(90.0 / 255.0, 90.0 / 255.0, 90.0 / 255.0, 1.0);
    return light;
}

namespace {

plot::Axis axisFrom(const AxisSpec& wanted, const GraphLayout& layout, const GraphTheme& theme, int minorTicks)
{
    plot::Axis axis;
    axis.title = wanted.title;
    axis.titleOffset = wanted.titleOffset;
    axis.labelOffset = wanted.labelOffset;
    if (!wanted.customLabels.isEmpty()) {
        axis.labelling = plot::Labelling::Custom;
        for (const AxisLabel& label : wanted.customLabels)
            axis.customLabels.append(plot::TickLabel{label.position, label.text});
    } else if (wanted.majorInterval) {
        axis.labelling = plot::Labelling::FixedInterval;
        axis.majorInterval = *wanted.majorInterval;
    } else {
        axis.labelling = plot::Labelling::Automatic;
    }
    axis.minorTicksPerInterval = minorTicks;
    const QColor line = toColor(theme.line);
    axis.line = plot::LineStyle{layout.lineWidths.axis, line, {}};
    if (layout.gridLines) {
        axis.majorGrid = plot::LineStyle{layout.lineWidths.majorGrid, line, {}};
        axis.minorGrid = plot::LineStyle{layout.lineWidths.minorGrid, line, {}};
    }
    axis.labelStyle = textStyle(layout.axisFont, line);
    axis.titleStyle = textStyle(layout.axisFont, toColor(theme.title));
    return axis;
}

} // namespace

plot::Graph frameFrom(const GraphLayout& layout, const GraphTheme& theme, ValueAxisEdge xEdge, int minorTicks)
{
    plot::Graph graph;
    graph.background = Qt::transparent;
    graph.plotAreaBackground = toColor(theme.background);
    graph.graphPadding = layout.graphPadding;
    graph.plotAreaPadding = plot::Padding{layout.plotAreaPadding.top, layout.plotAreaPadding.right,
                                          layout.plotAreaPadding.bottom, layout.plotAreaPadding.left};
    graph.cornerRadius = layout.cornerRadius;
    graph.x = plot::Range{layout.xRange.location, layout.xRange.length};
    graph.y = plot::Range{layout.yRange.location, layout.yRange.length};

    plot::Axis x = axisFrom(layout.xAxis, layout, theme, minorTicks);
    x.orientation = plot::Orientation::Horizontal;
    x.edge = xEdge == ValueAxisEdge::Top ? plot::Edge::High : plot::Edge::Low;
    plot::Axis y = axisFrom(layout.yAxis, layout, theme, minorTicks);
    y.orientation = plot::Orientation::Vertical;
    graph.axes = {x, y};
    if (layout.channelAxis) {
        plot::Axis channels = axisFrom(*layout.channelAxis, layout, theme, 0);
        channels.orientation = plot::Orientation::Horizontal;
        channels.majorGrid.width = 0.0;
        graph.axes.append(channels);
    }
    return graph;
}

} // namespace graphs::view
