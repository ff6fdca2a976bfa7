#include "plot/graph.h"

#include <algorithm>

namespace plot {

QString identifierOf(const Plot& plot)
{
    return std::visit([](const auto& p) { return p.identifier; }, plot);
}

void Graph::setPlot(Plot plot)
{
    if (Plot* existing = this->plot(identifierOf(plot)))
        *existing = std::move(plot);
    else
        plots.append(std::move(plot));
}

void Graph::removePlot(const QString& identifier)
{
    plots.removeIf([&](const Plot& p) { return identifierOf(p) == identifier; });
}

bool Graph::bringToTop(const QString& identifier)
{
    const auto it = std::find_if(plots.begin(), plots.end(), [&](const Plot& p) { return identifierOf(p) == identifier; });
    if (it == plots.end())
        return false;
    Plot moved = std::move(*it);
    plots.erase(it);
    plots.append(std::move(moved));
    return true;
}

const Plot* Graph::plot(const QString& identifier) const
{
    for (const Plot& p : plots) {
        if (identifierOf(p) == identifier)
            return &p;
    }
    return nullptr;
}

Plot* Graph::plot(const QString& identifier)
{
    return const_cast<Plot*>(static_cast<const Graph*>(this)->plot(identifier));
}

} // namespace plot
