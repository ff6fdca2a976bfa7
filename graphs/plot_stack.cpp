#include "graphs/plot_stack.h"

#include <cstdlib>

namespace graphs {

void PlotStack::add(const QString& identifier, double lineWidth, double lineAlpha, ColourCodePtr colour)
{
    if (contains(identifier))
        return;
    plots_.append(PlotStyle{identifier, lineWidth, lineAlpha, std::move(colour), std::nullopt});
}

void PlotStack::remove(const QString& identifier)
{
    plots_.removeIf([&](const PlotStyle& plot) { return plot.identifier == identifier; });
}

bool PlotStack::contains(const QString& identifier) const { return style(identifier) != nullptr; }

std::optional<PlotLine> PlotStack::line(const QString& identifier) const
{
    const PlotStyle* plot = style(identifier);
    if (!plot)
        return std::nullopt;
    PlotLine line;
    line.identifier = identifier;
    line.lineWidth = plot->lineWidth;
    line.lineColour = withAlpha(plot->colour, plot->lineAlpha);
    line.areaFill = plot->areaFill;
    return line;
}

QStringList PlotStack::identifiers() const
{
    QStringList ids;
    for (const PlotStyle& plot : plots_)
        ids.append(plot.identifier);
    return ids;
}

const PlotStyle* PlotStack::style(const QString& identifier) const
{
    for (const PlotStyle& plot : plots_)
        if (plot.identifier == identifier)
            return &plot;
    return nullptr;
}

PlotStyle* PlotStack::find(const QString& identifier)
{
    for (PlotStyle& plot : plots_)
        if (plot.identifier == identifier)
            return &plot;
    return nullptr;
}

void PlotStack::highlight(const QString& identifier, const TargetLookup& lookup)
{
    if (PlotStyle* previous = find(highlighted_))
        previous->areaFill.reset();

    if (identifier.isEmpty() || identifier == highlighted_ || !contains(identifier)) {
        highlighted_.clear();
        changeOpacityExcluding({}, restingAlpha);
        return;
    }

    const std::optional<Target> target = lookup(identifier);
    PlotStyle plot = *find(identifier);
    remove(identifier);
    if (!target)
        return;

    plot.colour = target->colour;
    plot.lineAlpha = 1.0;
    plot.areaFill = highlightFill(target->colour, target->rssi);
    plots_.append(plot);
    highlighted_ = identifier;
    changeOpacityExcluding(identifier, fadedAlpha);
}

void PlotStack::changeOpacityExcluding(const QString& excluded, double alpha)
{
    for (PlotStyle& plot : plots_) {
        if (plot.identifier == QLatin1String(selectionLinePlotId) || (!excluded.isEmpty() && plot.identifier == excluded))
            continue;
        plot.lineWidth = fadedLineWidth;
        plot.lineAlpha = alpha;
    }
}

double PlotStack::highlightFillAlpha(int rssi)
{
    // Integer division on purpose: the fill stays faint for every real signal level.
    const double alpha = (100 - std::abs(rssi)) / 100;
    if (alpha > 0.8)
        return 0.8;
    if (alpha <= 0.1)
        return 0.4;
    return alpha;
}

Gradient PlotStack::highlightFill(const ColourCodePtr& colour, int rssi)
{
    const double alpha = highlightFillAlpha(rssi);
    return Gradient{withAlpha(colour, alpha), withAlpha(colour, alpha * 0.5), -90.0};
}

} // namespace graphs
