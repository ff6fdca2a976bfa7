#include "graphs/signal_history_model.h"

#include "core/user_settings.h"
#include "graphs/color_codes_manager.h"
#include "scanning/wifi_scan_test.h"

namespace graphs {

SignalHistoryModel::SignalHistoryModel(ColorCodesManager& colours, const core::UserSettings& settings,
                                       GraphTheme theme, QObject* parent)
    : QObject(parent), colours_(colours), settings_(settings), theme_(theme)
{
    gridLines_ = core::settingIsOn(settings_.value(QLatin1String(gridLinesSettingKey)));
    showValues_ = core::settingIsOn(settings_.value(QLatin1String(rssiValuesSettingKey)));
}

void SignalHistoryModel::addPlotToGraph(const QString& bssid, const QList<scan::ScanedResultInfo>& history)
{
    const ColourCodePtr colour = history.isEmpty() ? nullptr : colours_.getColorCode(&history.first());
    plots_.add(bssid, lineWidth, PlotStack::restingAlpha, colour);
    histories_.insert(bssid, history);
    emit changed();
}

void SignalHistoryModel::updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid)
{
    if (!plots_.contains(bssid)) {
        addPlotToGraph(bssid, history);
        return;
    }
    histories_.insert(bssid, history);
}

void SignalHistoryModel::removePlotFromGraph(const QString& bssid)
{
    plots_.remove(bssid);
    emit changed();
}

void SignalHistoryModel::clearGraph()
{
    histories_.clear();
    emit changed();
}

void SignalHistoryModel::reloadGraph(const scanning::WiFiScanTest& test)
{
    if (test.refreshInterval != refreshInterval_) {
        refreshInterval_ = test.refreshInterval;
        xMajorInterval_ = refreshInterval_ <= 20 ? 5.0 : 10.0;
        const double window = intervalsShown * refreshInterval_;
        xRange_ = ValueRange{window, -window};
    }
    emit changed();
    if (!plots_.highlighted().isEmpty())
        emit annotationMoved(annotationRecord);
}

void SignalHistoryModel::didRemoveAllPlots() { plots_.forgetHighlight(); }

void SignalHistoryModel::highlightGraph(const QString& bssid)
{
    plots_.highlight(bssid, [this](const QString& id) -> std::optional<PlotStack::Target> {
        const auto it = histories_.constFind(id);
        if (it == histories_.cend() || it->isEmpty())
            return std::nullopt;
        return PlotStack::Target{colours_.getColorCode(&it->first()), it->first().rssi};
    });
    emit changed();
}

void SignalHistoryModel::refreshSettings()
{
    const bool grid = core::settingIsOn(settings_.value(QLatin1String(gridLinesSettingKey)));
    const bool values = core::settingIsOn(settings_.value(QLatin1String(rssiValuesSettingKey)));
    if (grid == gridLines_ && values == showValues_)
        return;
    gridLines_ = grid;
    showValues_ = values;
    emit changed();
}

GraphLayout SignalHistoryModel::layout() const
{
    GraphLayout layout;
    layout.xRange = xRange_;
    layout.plotAreaPadding = Padding{15.0, 15.0, 45.0, 55.0};
    layout.xAxis = AxisSpec{QStringLiteral("Seconds"), 18.0, 0.0, xMajorInterval_, {}};
    layout.yAxis = AxisSpec{QStringLiteral("RSSI (dBm)"), 30.0, 5.0, std::nullopt, {}};
    layout.theme = theme_;
    layout.gridLines = gridLines_;
    return layout;
}

QPointF SignalHistoryModel::point(const QList<scan::ScanedResultInfo>& history, int index) const
{
    const scan::ScanedResultInfo& sample = history.at(index);
    const double secondsBefore = sample.lastSeen.msecsTo(history.first().lastSeen) / 1000.0;
    return {secondsBefore, static_cast<double>(sample.rssi)};
}

std::optional<HistoryLine> SignalHistoryModel::line(const QString& identifier) const
{
    const std::optional<PlotLine> plotted = plots_.line(identifier);
    if (!plotted)
        return std::nullopt;
    HistoryLine line{*plotted, {}};
    if (showValues_) {
        const ColourCode symbolColour = withAlpha(plots_.style(identifier)->colour, PlotStack::restingAlpha);
        line.symbol = PointSymbol{SymbolShape::Ellipse, 4.0, 4.0, symbolColour, symbolColour};
    }
    const QList<scan::ScanedResultInfo> history = histories_.value(identifier);
    for (int i = 0; i < history.size(); ++i)
        line.points.append(point(history, i));
    return line;
}

std::optional<ValueLabel> SignalHistoryModel::dataLabel(const QString& identifier, int index) const
{
    const auto it = histories_.constFind(identifier);
    if (!showValues_ || it == histories_.cend() || index < 0 || index >= it->size())
        return std::nullopt;
    ValueLabel label;
    label.text = QString::number(it->at(index).rssi);
    // The newest value stands at the right edge and the oldest shown at the left, so those two
    // lean inward to stay inside the plot area.
    if (index == 0) {
        label.alignment = TextAlignment::Left;
        label.width = 50.0;
        label.xShift = -20.0;
    } else if (index == intervalsShown) {
        label.alignment = TextAlignment::Centre;
        label.width = 50.0;
    } else {
        label.alignment = TextAlignment::Right;
        label.width = 30.0;
    }
    return label;
}

QString SignalHistoryModel::annotationText(int index) const
{
    const QList<scan::ScanedResultInfo> history = histories_.value(plots_.highlighted());
    const bool present = index >= 0 && index < history.size();
    return annotation().text(present ? &history.at(index) : nullptr);
}

std::optional<SelectionLine> SignalHistoryModel::selectionLine(int index) const
{
    const QString id = plots_.highlighted();
    const QList<scan::ScanedResultInfo> history = histories_.value(id);
    if (id.isEmpty() || index < 0 || index >= history.size())
        return std::nullopt;
    const double x = point(history, index).x();
    const ColourCodePtr colour = ColourCode::getColourCodeForKey(id);
    return SelectionLine{{x, signalFloorDbm}, {x, 0.0}, withAlpha(colour, colour ? colour->alpha : 1.0)};
}

} // namespace graphs
