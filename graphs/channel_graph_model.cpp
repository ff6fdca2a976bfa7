#include "graphs/channel_graph_model.h"

#include "core/user_settings.h"
#include "graphs/color_codes_manager.h"

namespace graphs {

ChannelGraphModel::ChannelGraphModel(const ChannelBand& band, ColorCodesManager& colours,
                                     const core::UserSettings& settings, GraphTheme theme, QObject* parent)
    : QObject(parent), band_(band), colours_(colours), settings_(settings), theme_(theme)
{
    gridLines_ = core::settingIsOn(settings_.value(QLatin1String(gridLinesSettingKey)));
}

void ChannelGraphModel::addPlotToGraph(const QString& bssid, const scan::ScanedResultInfo& record)
{
    plots_.add(bssid, newLineWidth, PlotStack::restingAlpha, colours_.getColorCode(&record));
    records_.insert(bssid, record);
    emit changed();
}

void ChannelGraphModel::updateGraphDataPoints(const scan::ScanedResultInfo& record, const QString& bssid)
{
    if (!plots_.contains(bssid)) {
        addPlotToGraph(bssid, record);
        return;
    }
    records_.insert(bssid, record);
}

void ChannelGraphModel::removePlotFromGraph(const QString& bssid)
{
    plots_.remove(bssid);
    records_.remove(bssid);
    emit changed();
}

void ChannelGraphModel::clearGraph()
{
    records_.clear();
    emit changed();
}

void ChannelGraphModel::reloadGraph() { emit changed(); }

void ChannelGraphModel::didRemoveAllPlots() { plots_.forgetHighlight(); }

void ChannelGraphModel::highlightGraph(const QString& bssid)
{
    plots_.highlight(bssid, [this](const QString& id) -> std::optional<PlotStack::Target> {
        const auto it = records_.constFind(id);
        if (it == records_.cend())
            return std::nullopt;
        return PlotStack::Target{colours_.getColorCode(&*it), it->rssi};
    });
    emit changed();
}

void ChannelGraphModel::refreshSettings()
{
    const bool on = core::settingIsOn(settings_.value(QLatin1String(gridLinesSettingKey)));
    if (on == gridLines_)
        return;
    gridLines_ = on;
    emit changed();
}

GraphLayout ChannelGraphModel::layout() const
{
    GraphLayout layout;
    layout.xRange = band_.frequencyRange;
    layout.graphPadding = 3.0;
    layout.plotAreaPadding = Padding{35.0, 17.0, band_.bottomPadding, 55.0};
    layout.xAxis = AxisSpec{band_.frequencyTitle, -39.0, -28.0, band_.frequencyMajorInterval, {}};
    layout.yAxis = AxisSpec{QStringLiteral("RSSI (dBm)"), 30.0, 5.0, std::nullopt, {}};
    // The channel axis' own offset is -4.0 and its labels stand 4.0 beyond it, on the axis line.
    layout.channelAxis = AxisSpec{band_.channelTitle, band_.channelTitleOffset, 0.0, std::nullopt,
                                  band_.channelLabels};
    layout.theme = theme_;
    layout.gridLines = gridLines_;
    return layout;
}

int ChannelGraphModel::numberOfRecords(const QString& identifier) const
{
    return records_.contains(identifier) ? pointsPerCurve : 0;
}

QPointF ChannelGraphModel::point(const QString& identifier, int index) const
{
    const auto it = records_.constFind(identifier);
    if (it == records_.cend())
        return {};
    const int i = ((index % pointsPerCurve) + pointsPerCurve) % pointsPerCurve;
    const ChannelShapeX x = band_.shape(*it);
    const bool top = i == 1 || i == 2;
    return {x[static_cast<std::size_t>(i)], top ? static_cast<double>(it->rssi) : signalFloorDbm};
}

std::optional<CurveLabel> ChannelGraphModel::dataLabel(const QString& identifier, int index) const
{
    const auto it = records_.constFind(identifier);
    if (it == records_.cend() || index % pointsPerCurve != labelledPoint)
        return std::nullopt;
    const QString highlighted = plots_.highlighted();
    const double alpha = highlighted.isEmpty() ? PlotStack::restingAlpha
                         : highlighted == identifier ? 1.0
                                                     : PlotStack::fadedAlpha;
    CurveLabel label;
    label.text = it->ssid;
    label.colour = withAlpha(colours_.getColorCode(&*it), alpha);
    return label;
}

std::optional<ChannelCurve> ChannelGraphModel::curve(const QString& identifier) const
{
    const std::optional<PlotLine> line = plots_.line(identifier);
    if (!line)
        return std::nullopt;
    ChannelCurve curve{*line, {}};
    for (int i = 0; i < numberOfRecords(identifier); ++i)
        curve.points.append(point(identifier, i));
    curve.label = dataLabel(identifier, labelledPoint);
    return curve;
}

} // namespace graphs
